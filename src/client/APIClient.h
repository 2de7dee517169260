#pragma once

#include "CancelToken.h"
#include "Me.h"
#include "Result.h"

#include <QByteArray>
#include <QNetworkAccessManager>
#include <QNetworkRequest>
#include <QObject>
#include <QUrl>

#include <QCoroTask>

#include <chrono>
#include <memory>
#include <optional>

class QNetworkReply;

/// @brief The one HTTP client of the library server.
///
/// Immutable after construction: signing in makes a new client rather than changing this one,
/// so a screen holding the old client keeps talking to the old server with the old header.
/// Every request carries the Authorization header (when there is one), bypasses any cache and
/// asks for an unencoded body. Lives on the GUI thread; share it as `std::shared_ptr`.
class APIClient : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QString baseString READ baseString CONSTANT FINAL)
public:
    /// Calls that set a timeout use this one.
    static constexpr std::chrono::seconds requestTimeout{60};

    APIClient(const QString &base, std::optional<QString> authHeader, QObject *parent = nullptr);

    [[nodiscard]] QString baseString() const { return m_base; }
    [[nodiscard]] const std::optional<QString> &authHeader() const { return m_authHeader; }
    [[nodiscard]] QNetworkAccessManager *network() const { return m_network.get(); }

    /// base + "/" + relative, ids inserted as they are.
    [[nodiscard]] QUrl url(const QString &relative) const;
    /// A request with this client's headers and cache policy; `timeout` zero means none set.
    [[nodiscard]] QNetworkRequest request(const QUrl &url, std::chrono::milliseconds timeout = {}) const;

    // The request shapes every call is made of. Each judges the reply: transport failures pass
    // through with their own words, 401 is `APIError::unauthorized`, other statuses outside
    // 200..299 are `APIError::status`. The body of a good reply is returned as it came.

    /// GET of a JSON document (no timeout set beyond the network layer's own).
    QCoro::Task<Result<QByteArray>> getJSON(QString relative, CancelToken *cancel = nullptr) const;
    /// POST or PATCH of a small JSON body with `Content-Type: application/json`, 60 s timeout.
    QCoro::Task<Result<QByteArray>> sendJSON(QByteArray verb, QString relative, QByteArray body,
                                             CancelToken *cancel = nullptr) const;
    /// POST or DELETE without a body, 60 s timeout.
    QCoro::Task<Result<QByteArray>> sendEmpty(QByteArray verb, QString relative, CancelToken *cancel = nullptr) const;

    /// GET `api/me`.
    QCoro::Task<Result<Me>> fetchMe() const;

    /// Judges a finished reply by the shared rules; the body on success.
    [[nodiscard]] static Result<QByteArray> judge(QNetworkReply &reply);
    /// Awaits a started reply, aborting it when `cancel` fires; deletes it afterwards.
    static QCoro::Task<Result<QByteArray>> finish(QNetworkReply *reply, CancelToken *cancel);

private:
    QString m_base;
    std::optional<QString> m_authHeader;
    std::unique_ptr<QNetworkAccessManager> m_network;
};
