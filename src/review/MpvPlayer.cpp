#include "MpvPlayer.h"

#include "MpvNode.h"
#include "MpvProperties.h"

#include <mpv/client.h>

#include <QPointer>

#include <algorithm>
#include <clocale>
#include <cmath>

namespace {

/// What an asynchronous request was, kept in the top byte of its reply id above a sequence number.
enum class Request : std::uint64_t { Untracked = 0, Load, Seek, Pause };
constexpr int requestShift = 56;

std::uint64_t tagFor(Request request, std::uint64_t &counter)
{
    return (std::uint64_t(request) << requestShift) | (counter++ & ((std::uint64_t(1) << requestShift) - 1));
}

Request requestOf(std::uint64_t tag)
{
    return Request(tag >> requestShift);
}

/// Observed properties, by the reply id they were registered with.
enum class Observed : std::uint64_t { Pause = 1, Duration };

bool sameSeconds(double a, double b)
{
    return a == b || (std::isnan(a) && std::isnan(b));
}

} // namespace

MpvPlayer::MpvPlayer(Output output, QObject *parent)
    : VideoPlayer(parent)
    , m_output(output)
    , m_observers([this] { return currentTime(); })
{
    // mpv refuses to start unless numbers are written with a '.', and the Qt application object
    // has set the locale from the environment by the time a player is made.
    std::setlocale(LC_NUMERIC, "C");
    m_mpv = mpv_create();
    if (!m_mpv) {
        m_startError = QString::fromUtf8(mpv_error_string(MPV_ERROR_NOMEM));
        return;
    }
    for (const auto &option : MpvProperties::common)
        mpv_set_option_string(m_mpv, option.name, option.value);
    for (const auto &option : MpvProperties::outputOptions(output == Output::Headless))
        mpv_set_option_string(m_mpv, option.name, option.value);
    if (const int started = mpv_initialize(m_mpv); started < 0) {
        m_startError = QString::fromUtf8(mpv_error_string(started));
        mpv_destroy(m_mpv);
        m_mpv = nullptr;
        return;
    }
    mpv_request_log_messages(m_mpv, MpvProperties::errorLogLevel);
    mpv_observe_property(m_mpv, std::uint64_t(Observed::Pause), MpvProperties::pause, MPV_FORMAT_FLAG);
    mpv_observe_property(m_mpv, std::uint64_t(Observed::Duration), MpvProperties::duration, MPV_FORMAT_DOUBLE);
    mpv_set_wakeup_callback(m_mpv, [](void *self) { static_cast<MpvPlayer *>(self)->wakeup(); }, this);
}

MpvPlayer::~MpvPlayer()
{
    if (!m_mpv)
        return;
    // Returns only once no callback runs, so no wakeup reaches a half-destroyed player.
    mpv_set_wakeup_callback(m_mpv, nullptr, nullptr);
    // A render item may keep the core alive a little longer: it must not go on playing meanwhile.
    const char *stop[] = {MpvProperties::stop, nullptr};
    mpv_command(m_mpv, stop);
    mpv_destroy(m_mpv);
    m_mpv = nullptr;
}

// ---- Files ----

void MpvPlayer::replaceItem(const QUrl &url, const QStringList &headers)
{
    finishSeek(false);
    const bool hadFile = m_loadSent;
    m_url = url;
    m_headers = headers;
    m_hasItem = true;
    m_loadSent = false;
    m_loaded = false;
    m_firstFrameSeen = false;
    m_entry = -1;
    m_lastError.clear();
    m_resumeAt = notKnown();
    m_videoGoing = false;
    setDuration(notKnown());
    setPausedLocally(true);
    if (!m_mpv) {
        fail(m_startError);
        return;
    }
    if (m_output == Output::Headless || m_rendererAttached) {
        sendLoad();
    } else if (hadFile) {
        // The new file waits for a render item; the old one must not play on meanwhile.
        const char *stop[] = {MpvProperties::stop, nullptr};
        mpv_command_async(m_mpv, 0, stop);
    }
}

