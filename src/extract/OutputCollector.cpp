#include "OutputCollector.h"

#include "LineBreaks.h"

#include <QStringDecoder>

namespace {

std::optional<QString> decodeUtf8(const QByteArray &bytes)
{
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    QString text = decoder.decode(bytes);
    if (decoder.hasError())
        return std::nullopt;
    return text;
}

} // namespace

void OutputCollector::addOutput(const QByteArray &bytes)
{
    if (bytes.isEmpty())
        return;
    QStringList lines;
    {
        std::lock_guard guard(m_lock);
        m_out.append(bytes);
        if (!m_onLine)
            return;
        if (const auto text = decodeUtf8(bytes)) {
            m_lineBuf.append(*text);
            cutLines(m_lineBuf, m_scanned, [&lines](QString line) { lines.append(std::move(line)); });
        }
    }
    for (const QString &line : lines)
        m_onLine(line);
}

void OutputCollector::addError(const QByteArray &bytes)
{
    std::lock_guard guard(m_lock);
    m_err.append(bytes);
}

QByteArray OutputCollector::output() const
{
    std::lock_guard guard(m_lock);
    return m_out;
}

QString OutputCollector::errorText() const
{
    std::lock_guard guard(m_lock);
    return decodeUtf8(m_err).value_or(QString());
}
