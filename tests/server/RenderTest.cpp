// Story videos made by the real server from real proxies with real ffmpeg, checked with ffprobe,
// their frames and aubio; the replies read by the program's own client.
#include "APIError.h"
#include "ColourFlights.h"
#include "CoroTest.h"
#include "LoopbackClient.h"
#include "RecordFormats.h"
#include "TestServer.h"

#include <gtest/gtest.h>

#include <QProcess>
#include <QThread>

#include <cmath>

namespace fs = std::filesystem;
using nlohmann::json;

namespace {
const std::string red = "20240601_100000_0001";
const std::string blue = "20240601_110000_0002";
constexpr double frame = 1.0 / 30;

/// The beats of a track as aubio's own command-line tracker hears them.
std::vector<double> aubioBeats(const fs::path &track)
{
    QProcess aubio;
    aubio.start(QStringLiteral("aubiotrack"), {QStringLiteral("-i"), QString::fromStdString(track.string())});
    aubio.waitForFinished(-1);
    std::vector<double> beats;
    for (const QByteArray &line : aubio.readAllStandardOutput().split('\n')) {
        bool ok = false;
        const double t = line.trimmed().toDouble(&ok);
        if (ok)
            beats.push_back(t);
    }
    return beats;
}

/// Where the picture turns from mostly red to mostly blue or back: the middle of each cross-fade.
std::vector<double> colourCuts(const fs::path &video)
{
    const auto frames = ColourFlights::frames(video);
    std::vector<double> cuts;
    for (std::size_t i = 1; i < frames.size(); ++i) {
        const double before = frames[i - 1].r - frames[i - 1].b, after = frames[i].r - frames[i].b;
        if ((before > 0) != (after > 0))
            cuts.push_back((double(i - 1) + before / (before - after)) * frame);
    }
    return cuts;
}

/// How many pixels of a frame stand out from the flat colour of the clip it shows.
int drawnPixels(const fs::path &video, double at)
{
    int width = 0, height = 0;
    const QByteArray rgb = ColourFlights::frameAt(video, at, width, height);
    const int cx = (width / 2) * 3 + (height / 2) * width * 3;
    int drawn = 0;
    for (qsizetype i = 0; i + 2 < rgb.size(); i += 3) {
        int distance = 0;
        for (int c = 0; c < 3; ++c)
            distance += std::abs(quint8(rgb[i + c]) - quint8(rgb[cx + c]));
        drawn += distance > 90;
    }
    return drawn;
}

double streamSeconds(const json &info, const char *type)
{
    for (const auto &s : info["streams"]) {
        if (s["codec_type"] == type)
            return std::stod(s["duration"].get<std::string>());
    }
    return -1;
}
} // namespace

class Render : public ::testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        // A library folder with every character the filter graph treats as its own.
        server = new TestServer([](ServerConfig &c) {
            c.library = c.library.parent_path() / "lib 'q': [a], b; c\\d";
            library = c.library;
        });
        auto http = server->client();
        ASSERT_EQ(ColourFlights::upload(*http, red, QStringLiteral("red"), 6, server->sandbox())->status, 200);
        ASSERT_EQ(ColourFlights::upload(*http, blue, QStringLiteral("blue"), 6, server->sandbox())->status, 200);
    }
    static void TearDownTestSuite()
    {
        delete server;
        server = nullptr;
    }

    /// Starts a video and waits for the job to end; the story's status then.
    json make(const std::string &story, const json &body)
    {
        const auto started = http->Post(("/api/projects/" + story + "/render").c_str(), body.dump(), "application/json");
        EXPECT_TRUE(started && started->status == 200) << (started ? started->body : "no reply");
        return finished(story);
    }
    json finished(const std::string &story)
    {
        for (int i = 0; i < 600; ++i) {
            const auto status = jsonOf(http->Get(("/api/projects/" + story + "/render").c_str()));
            if (status.value("status", "") != "running")
                return status;
            QThread::msleep(100);
        }
        ADD_FAILURE() << "the video was never finished";
        return {};
    }
    fs::path file(const json &status) const { return library / "renders" / (status.value("id", "") + ".mp4"); }
    json renders(const std::string &story)
    {
        return jsonOf(http->Get(("/api/projects/" + story + "/renders").c_str()))["renders"];
    }

    static inline TestServer *server = nullptr;
    static inline fs::path library;
    std::unique_ptr<httplib::Client> http = server->client();
};

