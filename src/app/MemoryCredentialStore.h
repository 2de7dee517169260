#pragma once

#include "CredentialStore.h"

#include <QHash>

/// @brief Secrets kept for the life of the process only: for a run that must not touch the
/// user's keyring (tools, tests of the session rules).
class MemoryCredentialStore : public CredentialStore
{
    Q_OBJECT
public:
    using CredentialStore::CredentialStore;

    QCoro::Task<std::optional<QString>> read(QString key) override;
    QCoro::Task<> write(QString key, std::optional<QString> value) override;
    QCoro::Task<> settle() override;

    [[nodiscard]] bool has(const QString &key) const { return m_items.contains(key); }
    [[nodiscard]] QString peek(const QString &key) const { return m_items.value(key); }

private:
    QHash<QString, QString> m_items;
};
