// The encoder choice is tested once and then shared: callers racing the test and callers after it
// must all get the whole choice, options included.
#include "H264Encoder.h"

#include "CoroTest.h"
#include "ToolLocator.h"

#include <gtest/gtest.h>

namespace {

QCoro::Task<QList<H264Encoder>> askThreeTimes(QString ffmpeg)
{
    H264Encoder::prepare(ffmpeg);
    auto first = H264Encoder::forMachine(ffmpeg);  // both wait for the test started above
    auto second = H264Encoder::forMachine(ffmpeg);
    QList<H264Encoder> out;
    out << co_await std::move(first) << co_await std::move(second);
    out << co_await H264Encoder::forMachine(ffmpeg);  // answered from the remembered choice
    out << co_await H264Encoder::forMachine(ffmpeg);
    co_return out;
}

} // namespace

TEST(H264Encoder, EveryCallerGetsTheWholeChoiceEvenAfterItIsRemembered)
{
    const auto ffmpeg = ToolLocator::ffmpeg();
    ASSERT_TRUE(ffmpeg);
    const QList<H264Encoder> answers = run(askThreeTimes(*ffmpeg));
    ASSERT_EQ(answers.size(), 4);
    const H264Encoder &first = answers.front();
    ASSERT_GE(first.codecOptions.size(), 2);
    EXPECT_EQ(first.codecOptions.mid(0, 2), (QStringList{"-c:v", first.name}));
    if (first.name == "libx264") {
        EXPECT_TRUE(first.codecOptions.contains("veryfast"));
    }
    for (const H264Encoder &e : answers) {
        EXPECT_EQ(e.name, first.name);
        EXPECT_EQ(e.codecOptions, first.codecOptions);
        EXPECT_EQ(e.beforeInput, first.beforeInput);
        EXPECT_EQ(e.filterSuffix, first.filterSuffix);
    }
}
