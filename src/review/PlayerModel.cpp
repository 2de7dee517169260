#include "PlayerModel.h"

#include "APIClient.h"
#include "CancelToken.h"
#include "ClipPrompts.h"
#include "PlayerClipRows.h"
#include "Clock.h"
#include "FlightMapCoordinator.h"
#include "FlightTrack.h"
#include "JogShuttleEngine.h"
#include "Toast.h"
#include "TrackLookup.h"
#include "Units.h"


#include <cmath>

namespace {
QVariantMap rangeOf(double start, double end)
{
    return {{QStringLiteral("start"), start}, {QStringLiteral("end"), end}};
}

/// The clips of `clips` that are suggestions, or those that are not.
QList<Clip> clipsWhere(const QList<Clip> &clips, bool suggested)
{
    QList<Clip> kept;
    for (const Clip &clip : clips) {
        if (ClipPrompts::isSuggestion(clip) == suggested)
            kept.append(clip);
    }
    return kept;
}

/// The band of each clip that has any length.
QVariantList rangesOf(const QList<Clip> &clips)
{
    QVariantList ranges;
    for (const Clip &clip : clips) {
        if (clip.start < clip.end)
            ranges.append(rangeOf(clip.start, clip.end));
    }
    return ranges;
}
} // namespace

PlayerModel::PlayerModel(Flight flight, std::shared_ptr<APIClient> client, VideoPlayer *player, Setup setup,
                         QObject *parent)
    : QObject(parent),
      m_flight(std::move(flight)),
      m_client(std::move(client)),
      m_player(player),
      m_setup(setup),
      m_metric(setup.metric),
      m_curveMetric(setup.metric),
      m_jog(new JogShuttleEngine(setup.clock, this)),
      m_toast(new Toast(setup.clock, this)),
      m_segmentTimer(Clock::orSystem(setup.clock).makeTicker(this)),
      m_loadCancel(new CancelToken(this)),
      m_myRows(new PlayerClipRows(this)),
      m_suggestedRows(new PlayerClipRows(this))
{
    connect(m_toast, &Toast::textChanged, this, &PlayerModel::toastChanged);
    connect(m_segmentTimer, &Ticker::timeout, this, [this] {
        // The observer ticks every 100 ms, so the clip's end may fall between two ticks: this
        // pause lands on it instead of up to three frames later.
        if (m_segmentEnd && !m_isJogging) {
            m_player->pause();
            m_segmentEnd.reset();
        }
    });

    m_player->setParent(this);
    connect(m_player, &VideoPlayer::playingChanged, this, &PlayerModel::playingChanged);
    m_videoUrl = m_client->proxyURL(m_flight.id, m_flight.p480.value_or(false), m_setup.hq);
    m_player->replaceItem(m_videoUrl, m_client->mediaHeaders());
    m_timeObserver = m_player->addPeriodicTimeObserver(observerInterval, this, [this](double t) { onTick(t); });
}

PlayerModel::~PlayerModel()
{
    m_loadCancel->cancel();
}

QUrl PlayerModel::thumbnailURL() const
{
    return m_client->flightThumbURL(m_flight.id);
}

QString PlayerModel::subtitle() const
{
    return m_flight.dateText();
}

double PlayerModel::duration() const
{
    if (m_flight.duration)
        return *m_flight.duration;
    if (!m_track.isEmpty())
        return m_track.last().t;
    return 0;
}

bool PlayerModel::playing() const
{
    return m_player->isPlaying();
}

std::optional<double> PlayerModel::pendingLength() const
{
    if (!m_markIn)
        return std::nullopt;
    return std::max(m_markOut.value_or(m_current) - *m_markIn, 0.0);
}

QVariant PlayerModel::pendingLengthValue() const
{
    const auto length = pendingLength();
    return length ? QVariant(*length) : QVariant();
}

QString PlayerModel::pendingText() const
{
    const auto length = pendingLength();
    return length ? Units::tenthsTime(*length) : QString();
}

QString PlayerModel::title() const
{
    if (hasRange())
        return QStringLiteral("New clip · ") + pendingText();
    if (m_flight.place)
        return *m_flight.place;
    if (m_flight.model)
        return *m_flight.model;
    return QStringLiteral("Flight");
}

