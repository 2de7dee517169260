// Two launches over one work folder: the second hands its files to the first and leaves.
#include "SingleInstance.h"

#include "CoroTest.h"

#include <QSignalSpy>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <future>
#include <thread>

namespace {

/// A second launch, run on its own thread as it would run in its own process: it blocks until
/// the running program (served by this thread's event loop) has answered.
std::future<std::pair<bool, bool>> launchBeside(const QString &workRoot, const QString &socketDir, QList<QUrl> files,
                                                std::chrono::milliseconds patience = std::chrono::seconds(5))
{
    return std::async(std::launch::async, [=] {
        SingleInstance second(workRoot, socketDir);
        const bool runs = second.claim(files, patience);
        return std::pair{runs, second.handedOver()};
    });
}

template <typename T>
T waitFor(std::future<T> &future)
{
    EXPECT_TRUE(waitUntil([&] { return future.wait_for(std::chrono::seconds(0)) == std::future_status::ready; }, 10000));
    return future.get();
}

} // namespace

TEST(SingleInstance, ASecondLaunchHandsItsFilesToTheFirstAndLeaves)
{
    QTemporaryDir dir;
    const QString work = dir.filePath("Aeroloom");
    SingleInstance first(work, dir.path());
    ASSERT_TRUE(first.claim({}));
    QSignalSpy launched(&first, &SingleInstance::launched);

    const QList<QUrl> files{QUrl::fromLocalFile("/media/card/DCIM/DJI_0001.MP4"),
                            QUrl::fromLocalFile("/media/card/DCIM/DJI 0002 ä.LRF")};
    auto second = launchBeside(work, dir.path(), files);
    EXPECT_EQ(waitFor(second), std::pair(false, true));
    ASSERT_TRUE(waitUntil([&] { return launched.count() == 1; }));
    EXPECT_EQ(launched.at(0).at(0).value<QList<QUrl>>(), files);

    // A launch without files still reaches the running program, which brings itself forward.
    auto plain = launchBeside(work, dir.path(), {});
    EXPECT_EQ(waitFor(plain), std::pair(false, true));
    ASSERT_TRUE(waitUntil([&] { return launched.count() == 2; }));
    EXPECT_TRUE(launched.at(1).at(0).value<QList<QUrl>>().isEmpty());
}

TEST(SingleInstance, EachWorkFolderHasItsOwnProgramAndAFolderIsFreedWhenItsProgramEnds)
{
    QTemporaryDir dir;
    {
        SingleInstance first(dir.filePath("one"), dir.path());
        ASSERT_TRUE(first.claim({}));
        SingleInstance other(dir.filePath("two"), dir.path());
        EXPECT_TRUE(other.claim({})) << "another data folder is another program";
        EXPECT_NE(first.socketName(), other.socketName());
    }
    SingleInstance next(dir.filePath("one"), dir.path());
    EXPECT_TRUE(next.claim({}));
}

TEST(SingleInstance, ARunningProgramThatNeverAnswersSendsTheSecondLaunchAwayUnserved)
{
    // The lock is held but nobody listens (the holder hangs): the second launch gives up in
    // time and says it could not hand over, rather than starting a second queue.
    QTemporaryDir dir;
    const QString work = dir.filePath("Aeroloom");
    QDir().mkpath(work);
    QLockFile held(work + "/instance.lock");
    ASSERT_TRUE(held.tryLock(0));
    auto second = launchBeside(work, dir.path(), {QUrl::fromLocalFile("/x.MP4")}, std::chrono::milliseconds(400));
    EXPECT_EQ(waitFor(second), std::pair(false, false));
}
