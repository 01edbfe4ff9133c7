#include "midi/MidiRead.h"

#include "core/TextCodec.h"
#include "lyrics/LyricsLoader.h"
#include "midi/MidiFile.h"

#include <QFile>
#include <array>

namespace {

QString ProperCase(const QString& text)
{
    QString result = text.toLower();
    bool wordStart = true;
    for (QChar& c : result) {
        if (wordStart && c.isLetter())
            c = c.toUpper();
        wordStart = c.isSpace();
    }
    return result;
}

} // namespace

double MidiFileSeconds(const QByteArray& bytes)
{
    const auto file = ParseMidiFile(bytes);
    return file ? MeasureMidiSong(*file).Seconds() : 0.0;
}

void ReadMidiTitle(const QByteArray& bytes, bool polish, QString& title, QString& artist)
{
    std::array<QString, 3> found;
    size_t filled = 0;
    qsizetype searchFrom = 20;
    for (int i = 0; i < 3; ++i) {
        const qsizetype p = bytes.indexOf("@T", searchFrom);
        if (p < 0)
            continue;
        if (p >= 3 && uint8_t(bytes[p - 3]) == 0xFF && bytes[p - 2] == 1) {
            const int length = uint8_t(bytes[p - 1]);
            found[filled++] = ProperCase(DecodeText(bytes.mid(p + 2, std::max(0, length - 2)), polish));
        }
        searchFrom = p + 1;
    }
    if (found[0].isEmpty())
        return;
    title = found[0];
    artist = found[1];
}

void MidiRead::SetFilename(const QString& path)
{
    m_filename = path;
    Length = 0;
    Title.clear();
    Artist.clear();
    const QByteArray bytes = ReadWholeFile(path);
    Length = MidiFileSeconds(bytes);
    ReadMidiTitle(bytes, m_polish, Title, Artist);
}
