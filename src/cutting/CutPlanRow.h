#pragma once

#include <StoryRecords.h>

#include <QString>

#include <optional>

/// @brief One entry of a story's cut list, matched to its original and to the file it becomes.
struct CutPlanRow {
    /// @brief Where a row stands, with what the Status column says about it.
    struct Status {
        enum class Kind { cutting, failed, pending, missingSource, zeroDuration, existing, done };

        Kind kind = Kind::pending;
        double fraction = 0;  ///< `cutting` only: 0 to 1
        QString message;      ///< `failed` only: the tool's or the system's words

        static Status cutting(double fraction) { return {Kind::cutting, fraction, {}}; }
        static Status failed(QString message) { return {Kind::failed, 0, std::move(message)}; }
        static Status of(Kind kind) { return {kind, 0, {}}; }

        /// "Ready", "No original", "Zero-length", "Already cut", "Done", the failure's words, or
        /// the percentage while cutting.
        [[nodiscard]] QString words() const;
        /// The lower-camel name of the case, for the screens.
        [[nodiscard]] QString name() const;
        bool operator==(const Status &) const = default;
    };

    EDLItem item;
    std::optional<QString> sourceURL;  ///< the original's path; absent when not found
    QString outURL;                    ///< the clip's path
    Status status;

    /// The clip's planned length in seconds: `end` − `start`, 0 when either is absent or negative.
    [[nodiscard]] double length() const;
    /// The label cell: the label, two blanks and the length, "Cliffs  (4.5s)".
    [[nodiscard]] QString labelText() const;
    bool operator==(const CutPlanRow &) const = default;
};
