#pragma once

#include <QString>

/// Cuts finished lines off the front of `buffer` and hands each to `onLine`, without its line
/// feed. A line ends at a line feed that does not follow a carriage return: CR LF is one
/// character and ends no line, as in the tools' and the cameras' own text. `scanned` remembers
/// how far the unfinished rest was already searched, so text that arrives in pieces is searched
/// once; start it at 0 and keep it with the buffer.
template <typename OnLine>
void cutLines(QString &buffer, qsizetype &scanned, OnLine &&onLine)
{
    qsizetype start = 0;
    for (qsizetype i = scanned; i < buffer.size(); ++i) {
        if (buffer.at(i) != QLatin1Char('\n') || (i > 0 && buffer.at(i - 1) == QLatin1Char('\r')))
            continue;
        onLine(buffer.mid(start, i - start));
        start = i + 1;
    }
    buffer.remove(0, start);
    scanned = buffer.size();
}

/// Removes blanks and tabs (not line ends) from both ends.
[[nodiscard]] inline QString trimBlanks(const QString &text)
{
    const auto blank = [](QChar c) { return c == QLatin1Char(' ') || c == QLatin1Char('\t'); };
    qsizetype from = 0;
    qsizetype to = text.size();
    while (from < to && blank(text.at(from)))
        ++from;
    while (to > from && blank(text.at(to - 1)))
        --to;
    return text.mid(from, to - from);
}
