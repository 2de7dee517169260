#pragma once

#include "CancelToken.h"
#include "ClipRecords.h"
#include "FlightRecords.h"
#include "Me.h"
#include "RenderRecords.h"
#include "Result.h"
#include "StoryRecords.h"

#include <QByteArray>
#include <QDateTime>
#include <QHash>
#include <QNetworkAccessManager>
#include <QNetworkCookie>
#include <QNetworkRequest>
#include <QObject>
#include <QSet>
#include <QStringList>
#include <QUrl>

#include <QCoroTask>

#include <chrono>
#include <functional>
#include <memory>
#include <optional>

class QNetworkReply;

/// @brief The one HTTP client of the library server.
///
/// Immutable after construction: signing in makes a new client rather than changing this one,
/// so a screen holding the old client keeps talking to the old server with the old header.
/// Every request carries the Authorization header (when there is one), bypasses any cache and
/// asks for an unencoded body. Lives on the GUI thread; share it as `std::shared_ptr`.
/// A call in flight keeps the network layer alive by itself, so dropping the client while a
/// call runs is safe.
///
/// Calls return `Result`: transport failures keep the network layer's words, 401 is
/// `APIError::unauthorized`, other statuses outside 200..299 are `APIError::status`, and a body
/// that doesn't decode is `APIError::decoding`, unless a call says otherwise.
/// The calls live in files by family: APIClientMedia.cpp (media and web session),
/// APIClientFlights.cpp (flights, clips, moments, hidden, samples), APIClientClipEdits.cpp
/// (read-modify-write of clips.json), APIClientStories.cpp (stories, cut lists, music,
/// autoreel) and APIClientRenders.cpp (videos and shares).
class APIClient : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QString baseString READ baseString CONSTANT FINAL)
public:
    /// How long a request may go without any byte moving before it is given up.
    static constexpr std::chrono::seconds requestTimeout{60};

    /// `network` is for tests that watch the requests; by default the client makes its own.
    /// `timeout` replaces `requestTimeout`, for tests that prove a stalled server in milliseconds.
    APIClient(const QString &base, std::optional<QString> authHeader, QObject *parent = nullptr,
              std::shared_ptr<QNetworkAccessManager> network = {},
              std::chrono::milliseconds timeout = requestTimeout);

    [[nodiscard]] QString baseString() const { return m_base; }
    [[nodiscard]] const std::optional<QString> &authHeader() const { return m_authHeader; }
    [[nodiscard]] QNetworkAccessManager *network() const { return m_network.get(); }
    /// The inactivity timeout every request of this client carries unless it names a longer one.
    [[nodiscard]] std::chrono::milliseconds timeout() const { return m_timeout; }

    /// base + "/" + relative, ids inserted as they are.
    [[nodiscard]] QUrl url(const QString &relative) const;
    /// A request with this client's headers and cache policy. It is given up after `timeout`
    /// without any byte moving, zero meaning the client's own `timeout()`: no request waits for
    /// ever on a server that accepted it and then went silent.
    [[nodiscard]] QNetworkRequest request(const QUrl &url, std::chrono::milliseconds timeout = {}) const;

    // ---- Request shapes every call is made of ----

    /// GET of a JSON document.
    QCoro::Task<Result<QByteArray>> getJSON(QString relative, CancelToken *cancel = nullptr) const;
    /// POST or PATCH of a small JSON body with `Content-Type: application/json`.
    QCoro::Task<Result<QByteArray>> sendJSON(QByteArray verb, QString relative, QByteArray body,
                                             CancelToken *cancel = nullptr) const;
    /// POST or DELETE without a body.
    QCoro::Task<Result<QByteArray>> sendEmpty(QByteArray verb, QString relative,
                                              CancelToken *cancel = nullptr) const;

    // ---- Account, media and web session ----

    /// GET `api/me`.
    QCoro::Task<Result<Me>> fetchMe() const;
    /// Headers a media player must send itself (libmpv `http-header-fields`, ffmpeg `-headers`):
    /// "Authorization: <header>", or none without credentials.
    [[nodiscard]] QStringList mediaHeaders() const;
    /// The same headers as one ffmpeg `-headers` value (each line ended by CRLF), or empty.
    [[nodiscard]] QString ffmpegHeaders() const;
    /// The flight's video: "proxy_480.mp4" when the flight has one and `hq` is off, else "proxy.mp4".
    [[nodiscard]] QUrl proxyURL(const QString &flightId, bool has480, bool hq) const;
    /// "flights/<id>/thumb.jpg"
    [[nodiscard]] QUrl flightThumbURL(const QString &flightId) const;
    /// The relative path of a clip's thumbnail: "flights/<id>/clipthumb_<clip>_<round(start×10)>.jpg".
    [[nodiscard]] static QString clipThumbPath(const QString &flightId, const QString &clipId, double start);
    /// A pool clip's `thumb` when present, else its flight's thumbnail.
    [[nodiscard]] QUrl poolClipThumbURL(const PoolClip &clip) const;
    /// The bytes at `url` for an image view, fetched with this client's headers. The status isn't
    /// looked at: whatever came is for the image decoder to accept or refuse; empty on a
    /// transport failure.
    QCoro::Task<QByteArray> imageBytes(QUrl url) const;
    /// Trades a bearer token for the cookie of the server's web pages. Nothing for Basic
    /// credentials (no request is made), and nothing on any failure: the caller just has no cookie.
    QCoro::Task<std::optional<QNetworkCookie>> webSessionCookie() const;
    /// The cookie of a web session reply `body` for `base`, expiring `maxAge` seconds after `now`.
    [[nodiscard]] static std::optional<QNetworkCookie> webSessionCookieFor(const QString &base, const QByteArray &body,
                                                                           const QDateTime &now);
    /// GET of `relative` streamed to the temporary folder as `fileName`: an older file of that
    /// name is replaced only once the whole download has arrived. The local path on success.
    QCoro::Task<Result<QString>> downloadToTemporary(QString relative, QString fileName,
                                                     CancelToken *cancel = nullptr) const;

    // ---- Flights, clips, moments, hidden set, samples ----

    QCoro::Task<Result<QList<Flight>>> fetchManifest(CancelToken *cancel = nullptr) const;
    /// Kept clips per flight id; suggestions and entries without a flight aren't counted.
    QCoro::Task<Result<QHash<QString, int>>> fetchClipCounts(CancelToken *cancel = nullptr) const;
    QCoro::Task<Result<QList<PoolClip>>> fetchPoolClips(CancelToken *cancel = nullptr) const;
    /// 404, an undecodable body or no "moments" give an empty list.
    QCoro::Task<Result<QList<Moment>>> fetchMoments(QString flightId, CancelToken *cancel = nullptr) const;
    /// 404, an undecodable body or no "clips" give an empty list.
    QCoro::Task<Result<QList<Clip>>> fetchClips(QString flightId, CancelToken *cancel = nullptr) const;
    /// The path of "flight.json"; an undecodable body gives an empty track, 404 fails.
    QCoro::Task<Result<QList<TrackSample>>> fetchTrack(QString flightId, CancelToken *cancel = nullptr) const;
    QCoro::Task<Result<void>> saveClips(QString flightId, QList<Clip> clips) const;
    QCoro::Task<Result<QSet<QString>>> fetchHidden(CancelToken *cancel = nullptr) const;
    QCoro::Task<Result<void>> setHidden(QString flightId, bool hidden) const;
    QCoro::Task<Result<void>> deleteFlight(QString flightId) const;
    QCoro::Task<Result<SamplesStatus>> fetchSamples(CancelToken *cancel = nullptr) const;
    QCoro::Task<Result<void>> removeSamples() const;
    QCoro::Task<Result<void>> restoreSamples() const;

    // Clip edits from the clips browser: read "clips.json", change it, write it back whole.
    // They never fail loudly: false on any failure, and the screen says so.

    /// The suggestion becomes a kept clip.
    QCoro::Task<bool> keepClip(PoolClip clip) const;
    /// The clip goes, and its span is remembered so it isn't suggested again.
    QCoro::Task<bool> tossClip(PoolClip clip) const;
    /// New in and out (the caller rounds to hundredths); a suggestion is kept by this too.
    QCoro::Task<bool> retrimClip(PoolClip clip, double start, double end) const;

    // ---- Stories, cut lists, music, autoreel ----

    QCoro::Task<Result<QList<ProjectSummary>>> fetchProjects(CancelToken *cancel = nullptr) const;
    QCoro::Task<Result<Project>> fetchProject(QString id, CancelToken *cancel = nullptr) const;
    QCoro::Task<Result<Project>> createProject(QString title) const;
    QCoro::Task<Result<Project>> createProject(QString title, QList<ReelItem> items) const;
    /// Sends title, notes ("" when absent) and items.
    QCoro::Task<Result<void>> saveProject(Project project) const;
    QCoro::Task<Result<void>> deleteProject(QString id) const;
    /// The cut list, plus the reply as pretty text with sorted keys.
    QCoro::Task<Result<EDLDocument>> fetchEDL(QString id, CancelToken *cancel = nullptr) const;
    QCoro::Task<Result<QStringList>> fetchMusic(CancelToken *cancel = nullptr) const;
    /// A story drafted by the server; `flightIds` and `place` are sent only when given.
    QCoro::Task<Result<Project>> makeAutoreel(double target, std::optional<QStringList> flightIds,
                                              std::optional<QString> place, bool clipsOnly) const;

    // ---- Story videos and shares ----

    QCoro::Task<Result<RenderStatus>> fetchRenderStatus(QString id, CancelToken *cancel = nullptr) const;
    /// A video already in the making answers `APIError::status(409)`.
    QCoro::Task<Result<void>> startRender(QString id, RenderRequest settings) const;
    QCoro::Task<Result<QList<RenderEntry>>> fetchRenders(QString id, CancelToken *cancel = nullptr) const;
    QCoro::Task<Result<QList<RenderEntry>>> fetchAllRenders(CancelToken *cancel = nullptr) const;
    QCoro::Task<Result<void>> deleteRender(QString projectId, QString renderId) const;
    QCoro::Task<Result<QList<ReelShare>>> fetchShares(CancelToken *cancel = nullptr) const;
    QCoro::Task<Result<ReelShare>> createShare(QString projectId, QString renderId) const;
    QCoro::Task<Result<QList<ShareCopySuggestion>>> suggestShareCopy(QString projectId) const;
    /// The only PATCH: empty strings are sent as they are.
    QCoro::Task<Result<ReelShare>> updateShare(QString token, QString title,
                                               QString description) const;
    QCoro::Task<Result<void>> deleteShare(QString token) const;

    // ---- Judging ----

    /// Judges a finished reply by the shared rules; the body on success.
    [[nodiscard]] static Result<QByteArray> judge(QNetworkReply &reply);
    /// The status part of `judge` alone.
    [[nodiscard]] static Result<void> judgeStatus(QNetworkReply &reply);
    /// Awaits a reply started on `network()` (uploads, range reads), aborting it when `cancel`
    /// fires, judges it and deletes it. The caller keeps the client alive meanwhile.
    static QCoro::Task<Result<QByteArray>> finish(QNetworkReply *reply, CancelToken *cancel);
    /// Awaits a started reply, aborting it when `cancel` fires (also when it already has);
    /// the caller judges and deletes it. A reply stopped this way keeps the network layer's
    /// "cancelled"; one that ran out of time reads as timed out (`APIError::transport`).
    static QCoro::Task<> awaitReply(QNetworkReply *reply, CancelToken *cancel);

