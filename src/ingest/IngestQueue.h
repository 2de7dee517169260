#pragma once

#include "CancelToken.h"
#include "FlightUploader.h"
#include "FoundFlight.h"
#include "IngestPhase.h"
#include "Notifier.h"
#include "Result.h"

#include <QAbstractListModel>
#include <QDateTime>
#include <QHash>
#include <QPointer>
#include <QQueue>
#include <QSet>

#include <QCoroTask>

#include <functional>
#include <memory>
#include <optional>

class APIClient;

/// @brief The import window's list of flights, each going from waiting through processing and
/// upload to done, driven by one worker run.
///
/// Up to two flights are processed at once while one uploads: processed ids pass to the upload
/// stage through a stream, so processing never waits for the uplink. Finished folders live in
/// `<work root>/Pending/<id>` and come back as "Ready to upload" after a restart.
class IngestQueue : public QAbstractListModel
{
    Q_OBJECT
    Q_PROPERTY(bool running READ running NOTIFY runningChanged FINAL)
    Q_PROPERTY(QString lastError READ lastError NOTIFY lastErrorChanged FINAL)
    Q_PROPERTY(QString summary READ summary NOTIFY countsChanged FINAL)
    Q_PROPERTY(int doneCount READ doneCount NOTIFY countsChanged FINAL)
    Q_PROPERTY(int skippedCount READ skippedCount NOTIFY countsChanged FINAL)
    Q_PROPERTY(int failedCount READ failedCount NOTIFY countsChanged FINAL)
    Q_PROPERTY(int remainingCount READ remainingCount NOTIFY countsChanged FINAL)
    Q_PROPERTY(bool hasQuota READ hasQuota NOTIFY quotaChanged FINAL)
    Q_PROPERTY(qint64 quotaBytes READ quotaBytes NOTIFY quotaChanged FINAL)
    Q_PROPERTY(qint64 usedBytes READ usedBytes NOTIFY quotaChanged FINAL)
public:
    /// Turns one clip into a processed folder (the ingest pipeline, in the app).
    using Process = std::function<QCoro::Task<Result<void>>(QString source, std::optional<QString> srt, QString dir,
                                                            bool geocode, std::function<void(double)> onProgress,
                                                            CancelToken *cancel)>;
    struct Services {
        std::shared_ptr<const APIClient> client;
        Process process;
        QString workRoot;                    ///< holds Pending/ and Inbox/
        std::function<bool()> keepProcessed = [] { return false; };
        std::function<bool()> geocode = [] { return true; };
        std::chrono::milliseconds retryUnit{2000};
    };

    struct Item {
        QString id;
        std::optional<QString> source;
        std::optional<QDateTime> date;
        std::optional<QString> srt;
        IngestPhase phase;
        std::optional<QString> thumb;
    };

    enum Role { IdRole = Qt::UserRole + 1, FileNameRole, DateRole, PhaseTextRole, PhaseRole, ProgressRole, ThumbRole, TerminalRole };
    Q_ENUM(Role)

    explicit IngestQueue(Services services, QObject *parent = nullptr);
    ~IngestQueue() override;

    [[nodiscard]] int rowCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex &index, int role) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

    [[nodiscard]] const QList<Item> &items() const { return m_items; }
    [[nodiscard]] const Item *item(const QString &id) const;
    [[nodiscard]] bool running() const { return m_running; }
    [[nodiscard]] QString lastError() const { return m_lastError; }
    [[nodiscard]] QString summary() const;
    [[nodiscard]] int doneCount() const;
    [[nodiscard]] int skippedCount() const;
    [[nodiscard]] int failedCount() const;
    [[nodiscard]] int remainingCount() const;
    [[nodiscard]] const std::optional<FlightUploader::ServerLibrary> &quota() const { return m_quota; }
    [[nodiscard]] bool hasQuota() const { return m_quota.has_value(); }
    [[nodiscard]] qint64 quotaBytes() const { return m_quota ? m_quota->quota : 0; }
    [[nodiscard]] qint64 usedBytes() const { return m_quota ? m_quota->used : 0; }

    [[nodiscard]] QString pendingDir() const;
    [[nodiscard]] QString inboxDir() const;

    /// A new session: later runs upload with this client.
    void setClient(std::shared_ptr<const APIClient> client);
    /// Picks up finished folders left in Pending by an earlier run.
    void restorePending();
    /// Appends flights not yet listed, waiting.
    void add(const QList<FoundFlight> &found);

public Q_SLOTS:
    void start();
    void stop();
    void remove(const QString &id);
    void forget(const QString &id);

Q_SIGNALS:
    void runningChanged();
    void lastErrorChanged();
    void countsChanged();
    void quotaChanged();
    /// A flight was committed to the library.
    void flightImported(const QString &id);
    /// The worker run has ended (on its own, or stopped).
    void finished();

private:
    // The worker and its two stages (IngestQueueWorker.cpp).
    QCoro::Task<void> runWorker(QPointer<CancelToken> token);
    QCoro::Task<void> processingStage(QList<QString> ids, QPointer<CancelToken> token);
    QCoro::Task<void> uploadStage(QPointer<CancelToken> token);
    QCoro::Task<void> processItem(QString id, CancelToken *token);
    QCoro::Task<void> uploadItem(QString id, CancelToken *token);
    QCoro::Task<void> waitForWork();

    int indexOf(const QString &id) const;
    void setPhase(const QString &id, IngestPhase phase);
    void setThumb(const QString &id, const QString &thumb);
    void setRunning(bool running);
    void setLastError(const QString &text);
    void setQuota(const FlightUploader::ServerLibrary &library);
    void takeItem(const QString &id);
    [[nodiscard]] bool isInInbox(const std::optional<QString> &source) const;
    void wake();

    Services m_services;
    std::unique_ptr<FlightUploader> m_uploader;
    QList<Item> m_items;
    bool m_running = false;
    QString m_lastError;
    std::optional<FlightUploader::ServerLibrary> m_quota;

    QPointer<CancelToken> m_worker;
    int m_generation = 0;
    QHash<QString, QPointer<CancelToken>> m_processTasks;
    QHash<QString, QPointer<CancelToken>> m_uploadTasks;
    QSet<QString> m_removedIds;
    QQueue<QString> m_stream;
    bool m_streamClosed = false;
    Notifier m_work;  ///< a stage has something new to look at: an id in the stream, a free slot
};
