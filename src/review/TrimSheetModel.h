#pragma once

#include "ClipFilmstrip.h"
#include "LightboxEngine.h"

#include <QObject>
#include <QString>

#include <memory>

class APIClient;

/// @brief Trims one stretch of a flight on its own, for a story's item: the stretch loops, the
/// filmstrip's handles move it (never under half a second), and every handle let go reports
/// the new bounds at once through `changed`; there is nothing to save.
///
/// Screens open it with `open(key, …)` and follow `changed(key, start, end)`; `key` is theirs
/// (a story item's uid, say) and comes back unchanged. `close()` pauses and stops observing.
class TrimSheetModel : public QObject
{
    Q_OBJECT
    Q_PROPERTY(LightboxEngine *engine READ engine CONSTANT FINAL)
    Q_PROPERTY(ClipFilmstrip *strip READ strip CONSTANT FINAL)
    Q_PROPERTY(bool isOpen READ isOpen NOTIFY openChanged FINAL)
    Q_PROPERTY(QString label READ label NOTIFY openChanged FINAL)
    Q_PROPERTY(QString subtitle READ subtitle NOTIFY openChanged FINAL)
    Q_PROPERTY(QString lengthText READ lengthText NOTIFY lengthChanged FINAL)
    Q_PROPERTY(bool hq READ hq WRITE setHq NOTIFY hqChanged FINAL)
public:
    /// The sheet's handles keep a stretch at least this long.
    static constexpr double minClip = 0.5;

    TrimSheetModel(std::shared_ptr<APIClient> client, LightboxEngine::PlayerFactory makePlayer,
                   QObject *parent = nullptr);
    ~TrimSheetModel() override;

    /// Signing in makes a new client; the next `open` uses it.
    void setClient(std::shared_ptr<APIClient> client);

    [[nodiscard]] LightboxEngine *engine() const { return m_engine; }
    [[nodiscard]] ClipFilmstrip *strip() const { return m_strip; }
    [[nodiscard]] bool isOpen() const { return m_open; }
    [[nodiscard]] QString key() const { return m_key; }
    [[nodiscard]] QString label() const { return m_label; }
    [[nodiscard]] QString subtitle() const { return m_subtitle; }
    /// "clip " and the length of the stretch as it now stands, in minutes, seconds and tenths.
    [[nodiscard]] QString lengthText() const;
    [[nodiscard]] bool hq() const { return m_hq; }
    void setHq(bool hq);

public Q_SLOTS:
    /// Shows `originalIn`..`originalOut` of the flight's video, looping.
    void open(const QString &key, const QString &flightId, bool p480, const QString &label, const QString &subtitle,
              double originalIn, double originalOut);
    void close();

Q_SIGNALS:
    void openChanged();
    void lengthChanged();
    void hqChanged();
    /// A handle was let go: the stretch of `key` is now `start`..`end`.
    void changed(const QString &key, double start, double end);

private:
    std::shared_ptr<APIClient> m_client;
    LightboxEngine *m_engine;
    ClipFilmstrip *m_strip;
    bool m_open = false;
    QString m_key;
    QString m_label;
    QString m_subtitle;
    bool m_hq = false;
};
