#pragma once

#include <QNetworkCookie>
#include <QObject>
#include <QProcessEnvironment>
#include <QString>
#include <QUrl>
#include <QVariant>

#include <QCoroTask>

#include <functional>
#include <memory>
#include <optional>

class APIClient;

/// @brief The 3D theater of one flight: the library's own 3D page shown full-window, with a web
/// session the page can use, since a web view can't send the client's Authorization header.
///
/// `open(flightId)` shows it with only a dark background until the client has traded its token
/// for the session cookie (`ready`); having no cookie is no failure, the page then asks to sign
/// in itself. The screen loads `url` with `sessionCookie` (a QNetworkCookie, or nothing) and
/// reports a load that failed with `fail()`; `close()` dismisses it, which every link in the
/// page, the close button and Esc do. Opening another flight replaces the one shown.
class TheaterController : public QObject
{
    Q_OBJECT
    Q_PROPERTY(bool active READ active NOTIFY activeChanged FINAL)
    Q_PROPERTY(QString flightId READ flightId NOTIFY flightIdChanged FINAL)
    Q_PROPERTY(bool ready READ ready NOTIFY readyChanged FINAL)
    Q_PROPERTY(bool failed READ failed NOTIFY failedChanged FINAL)
    Q_PROPERTY(QUrl url READ url NOTIFY readyChanged FINAL)
    Q_PROPERTY(QVariant sessionCookie READ sessionCookieValue NOTIFY readyChanged FINAL)
    Q_PROPERTY(QString failureText READ failureText CONSTANT FINAL)
public:
    /// What the page is told besides the flight: the pilot's units, the base map to drape and
    /// whether to play the full proxy rather than the library's lighter video.
    struct PageOptions {
        bool metric = false;
        QString tileTemplate;  ///< "https://host/style/{z}/{x}/{y}@2x.png", or empty for a plain grid
        bool hq = false;
    };
    using Options = std::function<PageOptions()>;

    /// `options` is asked each time a flight opens, so a changed preference applies to the next.
    explicit TheaterController(std::shared_ptr<APIClient> client, Options options = {}, QObject *parent = nullptr);
    ~TheaterController() override;

    /// Signing in makes a new client; the next `open` uses it.
    void setClient(std::shared_ptr<APIClient> client);

    /// The flight the development entry opens in the theater: "SPIKE_FLIGHT" when "SPIKE_THEATER"
    /// is exactly "1".
    [[nodiscard]] static std::optional<QString> spikeFlight(const QProcessEnvironment &environment);
    /// base + "/theater.html?id=" + the id as it is, then the units, the tile template and the quality.
    [[nodiscard]] static QUrl pageUrl(const APIClient &client, const QString &flightId, const PageOptions &options);
    /// The words of the failure screen.
    [[nodiscard]] static QString failureText() { return QStringLiteral("Couldn’t load the 3D theater."); }

    [[nodiscard]] bool active() const { return m_active; }
    [[nodiscard]] QString flightId() const { return m_flightId; }
    [[nodiscard]] bool ready() const { return m_ready; }
    [[nodiscard]] bool failed() const { return m_failed; }
    [[nodiscard]] QUrl url() const { return m_url; }
    [[nodiscard]] const std::optional<QNetworkCookie> &sessionCookie() const { return m_cookie; }
    [[nodiscard]] QVariant sessionCookieValue() const;

public Q_SLOTS:
    void open(const QString &flightId);
    void close();
    /// The page could not be loaded: the screen shows the failure words and its "Close" only.
    void fail();

Q_SIGNALS:
    void activeChanged();
    void flightIdChanged();
    void readyChanged();
    void failedChanged();

private:
    QCoro::Task<> fetchSession(std::shared_ptr<APIClient> client, quint64 opening);
    void setActive(bool active);
    void setReady(bool ready);
    void setFailed(bool failed);

    std::shared_ptr<APIClient> m_client;
    Options m_options;
    quint64 m_opening = 0;  ///< counts openings, so a late cookie for an earlier one is dropped
    bool m_active = false;
    QString m_flightId;
    bool m_ready = false;
    bool m_failed = false;
    QUrl m_url;
    std::optional<QNetworkCookie> m_cookie;
};
