#pragma once

#include "APIClient.h"
#include "TestServer.h"

#include <QCoreApplication>

#include <memory>

/// @brief The program's own client of a test server, which closes its connections when it goes.
/// A connection it kept alive would hold up the server's stop for httplib's five-second
/// keep-alive; declare it after the server, so it goes first.
class LoopbackClient
{
public:
    explicit LoopbackClient(const TestServer &server)
        : m_api(std::make_unique<APIClient>(QString::fromStdString(server.base()), std::nullopt))
    {
    }
    ~LoopbackClient()
    {
        m_api.reset();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QCoreApplication::processEvents();
    }
    LoopbackClient(const LoopbackClient &) = delete;
    LoopbackClient &operator=(const LoopbackClient &) = delete;

    APIClient *operator->() const { return m_api.get(); }

private:
    std::unique_ptr<APIClient> m_api;
};
