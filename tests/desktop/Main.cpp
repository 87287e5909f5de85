#include <gtest/gtest.h>

#include <QGuiApplication>

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    // The tools' output arrives through its events, and pictures are painted with its fonts.
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);
    qunsetenv("QT_QPA_PLATFORM");
    return RUN_ALL_TESTS();
}
