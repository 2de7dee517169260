#pragma once

#include "CardVolumes.h"
#include "IngestQueue.h"

#include <QObject>
#include <QPointer>
#include <QStringList>
#include <QUrl>
#include <QVariantList>

#include <QCoroTask>

class MountWatcher;

/// @brief What the "Import Flights" window shows around the queue: the cards it can offer,
/// the tool problems, which of its four states it is in, and the words that depend on counts.
/// It only routes sources to the queue; importing is the queue's job.
class ImportWindowModel : public QObject
{
    Q_OBJECT
    Q_PROPERTY(IngestQueue *queue READ queue CONSTANT FINAL)
    Q_PROPERTY(QVariantList cardVolumes READ cardVolumesList NOTIFY cardVolumesChanged FINAL)
    Q_PROPERTY(QStringList toolProblems READ toolProblems NOTIFY toolProblemsChanged FINAL)
    Q_PROPERTY(State state READ state NOTIFY stateChanged FINAL)
    Q_PROPERTY(QString readyFooter READ readyFooter NOTIFY stateChanged FINAL)
    Q_PROPERTY(QString finishedSummary READ finishedSummary NOTIFY stateChanged FINAL)
    Q_PROPERTY(bool finishedWithFailures READ finishedWithFailures NOTIFY stateChanged FINAL)
    Q_PROPERTY(bool scanning READ scanning NOTIFY scanningChanged FINAL)
public:
    enum class State { Idle, Ready, Running, Finished };
    Q_ENUM(State)

    ImportWindowModel(IngestQueue *queue, MountWatcher *mounts, QObject *parent = nullptr);

    [[nodiscard]] IngestQueue *queue() const { return m_queue; }
    [[nodiscard]] const QList<CardVolumes::Volume> &cardVolumes() const { return m_volumes; }
    [[nodiscard]] QVariantList cardVolumesList() const;
    [[nodiscard]] QStringList toolProblems() const { return m_toolProblems; }
    [[nodiscard]] State state() const;
    [[nodiscard]] QString readyFooter() const;
    [[nodiscard]] QString finishedSummary() const;
    [[nodiscard]] bool finishedWithFailures() const;
    [[nodiscard]] bool scanning() const { return m_scans > 0; }

    /// The words of the folder dialog shown when a card can't be listed.
    Q_INVOKABLE static QString scanPermissionMessage(const QString &volumeName);

public Q_SLOTS:
    /// On appearing: tool check and card list.
    void refresh();
    void refreshVolumes();
    /// "Scan for Flights": false when the card's DCIM can't be listed (the window then asks
    /// for the folder).
    bool scanVolume(const QString &root);
    /// Files and folders from a dialog, a drop or the command line.
    void addUrls(const QList<QUrl> &urls);
    /// A movie that arrived without a file of its own: copied into Inbox, then added.
    bool addDroppedMovie(const QString &temporaryFile);

Q_SIGNALS:
    void cardVolumesChanged();
    void toolProblemsChanged();
    void stateChanged();
    void scanningChanged();

private:
    QCoro::Task<void> addFolders(QStringList folders);
    QCoro::Task<void> addFiles(QStringList files);
    void beginScan();
    void endScan();

    QPointer<IngestQueue> m_queue;
    QList<CardVolumes::Volume> m_volumes;
    QStringList m_toolProblems;
    int m_scans = 0;
};
