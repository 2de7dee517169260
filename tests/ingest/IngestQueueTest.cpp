#include "IngestQueue.h"

#include "APIClient.h"
#include "CoroTest.h"
#include "RecordingServer.h"

#include <QDir>
#include <QFile>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTimer>

#include <gtest/gtest.h>

#include <atomic>

using namespace std::chrono_literals;
using Reply = RecordingServer::Reply;
using Request = RecordingServer::Request;

namespace {

void writeFile(const QString &path, const QByteArray &bytes = "x")
{
    QDir().mkpath(QFileInfo(path).absolutePath());
    QFile f(path);
    ASSERT_TRUE(f.open(QIODevice::WriteOnly));
    f.write(bytes);
}

Reply json(QByteArray body, int status = 200)
{
    Reply r;
    r.status = status;
    r.body = std::move(body);
    return r;
}

/// A library that knows `known` ids and accepts everything else; it notes how many uploads
/// overlap, which must never be more than one.
struct Library {
    RecordingServer server;
    QStringList known;
    QByteArray quota = "0";
    QByteArray used = "0";
    int commitStatus = 200;
    std::atomic<int> peakUploads{0};
    std::atomic<int> uploads{0};

    Library()
    {
        server.setHandler([this](const Request &r) {
            if (r.method == "GET" && r.target == "/api/flights") {
                QByteArray ids;
                for (const QString &id : known)
                    ids += (ids.isEmpty() ? "\"" : ",\"") + id.toUtf8() + '"';
                return json("{\"ids\":[" + ids + "],\"quota\":" + quota + ",\"used\":" + used + "}");
            }
            if (r.target.endsWith("/commit"))
                return commitStatus == 200 ? json(R"({"analysis":"client-provided"})")
                                           : json(R"({"detail":"over by 3 GB"})", commitStatus);
            if (r.method == "PUT") {
                peakUploads = std::max(peakUploads.load(), ++uploads);
                std::this_thread::sleep_for(5ms);
                --uploads;
            }
            return json("{}");
        });
    }
};

/// The processing step as the pipeline does it, writing a complete folder; it notes overlap.
struct FakePipeline {
    int running = 0;
    int peak = 0;
    QStringList failFor;
    std::chrono::milliseconds duration{30};

    IngestQueue::Process process()
    {
        return [this](QString source, std::optional<QString>, QString dir, bool, std::function<void(double)> progress,
                      CancelToken *cancel) -> QCoro::Task<Result<void>> {
            peak = std::max(peak, ++running);
            progress(0.5);
            const bool slept = co_await sleepFor(duration, cancel);
            --running;
            if (!slept)
                co_return Failure{"process", 15, "proxy: ffmpeg was stopped"};
            if (failFor.contains(QFileInfo(source).completeBaseName()))
                co_return Failure{"telemetry", 1, "telemetry: No telemetry found in the clip."};
            QDir().mkpath(dir);
            writeFile(dir + "/flight.json", R"({"meta":{}})");
            writeFile(dir + "/proxy.mp4", QByteArray(2000, 'p'));
            writeFile(dir + "/thumb.jpg");
            co_return Result<void>();
        };
    }
};

struct Fixture {
    Library library;
    FakePipeline pipeline;
    QTemporaryDir root;
    bool keep = false;

    std::unique_ptr<IngestQueue> makeQueue()
    {
        IngestQueue::Services services;
        services.client = std::make_shared<APIClient>(library.server.base(), std::nullopt);
        services.process = pipeline.process();
        services.workRoot = root.path();
        services.keepProcessed = [this] { return keep; };
        services.retryUnit = 10ms;
        return std::make_unique<IngestQueue>(services);
    }
    static QList<FoundFlight> flights(const QStringList &ids)
    {
        QList<FoundFlight> out;
        for (const QString &id : ids)
            out << FoundFlight{"/card/DCIM/100MEDIA/" + id + ".MP4", id, std::nullopt, std::nullopt};
        return out;
    }
    static void runToEnd(IngestQueue &queue)
    {
        QSignalSpy finished(&queue, &IngestQueue::finished);
        queue.start();
        if (queue.running()) {
            ASSERT_TRUE(finished.wait(20000));
        }
    }
    static QStringList phases(const IngestQueue &queue)
    {
        QStringList out;
        for (const auto &item : queue.items())
            out << item.id + ": " + item.phase.text();
        return out;
    }
};

} // namespace

TEST(IngestQueue, RunsFlightsThroughTwoProcessingSlotsAndOneUpload)
{
    Fixture f;
    f.library.known = {"DJI_0003"};
    writeFile(f.root.filePath("Pending/DJI_0003/flight.json"));  // leftover of an old run, no proxy
    auto queue = f.makeQueue();
    queue->add(Fixture::flights({"DJI_0001", "DJI_0002", "DJI_0003", "DJI_0004", "DJI_0005"}));
    queue->add(Fixture::flights({"DJI_0001"}));  // the same card again adds nothing
    QSignalSpy imported(queue.get(), &IngestQueue::flightImported);

    Fixture::runToEnd(*queue);

    EXPECT_EQ(Fixture::phases(*queue), QStringList({"DJI_0001: Done", "DJI_0002: Done", "DJI_0003: Already in library",
                                                     "DJI_0004: Done", "DJI_0005: Done"}));
    EXPECT_EQ(queue->summary(), QStringLiteral("5 flights · 4 uploaded · 1 already there"));
    EXPECT_EQ(imported.count(), 4);
    EXPECT_EQ(f.pipeline.peak, 2);
    EXPECT_EQ(f.library.peakUploads.load(), 1);
    EXPECT_FALSE(QDir(f.root.filePath("Pending/DJI_0003")).exists()) << "a skipped flight's folder goes";
    EXPECT_FALSE(QDir(f.root.filePath("Pending/DJI_0001")).exists()) << "uploaded folders go unless kept";
    EXPECT_FALSE(queue->running());
    // Only terminal items left: a new start does nothing.
    queue->start();
    EXPECT_FALSE(queue->running());
}

