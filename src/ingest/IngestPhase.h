#pragma once

#include <QString>

#include <optional>

/// @brief Where one flight of the import queue stands, with the words the row shows.
struct IngestPhase {
    enum class Kind { Waiting, Processing, Ready, Uploading, Committing, Done, Failed, Skipped };

    Kind kind = Kind::Waiting;
    QString detail;                 ///< processing step, uploading file, done analysis, failure text
    std::optional<double> progress; ///< processing and uploading only

    static IngestPhase waiting() { return {Kind::Waiting, {}, {}}; }
    static IngestPhase processing(QString step, std::optional<double> p = {}) { return {Kind::Processing, std::move(step), p}; }
    static IngestPhase ready() { return {Kind::Ready, {}, {}}; }
    static IngestPhase uploading(QString file, double p) { return {Kind::Uploading, std::move(file), p}; }
    static IngestPhase committing() { return {Kind::Committing, {}, {}}; }
    static IngestPhase done(QString analysis) { return {Kind::Done, std::move(analysis), {}}; }
    static IngestPhase failed(QString text) { return {Kind::Failed, std::move(text), {}}; }
    static IngestPhase skipped() { return {Kind::Skipped, {}, {}}; }

    /// Done, failed and skipped are the end of the road; every other phase is active.
    [[nodiscard]] bool isTerminal() const { return kind == Kind::Done || kind == Kind::Failed || kind == Kind::Skipped; }
    [[nodiscard]] bool isActive() const { return !isTerminal(); }
    [[nodiscard]] QString text() const;

    bool operator==(const IngestPhase &) const = default;
};
