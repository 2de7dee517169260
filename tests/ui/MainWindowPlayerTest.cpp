// The flight player inside the real main window: the desktop program, signed in to a library
// with sample flights, is walked through the gallery, the player, the theater and back by the
// preloaded walk (PlayerWalk.cpp), under the virtual display so video and the theater draw with
// OpenGL as they do for a pilot. Pictures in both palettes go to <build>/screenshots.
#include "AppLaunch.h"
#include "LoopbackTiles.h"
#include "TestPaths.h"
#include "TestServer.h"

#include <QElapsedTimer>
#include <QImage>
#include <QProcess>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <cstdio>

TEST(MainWindowPlayer, AFlightOpensPlaysShowsItsTheaterAndGoesBack)
{
    if (qEnvironmentVariableIsEmpty("DISPLAY"))
        GTEST_SKIP() << "needs the virtual display that scripts/test.sh provides";
    TestServer library([](ServerConfig &c) {
        c.samples = true;
        c.sampleSeconds = 8;
    });
    LoopbackTiles tiles;
    QTemporaryDir home;
    AppLaunch::writeSettings(home.path(), QStringLiteral("cockpit"), {"map.tileHost=\"" + tiles.base() + "\""});
    const QString shots = TestPaths::buildDir() + QStringLiteral("/screenshots");
    QProcessEnvironment env = AppLaunch::environment(
        home.path(), {{"SPIKE_BASE", QString::fromStdString(library.base())},
                      {"QT_QPA_PLATFORM", "xcb"},
                      {"LD_PRELOAD", AEROLOOM_PLAYER_WALK},
                      {"AEROLOOM_WALK_SHOTS", shots}});
#ifdef __SANITIZE_ADDRESS__
    // The walk is preloaded ahead of the sanitizer's runtime, which the program links itself.
    // Memory errors stop the program as ever, but its leaks are not counted: at exit Qt
    // WebEngine leaves Chromium's blocks and the QML it built, which can't be told from ours.
    env.insert(QStringLiteral("ASAN_OPTIONS"), env.value(QStringLiteral("ASAN_OPTIONS"))
                                                   + QStringLiteral(":verify_asan_link_order=0:detect_leaks=0"));
#endif

    QProcess program;
    program.setProcessEnvironment(env);
    program.setProcessChannelMode(QProcess::MergedChannels);
    program.start(QStringLiteral(AEROLOOM_APP_BINARY), QStringList{});
    const bool finished = program.waitForFinished(150000);
    if (!finished) {
        program.kill();
        program.waitForFinished();
    }
    const QString output = QString::fromUtf8(program.readAll());
    std::fputs(qPrintable(output), stdout);  // the walk's findings, one a line
    ASSERT_TRUE(finished) << "the walk never ended\n" << output.toStdString();
    EXPECT_EQ(program.exitStatus(), QProcess::NormalExit) << output.toStdString();
    EXPECT_EQ(program.exitCode(), 0) << output.toStdString();
    EXPECT_TRUE(output.contains(QStringLiteral("walk: done, 0 failed"))) << output.toStdString();
    EXPECT_FALSE(output.contains(QStringLiteral("FAILED"))) << output.toStdString();
    for (const char *name : {"main-player-cockpit", "main-player-field", "main-theater-cockpit"})
        EXPECT_FALSE(QImage(shots + "/" + name + ".png").isNull()) << name;
    EXPECT_GT(tiles.served(), 0) << "the player's map asks the configured tile host";
}
