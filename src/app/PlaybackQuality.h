#pragma once

#include <QObject>

class Preferences;

/// @brief Whether players always take the full proxy ("hqPlayback"). Read by a player when it
/// opens; a change applies to players opened afterwards.
///
/// At construction the older "dataSaver" setting is carried over once: "never" (never save
/// data) becomes high quality; it is read, never written, and not looked at again.
class PlaybackQuality : public QObject
{
    Q_OBJECT
    Q_PROPERTY(bool hq READ hq WRITE setHq NOTIFY hqChanged FINAL)
public:
    explicit PlaybackQuality(Preferences &prefs, QObject *parent = nullptr);

    [[nodiscard]] bool hq() const { return m_hq; }
    void setHq(bool value);

Q_SIGNALS:
    void hqChanged();

private:
    Preferences &m_prefs;
    bool m_hq = false;
};
