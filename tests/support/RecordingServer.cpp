#include "RecordingServer.h"

#include <httplib.h>

#include <thread>

struct RecordingServer::Impl {
    httplib::Server server;
    std::thread thread;
    int port = 0;
    mutable std::mutex mutex;
    QList<Request> requests;
    Handler handler = [](const Request &) { return Reply{}; };
};

RecordingServer::RecordingServer() : d(std::make_unique<Impl>())
{
    auto serve = [this](const httplib::Request &req, httplib::Response &res) {
        Request r;
        r.method = QByteArray::fromStdString(req.method);
        r.target = QByteArray::fromStdString(req.target);
        for (const auto &[name, value] : req.headers)
            r.headers.insert(QByteArray::fromStdString(name).toLower(), QByteArray::fromStdString(value));
        r.body = QByteArray::fromStdString(req.body);
        Handler handler;
        {
            std::lock_guard lock(d->mutex);
            d->requests.append(r);
            handler = d->handler;
        }
        const Reply reply = handler(r);
        res.status = reply.status;
        for (auto it = reply.headers.begin(); it != reply.headers.end(); ++it)
            res.set_header(it.key().toStdString(), it.value().toStdString());
        if (reply.drop) {
            // Promise a body, then give up: the client sees the connection close mid-reply.
            res.set_content_provider(1024, reply.contentType.toStdString(),
                                     [](size_t, size_t, httplib::DataSink &) { return false; });
            return;
        }
        res.set_content(reply.body.toStdString(), reply.contentType.toStdString());
    };
    for (const char *pattern : {".*"}) {
        d->server.Get(pattern, serve);
        d->server.Post(pattern, serve);
        d->server.Put(pattern, serve);
        d->server.Patch(pattern, serve);
        d->server.Delete(pattern, serve);
    }
    d->port = d->server.bind_to_any_port("127.0.0.1");
    d->thread = std::thread([this] { d->server.listen_after_bind(); });
    // Stopping a server that has not entered its loop yet would leave it waiting forever.
    while (!d->server.is_running())
        std::this_thread::yield();
}

RecordingServer::~RecordingServer()
{
    d->server.stop();
    if (d->thread.joinable())
        d->thread.join();
}

QString RecordingServer::base() const
{
    return QStringLiteral("http://127.0.0.1:%1").arg(d->port);
}

void RecordingServer::setHandler(Handler handler)
{
    std::lock_guard lock(d->mutex);
    d->handler = std::move(handler);
}

void RecordingServer::replyWith(int status, QByteArray body, QByteArray contentType)
{
    setHandler([=](const Request &) {
        Reply r;
        r.status = status;
        r.body = body;
        r.contentType = contentType;
        return r;
    });
}

QList<RecordingServer::Request> RecordingServer::requests() const
{
    std::lock_guard lock(d->mutex);
    return d->requests;
}

RecordingServer::Request RecordingServer::last() const
{
    std::lock_guard lock(d->mutex);
    return d->requests.isEmpty() ? Request{} : d->requests.last();
}

int RecordingServer::count() const
{
    std::lock_guard lock(d->mutex);
    return int(d->requests.size());
}

void RecordingServer::clear()
{
    std::lock_guard lock(d->mutex);
    d->requests.clear();
}
