// A 60-second story of eight clips made into a video by the library server, from the request
// to the stored video, against the baseline: the same ffmpeg command (the same filter graph on
// the same inputs) run bare, in the same run, rounds alternating.
#include "Library.h"
#include "LibraryServer.h"
#include "MusicMaker.h"
#include "RenderGraph.h"
#include "RenderJob.h"
#include "ToolRun.h"

#include <httplib.h>
#include <nlohmann/json.hpp>

#include <QCoreApplication>
#include <QTemporaryDir>

#include <sys/resource.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <thread>

using nlohmann::json;

namespace {
using Clock = std::chrono::steady_clock;
constexpr double storySeconds = 60;
constexpr int clips = 8;
constexpr double xfade = 0.2;
const char *const track = "02.Ridge Line.m4a";

int fail(const std::string &words)
{
    std::fprintf(stderr, "%s\n", words.c_str());
    return 1;
}

/// Processor seconds of this process and of its children reaped so far: the server runs in this
/// process and ffmpeg as its child, so a round's difference is what that round cost.
double cpuSeconds()
{
    const auto seconds = [](const rusage &u) {
        return u.ru_utime.tv_sec + u.ru_stime.tv_sec + (u.ru_utime.tv_usec + u.ru_stime.tv_usec) / 1e6;
    };
    rusage self{}, children{};
    getrusage(RUSAGE_SELF, &self);
    getrusage(RUSAGE_CHILDREN, &children);
    return seconds(self) + seconds(children);
}

double median(std::vector<double> v)
{
    std::sort(v.begin(), v.end());
    return v[v.size() / 2];
}

/// Eight clips over the three sample flights, long enough that the video runs 60 s.
json storyItems(const json &manifest)
{
    const double length = (storySeconds + xfade * (clips - 1)) / clips;
    json items = json::array();
    for (int i = 0; i < clips; ++i) {
        const auto &flight = manifest["flights"][i % manifest["flights"].size()];
        const double start = 1.0 + (i / 3) * 9.0;
        items.push_back({{"flightId", flight["id"]}, {"in", start}, {"out", start + length}, {"label", "clip"}});
    }
    return items;
}

/// Seconds from the request to the stored video, as a client polling the status sees it.
double served(httplib::Client &client, const std::string &story, const json &order)
{
    const auto start = Clock::now();
    const auto reply = client.Post(("/api/projects/" + story + "/render").c_str(), order.dump(), "application/json");
    if (!reply || reply->status != 200)
        return -1;
    while (true) {
        const auto status = client.Get(("/api/projects/" + story + "/render").c_str());
        if (!status)
            return -1;
        const json body = json::parse(status->body);
        if (body["status"] == "done")
            break;
        if (body["status"] != "running")
            return -1;
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
    }
    return std::chrono::duration<double>(Clock::now() - start).count();
}
} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    const int rounds = argc > 1 ? std::max(1, std::atoi(argv[1])) : 3;
    const std::string aspect = argc > 2 ? argv[2] : "landscape";

    QTemporaryDir dir;
    ServerConfig config;
    config.library = dir.path().toStdString() + "/library";
    config.port = 0;
    config.log = false;
    config.sampleSeconds = 30;
    LibraryServer server(config);
    if (const auto started = server.start(); !started)
        return fail(started.errorText().toStdString());
    httplib::Client client(server.baseUrl());
    client.set_read_timeout(std::chrono::minutes(5));
    const json manifest = json::parse(client.Get("/manifest.json")->body);
    const json items = storyItems(manifest);
    const auto created = client.Post("/api/projects", json{{"title", "Bench"}, {"items", items}}.dump(), "application/json");
    const std::string story = json::parse(created->body)["id"];
    const json order{{"track", track}, {"beatSync", "bar"}, {"hud", true}, {"xfade", xfade}, {"aspect", aspect}};

    // The baseline's command: the job's own preparation, its ffmpeg run left to the bench.
    auto library = Library::open(config.library);
    MusicMaker music(*library);
    std::string why;
    auto parsed = RenderOrder::parse(nlohmann::ordered_json::parse(order.dump()), why);
    parsed->projectId = story;
    RenderJob bare(*library, music, *parsed, nlohmann::ordered_json::parse(items.dump()).dump());
    if (const auto prepared = bare.prepare(); !prepared)
        return fail(prepared.errorText().toStdString());
    const QStringList command = RenderGraph::arguments(bare.setup());

    // Wall time on a shared machine swings with the neighbours; processor time much less so.
    std::vector<double> ours, baseline, oursCpu, baselineCpu;
    const auto viaLibrary = [&] {
        const double cpu = cpuSeconds();
        const double made = served(client, story, order);
        ours.push_back(made);
        oursCpu.push_back(cpuSeconds() - cpu);
        return made >= 0;
    };
    const auto bareRun = [&] {
        const double cpu = cpuSeconds();
        const auto start = Clock::now();
        const auto ran = ToolRun::run(ToolRun::ffmpeg(), command, std::chrono::minutes(10));
        baseline.push_back(std::chrono::duration<double>(Clock::now() - start).count());
        baselineCpu.push_back(cpuSeconds() - cpu);
        return ran.ok();
    };
    for (int i = 0; i < rounds; ++i) {
        // Each goes first every other round, so neither always meets what the other left behind.
        const bool made = i % 2 == 0 ? viaLibrary() && bareRun() : bareRun() && viaLibrary();
        if (!made)
            return fail("a run failed to make the video");
        std::printf("round %d: library %.2f s (cpu %.2f s), bare ffmpeg %.2f s (cpu %.2f s)\n", i + 1, ours.back(),
                    oursCpu.back(), baseline.back(), baselineCpu.back());
    }
    const json status = json::parse(client.Get(("/api/projects/" + story + "/render").c_str())->body);
    std::printf("story: %d clips, %.1f s asked; video %.2f s (%s, bar sync, overlay), %zu-part graph\n", clips,
                storySeconds, status["duration"].get<double>(), aspect.c_str(), std::size_t(command.size()));
    std::printf("library (request to stored video): median %.2f s wall, %.2f s cpu\n", median(ours), median(oursCpu));
    std::printf("bare ffmpeg, same graph and inputs: median %.2f s wall, %.2f s cpu\n", median(baseline),
                median(baselineCpu));
    std::printf("ratio: %.3f x wall, %.3f x cpu (goal <= 1.15 x)\n", median(ours) / median(baseline),
                median(oursCpu) / median(baselineCpu));
    server.stop();
    return 0;
}
