#include <QGuiApplication>
#include <QTemporaryFile>

#include "X11Test.h"

/// ctest runs each test as a process of its own, so the filter tells what it needs. One that names an X11 suite, or
/// nothing, gets an X server. The rest runs on Qt's offscreen platform; "TwoScreens" gets two screens there.
int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    const std::string filter = testing::GTEST_FLAG(filter);
    const bool x11 = filter == "*" || filter.find("X11") != std::string::npos;

    std::unique_ptr<XSession> session;
    QByteArray platform = "offscreen";
    if (x11 && !testing::GTEST_FLAG(list_tests)) {
        session = std::make_unique<XSession>();
        session->startWindowManager();
        qputenv("DISPLAY", session->display());
        X11Test::setSession(session.get());
        platform = "xcb";
    }
    QTemporaryFile screens;
    if (filter.find("TwoScreens") != std::string::npos && screens.open()) {
        // The first by name becomes the main one.
        screens.write(R"({"screens": [
            {"name": "B", "x": 0, "y": 0, "width": 1000, "height": 1080, "dpr": 1,
             "logicalDpi": 96, "logicalBaseDpi": 96},
            {"name": "A", "x": 1000, "y": 200, "width": 800, "height": 600, "dpr": 2,
             "logicalDpi": 96, "logicalBaseDpi": 96}]})");
        screens.flush();
        platform += ":configfile=" + screens.fileName().toUtf8();
    }
    qputenv("QT_QPA_PLATFORM", platform);
    QGuiApplication application(argc, argv);
    QGuiApplication::setQuitOnLastWindowClosed(false);
    return RUN_ALL_TESTS();
}
