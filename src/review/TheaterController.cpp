#include "TheaterController.h"

#include "APIClient.h"

#include <QPointer>

TheaterController::TheaterController(std::shared_ptr<APIClient> client, Options options, QObject *parent)
    : QObject(parent), m_client(std::move(client)), m_options(std::move(options))
{
}

TheaterController::~TheaterController() = default;

void TheaterController::setClient(std::shared_ptr<APIClient> client)
{
    m_client = std::move(client);
}

std::optional<QString> TheaterController::spikeFlight(const QProcessEnvironment &environment)
{
    const QString flight = environment.value(QStringLiteral("SPIKE_FLIGHT"));
    if (flight.isEmpty() || environment.value(QStringLiteral("SPIKE_THEATER")) != QLatin1String("1"))
        return std::nullopt;
    return flight;
}

QUrl TheaterController::pageUrl(const APIClient &client, const QString &flightId, const PageOptions &options)
{
    QString relative = QStringLiteral("theater.html?id=") + flightId;
    if (options.metric)
        relative += QStringLiteral("&units=metric");
    if (!options.tileTemplate.isEmpty())
        relative += QStringLiteral("&tiles=") + QString::fromLatin1(QUrl::toPercentEncoding(options.tileTemplate));
    if (options.hq)
        relative += QStringLiteral("&quality=hq");
    return client.url(relative);
}

QVariant TheaterController::sessionCookieValue() const
{
    return m_cookie ? QVariant::fromValue(*m_cookie) : QVariant();
}

void TheaterController::open(const QString &flightId)
{
    if (!m_client || flightId.isEmpty())
        return;
    const quint64 opening = ++m_opening;
    if (flightId != m_flightId) {
        m_flightId = flightId;
        Q_EMIT flightIdChanged();
    }
    m_cookie.reset();
    m_url = pageUrl(*m_client, flightId, m_options ? m_options() : PageOptions{});
    setFailed(false);
    setReady(false);
    setActive(true);
    fetchSession(m_client, opening);
}

QCoro::Task<> TheaterController::fetchSession(std::shared_ptr<APIClient> client, quint64 opening)
{
    const QPointer<TheaterController> self(this);
    auto cookie = co_await client->webSessionCookie();
    if (!self || opening != m_opening || !m_active)
        co_return;
    m_cookie = std::move(cookie);
    setReady(true);
}

void TheaterController::close()
{
    ++m_opening;
    setActive(false);
    setReady(false);
    setFailed(false);
    m_cookie.reset();
}

void TheaterController::fail()
{
    if (m_active)
        setFailed(true);
}

void TheaterController::setActive(bool active)
{
    if (active == m_active)
        return;
    m_active = active;
    Q_EMIT activeChanged();
}

void TheaterController::setReady(bool ready)
{
    if (ready == m_ready)
        return;
    m_ready = ready;
    Q_EMIT readyChanged();
}

void TheaterController::setFailed(bool failed)
{
    if (failed == m_failed)
        return;
    m_failed = failed;
    Q_EMIT failedChanged();
}
