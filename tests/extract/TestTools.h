#pragma once

#include <QByteArray>
#include <QFile>
#include <QString>

/// Sets an environment variable for one scope and puts the old state back.
class ScopedEnv
{
public:
    ScopedEnv(const char *key, const QString &value) : m_key(key), m_had(qEnvironmentVariableIsSet(key)), m_old(qgetenv(key))
    {
        qputenv(key, value.toUtf8());
    }
    ~ScopedEnv()
    {
        if (m_had)
            qputenv(m_key, m_old);
        else
            qunsetenv(m_key);
    }
    ScopedEnv(const ScopedEnv &) = delete;
    ScopedEnv &operator=(const ScopedEnv &) = delete;

private:
    const char *m_key;
    bool m_had;
    QByteArray m_old;
};

/// Writes an executable shell script, e.g. a stand-in for a tool that misbehaves.
inline QString writeScript(const QString &path, const QByteArray &body)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return {};
    file.write("#!/bin/sh\n" + body);
    file.close();
    file.setPermissions(file.permissions() | QFileDevice::ExeOwner);
    return path;
}

inline bool writeBytes(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
}
