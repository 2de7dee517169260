#include "StagingArea.h"

#include "FlightCheck.h"

#include <cstdio>
#include <fstream>
#include <vector>
#ifdef __linux__
#include <fcntl.h>
#include <stdio.h>
#endif
#include <limits>
#include <memory>

#include <QString>

namespace fs = std::filesystem;

namespace {
constexpr std::int64_t MB = 1000 * 1000;

std::int64_t sizeLimit(const std::string &name)
{
    if (name == "flight.json")
        return FlightCheck::maxFlightFileBytes;
    if (name == "proxy.mp4")
        return std::numeric_limits<std::int64_t>::max();
    return 16 * 1024 * 1024;
}

QString sizeText(std::int64_t bytes)
{
    bytes = std::max<std::int64_t>(bytes, 0);
    if (bytes >= 1000 * MB)
        return QStringLiteral("%1 GB").arg(double(bytes) / (1000.0 * MB), 0, 'f', 1);
    if (bytes >= MB)
        return QStringLiteral("%1 MB").arg(bytes / MB);
    return QStringLiteral("%1 kB").arg((bytes + 999) / 1000);
}

/// The words after the client's own "Storage quota exceeded — ".
std::string quotaDetail(const std::string &what, std::int64_t needed, std::int64_t available, std::int64_t quota)
{
    return QStringLiteral("%1 needs %2, and %3 of the library's %4 are free")
        .arg(QString::fromStdString(what), sizeText(needed), sizeText(available), sizeText(quota))
        .toStdString();
}

struct FileCloser {
    void operator()(std::FILE *f) const { std::fclose(f); }
};

/// Swaps two folders in one step where the system can; elsewhere the old one is moved aside
/// first, leaving a moment in which the flight is absent (but never half there).
bool exchange(const fs::path &a, const fs::path &b)
{
#ifdef __linux__
    return ::renameat2(AT_FDCWD, a.c_str(), AT_FDCWD, b.c_str(), RENAME_EXCHANGE) == 0;
#else
    const fs::path aside = b.string() + ".old";
    std::error_code ec;
    fs::rename(b, aside, ec);
    if (ec)
        return false;
    fs::rename(a, b, ec);
    if (ec) {
        fs::rename(aside, b, ec);
        return false;
    }
    fs::rename(aside, a, ec);
    return !ec;
#endif
}
} // namespace

std::int64_t StagingArea::available(const std::string &replacingId)
{
    if (m_quota <= 0)
        return std::numeric_limits<std::int64_t>::max() / 2;
    std::int64_t used = m_index.usedBytes() + Library::folderBytes(m_library.root() / "staging");
    if (!replacingId.empty()) {
        if (const auto row = m_index.row(replacingId))
            used -= row->bytes;
    }
    return m_quota - used;
}

StagingArea::Outcome StagingArea::receive(const std::string &id, const std::string &name,
                                          std::optional<std::int64_t> declaredLength, const BodyReader &read)
{
    const std::int64_t limit = sizeLimit(name);
    // A staged copy of this same file, and the committed flight this upload will replace, are
    // on their way out: they don't count against it.
    std::error_code ec;
    const auto previous = fs::file_size(m_library.staging(id) / name, ec);
    const std::int64_t room = available(id) + (ec ? 0 : static_cast<std::int64_t>(previous));
    if (declaredLength && *declaredLength > room)
        return {413, "Storage quota exceeded: " + quotaDetail(name, *declaredLength, room, m_quota)};
    if (declaredLength && *declaredLength > limit)
        return {413, name + " is too large"};

    const fs::path part = m_library.tmpName(".part");
    std::unique_ptr<std::FILE, FileCloser> file(std::fopen(part.c_str(), "wbx"));
    if (!file)
        return {500, "The server can't write to its library folder"};
    std::setvbuf(file.get(), nullptr, _IOFBF, 1 << 20);

    std::int64_t written = 0;
    Outcome failure;
    // Once the upload can't be kept, nothing more is written; the rest of a body of known length
    // is still read (and dropped), so the client hears the reason instead of a broken connection.
    const auto stop = [&](Outcome why) {
        failure = std::move(why);
        return declaredLength.has_value();
    };
    const bool complete = read([&](const char *data, std::size_t length) {
        if (failure.status != 200)
            return true;
        written += static_cast<std::int64_t>(length);
        if (written > room)
            return stop({413, "Storage quota exceeded: "
                                  + quotaDetail(name, declaredLength.value_or(written), room, m_quota)});
        if (written > limit)
            return stop({413, name + " is too large"});
        if (std::fwrite(data, 1, length, file.get()) != length)
            return stop({507, "The server's disk is full"});
        return true;
    });
    const bool flushed = std::fflush(file.get()) == 0;
    file.reset();
    if (!complete || !flushed || failure.status != 200 || (declaredLength && written != *declaredLength)) {
        fs::remove(part, ec);
        if (failure.status == 200 && !flushed)
            failure = {507, "The server's disk is full"};
        else if (failure.status == 200)
            failure = {400, "The upload of " + name + " ended early"};
        failure.bodyRead = complete;
        return failure;
    }

    std::lock_guard guard(m_folders);
    fs::create_directories(m_library.staging(id), ec);
    fs::rename(part, m_library.staging(id) / name, ec);
    if (ec) {
        fs::remove(part, ec);
        return {500, "The server can't write to its library folder", 0, true};
    }
    return {200, {}, written, true};
}

