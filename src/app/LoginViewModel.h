#pragma once

#include "DeviceLogin.h"

#include <QObject>
#include <QPointer>
#include <QTimer>

#include <memory>

class AppModel;

/// @brief State and rules of the sign-in screen: three ways in (mailed link, API token,
/// password), the advanced toggle, when the button may be pressed, and the wait for the link.
///
/// Lives as long as the screen: destroying it cancels a running mail sign-in. All three ways
/// end in one of `AppModel`'s `signIn` operations.
class LoginViewModel : public QObject
{
    Q_OBJECT
    Q_PROPERTY(AppModel *app READ app WRITE setApp NOTIFY appChanged FINAL)
    Q_PROPERTY(bool advanced READ advanced WRITE setAdvanced NOTIFY advancedChanged FINAL)
    Q_PROPERTY(Mode mode READ mode WRITE setMode NOTIFY modeChanged FINAL)
    Q_PROPERTY(QString base READ base WRITE setBase NOTIFY fieldsChanged FINAL)
    Q_PROPERTY(QString email READ email WRITE setEmail NOTIFY fieldsChanged FINAL)
    Q_PROPERTY(QString user READ user WRITE setUser NOTIFY fieldsChanged FINAL)
    Q_PROPERTY(QString pass READ pass WRITE setPass NOTIFY fieldsChanged FINAL)
    Q_PROPERTY(QString token READ token WRITE setToken NOTIFY fieldsChanged FINAL)
    Q_PROPERTY(bool waiting READ waiting NOTIFY waitingChanged FINAL)
    /// The failure of the last mail sign-in, empty while there is none.
    Q_PROPERTY(QString error READ error NOTIFY errorChanged FINAL)
    Q_PROPERTY(bool hintVisible READ hintVisible NOTIFY hintVisibleChanged FINAL)
    Q_PROPERTY(bool canSubmit READ canSubmit NOTIFY fieldsChanged FINAL)
    Q_PROPERTY(QString submitText READ submitText NOTIFY modeChanged FINAL)
    Q_PROPERTY(QString explanation READ explanation NOTIFY modeChanged FINAL)
    Q_PROPERTY(QString waitingLine READ waitingLine NOTIFY fieldsChanged FINAL)
    /// Where "Visit the website" goes: the server field trimmed, empty when it is no URL.
    Q_PROPERTY(QString learnMoreUrl READ learnMoreUrl NOTIFY fieldsChanged FINAL)
    Q_PROPERTY(QStringList modeLabels READ modeLabels CONSTANT FINAL)

    // The screen's fixed words.
    Q_PROPERTY(QString pickerLabel READ pickerLabel CONSTANT FINAL)
    Q_PROPERTY(QString serverLabel READ serverLabel CONSTANT FINAL)
    Q_PROPERTY(QString serverNote READ serverNote CONSTANT FINAL)
    Q_PROPERTY(QString emailPlaceholder READ emailPlaceholder CONSTANT FINAL)
    Q_PROPERTY(QString userPlaceholder READ userPlaceholder CONSTANT FINAL)
    Q_PROPERTY(QString passPlaceholder READ passPlaceholder CONSTANT FINAL)
    Q_PROPERTY(QString tokenPlaceholder READ tokenPlaceholder CONSTANT FINAL)
    Q_PROPERTY(QString waitingHead READ waitingHead CONSTANT FINAL)
    Q_PROPERTY(QString hintText READ hintText CONSTANT FINAL)
    Q_PROPERTY(QString cancelText READ cancelText CONSTANT FINAL)
    Q_PROPERTY(QString learnMoreHead READ learnMoreHead CONSTANT FINAL)
    Q_PROPERTY(QString learnMoreText READ learnMoreText CONSTANT FINAL)
    Q_PROPERTY(QString learnMoreLink READ learnMoreLink CONSTANT FINAL)
    Q_PROPERTY(QString welcome READ welcome CONSTANT FINAL)
    Q_PROPERTY(QString advancedLabel READ advancedLabel CONSTANT FINAL)
public:
    /// The picker's cases; `modeLabels` holds their texts in this order.
    enum class Mode { email, token, password };
    Q_ENUM(Mode)

