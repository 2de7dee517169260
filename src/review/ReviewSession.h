#pragma once

#include "FlightRecords.h"
#include "PlayerModel.h"

#include <QObject>
#include <QPointer>
#include <QProcessEnvironment>

#include <QCoroTask>

#include <functional>
#include <memory>
#include <optional>

class APIClient;
class VideoPlayer;

/// @brief The flight player of the main window: at most one open flight, its `PlayerModel`
/// made when it opens and dropped when it closes.
///
/// Opened from the gallery with the flight record, or by id (the "SPIKE_FLIGHT" entry), which
/// looks the flight up in the manifest and opens nothing until it is found.
class ReviewSession : public QObject
{
    Q_OBJECT
    Q_PROPERTY(PlayerModel *player READ player NOTIFY playerChanged FINAL)
    Q_PROPERTY(QString debugFlightId READ debugFlightId NOTIFY debugFlightIdChanged FINAL)
public:
    using PlayerFactory = std::function<VideoPlayer *()>;
    /// The preferences as they stand when a player opens.
    using SetupSource = std::function<PlayerModel::Setup()>;

    ReviewSession(std::shared_ptr<APIClient> client, PlayerFactory makePlayer, SetupSource setup,
                  QObject *parent = nullptr);
    ~ReviewSession() override;

    /// Signing in makes a new client; players opened afterwards use it.
    void setClient(std::shared_ptr<APIClient> client);
    /// Follows the units preference into the open player.
    void setMetric(bool metric);

    /// The flight the development entry opens in the player: "SPIKE_FLIGHT", unless
    /// "SPIKE_THEATER" is exactly "1" and the theater takes it.
    [[nodiscard]] static std::optional<QString> spikeFlight(const QProcessEnvironment &environment);
    /// Whether "SPIKE_MARK" is exactly "1": each player opens with a range already marked.
    [[nodiscard]] static bool spikeMarks(const QProcessEnvironment &environment);

    [[nodiscard]] PlayerModel *player() const { return m_player; }
    /// The flight of the development entry ("SPIKE_FLIGHT"): the main window shows only its
    /// player, and nothing until it is found. Empty normally.
    [[nodiscard]] QString debugFlightId() const { return m_debugFlightId; }
    void setDebugFlightId(const QString &flightId);

    /// Closes any open flight and opens this one (and starts its load).
    void open(const Flight &flight);
    /// Opens the flight with this id once the manifest names it; false when it doesn't.
    QCoro::Task<bool> openById(QString flightId);

public Q_SLOTS:
    void close();

Q_SIGNALS:
    void playerChanged();
    void debugFlightIdChanged();
    /// The player asks for the 3D view of a flight.
    void theaterRequested(const QString &flightId);
    /// The player was closed by the pilot (Esc or the back button).
    void closed();

private:
    std::shared_ptr<APIClient> m_client;
    PlayerFactory m_makePlayer;
    SetupSource m_setup;
    QPointer<PlayerModel> m_player;
    QString m_debugFlightId;
};
