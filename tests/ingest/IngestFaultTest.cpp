// Faults a pilot's import meets: the program killed mid-run, a corrupt clip on the card, the
// library going away in the middle of an upload, the card pulled out.
#include "APIClient.h"
#include "CoroTest.h"
#include "DjiTelemetry.h"
#include "ImportWindowModel.h"
#include "IngestPipeline.h"
#include "IngestQueue.h"
#include "ProcessRunner.h"
#include "TestPaths.h"
#include "TestServer.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QRandomGenerator>
#include <QRegularExpression>
#include <QSet>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QThread>

#include <gtest/gtest.h>

namespace {

QString cli()
{
    return TestPaths::buildDir() + QStringLiteral("/src/cli/aeroloom-cli");
}

/// The library server as its own process, so that it can die without a word.
class ServerProcess
{
public:
    ServerProcess(QString library, int port = 0, const QStringList &more = {})
    {
        m_process.start(TestPaths::buildDir() + QStringLiteral("/src/server/aeroloom-server"),
                        QStringList{QStringLiteral("--library"), library, QStringLiteral("--listen"),
                                    QStringLiteral("127.0.0.1:%1").arg(port), QStringLiteral("--no-samples")}
                            + more);
        QString out;
        static const QRegularExpression url(QStringLiteral("http://127\\.0\\.0\\.1:(\\d+)"));
        while (m_process.waitForReadyRead(10000)) {
            out += QString::fromUtf8(m_process.readAllStandardOutput());
            if (const auto match = url.match(out); match.hasMatch()) {
                m_base = match.captured(0);
                m_port = match.captured(1).toInt();
                return;
            }
        }
        ADD_FAILURE() << "the server didn't start: " << m_process.readAllStandardError().toStdString();
    }
    ~ServerProcess() { kill(); }
    void kill()
    {
        m_process.kill();
        m_process.waitForFinished();
    }
    [[nodiscard]] QString base() const { return m_base; }
    [[nodiscard]] int port() const { return m_port; }

private:
    QProcess m_process;
    QString m_base;
    int m_port = 0;
};

/// A processed flight left in Pending, its proxy big enough that the upload takes a while.
QString pendingFlight(const QString &work, const QString &id, qint64 proxyBytes)
{
    const QString folder = QDir(work).filePath(QStringLiteral("Pending/") + id);
    makeFlightFolder(folder.toStdString());
    QFile proxy(QDir(folder).filePath(QStringLiteral("proxy.mp4")));
    EXPECT_TRUE(proxy.resize(proxyBytes));
    return folder;
}

/// Waits until the server is writing a body of more than a few megabytes, then kills it.
bool killMidTransfer(ServerProcess &server, const QString &library, QProcess &client)
{
    QDeadlineTimer deadline(60000);
    while (!deadline.hasExpired() && client.state() == QProcess::Running) {
        for (const QFileInfo &part : QDir(library + QStringLiteral("/tmp")).entryInfoList({QStringLiteral("*.part")}, QDir::Files)) {
            if (part.size() > 8'000'000) {
                server.kill();
                return true;
            }
        }
        QThread::msleep(1);
    }
    return false;
}

/// `aeroloom-cli ingest` of nothing new: it sends what waits in `work`'s Pending folder.
std::unique_ptr<QProcess> ingestPending(const QString &work, const QString &base)
{
    const QString empty = work + QStringLiteral("-empty");
    QDir().mkpath(empty);
    auto client = std::make_unique<QProcess>();
    client->start(cli(), {QStringLiteral("ingest"), empty, QStringLiteral("--server"), base, QStringLiteral("--no-geocode"),
                          QStringLiteral("--work"), work});
    EXPECT_TRUE(client->waitForStarted());
    return client;
}

QString ingestOutput(QProcess &client)
{
    EXPECT_TRUE(client.waitForFinished(120000));
    return QString::fromUtf8(client.readAllStandardOutput());
}

qint64 sizeInLibrary(const QString &library, const QString &id)
{
    return QFileInfo(QStringLiteral("%1/flights/%2/proxy.mp4").arg(library, id)).size();
}

} // namespace

