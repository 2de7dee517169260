#pragma once

#include <QString>

/// @brief Where the story stitch of a cut run stands.
struct StitchState {
    enum class Kind { idle, running, done, failed };

    Kind kind = Kind::idle;
    double fraction = 0;  ///< `running`: 0 to 1
    QString url;          ///< `done`: the story video
    QString message;      ///< `failed`: the words to show

    static StitchState running(double fraction) { return {Kind::running, fraction, {}, {}}; }
    static StitchState done(QString url) { return {Kind::done, 1, std::move(url), {}}; }
    static StitchState failed(QString message) { return {Kind::failed, 0, {}, std::move(message)}; }

    [[nodiscard]] QString name() const;
    /// "Making the story video… 42%" while running, the failure's words, else nothing.
    [[nodiscard]] QString words() const;
    bool operator==(const StitchState &) const = default;
};
