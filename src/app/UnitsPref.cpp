#include "UnitsPref.h"

#include "Preferences.h"
#include "Units.h"

namespace {
const QString key = QStringLiteral("metricUnits");
}

UnitsPref::UnitsPref(Preferences &prefs, QObject *parent)
    : QObject(parent)
    , m_prefs(prefs)
    , m_metric(prefs.boolValue(key))
{
}

void UnitsPref::setMetric(bool value)
{
    if (m_metric == value)
        return;
    m_metric = value;
    m_prefs.setValue(key, value);
    Q_EMIT metricChanged();
}

double UnitsPref::altitude(double metres) const { return Units::altitude(metres, m_metric); }
double UnitsPref::speed(double metresPerSecond) const { return Units::speed(metresPerSecond, m_metric); }
double UnitsPref::distance(double metres) const { return Units::distance(metres, m_metric); }
QString UnitsPref::altitudeUnit() const { return Units::altitudeUnit(m_metric); }
QString UnitsPref::speedUnit() const { return Units::speedUnit(m_metric); }
QString UnitsPref::distanceUnit() const { return Units::distanceUnit(m_metric); }
