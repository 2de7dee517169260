// The library's 3D page: what its web session opens and what it doesn't, the page and its 3D
// library served from the server itself, and the page flying a flight in headless Chromium
// over the tile host's ground or, without one, over a grid.
#include "LoopbackTiles.h"
#include "PageScript.h"
#include "TestPaths.h"
#include "TheaterLibrary.h"

#include <QDir>
#include <QFile>

#include <gtest/gtest.h>

#include <algorithm>

namespace {

const std::string flight = TheaterLibrary::flightId;

std::string flightPath(const std::string &file, const std::string &id = flight)
{
    return "/flights/" + id + "/" + file;
}

nlohmann::json openInBrowser(TheaterLibrary &library, const QStringList &extra,
                             const char *id = TheaterLibrary::flightId)
{
    return runPageScript(QStringLiteral("tests/server/theater_page.mjs"),
                         QStringList{QStringLiteral("--url=%1").arg(QString::fromStdString(library.base())),
                                     QStringLiteral("--id=%1").arg(QLatin1String(id))}
                             + extra,
                         120000);
}

/// The page flew: it read every sample, drew something in WebGL, and its video played.
void expectFlown(const nlohmann::json &r, int samples)
{
    ASSERT_EQ(r.value("state", ""), "ready") << r.dump(2);
    EXPECT_EQ(r.value("samples", 0), samples);
    EXPECT_GT(r.value("drawn", 0), 1);
    EXPECT_LT(r.value("drawn", 0), samples);
    // Pixels unlike the background (a cleared canvas has none; a grid of thin lines, the path and
    // the aircraft cover about a hundredth), in more colours than a flat ground would give.
    EXPECT_GT(r["picture"].value("share", 0.0), 0.005) << r.dump(2);
    EXPECT_GE(r["picture"].value("colours", 0), 12) << r.dump(2);
    EXPECT_GT(r.value("videoTimeAfter", 0.0), r.value("videoTimeBefore", 0.0) + 0.5) << r.dump(2);
    EXPECT_TRUE(r.value("playing", false));
    // The readouts follow the flight: whole numbers where the aircraft gave speed and height.
    for (const char *readout : {"speed", "altitude"}) {
        const std::string text = r.value(readout, "");
        EXPECT_TRUE(!text.empty() && std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; }))
            << readout << ": " << text;
    }
    EXPECT_TRUE(r["errors"].empty()) << r.dump(2);
    EXPECT_TRUE(r["foreign"].empty()) << r.dump(2);
}

/// One library for the whole suite: the tests only read it.
class Theater : public ::testing::Test
{
protected:
    static void SetUpTestSuite() { shared = new TheaterLibrary(); }
    static void TearDownTestSuite()
    {
        delete shared;
        shared = nullptr;
    }
    static inline TheaterLibrary *shared = nullptr;
    TheaterLibrary &library = *shared;
};

} // namespace

TEST_F(Theater, TheSessionCookieOpensThePageAndItsMediaOnly)
{
    const httplib::Headers session{{"Cookie", library.cookie()}};
    auto client = library.server().client();

    const auto page = client->Get(("/theater.html?id=" + flight).c_str(), session);
    ASSERT_TRUE(page);
    EXPECT_EQ(page->status, 200);
    EXPECT_EQ(page->get_header_value("Content-Type").rfind("text/html", 0), 0u);
    EXPECT_NE(page->get_header_value("Content-Security-Policy").find("script-src 'self'"), std::string::npos);
    EXPECT_EQ(page->get_header_value("Referrer-Policy"), "no-referrer");
    EXPECT_EQ(client->Get(flightPath("flight.json").c_str(), session)->status, 200);
    EXPECT_EQ(client->Get(flightPath("thumb.jpg").c_str(), session)->status, 200);
    httplib::Headers ranged = session;
    ranged.emplace("Range", "bytes=0-99");
    const auto video = client->Get(flightPath("proxy.mp4").c_str(), ranged);
    EXPECT_EQ(video->status, 206);
    EXPECT_EQ(video->body.size(), 100u);

    // Nothing else: not the flight list, the account, the flight's other files, nor any change.
    for (const std::string &path : std::vector<std::string>{"/manifest.json", "/api/me", "/api/flights", "/api/projects",
                                                            flightPath("clips.json"), flightPath("moments.json")})
        EXPECT_EQ(client->Get(path.c_str(), session)->status, 401) << path;
    EXPECT_EQ(client->Post("/api/auth/session", session)->status, 401);
    EXPECT_EQ(client->Delete(("/api/flights/" + flight).c_str(), session)->status, 401);
    EXPECT_EQ(client->Get(flightPath("flight.json").c_str(), {{"Authorization", "Bearer " + library.token()}})->status,
              200);

    // A cookie that is not the library's own opens nothing either.
    const httplib::Headers forged{{"Cookie", "aeroloom_session=" + std::string(64, 'a')}};
    EXPECT_EQ(client->Get(flightPath("flight.json").c_str(), forged)->status, 401);
}

