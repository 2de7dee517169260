#include "OutputCollector.h"
#include "ProcessError.h"
#include "ProcessRunner.h"
#include "ProgressReader.h"

#include <CoroTest.h>

#include "Printers.h"

#include <gtest/gtest.h>

#include <QElapsedTimer>
#include <QTimer>

#include <thread>

namespace {

const QString sh = QStringLiteral("/bin/sh");

ProcessResult runShell(const QString &script, QStringList *lines = nullptr, CancelToken *token = nullptr)
{
    ProcessRunner::LineHandler onLine;
    if (lines)
        onLine = [lines](const QString &line) { lines->append(line); };
    auto result = run(ProcessRunner::run(sh, QStringList{QStringLiteral("-c"), script}, onLine, token));
    EXPECT_TRUE(result.ok()) << result.errorText().toStdString();
    return result.ok() ? *result : ProcessResult{};
}

} // namespace

TEST(OutputCollector, LinesEndAtBareLineFeedsOnly)
{
    QStringList lines;
    OutputCollector collector([&](const QString &line) { lines.append(line); });
    collector.addOutput("one\ntw");
    collector.addOutput("o\r\nstill two\n\nlast");
    collector.addOutput("\r");
    collector.addOutput("\nno end");
    EXPECT_EQ(lines, (QStringList{"one", "two\r\nstill two", "", }));
    EXPECT_EQ(collector.output(), QByteArray("one\ntwo\r\nstill two\n\nlast\r\nno end"));
}

TEST(OutputCollector, ChunkThatIsNotUtf8ByItselfStaysInOutputOnly)
{
    QStringList lines;
    OutputCollector collector([&](const QString &line) { lines.append(line); });
    collector.addOutput("caf\xc3");          // split inside "é": nothing of it reaches the lines
    collector.addOutput("\xa9 au lait\nok\n"); // starts mid-character: no text from it
    collector.addOutput("n\xc3\xa9\n");
    EXPECT_EQ(lines, QStringList{QStringLiteral("n\u00e9")});
    EXPECT_EQ(collector.output(), QByteArray("caf\xc3\xa9 au lait\nok\nn\xc3\xa9\n"));

    collector.addError("bad \xff");
    EXPECT_TRUE(collector.errorText().isEmpty());
}

TEST(ProcessRunner, CollectsOutputLinesAndStatus)
{
    QStringList lines;
    auto r = runShell(QStringLiteral("printf 'a\\nb'"), &lines);
    EXPECT_EQ(lines, QStringList{"a"});
    EXPECT_EQ(r.stdOut, QByteArray("a\nb"));
    EXPECT_EQ(r.status, 0);

    r = runShell(QStringLiteral("true"));
    EXPECT_TRUE(r.stdOut.isEmpty());
    EXPECT_TRUE(r.stdErr.isEmpty());
    EXPECT_EQ(r.status, 0);

    // Non-zero is a result, not a failure; standard error is kept apart.
    r = runShell(QStringLiteral("echo out; echo 'it broke' >&2; exit 3"));
    EXPECT_EQ(r.status, 3);
    EXPECT_EQ(r.stdOut, QByteArray("out\n"));
    EXPECT_EQ(r.stdErr, QStringLiteral("it broke\n"));

    // Standard input is the null device: cat ends at once instead of waiting.
    r = runShell(QStringLiteral("cat; echo done"));
    EXPECT_EQ(r.stdOut, QByteArray("done\n"));
}

TEST(ProcessRunner, LargeOutputOnBothPipesDoesNotStall)
{
    QStringList lines;
    const auto r = runShell(QStringLiteral("head -c 3000000 /dev/zero >&2; seq 1 200000"), &lines);
    EXPECT_EQ(r.status, 0);
    EXPECT_EQ(lines.size(), 200000);
    EXPECT_EQ(lines.last(), QStringLiteral("200000"));
    EXPECT_EQ(r.stdErr.size(), 3000000);
}

TEST(ProcessRunner, ChildThatCannotStartFailsInWords)
{
    const auto r = run(ProcessRunner::run(QStringLiteral("/nonexistent/tool"), QStringList{}));
    ASSERT_FALSE(r.ok());
    EXPECT_EQ(r.failure().code, ProcessError::startFailedCode);
    EXPECT_TRUE(r.errorText().startsWith(QStringLiteral("/nonexistent/tool could not be started: ")));
    EXPECT_FALSE(ProcessRunner::runBlocking(QStringLiteral("/nonexistent/tool"), {}).ok());
}

