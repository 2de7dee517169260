#include "Preferences.h"

#include <QCoreApplication>

Preferences::Preferences(QObject *parent)
    : QObject(parent)
    , m_settings(std::make_unique<QSettings>(QSettings::IniFormat, QSettings::UserScope,
                                             QCoreApplication::organizationName(),
                                             QCoreApplication::applicationName()))
{
}

Preferences::Preferences(const QString &iniPath, QObject *parent)
    : QObject(parent)
    , m_settings(std::make_unique<QSettings>(iniPath, QSettings::IniFormat))
{
}

Preferences::~Preferences() = default;

void Preferences::registerDefault(const QString &key, const QVariant &value)
{
    m_defaults.insert(key, value);
}

void Preferences::registerAppDefaults()
{
    registerDefault(QStringLiteral("ingest.geocode"), true);
}

bool Preferences::contains(const QString &key) const
{
    return m_settings->contains(key);
}

QVariant Preferences::value(const QString &key) const
{
    if (m_settings->contains(key))
        return m_settings->value(key);
    return m_defaults.value(key);
}

bool Preferences::boolValue(const QString &key) const
{
    const QVariant v = value(key);
    // INI files hold text: "true"/"false" and also "1"/"0" from hand edits.
    if (v.typeId() == QMetaType::QString) {
        const QString s = v.toString().trimmed().toLower();
        return s == QLatin1String("true") || s == QLatin1String("1") || s == QLatin1String("yes");
    }
    return v.toBool();
}

QString Preferences::stringValue(const QString &key) const
{
    return value(key).toString();
}

std::optional<QString> Preferences::optionalString(const QString &key) const
{
    const QVariant v = value(key);
    if (!v.isValid())
        return std::nullopt;
    return v.toString();
}

QString Preferences::choice(const QString &key, const QStringList &allowed, const QString &fallback) const
{
    const QString stored = stringValue(key);
    return allowed.contains(stored) ? stored : fallback;
}

void Preferences::setValue(const QString &key, const QVariant &value)
{
    if (m_settings->contains(key) && m_settings->value(key) == value)
        return;
    m_settings->setValue(key, value);
    Q_EMIT changed(key);
}

void Preferences::remove(const QString &key)
{
    if (!m_settings->contains(key))
        return;
    m_settings->remove(key);
    Q_EMIT changed(key);
}

void Preferences::sync()
{
    m_settings->sync();
}
