#include <gmock/gmock.h>
#include <sys/syscall.h>

#include "FileSystems.h"
#include "Images.h"
#include "platform/FileUrls.h"
#include "platform/linux/WorkerProcess.h"
#include "shelf/Chewer.h"

using namespace Qt::StringLiterals;

namespace {

using Mode = Chewer::Mode;

constexpr std::chrono::milliseconds kLong(30'000);
constexpr std::chrono::milliseconds kShort(700);

/// The new file's path; empty when there is an error, which is then in `error`.
QByteArray chewed(const QByteArray& program, const Folder& folder, const QByteArray& source, Mode mode,
                  std::chrono::milliseconds patience = kLong, ChewError* error = nullptr) {
    WorkerProcess worker(program, patience);
    const auto result = Chewer(worker).chew(fileUrl(source), mode, fileUrl(folder.fallback + '/'));
    if (const auto* file = std::get_if<QUrl>(&result)) return pathOf(*file);
    if (error) *error = std::get<ChewError>(result);
    return {};
}

/// The worker, started with stricter limits than its own.
QByteArray workerWith(const Folder& folder, const QByteArray& limits) {
    const QByteArray path = folder.parent + "/worker";
    save(path, "#!/bin/sh\n" + limits + "\nexec " GLIMMET_WORKER " \"$@\"\n");
    EXPECT_EQ(::chmod(path.constData(), 0755), 0);
    return path;
}

/// Runs it as somebody for whom permissions count, which they do not for root.
template <class F>
void asNobody(F f) {
    std::thread([&] {
        constexpr int kNobody = 65534;
        // The bare call changes this thread only.
        const bool isNobody = ::geteuid() != 0 || ::syscall(SYS_setresuid, kNobody, kNobody, kNobody) == 0;
        ASSERT_TRUE(isNobody);
        f();
    }).join();
}

TEST(GlimmetWorker, ChewsAnyNameAndFallsBackWhereItCannotWrite) {
    for (const FileSystem& system : kFileSystems) {
        SCOPED_TRACE(system.name);
        const Folder folder;
        const QByteArray name = "a\nb #?%20 \xff";
        save(folder / "x.png", quarters(30, 20));
        ASSERT_EQ(::rename((folder / "x.png").constData(), (folder / (name + ".png")).constData()), 0);
        ASSERT_EQ(::chmod(folder.parent.constData(), 0777), 0);
        for (const bool isReadOnly : {false, true}) {
            ASSERT_EQ(::chmod(folder.path.constData(), isReadOnly ? 0555 : 0777), 0);
            asNobody([&] {
                on(system, [&] {
                    for (const auto& [mode, end] : {std::pair(Mode::smaller, "-small.jpg"), {Mode::toJPEG, ".jpg"}}) {
                        const QByteArray result = chewed(GLIMMET_WORKER, folder, folder / (name + ".png"), mode);
                        if (isReadOnly)
                            EXPECT_THAT(result.toStdString(),
                                        testing::StartsWith((folder.fallback + '/' + name).toStdString()));
                        else
                            EXPECT_EQ(result, folder / (name + end));
                        EXPECT_EQ(VImage::jpegload(result.constData()).width(), 30);
                    }
                });
            });
        }
        ASSERT_EQ(::chmod(folder.path.constData(), 0755), 0);
        // QDir would not list these names.
        const auto files = std::filesystem::directory_iterator(folder.path.toStdString());
        EXPECT_EQ(std::distance(begin(files), end(files)), 3);
    }
}

TEST(GlimmetWorker, ToldWhatFails) {
    const Folder folder;
    save(folder / "empty.png", QByteArray());
    save(folder / "noise.png", VImage::gaussnoise(600, 600).cast(VIPS_FORMAT_UCHAR));
    ASSERT_EQ(::mkfifo((folder / "pipe.png").constData(), 0666), 0);
    ASSERT_EQ(::mkdir((folder / "folder.png").constData(), 0777), 0);
    ASSERT_EQ(::symlink("loop.png", (folder / "loop.png").constData()), 0);
    ASSERT_EQ(::symlink((folder / "noise.png").constData(), (folder / "link.png").constData()), 0);
    const struct {
        const char* limits;
        QByteArray source;
        int code;
    } cases[] = {
        {"", folder / "empty.png", 1},
        {"", folder / "pipe.png", 1},
        {"", folder / "folder.png", 1},
        {"", folder / "loop.png", 1},
        {"", folder / "missing.png", 1},
        {"", "/dev/zero", 1},
        {"", "/proc/self/cmdline", 1},
        {"", "", 1},
        {"ulimit -f 0", folder / "noise.png", 3},
        {"ulimit -f 8", folder / "noise.png", 3},
        {"ulimit -t 0", folder / "noise.png", 0},
    };
    for (const auto& [limits, source, code] : cases) {
        ChewError error;
        EXPECT_EQ(chewed(workerWith(folder, limits), folder, source, Mode::toPNG, kLong, &error), "");
        EXPECT_EQ(error.code, code) << source.toStdString();
        EXPECT_EQ(error.domain, code > 0 ? u"chew"_s : u"worker"_s);
    }
    EXPECT_EQ(folder.names().size(), 6);
    EXPECT_EQ(chewed(GLIMMET_WORKER, folder, folder / "link.png", Mode::toJPEG), folder / "link.jpg");
}

TEST(GlimmetWorker, LeavesNothingWhenItIsKilled) {
    const Folder folder;
    // Takes seconds to write as a PNG: nothing in it repeats within the distance that the compression can see.
    const auto band = [] { return VImage::gaussnoise(6000, 100); };
    VImage::bandjoin({band(), band(), band()})
        .cast(VIPS_FORMAT_UCHAR)
        .replicate(1, 40)
        .copy(VImage::option()->set("interpretation", VIPS_INTERPRETATION_sRGB))
        .jpegsave((folder / "noise.jpg").constData());
    const QByteArray source = folder / "noise.jpg";
    for (const FileSystem& system : kFileSystems)
        on(system, [&] { EXPECT_EQ(chewed(GLIMMET_WORKER, folder, source, Mode::toPNG, kShort), ""); });
    // When the one who started it is killed, so is it.
    const QByteArray idFile = folder.parent + "/id";
    const QByteArray starter =
        workerWith(folder, "exec 4<&0; " GLIMMET_WORKER " \"$@\" <&4 & echo $! > " + idFile + "; wait");
    EXPECT_EQ(chewed(starter, folder, source, Mode::toPNG, kShort), "");
    const QByteArray commandLine = "/proc/" + load(idFile).trimmed() + "/cmdline";
    ASSERT_GT(commandLine.size(), qsizetype(sizeof "/proc//cmdline"));
    for (int i = 0; i < 500 && !load(commandLine).isEmpty(); ++i) ::usleep(10'000);
    EXPECT_EQ(load(commandLine), QByteArray());
    EXPECT_EQ(folder.names().size(), 1);
    EXPECT_EQ(chewed(GLIMMET_WORKER, folder, source, Mode::smaller), folder / "noise-small.jpg");
}

TEST(GlimmetWorker, KnowsItsJobs) {
    const Folder folder;
    save(folder / "a.png", quarters(8, 8));
    const Descriptor source = openRegularFile(folder / "a.png");
    for (const QStringList& request :
         {QStringList{}, {u"chew"_s}, {u"chew"_s, u"gif"_s}, {u"read"_s}, {u"read"_s, u"png"_s}})
        EXPECT_FALSE(WorkerProcess(GLIMMET_WORKER).run(request, source.get(), nullptr))
            << request.join(u' ').toStdString();
}

}  // namespace
