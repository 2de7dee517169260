#pragma once

#include <QObject>

class Preferences;

/// @brief Whether numbers are shown metric ("metricUnits", off by default), with the
/// conversions at hand for screens.
class UnitsPref : public QObject
{
    Q_OBJECT
    Q_PROPERTY(bool metric READ metric WRITE setMetric NOTIFY metricChanged FINAL)
public:
    explicit UnitsPref(Preferences &prefs, QObject *parent = nullptr);

    [[nodiscard]] bool metric() const { return m_metric; }
    void setMetric(bool value);

    [[nodiscard]] Q_INVOKABLE double altitude(double metres) const;
    [[nodiscard]] Q_INVOKABLE double speed(double metresPerSecond) const;
    [[nodiscard]] Q_INVOKABLE double distance(double metres) const;
    [[nodiscard]] Q_INVOKABLE QString altitudeUnit() const;
    [[nodiscard]] Q_INVOKABLE QString speedUnit() const;
    [[nodiscard]] Q_INVOKABLE QString distanceUnit() const;

Q_SIGNALS:
    void metricChanged();

private:
    Preferences &m_prefs;
    bool m_metric = false;
};