TEST(IngestQueue, RestoresCompleteFoldersAsReadyAndUploadsThemFirst)
{
    Fixture f;
    writeFile(f.root.filePath("Pending/DJI_0100/flight.json"));
    writeFile(f.root.filePath("Pending/DJI_0100/proxy.mp4"));
    writeFile(f.root.filePath("Pending/DJI_0100/thumb.jpg"));
    writeFile(f.root.filePath("Pending/DJI_0200/flight.json"));
    auto queue = f.makeQueue();
    ASSERT_EQ(queue->rowCount(), 1);
    EXPECT_EQ(Fixture::phases(*queue), QStringList({"DJI_0100: Ready to upload"}));
    EXPECT_FALSE(queue->items().first().source.has_value());
    EXPECT_TRUE(queue->data(queue->index(0), IngestQueue::ThumbRole).toUrl().isLocalFile());
    EXPECT_TRUE(QFile::exists(f.root.filePath("Pending/DJI_0200/flight.json"))) << "incomplete folders stay on disk";

    f.keep = true;
    Fixture::runToEnd(*queue);
    EXPECT_EQ(Fixture::phases(*queue), QStringList({"DJI_0100: Done"}));
    EXPECT_TRUE(QFile::exists(f.root.filePath("Pending/DJI_0100/proxy.mp4"))) << "kept when asked to keep";
    EXPECT_EQ(f.library.server.requests().at(1).target, "/api/flights/DJI_0100/files/flight.json");
}

TEST(IngestQueue, StopsTheWholeRunOnlyForAnUnreachableOrFullLibrary)
{
    Fixture f;
    auto queue = f.makeQueue();
    queue->add(Fixture::flights({"A"}));

    f.library.quota = "1000";
    f.library.used = "1000";
    Fixture::runToEnd(*queue);
    EXPECT_EQ(queue->lastError(), QStringLiteral("Storage full — free up space to upload new flights."));
    EXPECT_EQ(Fixture::phases(*queue), QStringList({"A: Waiting to upload"}));
    EXPECT_EQ(queue->quotaBytes(), 1000);

    f.library.used = "999";
    Fixture::runToEnd(*queue);
    EXPECT_EQ(queue->lastError(), QString());
    EXPECT_EQ(Fixture::phases(*queue), QStringList({"A: Done"}));

    IngestQueue::Services services;
    services.client = std::make_shared<APIClient>(QStringLiteral("http://127.0.0.1:1"), std::nullopt);
    services.process = f.pipeline.process();
    services.workRoot = f.root.path();
    IngestQueue offline(services);
    offline.add(Fixture::flights({"B"}));
    Fixture::runToEnd(offline);
    EXPECT_TRUE(offline.lastError().startsWith(QStringLiteral("Couldn't reach the server: "))) << offline.lastError().toStdString();
    EXPECT_EQ(Fixture::phases(offline), QStringList({"B: Waiting to upload"}));
}

TEST(IngestQueue, OneFlightFailingDoesNotStopTheOthers)
{
    Fixture f;
    f.pipeline.failFor = {"BAD"};
    f.library.commitStatus = 413;
    auto queue = f.makeQueue();
    queue->add(Fixture::flights({"BAD", "GOOD"}));
    Fixture::runToEnd(*queue);
    EXPECT_EQ(Fixture::phases(*queue),
              QStringList({"BAD: Failed — telemetry: No telemetry found in the clip.",
                           "GOOD: Failed — Storage quota exceeded — over by 3 GB"}));
    EXPECT_EQ(queue->lastError(), QStringLiteral("Storage quota exceeded — over by 3 GB"));
    EXPECT_FALSE(QDir(f.root.filePath("Pending/BAD")).exists());
    EXPECT_TRUE(QDir(f.root.filePath("Pending/GOOD")).exists()) << "a failed upload keeps its folder for the next run";
    const auto requests = f.library.server.requests();
    EXPECT_EQ(requests.last().method, "DELETE") << "staging is dropped after a failed upload";
    EXPECT_EQ(queue->summary(), QStringLiteral("2 flights · 2 failed"));
}

TEST(IngestQueue, StopAndRemoveCancelRunningWork)
{
    Fixture f;
    f.pipeline.duration = 10s;
    auto queue = f.makeQueue();
    queue->add(Fixture::flights({"A", "B", "C"}));
    queue->start();
    ASSERT_TRUE(waitUntil([&] { return f.pipeline.running == 2; }));

    queue->remove("B");
    ASSERT_TRUE(waitUntil([&] { return queue->rowCount() == 2; }));
    EXPECT_EQ(queue->item("B"), nullptr);

    queue->stop();
    EXPECT_FALSE(queue->running());
    ASSERT_TRUE(waitUntil([&] { return f.pipeline.running == 0; }));
    EXPECT_EQ(Fixture::phases(*queue), QStringList({"A: Waiting to upload", "C: Waiting to upload"}));

    // A new run after a stop picks the flights up again.
    f.pipeline.duration = 10ms;
    Fixture::runToEnd(*queue);
    EXPECT_EQ(Fixture::phases(*queue), QStringList({"A: Done", "C: Done"}));
    EXPECT_EQ(queue->summary(), QStringLiteral("2 flights · 2 uploaded"));
}
