#pragma once

#include "FlightUploader.h"

#include <QObject>
#include <QPointer>

#include <QCoroTask>

#include <optional>

class AppEvents;
class AppModel;
struct SamplesStatus;

/// @brief The Account tab of the settings: who is signed in, the library's size and storage,
/// the sample flights, and the connection test. Only the test and the sample buttons speak
/// (through `checkResult`); the rows of a failed fetch simply stay hidden.
///
/// Everything shown belongs to one session: signing out or into another library forgets it at
/// once, and replies of calls made for the old session are dropped when they arrive. Each load
/// starts from nothing, so a step that fails shows nothing rather than what an earlier load had.
class AccountSettingsModel : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QString email READ email NOTIFY changed FINAL)
    Q_PROPERTY(bool hasLibrary READ hasLibrary NOTIFY changed FINAL)
    Q_PROPERTY(QString libraryText READ libraryText NOTIFY changed FINAL)
    Q_PROPERTY(bool showStorage READ showStorage NOTIFY changed FINAL)
    Q_PROPERTY(double storageFraction READ storageFraction NOTIFY changed FINAL)
    Q_PROPERTY(QString storageText READ storageText NOTIFY changed FINAL)
    Q_PROPERTY(int samplesCount READ samplesCount NOTIFY changed FINAL)
    Q_PROPERTY(QString samplesText READ samplesText NOTIFY changed FINAL)
    Q_PROPERTY(int samplesRestorable READ samplesRestorable NOTIFY changed FINAL)
    Q_PROPERTY(QString removeSamplesTitle READ removeSamplesTitle NOTIFY changed FINAL)
    Q_PROPERTY(bool checking READ checking NOTIFY changed FINAL)
    Q_PROPERTY(QString checkResult READ checkResult NOTIFY changed FINAL)
    Q_PROPERTY(bool samplesBusy READ samplesBusy NOTIFY changed FINAL)
public:
    AccountSettingsModel(AppModel &app, AppEvents *events, QObject *parent = nullptr);
    ~AccountSettingsModel() override;

    [[nodiscard]] QString email() const { return m_email.value_or(QStringLiteral("—")); }
    [[nodiscard]] bool hasLibrary() const { return m_library.has_value(); }
    [[nodiscard]] QString libraryText() const;
    [[nodiscard]] bool showStorage() const { return m_library && m_library->quota >= 1; }
    [[nodiscard]] double storageFraction() const;
    [[nodiscard]] QString storageText() const;
    [[nodiscard]] int samplesCount() const;
    [[nodiscard]] QString samplesText() const;
    [[nodiscard]] int samplesRestorable() const;
    [[nodiscard]] QString removeSamplesTitle() const;
    [[nodiscard]] bool checking() const { return m_checking; }
    [[nodiscard]] QString checkResult() const { return m_checkResult; }
    [[nodiscard]] bool samplesBusy() const { return m_samplesBusy; }

public Q_SLOTS:
    /// Account, library summary and samples, each failing in silence. Signed out, it only
    /// clears the rows.
    void load();
    /// The window came into view (it loads) or went out of it. A session that starts while it
    /// is in view loads again.
    void setShown(bool shown);
    void testConnection();
    void removeSamples();
    void restoreSamples();

Q_SIGNALS:
    void changed();

private:
    /// Drops every value and the claim of any call still running.
    void forget();
    /// Another session: what was shown goes, and a window in view loads the new one's.
    void sessionChanged();
    QCoro::Task<void> loadAll(int generation);
    QCoro::Task<void> runTest(int generation);
    QCoro::Task<void> changeSamples(bool remove, int generation);

    AppModel &m_app;
    QPointer<AppEvents> m_events;
    std::optional<QString> m_email;
    std::optional<FlightUploader::ServerLibrary> m_library;
    std::unique_ptr<SamplesStatus> m_samples;
    bool m_checking = false;
    QString m_checkResult;
    bool m_samplesBusy = false;
    int m_generation = 0;  ///< bumped whenever what is shown is forgotten
    bool m_shown = false;
    bool m_reloadQueued = false;
};