TEST_F(Render, WidescreenHasTheStoryLengthTheMusicAndNoOverlay)
{
    // Uneven lengths, so a frame lost to rounding at each cut would add up.
    const std::string story = ColourFlights::story(*http, "Lengths", json::array({
        {{"flightId", red}, {"in", 1.23}, {"out", 3.61}, {"label", "one"}},
        {{"flightId", blue}, {"in", 0.4}, {"out", 2.33}, {"label", "two"}},
        {{"flightId", red}, {"in", 2.0}, {"out", 4.55}, {"label", "three"}},
    }));
    const json status = make(story, {{"track", "random"}, {"hud", false}, {"xfade", 0.2}});
    ASSERT_EQ(status["status"], "done") << status.dump();

    const json info = ColourFlights::probe(file(status));
    const double expected = 2.38 + 1.93 + 2.55 - 0.2 * 2;
    EXPECT_NEAR(streamSeconds(info, "video"), expected, frame);
    EXPECT_NEAR(streamSeconds(info, "audio"), expected, frame) << "the music runs as long as the story";
    EXPECT_EQ(info["streams"][0]["width"], 320);
    EXPECT_EQ(info["streams"][0]["height"], 180);
    EXPECT_LT(drawnPixels(file(status), 1.0), 20);

    // What the screen reads, through the program's own client.
    LoopbackClient client(*server);
    const auto seen = run(client->fetchRenderStatus(QString::fromStdString(story)));
    ASSERT_TRUE(seen.ok()) << seen.errorText().toStdString();
    EXPECT_TRUE(RecordFormats::parseLocal(seen->rendered.value_or(QString())).has_value()) << seen->rendered->toStdString();
    EXPECT_EQ(seen->aspect, QStringLiteral("landscape"));
    EXPECT_NEAR(seen->duration.value_or(0), expected, frame);
    ASSERT_TRUE(seen->settings.has_value());
    EXPECT_TRUE(seen->settings->track->endsWith(QStringLiteral(".m4a"))) << "random names the track it picked";
    EXPECT_FALSE(seen->settings->beatSync.has_value());
    EXPECT_EQ(seen->settings->hud, false);
    EXPECT_EQ(seen->settings->xfade, 0.2);
    const auto all = run(client->fetchAllRenders());
    ASSERT_TRUE(all.ok());
    ASSERT_FALSE(all->isEmpty());
    EXPECT_EQ(all->front().projectTitle, QStringLiteral("Lengths"));

    // The file, in part, for a player that seeks.
    const auto part = http->Get(("/" + seen->url->toStdString()).c_str(), {{"Range", "bytes=4-7"}});
    ASSERT_TRUE(part);
    EXPECT_EQ(part->status, 206);
    EXPECT_EQ(part->body, "ftyp");

    // A new title leaves the video current; a new cut makes it stale.
    http->Post(("/api/projects/" + story).c_str(), json{{"title", "Lengths, renamed"}}.dump(), "application/json");
    EXPECT_EQ(jsonOf(http->Get(("/api/projects/" + story + "/render").c_str()))["stale"], false);
    http->Post(("/api/projects/" + story).c_str(),
               json{{"items", json::array({{{"flightId", red}, {"in", 1.0}, {"out", 2.0}, {"label", "only"}}})}}.dump(),
               "application/json");
    EXPECT_EQ(jsonOf(http->Get(("/api/projects/" + story + "/render").c_str()))["stale"], true);
    EXPECT_EQ(renders(story)[0]["stale"], true);
}