TEST(IngestFaults, KilledAtRandomPointsEveryFlightEndsInTheLibraryExactlyOnce)
{
    QTemporaryDir dir;
    const auto card = Fixtures::makeCard(dir.filePath("card"));
    ASSERT_TRUE(card.ok()) << card.errorText().toStdString();
    // A corrupt clip fails its own row and nothing else.
    QFile corrupt(dir.filePath("card/DCIM/100MEDIA/DJI_20240102060000_0009_D.MP4"));
    ASSERT_TRUE(corrupt.open(QIODevice::WriteOnly));
    corrupt.write(QByteArray(64 * 1024, '\x5a'));
    corrupt.close();

    TestServer server;
    const QStringList args = {QStringLiteral("ingest"), card->root, QStringLiteral("--server"),
                              QString::fromStdString(server.base()), QStringLiteral("--no-geocode"),
                              QStringLiteral("--work"), dir.filePath("work")};

    // Kill the whole program (no chance to clean up) at random moments of several runs.
    QRandomGenerator random(20241121);
    for (int round = 0; round < 4; ++round) {
        QProcess run;
        run.start(cli(), args);
        ASSERT_TRUE(run.waitForStarted());
        run.waitForFinished(int(random.bounded(300, 2500)));
        if (run.state() != QProcess::NotRunning) {
            run.kill();
            run.waitForFinished();
        }
    }

    // A last run, left alone, finishes the job.
    const auto last = ProcessRunner::runBlocking(cli(), args);
    ASSERT_TRUE(last.ok());
    EXPECT_EQ(last->status, 1) << "the corrupt clip cannot make it";
    const QString out = QString::fromUtf8(last->stdOut);
    EXPECT_TRUE(out.contains(QStringLiteral("20240102_060000_0009\tFailed — "))) << out.toStdString();

    const auto ids = jsonOf(server.client()->Get("/api/flights"))["ids"];
    QStringList inLibrary;
    for (const auto &id : ids)
        inLibrary << QString::fromStdString(id.get<std::string>());
    inLibrary.sort();
    EXPECT_EQ(inLibrary, QStringList({"20240102_030405_0001", "20240102_031000_0002", "20240102_032000_0003", "clip"}));
    const auto manifest = server.client()->Get("/manifest.json");
    ASSERT_TRUE(manifest);
    for (const QString &id : inLibrary)
        EXPECT_EQ(QString::fromStdString(manifest->body).count(QStringLiteral("\"%1\"").arg(id)), 1) << id.toStdString();
    // Nothing is left half-done: the processed folders of uploaded flights are gone.
    for (const QString &id : inLibrary)
        EXPECT_FALSE(QDir(dir.filePath("work/Pending/" + id)).exists()) << id.toStdString();
}

TEST(IngestFaults, TheLibraryStoppingMidUploadIsRetriedThenFailsClearlyAndALaterRunFinishes)
{
    QTemporaryDir dir;
    const QString work = dir.filePath("work");
    const QString library = dir.filePath("library");
    const qint64 big = 250'000'000;  // sparse: cheap to make, long enough to read
    auto ingest = [&](const QString &base) { return ingestPending(work, base); };

    // The library dies during the proxy and is back before the first retry: the same run finishes.
    const QString first = pendingFlight(work, "20240102_050000_0001", big);
    auto server = std::make_unique<ServerProcess>(library);
    const int port = server->port();
    auto run = ingest(server->base());
    ASSERT_TRUE(killMidTransfer(*server, library, *run));
    server = std::make_unique<ServerProcess>(library, port);
    QString out = ingestOutput(*run);
    EXPECT_EQ(run->exitCode(), 0) << out.toStdString();
    EXPECT_TRUE(out.contains("20240102_050000_0001\tDone")) << out.toStdString();
    EXPECT_EQ(sizeInLibrary(library, "20240102_050000_0001"), big);
    EXPECT_FALSE(QDir(first).exists());

    // It dies again and stays away through every attempt: a clear failure, the folder kept.
    const QString second = pendingFlight(work, "20240102_050000_0002", big);
    run = ingest(server->base());
    QElapsedTimer waited;
    ASSERT_TRUE(killMidTransfer(*server, library, *run));
    waited.start();
    out = ingestOutput(*run);
    EXPECT_EQ(run->exitCode(), 1) << out.toStdString();
    EXPECT_GE(waited.elapsed(), 5000) << "two retries, after 2 s and 4 s";
    static const QRegularExpression failed("20240102_050000_0002\tFailed — \\S.*");
    EXPECT_TRUE(failed.match(out).hasMatch()) << out.toStdString();
    EXPECT_EQ(QFileInfo(second + "/proxy.mp4").size(), big) << "nothing of the flight is lost";
    EXPECT_TRUE(QFileInfo::exists(second + "/flight.json"));

    // With the library back, a later run sends it and cleans up, and the half-received proxy
    // of the dead server does not linger or count twice.
    server = std::make_unique<ServerProcess>(library);
    run = ingest(server->base());
    out = ingestOutput(*run);
    EXPECT_EQ(run->exitCode(), 0) << out.toStdString();
    EXPECT_TRUE(out.contains("20240102_050000_0002\tDone")) << out.toStdString();
    EXPECT_EQ(sizeInLibrary(library, "20240102_050000_0002"), big);
    EXPECT_FALSE(QDir(second).exists());
    EXPECT_TRUE(QDir(library + "/tmp").entryList({"*.part"}, QDir::Files).isEmpty());
    httplib::Client http(server->base().toStdString());
    const auto ids = jsonOf(http.Get("/api/flights"))["ids"];
    EXPECT_EQ(ids, nlohmann::json::parse(R"(["20240102_050000_0001","20240102_050000_0002"])"));
}

