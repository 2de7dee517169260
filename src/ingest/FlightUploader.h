#pragma once

#include "CancelToken.h"
#include "Result.h"

#include <QSet>
#include <QString>

#include <QCoroTask>

#include <chrono>
#include <functional>
#include <memory>

class APIClient;

/// @brief Sends a processed flight folder to the library: each file into the flight's staging
/// area, then one commit that makes the flight exist.
///
/// Files stream from disk. Transport failures of a file are retried (after 2 s, then 4 s), a
/// transfer that stood still until its timeout among them; rejections by the server and the
/// caller's own stop are not. A failed upload leaves only staging behind, which the caller
/// drops with `discardStaging`.
class FlightUploader
{
public:
    struct ServerLibrary {
        QSet<QString> ids;
        qint64 quota = 0;  ///< bytes; 0 when no limit is known
        qint64 used = 0;
    };
    /// (file name, fraction of that file sent)
    using Progress = std::function<void(const QString &, double)>;

    static constexpr qint64 proxyLimit = 2'000'000'000;
    /// Files up to this size are sent from memory; larger ones stream from disk.
    static constexpr qint64 smallFileBytes = 4'000'000;
    static constexpr int maxAttempts = 3;
    /// In the order they are sent: the small description first, the heavy proxy last.
    static const QStringList fileNames;

    static constexpr std::chrono::seconds transferFloor{300};

    /// `retryUnit` and `timeoutFloor` are shortened by tests that prove the retry rule.
    explicit FlightUploader(std::shared_ptr<const APIClient> client,
                            std::chrono::milliseconds retryUnit = std::chrono::seconds(2),
                            std::chrono::milliseconds timeoutFloor = transferFloor);

    QCoro::Task<Result<ServerLibrary>> library() const;
    /// Returns the commit's answer (`analysis`, or "ok").
    QCoro::Task<Result<QString>> upload(QString id, QString dir, Progress onFile, CancelToken *cancel = nullptr) const;
    QCoro::Task<void> discardStaging(QString id) const;

    /// How long a file's transfer may stand still: about 100 kB/s, never below `floor` (300 s);
    /// a shorter floor shrinks the whole rule in proportion.
    [[nodiscard]] static std::chrono::milliseconds transferTimeout(qint64 bytes,
                                                                   std::chrono::milliseconds floor = transferFloor);

private:
    QCoro::Task<Result<void>> sendFile(QString id, QString name, QString path, qint64 size, Progress onFile,
                                       CancelToken *cancel) const;
    QCoro::Task<Result<QString>> commit(QString id, CancelToken *cancel) const;

    std::shared_ptr<const APIClient> m_client;
    std::chrono::milliseconds m_retryUnit;
    std::chrono::milliseconds m_timeoutFloor;
};
