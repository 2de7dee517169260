#include "AppModel.h"

#include "CredentialStore.h"
#include "Preferences.h"

#include <QPointer>

namespace {
const QString baseKey = QStringLiteral("base");
const QString userKey = QStringLiteral("user");
const QString passKey = QStringLiteral("pass");
const QString tokenKey = QStringLiteral("token");

QString basicHeader(const QString &user, const QString &password)
{
    return QStringLiteral("Basic ") + QString::fromLatin1((user + QLatin1Char(':') + password).toUtf8().toBase64());
}

QString bearerHeader(const QString &token)
{
    return QStringLiteral("Bearer ") + token;
}
} // namespace

AppModel::AppModel(Preferences &prefs, CredentialStore &credentials, QProcessEnvironment environment, QObject *parent)
    : QObject(parent)
    , m_prefs(prefs)
    , m_credentials(credentials)
    , m_env(std::move(environment))
    , m_sharedNetwork(std::make_unique<QNetworkAccessManager>())
    , m_client(std::make_shared<APIClient>(defaultBase, std::nullopt))
{
}

AppModel::~AppModel() = default;

QCoro::Task<> AppModel::start()
{
    QPointer self(this);
    if (m_env.contains(QStringLiteral("SPIKE_BASE"))) {
        // Development overrides: nothing is stored and the stored credentials are not read.
        const QString base = m_env.value(QStringLiteral("SPIKE_BASE"));
        const QString user = m_env.value(QStringLiteral("SPIKE_USER"));
        if (m_env.contains(QStringLiteral("SPIKE_TOKEN")))
            setClient(base, bearerHeader(m_env.value(QStringLiteral("SPIKE_TOKEN"))));
        else if (!user.isEmpty())
            setClient(base, basicHeader(user, m_env.value(QStringLiteral("SPIKE_PASS"))));
        else
            setClient(base, std::nullopt);
        setLoggedIn(true);
    } else if (const auto base = storedBase()) {
        const auto token = co_await m_credentials.read(tokenKey);
        if (!self)
            co_return;
        if (token) {
            setClient(*base, bearerHeader(*token));
        } else {
            const QString user = storedUser().value_or(QString());
            if (user.isEmpty()) {
                setClient(*base, std::nullopt);
            } else {
                const auto pass = co_await m_credentials.read(passKey);
                if (!self)
                    co_return;
                setClient(*base, basicHeader(user, pass.value_or(QString())));
            }
        }
        setLoggedIn(true);
    }
    if (m_loggedIn)
        refreshInBackground();
}

QString AppModel::screenOverride() const
{
    return m_env.value(QStringLiteral("SPIKE_SCREEN"));
}

std::optional<QString> AppModel::storedBase() const
{
    return m_prefs.optionalString(baseKey);
}

std::optional<QString> AppModel::storedUser() const
{
    return m_prefs.optionalString(userKey);
}

void AppModel::signIn(const QString &base, const QString &token)
{
    m_prefs.setValue(baseKey, base);
    m_prefs.remove(userKey);
    (void)m_credentials.write(passKey, std::nullopt);
    (void)m_credentials.write(tokenKey, token);
    m_prefs.sync();
    setClient(base, bearerHeader(token));
    setLoggedIn(true);
    refreshInBackground();
}

void AppModel::signIn(const QString &base, const QString &user, const QString &password)
{
    m_prefs.setValue(baseKey, base);
    m_prefs.setValue(userKey, user);
    (void)m_credentials.write(passKey, user.isEmpty() ? std::nullopt : std::optional<QString>(password));
    (void)m_credentials.write(tokenKey, std::nullopt);
    m_prefs.sync();
    setClient(base, user.isEmpty() ? std::nullopt : std::optional<QString>(basicHeader(user, password)));
    setLoggedIn(true);
    refreshInBackground();
}

void AppModel::signOut()
{
    m_prefs.remove(baseKey);
    m_prefs.remove(userKey);
    (void)m_credentials.write(passKey, std::nullopt);
    (void)m_credentials.write(tokenKey, std::nullopt);
    m_prefs.sync();
    setLoggedIn(false);
    setPlan(std::nullopt);
    setEmail(std::nullopt);
}

QCoro::Task<> AppModel::refreshAccount()
{
    QPointer self(this);
    // Keep the client alive for the call even if a sign-in replaces it meanwhile.
    const std::shared_ptr<APIClient> client = m_client;
    const auto me = co_await client->fetchMe();
    if (!self)
        co_return;
    if (me) {
        setPlan(me->plan);
        setEmail(me->email);
    } else {
        setPlan(std::nullopt);
        const QString user = storedUser().value_or(QString()).trimmed();
        setEmail(user.isEmpty() ? std::nullopt : std::optional<QString>(user));
    }
    Q_EMIT accountRefreshed();
}

void AppModel::refreshInBackground()
{
    // The task runs on by itself; the QPointer inside keeps it from touching a dead model.
    (void)refreshAccount();
}

void AppModel::setClient(const QString &base, std::optional<QString> authHeader)
{
    m_client = std::make_shared<APIClient>(base, std::move(authHeader), nullptr, nullptr, m_clientTimeout);
    Q_EMIT clientChanged();
}

void AppModel::setLoggedIn(bool value)
{
    if (m_loggedIn == value)
        return;
    m_loggedIn = value;
    Q_EMIT loggedInChanged();
}

void AppModel::setPlan(std::optional<QString> value)
{
    if (m_plan == value)
        return;
    m_plan = std::move(value);
    Q_EMIT planChanged();
}

void AppModel::setEmail(std::optional<QString> value)
{
    if (m_email == value)
        return;
    m_email = std::move(value);
    Q_EMIT emailChanged();
}
