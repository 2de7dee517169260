// A toast stands for 1.6 s and is cleared only while it still says the same thing.
#include "ManualClock.h"
#include "Toast.h"

#include <gtest/gtest.h>

using namespace std::chrono_literals;

TEST(Toast, StandsItsFullTimeEvenWhenReplaced)
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
