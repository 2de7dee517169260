#include "MemoryCredentialStore.h"

QCoro::Task<std::optional<QString>> MemoryCredentialStore::read(QString key)
{
    const auto it = m_items.constFind(key);
    if (it == m_items.constEnd())
        co_return std::nullopt;
    co_return *it;
}

QCoro::Task<> MemoryCredentialStore::write(QString key, std::optional<QString> value)
{
    m_items.remove(key);
    if (value)
        m_items.insert(key, *value);
    co_return;
}

QCoro::Task<> MemoryCredentialStore::settle()
{
    co_return;
}
