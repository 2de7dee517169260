#include "BeatTracker.h"

#include <aubio/aubio.h>

#include <memory>

namespace BeatTracker {

namespace {
// aubiotrack's defaults: the beats a pilot can check with that tool are the ones used here.
constexpr uint_t window = 1024;
constexpr uint_t hop = 512;

struct SourceDeleter {
    void operator()(aubio_source_t *s) const { del_aubio_source(s); }
};
struct TempoDeleter {
    void operator()(aubio_tempo_t *t) const { del_aubio_tempo(t); }
};
struct VectorDeleter {
    void operator()(fvec_t *v) const { del_fvec(v); }
};
} // namespace

std::optional<Beats> track(const std::filesystem::path &file)
{
    // A samplerate of 0 reads the file at its own rate, mixed down to one channel.
    std::unique_ptr<aubio_source_t, SourceDeleter> source(new_aubio_source(file.c_str(), 0, hop));
    if (!source)
        return std::nullopt;
    const uint_t rate = aubio_source_get_samplerate(source.get());
    if (rate == 0)
        return std::nullopt;
    std::unique_ptr<aubio_tempo_t, TempoDeleter> tempo(new_aubio_tempo("default", window, hop, rate));
    std::unique_ptr<fvec_t, VectorDeleter> in(new_fvec(hop));
    std::unique_ptr<fvec_t, VectorDeleter> out(new_fvec(2));
    if (!tempo || !in || !out)
        return std::nullopt;

    Beats beats;
    std::uint64_t frames = 0;
    uint_t read = 0;
    do {
        aubio_source_do(source.get(), in.get(), &read);
        aubio_tempo_do(tempo.get(), in.get(), out.get());
        frames += read;
        if (fvec_get_sample(out.get(), 0) != 0)
            beats.times.push_back(aubio_tempo_get_last_s(tempo.get()));
    } while (read == hop);
    beats.seconds = double(frames) / rate;
    return beats;
}

std::vector<double> grid(const Beats &beats, bool bars, double until)
{
    std::vector<double> lines;
    if (beats.times.empty() || beats.seconds <= 0)
        return lines;
    const std::size_t step = bars ? 4 : 1;
    for (double pass = 0; pass < until; pass += beats.seconds) {
        for (std::size_t i = 0; i < beats.times.size(); i += step) {
            const double at = pass + beats.times[i];
            if (beats.times[i] >= beats.seconds || at > until)
                break;
            lines.push_back(at);
        }
    }
    return lines;
}

} // namespace BeatTracker
