#include "GalleryQuery.h"

#include "RecordFormats.h"

FlightFacts FlightFacts::of(const Flight &flight)
{
    FlightFacts facts;
    if (const auto when = flight.parsedDate()) {
        facts.when = when->toMSecsSinceEpoch();
        facts.dateLabel = RecordFormats::mediumDateShortTime(*when);
        facts.dayKey = RecordFormats::dayKey(*when);
        facts.monthKey = RecordFormats::monthKey(*when);
    } else {
        facts.dateLabel = QStringLiteral("Unknown date");
    }
    facts.model = flight.model ? GalleryQuery::trimmed(*flight.model) : QString();
    // The search reads the model as it came, untrimmed, beside the date label, place and id.
    facts.haystack = (facts.dateLabel + QLatin1Char(' ') + flight.model.value_or(QString()) + QLatin1Char(' ')
                      + flight.place.value_or(QString()) + QLatin1Char(' ') + flight.id)
                         .toLower();
    return facts;
}

void GalleryLibrary::setFlights(QList<Flight> list)
{
    flights = std::move(list);
    facts.clear();
    facts.reserve(flights.size());
    for (const Flight &flight : std::as_const(flights))
        facts.append(FlightFacts::of(flight));
}

bool GalleryLibrary::removeFlight(const QString &id)
{
    const int index = indexOf(id);
    if (index >= 0) {
        flights.removeAt(index);
        facts.removeAt(index);
    }
    clipCounts.remove(id);
    hiddenIDs.remove(id);
    todCache.remove(id);
    return index >= 0;
}

int GalleryLibrary::indexOf(const QString &id) const
{
    for (int i = 0; i < flights.size(); ++i)
        if (flights[i].id == id)
            return i;
    return -1;
}
