// The player's lists: loading them, and every change to the flight's clips and stories.
#include "PlayerModel.h"

#include "APIClient.h"
#include "CancelToken.h"
#include "ClipPrompts.h"
#include "PlayerClipRows.h"
#include "FlightTrack.h"

#include <QPointer>

#include <cmath>

namespace {
QVariantMap confirmationMap(const ClipPrompts::Confirmation &c)
{
    return {{QStringLiteral("title"), c.title},
            {QStringLiteral("message"), c.message},
            {QStringLiteral("confirm"), c.confirm},
            {QStringLiteral("cancel"), c.cancel}};
}

QString actionName(ClipPrompts::Action action)
{
    switch (action) {
    case ClipPrompts::Action::Play: return QStringLiteral("play");
    case ClipPrompts::Action::Keep: return QStringLiteral("keep");
    case ClipPrompts::Action::Toss: return QStringLiteral("toss");
    case ClipPrompts::Action::AddToStory: return QStringLiteral("addToStory");
    case ClipPrompts::Action::NoStories: return QStringLiteral("noStories");
    case ClipPrompts::Action::Delete: return QStringLiteral("delete");
    }
    return {};
}

const QString saveFailed = QStringLiteral("Save failed — check connection");
const QString addFailed = QStringLiteral("Couldn’t add to story");
} // namespace

void PlayerModel::load()
{
    loadAsync();
}

QCoro::Task<> PlayerModel::loadAsync()
{
    QPointer<PlayerModel> self(this);
    const std::shared_ptr<APIClient> client = m_client;
    const QString id = m_flight.id;
    CancelToken *cancel = m_loadCancel;

    // All four start now; each one that fails leaves its list empty, silently: a flight without
    // telemetry or moments still plays.
    auto clipsTask = client->fetchClips(id, cancel);
    auto trackTask = client->fetchTrack(id, cancel);
    auto reelsTask = client->fetchProjects(cancel);
    auto momentsTask = client->fetchMoments(id, cancel);

    auto clips = co_await std::move(clipsTask);
    if (!self)
        co_return;
    setClips(clips ? std::move(clips).value() : QList<Clip>{});

    auto track = co_await std::move(trackTask);
    if (!self)
        co_return;
    m_track = track ? std::move(track).value() : QList<TrackSample>{};

    auto reels = co_await std::move(reelsTask);
    if (!self)
        co_return;
    m_reels = reels ? std::move(reels).value() : QList<ProjectSummary>{};
    Q_EMIT reelsChanged();

    auto moments = co_await std::move(momentsTask);
    if (!self)
        co_return;
    m_moments = moments ? std::move(moments).value() : QList<Moment>{};

    m_pathCoords = FlightTrack::path(m_track);
    m_altPoints = FlightTrack::altitudeCurve(m_track, m_metric);
    m_curveMetric = m_metric;
    if (m_track.isEmpty() && duration() > 0)
        m_altPoints = FlightTrack::flatCurve(duration());
    Q_EMIT trackChanged();
    Q_EMIT clipsChanged();
    Q_EMIT currentChanged();

    if (m_setup.spikeMarks && duration() > 0)
        setMarks(0.11 * duration(), 0.16 * duration());
    m_player->play();
}

void PlayerModel::setClips(QList<Clip> clips)
{
    m_clips = std::move(clips);
    m_myRows->setClips(myClips());
    m_suggestedRows->setClips(suggestedClips());
    Q_EMIT clipsChanged();
}

const Clip *PlayerModel::clipWithId(const QString &id) const
{
    for (const Clip &clip : m_clips) {
        if (clip.id == id)
            return &clip;
    }
    return nullptr;
}

void PlayerModel::setSaving(bool saving)
{
    if (saving == m_saving)
        return;
    m_saving = saving;
    Q_EMIT savingChanged();
}

QCoro::Task<> PlayerModel::saveList(QString success)
{
    QPointer<PlayerModel> self(this);
    const std::shared_ptr<APIClient> client = m_client;
    setSaving(true);
    const auto saved = co_await client->saveClips(m_flight.id, m_clips);
    if (!self)
        co_return;
    // The local list stays as it is either way: what failed to go goes with the next save.
    showToast(saved ? success : saveFailed);
    setSaving(false);
}

void PlayerModel::saveClip(const QString &label)
{
    saveClipAsync(label);
}

