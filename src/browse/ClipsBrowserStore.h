#pragma once

#include "ClipRecords.h"
#include "FlightRecords.h"

#include <QHash>
#include <QList>
#include <QObject>
#include <QSet>
#include <QString>

#include <QCoroTask>

#include "Toast.h"

#include <chrono>
#include <memory>

class APIClient;

/// @brief Every clip of the library, the pilot's and the library's suggestions, sorted; the
/// telemetry of their flights on demand; and the changes the pilot makes to them.
///
/// Changes go through the client's read-modify-write calls and, once the server has them,
/// are mirrored into `all` without a reload. Nothing serialises two changes to one flight:
/// the later write wins on the server, as it would from two windows.
class ClipsBrowserStore : public QObject
{
    Q_OBJECT
    Q_PROPERTY(bool loading READ loading NOTIFY loadingChanged FINAL)
    Q_PROPERTY(bool loadFailed READ loadFailed NOTIFY loadingChanged FINAL)
    Q_PROPERTY(QString toast READ toast NOTIFY toastChanged FINAL)
public:
    /// `toastStand` is how long a message stands (tests shorten it).
    explicit ClipsBrowserStore(std::shared_ptr<APIClient> client, QObject *parent = nullptr,
                               std::chrono::milliseconds toastStand = Toast::standTime);
    ~ClipsBrowserStore() override;

    /// Signing in makes a new client; the next load uses it.
    void setClient(std::shared_ptr<APIClient> client);
    [[nodiscard]] const std::shared_ptr<APIClient> &client() const { return m_client; }

    /// The whole pool, newest flight first.
    [[nodiscard]] const QList<PoolClip> &all() const { return m_all; }
    /// True until the first load has ended, and while one runs.
    [[nodiscard]] bool loading() const { return m_loading; }
    [[nodiscard]] bool loadFailed() const { return m_loadFailed; }
    [[nodiscard]] QString toast() const;

    /// Fills `all`; a failure keeps the older list and sets `loadFailed`.
    QCoro::Task<> reload();
    /// The telemetry of a flight, asked of the server once in this store's life: a second caller
    /// while the first fetch runs, and every caller after a failed one, gets an empty track.
    QCoro::Task<QList<TrackSample>> track(QString flightId);
    /// The suggestion becomes the pilot's clip.
    QCoro::Task<bool> keep(PoolClip clip);
    /// The clip goes, and the library won't suggest its span again.
    QCoro::Task<bool> toss(PoolClip clip);
    /// New bounds, sent in hundredths of a second; a suggestion is kept by this too.
    QCoro::Task<bool> retrim(PoolClip clip, double start, double end);

public Q_SLOTS:
    void load();
    void showToast(const QString &text);

Q_SIGNALS:
    void loadingChanged();
    void toastChanged();
    /// `all` changed: a load ended with a list, or a change reached the server.
    void clipsChanged();

private:
    /// The entry of `all` with this identity; -1 when gone.
    [[nodiscard]] qsizetype indexOf(const QString &identity) const;

    std::shared_ptr<APIClient> m_client;
    QList<PoolClip> m_all;
    bool m_loading = true;
    bool m_loadFailed = false;
    Toast *m_toast;
    QHash<QString, QList<TrackSample>> m_tracks;
    QSet<QString> m_trackFetched;
};
