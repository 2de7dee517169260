// flight.json as the server hands it back: strict reading, and what it reads writes and reads
// back the same.
#include "FuzzCheck.h"

#include <QByteArray>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QByteArray bytes(reinterpret_cast<const char *>(data), static_cast<qsizetype>(size));
    const auto read = FlightFile::decode(bytes);
    if (read.ok())
        FuzzCheck::roundTrips(*read);
    else
        FuzzCheck::require(!read.errorText().isEmpty(), "a failure has words");
    return 0;
}
