#pragma once

#include <QObject>
#include <QString>
#include <QUrl>

/// @brief What the desktop does with a made video or its public link: the clipboard, the
/// e-mail client, the browser, the file manager. The screens' share buttons end here; the
/// desktop's own implementation lives with the screens (src/ui/stories).
///
/// Everything returns at once; whatever the desktop then shows is its own business.
class DesktopHandoff : public QObject
{
    Q_OBJECT
public:
    using QObject::QObject;

    /// Replaces whatever the clipboard held with `text`.
    Q_INVOKABLE virtual void copyText(const QString &text) = 0;
    /// A new message in the e-mail client with `link` in its body.
    Q_INVOKABLE virtual void emailLink(const QUrl &link, const QString &subject) = 0;
    Q_INVOKABLE virtual void openLink(const QUrl &link) = 0;
    /// A new message in the e-mail client with the file attached.
    Q_INVOKABLE virtual void emailFile(const QString &path, const QString &subject) = 0;
    /// The file's folder in the file manager, the file selected where it can be.
    Q_INVOKABLE virtual void showFile(const QString &path) = 0;
    /// The file in the program the desktop opens videos with.
    Q_INVOKABLE virtual void openFile(const QString &path) = 0;
    /// Copies the file into the user's videos folder (under a free name) and shows it there;
    /// the new path, or empty when it couldn't be copied.
    Q_INVOKABLE virtual QString keepInVideos(const QString &path) = 0;
};
