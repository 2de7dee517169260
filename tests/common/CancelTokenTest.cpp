#include "CancelToken.h"
#include "CoroTest.h"

#include <QElapsedTimer>
#include <QTimer>

#include <gtest/gtest.h>

using namespace std::chrono_literals;

TEST(SleepFor, RunsItsFullLengthWithoutCancel)
{
    CancelToken token;
    QElapsedTimer clock;
    clock.start();
    EXPECT_TRUE(run(sleepFor(30ms, &token)));
    EXPECT_GE(clock.elapsed(), 25);
    EXPECT_TRUE(run(sleepFor(5ms)));
}

TEST(SleepFor, EndsEarlyAndSaysSoWhenCancelled)
{
    CancelToken token;
    QTimer::singleShot(10ms, &token, &CancelToken::cancel);
    QElapsedTimer clock;
    clock.start();
    EXPECT_FALSE(run(sleepFor(10s, &token)));
    EXPECT_LT(clock.elapsed(), 5000);
    // An already cancelled token does not sleep at all.
    EXPECT_FALSE(run(sleepFor(10s, &token)));
}
