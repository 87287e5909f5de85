#include <fcntl.h>
#include <gmock/gmock.h>
#include <seccomp.h>
#include <sys/syscall.h>
#include <sys/wait.h>

#include <csignal>
#include <thread>

#include "Images.h"
#include "platform/FileUrls.h"
#include "platform/Thumbnail.h"
#include "platform/linux/UnnamedFile.h"
#include "platform/linux/WorkerProcess.h"
#include "shelf/Chewer.h"

using namespace Qt::StringLiterals;

namespace {

using Mode = Chewer::Mode;

constexpr std::chrono::milliseconds kLong(30'000);
constexpr std::chrono::milliseconds kShort(700);

const QString kWorker = QStringLiteral(GLIMMET_WORKER);

/// What a file system can do.
constexpr struct FileSystem {
    const char* name;
    bool hasUnnamedFiles;
    bool keepsWhatIsThere;  // when asked to rename without replacing
} kFileSystems[] = {{"most", true, true}, {"some", false, true}, {"few", false, false}};

/// Runs it where the kernel answers as on such a file system.
template <class F>
void on(const FileSystem& system, F f) {
    std::thread([&] {
        const auto filter = seccomp_init(SCMP_ACT_ALLOW);
        const auto refuse = [&](int error, int call, scmp_arg_cmp when) {
            seccomp_rule_add(filter, SCMP_ACT_ERRNO(uint16_t(error)), call, 1, when);
        };
        if (!system.hasUnnamedFiles)
            refuse(EOPNOTSUPP, SCMP_SYS(openat), SCMP_A2(SCMP_CMP_MASKED_EQ, O_TMPFILE, O_TMPFILE));
        if (!system.keepsWhatIsThere) refuse(EINVAL, SCMP_SYS(renameat2), SCMP_A4(SCMP_CMP_NE, 0, 0));
        EXPECT_EQ(seccomp_load(filter), 0);
        seccomp_release(filter);
        f();
    }).join();
}

using Made = std::variant<QUrl, ChewError>;
Made chew(const QString& program, const Folder& folder, const QByteArray& source, Mode mode,
          std::chrono::milliseconds patience = kLong) {
    WorkerProcess worker(program, patience);
    return Chewer(worker).chew(fileUrl(source), mode, fileUrl(folder.fallback + '/'));
}

/// The new file's path; empty when there is an error.
template <class... Arguments>
QByteArray chewed(const Arguments&... arguments) {
    const Made made = chew(arguments...);
    return std::holds_alternative<QUrl>(made) ? pathOf(std::get<QUrl>(made)) : QByteArray();
}

/// The worker, started with stricter limits than its own.
QString workerWith(const Folder& folder, const QByteArray& limits) {
    const QByteArray path = folder.parent + "/worker";
    save(path, "#!/bin/sh\n" + limits + "\nexec " GLIMMET_WORKER " \"$@\"\n");
    EXPECT_EQ(::chmod(path.constData(), 0755), 0);
    return QFile::decodeName(path);
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

TEST(GlimmetWorker, ChewsAnyNameReplacesNothingAndFallsBackWhereItCannotWrite) {
    for (const FileSystem& system : kFileSystems) {
        SCOPED_TRACE(system.name);
        const Folder folder;
        const QByteArray name = "a\nb #?%20 \xff";
        save(folder / "x.png", quarters(30, 20));
        ASSERT_EQ(::rename((folder / "x.png").constData(), (folder / (name + ".png")).constData()), 0);
        folder.owner.write("in/" + name + ".jpg", "mine");
        ASSERT_EQ(::chmod(folder.parent.constData(), 0777), 0);
        for (const bool isReadOnly : {false, true}) {
            ASSERT_EQ(::chmod(folder.path.constData(), isReadOnly ? 0555 : 0777), 0);
            asNobody([&] {
                on(system, [&] {
                    for (const auto& [mode, end] : {std::pair(Mode::smaller, "-small.jpg"), {Mode::toJPEG, "-"}}) {
                        const QByteArray result = chewed(kWorker, folder, folder / (name + ".png"), mode);
                        const QByteArray start = isReadOnly ? folder.fallback + '/' + name : folder / (name + end);
                        EXPECT_THAT(result.toStdString(), testing::StartsWith(start.toStdString()));
                        EXPECT_EQ(VImage::jpegload(result.constData()).width(), 30);
                    }
                });
            });
        }
        ASSERT_EQ(::chmod(folder.path.constData(), 0755), 0);
        EXPECT_EQ(folder.owner.read("in/" + name + ".jpg"), "mine");
        // QDir would not list these names.
        const auto files = std::filesystem::directory_iterator(folder.path.toStdString());
        EXPECT_EQ(std::distance(begin(files), end(files)), 4);
    }
}

TEST(GlimmetWorker, LeavesNothingOfAResultWhoseOwnerIsKilled) {
    for (const FileSystem& system : kFileSystems) {
        const Folder folder;
        on(system, [&] {
            const pid_t owner = ::fork();
            if (owner == 0) {
                auto file = UnnamedFile::in(folder.path);
                if (file && ::write(file->descriptor(), "half", 4) == 4 && file->finish()) ::raise(SIGKILL);
                ::_exit(1);
            }
            int status = 0;
            ASSERT_EQ(::waitpid(owner, &status, 0), owner);
            EXPECT_TRUE(WIFSIGNALED(status));
        });
        for (int i = 0; i < 500 && !folder.names().isEmpty(); ++i) ::usleep(10'000);
        EXPECT_EQ(folder.names(), QStringList()) << system.name;
    }
}

TEST(GlimmetWorker, ToldWhatFails) {
    const Folder folder;
    save(folder / "empty.png", QByteArray());
    save(folder / "noise.png", VImage::gaussnoise(600, 600).cast(VIPS_FORMAT_UCHAR));
    const struct {
        const char* limits;
        QByteArray source;
        int code;
    } cases[] = {
        {"", folder / "empty.png", 1},
        {"", "/proc/self/cmdline", 1},
        {"ulimit -f 0", folder / "noise.png", 3},
        {"ulimit -f 8", folder / "noise.png", 3},
        {"ulimit -t 0", folder / "noise.png", 0},
    };
    for (const auto& [limits, source, code] : cases) {
        const auto error = std::get<ChewError>(chew(workerWith(folder, limits), folder, source, Mode::toPNG));
        EXPECT_EQ(error.code, code) << source.toStdString();
        EXPECT_EQ(error.domain, code > 0 ? u"chew"_s : u"worker"_s);
    }
    EXPECT_EQ(folder.names().size(), 2);
}

TEST(GlimmetWorker, DoesInItsConfinementWhatItDoesWithout) {
    WorkerProcess worker(kWorker);
    const Folder folder;
    for (const QByteArray kind : kKinds) {
        const QByteArray name = "a." + kind;
        save(folder / name, quarters(600, 400));
        EXPECT_FALSE(folder.chew(name, ChewMode::smaller));
        EXPECT_EQ(load(chewed(kWorker, folder, folder / name, Mode::smaller)), load(folder.result))
            << kind.toStdString();
        const auto small = std::get<Thumbnail>(folder.thumbnail(name, 96));
        const QImage straight(reinterpret_cast<const uchar*>(small.pixels.constData()), small.width, small.height,
                              QImage::Format_RGBA8888);
        EXPECT_EQ(thumbnailIn(worker.run({u"thumbnail"_s, u"96"_s}, load(folder / name)), 96),
                  straight.convertToFormat(QImage::Format_ARGB32_Premultiplied))
            << kind.toStdString();
    }
    EXPECT_FALSE(thumbnailIn(worker.run({u"thumbnail"_s, u"96"_s}, "text"), 96));
    // Its font is not in it.
    save(folder / "a.pdf", R"(%PDF-1.4
1 0 obj<</Type/Catalog/Pages 2 0 R>>endobj 2 0 obj<</Type/Pages/Kids[3 0 R]/Count 1>>endobj
3 0 obj<</Type/Page/Parent 2 0 R/MediaBox[0 0 300 99]/Resources<</Font<</F 4 0 R>>>>/Contents 5 0 R>>endobj
4 0 obj<</Type/Font/Subtype/Type1/BaseFont/Helvetica>>endobj
5 0 obj<</Length 47>>stream
BT /F 18 Tf 40 40 Td (Minutes of the club) Tj ET
endstream endobj
trailer<</Root 1 0 R>>
%%EOF
)");
    EXPECT_EQ(Chewer(worker).readText(fileUrl(folder / "a.pdf")),
              (std::variant<QString, ChewError>(u"Minutes of the club"_s)));
}

TEST(GlimmetWorker, FindsItsResultInAFolderThatWasRenamed) {
    const Folder folder;
    save(folder / "a.png", quarters(8, 8));
    const QString renaming = workerWith(folder, "mv " + folder.path + " " + folder.parent + "/new");
    EXPECT_EQ(chewed(renaming, folder, folder / "a.png", Mode::toJPEG), folder.parent + "/new/a.jpg");
    EXPECT_TRUE(load(folder.parent + "/new/a.jpg").startsWith("\xff\xd8"));
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
        on(system, [&] { EXPECT_EQ(chewed(kWorker, folder, source, Mode::toPNG, kShort), ""); });
    // When the one who started it is killed, so is it.
    const QByteArray idFile = folder.parent + "/id";
    const QString starter =
        workerWith(folder, "exec 4<&0; " GLIMMET_WORKER " \"$@\" <&4 & echo $! > " + idFile + "; wait");
    EXPECT_EQ(chewed(starter, folder, source, Mode::toPNG, kShort), "");
    const QByteArray commandLine = "/proc/" + load(idFile).trimmed() + "/cmdline";
    ASSERT_GT(commandLine.size(), qsizetype(sizeof "/proc//cmdline"));
    for (int i = 0; i < 500 && !load(commandLine).isEmpty(); ++i) ::usleep(10'000);
    EXPECT_EQ(load(commandLine), QByteArray());
    EXPECT_EQ(folder.names().size(), 1);
    EXPECT_EQ(chewed(kWorker, folder, source, Mode::smaller), folder / "noise-small.jpg");
}

TEST(GlimmetWorker, KnowsItsJobs) {
    for (const char* request : {"", "chew", "chew gif", "read", "read png", "thumbnail", "thumbnail 0", "thumbnail 97",
                                "thumbnail -1", "thumbnail x", "thumbnail 9 9"})
        EXPECT_FALSE(WorkerProcess(kWorker).run(QString::fromLatin1(request).split(u' '), QByteArray())) << request;
}

}  // namespace
