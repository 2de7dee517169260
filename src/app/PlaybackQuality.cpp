#include "PlaybackQuality.h"

#include "Preferences.h"

namespace {
const QString hqKey = QStringLiteral("hqPlayback");
const QString oldKey = QStringLiteral("dataSaver");
} // namespace

PlaybackQuality::PlaybackQuality(Preferences &prefs, QObject *parent)
    : QObject(parent)
    , m_prefs(prefs)
{
    if (!m_prefs.contains(hqKey) && m_prefs.stringValue(oldKey) == QLatin1String("never"))
        m_prefs.setValue(hqKey, true);
    m_hq = m_prefs.boolValue(hqKey);
}

void PlaybackQuality::setHq(bool value)
{
    if (m_hq == value)
        return;
    m_hq = value;
    m_prefs.setValue(hqKey, value);
    Q_EMIT hqChanged();
}
