// The gallery's hot path: a large manifest decoded into records, and every flight's date text.
// Baselines in the same run: parsing the same bytes into a bare JSON tree, and date texts made
// with formatters built per row instead of the shared ones.
#include "FlightRecords.h"
#include "RecordFormats.h"

#include <QCoreApplication>
#include <QLocale>
#include <QRegularExpression>

#include <chrono>
#include <cstdio>

namespace {
using Clock = std::chrono::steady_clock;

template <typename Work>
double millisecondsPer(int rounds, Work work)
{
    const auto start = Clock::now();
    for (int i = 0; i < rounds; ++i)
        work();
    return std::chrono::duration<double, std::milli>(Clock::now() - start).count() / rounds;
}

QByteArray manifest(int flights)
{
    QByteArray body = R"({"flights":[)";
    for (int i = 0; i < flights; ++i) {
        if (i)
            body += ',';
        body += QStringLiteral(R"({"id":"DJI_%1","date":"2026-%2-%3T%4:15:00","model":"Mini 4 Pro","duration":%5,)"
                               R"("pathLength":2301.5,"maxSpeed":14.2,"relAlt":{"min":-2.1,"max":118.9},)"
                               R"("centroid":{"lat":46.02,"lon":7.75},"place":"Zermatt","video":{"w":1920,"h":1080},)"
                               R"("samples":6124,"p480":true})")
                    .arg(i)
                    .arg(1 + i % 12, 2, 10, QLatin1Char('0'))
                    .arg(1 + i % 28, 2, 10, QLatin1Char('0'))
                    .arg(i % 24, 2, 10, QLatin1Char('0'))
                    .arg(60 + i % 900)
                    .toUtf8();
    }
    return body + "]}";
}

// What a row would cost if it built its own formatters.
QString dateTextBuiltPerRow(const Flight &f)
{
    const auto when = QDateTime::fromString(*f.date, QStringLiteral("yyyy-MM-dd'T'HH:mm:ss"));
    const QLocale locale;
    QString date = locale.dateFormat(QLocale::LongFormat);
    date.remove(QRegularExpression(QStringLiteral(R"(dddd[,.]?\s*)")));
    date.replace(QStringLiteral("MMMM"), QStringLiteral("MMM"));
    return locale.toString(when, date.trimmed() + QStringLiteral(", ") + locale.timeFormat(QLocale::ShortFormat));
}
} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    const int flights = argc > 1 ? std::atoi(argv[1]) : 10000;
    const QByteArray body = manifest(flights);
    const int rounds = 5;

    std::size_t sink = 0;
    const double bare = millisecondsPer(rounds, [&] { sink += Wire::parse(body)->size(); });
    std::optional<Manifest> decoded;
    const double records = millisecondsPer(rounds, [&] { decoded = Wire::decode<Manifest>(body); });
    if (!decoded) {
        std::fprintf(stderr, "the manifest didn't decode\n");
        return 1;
    }
    const double shared = millisecondsPer(rounds, [&] {
        for (const Flight &f : decoded->flights)
            sink += f.dateText().size();
    });
    const double perRow = millisecondsPer(rounds, [&] {
        for (const Flight &f : decoded->flights)
            sink += dateTextBuiltPerRow(f).size();
    });

    std::printf("manifest of %d flights, %.1f MB\n", flights, body.size() / 1e6);
    std::printf("decode into records: %.1f ms, %.2fx a bare JSON parse (%.1f ms)\n", records, records / bare, bare);
    std::printf("date texts, shared formatters: %.1f ms, %.2fx of formatters built per row (%.1f ms)\n", shared,
                shared / perRow, perRow);
    return sink == 0;
}
