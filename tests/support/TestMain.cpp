// One main for every test executable: a Qt application (GUI where the test asks for it,
// so QML and images work offscreen) around GoogleTest.
#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QGuiApplication>
#include <QStandardPaths>

#include <memory>

int main(int argc, char **argv)
{
    ::testing::InitGoogleTest(&argc, argv);
    // Settings, caches and data folders go to a private place, never the user's own.
    QStandardPaths::setTestModeEnabled(true);
#ifdef AEROLOOM_TEST_GUI
    QGuiApplication app(argc, argv);
#else
    QCoreApplication app(argc, argv);
#endif
    QCoreApplication::setOrganizationName(QStringLiteral("AeroloomTests"));
    QCoreApplication::setApplicationName(QStringLiteral("aeroloom-tests"));
    return RUN_ALL_TESTS();
}
