// The uploader and the import queue against a real library server on loopback.
#include "FlightUploader.h"
#include "IngestQueue.h"

#include "APIClient.h"
#include "CoroTest.h"
#include "TestServer.h"
#include "UploadError.h"

#include <QDir>
#include <QSignalSpy>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace std::chrono_literals;

namespace {

std::shared_ptr<APIClient> clientOf(const TestServer &server)
{
    return std::make_shared<APIClient>(QString::fromStdString(server.base()), std::nullopt);
}

QString folderOf(const std::filesystem::path &p)
{
    return QString::fromStdString(p.string());
}

} // namespace

TEST(UploadEndToEnd, AFolderBecomesAFlightInTheLibrary)
{
    TestServer server;
    QTemporaryDir work;
    const auto folder = makeFlightFolder(work.path().toStdString() + "/DJI_0001");
    FlightUploader uploader(clientOf(server));

    QStringList files;
    const auto analysis = run(uploader.upload("20240512_093015_0001", folderOf(folder), [&](const QString &name, double) {
        if (files.isEmpty() || files.last() != name)
            files << name;
    }));
    ASSERT_TRUE(analysis.ok()) << analysis.errorText().toStdString();
    EXPECT_EQ(*analysis, QStringLiteral("ok"));  // nothing in two seconds of flight to suggest
    EXPECT_EQ(files, QStringList({"flight.json", "thumb.jpg", "proxy.mp4"}));

    const auto library = run(uploader.library());
    ASSERT_TRUE(library.ok());
    EXPECT_TRUE(library->ids.contains("20240512_093015_0001"));
    EXPECT_GT(library->used, 0);
    const auto manifest = jsonOf(server.client()->Get("/manifest.json"));
    EXPECT_NE(manifest.dump().find("20240512_093015_0001"), std::string::npos);
}

TEST(UploadEndToEnd, QuotaAndBrokenFlightFileAreRefusedWithTheirWords)
{
    TestServer server([](ServerConfig &c) { c.quota = 1000; });
    QTemporaryDir work;
    const auto folder = makeFlightFolder(work.path().toStdString() + "/F");
    FlightUploader uploader(clientOf(server));
    const auto refused = run(uploader.upload("F1", folderOf(folder), {}));
    ASSERT_FALSE(refused.ok());
    EXPECT_TRUE(refused.errorText().startsWith(QStringLiteral("Storage quota exceeded — ")) ||
                refused.errorText().startsWith(QStringLiteral("Server rejected the flight (413)")))
        << refused.errorText().toStdString();
    run(uploader.discardStaging("F1"));

    TestServer roomy;
    FlightUploader second(clientOf(roomy));
    writeFile(folder / "flight.json", "{\"meta\": {\"model\": ");
    const auto broken = run(second.upload("F2", folderOf(folder), {}));
    ASSERT_FALSE(broken.ok());
    EXPECT_TRUE(broken.errorText().startsWith(QStringLiteral("Server rejected the flight (4"))) << broken.errorText().toStdString();
    EXPECT_FALSE(run(second.library())->ids.contains("F2")) << "no half flight is ever visible";
}

TEST(UploadEndToEnd, TheQueueSkipsWhatTheLibraryHasAndUploadsTheRest)
{
    TestServer server;
    QTemporaryDir work;
    FlightUploader uploader(clientOf(server));
    ASSERT_TRUE(run(uploader.upload("OLD", folderOf(makeFlightFolder(work.path().toStdString() + "/old")), {})).ok());

    IngestQueue::Services services;
    services.client = clientOf(server);
    services.workRoot = work.filePath("Aeroloom");
    services.process = [](QString, std::optional<QString>, QString dir, bool, std::function<void(double)>,
                          CancelToken *) -> QCoro::Task<Result<void>> {
        makeFlightFolder(dir.toStdString());
        co_return Result<void>();
    };
    IngestQueue queue(services);
    queue.add({FoundFlight{"/card/OLD.MP4", "OLD", {}, {}}, FoundFlight{"/card/NEW.MP4", "NEW", {}, {}}});
    QSignalSpy imported(&queue, &IngestQueue::flightImported);
    QSignalSpy finished(&queue, &IngestQueue::finished);
    queue.start();
    ASSERT_TRUE(finished.wait(60000));
    EXPECT_EQ(queue.items().at(0).phase.text(), QStringLiteral("Already in library"));
    EXPECT_EQ(queue.items().at(1).phase.text(), QStringLiteral("Done"));
    EXPECT_EQ(imported.count(), 1);
    EXPECT_EQ(queue.summary(), QStringLiteral("2 flights · 1 uploaded · 1 already there"));
    EXPECT_TRUE(run(uploader.library())->ids.contains("NEW"));
    EXPECT_FALSE(QDir(work.filePath("Aeroloom/Pending/NEW")).exists());
}