void MpvPlayer::sendLoad()
{
    m_loadSent = true;
    QStringList lines;
    for (const QString &line : std::as_const(m_headers))
        if (!line.contains(QLatin1Char('\n')) && !line.contains(QLatin1Char('\r')))
            lines.append(line);
    MpvNode::StringList headerNode(lines);
    // Requests of one client run in order: the headers are in place before the file opens.
    mpv_set_property_async(m_mpv, 0, MpvProperties::httpHeaderFields, MPV_FORMAT_NODE, headerNode.node());
    const QByteArray target = (m_url.isLocalFile() ? m_url.toLocalFile() : m_url.toString(QUrl::FullyEncoded)).toUtf8();
    const QByteArray start = std::isfinite(m_resumeAt) ? MpvProperties::loadStart + QByteArray::number(m_resumeAt, 'f', 6)
                                                       : QByteArray();
    m_resumeAt = notKnown();
    const char *load[] = {MpvProperties::loadfile, target.constData(), MpvProperties::loadReplace,
                          start.isEmpty() ? nullptr : start.constData(), nullptr};
    m_loadTag = tagFor(Request::Load, m_nextRequest);
    if (const int sent = mpv_command_async(m_mpv, m_loadTag, load); sent < 0)
        fail(QString::fromUtf8(mpv_error_string(sent)));
}

void MpvPlayer::fail(const QString &reason)
{
    m_hasItem = false;
    m_loaded = false;
    finishSeek(false);
    updatePlaying();
    // Queued: a failure found inside replaceItem reaches a caller that connects right after it.
    QMetaObject::invokeMethod(this, [this, reason] { Q_EMIT loadFailed(reason); }, Qt::QueuedConnection);
}

void MpvPlayer::attachRenderer()
{
    m_rendererAttached = true;
    if (!m_mpv || !m_hasItem)
        return;
    if (!m_loadSent) {
        sendLoad();
    } else {
        // mpv drops the video output with the render context it drew into.
        const char *reload[] = {MpvProperties::videoReload, nullptr};
        mpv_command_async(m_mpv, 0, reload);
    }
}

void MpvPlayer::detachRenderer()
{
    m_rendererAttached = false;
    m_videoGoing = m_loadSent;
    if (m_loaded)
        m_resumeAt = currentTime();
}

void MpvPlayer::waitForRenderer()
{
    m_videoGoing = false;
    m_loadSent = false;
    m_loaded = false;
    m_entry = -1;
    // A seek under way went with the file: it is sent again once the file is open again.
    if (m_seek)
        m_seek->stage = SeekStage::WaitingForFile;
    // The next item may have attached before mpv told of the loss.
    if (m_rendererAttached)
        sendLoad();
}

mpv_handle *MpvPlayer::createRenderClient() const
{
    return m_mpv ? mpv_create_client(m_mpv, "render") : nullptr;
}

// ---- Play, pause, mute ----

void MpvPlayer::play()
{
    setPausedLocally(false);
}

void MpvPlayer::pause()
{
    setPausedLocally(true);
}

void MpvPlayer::setPausedLocally(bool paused)
{
    m_paused = paused;
    if (m_mpv) {
        int flag = paused ? 1 : 0;
        // Until mpv has taken this, reports of the pause flag are older than it.
        ++m_pauseSetsInFlight;
        if (mpv_set_property_async(m_mpv, tagFor(Request::Pause, m_nextRequest), MpvProperties::pause,
                                   MPV_FORMAT_FLAG, &flag) < 0)
            --m_pauseSetsInFlight;
    }
    updatePlaying();
}

void MpvPlayer::updatePlaying()
{
    const bool playing = m_hasItem && !m_paused;
    if (playing == m_playing)
        return;
    m_playing = playing;
    Q_EMIT playingChanged();
}

void MpvPlayer::setMuted(bool muted)
{
    if (muted == m_muted)
        return;
    m_muted = muted;
    // Nothing else mutes the player, so mpv's flag needn't be observed.
    int flag = muted ? 1 : 0;
    if (m_mpv)
        mpv_set_property_async(m_mpv, 0, MpvProperties::mute, MPV_FORMAT_FLAG, &flag);
    Q_EMIT mutedChanged();
}

