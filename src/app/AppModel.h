#pragma once

#include "APIClient.h"

#include <QNetworkAccessManager>
#include <QObject>
#include <QProcessEnvironment>

#include <QCoroTask>

#include <memory>
#include <optional>

class CredentialStore;
class Preferences;

/// @brief The session of the process: whether somebody is signed in, who, on which plan,
/// and the `APIClient` every screen uses.
///
/// Built by the composition root and handed to every window. `start()` reads the environment
/// overrides or the stored credentials; nothing checks that they still work, the account is
/// asked for in the background and a failure there only leaves `plan` absent.
class AppModel : public QObject
{
    Q_OBJECT
    Q_PROPERTY(bool loggedIn READ loggedIn NOTIFY loggedInChanged FINAL)
    /// The plan from `api/me`, empty while absent.
    Q_PROPERTY(QString plan READ planText NOTIFY planChanged FINAL)
    Q_PROPERTY(bool pro READ isPro NOTIFY planChanged FINAL)
    /// What the screens show as the account, empty while absent.
    Q_PROPERTY(QString email READ emailText NOTIFY emailChanged FINAL)
    Q_PROPERTY(QObject *client READ clientObject NOTIFY clientChanged FINAL)
    Q_PROPERTY(QString baseString READ baseString NOTIFY clientChanged FINAL)
    /// "SPIKE_SCREEN" of the environment: "reels" shows the stories list alone.
    Q_PROPERTY(QString screenOverride READ screenOverride CONSTANT FINAL)
public:
    /// The public library service, used before any credentials are known.
    static inline const QString defaultBase = QStringLiteral("https://library.ornivale.com");

    AppModel(Preferences &prefs, CredentialStore &credentials,
             QProcessEnvironment environment = QProcessEnvironment::systemEnvironment(), QObject *parent = nullptr);
    ~AppModel() override;

    /// Start-up: environment overrides, else stored credentials, else signed out; then a
    /// background account refresh when signed in. Completes once the session is decided.
    QCoro::Task<> start();

    [[nodiscard]] bool loggedIn() const { return m_loggedIn; }
    [[nodiscard]] const std::optional<QString> &plan() const { return m_plan; }
    [[nodiscard]] const std::optional<QString> &email() const { return m_email; }
    [[nodiscard]] QString planText() const { return m_plan.value_or(QString()); }
    [[nodiscard]] QString emailText() const { return m_email.value_or(QString()); }
    [[nodiscard]] bool isPro() const { return m_plan == QStringLiteral("pro"); }
    [[nodiscard]] std::shared_ptr<APIClient> client() const { return m_client; }
    [[nodiscard]] QObject *clientObject() const { return m_client.get(); }
    [[nodiscard]] QString baseString() const { return m_client->baseString(); }
    [[nodiscard]] QString screenOverride() const;
    [[nodiscard]] const QProcessEnvironment &environment() const { return m_env; }

    /// The stored "base" and "user", as the sign-in screen starts from them.
    [[nodiscard]] std::optional<QString> storedBase() const;
    [[nodiscard]] std::optional<QString> storedUser() const;

    /// The inactivity timeout of the clients made from now on (`APIClient::requestTimeout`
    /// unless a test proving a stalled server shortens it).
    void setClientTimeout(std::chrono::milliseconds timeout) { m_clientTimeout = timeout; }

    /// Network access for calls made without a client (the device sign-in).
    [[nodiscard]] QNetworkAccessManager *sharedNetwork() const { return m_sharedNetwork.get(); }

    /// Sign-in with an API token: Bearer header, "user" and "pass" removed.
    void signIn(const QString &base, const QString &token);
    /// Sign-in with a user name and password; an empty user means a server without a password.
    void signIn(const QString &base, const QString &user, const QString &password);
    Q_INVOKABLE void signInWithToken(const QString &base, const QString &token) { signIn(base, token); }
    Q_INVOKABLE void signInWithPassword(const QString &base, const QString &user, const QString &password)
    {
        signIn(base, user, password);
    }
    /// Forgets the session; the client stays until the next sign-in replaces it.
    Q_INVOKABLE void signOut();

    /// Asks `api/me` for the plan and e-mail. Never fails: on any failure the plan is absent
    /// and the e-mail falls back on the stored user name.
    QCoro::Task<> refreshAccount();

Q_SIGNALS:
    void loggedInChanged();
    void planChanged();
    void emailChanged();
    void clientChanged();
    /// A background account refresh has applied its result (for tests and tools).
    void accountRefreshed();

private:
    void setClient(const QString &base, std::optional<QString> authHeader);
    void setLoggedIn(bool value);
    void setPlan(std::optional<QString> value);
    void setEmail(std::optional<QString> value);
    void refreshInBackground();

    Preferences &m_prefs;
    CredentialStore &m_credentials;
    QProcessEnvironment m_env;
    std::unique_ptr<QNetworkAccessManager> m_sharedNetwork;
    std::shared_ptr<APIClient> m_client;
    std::chrono::milliseconds m_clientTimeout = APIClient::requestTimeout;
    bool m_loggedIn = false;
    std::optional<QString> m_plan;
    std::optional<QString> m_email;
};