TEST_F(Render, VerticalIsNineBySixteenAndSilentWithoutMusic)
{
    const std::string story = ColourFlights::story(*http, "Tall", json::array({
        {{"flightId", red}, {"in", 0.5}, {"out", 2.5}},
        {{"flightId", blue}, {"in", 0.5}, {"out", 2.5}},
    }));
    const json status = make(story, {{"track", "none"}, {"hud", true}, {"xfade", 0.2}, {"aspect", "vertical"}});
    ASSERT_EQ(status["status"], "done") << status.dump();
    EXPECT_EQ(status["aspect"], "vertical");
    EXPECT_EQ(status["settings"]["hud"], false) << "the overlay is drawn on widescreen videos only";
    EXPECT_FALSE(status["settings"].contains("track"));

    const json info = ColourFlights::probe(file(status));
    ASSERT_EQ(info["streams"].size(), 1u) << info.dump();
    EXPECT_EQ(info["streams"][0]["codec_type"], "video");
    EXPECT_EQ(info["streams"][0]["width"], 180);
    EXPECT_EQ(info["streams"][0]["height"], 320);
}

TEST_F(Render, BothMakesTwoVideosAndTheOverlayOnlyOnTheWideOne)
{
    const std::string story = ColourFlights::story(*http, "Both", json::array({
        {{"flightId", red}, {"in", 0.5}, {"out", 2.5}},
        {{"flightId", blue}, {"in", 1.0}, {"out", 3.0}},
    }));
    const json status = make(story, {{"track", "none"}, {"hud", true}, {"xfade", 0.2}, {"aspect", "both"}});
    ASSERT_EQ(status["status"], "done") << status.dump();

    const json list = renders(story);
    ASSERT_EQ(list.size(), 2u);
    EXPECT_EQ(list[0]["aspect"], "landscape");
    EXPECT_EQ(list[1]["aspect"], "vertical");
    EXPECT_EQ(status["id"], list[0]["id"]) << "the status follows the widescreen video";
    const fs::path wide = library / "renders" / (list[0]["id"].get<std::string>() + ".mp4");
    const fs::path tall = library / "renders" / (list[1]["id"].get<std::string>() + ".mp4");
    ASSERT_TRUE(fs::exists(wide));
    ASSERT_TRUE(fs::exists(tall));
    EXPECT_EQ(list[0]["settings"]["hud"], true);
    EXPECT_EQ(list[1]["settings"]["hud"], false);

    // Readouts and the minimap on both clips, so on either side of the cut.
    EXPECT_GT(drawnPixels(wide, 0.8), 400);
    EXPECT_GT(drawnPixels(wide, 3.0), 400);
    EXPECT_LT(drawnPixels(tall, 0.8), 20);
}

TEST_F(Render, BarSyncPutsEveryCutOnABarOfTheTrack)
{
    const std::string track = "02.Ridge Line.m4a";
    const std::string story = ColourFlights::story(*http, "On the bar", json::array({
        {{"flightId", red}, {"in", 0.5}, {"out", 3.5}},
        {{"flightId", blue}, {"in", 0.5}, {"out", 3.5}},
        {{"flightId", red}, {"in", 0.5}, {"out", 3.5}},
    }));
    const json status = make(story, {{"track", track}, {"beatSync", "bar"}, {"hud", false}, {"xfade", 0.2}});
    ASSERT_EQ(status["status"], "done") << status.dump();
    EXPECT_EQ(status["settings"]["beatSync"], "bar");
    EXPECT_EQ(status["settings"]["track"], track);

    const auto beats = aubioBeats(library / "music" / track);
    ASSERT_GT(beats.size(), 8u);
    const auto cuts = colourCuts(file(status));
    ASSERT_EQ(cuts.size(), 2u);
    for (const double cut : cuts) {
        // A bar line is every fourth beat from the first.
        double nearest = 1e9;
        std::size_t at = 0;
        for (std::size_t i = 0; i < beats.size(); ++i) {
            if (std::abs(beats[i] - cut) < nearest) {
                nearest = std::abs(beats[i] - cut);
                at = i;
            }
        }
        EXPECT_LT(nearest, frame) << "cut at " << cut << " s";
        EXPECT_EQ(at % 4, 0u) << "cut at " << cut << " s lies on beat " << at << ", not on a bar line";
    }
}

