#include "FlightTrack.h"

#include "Units.h"

#include <algorithm>
#include <cmath>

namespace FlightTrack {

QList<AltPoint> altitudeCurve(const QList<TrackSample> &track, bool metric)
{
    QList<AltPoint> points;
    const qsizetype n = track.size();
    if (n == 0)
        return points;
    const qsizetype step = n < curveTarget ? 1 : n / curveTarget;
    const double factor = Units::altitudeFactor(metric);
    const auto pointOf = [&](const TrackSample &s) {
        return AltPoint{int(points.size()), s.t, s.relAlt.value_or(0.0) * factor};
    };
    points.reserve(n / step + 1);
    for (qsizetype i = 0; i < n; i += step)
        points.append(pointOf(track[i]));
    if (points.last().t != track.last().t)
        points.append(pointOf(track.last()));
    return points;
}

QList<AltPoint> flatCurve(double duration)
{
    return {AltPoint{0, 0, 0}, AltPoint{1, duration, 0}};
}

int maxAltitude(const QList<TrackSample> &track, bool metric)
{
    std::optional<double> highest;
    for (const TrackSample &s : track) {
        if (s.relAlt && (!highest || *s.relAlt > *highest))
            highest = s.relAlt;
    }
    return highest ? Units::truncated(*highest * Units::altitudeFactor(metric)) : 0;
}

QList<QPointF> path(const QList<TrackSample> &track)
{
    QList<QPointF> out;
    out.reserve(track.size());
    for (const TrackSample &s : track)
        out.append(QPointF(s.lon, s.lat));
    return out;
}

QList<QPointF> markedPath(const QList<TrackSample> &track, double in, double out)
{
    QList<QPointF> stretch;
    for (const TrackSample &s : track) {
        if (s.t >= in && s.t <= out)
            stretch.append(QPointF(s.lon, s.lat));
    }
    return stretch;
}

bool covers(const Clip &clip, const Moment &moment)
{
    const double overlap = std::min(clip.end, moment.end) - std::max(clip.start, moment.start);
    const double limit = 0.55 * std::min(clip.end - clip.start, moment.end - moment.start);
    return overlap > limit;
}

QList<Moment> uncoveredMoments(const QList<Moment> &moments, const QList<Clip> &clips)
{
    QList<Moment> out;
    for (const Moment &m : moments) {
        const bool covered = std::any_of(clips.begin(), clips.end(), [&](const Clip &c) { return covers(c, m); });
        if (!covered)
            out.append(m);
    }
    return out;
}

QString formatCoordinate(double lat, double lon)
{
    return QString::asprintf("%.4f°%s %.4f°%s", std::fabs(lat), lat >= 0 ? "N" : "S", std::fabs(lon),
                             lon >= 0 ? "E" : "W");
}

} // namespace FlightTrack
