#pragma once

#include <QList>
#include <QObject>
#include <QString>
#include <QUuid>

#include <memory>
#include <optional>

class APIClient;

/// @brief The records of a background importer for videos that arrive from a photo library
/// without a file of their own. Today such a movie takes the import window's Inbox path and
/// no worker drives these records; what lives on is the notification name, posted by the
/// import queue when a flight reaches the library.
class PhotosImportController : public QObject
{
    Q_OBJECT
    Q_PROPERTY(bool expanded READ expanded WRITE setExpanded NOTIFY expandedChanged FINAL)
    Q_PROPERTY(QString notice READ notice NOTIFY noticeChanged FINAL)
public:
    /// The name under which "a flight was imported" is announced.
    static inline const QString flightImported = QStringLiteral("PhotosImportController.flightImported");

    /// Where one job stands; stages compare by case and payload.
    struct Stage {
        enum class Kind { Transcoding, Uploading, SendingData, UploadingFull, Skipped, Failed, Fetching, Queued, Preparing, Reading, Done };
        Kind kind = Kind::Queued;
        double progress = 0;  ///< transcoding, uploading, sendingData, uploadingFull
        QString reason;       ///< skipped, failed
        bool operator==(const Stage &) const = default;
    };
    struct Job {
        QUuid id;
        QString name;
        Stage stage;
        bool operator==(const Job &) const = default;
    };
    struct PendingWork {
        QUuid job;
        QString url;
        std::shared_ptr<const APIClient> client;
    };

    using QObject::QObject;

    [[nodiscard]] const QList<Job> &jobs() const { return m_jobs; }
    [[nodiscard]] bool expanded() const { return m_expanded; }
    void setExpanded(bool expanded);
    [[nodiscard]] QString notice() const { return m_notice.value_or(QString()); }
    [[nodiscard]] const QList<PendingWork> &pending() const { return m_pending; }
    [[nodiscard]] bool processing() const { return m_processing; }

Q_SIGNALS:
    void expandedChanged();
    void noticeChanged();

private:
    QList<Job> m_jobs;
    bool m_expanded = false;
    std::optional<QString> m_notice;
    QList<PendingWork> m_pending;
    bool m_processing = false;
};
