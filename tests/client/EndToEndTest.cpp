// The client against the real library server: every call the server answers, made the way the
// app makes it, with the server's own replies decoded by the client's records.
#include "APIError.h"
#include "CoroTest.h"
#include "TestServer.h"

#include "APIClient.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QDir>
#include <QFile>

namespace fs = std::filesystem;

namespace {
const QString flightId = QStringLiteral("20240102_030405_0007");

// Kept-alive connections closed before the server stops, so it needn't wait them out.
void closeConnections(const APIClient &client)
{
    client.network()->clearConnectionCache();
    QCoreApplication::processEvents();
}

class EndToEnd : public ::testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        // One flight folder for the whole suite: real ffmpeg makes its proxy and thumbnail.
        folder = new QTemporaryDir;
        makeFlightFolder(fs::path(folder->path().toStdString()) / "flight", 2.0);
    }
    static void TearDownTestSuite()
    {
        delete folder;
        folder = nullptr;
    }
    ~EndToEnd() override { closeConnections(client); }
    static fs::path flightFolder() { return fs::path(folder->path().toStdString()) / "flight"; }

    void upload()
    {
        const auto commit = uploadFlight(*server.client(), flightId.toStdString(), flightFolder());
        ASSERT_TRUE(commit && commit->status == 200) << (commit ? commit->body : "no reply");
    }

    static inline QTemporaryDir *folder = nullptr;
    TestServer server;
    APIClient client{QString::fromStdString(server.base()), std::nullopt};
};

PoolClip findPool(const QList<PoolClip> &pool, const QString &clipId)
{
    for (const auto &c : pool) {
        if (c.clipId == clipId)
            return c;
    }
    ADD_FAILURE() << "no pool clip " << clipId.toStdString();
    return {};
}
} // namespace

TEST_F(EndToEnd, FlightsTrackAndHiddenSet)
{
    auto flights = run(client.fetchManifest());
    ASSERT_TRUE(flights.ok()) << flights.errorText().toStdString();
    EXPECT_TRUE(flights->isEmpty());
    upload();

    flights = run(client.fetchManifest());
    ASSERT_TRUE(flights.ok()) << flights.errorText().toStdString();
    ASSERT_EQ(flights->size(), 1);
    EXPECT_EQ(flights->at(0).id, flightId);

    const auto track = run(client.fetchTrack(flightId));
    ASSERT_TRUE(track.ok()) << track.errorText().toStdString();
    EXPECT_FALSE(track->isEmpty());
    // A new flight has no moments or clips yet: empty, not an error.
    EXPECT_TRUE(run(client.fetchMoments(flightId))->isEmpty());
    EXPECT_TRUE(run(client.fetchClips(flightId))->isEmpty());
    EXPECT_EQ(run(client.fetchTrack("nothing-here")).errorText(), "Server returned 404.");

    ASSERT_TRUE(run(client.setHidden(flightId, true)).ok());
    EXPECT_EQ(*run(client.fetchHidden()), QSet<QString>{flightId});
    ASSERT_TRUE(run(client.setHidden(flightId, false)).ok());
    EXPECT_TRUE(run(client.fetchHidden())->isEmpty());

    const auto proxy = run(client.downloadToTemporary(client.proxyURL(flightId, false, false).path().mid(1),
                                                      QStringLiteral("aeroloom-e2e-proxy.mp4")));
    ASSERT_TRUE(proxy.ok()) << proxy.errorText().toStdString();
    QFile downloaded(*proxy);
    EXPECT_EQ(downloaded.size(), qint64(fs::file_size(flightFolder() / "proxy.mp4")));
    QFile::remove(*proxy);

    ASSERT_TRUE(run(client.deleteFlight(flightId)).ok());
    EXPECT_TRUE(run(client.fetchManifest())->isEmpty());
}