StagingArea::Outcome StagingArea::commit(const std::string &id)
{
    std::lock_guard guard(m_folders);
    const fs::path stage = m_library.staging(id);
    std::error_code ec;
    if (!fs::is_directory(stage, ec))
        return {409, "Nothing is staged for " + id + " — upload its files first"};
    if (!fs::exists(stage / "proxy.mp4", ec))
        return {422, "proxy.mp4 was not uploaded"};
    auto meta = FlightCheck::readMeta(stage / "flight.json");
    if (!meta)
        return {422, meta.errorText().toStdString()};

    const std::int64_t bytes = Library::folderBytes(stage);
    const auto existing = m_index.row(id);
    if (m_quota > 0) {
        const std::int64_t free = m_quota - (m_index.usedBytes() - (existing ? existing->bytes : 0));
        if (bytes > free)
            return {413, quotaDetail("the flight", bytes, free, m_quota)};
    }

    const fs::path final = m_library.flight(id);
    FlightIndex::Row row{id,
                         FlightCheck::manifestEntry(id, *meta, fs::exists(stage / "proxy_480.mp4", ec)).dump(),
                         FlightCheck::sourceStem(*meta), bytes, false, std::nullopt};
    // A flight sent again keeps the clips marked on it (an upload never brings clips.json).
    if (existing && existing->clips) {
        fs::copy_file(final / "clips.json", stage / "clips.json", ec);
        if (!ec)
            row.clips = existing->clips;
    }

    const bool replacing = fs::exists(final, ec);
    bool moved = false;
    if (replacing) {
        moved = exchange(stage, final);
    } else {
        fs::rename(stage, final, ec);
        moved = !ec;
    }
    if (!moved)
        return {500, "The server can't move the flight into its library"};
    if (!m_index.put(row)) {
        if (replacing)
            exchange(stage, final);
        else
            fs::rename(final, stage, ec);
        return {500, "The server can't record the flight"};
    }
    if (replacing)
        m_library.removeFolder(stage);
    return {200, {}, bytes};
}

void StagingArea::discard(const std::string &id)
{
    std::lock_guard guard(m_folders);
    std::error_code ec;
    if (fs::exists(m_library.staging(id), ec))
        m_library.removeFolder(m_library.staging(id));
}

void StagingArea::recover()
{
    std::lock_guard guard(m_folders);
    std::error_code ec;
    for (const auto &id : m_index.ids()) {
        if (!fs::is_directory(m_library.flight(id), ec))
            m_index.remove(id);
    }
    std::vector<fs::path> folders;
    for (const auto &entry : fs::directory_iterator(m_library.flights(), ec))
        folders.push_back(entry.path());
    for (const auto &folder : folders) {
        const std::string id = folder.filename().string();
        if (m_index.exists(id))
            continue;
        const auto meta = FlightCheck::readMeta(folder / "flight.json");
        if (!meta || !fs::exists(folder / "proxy.mp4", ec)) {
            m_library.removeFolder(folder);
            continue;
        }
        std::optional<std::string> clips;
        if (std::ifstream in(folder / "clips.json", std::ios::binary); in) {
            const auto doc = nlohmann::ordered_json::parse(in, nullptr, false);
            if (doc.is_object())
                clips = doc.dump();
        }
        m_index.put({id, FlightCheck::manifestEntry(id, *meta, fs::exists(folder / "proxy_480.mp4", ec)).dump(),
                     FlightCheck::sourceStem(*meta), Library::folderBytes(folder), false, clips});
    }
}
