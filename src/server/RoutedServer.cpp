#include "RoutedServer.h"

namespace {
/// What one request's handlers and reply decided about its connection.
struct Exchange {
    bool parsed = false;
    bool keepAlive = true;
};
/// The exchange the calling thread is serving; a worker serves one request at a time.
thread_local Exchange *current = nullptr;
} // namespace

RoutedServer::RoutedServer()
{
    set_post_routing_handler([](const httplib::Request &, httplib::Response &res) {
        // "close" comes from the request, or from a route that left a body unread.
        if (current)
            current->keepAlive = res.get_header_value("Connection") != "close";
    });
}

bool RoutedServer::serveOne(httplib::Stream &stream)
{
    Exchange exchange;
    current = &exchange;
    bool clientCloses = false;
    const bool written = process_request(stream, false, clientCloses,
                                         [&exchange](httplib::Request &) { exchange.parsed = true; });
    current = nullptr;
    // A request that could not even be parsed leaves the connection in an unknown state.
    return written && exchange.parsed && exchange.keepAlive && !clientCloses;
}

void RoutedServer::setServing(bool serving)
{
    // httplib's content providers ask this to learn whether the server is shutting down.
    svr_sock_ = serving ? 0 : INVALID_SOCKET;
}
