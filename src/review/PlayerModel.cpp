#include "PlayerModel.h"

#include "APIClient.h"
#include "CancelToken.h"
#include "ClipPrompts.h"
#include "ClipRowsModel.h"
#include "Clock.h"
#include "FlightTrack.h"
#include "JogShuttleEngine.h"
#include "Toast.h"
#include "Units.h"

#include <QPointer>

#include <cmath>

namespace {
/// Frames are stepped at this length; proxies keep their source's rate, 30 fps for most aircraft.
constexpr double frameStep = 1.0 / 30;

QVariantMap rangeOf(double start, double end)
{
    return {{QStringLiteral("start"), start}, {QStringLiteral("end"), end}};
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
      m_myRows(new ClipRowsModel(this)),
      m_suggestedRows(new ClipRowsModel(this))
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
    QList<Clip> mine;
    for (const Clip &clip : m_clips) {
        if (!ClipPrompts::isSuggestion(clip))
            mine.append(clip);
    }
    return mine;
}

QList<Clip> PlayerModel::suggestedClips() const
{
    QList<Clip> suggested;
    for (const Clip &clip : m_clips) {
        if (ClipPrompts::isSuggestion(clip))
            suggested.append(clip);
    }
    return suggested;
}

QList<QPointF> PlayerModel::markedPath() const
{
    if (!hasRange())
        return {};
    return FlightTrack::markedPath(m_track, *m_markIn, *m_markOut);
}

QVariantList PlayerModel::clipRanges() const
{
    QVariantList ranges;
    for (const Clip &clip : myClips()) {
        if (clip.start < clip.end)
            ranges.append(rangeOf(clip.start, clip.end));
    }
    return ranges;
}

QVariantList PlayerModel::suggestedRanges() const
{
    QVariantList ranges;
    for (const Clip &clip : suggestedClips()) {
        if (clip.start < clip.end)
            ranges.append(rangeOf(clip.start, clip.end));
    }
    return ranges;
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
    const int index = FlightTrack::sampleIndexAt(m_track, t);
    if (index < 0)
        return std::nullopt;
    return m_track[index];
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

// ---- Playback ----

void PlayerModel::onTick(double time)
{
    if (m_isJogging)
        return;
    if (std::isfinite(time))
        setCurrent(time);
    if (m_segmentEnd && *m_segmentEnd <= time) {
        m_player->pause();
        m_segmentEnd.reset();
        m_segmentTimer->stop();
        return;
    }
    armSegmentEnd(time);
}

void PlayerModel::armSegmentEnd(double now)
{
    if (!m_segmentEnd || !m_player->isPlaying() || !std::isfinite(now))
        return;
    const double left = *m_segmentEnd - now;
    if (left < observerInterval)
        m_segmentTimer->start(std::chrono::microseconds(std::llround(left * 1e6)), false);
}

void PlayerModel::setCurrent(double t)
{
    if (t == m_current)
        return;
    m_current = t;
    Q_EMIT currentChanged();
    if (m_markIn && !m_markOut)
        Q_EMIT pendingChanged();
}

double PlayerModel::playerTime() const
{
    const double t = m_player->currentTime();
    return std::isfinite(t) ? t : 0.0;
}

void PlayerModel::play()
{
    m_player->play();
}

void PlayerModel::pause()
{
    m_player->pause();
}

void PlayerModel::togglePlay()
{
    if (m_isJogging) {
        shuttleStop();
        return;
    }
    if (m_player->isPlaying())
        m_player->pause();
    else
        m_player->play();
}

void PlayerModel::seek(double t)
{
    m_jog->stop();
    setJogging(false);
    m_player->pause();
    const double target = std::clamp(t, 0.0, duration());
    QPointer<PlayerModel> self(this);
    m_player->seek(target, seekTolerance, seekTolerance, [self](bool finished) {
        // A paused player's observer may not tick again soon: show where the seek landed.
        if (self && finished && !self->m_isJogging && std::isfinite(self->m_player->currentTime()))
            self->setCurrent(self->m_player->currentTime());
    });
}

void PlayerModel::seekToSample(int index)
{
    if (index >= 0 && index < m_track.size())
        seek(m_track[index].t);
}

void PlayerModel::stepFrame(int direction)
{
    if (m_player->isPlaying() || m_isJogging || direction == 0)
        return;
    const double target = std::clamp(playerTime() + (direction < 0 ? -frameStep : frameStep), 0.0, duration());
    QPointer<PlayerModel> self(this);
    m_player->seekExactly(target, [self](bool finished) {
        if (self && finished && std::isfinite(self->m_player->currentTime()))
            self->setCurrent(self->m_player->currentTime());
    });
}

// ---- Marks ----

void PlayerModel::setMarks(std::optional<double> in, std::optional<double> out)
{
    if (in == m_markIn && out == m_markOut)
        return;
    m_markIn = in;
    m_markOut = out;
    Q_EMIT marksChanged();
    Q_EMIT pendingChanged();
}

void PlayerModel::setMarkIn()
{
    const double t = playerTime();
    std::optional<double> out = m_markOut;
    if (out && !(*out > t))
        out.reset();
    setMarks(t, out);
}

void PlayerModel::setMarkOut()
{
    if (!m_markIn)
        return;
    const double t = playerTime();
    if (!(t > *m_markIn))
        return;
    setMarks(m_markIn, t);
    m_player->pause();
}

void PlayerModel::clearMarks()
{
    setMarks(std::nullopt, std::nullopt);
    m_player->play();
    setClipName(QString());
}

void PlayerModel::playClip(const QString &clipId)
{
    const Clip *clip = clipWithId(clipId);
    if (!clip)
        return;
    m_jog->stop();
    setJogging(false);
    m_segmentEnd.reset();
    m_segmentTimer->stop();
    // The end counts once the playhead is inside the clip: until the seek lands the player may
    // still report a time past it.
    QPointer<PlayerModel> self(this);
    m_player->seekExactly(clip->start, [self, end = clip->end](bool finished) {
        if (self && finished)
            self->m_segmentEnd = end;
    });
    m_player->play();
}

// ---- Jog and shuttle ----

void PlayerModel::setJogging(bool jogging)
{
    if (!jogging)
        m_shuttleFromKeys = false;
    if (jogging == m_isJogging)
        return;
    m_isJogging = jogging;
    Q_EMIT isJoggingChanged();
}

void PlayerModel::beginJog()
{
    setJogging(true);
    m_jog->stop();
    m_player->pause();
    QPointer<PlayerModel> self(this);
    m_jog->start(m_player, m_current, duration(), [self](double t) {
        if (self)
            self->setCurrent(t);
    });
}

void PlayerModel::jogTo(double displacement)
{
    m_jog->setDisplacement(displacement);
    Q_EMIT isJoggingChanged();
}

void PlayerModel::endJog()
{
    if (!m_isJogging)
        return;
    m_jog->stop();
    setJogging(false);
    m_player->play();
}

void PlayerModel::shuttle(int direction)
{
    if (direction == 0)
        return;
    const double sign = direction < 0 ? -1 : 1;
    double speed = sign;
    if (m_isJogging && m_shuttleFromKeys && m_jog->speed() * sign > 0)
        speed = JogShuttleEngine::nextSpeed(m_jog->speed());
    if (!m_isJogging)
        beginJog();
    m_shuttleFromKeys = true;
    jogTo(JogShuttleEngine::displacementFor(speed));
}

void PlayerModel::shuttleStop()
{
    if (!m_isJogging) {
        m_player->pause();
        return;
    }
    // Stays where the pilot sees it, not where the last seek happened to land.
    seek(m_jog->jogTime());
}

void PlayerModel::stop()
{
    m_jog->stop();
    setJogging(false);
    m_player->pause();
    m_segmentTimer->stop();
    if (m_timeObserver) {
        m_player->removeTimeObserver(*m_timeObserver);
        m_timeObserver.reset();
    }
}

void PlayerModel::requestTheater()
{
    Q_EMIT theaterRequested(m_flight.id);
}
