// One main for every test executable: a Qt application (GUI where the test asks for it,
// so QML and images work offscreen) around GoogleTest.
#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QGuiApplication>
#include <QStandardPaths>

#include <memory>

#if defined(AEROLOOM_TEST_GUI) && defined(__SANITIZE_ADDRESS__)
#include <dlfcn.h>
#endif

int main(int argc, char **argv)
{
    ::testing::InitGoogleTest(&argc, argv);
#if defined(AEROLOOM_TEST_GUI) && defined(__SANITIZE_ADDRESS__)
    // Mesa's software driver is unloaded with the last GL context while still holding a few
    // blocks of its own; kept loaded, they stay reachable and the leak check keeps to ours.
    dlopen("/usr/lib/x86_64-linux-gnu/dri/swrast_dri.so", RTLD_NOW | RTLD_NODELETE);
#endif
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
