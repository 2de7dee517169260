#include "LoginViewModel.h"

#include "AppModel.h"

#include <QUrl>

LoginViewModel::LoginViewModel(QObject *parent)
    : QObject(parent)
    , m_base(AppModel::defaultBase)
{
    // The server sends no mail to an address it doesn't know and can't tell us so: after a
    // while the screen says what may have happened.
    m_hintTimer.setSingleShot(true);
    m_hintTimer.setInterval(std::chrono::seconds(75));
    connect(&m_hintTimer, &QTimer::timeout, this, [this] { setHintVisible(true); });
}

LoginViewModel::~LoginViewModel()
{
    if (m_loginTask)
        m_loginTask->cancel();
}

void LoginViewModel::setApp(AppModel *app)
{
    if (m_app == app)
        return;
    m_app = app;
    if (app) {
        const auto storedUser = app->storedUser();
        m_advanced = storedUser.has_value();
        m_mode = storedUser ? Mode::password : Mode::email;
        m_user = storedUser.value_or(QString());
        m_base = app->storedBase().value_or(AppModel::defaultBase);
        Q_EMIT advancedChanged();
        Q_EMIT modeChanged();
        Q_EMIT fieldsChanged();
    }
    Q_EMIT appChanged();
}

void LoginViewModel::setAdvanced(bool value)
{
    if (m_advanced == value)
        return;
    m_advanced = value;
    Q_EMIT advancedChanged();
    // The simple form has only the e-mail field; what was typed elsewhere stays.
    if (!value)
        setMode(Mode::email);
}

void LoginViewModel::setMode(Mode value)
{
    if (m_mode == value)
        return;
    m_mode = value;
    setError(QString());
    Q_EMIT modeChanged();
    Q_EMIT fieldsChanged();
}

#define AEROLOOM_FIELD_SETTER(name, member)   \
    void LoginViewModel::name(const QString &value) \
    {                                         \
        if (member == value)                  \
            return;                           \
        member = value;                       \
        Q_EMIT fieldsChanged();               \
    }
AEROLOOM_FIELD_SETTER(setBase, m_base)
AEROLOOM_FIELD_SETTER(setEmail, m_email)
AEROLOOM_FIELD_SETTER(setUser, m_user)
AEROLOOM_FIELD_SETTER(setPass, m_pass)
AEROLOOM_FIELD_SETTER(setToken, m_token)
#undef AEROLOOM_FIELD_SETTER

bool LoginViewModel::canSubmit() const
{
    if (m_base.trimmed().isEmpty())
        return false;
    switch (m_mode) {
    case Mode::email:
        return m_email.contains(QLatin1Char('@'));
    case Mode::token:
        return !m_token.trimmed().isEmpty();
    case Mode::password:
        // An empty user is a local server without a password.
        return true;
    }
    return false;
}

QString LoginViewModel::submitText() const
{
    return m_mode == Mode::email ? QStringLiteral("Email me a sign-in link") : QStringLiteral("Connect");
}

QString LoginViewModel::explanation() const
{
    switch (m_mode) {
    case Mode::email:
        return QStringLiteral("We'll email you a sign-in link — open it on any device and this app signs in by "
                              "itself. No password, nothing to paste.");
    case Mode::password:
        return QStringLiteral("The classic single-library server. Leave blank when pointing at a local server "
                              "without a password.");
    case Mode::token:
        return QStringLiteral("Manual fallback: create a token on the website (Account → Devices & API tokens) "
                              "and paste it here.");
    }
    return {};
}

QString LoginViewModel::waitingLine() const
{
    return QStringLiteral("Open the sign-in link we sent to ") + m_email
        + QStringLiteral(" — this screen finishes by itself.");
}

QString LoginViewModel::learnMoreUrl() const
{
    const QString text = m_base.trimmed();
    if (text.isEmpty())
        return {};
    const QUrl url(text, QUrl::StrictMode);
    if (!url.isValid() || url.scheme().isEmpty())
        return {};
    return text;
}

QStringList LoginViewModel::modeLabels()
{
    return {QStringLiteral("Email"), QStringLiteral("API token"), QStringLiteral("Password")};
}

QString LoginViewModel::serverNote()
{
    return QStringLiteral("Where your library lives — leave the default unless you run your own server.");
}

QString LoginViewModel::hintText()
{
    return QStringLiteral("Didn't get the email? Check spam — and note that you need an Ornivale account to sign "
                          "in. If this address doesn't have one, no email arrives; the website has the full tour "
                          "and the waitlist.");
}

QString LoginViewModel::learnMoreText()
{
    return QStringLiteral("You need an Ornivale account to sign in — we're welcoming pilots a few at a time. The "
                          "website has the full tour and the waitlist.");
}

void LoginViewModel::submit()
{
    if (!m_app || m_waiting || !canSubmit())
        return;
    const QString base = m_base.trimmed();
    setError(QString());
    switch (m_mode) {
    case Mode::password:
        m_app->signIn(base, m_user, m_pass);
        return;
    case Mode::token:
        m_app->signIn(base, m_token.trimmed());
        return;
    case Mode::email:
        break;
    }
    setWaiting(true);
    m_loginTask = std::make_shared<CancelToken>();
    const QString cleanBase = base.endsWith(QLatin1Char('/')) ? base.chopped(1) : base;
    (void)mailSignIn(m_loginTask, cleanBase, m_email.trimmed());
}

void LoginViewModel::cancel()
{
    if (m_loginTask) {
        m_loginTask->cancel();
        m_loginTask.reset();
    }
    setWaiting(false);
}

QCoro::Task<> LoginViewModel::mailSignIn(std::shared_ptr<CancelToken> token, QString base, QString email)
{
    // The token is shared with this task so it outlives the screen; the screen is checked
    // after every wait, and a cancelled attempt leaves the screen's state alone.
    QPointer self(this);
    QPointer<AppModel> app = m_app;
    QNetworkAccessManager *network = app->sharedNetwork();
    const DeviceLogin::Timing timing = m_timing;

    const auto secret = co_await DeviceLogin::request(network, email, base, token.get());
    if (!self || !app || token->isCancelled())
        co_return;
    if (!secret) {
        setError(secret.failure().text);
        setWaiting(false);
        co_return;
    }
    const auto polled = co_await DeviceLogin::poll(network, *secret, base, token.get(), timing);
    if (!self || !app || token->isCancelled())
        co_return;
    if (!polled)
        setError(polled.failure().text);
    else if (const auto &apiToken = *polled)
        app->signIn(base, *apiToken);
    m_loginTask.reset();
    setWaiting(false);
}

void LoginViewModel::setWaiting(bool value)
{
    if (m_waiting == value)
        return;
    m_waiting = value;
    if (value) {
        m_hintTimer.start();
    } else {
        m_hintTimer.stop();
        setHintVisible(false);
    }
    Q_EMIT waitingChanged();
}

void LoginViewModel::setError(const QString &value)
{
    if (m_error == value)
        return;
    m_error = value;
    Q_EMIT errorChanged();
}

void LoginViewModel::setHintVisible(bool value)
{
    if (m_hintVisible == value)
        return;
    m_hintVisible = value;
    Q_EMIT hintVisibleChanged();
}
