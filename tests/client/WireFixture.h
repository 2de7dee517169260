#pragma once

#include "APIClient.h"
#include "CoroTest.h"
#include "RecordingServer.h"

#include <QCoreApplication>
#include <QNetworkAccessManager>
#include <QNetworkRequest>

#include <gtest/gtest.h>

#include <memory>

/// Every request of the client is given up after a minute without progress.
constexpr int timeout60 = 60000;

/// @brief Remembers what each request asked of the network layer (its transfer timeout and
/// verb), which the server on the other side can't see.
class WatchingNetwork : public QNetworkAccessManager
{
public:
    struct Seen {
        QByteArray verb;
        QString path;
        int transferTimeout = 0;
    };
    QList<Seen> seen;

    [[nodiscard]] Seen last() const { return seen.isEmpty() ? Seen{} : seen.last(); }

protected:
    QNetworkReply *createRequest(Operation op, const QNetworkRequest &request, QIODevice *outgoingData) override
    {
        QByteArray verb;
        switch (op) {
        case GetOperation: verb = "GET"; break;
        case PostOperation: verb = "POST"; break;
        case PutOperation: verb = "PUT"; break;
        case DeleteOperation: verb = "DELETE"; break;
        case HeadOperation: verb = "HEAD"; break;
        default: verb = request.attribute(QNetworkRequest::CustomVerbAttribute).toByteArray(); break;
        }
        seen.append({verb, request.url().path(), request.transferTimeout()});
        return QNetworkAccessManager::createRequest(op, request, outgoingData);
    }
};

/// @brief A client talking to a recording server on loopback, with its requests watched.
class WireTest : public ::testing::Test
{
protected:
    RecordingServer server;
    std::shared_ptr<WatchingNetwork> network = std::make_shared<WatchingNetwork>();
    APIClient client{server.base(), QStringLiteral("Bearer t0k"), nullptr, network};

    WireTest()
    {
        // The server only honours stop() once its accept loop runs; a first answered request
        // proves it does, so a test that sends nothing can't hang the teardown.
        (void)run(client.getJSON(QStringLiteral("warm-up")));
        server.clear();
        network->seen.clear();
    }

    ~WireTest() override
    {
        // Close kept-alive connections now, so the server's workers don't wait them out.
        network->clearConnectionCache();
        QCoreApplication::processEvents();
    }

    /// One request, checked for verb, target and the timeout it set.
    void expectRequest(const QByteArray &verb, const QByteArray &target, int timeoutMs)
    {
        const auto r = server.last();
        EXPECT_EQ(r.method, verb);
        EXPECT_EQ(r.target, target);
        EXPECT_EQ(r.header("Authorization"), "Bearer t0k");
        EXPECT_EQ(network->last().transferTimeout, timeoutMs) << verb.constData() << " " << target.constData();
    }

    /// A JSON body with its content type.
    void expectJsonBody(const QByteArray &body)
    {
        const auto r = server.last();
        EXPECT_EQ(r.header("Content-Type"), "application/json");
        EXPECT_EQ(r.body, body);
    }
};
