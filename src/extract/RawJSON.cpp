#include "RawJSON.h"

RawJSON RawJSON::text(const QString &value)
{
    return RawJSON(nlohmann::ordered_json(value.toStdString()));
}

RawJSON RawJSON::number(double value)
{
    return RawJSON(nlohmann::ordered_json(value));
}

std::optional<RawJSON> RawJSON::fromJSON(const nlohmann::ordered_json &value)
{
    // A text is tried before a number, so a quoted "0.01" stays a text.
    if (value.is_string() || value.is_number())
        return RawJSON(value);
    return std::nullopt;
}

QString RawJSON::toText() const
{
    return isText() ? QString::fromStdString(m_value.get<std::string>()) : QString();
}

std::optional<double> RawJSON::toNumber() const
{
    if (!isNumber())
        return std::nullopt;
    return m_value.get<double>();
}
