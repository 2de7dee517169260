// A pilot's card, from the folder scan through processing and upload into a real library.
#include "DjiTelemetry.h"
#include "CardScanner.h"
#include "IngestPipeline.h"
#include "IngestQueue.h"

#include "APIClient.h"
#include "CoroTest.h"
#include "TestServer.h"

#include <QDir>
#include <QSignalSpy>
#include <QTemporaryDir>

#include <gtest/gtest.h>

TEST(IngestEndToEnd, ACardGoesIntoTheLibrary)
{
    QTemporaryDir dir;
    const auto card = *Fixtures::makeCard(dir.filePath("card"));
    TestServer server;

    IngestQueue::Services services;
    services.client = std::make_shared<APIClient>(QString::fromStdString(server.base()), std::nullopt);
    services.workRoot = dir.filePath("Aeroloom");
    services.process = IngestPipeline::asQueueStep(nullptr);
    services.geocode = [] { return false; };
    IngestQueue queue(services);
    queue.add(CardScanner::scan(card.root));
    ASSERT_EQ(queue.rowCount(), 4);

    QSignalSpy finished(&queue, &IngestQueue::finished);
    queue.start();
    ASSERT_TRUE(finished.wait(180000));

    QStringList phases;
    for (const auto &item : queue.items())
        phases << item.id + ": " + item.phase.text();
    EXPECT_EQ(phases, QStringList({"20240102_030405_0001: Done", "20240102_031000_0002: Done",
                                   "20240102_032000_0003: Done", "clip: Done"}));
    EXPECT_EQ(queue.summary(), QStringLiteral("4 flights · 4 uploaded"));

    // What the library now serves is what the pipeline wrote.
    auto http = server.client();
    const auto manifest = jsonOf(http->Get("/manifest.json"));
    ASSERT_TRUE(manifest.is_object() || manifest.is_array()) << manifest.dump();
    const auto flight = jsonOf(http->Get("/flights/20240102_030405_0001/flight.json"));
    ASSERT_TRUE(flight.is_object());
    EXPECT_EQ(flight["track"].size(), 20u);
    EXPECT_EQ(flight["meta"]["source"], "DJI_20240102030405_0001_D.MP4");
    const auto lowRes = jsonOf(http->Get("/flights/20240102_031000_0002/flight.json"));
    EXPECT_EQ(lowRes["track"].size(), 20u) << "telemetry embedded in the .LRF";
    const auto plain = jsonOf(http->Get("/flights/clip/flight.json"));
    EXPECT_TRUE(plain["track"].empty());
    EXPECT_TRUE(plain["meta"].contains("created"));
    EXPECT_EQ(http->Get("/flights/20240102_030405_0001/proxy.mp4")->status, 200);
    EXPECT_FALSE(QDir(dir.filePath("Aeroloom/Pending/20240102_030405_0001")).exists());

    // The same card again: everything that made it is already there.
    IngestQueue again(services);
    again.add(CardScanner::scan(card.root));
    QSignalSpy finishedAgain(&again, &IngestQueue::finished);
    again.start();
    ASSERT_TRUE(finishedAgain.wait(180000));
    EXPECT_EQ(again.skippedCount(), 4);
}
