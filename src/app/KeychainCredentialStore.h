#pragma once

#include "CredentialStore.h"

#include <chrono>

/// @brief Secrets in the platform's keyring through QtKeychain (Secret Service on Linux,
/// Keychain on macOS), as entries of one service name keyed "pass" and "token".
///
/// A keyring that is missing, locked or slow never blocks the program: each operation gives up
/// after `timeout` and counts as failed (a read gives nothing, a write is lost).
class KeychainCredentialStore : public CredentialStore
{
    Q_OBJECT
public:
    static inline const QString defaultService = QStringLiteral("Aeroloom");

    explicit KeychainCredentialStore(QString service = defaultService,
                                     std::chrono::milliseconds timeout = std::chrono::seconds(10),
                                     QObject *parent = nullptr);

    QCoro::Task<std::optional<QString>> read(QString key) override;
    QCoro::Task<> write(QString key, std::optional<QString> value) override;
    QCoro::Task<> settle() override;

    [[nodiscard]] QString service() const { return m_service; }

Q_SIGNALS:
    void advanced();
    void idle();

private:
    QCoro::Task<bool> begin();
    void end();

    QString m_service;
    std::chrono::milliseconds m_timeout;
    quint64 m_issued = 0;
    quint64 m_served = 0;
};