TEST_F(Theater, AVisitorWithoutASessionIsAskedToSignInAndLearnsNothing)
{
    auto client = library.server().client();
    const auto page = client->Get(("/theater.html?id=" + flight).c_str());
    ASSERT_TRUE(page);
    EXPECT_EQ(page->status, 401);
    EXPECT_EQ(page->get_header_value("Content-Type").rfind("text/html", 0), 0u);
    // No prompt of the browser's own: the page asks in its words.
    EXPECT_FALSE(page->has_header("WWW-Authenticate"));
    EXPECT_NE(page->body.find("Sign in"), std::string::npos);
    EXPECT_EQ(page->body.find(flight), std::string::npos);
    EXPECT_EQ(page->body.find("Saltmarsh"), std::string::npos);

    const auto r = openInBrowser(library, {QStringLiteral("--shot=theater-page-signin")});
    ASSERT_FALSE(r.contains("error")) << r.dump(2);
    EXPECT_EQ(r.value("state", ""), "signin");
    EXPECT_NE(r.value("text", "").find("Sign in to watch this flight in 3D"), std::string::npos) << r.dump(2);
    EXPECT_TRUE(r["media"].empty()) << r.dump(2);  // the sign-in page asks nothing of the flight
}

TEST_F(Theater, ItsScriptsAndThe3DLibraryComeFromTheServerItself)
{
    auto client = library.server().client();
    const auto three = client->Get("/web/three.module.min.js");
    ASSERT_TRUE(three);
    EXPECT_EQ(three->status, 200);
    EXPECT_EQ(three->get_header_value("Content-Type").rfind("text/javascript", 0), 0u);
    QFile installed(TestPaths::sourceDir() + "/third_party/web/node_modules/three/build/three.module.min.js");
    ASSERT_TRUE(installed.open(QIODevice::ReadOnly));
    EXPECT_TRUE(three->body == installed.readAll().toStdString());

    // An unchanged script is not sent again.
    const std::string etag = three->get_header_value("ETag");
    ASSERT_FALSE(etag.empty());
    const auto again = client->Get("/web/three.module.min.js", {{"If-None-Match", etag}});
    EXPECT_EQ(again->status, 304);
    EXPECT_TRUE(again->body.empty());

    EXPECT_EQ(client->Get("/web/theater.js")->status, 200);
    for (const char *path : {"/web/nothing.js", "/web/.hidden", "/web/../theater.html", "/web/"})
        EXPECT_EQ(client->Get(path)->status, 404) << path;
}

TEST_F(Theater, FliesTheFlightOverTheTileHostsGround)
{
    LoopbackTiles tiles;
    const auto r = openInBrowser(library, {QStringLiteral("--cookie=%1").arg(QString::fromStdString(library.cookie())),
                                           QStringLiteral("--tiles=%1/dark_all/{z}/{x}/{y}@2x.png").arg(tiles.base()),
                                           QStringLiteral("--shot=theater-page-tiles"),
                                           QStringLiteral("--camera=overview")});
    ASSERT_FALSE(r.contains("error")) << r.dump(2);
    expectFlown(r, library.samples());
    EXPECT_EQ(r.value("ground", ""), "tiles");
    EXPECT_GT(r["picture"].value("share", 0.0), 0.3) << r.dump(2);  // the map lies under much of the view
    EXPECT_GT(r.value("tilesLoaded", 0), 0);
    EXPECT_GT(tiles.served(), 0);
    EXPECT_EQ(r["media"].value(flightPath("flight.json"), 0), 200);
    EXPECT_EQ(r["media"].value(flightPath("proxy.mp4"), 0), 206);
}

TEST_F(Theater, AGridIsTheGroundWhenTheTileHostIsDown)
{
    QString deadHost;
    {
        LoopbackTiles gone;
        deadHost = gone.base();
    }
    const auto r = openInBrowser(library, {QStringLiteral("--cookie=%1").arg(QString::fromStdString(library.cookie())),
                                           QStringLiteral("--tiles=%1/dark_all/{z}/{x}/{y}@2x.png").arg(deadHost),
                                           QStringLiteral("--shot=theater-page-grid")});
    ASSERT_FALSE(r.contains("error")) << r.dump(2);
    expectFlown(r, library.samples());
    EXPECT_EQ(r.value("ground", ""), "grid");
    EXPECT_EQ(r.value("tilesLoaded", -1), 0);
    EXPECT_GT(r.value("tilesFailed", 0), 0);
}

