// The worker run of the import queue: a check with the library, then two stages side by side,
// processing (two flights at a time) feeding uploading (one at a time) through a stream of ids.
#include "IngestQueue.h"

#include "UploadError.h"

#include <QDir>
#include <QFile>
#include <QThread>


namespace {

constexpr int processingSlots = 2;

} // namespace

void IngestQueue::start()
{
    if (m_running)
        return;
    if (std::none_of(m_items.cbegin(), m_items.cend(), [](const Item &i) { return i.phase.isActive(); }))
        return;
    setRunning(true);
    setLastError({});
    m_removedIds.clear();
    auto *token = new CancelToken(this);
    m_worker = token;
    const int generation = ++m_generation;
    QCoro::connect(runWorker(token), this, [this, token, generation] {
        token->deleteLater();
        // A stop followed by a new start may have begun another run meanwhile.
        if (generation == m_generation) {
            m_worker.clear();
            setRunning(false);
        }
        Q_EMIT finished();
    });
}

QCoro::Task<void> IngestQueue::runWorker(QPointer<CancelToken> token)
{
    QPointer<IngestQueue> self(this);
    const auto library = co_await m_uploader->library();
    if (!self || !token || token->isCancelled())
        co_return;
    if (!library) {
        setLastError(QStringLiteral("Couldn't reach the server: ") + library.errorText());
        co_return;
    }
    setQuota(*library);

    for (const Item &item : QList<Item>(m_items)) {
        if (item.phase.isActive() && library->ids.contains(item.id)) {
            setPhase(item.id, IngestPhase::skipped());
            QDir(QDir(pendingDir()).filePath(item.id)).removeRecursively();
        }
    }
    const bool anyActive = std::any_of(m_items.cbegin(), m_items.cend(), [](const Item &i) { return i.phase.isActive(); });
    if (library->quota > 0 && library->used >= library->quota && anyActive) {
        setLastError(QStringLiteral("Storage full — free up space to upload new flights."));
        co_return;
    }

    m_stream.clear();
    m_streamClosed = false;
    QList<QString> toProcess;
    for (const Item &item : std::as_const(m_items)) {
        if (item.phase.kind == IngestPhase::Kind::Ready)
            m_stream.enqueue(item.id);
        else if (item.phase.isActive())
            toProcess << item.id;
    }
    auto processing = processingStage(toProcess, token);
    auto uploading = uploadStage(token);
    co_await processing;
    co_await uploading;
}

QCoro::Task<void> IngestQueue::waitForWork()
{
    // The limit lets a stage notice that the queue itself went away; progress is notified.
    co_await m_work.wait(std::chrono::milliseconds(500));
}

QCoro::Task<void> IngestQueue::processingStage(QList<QString> ids, QPointer<CancelToken> token)
{
    QPointer<IngestQueue> self(this);
    int next = 0;
    int inFlight = 0;
    for (;;) {
        while (inFlight < processingSlots && next < ids.size() && token && !token->isCancelled()) {
            const QString id = ids.at(next++);
            auto *itemToken = new CancelToken(this);
            m_processTasks.insert(id, itemToken);
            ++inFlight;
            QCoro::connect(processItem(id, itemToken), this, [this, id, itemToken, &inFlight] {
                if (m_processTasks.value(id) == itemToken)
                    m_processTasks.remove(id);
                itemToken->deleteLater();
                --inFlight;
                wake();
            });
        }
        const bool more = next < ids.size() && token && !token->isCancelled();
        if (inFlight == 0 && !more)
            break;
        co_await waitForWork();
        if (!self)
            co_return;
    }
    m_streamClosed = true;
    wake();
}

QCoro::Task<void> IngestQueue::uploadStage(QPointer<CancelToken> token)
{
    QPointer<IngestQueue> self(this);
    for (;;) {
        if (!self || !token || token->isCancelled())
            co_return;
        if (!m_stream.isEmpty()) {
            const QString id = m_stream.dequeue();
            CancelToken itemToken;
            m_uploadTasks.insert(id, &itemToken);
            co_await uploadItem(id, &itemToken);
            if (!self)
                co_return;
            m_uploadTasks.remove(id);
            continue;
        }
        if (m_streamClosed)
            co_return;
        co_await waitForWork();
    }
}

QCoro::Task<void> IngestQueue::processItem(QString id, CancelToken *token)
{
    QPointer<IngestQueue> self(this);
    const Item *found = item(id);
    if (!found || !found->source || token->isCancelled())
        co_return;
    const QString source = *found->source;
    const auto srt = found->srt;
    setPhase(id, IngestPhase::processing(QStringLiteral("telemetry")));
    const QString dir = QDir(pendingDir()).filePath(id);

    auto onProgress = [self, id](double fraction) {
        // Progress may be reported from a reader thread; the list is only touched on ours.
        if (!self)
            return;
        QMetaObject::invokeMethod(self, [self, id, fraction] {
            if (self)
                self->setPhase(id, IngestPhase::processing(QStringLiteral("proxy"), fraction));
        }, Qt::AutoConnection);
    };
    const auto result = co_await m_services.process(source, srt, dir, m_services.geocode(), onProgress, token);
    if (!self)
        co_return;
    if (result) {
        setThumb(id, QDir(dir).filePath(QStringLiteral("thumb.jpg")));
        setPhase(id, IngestPhase::ready());
        m_stream.enqueue(id);
        wake();
        co_return;
    }
    QDir(dir).removeRecursively();
    if (m_removedIds.contains(id))
        forget(id);
    else if (token->isCancelled())
        setPhase(id, IngestPhase::waiting());
    else
        setPhase(id, IngestPhase::failed(result.errorText()));
}

QCoro::Task<void> IngestQueue::uploadItem(QString id, CancelToken *token)
{
    QPointer<IngestQueue> self(this);
    if (!item(id) || token->isCancelled())
        co_return;
    const QString dir = QDir(pendingDir()).filePath(id);
    setPhase(id, IngestPhase::uploading(QStringLiteral("flight.json"), 0));

    auto onFile = [self, id](const QString &name, double fraction) {
        if (!self)
            return;
        QMetaObject::invokeMethod(self, [self, id, name, fraction] {
            if (!self)
                return;
            if (name == QLatin1String("proxy.mp4") && fraction >= 1.0)
                self->setPhase(id, IngestPhase::committing());
            else
                self->setPhase(id, IngestPhase::uploading(name, fraction));
        }, Qt::AutoConnection);
    };
    const auto result = co_await m_uploader->upload(id, dir, onFile, token);
    if (!self)
        co_return;
    if (result) {
        setPhase(id, IngestPhase::done(*result));
        Q_EMIT flightImported(id);
        if (!m_services.keepProcessed())
            QDir(dir).removeRecursively();
        if (const Item *done = item(id); done && isInInbox(done->source))
            QFile::remove(*done->source);
        const auto library = co_await m_uploader->library();
        if (self && library)
            setQuota(*library);
        co_return;
    }
    co_await m_uploader->discardStaging(id);
    if (!self)
        co_return;
    if (m_removedIds.contains(id)) {
        forget(id);
    } else if (token->isCancelled()) {
        setPhase(id, IngestPhase::ready());
    } else {
        setPhase(id, IngestPhase::failed(result.errorText()));
        if (result.failure().is(UploadError::domain, UploadError::QuotaExceeded))
            setLastError(result.errorText());
    }
}
