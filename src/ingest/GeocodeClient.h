#pragma once

#include "Notifier.h"

#include <QHash>
#include <QObject>
#include <QString>
#include <QUrl>

#include <QCoroTask>

#include <chrono>
#include <optional>

class QNetworkAccessManager;

/// @brief Turns a flight's first position into a short place name ("Bend, Oregon").
///
/// Reverse queries go to a Nominatim server. Positions within one cell of about a kilometre
/// share a cache entry (misses included, so an offline run is remembered as a miss), the cache
/// persists in geocache.json, and requests are spaced so the public server's rate rule holds
/// even when two flights are processed at once. Nominatim's rules ask every program for a way to
/// reach its operator: until a contact address is set, no request is sent at all and positions
/// not in the cache simply get no name. Made once by the composition root; it must outlive the
/// calls it serves.
class GeocodeClient : public QObject
{
    Q_OBJECT
public:
    struct Options {
        QUrl server = QUrl(QStringLiteral("https://nominatim.openstreetmap.org"));
        QString contact;  ///< the operator's address for the User-Agent; empty: no requests
        QString cacheFile;  ///< defaults to <app data>/geocache.json
        std::chrono::milliseconds interval{1100};
        std::chrono::milliseconds timeout{15000};
    };

    explicit GeocodeClient(Options options, QObject *parent = nullptr);
    ~GeocodeClient() override;

    /// The place name for a position, or nothing. Never fails.
    QCoro::Task<std::optional<QString>> placeName(double lat, double lon);

    /// "%.2f,%.2f": the cache cell of a position.
    [[nodiscard]] static QString cacheKey(double lat, double lon);
    /// The place and state of a reverse reply, joined by ", "; nothing when neither is there.
    [[nodiscard]] static std::optional<QString> nameFromReply(const QByteArray &body);

    [[nodiscard]] QString userAgent() const;
    /// A new contact address (the setting changed); surrounding spaces don't count.
    void setContact(const QString &contact);

private:
    void loadCache();
    void saveCache() const;
    QCoro::Task<std::optional<QString>> query(double lat, double lon);

    Options m_options;
    QNetworkAccessManager *m_network;
    QHash<QString, std::optional<QString>> m_cache;
    bool m_loaded = false;
    bool m_requestInFlight = false;
    Notifier m_requestDone;  ///< the next waiting call may go
    std::chrono::steady_clock::time_point m_lastRequest{};
};
