#include "Proxy480Maker.h"

#include "ToolRun.h"

#include <nlohmann/json.hpp>

#include <QString>

#include <cstdio>

namespace fs = std::filesystem;

namespace {
constexpr const char *lightName = "proxy_480.mp4";
} // namespace

Proxy480Maker::Proxy480Maker(const Library &library, FlightIndex &index, std::mutex &folderLock, bool log)
    : m_library(library), m_index(index), m_folderLock(folderLock), m_log(log)
{
}

Proxy480Maker::~Proxy480Maker()
{
    stop();
}

const char *Proxy480Maker::scaleFilter()
{
    return "scale=w='if(gt(iw,ih),-2,trunc(min(480,iw)/2)*2)':h='if(gt(iw,ih),trunc(min(480,ih)/2)*2,-2)'";
}

void Proxy480Maker::start()
{
    if (m_thread.joinable())
        return;
    m_nudged = true;
    m_thread = std::jthread([this](std::stop_token stop) { run(stop); });
}

void Proxy480Maker::nudge()
{
    {
        std::lock_guard guard(m_mutex);
        m_nudged = true;
    }
    m_wake.notify_all();
}

void Proxy480Maker::stop()
{
    if (!m_thread.joinable())
        return;
    m_thread.request_stop();
    m_wake.notify_all();
    m_thread.join();
}

void Proxy480Maker::run(std::stop_token stop)
{
    while (!stop.stop_requested()) {
        {
            std::unique_lock lock(m_mutex);
            if (!m_wake.wait(lock, stop, [this] { return m_nudged; }))
                return;
            m_nudged = false;
        }
        // One flight at a time, until a sweep finds nothing more to do.
        while (!stop.stop_requested()) {
            const auto id = nextFlight();
            if (!id)
                break;
            make(*id, stop);
        }
    }
}

std::optional<Proxy480Maker::Signature> Proxy480Maker::signatureOf(const std::string &id) const
{
    std::error_code ec;
    const fs::path proxy = m_library.flight(id) / "proxy.mp4";
    const auto size = fs::file_size(proxy, ec);
    if (ec)
        return std::nullopt;
    const auto modified = fs::last_write_time(proxy, ec);
    if (ec)
        return std::nullopt;
    return Signature{size, modified};
}

std::optional<std::string> Proxy480Maker::nextFlight()
{
    for (const std::string &id : m_index.ids()) {
        const auto row = m_index.row(id);
        // The entry is compact JSON as this server wrote it.
        if (!row || row->entry.find("\"p480\":true") != std::string::npos)
            continue;
        std::error_code ec;
        if (fs::exists(m_library.flight(id) / lightName, ec)) {
            markListed(id);
            continue;
        }
        const auto signature = signatureOf(id);
        if (!signature)
            continue;
        std::lock_guard guard(m_mutex);
        const auto failed = m_failed.find(id);
        if (failed != m_failed.end() && failed->second == *signature)
            continue;
        return id;
    }
    return std::nullopt;
}

bool Proxy480Maker::markListed(const std::string &id)
{
    return m_index.updateEntry(id, Library::folderBytes(m_library.flight(id)),
                               [](nlohmann::ordered_json &entry) { entry["p480"] = true; });
}

void Proxy480Maker::make(const std::string &id, const std::stop_token &stop)
{
    const auto before = signatureOf(id);
    if (!before)
        return;
    const fs::path part = m_library.tmpName(".mp4");
    const QString proxy = QString::fromStdString((m_library.flight(id) / "proxy.mp4").string());
    const auto made = ToolRun::run(
        ToolRun::ffmpeg(),
        {QStringLiteral("-nostdin"), QStringLiteral("-v"), QStringLiteral("error"), QStringLiteral("-i"), proxy,
         QStringLiteral("-map"), QStringLiteral("0:v:0"), QStringLiteral("-map"), QStringLiteral("0:a:0?"),
         QStringLiteral("-vf"), QString::fromLatin1(scaleFilter()), QStringLiteral("-c:v"), QStringLiteral("libx264"),
         QStringLiteral("-preset"), QStringLiteral("veryfast"), QStringLiteral("-crf"), QStringLiteral("25"),
         // A keyframe every second: a jog's exact seeks decode from the keyframe before, and the
         // import's proxies, with one every eight seconds or so, show a jog at a few frames a second.
         QStringLiteral("-force_key_frames"), QStringLiteral("expr:gte(t,n_forced*1)"),
         QStringLiteral("-pix_fmt"), QStringLiteral("yuv420p"), QStringLiteral("-c:a"), QStringLiteral("aac"),
         QStringLiteral("-b:a"), QStringLiteral("96k"), QStringLiteral("-movflags"), QStringLiteral("+faststart"),
         QStringLiteral("-f"), QStringLiteral("mp4"), QStringLiteral("-y"), QString::fromStdString(part.string())},
        std::chrono::hours(2), stop);
    std::error_code ec;
    if (stop.stop_requested()) {
        fs::remove(part, ec);
        return;
    }
    if (!made || fs::file_size(part, ec) == 0) {
        fs::remove(part, ec);
        if (m_log)
            std::fprintf(stderr, "aeroloom-server: no light proxy for %s: %s\n", id.c_str(),
                         made ? "ffmpeg wrote nothing" : qPrintable(made.errorText()));
        std::lock_guard guard(m_mutex);
        m_failed[id] = *before;
        return;
    }
    {
        std::lock_guard folders(m_folderLock);
        // Deleted, or sent again with another proxy, while this one was made: it belongs to no one.
        if (signatureOf(id) != before) {
            fs::remove(part, ec);
            nudge();
            return;
        }
        fs::rename(part, m_library.flight(id) / lightName, ec);
        if (ec) {
            fs::remove(part, ec);
            return;
        }
        markListed(id);
    }
}