TEST_F(Render, OneVideoAtATimeForTheWholeLibrary)
{
    const std::string first = ColourFlights::story(*http, "First", json::array({
        {{"flightId", red}, {"in", 0.0}, {"out", 5.0}},
        {{"flightId", blue}, {"in", 0.0}, {"out", 5.0}},
    }));
    const std::string second = ColourFlights::story(*http, "Second", json::array({{{"flightId", blue}, {"in", 1.0}, {"out", 2.0}}}));
    ASSERT_EQ(http->Post(("/api/projects/" + first + "/render").c_str(), R"({"track":"none","hud":false,"xfade":0.2})",
                         "application/json")->status, 200);

    LoopbackClient client(*server);
    RenderRequest request;
    request.track = QStringLiteral("none");
    const auto refused = run(client->startRender(QString::fromStdString(second), request));
    ASSERT_FALSE(refused.ok());
    EXPECT_TRUE(APIError::isStatus(refused.failure(), 409)) << refused.errorText().toStdString();
    EXPECT_EQ(jsonOf(http->Get(("/api/projects/" + second + "/render").c_str()))["status"], "idle");
    const auto running = run(client->fetchRenderStatus(QString::fromStdString(first)));
    ASSERT_TRUE(running.ok());
    EXPECT_EQ(running->status, QStringLiteral("running"));

    EXPECT_EQ(finished(first)["status"], "done");
    EXPECT_TRUE(run(client->startRender(QString::fromStdString(second), request)).ok()) << "free again once it is done";
    EXPECT_EQ(finished(second)["status"], "done");
}

TEST_F(Render, RefusesWhatItCannotMake)
{
    const std::string story = ColourFlights::story(*http, "Refusals", json::array({{{"flightId", red}, {"in", 0.0}, {"out", 1.0}}}));
    const std::string empty = ColourFlights::story(*http, "Empty", json::array());
    const auto post = [&](const std::string &id, const std::string &body) {
        return http->Post(("/api/projects/" + id + "/render").c_str(), body, "application/json")->status;
    };
    EXPECT_EQ(post(story, R"({"track":"No Such Song.m4a","hud":false,"xfade":0.2})"), 400);
    EXPECT_EQ(post(story, R"({"track":"none","hud":false,"xfade":0.2,"aspect":"square"})"), 400);
    EXPECT_EQ(post(story, R"({"track":"none","hud":false,"xfade":-1})"), 400);
    EXPECT_EQ(post(story, R"({"track":"none","beatSync":"downbeat","hud":false,"xfade":0.2})"), 400);
    EXPECT_EQ(post(empty, R"({"track":"none","hud":false,"xfade":0.2})"), 400);
    EXPECT_EQ(post("nosuchstory", R"({"track":"none","hud":false,"xfade":0.2})"), 404);
    EXPECT_EQ(jsonOf(http->Get(("/api/projects/" + story + "/render").c_str()))["status"], "idle");
}

