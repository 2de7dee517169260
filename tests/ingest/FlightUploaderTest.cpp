#include "FlightUploader.h"

#include "APIClient.h"
#include "CoroTest.h"
#include "RecordingServer.h"
#include "StallingServer.h"
#include "UploadError.h"

#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>
#include <QTimer>

#include <gtest/gtest.h>

using namespace std::chrono_literals;
using Reply = RecordingServer::Reply;
using Request = RecordingServer::Request;

namespace {

void writeFile(const QString &path, const QByteArray &bytes)
{
    QFile f(path);
    ASSERT_TRUE(f.open(QIODevice::WriteOnly));
    f.write(bytes);
}

Reply status(int code, QByteArray body = "{}", QByteArray type = "application/json")
{
    Reply r;
    r.status = code;
    r.body = std::move(body);
    r.contentType = std::move(type);
    return r;
}

struct Fixture {
    RecordingServer server;
    QTemporaryDir dir;
    std::shared_ptr<APIClient> client = std::make_shared<APIClient>(server.base(), QStringLiteral("Bearer t0k"));
    FlightUploader uploader{client, 20ms};

    Fixture()
    {
        writeFile(dir.filePath("flight.json"), R"({"meta":{}})");
        writeFile(dir.filePath("proxy.mp4"), QByteArray(300'000, 'v'));
    }
    QStringList targets() const
    {
        QStringList out;
        for (const auto &r : server.requests())
            out << QString::fromUtf8(r.method + ' ' + r.target);
        return out;
    }
};

} // namespace

TEST(FlightUploader, SendsPresentFilesInOrderThenCommits)
{
    Fixture f;
    writeFile(f.dir.filePath("thumb.jpg"), "jpeg");
    f.server.setHandler([](const Request &r) {
        return r.target.endsWith("/commit") ? status(200, R"({"analysis":"client-provided"})") : status(200);
    });
    QStringList seen;
    double lastProxyFraction = 0;
    const auto result = run(f.uploader.upload("DJI_0001", f.dir.path(), [&](const QString &name, double fraction) {
        if (seen.isEmpty() || seen.last() != name)
            seen << name;
        if (name == QLatin1String("proxy.mp4"))
            lastProxyFraction = fraction;
    }));
    ASSERT_TRUE(result.ok()) << result.errorText().toStdString();
    EXPECT_EQ(*result, QStringLiteral("client-provided"));
    EXPECT_EQ(f.targets(), QStringList({"PUT /api/flights/DJI_0001/files/flight.json",
                                        "PUT /api/flights/DJI_0001/files/thumb.jpg",
                                        "PUT /api/flights/DJI_0001/files/proxy.mp4",
                                        "POST /api/flights/DJI_0001/commit"}));
    EXPECT_EQ(seen, QStringList({"flight.json", "thumb.jpg", "proxy.mp4"}));
    EXPECT_EQ(lastProxyFraction, 1.0);
    const auto requests = f.server.requests();
    EXPECT_EQ(requests[0].header("Content-Type"), "application/octet-stream");
    EXPECT_EQ(requests[0].header("Authorization"), "Bearer t0k");
    EXPECT_EQ(requests[0].body, R"({"meta":{}})");
    EXPECT_EQ(requests[2].body.size(), 300'000);
}

TEST(FlightUploader, CommitAnswersAndRejectionWords)
{
    Fixture f;
    f.server.setHandler([](const Request &r) { return r.target.endsWith("/commit") ? status(200, "") : status(200); });
    EXPECT_EQ(*run(f.uploader.upload("A", f.dir.path(), {})), QStringLiteral("ok"));

    f.server.setHandler([](const Request &r) {
        return r.target.endsWith("/commit") ? status(413, R"({"detail":"1.2 GB over your 50 GB plan"})") : status(200);
    });
    EXPECT_EQ(run(f.uploader.upload("A", f.dir.path(), {})).errorText(),
              QStringLiteral("Storage quota exceeded — 1.2 GB over your 50 GB plan"));

    f.server.setHandler([](const Request &) { return status(500, R"({"detail":"disk full"})"); });
    EXPECT_EQ(run(f.uploader.upload("A", f.dir.path(), {})).errorText(),
              QStringLiteral("Server rejected the flight (500): disk full"));

    const QByteArray html = "<html><body>" + QByteArray(400, 'x') + "</body></html>";
    f.server.setHandler([&](const Request &) { return status(502, html, "text/html"); });
    const auto rejected = run(f.uploader.upload("A", f.dir.path(), {}));
    EXPECT_EQ(rejected.errorText(), QStringLiteral("Server rejected the flight (502): ") + QString::fromUtf8(html.left(200)));
    EXPECT_EQ(f.server.requests().last().target, "/api/flights/A/files/flight.json") << "a rejection is never retried";
}

TEST(FlightUploader, ProxyOverTwoGigabytesStopsAfterTheSmallFiles)
{
    Fixture f;
    for (const qint64 size : {FlightUploader::proxyLimit + 1, FlightUploader::proxyLimit}) {
        f.server.clear();
        QFile proxy(f.dir.filePath("proxy.mp4"));
        ASSERT_TRUE(proxy.resize(size));  // sparse: no 2 GB written to disk
        if (size > FlightUploader::proxyLimit) {
            const auto result = run(f.uploader.upload("B", f.dir.path(), {}));
            EXPECT_EQ(result.errorText(), QStringLiteral("proxy.mp4 is 2000 MB — over the 2 GB per-file limit"));
            EXPECT_EQ(f.targets(), QStringList({"PUT /api/flights/B/files/flight.json"}));
        } else {
            EXPECT_EQ(FlightUploader::transferTimeout(size), 20000s);
        }
    }
    EXPECT_EQ(FlightUploader::transferTimeout(1000), 300s);
}

TEST(FlightUploader, RetriesOnlyTheDroppedFileWithGrowingWaits)
{
    Fixture f;
    int proxyTries = 0;
    QElapsedTimer clock;
    QList<qint64> tries;
    clock.start();
    f.server.setHandler([&](const Request &r) {
        if (r.target.endsWith("proxy.mp4")) {
            tries << clock.elapsed();
            Reply drop;
            drop.drop = ++proxyTries < 3;
            return drop;
        }
        return status(200);
    });
    const auto ok = run(f.uploader.upload("C", f.dir.path(), {}));
    ASSERT_TRUE(ok.ok()) << ok.errorText().toStdString();
    EXPECT_EQ(f.targets().count("PUT /api/flights/C/files/flight.json"), 1);
    EXPECT_EQ(proxyTries, 3);
    ASSERT_EQ(tries.size(), 3);
    EXPECT_GE(tries[2] - tries[1], 36) << "the second wait is twice the first (40 ms with a 20 ms unit)";

    // Three drops in a row end the upload with the transport's own failure.
    f.server.clear();
    proxyTries = -10;
    const auto failed = run(f.uploader.upload("C", f.dir.path(), {}));
    ASSERT_FALSE(failed.ok());
    EXPECT_EQ(failed.failure().domain, QStringLiteral("network"));
    EXPECT_EQ(f.targets().count("PUT /api/flights/C/files/proxy.mp4"), 3);
    EXPECT_FALSE(f.targets().contains("POST /api/flights/C/commit"));
}

TEST(FlightUploader, AServerThatStopsReadingMidBodyIsRetriedAndThenSaysItTimedOut)
{
    // The small file goes through; the proxy stalls after 64 kB, three times in a row.
    StallingServer server({[](const QByteArray &target) { return target.endsWith("/proxy.mp4"); }, 64 * 1024});
    QTemporaryDir dir;
    writeFile(dir.filePath("flight.json"), R"({"meta":{}})");
    writeFile(dir.filePath("proxy.mp4"), "");
    QFile proxy(dir.filePath("proxy.mp4"));
    ASSERT_TRUE(proxy.resize(24'000'000));  // streamed from disk, far more than the buffers hold
    FlightUploader uploader(std::make_shared<APIClient>(server.base(), std::nullopt), 100ms, 300ms);
    QElapsedTimer clock;
    clock.start();
    const auto result = run(uploader.upload("S", dir.path(), {}));
    ASSERT_FALSE(result.ok());
    EXPECT_EQ(result.errorText(), QStringLiteral("The request timed out."));
    EXPECT_EQ(server.answeredRequests(), 1);
    EXPECT_EQ(server.stalledRequests(), 3);
    // Three stalls of 300 ms and the waits of 100 and 200 ms between them.
    EXPECT_GE(clock.elapsed(), 3 * 300 + 300 - 50);
    EXPECT_LT(clock.elapsed(), 10'000);
}

TEST(FlightUploader, CancellationEndsTheTransferWithoutRetry)
{
    Fixture f;
    f.server.setHandler([](const Request &) {
        Reply drop;
        drop.drop = true;
        return drop;
    });
    FlightUploader slow(f.client, 10s);
    CancelToken token;
    QTimer::singleShot(100ms, &token, &CancelToken::cancel);
    QElapsedTimer clock;
    clock.start();
    const auto result = run(slow.upload("D", f.dir.path(), {}, &token));
    ASSERT_FALSE(result.ok());
    EXPECT_LT(clock.elapsed(), 5000) << "cancel must cut the retry wait short";
    EXPECT_EQ(f.server.count(), 1);

    // A stop in the middle of a transfer that stands still is the pilot's, not a timeout.
    StallingServer stalled;
    FlightUploader patient(std::make_shared<APIClient>(stalled.base(), std::nullopt), 10ms);
    CancelToken stop;
    QTimer::singleShot(150ms, &stop, &CancelToken::cancel);
    const auto stopped = run(patient.upload("D", f.dir.path(), {}, &stop));
    EXPECT_EQ(stopped.errorText(), QStringLiteral("Operation canceled"));
    EXPECT_EQ(stalled.stalledRequests(), 1);

    // A token cancelled before the start sends nothing that completes.
    const auto early = run(f.uploader.upload("D", f.dir.path(), {}, &token));
    EXPECT_FALSE(early.ok());
}

TEST(FlightUploader, LibraryAndDiscard)
{
    Fixture f;
    f.server.replyWith(200, R"({"ids":["A","B"],"quota":5000000000})");
    const auto lib = run(f.uploader.library());
    ASSERT_TRUE(lib.ok());
    EXPECT_EQ(lib->ids, QSet<QString>({"A", "B"}));
    EXPECT_EQ(lib->quota, 5'000'000'000);
    EXPECT_EQ(lib->used, 0);

    f.server.replyWith(503, "no");
    EXPECT_EQ(run(f.uploader.library()).errorText(), QStringLiteral("Server rejected the flight (503): GET /api/flights failed"));

    f.server.replyWith(500, "whatever");
    run(f.uploader.discardStaging("A"));
    EXPECT_EQ(f.server.last().method, "DELETE");
    EXPECT_EQ(f.server.last().target, "/api/flights/A/staging");
}
