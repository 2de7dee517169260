#pragma once

#include <QDir>
#include <QFile>
#include <QMap>
#include <QProcessEnvironment>
#include <QString>
#include <QStringList>

/// The desktop program as a pilot starts it, in a home folder of its own: a settings file with
/// the given theme and lines, and an environment without the development overrides.
namespace AppLaunch {

inline void writeSettings(const QString &home, const QString &theme, const QStringList &lines = {})
{
    QDir(home).mkpath(QStringLiteral(".config/Aeroloom"));
    QFile ini(QDir(home).filePath(QStringLiteral(".config/Aeroloom/Aeroloom.ini")));
    if (!ini.open(QIODevice::WriteOnly))
        return;
    ini.write("[General]\nthemePref=" + theme.toUtf8() + "\n");
    for (const QString &line : lines)
        ini.write(line.toUtf8() + "\n");
}

inline QProcessEnvironment environment(const QString &home, const QMap<QString, QString> &extra = {})
{
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    for (const char *name : {"SPIKE_BASE", "SPIKE_TOKEN", "SPIKE_USER", "SPIKE_PASS", "SPIKE_SCREEN"})
        env.remove(QString::fromLatin1(name));
    env.insert(QStringLiteral("HOME"), home);
    env.insert(QStringLiteral("XDG_CONFIG_HOME"), QDir(home).filePath(QStringLiteral(".config")));
    env.insert(QStringLiteral("XDG_DATA_HOME"), QDir(home).filePath(QStringLiteral(".local/share")));
    env.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
    for (auto it = extra.begin(); it != extra.end(); ++it)
        env.insert(it.key(), it.value());
    return env;
}

/// Where the program keeps Pending, Inbox and its lock.
inline QString workRoot(const QString &home)
{
    return QDir(home).filePath(QStringLiteral(".local/share/Aeroloom"));
}

} // namespace AppLaunch
