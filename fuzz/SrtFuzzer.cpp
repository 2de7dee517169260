// The SRT sidecar reader on any text, with and without the clip's model and duration.
#include "FuzzCheck.h"
#include "SrtReader.h"

#include <QString>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    if (size == 0)
        return 0;
    // The first byte picks what the probe of the clip would have told the reader.
    const bool probed = data[0] & 1;
    const QString text = QString::fromUtf8(reinterpret_cast<const char *>(data + 1), static_cast<qsizetype>(size - 1));
    FuzzCheck::readable(TelemetryParser::parseSRT(text, probed ? std::optional(QStringLiteral("Mavic 3")) : std::nullopt,
                                                  probed ? std::optional(12.5) : std::nullopt,
                                                  QStringLiteral("DJI_0001.MP4")));
    return 0;
}
