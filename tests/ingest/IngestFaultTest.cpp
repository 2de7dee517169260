// Faults a pilot's import meets: the program killed mid-run, a corrupt clip on the card.
#include "DjiTelemetry.h"
#include "ProcessRunner.h"
#include "TestPaths.h"
#include "TestServer.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QRandomGenerator>
#include <QSet>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

QString cli()
{
    return TestPaths::buildDir() + QStringLiteral("/src/cli/aeroloom-cli");
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
