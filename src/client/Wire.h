#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

#include <nlohmann/json.hpp>

#include <concepts>
#include <optional>

/// @brief Reading and writing the library server's JSON.
///
/// Replies are parsed into `Json` (sorted keys: an object with very many keys stays cheap to
/// build) and records are written as `OrderedJson`, so bodies keep the key order the server
/// expects. Decoding never throws: a value of the wrong shape makes the whole record absent.
namespace Wire {
using Json = nlohmann::json;
using OrderedJson = nlohmann::ordered_json;

/// Deeper nesting than this is refused before parsing: writing such a tree out again would
/// recurse once per level, and no reply of the server comes near it.
constexpr int maxDepth = 256;

/// The body as JSON; nullopt when it isn't JSON, nests too deep or holds invalid UTF-8.
[[nodiscard]] std::optional<Json> parse(const QByteArray &body);
/// Compact text; empty when the tree can't be written.
[[nodiscard]] QByteArray dump(const OrderedJson &j);

[[nodiscard]] QString toQString(const std::string &s);
[[nodiscard]] std::string toStd(const QString &s);

// Reading one value: false when `j` has the wrong type (integers must be whole and in range).
[[nodiscard]] bool read(const Json &j, QString &out);
[[nodiscard]] bool read(const Json &j, double &out);
[[nodiscard]] bool read(const Json &j, int &out);
[[nodiscard]] bool read(const Json &j, qint64 &out);
[[nodiscard]] bool read(const Json &j, bool &out);

template <typename T>
concept Record = requires(const Json &j, const T &t) {
    { T::fromJson(j) } -> std::same_as<std::optional<T>>;
    { t.toJson() } -> std::same_as<OrderedJson>;
};

template <Record T>
[[nodiscard]] bool read(const Json &j, T &out)
{
    auto value = T::fromJson(j);
    if (!value)
        return false;
    out = std::move(*value);
    return true;
}

template <typename T>
[[nodiscard]] bool read(const Json &j, QList<T> &out)
{
    if (!j.is_array())
        return false;
    QList<T> list;
    list.reserve(qsizetype(j.size()));
    for (const auto &element : j) {
        T value;
        if (!read(element, value))
            return false;
        list.append(std::move(value));
    }
    out = std::move(list);
    return true;
}

/// Reads the keys of one object. Required keys must be present with the right type; optional
/// keys may be absent or null. Any miss makes `ok()` false for good.
class ObjectReader
{
public:
    explicit ObjectReader(const Json &j) : m_json(j), m_ok(j.is_object()) {}

    template <typename T>
    ObjectReader &req(const char *key, T &out)
    {
        if (!m_ok)
            return *this;
        const auto it = m_json.find(key);
        m_ok = it != m_json.end() && read(*it, out);
        return *this;
    }

    template <typename T>
    ObjectReader &opt(const char *key, std::optional<T> &out)
    {
        if (!m_ok)
            return *this;
        const auto it = m_json.find(key);
        if (it == m_json.end() || it->is_null()) {
            out.reset();
            return *this;
        }
        T value;
        m_ok = read(*it, value);
        if (m_ok)
            out = std::move(value);
        return *this;
    }

    [[nodiscard]] bool ok() const { return m_ok; }

private:
    const Json &m_json;
    bool m_ok;
};

// Writing: absent optionals are left out, never written as null.
[[nodiscard]] inline OrderedJson encode(const QString &v) { return toStd(v); }
[[nodiscard]] inline OrderedJson encode(double v) { return v; }
[[nodiscard]] inline OrderedJson encode(int v) { return v; }
[[nodiscard]] inline OrderedJson encode(qint64 v) { return v; }
[[nodiscard]] inline OrderedJson encode(bool v) { return v; }
template <Record T>
[[nodiscard]] OrderedJson encode(const T &v)
{
    return v.toJson();
}
template <typename T>
[[nodiscard]] OrderedJson encode(const QList<T> &list)
{
    OrderedJson array = OrderedJson::array();
    for (const auto &v : list)
        array.push_back(encode(v));
    return array;
}

template <typename T>
void put(OrderedJson &object, const char *key, const T &value)
{
    object[key] = encode(value);
}
template <typename T>
void put(OrderedJson &object, const char *key, const std::optional<T> &value)
{
    if (value)
        object[key] = encode(*value);
}

/// Writes the keys of one object in the order they are visited.
class ObjectWriter
{
public:
    template <typename T>
    ObjectWriter &req(const char *key, const T &value)
    {
        put(m_object, key, value);
        return *this;
    }
    template <typename T>
    ObjectWriter &opt(const char *key, const std::optional<T> &value)
    {
        put(m_object, key, value);
        return *this;
    }
    [[nodiscard]] OrderedJson take() { return std::move(m_object); }

private:
    OrderedJson m_object = OrderedJson::object();
};

// A record lists its keys once, in `static void fields(Self &, Visitor &)`, calling
// `req`/`opt` per key; the same list reads it (ObjectReader) and writes it (ObjectWriter).

template <typename T>
[[nodiscard]] std::optional<T> decodeFields(const Json &j)
{
    T value;
    ObjectReader reader(j);
    T::fields(value, reader);
    if (!reader.ok())
        return std::nullopt;
    return value;
}

template <typename T>
[[nodiscard]] OrderedJson encodeFields(const T &value)
{
    ObjectWriter writer;
    T::fields(value, writer);
    return writer.take();
}

/// The whole body as one record.
template <Record T>
[[nodiscard]] std::optional<T> decode(const QByteArray &body)
{
    const auto j = parse(body);
    return j ? T::fromJson(*j) : std::nullopt;
}

/// A list that a reply carries under one required key, e.g. {"flights": [...]}.
template <typename T>
[[nodiscard]] std::optional<QList<T>> decodeList(const QByteArray &body, const char *key)
{
    const auto j = parse(body);
    if (!j)
        return std::nullopt;
    QList<T> list;
    if (!ObjectReader(*j).req(key, list).ok())
        return std::nullopt;
    return list;
}

/// A list under an optional key: absent or null gives an empty list.
template <typename T>
[[nodiscard]] std::optional<QList<T>> decodeOptionalList(const QByteArray &body, const char *key)
{
    const auto j = parse(body);
    if (!j)
        return std::nullopt;
    std::optional<QList<T>> list;
    if (!ObjectReader(*j).opt(key, list).ok())
        return std::nullopt;
    return list.value_or(QList<T>{});
}
} // namespace Wire
