#pragma once

#include <QString>

#include <nlohmann/json.hpp>

#include <optional>

/// @brief A value that is either a text or a number, kept exactly as the source gave it
/// (the shutter speed arrives as "1/100" from one source and as 0.01 from another).
class RawJSON
{
public:
    [[nodiscard]] static RawJSON text(const QString &value);
    [[nodiscard]] static RawJSON number(double value);
    /// A JSON string or number; anything else is no RawJSON.
    [[nodiscard]] static std::optional<RawJSON> fromJSON(const nlohmann::ordered_json &value);

    [[nodiscard]] bool isText() const { return m_value.is_string(); }
    [[nodiscard]] bool isNumber() const { return m_value.is_number(); }
    /// The text, or empty for a number.
    [[nodiscard]] QString toText() const;
    /// The number, or nothing for a text.
    [[nodiscard]] std::optional<double> toNumber() const;
    [[nodiscard]] const nlohmann::ordered_json &json() const { return m_value; }

    bool operator==(const RawJSON &other) const { return m_value == other.m_value; }

private:
    explicit RawJSON(nlohmann::ordered_json value) : m_value(std::move(value)) {}
    nlohmann::ordered_json m_value;
};
