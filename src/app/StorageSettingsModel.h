#pragma once

#include <QObject>
#include <QUrl>

class Preferences;

/// @brief The rows of the Import and Export tabs that touch the disk: the size of the pending
/// uploads with its "Clear", and the folder cut clips are saved to.
class StorageSettingsModel : public QObject
{
    Q_OBJECT
    Q_PROPERTY(qint64 pendingBytes READ pendingBytes NOTIFY pendingChanged FINAL)
    Q_PROPERTY(QString pendingText READ pendingText NOTIFY pendingChanged FINAL)
    Q_PROPERTY(QString outputName READ outputName NOTIFY outputChanged FINAL)
public:
    /// `pendingDir` is the import queue's folder of processed flights.
    StorageSettingsModel(Preferences &prefs, QString pendingDir, QObject *parent = nullptr);

    [[nodiscard]] qint64 pendingBytes() const { return m_pendingBytes; }
    [[nodiscard]] QString pendingText() const;
    /// The chosen folder's name, or where clips go by default.
    [[nodiscard]] QString outputName() const;

    /// Adds up every file below a folder, walking it recursively.
    [[nodiscard]] static qint64 folderSize(const QString &dir);

public Q_SLOTS:
    void refreshPending();
    /// Removes the whole folder of pending uploads, asking nothing.
    void clearPending();
    void setOutputFolder(const QUrl &folder);

Q_SIGNALS:
    void pendingChanged();
    void outputChanged();

private:
    Preferences &m_prefs;
    QString m_pendingDir;
    qint64 m_pendingBytes = 0;
};
