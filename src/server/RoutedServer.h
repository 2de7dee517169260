#pragma once

#include <httplib.h>

/// @brief httplib's request parsing, routing and replies, for connections it did not accept.
///
/// `ConnectionFront` owns the sockets and hands over one connection at a time, once a whole
/// request head has arrived; `serveOne` answers that request. The post-routing handler is taken
/// by this class (it learns from it whether the reply ends the connection).
class RoutedServer : public httplib::Server
{
public:
    RoutedServer();

    /// Reads, routes and answers one request; true when the connection may carry another.
    bool serveOne(httplib::Stream &stream);
    /// While not serving, replies streamed by content providers stop early, as in httplib's stop().
    void setServing(bool serving);
};
