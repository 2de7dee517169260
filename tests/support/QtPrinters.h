#pragma once

// Readable GoogleTest messages for Qt values; force-included into every test.
#include <QByteArray>
#include <QString>
#include <QStringList>

#include <optional>
#include <ostream>

inline void PrintTo(const QString &s, std::ostream *os)
{
    *os << '"' << s.toStdString() << '"';
}

inline void PrintTo(const QByteArray &b, std::ostream *os)
{
    *os << '"' << b.toStdString() << '"';
}

inline void PrintTo(const QStringList &list, std::ostream *os)
{
    *os << "[";
    for (qsizetype i = 0; i < list.size(); ++i)
        *os << (i ? ", " : "") << '"' << list[i].toStdString() << '"';
    *os << "]";
}
