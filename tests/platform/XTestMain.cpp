#include <QGuiApplication>

#include "X11Test.h"

/// Tests that name no X11 suite in their filter run on Qt's offscreen platform and start no server; all others get an X
/// server of their own, one for the whole program. Each test is a process of its own when ctest runs it.
int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    const std::string filter = testing::GTEST_FLAG(filter);
    const bool x11 = filter == "*" || filter.find("X11") != std::string::npos;

    std::unique_ptr<XSession> session;
    if (x11 && !testing::GTEST_FLAG(list_tests)) {
        session = std::make_unique<XSession>();
        session->startWindowManager();
        qputenv("DISPLAY", session->display());
        X11Test::setSession(session.get());
    }
    qputenv("QT_QPA_PLATFORM", session ? "xcb" : "offscreen");
    QGuiApplication application(argc, argv);
    QGuiApplication::setQuitOnLastWindowClosed(false);
    return RUN_ALL_TESTS();
}
