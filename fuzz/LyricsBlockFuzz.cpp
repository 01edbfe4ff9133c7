// Feeds arbitrary bytes to every reader of the lyrics block and of tag lyrics, the way a song
// file or a ".lrs" file reaches them, and writes back what was read.

#include "lyrics/LyricTime.h"
#include "lyrics/LyricsLoader.h"
#include "core/TextCodec.h"

#include <QGuiApplication>
#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv)
{
    setenv("QT_QPA_PLATFORM", "offscreen", 0);
    static QGuiApplication app(*argc, *argv);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const QByteArray bytes(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    const QString text = DecodeText(bytes, size % 2 == 0);
    const QFont font;
    LyricsState lyrics;

    if (const auto block = LyricsBlockText(bytes, false))
        ParseLyricsText(lyrics, *block, QStringLiteral("/songs"), font);
    if (ParseLyricsText(lyrics, text, QStringLiteral("/songs"), font)) {
        const QString written = BuildLyricsBlock(lyrics.PlayLyrics, lyrics.PlayPictures, QStringLiteral(","));
        ParseLyricsText(lyrics, written, QStringLiteral("/songs"), font);
    }
    ParseEditorLyrics(lyrics, text, {});

    TagLyrics tag;
    tag.LyricsExist = true;
    tag.Lyrics = text;
    tag.LyricsPicture = text;
    ImportTagLyrics(lyrics, tag, font);
    ParseLyricTime(text);
    return 0;
}