TEST(IngestFaults, ACardPulledOutFailsOnlyItsOwnRowsAndLeavesNothingBehind)
{
    QTemporaryDir dir;
    const auto card = Fixtures::makeCard(dir.filePath("card"));
    ASSERT_TRUE(card.ok()) << card.errorText().toStdString();
    const QString loose = dir.filePath("desktop/DJI_20240103101010_0042_D.MP4");
    QDir().mkpath(dir.filePath("desktop"));
    ASSERT_TRUE(Fixtures::makeClip(loose));
    TestServer server;

    IngestQueue::Services services;
    services.client = std::make_shared<APIClient>(QString::fromStdString(server.base()), std::nullopt);
    services.workRoot = dir.filePath("Aeroloom");
    services.process = IngestPipeline::asQueueStep(nullptr);
    services.geocode = [] { return false; };
    IngestQueue queue(services);
    ImportWindowModel window(&queue, nullptr);

    // Pulled while the scan walks it: whatever the scan saw, nothing breaks.
    const QString copy = dir.filePath("copy");
    ASSERT_EQ(ProcessRunner::runBlocking("cp", {"-r", card->root, copy})->status, 0);
    ASSERT_TRUE(window.scanVolume(copy));
    QDir(copy).removeRecursively();
    ASSERT_TRUE(waitUntil([&] { return !window.scanning(); }, 20000));
    while (queue.rowCount() > 0)
        queue.remove(queue.items().front().id);

    // Pulled after the scan, before "Start Upload": its flights are listed, their files gone.
    ASSERT_TRUE(window.scanVolume(card->root));
    ASSERT_TRUE(waitUntil([&] { return !window.scanning(); }, 20000));
    ASSERT_EQ(queue.rowCount(), 4);
    window.addUrls({QUrl::fromLocalFile(loose)});
    ASSERT_TRUE(waitUntil([&] { return queue.rowCount() == 5 && !window.scanning(); }, 20000));
    ASSERT_TRUE(QDir(card->root).removeRecursively());

    QSignalSpy finished(&queue, &IngestQueue::finished);
    queue.start();
    ASSERT_TRUE(finished.wait(180000));
    for (const auto &item : queue.items()) {
        if (item.id == "20240103_101010_0042") {
            EXPECT_EQ(item.phase.text(), "Done");
            continue;
        }
        EXPECT_EQ(item.phase.kind, IngestPhase::Kind::Failed) << item.id.toStdString();
        EXPECT_TRUE(item.phase.detail.startsWith("telemetry: ") || item.phase.detail.startsWith("proxy: "))
            << item.phase.detail.toStdString();
        EXPECT_FALSE(QDir(services.workRoot + "/Pending/" + item.id).exists()) << "no half-made folder";
    }
    EXPECT_EQ(window.finishedSummary(), "1 flight added to your library, 4 didn't make it — try again any time.");
    EXPECT_EQ(jsonOf(server.client()->Get("/api/flights"))["ids"], nlohmann::json::parse(R"(["20240103_101010_0042"])"));
}

TEST(IngestFaults, AFullLibraryFailsTheFlightThatDoesNotFitAndKeepsItForLater)
{
    QTemporaryDir dir;
    const QString work = dir.filePath("work");
    const QString library = dir.filePath("library");
    const qint64 proxy = 30'000'000;
    pendingFlight(work, "20240102_050000_0001", proxy);
    const QString second = pendingFlight(work, "20240102_050000_0002", proxy);
    ServerProcess server(library, 0, {"--quota", "45000000"});

    auto run = ingestPending(work, server.base());
    QString out = ingestOutput(*run);
    EXPECT_EQ(run->exitCode(), 1) << out.toStdString();
    EXPECT_TRUE(out.contains("20240102_050000_0001\tDone")) << out.toStdString();
    static const QRegularExpression full("20240102_050000_0002\tFailed — .*Storage quota exceeded");
    EXPECT_TRUE(full.match(out).hasMatch()) << out.toStdString();
    EXPECT_EQ(QFileInfo(second + "/proxy.mp4").size(), proxy) << "the flight waits in Pending";
    EXPECT_TRUE(QDir(library + "/staging").entryList(QDir::AllEntries | QDir::NoDotAndDotDot).isEmpty())
        << "the library keeps nothing half-sent";

    // The pilot makes room: the next run sends it.
    httplib::Client http(server.base().toStdString());
    ASSERT_EQ(http.Delete("/api/flights/20240102_050000_0001")->status, 200);
    run = ingestPending(work, server.base());
    out = ingestOutput(*run);
    EXPECT_EQ(run->exitCode(), 0) << out.toStdString();
    EXPECT_EQ(sizeInLibrary(library, "20240102_050000_0002"), proxy);
}