TEST_F(Render, FailedOrStoppedJobsLeaveNoFile)
{
    const auto leftovers = [&] {
        std::size_t n = 0;
        for (const char *dir : {"renders", "tmp"}) {
            for (const auto &entry : fs::directory_iterator(library / dir))
                n += entry.path().extension() == ".mp4" || entry.path().extension() == ".ass";
        }
        return n;
    };
    const std::size_t before = leftovers();

    // A story deleted while its video is being made: the job stops and keeps nothing.
    const std::string doomed = ColourFlights::story(*http, "Doomed", json::array({
        {{"flightId", red}, {"in", 0.0}, {"out", 6.0}},
        {{"flightId", blue}, {"in", 0.0}, {"out", 6.0}},
    }));
    ASSERT_EQ(http->Post(("/api/projects/" + doomed + "/render").c_str(), R"({"track":"random","hud":true,"xfade":0.2})",
                         "application/json")->status, 200);
    ASSERT_EQ(http->Delete(("/api/projects/" + doomed).c_str())->status, 200);
    EXPECT_EQ(http->Get(("/api/projects/" + doomed + "/render").c_str())->status, 404);
    EXPECT_EQ(leftovers(), before);

    // A proxy cut short on disk: the job fails in words, and leaves nothing either.
    const std::string broken = "20240601_120000_0003";
    ASSERT_EQ(ColourFlights::upload(*http, broken, QStringLiteral("green"), 3, server->sandbox())->status, 200);
    const fs::path proxy = library / "flights" / broken / "proxy.mp4";
    fs::resize_file(proxy, fs::file_size(proxy) / 3);
    const std::string story = ColourFlights::story(*http, "Broken", json::array({{{"flightId", broken}, {"in", 0.0}, {"out", 2.0}}}));
    const json status = make(story, {{"track", "none"}, {"hud", false}, {"xfade", 0.2}});
    EXPECT_EQ(status["status"], "error");
    EXPECT_FALSE(status.value("error", "").empty()) << status.dump();
    EXPECT_EQ(leftovers(), before);
}

TEST_F(Render, VideosAndTheirLinksGoWithTheVideoOrTheStory)
{
    const std::string story = ColourFlights::story(*http, "Short-lived", json::array({{{"flightId", blue}, {"in", 0.0}, {"out", 1.0}}}));
    ASSERT_EQ(make(story, {{"track", "none"}, {"hud", false}, {"xfade", 0.2}, {"aspect", "both"}})["status"], "done");
    const json list = renders(story);
    ASSERT_EQ(list.size(), 2u);
    const std::string wide = list[0]["id"], tall = list[1]["id"];
    const auto link = [&](const std::string &video) {
        const json made = jsonOf(http->Post(("/api/projects/" + story + "/shares").c_str(), json{{"renderId", video}}.dump(),
                                            "application/json"));
        return "/s/" + made.value("token", std::string());
    };
    const std::string wideLink = link(wide), tallLink = link(tall);
    ASSERT_EQ(http->Get(wideLink.c_str())->status, 200);

    ASSERT_EQ(http->Delete(("/api/projects/" + story + "/renders/" + tall).c_str())->status, 200);
    EXPECT_FALSE(fs::exists(library / "renders" / (tall + ".mp4")));
    EXPECT_FALSE(fs::exists(library / "renders" / (tall + ".jpg")));
    EXPECT_EQ(http->Get(tallLink.c_str())->status, 404);
    EXPECT_EQ(http->Get(wideLink.c_str())->status, 200);
    EXPECT_EQ(renders(story).size(), 1u);

    ASSERT_EQ(http->Delete(("/api/projects/" + story).c_str())->status, 200);
    EXPECT_FALSE(fs::exists(library / "renders" / (wide + ".mp4")));
    EXPECT_EQ(http->Get(wideLink.c_str())->status, 404);
    const auto rendersLeft = jsonOf(http->Get("/api/renders"));
    for (const auto &entry : rendersLeft["renders"])
        EXPECT_NE(entry["projectId"], story);
    const auto sharesLeft = jsonOf(http->Get("/api/shares"));
    for (const auto &entry : sharesLeft["shares"])
        EXPECT_NE(entry["projectId"], story);
}
