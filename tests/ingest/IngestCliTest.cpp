// aeroloom-cli scan and ingest, run as a pilot's script would run them.
#include "DjiTelemetry.h"
#include "Fixtures.h"
#include "ProcessRunner.h"
#include "TestPaths.h"
#include "TestServer.h"

#include <QDir>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

namespace {

QString cli()
{
    return TestPaths::buildDir() + QStringLiteral("/src/cli/aeroloom-cli");
}

} // namespace

TEST(IngestCli, ScanPrintsTheFlightsAndIngestUploadsThem)
{
    QTemporaryDir dir;
    const auto card = *Fixtures::makeCard(dir.filePath("card"));
    // A low-resolution file that lost its telemetry: the one flight that can't make it.
    ASSERT_TRUE(Fixtures::makeClip(dir.filePath("card/DCIM/100MEDIA/DJI_20240102040000_0009_D.LRF")).ok());

    const auto scan = ProcessRunner::runBlocking(cli(), {QStringLiteral("scan"), card.root});
    ASSERT_TRUE(scan.ok());
    ASSERT_EQ(scan->status, 0) << scan->stdErr.toStdString();
    const auto found = nlohmann::json::parse(scan->stdOut.toStdString());
    ASSERT_EQ(found.size(), 5u);
    EXPECT_EQ(found[0]["id"], "20240102_030405_0001");
    EXPECT_TRUE(found[0]["srt"].get<std::string>().ends_with(".SRT"));
    EXPECT_TRUE(found[1]["url"].get<std::string>().ends_with(".LRF"));
    EXPECT_TRUE(found[1]["srt"].is_null());

    TestServer server;
    const QStringList common = {QStringLiteral("--server"), QString::fromStdString(server.base()),
                                QStringLiteral("--no-geocode"), QStringLiteral("--work"), dir.filePath("work")};
    const auto ingest = ProcessRunner::runBlocking(cli(), QStringList{QStringLiteral("ingest"), card.root} + common);
    ASSERT_TRUE(ingest.ok());
    EXPECT_EQ(ingest->status, 1) << "the .LRF without telemetry did not make it";
    const QString out = QString::fromUtf8(ingest->stdOut);
    EXPECT_TRUE(out.contains(QStringLiteral("20240102_030405_0001\tWaiting to upload\n")));
    EXPECT_TRUE(out.contains(QStringLiteral("20240102_030405_0001\tProcessing — telemetry\n")));
    EXPECT_TRUE(out.contains(QStringLiteral("20240102_030405_0001\tDone\n")));
    EXPECT_TRUE(out.contains(QStringLiteral("20240102_040000_0009\tFailed — telemetry: ")));
    EXPECT_TRUE(ingest->stdErr.contains(QStringLiteral("5 flights · 4 uploaded · 1 failed")));

    // Loose files already in the library: nothing to do, and that is success.
    const auto again = ProcessRunner::runBlocking(cli(), QStringList{QStringLiteral("ingest"), card.withSidecar} + common);
    ASSERT_TRUE(again.ok());
    EXPECT_EQ(again->status, 0) << again->stdErr.toStdString();
    EXPECT_TRUE(QString::fromUtf8(again->stdOut).contains(QStringLiteral("\tAlready in library\n")));

    const auto bad = ProcessRunner::runBlocking(cli(), {QStringLiteral("ingest"), card.root});
    ASSERT_TRUE(bad.ok());
    EXPECT_EQ(bad->status, 1);
    EXPECT_EQ(bad->stdErr.trimmed(), QStringLiteral("aeroloom-cli ingest: --server URL is needed"));
}
