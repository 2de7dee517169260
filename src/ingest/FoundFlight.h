#pragma once

#include <QDateTime>
#include <QString>

#include <optional>

/// @brief One flight found on a card or among dropped files: the clip to process, its id and
/// recording date, and its sidecar when it has one. Two found flights are the same flight
/// when their ids are equal.
struct FoundFlight {
    QString url;
    QString id;
    std::optional<QDateTime> date;
    std::optional<QString> srt;

    bool operator==(const FoundFlight &other) const { return id == other.id; }
};
