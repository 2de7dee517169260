#include "RenderJob.h"

#include "BeatTracker.h"
#include "HudScript.h"
#include "ProgressReader.h"
#include "ProjectTable.h"
#include "StoryFootage.h"
#include "ToolRun.h"

#include <QRandomGenerator>

#include <algorithm>
#include <fstream>

namespace fs = std::filesystem;
using nlohmann::ordered_json;

namespace {
constexpr int videoRate = 30;

Failure renderFailure(int code, const QString &words)
{
    return Failure{QStringLiteral("render"), code, words};
}

/// The last thing ffmpeg said, which names what went wrong; the exit words when it said nothing.
QString lastWords(const Failure &failure)
{
    const QStringList lines = failure.text.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    return lines.isEmpty() ? failure.text : lines.last().trimmed();
}
} // namespace

RenderJob::RenderJob(const Library &library, MusicMaker &music, RenderOrder order, std::string items)
    : m_library(library), m_music(music), m_order(std::move(order)), m_items(std::move(items))
{
    m_ids.push_back(ProjectTable::newId());
    if (m_order.aspect == RenderOrder::Aspect::Both)
        m_ids.push_back(ProjectTable::newId());
}

RenderJob::~RenderJob()
{
    std::error_code ec;
    for (const fs::path &file : m_temporary)
        fs::remove(file, ec);
}

fs::path RenderJob::temporary(const std::string &suffix)
{
    m_temporary.push_back(m_library.tmpName(suffix));
    return m_temporary.back();
}

std::optional<fs::path> RenderJob::chooseMusic()
{
    if (!m_order.wantsMusic())
        return std::nullopt;
    m_music.ensure();
    const auto tracks = m_music.tracks();
    if (m_order.track == RenderOrder::randomTrack) {
        if (tracks.empty())
            return std::nullopt;
        m_track = tracks[QRandomGenerator::global()->bounded(int(tracks.size()))];
    } else if (std::find(tracks.begin(), tracks.end(), m_order.track) != tracks.end()) {
        m_track = m_order.track;
    } else {
        return std::nullopt;
    }
    return m_library.music() / m_track;
}

Result<void> RenderJob::prepare()
{
    const bool wide = m_order.aspect != RenderOrder::Aspect::Vertical;
    const bool tall = m_order.aspect != RenderOrder::Aspect::Landscape;
    // The overlay is laid out for the wide frame; a tall crop would cut it in half.
    const bool hud = m_order.hud && wide;
    const auto footage = StoryFootage::gather(m_library, ordered_json::parse(m_items, nullptr, false), hud);
    if (!footage)
        return footage.failure();
    if (footage->empty())
        return renderFailure(3, QStringLiteral("None of this story’s clips has its flight’s video in the library."));

    std::vector<CutPlan::Clip> clips;
    double longest = 0;
    int shortSide = 0;
    for (const auto &clip : *footage) {
        clips.push_back({clip.start, clip.end, clip.videoSeconds});
        longest += clip.videoSeconds - clip.start;
        shortSide = std::max(shortSide, std::min(clip.width, clip.height));
    }
    m_setup.music = chooseMusic();
    if (m_order.wantsMusic() && m_order.track != RenderOrder::randomTrack && !m_setup.music)
        return renderFailure(4, QStringLiteral("The music track %1 is no longer in the library.")
                                    .arg(QString::fromStdString(m_order.track)));
    std::vector<double> grid;
    if (m_setup.music && m_order.sync != RenderOrder::Sync::Off) {
        if (const auto beats = BeatTracker::track(*m_setup.music))
            grid = BeatTracker::grid(*beats, m_order.sync == RenderOrder::Sync::Bar, longest);
    }
    m_setup.plan = CutPlan::make(clips, m_order.xfade, videoRate, grid);
    for (const auto &piece : m_setup.plan.pieces())
        m_setup.sources.push_back((*footage)[piece.clip].video);
    RenderSetup::frameFor(shortSide, m_setup.landscape, m_setup.vertical);
    if (wide)
        m_setup.landscapeFile = temporary(".mp4");
    if (tall)
        m_setup.verticalFile = temporary(".mp4");

    if (hud) {
        std::vector<HudScript::Piece> pieces;
        const auto &plan = m_setup.plan;
        for (std::size_t k = 0; k < plan.pieces().size(); ++k) {
            const auto &piece = plan.pieces()[k];
            pieces.push_back({(*footage)[piece.clip].track.get(), piece.start, double(piece.offset) / plan.fps(),
                              k == 0 ? 0.0 : plan.cutTime(k),
                              k + 1 == plan.pieces().size() ? plan.seconds() : plan.cutTime(k + 1)});
        }
        m_setup.hud = temporary(".ass");
        std::ofstream out(*m_setup.hud, std::ios::binary);
        out << HudScript::make(pieces, m_setup.landscape.width, m_setup.landscape.height);
        if (!out.flush())
            return renderFailure(5, QStringLiteral("The library can’t write the overlay of the video."));
    }
    return {};
}

