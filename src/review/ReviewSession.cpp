#include "ReviewSession.h"

#include "APIClient.h"

ReviewSession::ReviewSession(std::shared_ptr<APIClient> client, PlayerFactory makePlayer, SetupSource setup,
                             QObject *parent)
    : QObject(parent), m_client(std::move(client)), m_makePlayer(std::move(makePlayer)), m_setup(std::move(setup))
{
}

ReviewSession::~ReviewSession()
{
    if (m_player)
        m_player->stop();
}

void ReviewSession::setClient(std::shared_ptr<APIClient> client)
{
    m_client = std::move(client);
}

void ReviewSession::setMetric(bool metric)
{
    if (m_player)
        m_player->setMetric(metric);
}

std::optional<QString> ReviewSession::spikeFlight(const QProcessEnvironment &environment)
{
    const QString flight = environment.value(QStringLiteral("SPIKE_FLIGHT"));
    if (flight.isEmpty() || environment.value(QStringLiteral("SPIKE_THEATER")) == QLatin1String("1"))
        return std::nullopt;
    return flight;
}

bool ReviewSession::spikeMarks(const QProcessEnvironment &environment)
{
    return environment.value(QStringLiteral("SPIKE_MARK")) == QLatin1String("1");
}

void ReviewSession::setDebugFlightId(const QString &flightId)
{
    if (flightId == m_debugFlightId)
        return;
    m_debugFlightId = flightId;
    Q_EMIT debugFlightIdChanged();
}

void ReviewSession::open(const Flight &flight)
{
    if (m_player) {
        m_player->stop();
        m_player->deleteLater();
    }
    const PlayerModel::Setup setup = m_setup ? m_setup() : PlayerModel::Setup{};
    m_player = new PlayerModel(flight, m_client, m_makePlayer(), setup, this);
    connect(m_player, &PlayerModel::theaterRequested, this, &ReviewSession::theaterRequested);
    Q_EMIT playerChanged();
    m_player->load();
}

void ReviewSession::close()
{
    if (!m_player)
        return;
    m_player->stop();
    // Later, not now: the screen that asked may still be inside one of the model's bindings.
    m_player->deleteLater();
    m_player = nullptr;
    Q_EMIT playerChanged();
    // The development entry shows one flight; once it is closed the main view takes over.
    setDebugFlightId(QString());
    Q_EMIT closed();
}

QCoro::Task<bool> ReviewSession::openById(QString flightId)
{
    QPointer<ReviewSession> self(this);
    const std::shared_ptr<APIClient> client = m_client;
    const auto manifest = co_await client->fetchManifest();
    if (!self || !manifest)
        co_return false;
    for (const Flight &flight : manifest.value()) {
        if (flight.id == flightId) {
            open(flight);
            co_return true;
        }
    }
    co_return false;
}
