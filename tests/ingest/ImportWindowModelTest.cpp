#include "ImportWindowModel.h"

#include "ImportSummary.h"
#include "IngestQueue.h"
#include "CoroTest.h"

#include <QDir>
#include <QFile>
#include <QSignalSpy>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

void writeFile(const QString &path, const QByteArray &bytes)
{
    QDir().mkpath(QFileInfo(path).absolutePath());
    QFile f(path);
    ASSERT_TRUE(f.open(QIODevice::WriteOnly));
    f.write(bytes);
}

std::unique_ptr<IngestQueue> makeQueue(const QString &root)
{
    IngestQueue::Services services;
    services.client = nullptr;
    services.workRoot = root;
    return std::make_unique<IngestQueue>(services);
}

} // namespace

TEST(ImportWindowModel, FinishedAndReadyWords)
{
    EXPECT_EQ(ImportSummary::finished(2, 0, 1), QStringLiteral("2 flights added to your library, 1 didn't make it — try again any time."));
    EXPECT_EQ(ImportSummary::finished(0, 3, 0), QStringLiteral("3 already there. You can close this window."));
    EXPECT_EQ(ImportSummary::finished(0, 0, 1), QStringLiteral("1 flight didn't make it — try again any time."));
    EXPECT_EQ(ImportSummary::finished(1, 0, 0), QStringLiteral("1 flight added to your library. You can close this window."));
    EXPECT_EQ(ImportSummary::finished(0, 0, 0), QStringLiteral("Nothing to add. You can close this window."));
    EXPECT_EQ(ImportSummary::readyFooter(1), QStringLiteral("1 flight ready — nothing has been added yet."));
    EXPECT_EQ(ImportSummary::readyFooter(3), QStringLiteral("3 flights ready — nothing has been added yet."));
    EXPECT_EQ(ImportWindowModel::scanPermissionMessage("DJI SD"), QStringLiteral("Click Open to let Ornivale scan “DJI SD” for flights."));
}

TEST(ImportWindowModel, FolderAndLooseFilesGoTheirOwnWaysAndTheStateFollows)
{
    QTemporaryDir dir;
    auto queue = makeQueue(dir.filePath("Aeroloom"));
    ImportWindowModel model(queue.get(), nullptr);
    EXPECT_EQ(model.state(), ImportWindowModel::State::Idle);

    writeFile(dir.filePath("card/DCIM/100MEDIA/DJI_20240102030405_0001.LRF"), "x");
    writeFile(dir.filePath("loose/DJI_20240102040000_0002.MP4"), "x");
    writeFile(dir.filePath("loose/DJI_20240102050000_0003.MOV"), "x");
    writeFile(dir.filePath("loose/readme.txt"), "x");
    model.addUrls({QUrl::fromLocalFile(dir.filePath("card")), QUrl::fromLocalFile(dir.filePath("loose/DJI_20240102040000_0002.MP4")),
                   QUrl::fromLocalFile(dir.filePath("loose/DJI_20240102050000_0003.MOV")),
                   QUrl::fromLocalFile(dir.filePath("loose/readme.txt"))});
    ASSERT_TRUE(waitUntil([&] { return queue->rowCount() == 3 && !model.scanning(); }));
    EXPECT_EQ(model.state(), ImportWindowModel::State::Ready);
    EXPECT_EQ(model.readyFooter(), QStringLiteral("3 flights ready — nothing has been added yet."));
}

TEST(ImportWindowModel, AMovieWithoutAFileIsCopiedIntoTheInboxAndReplacesAnEarlierOne)
{
    QTemporaryDir dir;
    auto queue = makeQueue(dir.filePath("Aeroloom"));
    ImportWindowModel model(queue.get(), nullptr);
    writeFile(dir.filePath("tmp1/DJI_20240102040000_0002.MP4"), "first");
    writeFile(dir.filePath("tmp2/DJI_20240102040000_0002.MP4"), "second");
    ASSERT_TRUE(model.addDroppedMovie(dir.filePath("tmp1/DJI_20240102040000_0002.MP4")));
    ASSERT_TRUE(model.addDroppedMovie(dir.filePath("tmp2/DJI_20240102040000_0002.MP4")));
    QFile copy(dir.filePath("Aeroloom/Inbox/DJI_20240102040000_0002.MP4"));
    ASSERT_TRUE(copy.open(QIODevice::ReadOnly));
    EXPECT_EQ(copy.readAll(), "second");
    ASSERT_TRUE(waitUntil([&] { return queue->rowCount() == 1; }));
    EXPECT_FALSE(model.addDroppedMovie(dir.filePath("no/such.mp4")));

    // Removing a flight that came through the Inbox removes its copy too.
    queue->remove(queue->items().first().id);
    EXPECT_FALSE(copy.exists());
}

TEST(ImportWindowModel, AVolumeThatCannotBeListedAsksForTheFolder)
{
    QTemporaryDir dir;
    auto queue = makeQueue(dir.filePath("Aeroloom"));
    ImportWindowModel model(queue.get(), nullptr);
    EXPECT_FALSE(model.scanVolume(dir.filePath("unplugged")));
    writeFile(dir.filePath("card/DCIM/100MEDIA/DJI_20240102030405_0001.MP4"), "x");
    EXPECT_TRUE(model.scanVolume(dir.filePath("card")));
    ASSERT_TRUE(waitUntil([&] { return queue->rowCount() == 1; }));
}
