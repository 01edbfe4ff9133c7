// Feeds arbitrary bytes to one timed-lyrics reader as a file reaches it (decoded in whatever
// encoding the bytes look like), then what it read through every writer and back. The
// sanitizers and the time limit are the checks. SONGWEAVER_FUZZ_FORMAT names the reader.

#include "core/TextCodec.h"
#include "formats/TimedLyrics.h"

#include <QByteArray>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const QString text = DecodeAnyText(QByteArray(reinterpret_cast<const char*>(data), qsizetype(size)), size % 2 == 0);
    const auto format = LyricsFormat(SONGWEAVER_FUZZ_FORMAT);
    const std::optional<TimedLyrics> read = format == LyricsFormat::Lrc         ? ReadLrc(text)
                                            : format == LyricsFormat::UltraStar ? ReadUltraStar(text, 1 + int(size % 2))
                                            : format == LyricsFormat::Ass       ? ReadAss(text)
                                                                                : ReadSrt(text);
    if (!read)
        return 0;
    ReadLrc(WriteLrc(read->items, true));
    ReadUltraStar(WriteUltraStar(read->items, QStringLiteral("song.mp3")));
    ReadAss(WriteAss(read->items, QStringLiteral("Sans"), 40));
    ReadSrt(WriteSrt(read->items));
    return 0;
}
