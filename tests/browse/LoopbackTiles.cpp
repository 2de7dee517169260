#include "LoopbackTiles.h"

#include <httplib.h>

#include <QBuffer>
#include <QImage>
#include <QPainter>
#include <QRegularExpression>

#include <atomic>
#include <cmath>
#include <thread>

namespace {
// A made-up world: land where a few sines agree, so neighbouring tiles join up at every zoom.
bool land(double worldX, double worldY)
{
    return std::sin(worldX * 41.0) + std::cos(worldY * 37.0) + std::sin((worldX - worldY) * 97.0) * 0.6 > 0.2;
}

QByteArray drawTile(bool dark, int z, int x, int y)
{
    QImage image(512, 512, QImage::Format_RGB32);
    const QColor sea = dark ? QColor("#1A2230") : QColor("#D4E4EE");
    const QColor ground = dark ? QColor("#2A3140") : QColor("#F2F0EA");
    const QColor ink = dark ? QColor("#5B6780") : QColor("#9AA6B2");
    image.fill(sea);
    const double tiles = std::exp2(z);
    for (int py = 0; py < 512; py += 4) {
        for (int px = 0; px < 512; px += 4) {
            const double wx = (x + px / 512.0) / tiles;
            const double wy = (y + py / 512.0) / tiles;
            if (land(wx, wy))
                for (int dy = 0; dy < 4; ++dy)
                    for (int dx = 0; dx < 4; ++dx)
                        image.setPixelColor(px + dx, py + dy, ground);
        }
    }
    QPainter painter(&image);
    painter.setPen(QPen(ink, 1));
    painter.drawRect(0, 0, 511, 511);
    painter.drawText(QRect(8, 8, 200, 20), Qt::AlignLeft, QStringLiteral("%1/%2/%3").arg(z).arg(x).arg(y));
    painter.end();
    QByteArray png;
    QBuffer buffer(&png);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "PNG");
    return png;
}
} // namespace

struct LoopbackTiles::Impl {
    httplib::Server server;
    std::thread thread;
    int port = 0;
    std::atomic<int> served{0};
};

LoopbackTiles::LoopbackTiles() : d(std::make_unique<Impl>())
{
    d->server.Get(R"(/(dark_all|light_all)/(\d+)/(\d+)/(\d+)@2x\.png)", [this](const httplib::Request &req, httplib::Response &res) {
        const QByteArray png = drawTile(req.matches[1] == "dark_all", std::stoi(req.matches[2]), std::stoi(req.matches[3]),
                                        std::stoi(req.matches[4]));
        ++d->served;
        res.set_header("Cache-Control", "max-age=3600");
        // As the public host does: a web page may draw the tiles into WebGL only with this.
        res.set_header("Access-Control-Allow-Origin", "*");
        res.set_content(png.toStdString(), "image/png");
    });
    d->port = d->server.bind_to_any_port("127.0.0.1");
    d->thread = std::thread([this] { d->server.listen_after_bind(); });
    while (!d->server.is_running())
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
}

LoopbackTiles::~LoopbackTiles()
{
    d->server.stop();
    if (d->thread.joinable())
        d->thread.join();
}

QString LoopbackTiles::base() const
{
    return QStringLiteral("http://127.0.0.1:%1").arg(d->port);
}

int LoopbackTiles::served() const
{
    return d->served;
}
