// Feeds arbitrary bytes to the CD+G decoder as a file, and asks for its screen at seconds in and
// out of order, each decoded image once. The sanitizers and the time limit are the checks.

#include "cdg/CdgScreen.h"

#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    CdgDecoder decoder(QByteArray(reinterpret_cast<const char*>(data), qsizetype(size)));
    const double end = decoder.Seconds();
    for (const double at : {end, end / 2, 0.0, end * 2, -1.0})
        CdgShownImage(decoder.ScreenAt(at));
    return 0;
}