    explicit LoginViewModel(QObject *parent = nullptr);
    ~LoginViewModel() override;

    [[nodiscard]] AppModel *app() const { return m_app; }
    /// Takes the starting values from what is stored: a stored user opens the password form.
    void setApp(AppModel *app);

    [[nodiscard]] bool advanced() const { return m_advanced; }
    void setAdvanced(bool value);
    [[nodiscard]] Mode mode() const { return m_mode; }
    void setMode(Mode value);
    [[nodiscard]] QString base() const { return m_base; }
    void setBase(const QString &value);
    [[nodiscard]] QString email() const { return m_email; }
    void setEmail(const QString &value);
    [[nodiscard]] QString user() const { return m_user; }
    void setUser(const QString &value);
    [[nodiscard]] QString pass() const { return m_pass; }
    void setPass(const QString &value);
    [[nodiscard]] QString token() const { return m_token; }
    void setToken(const QString &value);

    [[nodiscard]] bool waiting() const { return m_waiting; }
    [[nodiscard]] QString error() const { return m_error; }
    [[nodiscard]] bool hintVisible() const { return m_hintVisible; }
    [[nodiscard]] bool canSubmit() const;
    [[nodiscard]] QString submitText() const;
    [[nodiscard]] QString explanation() const;
    [[nodiscard]] QString waitingLine() const;
    [[nodiscard]] QString learnMoreUrl() const;
    [[nodiscard]] static QStringList modeLabels();

    [[nodiscard]] static QString pickerLabel() { return QStringLiteral("Sign in with"); }
    [[nodiscard]] static QString serverLabel() { return QStringLiteral("Server"); }
    [[nodiscard]] static QString serverNote();
    [[nodiscard]] static QString emailPlaceholder() { return QStringLiteral("pilot@example.com"); }
    [[nodiscard]] static QString userPlaceholder() { return QStringLiteral("Username"); }
    [[nodiscard]] static QString passPlaceholder() { return QStringLiteral("Password"); }
    [[nodiscard]] static QString tokenPlaceholder() { return QStringLiteral("API token"); }
    [[nodiscard]] static QString waitingHead() { return QStringLiteral("Check your email"); }
    [[nodiscard]] static QString hintText();
    [[nodiscard]] static QString cancelText() { return QStringLiteral("Cancel"); }
    [[nodiscard]] static QString learnMoreHead() { return QStringLiteral("New to Ornivale?"); }
    [[nodiscard]] static QString learnMoreText();
    [[nodiscard]] static QString learnMoreLink() { return QStringLiteral("Visit the website"); }
    [[nodiscard]] static QString welcome() { return QStringLiteral("You fly. We curate."); }
    [[nodiscard]] static QString advancedLabel() { return QStringLiteral("Advanced"); }

    /// Password and token sign in at once; the mail way starts waiting for the link.
    Q_INVOKABLE void submit();
    /// Stops waiting for the link, without any error.
    Q_INVOKABLE void cancel();

    /// Poll deadline and spacing, and the delay of the "didn't get the email" hint; tests
    /// shorten them.
    void setTiming(DeviceLogin::Timing timing) { m_timing = timing; }
    void setHintDelay(std::chrono::milliseconds delay) { m_hintTimer.setInterval(delay); }

Q_SIGNALS:
    void appChanged();
    void advancedChanged();
    void modeChanged();
    void fieldsChanged();
    void waitingChanged();
    void errorChanged();
    void hintVisibleChanged();

private:
    QCoro::Task<> mailSignIn(std::shared_ptr<CancelToken> token, QString base, QString email);
    void setWaiting(bool value);
    void setError(const QString &value);
    void setHintVisible(bool value);

    QPointer<AppModel> m_app;
    bool m_advanced = false;
    Mode m_mode = Mode::email;
    QString m_base;
    QString m_email;
    QString m_user;
    QString m_pass;
    QString m_token;
    bool m_waiting = false;
    QString m_error;
    bool m_hintVisible = false;
    std::shared_ptr<CancelToken> m_loginTask;
    DeviceLogin::Timing m_timing;
    QTimer m_hintTimer;
};
