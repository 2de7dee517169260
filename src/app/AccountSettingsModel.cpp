#include "AccountSettingsModel.h"

#include "APIClient.h"
#include "AppEvents.h"
#include "AppModel.h"
#include "FlightRecords.h"

#include <QLocale>

AccountSettingsModel::AccountSettingsModel(AppModel &app, AppEvents *events, QObject *parent)
    : QObject(parent)
    , m_app(app)
    , m_events(events)
{
    // A new client means another account or library: nothing shown so far applies to it.
    connect(&m_app, &AppModel::clientChanged, this, &AccountSettingsModel::sessionChanged);
    connect(&m_app, &AppModel::loggedInChanged, this, &AccountSettingsModel::sessionChanged);
}

AccountSettingsModel::~AccountSettingsModel() = default;

QString AccountSettingsModel::libraryText() const
{
    if (!m_library)
        return {};
    const int n = int(m_library->ids.size());
    return QStringLiteral("%1 flight%2").arg(n).arg(n == 1 ? QString() : QStringLiteral("s"));
}

double AccountSettingsModel::storageFraction() const
{
    if (!showStorage())
        return 0;
    return std::min(1.0, double(m_library->used) / double(m_library->quota));
}

QString AccountSettingsModel::storageText() const
{
    if (!showStorage())
        return {};
    return QString::asprintf("%.1f of %.0f GB", double(m_library->used) / 1e9, double(m_library->quota) / 1e9);
}

int AccountSettingsModel::samplesCount() const
{
    return m_samples ? m_samples->count : 0;
}

QString AccountSettingsModel::samplesText() const
{
    if (!m_samples)
        return {};
    return QStringLiteral("%1 · %2").arg(m_samples->count).arg(QLocale::c().formattedDataSize(m_samples->bytes, 1, QLocale::DataSizeSIFormat));
}

int AccountSettingsModel::samplesRestorable() const
{
    return m_samples ? m_samples->restorable : 0;
}

QString AccountSettingsModel::removeSamplesTitle() const
{
    return QStringLiteral("Remove %1 Sample Flights").arg(samplesCount());
}

void AccountSettingsModel::forget()
{
    ++m_generation;
    m_email.reset();
    m_library.reset();
    m_samples.reset();
    m_checkResult.clear();
    m_checking = false;
    m_samplesBusy = false;
    Q_EMIT changed();
}

void AccountSettingsModel::sessionChanged()
{
    forget();
    // A sign-in changes the client and then the state: one load after both, not one per signal.
    if (!m_shown || m_reloadQueued)
        return;
    m_reloadQueued = true;
    QMetaObject::invokeMethod(this, [this] {
        m_reloadQueued = false;
        if (m_shown)
            load();
    }, Qt::QueuedConnection);
}

void AccountSettingsModel::setShown(bool shown)
{
    if (shown == m_shown)
        return;
    m_shown = shown;
    if (shown)
        load();
}

void AccountSettingsModel::load()
{
    forget();
    if (m_app.loggedIn())
        QCoro::connect(loadAll(m_generation), this, [] {});
}

void AccountSettingsModel::testConnection()
{
    if (m_checking || !m_app.loggedIn())
        return;
    QCoro::connect(runTest(m_generation), this, [] {});
}

void AccountSettingsModel::removeSamples()
{
    if (!m_samplesBusy && m_app.loggedIn())
        QCoro::connect(changeSamples(true, m_generation), this, [] {});
}

void AccountSettingsModel::restoreSamples()
{
    if (!m_samplesBusy && m_app.loggedIn())
        QCoro::connect(changeSamples(false, m_generation), this, [] {});
}

QCoro::Task<void> AccountSettingsModel::loadAll(int generation)
{
    QPointer<AccountSettingsModel> self(this);
    const auto current = [&] { return self && m_generation == generation; };
    m_email.reset();
    m_library.reset();
    m_samples.reset();
    Q_EMIT changed();
    const std::shared_ptr<APIClient> client = m_app.client();
    const auto me = co_await client->fetchMe();
    if (!current())
        co_return;
    if (me)
        m_email = me->email;
    Q_EMIT changed();
    const auto library = co_await FlightUploader(client).library();
    if (!current())
        co_return;
    if (library)
        m_library = *library;
    Q_EMIT changed();
    const auto samples = co_await client->fetchSamples();
    if (!current())
        co_return;
    if (samples)
        m_samples = std::make_unique<SamplesStatus>(*samples);
    Q_EMIT changed();
}

QCoro::Task<void> AccountSettingsModel::runTest(int generation)
{
    QPointer<AccountSettingsModel> self(this);
    m_checking = true;
    Q_EMIT changed();
    const auto library = co_await FlightUploader(m_app.client()).library();
    // A session that ended meanwhile took `checking` with it; this answer is for nobody.
    if (!self || m_generation != generation)
        co_return;
    if (library) {
        m_library = *library;
        // "flights" even for one: the words of the test are plural always.
        m_checkResult = QStringLiteral("OK — %1 flights").arg(library->ids.size());
    } else {
        m_checkResult = library.errorText().isEmpty() ? QStringLiteral("Failed") : library.errorText();
    }
    m_checking = false;
    Q_EMIT changed();
}

QCoro::Task<void> AccountSettingsModel::changeSamples(bool remove, int generation)
{
    QPointer<AccountSettingsModel> self(this);
    m_samplesBusy = true;
    Q_EMIT changed();
    const std::shared_ptr<APIClient> client = m_app.client();
    const auto done = remove ? co_await client->removeSamples() : co_await client->restoreSamples();
    if (!self)
        co_return;
    // The library changed whichever session is shown now: the gallery reloads in any case.
    if (done && m_events)
        Q_EMIT m_events->samplesChanged();
    if (m_generation != generation)
        co_return;
    if (done) {
        co_await loadAll(generation);
        if (!self || m_generation != generation)
            co_return;
    } else {
        m_checkResult = remove ? QStringLiteral("Couldn't remove the samples — try again")
                               : QStringLiteral("Couldn't restore the samples — try again");
    }
    m_samplesBusy = false;
    Q_EMIT changed();
}
