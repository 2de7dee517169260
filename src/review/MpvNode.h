#pragma once

#include <mpv/client.h>

#include <QByteArray>
#include <QStringList>

#include <cstdint>
#include <cstring>
#include <vector>

/// @brief The few mpv_node shapes the playback layer passes: a list of strings going in, an
/// integer read out of a reply's map.
namespace MpvNode {

/// A string list as an mpv node array, valid while this object lives. Passed as a node, not
/// as one string, so that a comma inside a header isn't taken for a separator.
class StringList
{
public:
    explicit StringList(const QStringList &strings)
    {
        m_bytes.reserve(std::size_t(strings.size()));
        for (const QString &s : strings)
            m_bytes.push_back(s.toUtf8());
        m_items.resize(m_bytes.size());
        for (std::size_t i = 0; i < m_bytes.size(); ++i) {
            m_items[i].format = MPV_FORMAT_STRING;
            m_items[i].u.string = m_bytes[i].data();
        }
        m_list.num = int(m_items.size());
        m_list.values = m_items.data();
        m_list.keys = nullptr;
        m_node.format = MPV_FORMAT_NODE_ARRAY;
        m_node.u.list = &m_list;
    }
    StringList(const StringList &) = delete;
    StringList &operator=(const StringList &) = delete;

    [[nodiscard]] mpv_node *node() { return &m_node; }

private:
    std::vector<QByteArray> m_bytes;
    std::vector<mpv_node> m_items;
    mpv_node_list m_list{};
    mpv_node m_node{};
};

/// The integer under `key` of a node map, or `fallback`.
inline std::int64_t int64In(const mpv_node &map, const char *key, std::int64_t fallback)
{
    if (map.format != MPV_FORMAT_NODE_MAP || !map.u.list)
        return fallback;
    for (int i = 0; i < map.u.list->num; ++i)
        if (std::strcmp(map.u.list->keys[i], key) == 0 && map.u.list->values[i].format == MPV_FORMAT_INT64)
            return map.u.list->values[i].u.int64;
    return fallback;
}

} // namespace MpvNode
