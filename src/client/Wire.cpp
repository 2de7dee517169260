#include "Wire.h"

#include <cmath>
#include <limits>

namespace Wire {

namespace {

// Bracket depth outside of strings, and no raw NUL anywhere. The parser itself would cope with any depth, but every
// later walk of the tree (writing it out, copying it) recurses once per level.
bool nestsWithin(const QByteArray &body, int limit)
{
    int depth = 0;
    bool inString = false;
    bool escaped = false;
    for (const char c : body) {
        if (inString) {
            if (escaped)
                escaped = false;
            else if (c == '\\')
                escaped = true;
            else if (c == '"')
                inString = false;
            continue;
        }
        switch (c) {
        case '\0':  // the parser would take it for the end of the text and ignore what follows
            return false;
        case '"':
            inString = true;
            break;
        case '[':
        case '{':
            if (++depth > limit)
                return false;
            break;
        case ']':
        case '}':
            --depth;
            break;
        default:
            break;
        }
    }
    return true;
}

template <typename Int>
bool readInteger(const Json &j, Int &out)
{
    if (j.is_number_integer() && !j.is_number_unsigned()) {
        const auto v = j.get<std::int64_t>();
        if (v < std::numeric_limits<Int>::min() || v > std::numeric_limits<Int>::max())
            return false;
        out = Int(v);
        return true;
    }
    if (j.is_number_unsigned()) {
        const auto v = j.get<std::uint64_t>();
        if (v > std::uint64_t(std::numeric_limits<Int>::max()))
            return false;
        out = Int(v);
        return true;
    }
    if (j.is_number_float()) {
        // A whole number written with a fraction ("3.0") still counts, a real fraction doesn't.
        const double v = j.get<double>();
        if (!std::isfinite(v) || std::trunc(v) != v || v < double(std::numeric_limits<Int>::min())
            || v >= -double(std::numeric_limits<Int>::min()))
            return false;
        out = Int(v);
        return true;
    }
    return false;
}

} // namespace

std::optional<Json> parse(const QByteArray &body)
{
    if (!nestsWithin(body, maxDepth))
        return std::nullopt;
    Json j = Json::parse(body.cbegin(), body.cend(), nullptr, false);
    if (j.is_discarded())
        return std::nullopt;
    return j;
}

QByteArray dump(const OrderedJson &j)
{
    try {
        return QByteArray::fromStdString(j.dump());
    } catch (const nlohmann::json::exception &) {
        return {};
    }
}

QString toQString(const std::string &s)
{
    return QString::fromUtf8(s.data(), qsizetype(s.size()));
}

std::string toStd(const QString &s)
{
    return s.toStdString();
}

bool read(const Json &j, QString &out)
{
    if (!j.is_string())
        return false;
    out = toQString(j.get_ref<const std::string &>());
    return true;
}

bool read(const Json &j, double &out)
{
    if (!j.is_number())
        return false;
    out = j.get<double>();
    return true;
}

bool read(const Json &j, int &out)
{
    return readInteger(j, out);
}

bool read(const Json &j, qint64 &out)
{
    return readInteger(j, out);
}

bool read(const Json &j, bool &out)
{
    if (!j.is_boolean())
        return false;
    out = j.get<bool>();
    return true;
}

} // namespace Wire