void MpvPlayer::setDuration(double seconds)
{
    if (sameSeconds(seconds, m_duration))
        return;
    m_duration = seconds;
    Q_EMIT durationChanged();
}

// ---- Time and seeks ----

double MpvPlayer::currentTime() const
{
    double seconds = 0;
    if (!m_mpv || !m_loaded || mpv_get_property(m_mpv, MpvProperties::timePos, MPV_FORMAT_DOUBLE, &seconds) < 0)
        return notKnown();
    return seconds;
}

const char *MpvPlayer::seekFlags(double before, double after)
{
    // Measured by bench/player: a keyframe seek lands seconds away from its target on the
    // import's proxies (4 s on average, a keyframe every ~8 s; half a second with one a
    // second), far outside the tenth of a second the screens allow, while mpv has no seek
    // in between. So a tolerance buys nothing here and every seek is exact.
    Q_UNUSED(before)
    Q_UNUSED(after)
    return MpvProperties::seekExact;
}

void MpvPlayer::seek(double time, double before, double after, SeekDone done)
{
    finishSeek(false);
    if (!m_mpv || !m_hasItem || !std::isfinite(time)) {
        if (done)
            QMetaObject::invokeMethod(this, [done = std::move(done)] { done(false); }, Qt::QueuedConnection);
        return;
    }
    m_seek = PendingSeek{tagFor(Request::Seek, m_nextRequest), time, seekFlags(before, after), std::move(done),
                         SeekStage::WaitingForFile};
    if (m_loaded)
        sendSeek();
}

void MpvPlayer::sendSeek()
{
    const QByteArray target = QByteArray::number(m_seek->time, 'f', 6);
    const char *command[] = {MpvProperties::seek, target.constData(), m_seek->flags, nullptr};
    m_seek->stage = SeekStage::Sent;
    if (mpv_command_async(m_mpv, m_seek->tag, command) < 0)
        finishSeek(false);
}

void MpvPlayer::finishSeek(bool finished)
{
    if (!m_seek)
        return;
    SeekDone done = std::move(m_seek->done);
    m_seek.reset();
    // Always from the event loop: a completion may start the next seek, and the caller of a
    // seek that replaces this one is still inside `seek`.
    if (done)
        QMetaObject::invokeMethod(this, [done = std::move(done), finished] { done(finished); }, Qt::QueuedConnection);
}

// ---- Time observers ----

VideoPlayer::ObserverId MpvPlayer::addPeriodicTimeObserver(double intervalSeconds, QObject *context, Observer observer)
{
    return m_observers.add(intervalSeconds, context, std::move(observer));
}

void MpvPlayer::removeTimeObserver(ObserverId id)
{
    m_observers.remove(id);
}

// ---- Events ----

void MpvPlayer::wakeup()
{
    // Any mpv thread. One queued drain at a time is enough: it empties the whole queue.
    if (!m_wakeupQueued.exchange(true))
        QMetaObject::invokeMethod(this, &MpvPlayer::drainEvents, Qt::QueuedConnection);
}

void MpvPlayer::drainEvents()
{
    m_wakeupQueued = false;
    if (!m_mpv || m_draining)
        return;
    m_draining = true;
    const QPointer<MpvPlayer> alive(this);
    while (true) {
        const mpv_event *event = mpv_wait_event(m_mpv, 0);
        if (event->event_id == MPV_EVENT_NONE)
            break;
        handleEvent(*event);
        // A slot of one of the signals may have deleted the player.
        if (!alive)
            return;
    }
    m_draining = false;
}

