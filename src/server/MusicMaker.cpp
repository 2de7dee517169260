#include "MusicMaker.h"

#include "Names.h"
#include "ToolRun.h"

#include <QString>

#include <algorithm>

namespace fs = std::filesystem;

namespace {
struct Bed {
    const char *path;
    const char *expression;  ///< an aevalsrc expression: a chord with a slow swell
};

// Plain chords with a swell, so the beds sound like music and owe nothing to anyone.
constexpr Bed beds[] = {
    {"01.Dawn Patrol.m4a",
     "0.16*(sin(2*PI*220*t)+sin(2*PI*277.18*t)+sin(2*PI*329.63*t))*(0.6+0.4*sin(2*PI*0.25*t))"},
    {"02.Ridge Line.m4a",
     "0.16*(sin(2*PI*196*t)+sin(2*PI*246.94*t)+sin(2*PI*293.66*t))*(0.5+0.5*abs(sin(2*PI*1*t)))"},
    {"ambient/03.Slow Orbit.m4a",
     "0.14*(sin(2*PI*174.61*t)+sin(2*PI*220*t)+sin(2*PI*261.63*t)+0.5*sin(2*PI*349.23*t))*(0.7+0.3*sin(2*PI*0.1*t))"},
};
constexpr int bedSeconds = 40;
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
        const auto made = ToolRun::run(
            ToolRun::ffmpeg(),
            {QStringLiteral("-nostdin"), QStringLiteral("-v"), QStringLiteral("error"), QStringLiteral("-f"),
             QStringLiteral("lavfi"), QStringLiteral("-i"),
             QStringLiteral("aevalsrc=%1:s=44100:d=%2").arg(QLatin1String(bed.expression)).arg(bedSeconds),
             QStringLiteral("-af"), QStringLiteral("afade=t=in:d=2,afade=t=out:st=%1:d=3").arg(bedSeconds - 3),
             QStringLiteral("-c:a"), QStringLiteral("aac"), QStringLiteral("-b:a"), QStringLiteral("128k"),
             QStringLiteral("-f"), QStringLiteral("mp4"), QStringLiteral("-y"), QString::fromStdString(part.string())});
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
