#pragma once

#include <QObject>
#include <QString>

/// @brief Notifications between screens that don't know each other.
///
/// One instance is made by the composition root and handed to whoever posts or listens.
class AppEvents : public QObject
{
    Q_OBJECT
public:
    using QObject::QObject;

Q_SIGNALS:
    /// The sample flights of the account were removed or restored: the gallery reloads.
    void samplesChanged();
    /// A flight reached the library (sent before its working files are removed).
    void flightImported(const QString &id);
};
