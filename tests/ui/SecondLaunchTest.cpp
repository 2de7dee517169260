// Opening files while the program runs (the file manager starts it again): the second process
// hands them over and ends, so one import queue owns the Pending folder. A program that was
// killed leaves its lock behind, and the next launch must take over rather than defer to a ghost.
#include "AppLaunch.h"
#include "CoroTest.h"
#include "TestPaths.h"

#include <QProcess>
#include <QTemporaryDir>

#include <gtest/gtest.h>

TEST(SecondLaunch, HandsItsFilesToTheRunningProgramAndAKilledOneIsReplaced)
{
    QTemporaryDir home;
    AppLaunch::writeSettings(home.path(), QStringLiteral("cockpit"));
    const QString lock = AppLaunch::workRoot(home.path()) + QStringLiteral("/instance.lock");

    QProcess first;
    first.setProcessEnvironment(AppLaunch::environment(home.path()));
    first.setProcessChannelMode(QProcess::ForwardedChannels);
    first.start(QStringLiteral(AEROLOOM_APP_BINARY), QStringList());
    ASSERT_TRUE(waitUntil([&] { return QFile::exists(lock); }, 30000)) << "the first launch never took the folder";

    QProcess second;
    second.setProcessEnvironment(AppLaunch::environment(home.path()));
    second.setProcessChannelMode(QProcess::MergedChannels);
    second.start(QStringLiteral(AEROLOOM_APP_BINARY), {home.filePath(QStringLiteral("card/DCIM/DJI_0001.MP4"))});
    const bool ended = second.waitForFinished(20000);
    if (!ended)
        second.kill();
    ASSERT_TRUE(ended) << "a second program started beside the first";
    EXPECT_EQ(second.exitCode(), 0) << second.readAll().toStdString();
    EXPECT_EQ(first.state(), QProcess::Running);

    // Killed outright: the lock and the socket stay behind.
    first.kill();
    first.waitForFinished();
    ASSERT_TRUE(QFile::exists(lock));

    QProcess next;
    next.setProcessEnvironment(AppLaunch::environment(home.path()));
    next.setProcessChannelMode(QProcess::MergedChannels);
    next.start(QStringLiteral(AEROLOOM_APP_BINARY),
               {QStringLiteral("--screenshots"), home.filePath(QStringLiteral("shots")), QStringLiteral("--shot-prefix"),
                QStringLiteral("after-crash")});
    ASSERT_TRUE(next.waitForFinished(60000));
    EXPECT_EQ(next.exitCode(), 0) << next.readAll().toStdString();
    EXPECT_TRUE(QFile::exists(home.filePath(QStringLiteral("shots/after-crash-main.png")))) << "it ran as the program";
}
