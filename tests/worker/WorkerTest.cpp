#include <gmock/gmock.h>
#include <sys/resource.h>

#include "FileSystems.h"
#include "Images.h"
#include "platform/FileUrls.h"
#include "platform/linux/WorkerProcess.h"

using namespace Qt::StringLiterals;

namespace {

QString url(const QByteArray& path) {
    return QString::fromLatin1(fileUrl(path).toEncoded());
}

QStringList chewing(const char* mode, const QByteArray& source, const QByteArray& fallback) {
    return {QStringLiteral("chew"), QString::fromLatin1(mode), url(source), url(fallback)};
}

/// The worker, started with stricter limits than its own.
QByteArray workerWith(const Folder& folder, const QByteArray& limits) {
    const QByteArray path = folder.parent + "/worker";
    save(path, "#!/bin/sh\n" + limits + "\nexec " GLIMMET_WORKER " \"$@\"\n");
    EXPECT_EQ(::chmod(path.constData(), 0755), 0);
    return path;
}

TEST(GlimmetWorker, ChewsAnyName) {
    for (const FileSystem& system : kFileSystems) {
        SCOPED_TRACE(system.name);
        const Folder folder;
        const QByteArray name = folder / "a\nb #?%20 \xff";
        quarters(30, 20).pngsave((folder / "x").constData());
        ASSERT_EQ(::rename((folder / "x").constData(), (name + ".png").constData()), 0);
        for (const char* mode : {"jpeg", "smaller"}) {
            std::optional<QJsonObject> answer;
            on(system,
               [&] { answer = WorkerProcess(GLIMMET_WORKER).run(chewing(mode, name + ".png", folder.fallback)); });
            ASSERT_TRUE(answer);
            const QByteArray result = name + (mode == QByteArray("jpeg") ? ".jpg" : "-small.jpg");
            EXPECT_EQ(pathOf(QUrl::fromEncoded((*answer)[u"file"].toString().toLatin1())), result);
            EXPECT_TRUE(load(result).startsWith("\xff\xd8") || VImage::jpegload(result.constData()).width() == 30);
        }
        // QDir would not list these names.
        const auto files = std::filesystem::directory_iterator(folder.path.toStdString());
        EXPECT_EQ(std::distance(begin(files), end(files)), 3);
    }
}

TEST(GlimmetWorker, ToldWhatFails) {
    const Folder folder;
    save(folder / "empty.png", QByteArray());
    VImage::gaussnoise(600, 600).cast(VIPS_FORMAT_UCHAR).pngsave((folder / "noise.png").constData());
    const QByteArray noFolder = "/proc/no/folder";
    const struct {
        const char* limits;
        QByteArray source, fallback;
        int code;
        QString description;
    } cases[] = {
        {"", folder / "empty.png", folder.fallback, 1, QStringLiteral("couldn't open the image")},
        {"", "/proc/self/cmdline", noFolder, 1, QStringLiteral("couldn't open the image")},
        {"ulimit -f 8", folder / "noise.png", folder.fallback, 3, QStringLiteral("couldn't finish the file")},
    };
    for (const auto& [limits, source, fallback, code, description] : cases) {
        const auto answer = WorkerProcess(workerWith(folder, limits)).run(chewing("png", source, fallback));
        ASSERT_TRUE(answer) << code;
        const QJsonObject error = (*answer)[u"error"].toObject();
        EXPECT_EQ(error[u"domain"].toString(), u"chew"_s);
        EXPECT_EQ(error[u"code"].toInt(), code);
        EXPECT_EQ(error[u"description"].toString(), description);
    }
    EXPECT_EQ(folder.names().size(), 2);
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
    const auto request = chewing("png", folder / "noise.jpg", folder.fallback);
    EXPECT_FALSE(WorkerProcess(GLIMMET_WORKER, std::chrono::milliseconds(700)).run(request));
    EXPECT_FALSE(WorkerProcess(workerWith(folder, "ulimit -t 1")).run(request));
    // When the one who started it is killed, so is it.
    const QByteArray idFile = folder.parent + "/id";
    const QByteArray starter = workerWith(folder, GLIMMET_WORKER " \"$@\" & echo $! > " + idFile + "; wait");
    EXPECT_FALSE(WorkerProcess(starter, std::chrono::milliseconds(400)).run(request));
    const QByteArray commandLine = "/proc/" + load(idFile).trimmed() + "/cmdline";
    ASSERT_GT(commandLine.size(), qsizetype(sizeof "/proc//cmdline"));
    for (int i = 0; i < 50 && !load(commandLine).isEmpty(); ++i) ::usleep(10'000);
    EXPECT_EQ(load(commandLine), QByteArray());
    EXPECT_EQ(folder.names().size(), 1);
    on(kFileSystems[1],
       [&] { EXPECT_FALSE(WorkerProcess(GLIMMET_WORKER, std::chrono::milliseconds(700)).run(request)); });
    EXPECT_TRUE(folder.isSoon({QStringLiteral("noise.jpg")}));
    EXPECT_TRUE(WorkerProcess(GLIMMET_WORKER).run(chewing("smaller", folder / "noise.jpg", folder.fallback)));
}

TEST(GlimmetWorker, KnowsItsJobs) {
    WorkerProcess worker(GLIMMET_WORKER);
    for (const QStringList& request :
         {QStringList{}, QStringList{u"chew"_s}, chewing("gif", "/a.png", "/tmp"), QStringList{u"read"_s}})
        EXPECT_FALSE(worker.run(request)) << request.join(u' ').toStdString();
}

}  // namespace
