#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <functional>
#include <mutex>

/// @brief Gathers one child's output and cuts standard output into lines for a line callback.
///
/// Each chunk is decoded by itself; a chunk that is not valid UTF-8 on its own (a character split
/// across two reads) stays in the raw output but adds nothing to the lines. A line ends at a line
/// feed that does not follow a carriage return: CR LF is one character and ends no line. Text
/// after the last line feed never becomes a line.
class OutputCollector
{
public:
    using LineHandler = std::function<void(const QString &line)>;

    explicit OutputCollector(LineHandler onLine = {}) : m_onLine(std::move(onLine)) {}

    /// Appends to the output and calls the line handler, outside the lock, once per finished line.
    void addOutput(const QByteArray &bytes);
    void addError(const QByteArray &bytes);

    [[nodiscard]] QByteArray output() const;
    /// Standard error as text, or empty when it is not valid UTF-8.
    [[nodiscard]] QString errorText() const;

private:
    mutable std::mutex m_lock;
    QByteArray m_out;
    QByteArray m_err;
    QString m_lineBuf;
    qsizetype m_scanned = 0;
    LineHandler m_onLine;
};
