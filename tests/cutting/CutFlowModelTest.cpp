// The cut window's model against a real library server and real ffmpeg: stories in, rows
// planned against folders of originals, a batch, another folder for the missing ones, and the
// story video with its music bed.
#include "CutTestKit.h"

#include <CutFlowModel.h>
#include <Preferences.h>

#include <CoroTest.h>
#include <CutOriginals.h>
#include <Fixtures.h>

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QScopeGuard>
#include <QSignalSpy>
#include <QTemporaryDir>

using namespace CutTestKit;
using nlohmann::json;
using Kind = CutPlanRow::Status::Kind;

namespace {

class CutFlow : public ::testing::Test
{
protected:
    /// Two cards of originals and a library whose story wants three clips: one from each card
    /// and one whose original is on neither.
    static void SetUpTestSuite()
    {
        cards = new QTemporaryDir;
        QDir().mkpath(cards->filePath("A/DCIM/100MEDIA"));
        QDir().mkpath(cards->filePath("B"));
        // Thirty frames a second: the crossfade (15 frames) and the clips fall on whole frames.
        ASSERT_TRUE(Fixtures::makeOriginal(cards->filePath("A/DCIM/100MEDIA/DJI_20240102030405_0001_D.MP4"),
                                           {4.0, 320, 240, 30, 30, true, std::nullopt, "ultrafast"})
                        .ok());
        ASSERT_TRUE(Fixtures::writeFile(cards->filePath("A/DCIM/100MEDIA/DJI_20240102030405_0001_D.SRT"),
                                        Fixtures::srtText(Fixtures::straightPath(100, 0.04)))
                        .ok());
        ASSERT_TRUE(Fixtures::makeOriginal(cards->filePath("B/dji_20240102030405_0002_d.mp4"),
                                           {3.0, 320, 240, 30, 30, true, 90, "ultrafast"})
                        .ok());
    }
    static void TearDownTestSuite()
    {
        delete cards;
        cards = nullptr;
    }

    void SetUp() override
    {
        library.addFlight("f1", "DJI_20240102030405_0001_D.MP4");
        library.addFlight("f2", "DJI_20240102030405_0002_D.MP4");
        library.addFlight("f3", "DJI_20240102030405_0003_D.MP4");
        library.addTrack("01.Short Bed.m4a", 0.5);
        storyId = library.addStory("Ridge Run!", json::array({{{"flightId", "f1"}, {"in", 0.5}, {"out", 2.0}, {"label", "Ridge"}},
                                                              {{"flightId", "f2"}, {"in", 1.0}, {"out", 2.2}, {"label", "Tower"}},
                                                              {{"flightId", "f3"}, {"in", 0.0}, {"out", 1.0}, {"label", "Lake"}}}));
        model = makeModel();
    }

    void TearDown() override
    {
        // The server waits for open keep-alive connections when it stops; close them now.
        client->network()->clearConnectionCache();
    }
    std::unique_ptr<CutFlowModel> makeModel()
    {
        return std::make_unique<CutFlowModel>(client, &prefs);
    }
    void openStory()
    {
        run(model->load());
        ASSERT_EQ(model->error(), QString());
        ASSERT_EQ(model->reels().size(), 1);
        run(model->chooseReel(model->reels().first()));
        ASSERT_TRUE(model->hasEdl());
    }
    void runBatch()
    {
        QSignalSpy finished(model.get(), &CutFlowModel::finished);
        model->start();
        // With nothing to cut it may be over before start() returns.
        ASSERT_TRUE(!finished.isEmpty() || finished.wait(60000));
        EXPECT_FALSE(model->running());
    }
    QList<Kind> kinds() const
    {
        QList<Kind> out;
        for (const auto &row : model->rows())
            out << row.status.kind;
        return out;
    }

    static inline QTemporaryDir *cards = nullptr;
    StoryLibrary library;
    QTemporaryDir dir;
    Preferences prefs{dir.filePath("prefs.ini")};
    std::string storyId;
    std::shared_ptr<APIClient> client = std::make_shared<APIClient>(library.base(), std::nullopt);
    std::unique_ptr<CutFlowModel> model;
};

} // namespace

TEST_F(CutFlow, AnotherFolderFindsTheMissingWithoutLosingTheBatch)
{
    model->chooseOutputRoot(dir.filePath("Cuts"));
    run(model->chooseOriginals(cards->filePath("A"), false));
    openStory();
    EXPECT_EQ(model->reelsList().first().toMap().value("countText"), QStringLiteral("3 clips"));
    EXPECT_EQ(model->reelFolder(), dir.filePath("Cuts/ridge-run"));
    EXPECT_EQ(kinds(), (QList<Kind>{Kind::pending, Kind::missingSource, Kind::missingSource}));
    EXPECT_EQ(model->indexText(), QStringLiteral("1 videos indexed"));
    EXPECT_EQ(model->missingText(), QStringLiteral("2 clips have no original in this folder — copy cards verbatim "
                                                   "(not via Photos, which renames files)."));
    EXPECT_EQ(model->actionText(), QStringLiteral("Cut 1 Clip"));

    runBatch();
    EXPECT_EQ(kinds(), (QList<Kind>{Kind::done, Kind::missingSource, Kind::missingSource}));
    EXPECT_TRUE(QFile::exists(dir.filePath("Cuts/ridge-run/ridge-run_01.mp4")));
    EXPECT_TRUE(QFile::exists(dir.filePath("Cuts/ridge-run/ridge-run_01.SRT")));

    // The second card, named in another case, resolves one more; the done row stays done.
    run(model->chooseOriginals(cards->filePath("B"), true));
    EXPECT_EQ(kinds(), (QList<Kind>{Kind::done, Kind::pending, Kind::missingSource}));
    EXPECT_EQ(model->missingText().left(32), QStringLiteral("1 clip have no original in this "));
    runBatch();
    EXPECT_EQ(kinds(), (QList<Kind>{Kind::done, Kind::done, Kind::missingSource}));
    EXPECT_EQ(model->doneText(), QStringLiteral("2 done"));

    // Only the primary folder is remembered; a new window finds the cut clips already there.
    auto reopened = makeModel();
    EXPECT_EQ(reopened->originalsFolder(), cards->filePath("A"));
    EXPECT_EQ(reopened->outputRoot(), dir.filePath("Cuts"));
    model = std::move(reopened);
    openStory();
    EXPECT_EQ(kinds(), (QList<Kind>{Kind::existing, Kind::missingSource, Kind::missingSource}));
    model->setForce(true);
    EXPECT_EQ(kinds(), (QList<Kind>{Kind::pending, Kind::missingSource, Kind::missingSource}));
}

