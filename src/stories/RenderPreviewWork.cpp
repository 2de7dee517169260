// The video screen's work: following the job, starting one, and saving the video.
#include "RenderPreviewModel.h"

#include "APIClient.h"
#include "APIError.h"
#include "CancelToken.h"
#include "ReelsStore.h"
#include "RenderPlayback.h"

#include <algorithm>
#include <cmath>

void RenderPreviewModel::appear()
{
    if (m_appeared)
        return;
    m_appeared = true;
    run();
}

void RenderPreviewModel::stop()
{
    m_cancel->cancel();
}

void RenderPreviewModel::create()
{
    start();
}

void RenderPreviewModel::download()
{
    save();
}

QCoro::Task<> RenderPreviewModel::run()
{
    QPointer<RenderPreviewModel> self(this);
    CancelToken *token = m_cancel;
    const std::shared_ptr<APIClient> client = m_store ? m_store->client() : nullptr;
    if (!client || token->isCancelled())
        co_return;
    if (m_assumeRendering)
        setRendering(true);

    auto tracks = co_await client->fetchMusic(token);
    if (!self || token->isCancelled())
        co_return;
    if (tracks && tracks.value() != m_tracks) {
        m_tracks = tracks.value();
        Q_EMIT tracksChanged();
    }

    co_await refresh();
    // Asks the server only while a job runs, and for as long as the screen is open.
    while (self && !token->isCancelled()) {
        co_await sleepFor(m_pollInterval, token);
        if (!self || token->isCancelled())
            co_return;
        if (m_rendering)
            co_await refresh();
    }
}

QCoro::Task<> RenderPreviewModel::refresh()
{
    QPointer<RenderPreviewModel> self(this);
    CancelToken *token = m_cancel;
    const std::shared_ptr<APIClient> client = m_store ? m_store->client() : nullptr;
    if (!client)
        co_return;
    const auto answer = co_await client->fetchRenderStatus(m_storyId, token);
    // A failed poll is no news: the next one tries again.
    if (!self || token->isCancelled() || !answer)
        co_return;
    apply(answer.value());
}

void RenderPreviewModel::apply(const RenderStatus &s)
{
    if (s.status == QLatin1String("running")) {
        setRendering(true);
        const double progress = s.progress.value_or(0);
        setProgress(std::isfinite(progress) ? std::clamp(progress, 0.0, 1.0) : 0.0);
        return;
    }
    const bool justFinished = m_rendering && s.status == QLatin1String("done");
    // "Created." shows before the video does.
    if (justFinished)
        setProgressDone(true);
    setRendering(false);
    m_status = s;
    Q_EMIT statusChanged();
    if (s.status == QLatin1String("error"))
        setNote(s.error && !s.error->isEmpty() ? *s.error : QStringLiteral("Could not make the video"));
    if (s.status == QLatin1String("done") && s.url) {
        const QString stamp = s.rendered.value_or(QString());
        // A new video comes under the same path: only its time tells it apart.
        if (!m_playerStamp || *m_playerStamp != stamp)
            showVideo(*s.url, stamp);
    }
    if (justFinished && m_playback)
        m_playback->playMuted();
}

void RenderPreviewModel::showVideo(const QString &path, const QString &stamp)
{
    const std::shared_ptr<APIClient> client = m_store ? m_store->client() : nullptr;
    if (!client)
        return;
    if (!m_playback) {
        VideoPlayer *player = m_store->makePlayer();
        if (!player)
            return;
        m_playback = new RenderPlayback(player, this);
        Q_EMIT playbackChanged();
    }
    m_playback->load(RenderPlayback::stampedUrl(*client, path, stamp), client->mediaHeaders());
    m_playerStamp = stamp;
}

QCoro::Task<> RenderPreviewModel::start()
{
    QPointer<RenderPreviewModel> self(this);
    const std::shared_ptr<APIClient> client = m_store ? m_store->client() : nullptr;
    if (!client || m_rendering || m_starting)
        co_return;
    setNote({});
    m_starting = true;
    Q_EMIT jobChanged();
    const auto started = co_await client->startRender(m_storyId, request());
    if (!self)
        co_return;
    m_starting = false;
    if (started) {
        // The polling loop follows the job from here.
        m_rendering = true;
        m_progress = 0;
        m_progressDone = false;
    } else if (APIError::isStatus(started.failure(), 409)) {
        setNote(QStringLiteral("Another video is already being made — try again in a minute."));
    } else {
        setNote(QStringLiteral("Couldn’t start making the video."));
    }
    Q_EMIT jobChanged();
}

QCoro::Task<> RenderPreviewModel::save()
{
    QPointer<RenderPreviewModel> self(this);
    CancelToken *token = m_cancel;
    const std::shared_ptr<APIClient> client = m_store ? m_store->client() : nullptr;
    if (!client || !m_status || !m_status->url || m_downloading)
        co_return;
    m_downloading = true;
    Q_EMIT downloadingChanged();
    const QString name = m_storyId + QLatin1Char('_') + m_status->id.value_or(QStringLiteral("render")) + QStringLiteral(".mp4");
    const auto saved = co_await client->downloadToTemporary(*m_status->url, name, token);
    if (!self)
        co_return;
    if (saved) {
        m_sharedFile = saved.value();
        Q_EMIT sharedFileChanged();
    } else if (!token->isCancelled()) {
        setNote(QStringLiteral("Download failed."));
    }
    m_downloading = false;
    Q_EMIT downloadingChanged();
}
