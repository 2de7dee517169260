#include "KeychainCredentialStore.h"

#include <QPointer>

#include <QCoroSignal>

#include <qt6keychain/keychain.h>

#include <memory>

namespace {

/// Runs a job to its end or to the timeout. A job that outlives the wait deletes itself when
/// it finally finishes, so nothing dangles and nothing waits on it. (The job is deleted only
/// after the wait: QCoro delivers the signal queued, and a job deleted first would swallow it.)
QCoro::Task<bool> await(QKeychain::Job *job, std::chrono::milliseconds timeout)
{
    auto done = std::make_shared<bool>(false);
    QObject::connect(job, &QKeychain::Job::finished, job, [done] { *done = true; });
    job->start();
    if (!*done) {
        const auto finished = co_await qCoro(job, &QKeychain::Job::finished, timeout);
        if (!finished.has_value()) {
            QObject::connect(job, &QKeychain::Job::finished, job, &QObject::deleteLater);
            co_return false;
        }
    }
    job->deleteLater();
    co_return true;
}

} // namespace

KeychainCredentialStore::KeychainCredentialStore(QString service, std::chrono::milliseconds timeout, QObject *parent)
    : CredentialStore(parent)
    , m_service(std::move(service))
    , m_timeout(timeout)
{
}

QCoro::Task<bool> KeychainCredentialStore::begin()
{
    // One operation at a time, in the order asked: a delete and add of one sign-in must not
    // interleave with those of the next.
    QPointer self(this);
    const quint64 ticket = m_issued++;
    while (self && m_served != ticket)
        co_await qCoro(this, &KeychainCredentialStore::advanced);
    co_return bool(self);
}

void KeychainCredentialStore::end()
{
    ++m_served;
    Q_EMIT advanced();
    if (m_served == m_issued)
        Q_EMIT idle();
}

QCoro::Task<std::optional<QString>> KeychainCredentialStore::read(QString key)
{
    QPointer self(this);
    if (!co_await begin())
        co_return std::nullopt;
    auto *job = new QKeychain::ReadPasswordJob(m_service);
    job->setAutoDelete(false);
    job->setKey(key);
    // The job is read before the wait ends and deletes itself later: take what it holds now.
    auto result = std::make_shared<std::optional<QString>>();
    QObject::connect(job, &QKeychain::Job::finished, job, [job, result] {
        if (job->error() == QKeychain::NoError)
            *result = job->textData();
    });
    const bool finished = co_await await(job, m_timeout);
    if (self)
        end();
    if (!finished)
        co_return std::nullopt;
    co_return *result;
}

QCoro::Task<> KeychainCredentialStore::write(QString key, std::optional<QString> value)
{
    QPointer self(this);
    if (!co_await begin())
        co_return;
    // Delete first, always: a write of no value is a delete, and a write of a value never
    // leaves an older entry behind if the add fails.
    auto *remove = new QKeychain::DeletePasswordJob(m_service);
    remove->setAutoDelete(false);
    remove->setKey(key);
    co_await await(remove, m_timeout);
    if (value && self) {
        auto *add = new QKeychain::WritePasswordJob(m_service);
        add->setAutoDelete(false);
        add->setKey(key);
        add->setTextData(*value);
        co_await await(add, m_timeout);
    }
    if (self)
        end();
}

QCoro::Task<> KeychainCredentialStore::settle()
{
    QPointer self(this);
    while (self && m_served != m_issued)
        co_await qCoro(this, &KeychainCredentialStore::idle);
}
