#include "RenderPreviewModel.h"

#include "CancelToken.h"
#include "ReelsStore.h"
#include "RenderPlayback.h"
#include "RenderTags.h"
#include "TrackNames.h"

#include <QTimer>

#include <algorithm>
#include <cmath>

namespace {

QVariantMap choice(const QString &value, const QString &label)
{
    return {{QStringLiteral("value"), value}, {QStringLiteral("label"), label}};
}

const QString vertical = QStringLiteral("vertical");

} // namespace

RenderPreviewModel::RenderPreviewModel(QObject *parent) : QObject(parent), m_cancel(new CancelToken) {}

RenderPreviewModel::~RenderPreviewModel()
{
    // An aborted request resumes its task inside cancel(); while this destructor runs the task
    // would still find this object alive. Cancelled from the event loop instead, it finds it gone.
    CancelToken *token = m_cancel;
    QTimer::singleShot(0, token, [token] {
        token->cancel();
        token->deleteLater();
    });
}

QObject *RenderPreviewModel::storeObject() const
{
    return m_store.data();
}

void RenderPreviewModel::setStoreObject(QObject *store)
{
    setStore(qobject_cast<ReelsStore *>(store));
}

void RenderPreviewModel::setStore(ReelsStore *store)
{
    if (store == m_store)
        return;
    m_store = store;
    Q_EMIT givenChanged();
}

void RenderPreviewModel::setStoryId(const QString &id)
{
    if (id == m_storyId)
        return;
    m_storyId = id;
    Q_EMIT givenChanged();
}

void RenderPreviewModel::setStoryTitle(const QString &title)
{
    if (title == m_storyTitle)
        return;
    m_storyTitle = title;
    Q_EMIT givenChanged();
}

void RenderPreviewModel::setStoryVertical(bool vertical)
{
    if (vertical == m_storyVertical)
        return;
    m_storyVertical = vertical;
    Q_EMIT givenChanged();
    Q_EMIT settingsChanged();
}

void RenderPreviewModel::setAssumeRendering(bool assume)
{
    if (assume == m_assumeRendering)
        return;
    m_assumeRendering = assume;
    Q_EMIT givenChanged();
}

// ---- Settings ----

QVariantList RenderPreviewModel::trackChoices() const
{
    QVariantList out{choice(QStringLiteral("random"), QStringLiteral("Random")),
                     choice(QStringLiteral("none"), QStringLiteral("No music"))};
    for (const QString &track : m_tracks)
        out.append(choice(track, TrackNames::displayName(track)));
    return out;
}

QVariantList RenderPreviewModel::syncChoices()
{
    return {choice(QStringLiteral("bar"), QStringLiteral("Bar — cuts on downbeats")),
            choice(QStringLiteral("beat"), QStringLiteral("Beat — subtle")), choice(QString(), QStringLiteral("Off"))};
}

QVariantList RenderPreviewModel::aspectChoices()
{
    return {choice(QStringLiteral("landscape"), QStringLiteral("Widescreen")),
            choice(vertical, QStringLiteral("Vertical — for phones")),
            choice(QStringLiteral("both"), QStringLiteral("Both — two videos"))};
}

void RenderPreviewModel::setTrack(const QString &track)
{
    if (track == m_track)
        return;
    m_track = track;
    Q_EMIT settingsChanged();
}

void RenderPreviewModel::setSync(const QString &sync)
{
    if (sync == m_sync)
        return;
    m_sync = sync;
    Q_EMIT settingsChanged();
}

void RenderPreviewModel::setHud(bool hud)
{
    if (hud == m_hud)
        return;
    m_hud = hud;
    Q_EMIT settingsChanged();
}

void RenderPreviewModel::setAspect(const QString &aspect)
{
    if (aspect == m_aspect)
        return;
    m_aspect = aspect;
    Q_EMIT settingsChanged();
}

QString RenderPreviewModel::shownAspect() const
{
    return m_storyVertical ? vertical : m_aspect;
}

QString RenderPreviewModel::hudCaption() const
{
    if (m_aspect == vertical && !m_storyVertical)
        return QStringLiteral("widescreen-only — pick Both to keep it");
    return QStringLiteral("speed · alt · minimap overlay");
}

bool RenderPreviewModel::verticalNote() const
{
    // A vertical story is vertical footage: nothing of it is cropped away.
    return !m_storyVertical && (m_aspect == vertical || m_aspect == QLatin1String("both"));
}

RenderRequest RenderPreviewModel::request() const
{
    const QString aspect = shownAspect();
    RenderRequest body;
    body.track = m_track;
    if (!m_sync.isEmpty())
        body.beatSync = m_sync;
    // The overlay is drawn for widescreen; a vertical video has no room for it.
    body.hud = m_hud && aspect != vertical;
    body.xfade = crossFade;
    // Widescreen is what the server makes unless told otherwise.
    if (aspect != QLatin1String("landscape"))
        body.aspect = aspect;
    return body;
}

// ---- The job ----

QString RenderPreviewModel::buttonText() const
{
    return m_rendering ? QStringLiteral("Creating") : QStringLiteral("Create");
}

QString RenderPreviewModel::barText() const
{
    if (m_rendering) {
        const int percent = std::isfinite(m_progress) ? int(std::clamp(m_progress, 0.0, 1.0) * 100) : 0;
        return QStringLiteral("Creating… %1%").arg(percent);
    }
    return m_progressDone ? QStringLiteral("Created.") : QString();
}

void RenderPreviewModel::setRendering(bool rendering)
{
    if (rendering == m_rendering)
        return;
    m_rendering = rendering;
    Q_EMIT jobChanged();
}

void RenderPreviewModel::setProgress(double progress)
{
    if (progress == m_progress)
        return;
    m_progress = progress;
    Q_EMIT jobChanged();
}

void RenderPreviewModel::setProgressDone(bool done)
{
    if (done == m_progressDone)
        return;
    m_progressDone = done;
    Q_EMIT jobChanged();
}

void RenderPreviewModel::setNote(const QString &note)
{
    if (note == m_note)
        return;
    m_note = note;
    Q_EMIT noteChanged();
}

// ---- The video ----

bool RenderPreviewModel::videoVertical() const
{
    return m_status && RenderTags::isVertical(m_status->aspect);
}

QString RenderPreviewModel::staleLine() const
{
    if (!m_status || !m_status->stale.value_or(false))
        return {};
    return QStringLiteral("⚠ The story changed after this video was made — hit Create for the current cut.");
}

QString RenderPreviewModel::errorLine() const
{
    if (!m_status || !m_status->url || m_status->error.value_or(QString()).isEmpty())
        return {};
    return QStringLiteral("⚠ Last attempt failed: ") + *m_status->error;
}

QStringList RenderPreviewModel::tags() const
{
    return m_status && m_status->url ? RenderTags::tags(RenderTags::of(*m_status)) : QStringList();
}

QString RenderPreviewModel::musicText() const
{
    return m_status && m_status->url ? RenderTags::music(m_status->settings) : QString();
}

void RenderPreviewModel::shareDismissed()
{
    if (m_sharedFile.isEmpty())
        return;
    m_sharedFile.clear();
    Q_EMIT sharedFileChanged();
}