QCoro::Task<> PlayerModel::saveClipAsync(QString label)
{
    if (!m_markIn || !m_markOut || !(*m_markIn < *m_markOut))
        co_return;
    Clip clip;
    // Unique only through the milliseconds: after a delete the count repeats.
    clip.id = QStringLiteral("c%1_%2").arg(m_clips.size() + 1).arg(qint64(std::trunc(*m_markIn * 1000)));
    clip.start = *m_markIn;
    clip.end = *m_markOut;
    qsizetype first = 0;
    qsizetype last = label.size();
    while (first < last && (label[first] == u' ' || label[first] == u'\t'))
        ++first;
    while (last > first && (label[last - 1] == u' ' || label[last - 1] == u'\t'))
        --last;
    clip.label = label.mid(first, last - first);
    QList<Clip> clips = m_clips;
    clips.append(clip);
    setClips(std::move(clips));
    setMarks(std::nullopt, std::nullopt);
    m_player->play();
    setClipName(QString());
    Q_EMIT clipSaved();
    co_await saveList(QStringLiteral("Clip saved"));
}

void PlayerModel::removeClips(const QString &clipId)
{
    QList<Clip> clips = m_clips;
    clips.removeIf([&](const Clip &c) { return c.id == clipId; });
    setClips(std::move(clips));
}

void PlayerModel::deleteClip(const QString &clipId)
{
    deleteClipAsync(clipId);
}

QCoro::Task<> PlayerModel::deleteClipAsync(QString clipId)
{
    removeClips(clipId);
    co_await saveList(QStringLiteral("Deleted"));
}

void PlayerModel::keepClip(const QString &clipId)
{
    keepClipAsync(clipId);
}

QCoro::Task<> PlayerModel::keepClipAsync(QString clipId)
{
    QList<Clip> clips = m_clips;
    const auto it = std::find_if(clips.begin(), clips.end(), [&](const Clip &c) { return c.id == clipId; });
    if (it == clips.end())
        co_return;
    it->autoSuggested.reset();
    setClips(std::move(clips));
    co_await saveList(QStringLiteral("Kept — it's your clip now"));
}

void PlayerModel::tossClip(const QString &clipId)
{
    tossClipAsync(clipId);
}

QCoro::Task<> PlayerModel::tossClipAsync(QString clipId)
{
    removeClips(clipId);
    co_await saveList(QStringLiteral("Tossed — won't be suggested again"));
}

void PlayerModel::addToStory(const QString &clipId, const QString &reelId)
{
    addToStoryAsync(clipId, reelId);
}

QCoro::Task<> PlayerModel::addToStoryAsync(QString clipId, QString reelId)
{
    const Clip *found = clipWithId(clipId);
    if (!found)
        co_return;
    const Clip clip = *found;
    QPointer<PlayerModel> self(this);
    const std::shared_ptr<APIClient> client = m_client;
    auto fetched = co_await client->fetchProject(reelId);
    if (!self)
        co_return;
    if (!fetched) {
        showToast(addFailed);
        co_return;
    }
    Project project = std::move(fetched).value();
    ReelItem item;
    item.flightId = m_flight.id;
    item.clipId = clip.id;
    item.start = clip.start;
    item.end = clip.end;
    item.label = clip.label;
    project.items.append(item);
    const QString title = project.title;
    const auto saved = co_await client->saveProject(std::move(project));
    if (!self)
        co_return;
    showToast(saved ? QStringLiteral("Added to ") + title : addFailed);
}

QVariantMap PlayerModel::deleteConfirmation(const QString &clipId) const
{
    const Clip *clip = clipWithId(clipId);
    return clip ? confirmationMap(ClipPrompts::deleteClip(*clip)) : QVariantMap();
}

QVariantMap PlayerModel::tossConfirmation(const QString &clipId) const
{
    const Clip *clip = clipWithId(clipId);
    return clip ? confirmationMap(ClipPrompts::tossSuggestion(*clip)) : QVariantMap();
}

QVariantList PlayerModel::clipMenu(const QString &clipId) const
{
    const Clip *clip = clipWithId(clipId);
    if (!clip)
        return {};
    QVariantList lines;
    for (const ClipPrompts::MenuEntry &entry : ClipPrompts::menu(*clip, m_reels))
        lines.append(QVariantMap{{QStringLiteral("action"), actionName(entry.action)},
                                 {QStringLiteral("text"), entry.text},
                                 {QStringLiteral("reelId"), entry.reelId},
                                 {QStringLiteral("submenu"), entry.submenu}});
    return lines;
}
