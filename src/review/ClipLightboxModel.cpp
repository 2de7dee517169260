// The lightbox's clip, header and telemetry; the actions are in ClipLightboxActions.cpp.
#include "ClipLightboxModel.h"

#include "APIClient.h"
#include "ClipFilmstrip.h"
#include "ClipPool.h"
#include "ClipsBrowserModel.h"
#include "TrackLookup.h"
#include "Units.h"

#include <cmath>

ClipLightboxModel::ClipLightboxModel(ClipsBrowserModel *browser, LightboxEngine::PlayerFactory makePlayer,
                                     QObject *parent)
    : QObject(parent), m_browser(browser), m_engine(new LightboxEngine(std::move(makePlayer), this)),
      m_strip(new ClipFilmstrip(m_engine, minClip, this))
{
    connect(browser, &ClipsBrowserModel::lightboxChanged, this, &ClipLightboxModel::follow);
    connect(m_strip, &ClipFilmstrip::draftChanged, this, &ClipLightboxModel::dirtyChanged);
    connect(m_engine, &LightboxEngine::currentChanged, this, &ClipLightboxModel::telemetryChanged);
    follow();
}

ClipLightboxModel::~ClipLightboxModel() = default;

void ClipLightboxModel::follow()
{
    if (!m_browser)
        return;
    const bool open = m_browser->lightboxOpen();
    if (open != m_open) {
        m_open = open;
        if (open) {
            m_engine->startObserving();
            showClip();
        } else {
            m_engine->stop();
            m_shownIndex = -1;
        }
        Q_EMIT openChanged();
        return;
    }
    if (open && (m_browser->lightboxIndex() != m_shownIndex || m_browser->playAll() != m_shownPlayAll))
        showClip();
}

void ClipLightboxModel::showClip()
{
    m_shownIndex = m_browser->lightboxIndex();
    m_shownPlayAll = m_browser->playAll();
    const QList<PoolClip> &clips = m_browser->visible();
    const auto client = m_browser->store()->client();
    if (m_shownIndex < 0 || m_shownIndex >= clips.size() || !client) {
        m_clip.reset();
        Q_EMIT clipChanged();
        return;
    }
    m_clip = clips[m_shownIndex];
    const PoolClip &clip = *m_clip;
    const QUrl video = client->proxyURL(clip.flightId, clip.p480.value_or(false), m_hq);
    LightboxEngine::SegmentEnd onEnd;
    if (m_shownPlayAll)
        onEnd = [this] { moveTo(m_shownIndex + 1); };
    m_engine->load(video, client->mediaHeaders(), clip.start, clip.end, std::move(onEnd));
    m_strip->setClip(video, client->ffmpegHeaders(), clip.start, clip.end);
    m_track.clear();
    Q_EMIT clipChanged();
    Q_EMIT telemetryChanged();
    Q_EMIT dirtyChanged();
    fetchTrack(clip.flightId);
}

QCoro::Task<> ClipLightboxModel::fetchTrack(QString flightId)
{
    QPointer<ClipLightboxModel> self(this);
    QPointer<ClipsBrowserModel> browser = m_browser;
    if (!browser)
        co_return;
    auto samples = co_await browser->store()->track(flightId);
    // The pilot may have moved to another flight's clip meanwhile.
    if (!self || !m_clip || m_clip->flightId != flightId)
        co_return;
    m_track = std::move(samples);
    Q_EMIT telemetryChanged();
}

void ClipLightboxModel::moveTo(int index)
{
    if (!m_browser)
        return;
    if (index >= 0 && index < m_browser->visible().size())
        m_browser->setLightboxIndex(index);
    else
        m_browser->closeLightbox();
}

void ClipLightboxModel::next()
{
    moveTo(m_shownIndex + 1);
}

void ClipLightboxModel::previous()
{
    moveTo(m_shownIndex - 1);
}

void ClipLightboxModel::close()
{
    if (m_browser)
        m_browser->closeLightbox();
}

QString ClipLightboxModel::label() const
{
    return m_clip ? m_clip->label : QString();
}

QString ClipLightboxModel::placeText() const
{
    return m_clip ? m_clip->place.value_or(QStringLiteral("Unknown place")) : QString();
}

QString ClipLightboxModel::lengthText() const
{
    return m_clip ? QString::asprintf("%.1f s", m_clip->end - m_clip->start) : QString();
}

QString ClipLightboxModel::positionText() const
{
    if (!m_clip || !m_browser)
        return {};
    int count = 0, position = 0;
    const QList<PoolClip> &clips = m_browser->visible();
    for (int i = 0; i < clips.size(); ++i) {
        if (clips[i].flightId != m_clip->flightId)
            continue;
        ++count;
        if (i == m_shownIndex)
            position = count;
    }
    if (count < 2)
        return {};
    return QStringLiteral("%1 of %2 from this flight").arg(position).arg(count);
}

bool ClipLightboxModel::suggested() const
{
    return m_clip && ClipPool::isSuggestion(*m_clip);
}

QString ClipLightboxModel::why() const
{
    return m_clip ? m_clip->why.value_or(QString()) : QString();
}

bool ClipLightboxModel::playAll() const
{
    return m_shownPlayAll;
}

std::optional<TrackSample> ClipLightboxModel::sampleNow() const
{
    return TrackLookup::sample(m_track, m_engine->current());
}

QString ClipLightboxModel::altitudeText() const
{
    const auto at = sampleNow();
    if (!at)
        return {};
    return QStringLiteral("%1 %2").arg(Units::truncated(Units::altitude(at->relAlt.value_or(0), m_metric)))
        .arg(Units::altitudeUnit(m_metric));
}

QString ClipLightboxModel::speedText() const
{
    const auto at = sampleNow();
    if (!at)
        return {};
    return QStringLiteral("%1 %2").arg(Units::truncated(Units::speed(at->speed.value_or(0), m_metric)))
        .arg(Units::speedUnit(m_metric));
}

QString ClipLightboxModel::headingText() const
{
    const auto at = sampleNow();
    if (!at)
        return {};
    return QStringLiteral("%1°").arg(Units::truncated(TrackLookup::heading(at->yaw.value_or(0))));
}

bool ClipLightboxModel::dirty() const
{
    const auto &draft = m_strip->draft();
    if (!draft || !m_clip)
        return false;
    return std::abs(draft->start - m_clip->start) > dirtyThreshold || std::abs(draft->end - m_clip->end) > dirtyThreshold;
}

void ClipLightboxModel::setMetric(bool metric)
{
    if (metric == m_metric)
        return;
    m_metric = metric;
    Q_EMIT telemetryChanged();
}

void ClipLightboxModel::setHq(bool hq)
{
    if (hq == m_hq)
        return;
    m_hq = hq;
    Q_EMIT hqChanged();
}

void ClipLightboxModel::setBusy(bool busy)
{
    if (busy == m_busy)
        return;
    m_busy = busy;
    Q_EMIT busyChanged();
}
