#pragma once

#include <QObject>
#include <QString>

#include <QCoroTask>

#include <optional>

/// @brief Where the secrets of a session live ("pass", "token"), told apart by key alone.
///
/// Failures are silent by design: a write that did not take shows up as a signed-out or
/// header-less session at the next start, and a read that fails is an absent secret.
/// Operations on one store happen in the order they were asked for.
class CredentialStore : public QObject
{
    Q_OBJECT
public:
    using QObject::QObject;

    /// The secret under `key`, or nothing (also when the store can't be reached).
    virtual QCoro::Task<std::optional<QString>> read(QString key) = 0;
    /// Replaces the secret under `key`; no value deletes it.
    virtual QCoro::Task<> write(QString key, std::optional<QString> value) = 0;
    /// Completes once every operation asked for so far has finished.
    virtual QCoro::Task<> settle() = 0;
};
