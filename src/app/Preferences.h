#pragma once

#include <QHash>
#include <QObject>
#include <QSettings>
#include <QStringList>
#include <QVariant>

#include <memory>
#include <optional>

/// @brief Every stored preference of the program, over one QSettings file, with registered
/// defaults that are never written to disk.
///
/// `contains()` tells a stored value from a default, which the playback migration needs.
class Preferences : public QObject
{
    Q_OBJECT
public:
    /// The user's own settings file (INI in the platform's config folder).
    explicit Preferences(QObject *parent = nullptr);
    /// A settings file of its own, for tests and tools.
    explicit Preferences(const QString &iniPath, QObject *parent = nullptr);
    ~Preferences() override;

    /// A value that stands when nothing is stored; registering again replaces it.
    void registerDefault(const QString &key, const QVariant &value);
    /// Registers the program's own defaults ("ingest.geocode" = true).
    void registerAppDefaults();

    /// True only when a value is stored, defaults aside.
    [[nodiscard]] Q_INVOKABLE bool contains(const QString &key) const;
    /// The stored value, else the registered default, else an invalid QVariant.
    [[nodiscard]] Q_INVOKABLE QVariant value(const QString &key) const;
    [[nodiscard]] Q_INVOKABLE bool boolValue(const QString &key) const;
    [[nodiscard]] Q_INVOKABLE QString stringValue(const QString &key) const;
    [[nodiscard]] std::optional<QString> optionalString(const QString &key) const;
    /// The stored text when it is one of `allowed`, else `fallback`: an enumeration stored by an
    /// older or newer build never reaches a model as an unknown case.
    [[nodiscard]] QString choice(const QString &key, const QStringList &allowed, const QString &fallback) const;

    Q_INVOKABLE void setValue(const QString &key, const QVariant &value);
    Q_INVOKABLE void remove(const QString &key);
    /// Writes pending changes to disk now.
    void sync();

    [[nodiscard]] QString fileName() const { return m_settings->fileName(); }

Q_SIGNALS:
    void changed(const QString &key);

private:
    std::unique_ptr<QSettings> m_settings;
    QHash<QString, QVariant> m_defaults;
};