TEST(ProcessRunner, CancellingTerminatesTheChild)
{
    CancelToken token;
    QTimer::singleShot(100, &token, &CancelToken::cancel);
    QElapsedTimer clock;
    clock.start();
    const auto r = runShell(QStringLiteral("echo started; sleep 30"), nullptr, &token);
    EXPECT_LT(clock.elapsed(), 5000);
    EXPECT_EQ(r.status, 15); // the signal number of SIGTERM, as a wait status gives it
    EXPECT_EQ(r.stdOut, QByteArray("started\n"));
}

TEST(ProcessRunner, ChildIgnoringTerminateIsKilledAfterGrace)
{
    CancelToken token;
    QTimer::singleShot(100, &token, &CancelToken::cancel);
    QElapsedTimer clock;
    clock.start();
    // The trap makes the shell ignore SIGTERM; the sleep loop keeps it busy.
    const auto r = runShell(QStringLiteral("trap '' TERM; while true; do sleep 0.1; done"), nullptr, &token);
    // It survived the terminate request, and the kill still ended it.
    EXPECT_GE(clock.elapsed(), ProcessRunner::terminateGrace.count() / 2);
    EXPECT_LT(clock.elapsed(), ProcessRunner::terminateGrace.count() + 5000);
    EXPECT_NE(r.status, 0);
}

TEST(ProcessRunner, BlockingVariantKeepsTheSameRulesOnAWorkerThread)
{
    QStringList lines;
    Result<ProcessResult> r = Failure{};
    std::thread worker([&] {
        r = ProcessRunner::runBlocking(sh, QStringList{QStringLiteral("-c"), QStringLiteral("printf 'x\\ny\\r\\nz'; echo e >&2; exit 4")},
                                       [&](const QString &line) { lines.append(line); });
    });
    worker.join();
    ASSERT_TRUE(r.ok());
    EXPECT_EQ(lines, QStringList{"x"});
    EXPECT_EQ(r->stdOut, QByteArray("x\ny\r\nz"));
    EXPECT_EQ(r->stdErr, QStringLiteral("e\n"));
    EXPECT_EQ(r->status, 4);

    std::stop_source stop;
    QElapsedTimer clock;
    clock.start();
    std::thread stopper([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
        stop.request_stop();
    });
    const auto stopped = ProcessRunner::runBlocking(sh, QStringList{QStringLiteral("-c"), QStringLiteral("sleep 30")}, {},
                                                    stop.get_token());
    stopper.join();
    EXPECT_LT(clock.elapsed(), 5000);
    ASSERT_TRUE(stopped.ok());
    EXPECT_NE(stopped->status, 0);
}

TEST(ProcessError, ShowsStatusAndLastFourNonEmptyLines)
{
    EXPECT_EQ(ProcessError::text(QStringLiteral("ffmpeg"), 1, QStringLiteral("l1\nl2\n\nl3\nl4\nl5\n")),
              QStringLiteral("ffmpeg exited 1:\nl2\nl3\nl4\nl5"));
    EXPECT_EQ(ProcessError::text(QStringLiteral("ffmpeg"), 1, QStringLiteral("\n  \n\n")), QStringLiteral("ffmpeg exited 1"));
    const Failure f = ProcessError::failed(QStringLiteral("exiftool"), -1, QStringLiteral("not found"));
    EXPECT_EQ(f.domain, ProcessError::domain);
    EXPECT_EQ(f.code, -1);
    EXPECT_EQ(f.text, QStringLiteral("exiftool exited -1:\nnot found"));
}

TEST(ProgressReader, TurnsMicrosecondsIntoCappedFractions)
{
    std::vector<double> seen;
    const auto onLine = progressReader(10.0, [&](double f) { seen.push_back(f); });
    for (const char *line : {"frame=10", "out_time_ms=2500000", "out_time_ms=N/A", "out_time_us=9000000",
                             "out_time_ms=-1000000", "out_time_ms= 5", "out_time_ms=99000000"})
        onLine(QString::fromLatin1(line));
    EXPECT_EQ(seen, (std::vector<double>{0.25, -0.1, 1.0}));
}
