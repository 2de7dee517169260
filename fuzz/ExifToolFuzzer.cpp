// The reader of ExifTool's JSON (-ee3 -G3 -j) on any bytes.
#include "ExifToolReader.h"
#include "FuzzCheck.h"

#include <QByteArray>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QByteArray json(reinterpret_cast<const char *>(data), static_cast<qsizetype>(size));
    FuzzCheck::readable(TelemetryParser::parseExifTool(json, QStringLiteral("DJI_0001.MP4")));
    return 0;
}