void MpvPlayer::handleEvent(const mpv_event &event)
{
    switch (event.event_id) {
    case MPV_EVENT_LOG_MESSAGE: {
        const auto *message = static_cast<const mpv_event_log_message *>(event.data);
        m_lastError = QString::fromUtf8(message->text).trimmed();
        break;
    }
    case MPV_EVENT_COMMAND_REPLY:
    case MPV_EVENT_SET_PROPERTY_REPLY:
        handleReply(event);
        break;
    case MPV_EVENT_PROPERTY_CHANGE:
        handlePropertyChange(event);
        break;
    case MPV_EVENT_START_FILE:
        m_startedEntry = static_cast<const mpv_event_start_file *>(event.data)->playlist_entry_id;
        break;
    case MPV_EVENT_FILE_LOADED:
        // Carries no entry: it belongs to the file that started last.
        if (m_entry >= 0 && m_startedEntry == m_entry)
            handleFileLoaded();
        break;
    case MPV_EVENT_END_FILE:
        handleEndFile(event);
        break;
    case MPV_EVENT_PLAYBACK_RESTART:
        handlePlaybackRestart();
        break;
    default:
        break;
    }
}

void MpvPlayer::handleReply(const mpv_event &event)
{
    switch (requestOf(event.reply_userdata)) {
    case Request::Load:
        if (event.reply_userdata != m_loadTag)
            return;
        if (event.error < 0)
            return fail(QString::fromUtf8(mpv_error_string(event.error)));
        m_entry = MpvNode::int64In(static_cast<const mpv_event_command *>(event.data)->result,
                                   MpvProperties::playlistEntryId, -1);
        return;
    case Request::Seek:
        if (!m_seek || m_seek->tag != event.reply_userdata)
            return;
        if (event.error < 0)
            return finishSeek(false);
        if (m_seek->stage == SeekStage::Sent)
            m_seek->stage = SeekStage::Acknowledged;
        return;
    case Request::Pause:
        m_pauseSetsInFlight = std::max(0, m_pauseSetsInFlight - 1);
        return;
    case Request::Untracked:
        return;
    }
}

void MpvPlayer::handlePropertyChange(const mpv_event &event)
{
    const auto *property = static_cast<const mpv_event_property *>(event.data);
    const bool isFlag = property->format == MPV_FORMAT_FLAG;
    switch (Observed(event.reply_userdata)) {
    case Observed::Pause:
        // At the end of a file mpv pauses by itself (keep-open).
        if (isFlag && m_pauseSetsInFlight == 0) {
            m_paused = *static_cast<const int *>(property->data) != 0;
            updatePlaying();
        }
        break;
    case Observed::Duration:
        // Reports from before the latest file loaded may still be about the one it replaced.
        if (m_loaded)
            setDuration(property->format == MPV_FORMAT_DOUBLE ? *static_cast<const double *>(property->data) : notKnown());
        break;
    }
}

void MpvPlayer::handleFileLoaded()
{
    m_loaded = true;
    double seconds = 0;
    setDuration(mpv_get_property(m_mpv, MpvProperties::duration, MPV_FORMAT_DOUBLE, &seconds) >= 0 ? seconds : notKnown());
    if (m_seek && m_seek->stage == SeekStage::WaitingForFile)
        sendSeek();
}

void MpvPlayer::handleEndFile(const mpv_event &event)
{
    const auto *end = static_cast<const mpv_event_end_file *>(event.data);
    if (m_entry < 0 || end->playlist_entry_id != m_entry)
        return;
    m_loaded = false;
    if (end->reason != MPV_END_FILE_REASON_ERROR) {
        finishSeek(false);
        return;
    }
    // Only a loss the item announced is waited out: any other failure of the video output
    // would fail again on every reopening.
    if (end->error == MPV_ERROR_VO_INIT_FAILED && m_videoGoing)
        return waitForRenderer();
    QString reason = QString::fromUtf8(mpv_error_string(end->error));
    if (!m_lastError.isEmpty())
        reason += QStringLiteral(": ") + m_lastError;
    fail(reason);
}

void MpvPlayer::handlePlaybackRestart()
{
    if (!m_loaded)
        return;
    // mpv runs a seek in the same turn that it replies to it, so the first restart after the
    // reply is this seek's own.
    if (m_seek && m_seek->stage == SeekStage::Acknowledged)
        finishSeek(true);
    if (!m_firstFrameSeen) {
        m_firstFrameSeen = true;
        Q_EMIT firstFrameReady();
    }
}