TEST_F(Theater, PlaysTheLightVideoWhereTheLibraryHasMadeOne)
{
    const std::string light = TheaterLibrary::lightFlightId;
    const httplib::Headers session{{"Cookie", library.cookie()}};
    auto client = library.server().client();
    const auto names = [&](const std::string &id) {
        const auto page = client->Get(("/theater.html?id=" + id).c_str(), session);
        return page ? page->body : std::string();
    };
    EXPECT_NE(names(light).find("proxy_480.mp4"), std::string::npos);
    EXPECT_EQ(names(flight).find("proxy_480.mp4"), std::string::npos);
    EXPECT_NE(names(flight).find("proxy.mp4"), std::string::npos);
    // An id that climbs out of its folder finds no light video, even one that is there.
    EXPECT_EQ(names("../flights/" + light).find("proxy_480.mp4"), std::string::npos);

    const auto r = openInBrowser(library, {QStringLiteral("--cookie=%1").arg(QString::fromStdString(library.cookie())),
                                           QStringLiteral("--shot=theater-page-light-video")},
                                 TheaterLibrary::lightFlightId);
    ASSERT_FALSE(r.contains("error")) << r.dump(2);
    expectFlown(r, library.samples());
    EXPECT_EQ(r["media"].value(flightPath("proxy_480.mp4", light), 0), 206) << r.dump(2);
    EXPECT_FALSE(r["media"].contains(flightPath("proxy.mp4", light))) << r.dump(2);
}

TEST_F(Theater, TheFullVideoPlaysWhenAskedForOrWhenTheLightOneWontPlay)
{
    const QString cookie = QStringLiteral("--cookie=%1").arg(QString::fromStdString(library.cookie()));
    const std::string light = TheaterLibrary::lightFlightId;
    const auto hq = openInBrowser(library, {cookie, QStringLiteral("--quality=hq")}, TheaterLibrary::lightFlightId);
    ASSERT_FALSE(hq.contains("error")) << hq.dump(2);
    expectFlown(hq, library.samples());
    EXPECT_EQ(hq["media"].value(flightPath("proxy.mp4", light), 0), 206) << hq.dump(2);
    EXPECT_FALSE(hq["media"].contains(flightPath("proxy_480.mp4", light))) << hq.dump(2);

    const std::string broken = TheaterLibrary::brokenLightFlightId;
    const auto fallen = openInBrowser(library, {cookie}, TheaterLibrary::brokenLightFlightId);
    ASSERT_FALSE(fallen.contains("error")) << fallen.dump(2);
    expectFlown(fallen, library.samples());
    EXPECT_TRUE(fallen["media"].contains(flightPath("proxy_480.mp4", broken))) << fallen.dump(2);
    EXPECT_EQ(fallen["media"].value(flightPath("proxy.mp4", broken), 0), 206) << fallen.dump(2);
    EXPECT_TRUE(fallen.value("videoShown", false)) << fallen.dump(2);
}

TEST(TheaterTrack, ReadoutsUseEverySampleAndTheDrawingStaysCloseSmallAndSmooth)
{
    const auto r = runPageScript(QStringLiteral("tests/server/theater_track.mjs"));
    ASSERT_FALSE(r.contains("error")) << r.dump(2);
    // A straight line is drawn with its two ends, while the gust in its middle still reads.
    EXPECT_EQ(r.value("lineDrawn", 0), 2);
    EXPECT_DOUBLE_EQ(r.value("speedAtGust", 0.0), 23.0);
    EXPECT_DOUBLE_EQ(r.value("speedHalfwayToGust", 0.0), 14.0);
    EXPECT_DOUBLE_EQ(r.value("altitude", 0.0), 30.0);
    // 72,000 samples become a few thousand, none of the rest further than the tolerance away.
    EXPECT_LE(r.value("wavyDrawn", 0), 6000);
    EXPECT_GT(r.value("wavyDrawn", 0), 100);
    EXPECT_TRUE(r.value("wavyEnds", false));
    ASSERT_TRUE(r["wavyTolerance"].is_number()) << r.dump(2);
    EXPECT_LE(r.value("wavyWorstMetres", 99.0), r["wavyTolerance"].get<double>() + 1e-9);
    EXPECT_EQ(r.value("wavyLookupsWrong", -1), 0);
    // Headings turn the short way; heights fall back on the absolute altitude, else read as unknown.
    EXPECT_NEAR(r.value("headingAcrossNorth", 180.0), 0.0, 1e-9);
    EXPECT_LT(r.value("followWorstLag", 180.0), 25.0);
    EXPECT_DOUBLE_EQ(r.value("heightFromAbsolute", 0.0), 12.0);
    EXPECT_TRUE(r.value("heightUnknown", false));
    // The format's required keys: one sample without speed spoils the file; stalled times are skipped.
    EXPECT_TRUE(r.value("refusesMissingSpeed", false));
    EXPECT_TRUE(r.value("refusesNoTrack", false));
    EXPECT_EQ(r.value("repeatedKept", 0), 3);
    EXPECT_EQ(r.value("repeatedRecorded", 0), 5);
    // The drawing size: coarser while that brings the frames up to speed (12 + 28 r² ms under
    // 34 ms wants r below 0.89), never coarser for nothing, finer again once frames come quickly.
    EXPECT_LT(r.value("pixelBoundRatio", 1.0), 0.89);
    EXPECT_GE(r.value("pixelBoundRatio", 0.0), 0.5);
    EXPECT_DOUBLE_EQ(r.value("recoveredRatio", 0.0), 1.0);
    EXPECT_DOUBLE_EQ(r.value("elsewhereRatio", 0.0), 1.0);
    EXPECT_DOUBLE_EQ(r.value("stalledRatio", 0.0), 1.0);
}
