#include "GeocodeClient.h"

#include "CancelToken.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QPointer>
#include <QSaveFile>
#include <QStandardPaths>
#include <QUrlQuery>

#include <QCoroNetworkReply>

#include <nlohmann/json.hpp>

using json = nlohmann::json;

namespace {

// Where the interesting name of a place can be found, most specific first.
constexpr const char *placeKeys[] = {"city", "town", "village", "municipality", "national_park",
                                     "protected_area", "nature_reserve", "leisure", "natural", "tourism",
                                     "beach", "bay", "island", "hamlet", "county", "region"};

QString defaultCacheFile()
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation)
        + QStringLiteral("/Aeroloom/geocache.json");
}

QString shortest(double v)
{
    return QString::number(v, 'g', QLocale::FloatingPointShortest);
}

} // namespace

GeocodeClient::GeocodeClient(Options options, QObject *parent)
    : QObject(parent)
    , m_options(std::move(options))
    , m_network(new QNetworkAccessManager(this))
{
    if (m_options.cacheFile.isEmpty())
        m_options.cacheFile = defaultCacheFile();
    setContact(m_options.contact);
}

void GeocodeClient::setContact(const QString &contact)
{
    m_options.contact = contact.trimmed();
}

GeocodeClient::~GeocodeClient() = default;

QString GeocodeClient::cacheKey(double lat, double lon)
{
    return QString::asprintf("%.2f,%.2f", lat, lon);
}

QString GeocodeClient::userAgent() const
{
    return QStringLiteral("Aeroloom-Mac/0.1 (DJI flight library; %1)").arg(m_options.contact);
}

std::optional<QString> GeocodeClient::nameFromReply(const QByteArray &body)
{
    const json reply = json::parse(body.begin(), body.end(), nullptr, false);
    if (!reply.is_object())
        return std::nullopt;
    const auto address = reply.find("address");
    if (address == reply.end() || !address->is_object())
        return std::nullopt;
    QString place;
    for (const char *key : placeKeys) {
        const auto it = address->find(key);
        if (it != address->end() && it->is_string() && !it->get<std::string>().empty()) {
            place = QString::fromStdString(it->get<std::string>());
            break;
        }
    }
    QString state;
    if (const auto it = address->find("state"); it != address->end() && it->is_string())
        state = QString::fromStdString(it->get<std::string>());
    QStringList parts;
    for (const QString &p : {place, state})
        if (!p.isEmpty())
            parts << p;
    if (parts.isEmpty())
        return std::nullopt;
    return parts.join(QStringLiteral(", "));
}

void GeocodeClient::loadCache()
{
    m_loaded = true;
    QFile file(m_options.cacheFile);
    if (!file.open(QIODevice::ReadOnly))
        return;
    const QByteArray bytes = file.readAll();
    const json doc = json::parse(bytes.begin(), bytes.end(), nullptr, false);
    if (!doc.is_object())
        return;
    for (const auto &[key, value] : doc.items()) {
        if (value.is_string())
            m_cache.insert(QString::fromStdString(key), QString::fromStdString(value.get<std::string>()));
        else if (value.is_null())
            m_cache.insert(QString::fromStdString(key), std::nullopt);
    }
}

void GeocodeClient::saveCache() const
{
    json doc = json::object();
    for (auto it = m_cache.cbegin(); it != m_cache.cend(); ++it)
        doc[it.key().toStdString()] = it.value() ? json(it.value()->toStdString()) : json(nullptr);
    QDir().mkpath(QFileInfo(m_options.cacheFile).absolutePath());
    QSaveFile file(m_options.cacheFile);
    if (!file.open(QIODevice::WriteOnly))
        return;  // the copy in memory stays valid
    const std::string text = doc.dump();
    file.write(text.data(), qint64(text.size()));
    file.commit();
}

QCoro::Task<std::optional<QString>> GeocodeClient::placeName(double lat, double lon)
{
    if (!m_loaded)
        loadCache();
    const QString key = cacheKey(lat, lon);
    if (const auto hit = m_cache.constFind(key); hit != m_cache.cend())
        co_return *hit;
    // Without a contact there is no asking, and nothing is remembered: once an address is
    // given, the same place is looked up.
    if (m_options.contact.isEmpty())
        co_return std::nullopt;

    QPointer<GeocodeClient> self(this);
    // One request at a time, each at least `interval` after the previous one finished.
    while (m_requestInFlight) {
        co_await m_requestDone.wait(std::chrono::seconds(1));
        if (!self)
            co_return std::nullopt;
    }
    if (const auto hit = m_cache.constFind(key); hit != m_cache.cend())
        co_return *hit;  // a concurrent call answered this cell while we waited
    m_requestInFlight = true;
    const auto wait = m_options.interval - (std::chrono::steady_clock::now() - m_lastRequest);
    if (wait.count() > 0)
        co_await sleepFor(std::chrono::duration_cast<std::chrono::milliseconds>(wait));
    if (!self)
        co_return std::nullopt;
    if (m_options.contact.isEmpty()) {  // the address was taken away while this call waited
        m_requestInFlight = false;
        m_requestDone.notifyAll();
        co_return std::nullopt;
    }
    const auto name = co_await query(lat, lon);
    if (!self)
        co_return name;
    m_lastRequest = std::chrono::steady_clock::now();
    m_requestInFlight = false;
    m_cache.insert(key, name);
    saveCache();
    m_requestDone.notifyAll();
    co_return name;
}

QCoro::Task<std::optional<QString>> GeocodeClient::query(double lat, double lon)
{
    QUrl url = m_options.server;
    url.setPath(url.path().endsWith(QLatin1Char('/')) ? url.path() + QStringLiteral("reverse")
                                                       : url.path() + QStringLiteral("/reverse"));
    QUrlQuery items;
    items.addQueryItem(QStringLiteral("lat"), shortest(lat));
    items.addQueryItem(QStringLiteral("lon"), shortest(lon));
    items.addQueryItem(QStringLiteral("format"), QStringLiteral("jsonv2"));
    items.addQueryItem(QStringLiteral("zoom"), QStringLiteral("16"));
    items.addQueryItem(QStringLiteral("addressdetails"), QStringLiteral("1"));
    url.setQuery(items);

    QNetworkRequest request(url);
    request.setHeader(QNetworkRequest::UserAgentHeader, userAgent());
    request.setTransferTimeout(int(m_options.timeout.count()));
    std::unique_ptr<QNetworkReply, void (*)(QNetworkReply *)> reply(m_network->get(request),
                                                                   [](QNetworkReply *r) { r->deleteLater(); });
    co_await qCoro(reply.get()).waitForFinished();
    // Any HTTP status is read for its body; only a transport failure means nothing came.
    if (!reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).isValid())
        co_return std::nullopt;
    co_return nameFromReply(reply->readAll());
}
