#pragma once

#include <QList>
#include <QObject>
#include <QUrl>

/// @brief Files handed to the program (command line, file manager) waiting to be imported.
/// The import window drains the list; while signed out the files simply wait.
class FileOpenRouter : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QList<QUrl> pending READ pending NOTIFY pendingChanged FINAL)
    Q_PROPERTY(bool hasPending READ hasPending NOTIFY pendingChanged FINAL)
public:
    using QObject::QObject;

    [[nodiscard]] const QList<QUrl> &pending() const { return m_pending; }
    [[nodiscard]] bool hasPending() const { return !m_pending.isEmpty(); }

    void open(const QList<QUrl> &urls);
    /// Files named on a command line; arguments that look like options are left alone.
    void openArguments(const QStringList &arguments);
    /// Takes every waiting URL, leaving the list empty.
    [[nodiscard]] Q_INVOKABLE QList<QUrl> take();

Q_SIGNALS:
    void pendingChanged();

private:
    QList<QUrl> m_pending;
};
