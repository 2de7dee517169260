#include "TheaterWebSession.h"

#include <QWebEngineCookieStore>
#include <QWebEngineLoadingInfo>
#include <QWebEngineNavigationRequest>

namespace {
/// The store tells of a cookie once it holds it; should it never tell, the page loads anyway
/// after this long and asks to sign in, rather than leaving the theater dark.
constexpr int primeGuardMs = 5000;
} // namespace

TheaterWebSession::TheaterWebSession(QObject *parent) : QObject(parent)
{
    m_timeout.setSingleShot(true);
    m_timeout.setInterval(defaultLoadTimeout);
    connect(&m_timeout, &QTimer::timeout, this, &TheaterWebSession::failed);
    m_primeGuard.setSingleShot(true);
    m_primeGuard.setInterval(primeGuardMs);
    connect(&m_primeGuard, &QTimer::timeout, this, &TheaterWebSession::setPrimed);
}

void TheaterWebSession::setProfile(QQuickWebEngineProfile *profile)
{
    if (profile == m_profile)
        return;
    m_profile = profile;
    Q_EMIT profileChanged();
    prime();
}

QVariant TheaterWebSession::cookie() const
{
    return m_cookie ? QVariant::fromValue(*m_cookie) : QVariant();
}

void TheaterWebSession::setCookie(const QVariant &cookie)
{
    std::optional<QNetworkCookie> value;
    if (cookie.canConvert<QNetworkCookie>() && !cookie.value<QNetworkCookie>().name().isEmpty())
        value = cookie.value<QNetworkCookie>();
    if (value == m_cookie)
        return;
    m_cookie = std::move(value);
    Q_EMIT cookieChanged();
}

void TheaterWebSession::componentComplete()
{
    m_complete = true;
    prime();
}

void TheaterWebSession::setLoadTimeout(int milliseconds)
{
    if (milliseconds == m_timeout.interval())
        return;
    m_timeout.setInterval(milliseconds);
    Q_EMIT loadTimeoutChanged();
}

void TheaterWebSession::prime()
{
    // Once, with everything set: a page loaded before its cookie would go out unauthenticated.
    if (m_primed || m_primeGuard.isActive() || !m_profile || !m_complete)
        return;
    if (!m_cookie)
        return setPrimed();
    QWebEngineCookieStore *store = m_profile->cookieStore();
    const QNetworkCookie wanted = *m_cookie;
    connect(store, &QWebEngineCookieStore::cookieAdded, this, [this, wanted](const QNetworkCookie &added) {
        if (added.name() == wanted.name() && added.value() == wanted.value())
            setPrimed();
    });
    m_primeGuard.start();
    store->setCookie(wanted);
}

void TheaterWebSession::setPrimed()
{
    m_primeGuard.stop();
    if (m_primed)
        return;
    m_primed = true;
    Q_EMIT primedChanged();
}

void TheaterWebSession::decide(QWebEngineNavigationRequest *request)
{
    if (!request)
        return;
    if (request->navigationType() != QWebEngineNavigationRequest::LinkClickedNavigation) {
        request->accept();
        return;
    }
    request->reject();
    // Leaving tears the view down: not from inside its own callback.
    QMetaObject::invokeMethod(this, &TheaterWebSession::exitRequested, Qt::QueuedConnection);
}

void TheaterWebSession::loadingChanged(int status, int errorDomain)
{
    switch (status) {
    case QWebEngineLoadingInfo::LoadStartedStatus:
        m_timeout.start();
        return;
    case QWebEngineLoadingInfo::LoadFailedStatus:
        m_timeout.stop();
        if (errorDomain != QWebEngineLoadingInfo::HttpStatusCodeDomain)
            Q_EMIT failed();
        return;
    default:  // succeeded, or stopped (a cancelled link)
        m_timeout.stop();
        return;
    }
}
