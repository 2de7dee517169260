#include "Toast.h"

#include "CoroTest.h"
#include "ManualClock.h"

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

TEST(Toast, StandsItsFullTimeOnAHandMovedClock)
{
    ManualClock clock;
    Toast toast(&clock);
    toast.show("Clip saved");
    clock.advance(1599ms);
    EXPECT_EQ(toast.text(), "Clip saved");
    clock.advance(1ms);
    EXPECT_EQ(toast.text(), "");

    // A second message within the time replaces the first and gets its own 1.6 s.
    toast.show("Deleted");
    clock.advance(1000ms);
    toast.show("Save failed — check connection");
    clock.advance(600ms);
    EXPECT_EQ(toast.text(), "Save failed — check connection") << "the first one's end clears nothing";
    clock.advance(999ms);
    EXPECT_EQ(toast.text(), "Save failed — check connection");
    clock.advance(1ms);
    EXPECT_EQ(toast.text(), "");
}