Result<std::vector<RenderRow>> RenderJob::run(std::stop_token stop, std::function<void(double)> onProgress)
{
    const auto made = ToolRun::run(ToolRun::ffmpeg(), RenderGraph::arguments(m_setup),
                                   progressReader(m_setup.plan.seconds(), std::move(onProgress)), stop);
    if (stop.stop_requested())
        return renderFailure(6, QStringLiteral("Making the video was stopped."));
    if (!made)
        return renderFailure(7, QStringLiteral("The video couldn’t be made: %1").arg(lastWords(made.failure())));

    std::error_code ec;
    fs::create_directories(m_library.renders(), ec);
    const std::string cut = RenderStore::cutOf(m_items);
    std::vector<std::pair<fs::path, RenderRow>> outputs;
    const auto output = [&](const fs::path &file, const char *aspect) {
        RenderRow row;
        row.id = m_ids[outputs.size()];
        row.project = m_order.projectId;
        row.aspect = aspect;
        outputs.emplace_back(file, std::move(row));
    };
    if (m_setup.landscapeFile)
        output(*m_setup.landscapeFile, "landscape");
    if (m_setup.verticalFile)
        output(*m_setup.verticalFile, "vertical");

    std::vector<RenderRow> rows;
    for (auto &[file, row] : outputs) {
        row.millis = std::llround(m_setup.plan.seconds() * 1000);
        row.bytes = std::int64_t(fs::file_size(file, ec));
        const auto &frame = row.aspect == "landscape" ? m_setup.landscape : m_setup.vertical;
        row.width = frame.width;
        row.height = frame.height;
        row.settings = settings(row.aspect == "landscape").dump();
        row.cut = cut;
        const fs::path poster = temporary(".jpg");
        makePoster(file, poster);
        fs::rename(file, RenderStore::video(m_library, row.id), ec);
        if (ec) {
            // Both shapes or neither: the one already in place goes again.
            for (const RenderRow &placed : rows) {
                fs::remove(RenderStore::video(m_library, placed.id), ec);
                fs::remove(RenderStore::poster(m_library, placed.id), ec);
            }
            return renderFailure(8, QStringLiteral("The library can’t keep the finished video."));
        }
        fs::rename(poster, RenderStore::poster(m_library, row.id), ec);
        rows.push_back(row);
    }
    return rows;
}

void RenderJob::makePoster(const fs::path &video, const fs::path &poster) const
{
    // A third of the way in: past the opening fade, on the story's first or second clip.
    const auto made = ToolRun::run(
        ToolRun::ffmpeg(),
        {QStringLiteral("-nostdin"), QStringLiteral("-v"), QStringLiteral("error"), QStringLiteral("-ss"),
         QString::number(m_setup.plan.seconds() / 3, 'f', 3), QStringLiteral("-i"), QString::fromStdString(video.string()),
         QStringLiteral("-frames:v"), QStringLiteral("1"), QStringLiteral("-q:v"), QStringLiteral("3"),
         QStringLiteral("-y"), QString::fromStdString(poster.string())},
        std::chrono::seconds(30));
    if (!made) {
        std::error_code ec;
        fs::remove(poster, ec);
    }
}

ordered_json RenderJob::settings(bool wide) const
{
    ordered_json out = ordered_json::object();
    if (!m_track.empty())
        out["track"] = m_track;
    if (!m_track.empty() && m_order.sync != RenderOrder::Sync::Off)
        out["beatSync"] = m_order.syncName();
    out["xfade"] = m_setup.plan.xfade();
    out["hud"] = wide && m_setup.hud.has_value();
    return out;
}