TEST_F(CutFlow, TheStoryIsMadeFromEveryCutClipWithItsBed)
{
    // The bed goes through the temporary folder and must leave it; a folder of this test's own,
    // so a bed another test is using at the same moment in the shared one isn't counted.
    QTemporaryDir temp;
    const QByteArray sharedTemp = qgetenv("TMPDIR");
    qputenv("TMPDIR", QFile::encodeName(temp.path()));
    const auto restore = qScopeGuard([&] {
        if (sharedTemp.isNull())
            qunsetenv("TMPDIR");
        else
            qputenv("TMPDIR", sharedTemp);
    });
    model->chooseOutputRoot(dir.filePath("Cuts"));
    run(model->chooseOriginals(cards->filePath("A"), false));
    openStory();
    run(model->chooseOriginals(cards->filePath("B"), true));
    model->setMakeStory(true);
    model->setTrack("01.Short Bed.m4a");
    runBatch();
    ASSERT_EQ(model->stitch().kind, StitchState::Kind::done) << model->stitchText().toStdString();
    const QString story = dir.filePath("Cuts/ridge-run/ridge-run_story.mp4");
    EXPECT_EQ(model->stitch().url, story);

    // As long as the clips, less one crossfade.
    const double total = duration(model->rows()[0].outURL) + duration(model->rows()[1].outURL) - 0.5;
    EXPECT_NEAR(streamDuration(story, "v:0").value_or(0), total, 1.0 / 30 + 1e-3);
    // The half-second bed loops under the whole story.
    EXPECT_NEAR(streamDuration(story, "a:0").value_or(0), total, 0.05);
    EXPECT_TRUE(QFile::exists(dir.filePath("Cuts/ridge-run/ridge-run_story.gpx")));
    EXPECT_TRUE(QDir(temp.path()).entryList({"story_bed_*"}).isEmpty());

    // Nothing left to cut: the button makes the story again, from the clips already there.
    EXPECT_EQ(model->actionText(), QStringLiteral("Make Story Video"));
    model->setStoryVertical(true);
    model->setTrack("none");
    runBatch();
    ASSERT_EQ(model->stitch().kind, StitchState::Kind::done) << model->stitchText().toStdString();
    EXPECT_TRUE(model->stitch().url.endsWith("ridge-run_story_vertical.mp4"));
    EXPECT_FALSE(streamDuration(model->stitch().url, "a:0").has_value());
}

TEST_F(CutFlow, AStoryThatCannotBeMadeLeavesNoFile)
{
    model->chooseOutputRoot(dir.filePath("Cuts"));
    openStory();
    model->setMakeStory(true);
    // No originals folder: nothing is cut, so there is nothing to join.
    EXPECT_EQ(model->actionText(), QStringLiteral("Make Story Video"));
    runBatch();
    EXPECT_EQ(model->stitch(), StitchState::failed("No cut clips to stitch"));

    run(model->chooseOriginals(cards->filePath("A"), false));
    model->setTrack("gone.m4a");
    runBatch();
    ASSERT_EQ(model->stitch().kind, StitchState::Kind::failed);
    EXPECT_EQ(model->stitchText(), QStringLiteral("Server returned 404."));
    EXPECT_EQ(model->rows().first().status.kind, Kind::done);
    EXPECT_FALSE(QFile::exists(model->storyURL()));
}

TEST_F(CutFlow, FailedFetchesSayWhatFailed)
{
    run(model->chooseReel(ProjectSummary{"nope", "Nope", 0, {}, {}, {}}));
    EXPECT_TRUE(model->error().startsWith(QStringLiteral("Couldn't fetch the cut list: "))) << model->error().toStdString();
    EXPECT_FALSE(model->hasEdl());
    model->dismissError();
    EXPECT_EQ(model->error(), QString());

    CutFlowModel offline(std::make_shared<APIClient>(QStringLiteral("http://127.0.0.1:1"), std::nullopt), nullptr);
    run(offline.load());
    EXPECT_TRUE(offline.error().startsWith(QStringLiteral("Couldn't load stories: "))) << offline.error().toStdString();
    EXPECT_FALSE(offline.loading());
    EXPECT_EQ(offline.musicChoices().size(), 2);
}