void PlayerModel::setClipName(const QString &name)
{
    if (name == m_clipName)
        return;
    m_clipName = name;
    Q_EMIT clipNameChanged();
}

QList<Clip> PlayerModel::myClips() const
{
    return clipsWhere(m_clips, false);
}

QList<Clip> PlayerModel::suggestedClips() const
{
    return clipsWhere(m_clips, true);
}

QList<QPointF> PlayerModel::markedPath() const
{
    if (!hasRange())
        return {};
    return FlightTrack::markedPath(m_track, *m_markIn, *m_markOut);
}

QVariantList PlayerModel::clipRanges() const
{
    return rangesOf(myClips());
}

QVariantList PlayerModel::suggestedRanges() const
{
    return rangesOf(suggestedClips());
}

QVariantList PlayerModel::momentRanges() const
{
    QVariantList ranges;
    for (const Moment &moment : FlightTrack::uncoveredMoments(m_moments, m_clips)) {
        if (moment.start < moment.end)
            ranges.append(rangeOf(moment.start, moment.end));
    }
    return ranges;
}

QVariantList PlayerModel::reelList() const
{
    QVariantList list;
    for (const ProjectSummary &reel : m_reels)
        list.append(QVariantMap{{QStringLiteral("id"), reel.id}, {QStringLiteral("title"), reel.title}});
    return list;
}

QList<QPointF> PlayerModel::altPointList() const
{
    QList<QPointF> points;
    points.reserve(m_altPoints.size());
    for (const AltPoint &p : m_altPoints)
        points.append(QPointF(p.t, p.alt));
    return points;
}

int PlayerModel::maxAltitude() const
{
    return FlightTrack::maxAltitude(m_track, m_metric);
}

std::optional<TrackSample> PlayerModel::sample(double t) const
{
    return TrackLookup::sample(m_track, t);
}

int PlayerModel::altitudeNow() const
{
    const auto s = sample(m_current);
    return Units::truncated(Units::altitude(s ? s->relAlt.value_or(0) : 0, m_metric));
}

int PlayerModel::speedNow() const
{
    const auto s = sample(m_current);
    return Units::truncated(Units::speed(s ? s->speed.value_or(0) : 0, m_metric));
}

QVariant PlayerModel::coordNow() const
{
    const auto s = sample(m_current);
    return s ? QVariant(QPointF(s->lon, s->lat)) : QVariant();
}

double PlayerModel::headingNow() const
{
    const auto s = sample(m_current);
    return s ? s->yaw.value_or(0) : 0;
}

QString PlayerModel::coordinateText() const
{
    const auto s = sample(m_current);
    return s ? FlightTrack::formatCoordinate(s->lat, s->lon) : QString();
}

double PlayerModel::distance() const
{
    return Units::distance(m_flight.pathLength.value_or(0), m_metric);
}

QString PlayerModel::peakText() const
{
    return QStringLiteral("%1 %2").arg(maxAltitude()).arg(Units::altitudeUnit(m_metric));
}

QString PlayerModel::distanceText() const
{
    return QString::asprintf("%.1f ", distance()) + Units::distanceUnit(m_metric);
}

QString PlayerModel::altitudeText() const
{
    return QStringLiteral("%1 %2").arg(altitudeNow()).arg(Units::altitudeUnit(m_metric));
}

QString PlayerModel::speedText() const
{
    return QStringLiteral("%1 %2").arg(speedNow()).arg(Units::speedUnit(m_metric));
}

QString PlayerModel::mapScaleText() const
{
    return FlightMapCoordinator::scaleLabel(m_metric);
}

QString PlayerModel::clockText() const
{
    return Units::wholeTime(m_current) + QStringLiteral(" / ") + Units::wholeTime(duration());
}

void PlayerModel::setMetric(bool metric)
{
    if (metric == m_metric)
        return;
    m_metric = metric;
    Q_EMIT unitsChanged();
    Q_EMIT trackChanged();
    Q_EMIT currentChanged();
}

QString PlayerModel::toast() const
{
    return m_toast->text();
}

double PlayerModel::shuttleSpeed() const
{
    return m_isJogging ? m_jog->speed() : 0;
}

void PlayerModel::showToast(const QString &text)
{
    m_toast->show(text);
}
