#include "Library.h"

#include <QRandomGenerator>
#include <QString>

#include <chrono>
#include <fstream>
#include <system_error>

namespace fs = std::filesystem;

namespace {
Failure libraryFailure(const fs::path &root, const std::string &reason)
{
    return Failure{QStringLiteral("server"), 1,
                   QStringLiteral("The library folder %1 can't be written: %2.")
                       .arg(QString::fromStdString(root.string()), QString::fromStdString(reason))};
}
} // namespace

Result<Library> Library::open(const fs::path &root)
{
    std::error_code ec;
    const fs::path absolute = fs::absolute(root, ec);
    for (const char *part : {"flights", "staging", "parked", "tmp", "outbox", "music"}) {
        fs::create_directories(absolute / part, ec);
        if (ec)
            return libraryFailure(absolute, ec.message());
    }
    const fs::path probe = absolute / "tmp" / "write-probe";
    {
        std::ofstream out(probe);
        out << "ok";
        if (!out)
            return libraryFailure(absolute, "permission denied");
    }
    fs::remove(probe, ec);
    return Library(absolute);
}

void Library::tidy() const
{
    std::error_code ec;
    // Leftovers of uploads cut short by a stop of the server.
    for (const auto &entry : fs::directory_iterator(tmp(), ec))
        fs::remove_all(entry.path(), ec);
    // Staged uploads nobody came back for in a day: the client discards its failures, but a
    // machine that died mid-upload can't, and staged bytes count against the quota.
    const auto dayAgo = fs::file_time_type::clock::now() - std::chrono::hours(24);
    for (const auto &entry : fs::directory_iterator(m_root / "staging", ec)) {
        std::error_code timeError;
        if (entry.last_write_time(timeError) < dayAgo && !timeError)
            fs::remove_all(entry.path(), timeError);
    }
}

fs::path Library::tmpName(const std::string &suffix) const
{
    const quint64 a = QRandomGenerator::system()->generate64();
    const quint64 b = QRandomGenerator::system()->generate64();
    return tmp() / (QString::number(a, 36) + QString::number(b, 36)).toStdString().append(suffix);
}

void Library::removeFolder(const fs::path &folder) const
{
    std::error_code ec;
    const fs::path gone = tmpName(".gone");
    fs::rename(folder, gone, ec);
    fs::remove_all(ec ? folder : gone, ec);
}

std::int64_t Library::folderBytes(const fs::path &folder)
{
    std::error_code ec;
    std::int64_t total = 0;
    for (auto it = fs::recursive_directory_iterator(folder, ec); !ec && it != fs::recursive_directory_iterator();
         it.increment(ec)) {
        std::error_code sizeError;
        if (it->is_regular_file(sizeError)) {
            const auto size = it->file_size(sizeError);
            if (!sizeError)
                total += static_cast<std::int64_t>(size);
        }
    }
    return total;
}
