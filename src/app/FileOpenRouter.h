#pragma once

#include <QList>
#include <QObject>
#include <QPointer>
#include <QUrl>

class AppModel;

/// @brief Files handed to the program (command line, file manager) waiting to be imported.
/// The import window drains the list; while signed out the files simply wait, and the import
/// window is asked for as soon as somebody signs in.
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
    /// The files a command line names, as URLs; relative paths are taken from the current folder.
    [[nodiscard]] static QList<QUrl> urlsOf(const QStringList &arguments);
    /// Takes every waiting URL, leaving the list empty.
    [[nodiscard]] Q_INVOKABLE QList<QUrl> take();

    /// Follows the session of `app`: files waiting while somebody is signed in ask for the
    /// import window.
    void follow(const AppModel *app);
    /// Asks for the import window now if files wait and somebody is signed in.
    Q_INVOKABLE void check();

Q_SIGNALS:
    void pendingChanged();
    /// The import window should open: files wait and somebody is signed in.
    void importWanted();

private:
    QList<QUrl> m_pending;
    QPointer<const AppModel> m_app;
};