private:
    /// Replies are deleted from the event loop: the coroutine that owns one resumes inside the
    /// reply's own finished() emission.
    struct DeleteLater {
        void operator()(QObject *object) const { object->deleteLater(); }
    };
    using ReplyPtr = std::unique_ptr<QNetworkReply, DeleteLater>;

    /// A POST/PATCH request with a JSON body and `Content-Type: application/json`.
    [[nodiscard]] QNetworkRequest jsonRequest(const QString &relative) const;
    /// Sends and awaits one request; `network` rides along so the reply outlives this client.
    static QCoro::Task<Result<QByteArray>> perform(std::shared_ptr<QNetworkAccessManager> network,
                                                   QNetworkRequest request, QByteArray verb, QByteArray body,
                                                   CancelToken *cancel);
    /// The read-modify-write of a flight's clips.json shared by keep, toss and retrim.
    QCoro::Task<bool> editClips(PoolClip clip, std::function<void(Wire::Json &)> change) const;

    QString m_base;
    std::optional<QString> m_authHeader;
    std::shared_ptr<QNetworkAccessManager> m_network;
    std::chrono::milliseconds m_timeout;
};

/// Unwraps a status-only reply.
[[nodiscard]] inline Result<void> statusOnly(const Result<QByteArray> &reply)
{
    if (!reply)
        return reply.failure();
    return {};
}
