#include "Toast.h"

#include "CoroTest.h"

#include <gtest/gtest.h>

#include <QElapsedTimer>

using namespace std::chrono_literals;

TEST(Toast, ALaterMessageKeepsItsFullTime)
{
    Toast toast(150ms);
    QElapsedTimer clock;
    clock.start();
    toast.show("Kept — it's your clip now");
    waitUntil([] { return false; }, 100);
    toast.show("Trimmed");
    const qint64 second = clock.elapsed();
    // The first message's time runs out without touching the second.
    waitUntil([] { return false; }, 80);
    EXPECT_EQ(toast.text(), "Trimmed");
    ASSERT_TRUE(waitUntil([&] { return toast.text().isEmpty(); }, 2000));
    EXPECT_GE(clock.elapsed() - second, 140);  // timers may fire a few per cent early
}