TEST_F(EndToEnd, ClipsKeptTossedAndRetrimmed)
{
    upload();
    QList<Clip> clips(3);
    clips[0] = {QStringLiteral("mine"), 0.2, 0.8, QStringLiteral("Mine"), std::nullopt, std::nullopt};
    clips[1] = {QStringLiteral("s1"), 0.5, 1.0, QString(), true, QStringLiteral("fast climb")};
    clips[2] = {QStringLiteral("s2"), 1.2, 1.9, QString(), true, QStringLiteral("orbit")};
    ASSERT_TRUE(run(client.saveClips(flightId, clips)).ok());

    EXPECT_EQ(*run(client.fetchClips(flightId)), clips);
    EXPECT_EQ(*run(client.fetchClipCounts()), (QHash<QString, int>{{flightId, 1}}));
    auto pool = run(client.fetchPoolClips());
    ASSERT_TRUE(pool.ok()) << pool.errorText().toStdString();
    ASSERT_EQ(pool->size(), 3);

    // Keep the first suggestion, retrim the second (which keeps it too), then toss the mine twice.
    EXPECT_TRUE(run(client.keepClip(findPool(*pool, "s1"))));
    const double in = std::round(1.234 * 100) / 100;
    const double out = std::round(1.876 * 100) / 100;
    EXPECT_TRUE(run(client.retrimClip(findPool(*pool, "s2"), in, out)));
    EXPECT_TRUE(run(client.tossClip(findPool(*pool, "mine"))));
    EXPECT_TRUE(run(client.tossClip(findPool(*pool, "mine"))));

    const auto after = run(client.fetchClips(flightId));
    ASSERT_TRUE(after.ok());
    ASSERT_EQ(after->size(), 2);
    EXPECT_EQ(after->at(0).id, "s1");
    EXPECT_FALSE(after->at(0).autoSuggested);
    EXPECT_EQ(after->at(0).why, "fast climb");  // what the edit didn't touch survives
    EXPECT_EQ(after->at(1).start, 1.23);
    EXPECT_EQ(after->at(1).end, 1.88);
    EXPECT_FALSE(after->at(1).autoSuggested);
    EXPECT_EQ(*run(client.fetchClipCounts()), (QHash<QString, int>{{flightId, 2}}));

    const auto stored = Wire::parse(*run(client.getJSON(QStringLiteral("flights/%1/clips.json").arg(flightId))));
    ASSERT_TRUE(stored);
    EXPECT_EQ((*stored)["dismissed"], Wire::Json::parse(R"([{"in":0.2,"out":0.8},{"in":0.2,"out":0.8}])"));

    // A flight the server doesn't have: the read fails, and so does the edit, quietly.
    PoolClip stranger = findPool(*pool, "s1");
    stranger.flightId = "unknown";
    EXPECT_FALSE(run(client.keepClip(stranger)));
}

TEST_F(EndToEnd, StoriesAndTheirCutList)
{
    upload();
    ReelItem item;
    item.flightId = flightId;
    item.clipId = "c1";
    item.start = 0.5;
    item.end = 1.5;
    item.label = "Ridge";
    auto created = run(client.createProject(QStringLiteral("Cliffs at Dawn"), {item, item}));
    ASSERT_TRUE(created.ok()) << created.errorText().toStdString();
    EXPECT_EQ(created->items.size(), 2);
    EXPECT_NE(created->items[0].uid, created->items[1].uid);
    const QString id = created->id;

    const auto bare = run(client.createProject(QStringLiteral("Empty")));
    ASSERT_TRUE(bare.ok()) << bare.errorText().toStdString();
    EXPECT_TRUE(bare->items.isEmpty());

    Project edited = *created;
    edited.title = QStringLiteral("Cliffs at Dusk");
    edited.items.removeLast();
    ASSERT_TRUE(run(client.saveProject(edited)).ok());
    const auto fetched = run(client.fetchProject(id));
    ASSERT_TRUE(fetched.ok());
    EXPECT_EQ(fetched->title, "Cliffs at Dusk");
    EXPECT_EQ(fetched->notes.value_or(QStringLiteral("?")), "");
    EXPECT_EQ(fetched->items.size(), 1);

    const auto list = run(client.fetchProjects());
    ASSERT_TRUE(list.ok()) << list.errorText().toStdString();
    ASSERT_EQ(list->size(), 2);

    const auto edl = run(client.fetchEDL(id));
    ASSERT_TRUE(edl.ok()) << edl.errorText().toStdString();
    EXPECT_EQ(edl->edl.count, 1);
    ASSERT_EQ(edl->edl.items.size(), 1);
    EXPECT_EQ(edl->edl.items[0].seq, 1);
    EXPECT_EQ(edl->edl.items[0].flightId, flightId);
    EXPECT_TRUE(edl->text.startsWith("{\n  \"count\": 1,"));
    EXPECT_EQ(run(client.fetchEDL(id))->text, edl->text);

    ASSERT_TRUE(run(client.deleteProject(id)).ok());
    EXPECT_EQ(run(client.fetchProject(id)).errorText(), "Server returned 404.");
}

