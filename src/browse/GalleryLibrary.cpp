#include "GalleryQuery.h"

#include "GalleryDates.h"

FlightFacts FlightFacts::of(const Flight &flight)
{
    FlightFacts facts;
    if (const auto when = flight.date ? GalleryDates::parse(*flight.date) : std::nullopt) {
        facts.when = when->seconds();
        facts.dateLabel = GalleryDates::mediumLabel(*when);
        facts.dayKey = GalleryDates::dayKey(when->date);
        facts.monthKey = GalleryDates::monthKey(when->date);
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
    models = GalleryQuery::models(flights);
}

bool GalleryLibrary::removeFlight(const QString &id)
{
    const int index = indexOf(id);
    if (index >= 0) {
        flights.removeAt(index);
        facts.removeAt(index);
        models = GalleryQuery::models(flights);
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
