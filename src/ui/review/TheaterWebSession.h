#pragma once

#include <QNetworkCookie>
#include <QObject>
#include <QPointer>
#include <QQmlParserStatus>
#include <QQuickWebEngineProfile>
#include <QTimer>
#include <QVariant>

#include <optional>

class QWebEngineNavigationRequest;

/// @brief What the theater's web view needs beyond its QML: the session cookie in the profile's
/// store before anything loads, the rule for which navigations leave the theater, and which
/// failed loads count as the theater failing.
///
///   TheaterWebSession { id: session; profile: view.profile; cookie: theater.sessionCookie }
///   WebEngineView {
///       url: session.primed ? theater.url : ""
///       onNavigationRequested: request => session.decide(request)
///       onLoadingChanged: info => session.loadingChanged(info.status, info.errorDomain)
///   }
class TheaterWebSession : public QObject, public QQmlParserStatus
{
    Q_OBJECT
    Q_INTERFACES(QQmlParserStatus)
    Q_PROPERTY(QQuickWebEngineProfile *profile READ profile WRITE setProfile NOTIFY profileChanged FINAL)
    /// A QNetworkCookie, or nothing: the page is then loaded without one. What it holds once the
    /// session is made is what the page gets; a later change has no effect.
    Q_PROPERTY(QVariant cookie READ cookie WRITE setCookie NOTIFY cookieChanged FINAL)
    /// The cookie is in the store (or there is none to give): the page may load.
    Q_PROPERTY(bool primed READ primed NOTIFY primedChanged FINAL)
    /// How long a load may take before it counts as failed, in milliseconds.
    Q_PROPERTY(int loadTimeout READ loadTimeout WRITE setLoadTimeout NOTIFY loadTimeoutChanged FINAL)
public:
    static constexpr int defaultLoadTimeout = 60000;

    explicit TheaterWebSession(QObject *parent = nullptr);

    [[nodiscard]] QQuickWebEngineProfile *profile() const { return m_profile; }
    void setProfile(QQuickWebEngineProfile *profile);
    [[nodiscard]] QVariant cookie() const;
    void setCookie(const QVariant &cookie);
    [[nodiscard]] bool primed() const { return m_primed; }
    [[nodiscard]] int loadTimeout() const { return m_timeout.interval(); }
    void setLoadTimeout(int milliseconds);

    void classBegin() override {}
    /// Every property is set: the cookie goes into the store (or the page may load at once).
    void componentComplete() override;

    /// A link the pilot activates leaves the theater, wherever it points: it is cancelled and
    /// `exitRequested` follows. Every other navigation (a redirect, the first load) goes ahead.
    Q_INVOKABLE void decide(QWebEngineNavigationRequest *request);
    /// Follows the view's loads (`WebEngineView.loadingChanged`'s status and error domain). A
    /// load that fails to reach the page, or takes longer than `loadTimeout`, is a failure; a
    /// page the server answers with an error status is not: it has words of its own to show.
    Q_INVOKABLE void loadingChanged(int status, int errorDomain);

Q_SIGNALS:
    void profileChanged();
    void cookieChanged();
    void primedChanged();
    void loadTimeoutChanged();
    void exitRequested();
    void failed();

private:
    void prime();
    void setPrimed();

    QPointer<QQuickWebEngineProfile> m_profile;
    std::optional<QNetworkCookie> m_cookie;
    bool m_complete = false;
    bool m_primed = false;
    QTimer m_timeout;
    QTimer m_primeGuard;
};