TEST_F(EndToEnd, MusicTracksCanBeFetched)
{
    const auto tracks = run(client.fetchMusic());
    ASSERT_TRUE(tracks.ok()) << tracks.errorText().toStdString();
    ASSERT_FALSE(tracks->isEmpty());
    const auto file = run(client.downloadToTemporary(QStringLiteral("music/") + tracks->first(),
                                                     QStringLiteral("aeroloom-e2e-music")));
    ASSERT_TRUE(file.ok()) << file.errorText().toStdString();
    EXPECT_GT(QFile(*file).size(), 1000);
    QFile::remove(*file);
}

TEST(EndToEndSamples, RemovedAndRestored)
{
    TestServer server([](ServerConfig &c) {
        c.samples = true;
        c.sampleSeconds = 2;
    });
    APIClient client(QString::fromStdString(server.base()), std::nullopt);
    auto samples = run(client.fetchSamples());
    ASSERT_TRUE(samples.ok()) << samples.errorText().toStdString();
    ASSERT_GT(samples->count, 0);
    EXPECT_GT(samples->bytes, 0);
    const int count = samples->count;

    ASSERT_TRUE(run(client.removeSamples()).ok());
    samples = run(client.fetchSamples());
    EXPECT_EQ(samples->count, 0);
    EXPECT_EQ(samples->restorable, count);
    EXPECT_TRUE(run(client.fetchManifest())->isEmpty());

    ASSERT_TRUE(run(client.restoreSamples()).ok());
    EXPECT_EQ(run(client.fetchSamples())->count, count);
    EXPECT_EQ(run(client.fetchManifest())->size(), count);
    closeConnections(client);
}

TEST(EndToEndToken, WebSessionAndStrangers)
{
    TestServer server([](ServerConfig &c) { c.auth = AuthMode::Token; });
    const QString base = QString::fromStdString(server.base());
    APIClient client(base, QStringLiteral("Bearer ") + QString::fromStdString(server.server().createToken("p@x.org")));
    const auto cookie = run(client.webSessionCookie());
    ASSERT_TRUE(cookie.has_value());
    EXPECT_EQ(cookie->domain(), "127.0.0.1");
    EXPECT_FALSE(cookie->value().isEmpty());
    EXPECT_GT(cookie->expirationDate(), QDateTime::currentDateTimeUtc());

    APIClient stranger(base, QStringLiteral("Bearer nope"));
    EXPECT_FALSE(run(stranger.webSessionCookie()).has_value());
    const auto clips = run(stranger.fetchClips(flightId));
    ASSERT_FALSE(clips.ok());
    EXPECT_TRUE(APIError::isUnauthorized(clips.failure()));
    PoolClip any;
    any.flightId = flightId;
    EXPECT_FALSE(run(stranger.keepClip(any)));
    closeConnections(client);
    closeConnections(stranger);
}
