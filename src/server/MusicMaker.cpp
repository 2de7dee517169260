#include "MusicMaker.h"

#include "Names.h"
#include "ToolRun.h"

#include <QString>

#include <algorithm>
#include <initializer_list>

namespace fs = std::filesystem;

namespace {
struct Bed {
    const char *path;
    std::initializer_list<double> chord;  ///< frequencies in Hz
    double swell;                         ///< tremolo rate in Hz
};

// Plain chords with a slow swell, so the beds sound like music and owe nothing to anyone.
const Bed beds[] = {
    {"01.Dawn Patrol.m4a", {220.0, 277.18, 329.63}, 0.25},
    {"02.Ridge Line.m4a", {196.0, 246.94, 293.66}, 1.0},
    {"ambient/03.Slow Orbit.m4a", {174.61, 220.0, 261.63, 349.23}, 0.1},
};
constexpr int bedSeconds = 40;

QStringList bedArguments(const Bed &bed, const QString &output)
{
    QStringList args{QStringLiteral("-nostdin"), QStringLiteral("-v"), QStringLiteral("error")};
    for (const double frequency : bed.chord) {
        args << QStringLiteral("-f") << QStringLiteral("lavfi") << QStringLiteral("-i")
             << QStringLiteral("sine=frequency=%1:sample_rate=44100:duration=%2").arg(frequency).arg(bedSeconds);
    }
    QString graph;
    for (std::size_t i = 0; i < bed.chord.size(); ++i)
        graph += QStringLiteral("[%1:a]").arg(i);
    graph += QStringLiteral("amix=inputs=%1,tremolo=f=%2:d=0.4,afade=t=in:d=2,afade=t=out:st=%3:d=3")
                 .arg(bed.chord.size())
                 .arg(bed.swell)
                 .arg(bedSeconds - 3);
    args << QStringLiteral("-filter_complex") << graph << QStringLiteral("-c:a") << QStringLiteral("aac")
         << QStringLiteral("-b:a") << QStringLiteral("128k") << QStringLiteral("-f") << QStringLiteral("mp4")
         << QStringLiteral("-y") << output;
    return args;
}
} // namespace

void MusicMaker::ensure()
{
    std::lock_guard guard(m_mutex);
    if (m_checked)
        return;
    m_checked = true;
    if (!tracks().empty())
        return;
    for (const auto &bed : beds) {
        const fs::path target = m_library.music() / bed.path;
        const fs::path part = m_library.tmpName(".m4a");
        const auto made = ToolRun::run(ToolRun::ffmpeg(), bedArguments(bed, QString::fromStdString(part.string())));
        std::error_code ec;
        if (!made) {
            fs::remove(part, ec);
            continue;
        }
        fs::create_directories(target.parent_path(), ec);
        fs::rename(part, target, ec);
    }
}

std::vector<std::string> MusicMaker::tracks() const
{
    std::vector<std::string> out;
    std::error_code ec;
    for (auto it = fs::recursive_directory_iterator(m_library.music(), ec); !ec && it != fs::recursive_directory_iterator();
         it.increment(ec)) {
        if (!it->is_regular_file())
            continue;
        const std::string ext = it->path().extension().string();
        if (ext != ".m4a" && ext != ".mp3" && ext != ".wav" && ext != ".aac")
            continue;
        const std::string relative = fs::relative(it->path(), m_library.music(), ec).generic_string();
        if (Names::isSafeTrack(relative))
            out.push_back(relative);
    }
    std::sort(out.begin(), out.end());
    return out;
}
