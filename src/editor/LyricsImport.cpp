#include "editor/LyricsImport.h"

#include "formats/LyricsFiles.h"
#include "core/FilePieces.h"
#include "core/TextCodec.h"
#include "lyrics/LyricsBlock.h"
#include "lyrics/LyricsLoader.h"
#include "midi/KaraokeWords.h"
#include "midi/MidiFile.h"
#include "midi/MidiRead.h"
#include "tags/MP3Class.h"

namespace {

void ResetEditor(LyricsState& lyrics)
{
    lyrics.EditLyrics.assign(1, LyricItem{});
    lyrics.EditPictures.assign(1, PictureItem{});
}

// The block from the last start mark through the last end mark followed by CR LF.
std::optional<QString> ImportBlockText(QFile& file, qint64 begin, bool polish)
{
    static const QByteArray endMark = QByteArrayLiteral("#End Songweaver\r\n");
    const qint64 end = LastIndexOfInFile(file, endMark, file.size());
    const qint64 length = end + endMark.size() - 2 - begin;
    if (end < begin || length > kLargestLyricsBlock)
        return std::nullopt;
    const auto bytes = ReadFileRange(file, begin, length);
    if (!bytes)
        return std::nullopt;
    return DecodeText(*bytes, polish);
}

} // namespace

bool ImportLyrics(LyricsState& lyrics, MidiFigures& figures, MP3Class* current, const QString& fileName, bool polish)
{
    if (FormatOfFile(fileName))
        return ImportTimedLyrics(lyrics, fileName, polish);
    MP3Class file(polish);
    file.SetFilename(fileName);
    file.ReadFile();
    file.ReadTag();
    QFile song(fileName);
    const qint64 begin = song.open(QIODevice::ReadOnly) ? LastIndexOfInFile(song, "#Songweaver", song.size()) : -1;
    if (begin >= 0) {
        const auto block = ImportBlockText(song, begin, polish);
        return block && getMyLyrics(lyrics, *block);
    }
    if (file.LyricsExist() && ImportSongTagLyrics(lyrics, current))
        return true;
    return ImportMidiLyrics(lyrics, figures, fileName, polish);
}

bool ImportTimedLyrics(LyricsState& lyrics, const QString& fileName, bool polish)
{
    const auto timed = ReadTimedLyricsFile(fileName, polish);
    if (!timed)
        return false;
    ResetEditor(lyrics);
    lyrics.EditLyrics = timed->items;
    return true;
}

bool ImportSongTagLyrics(LyricsState& lyrics, MP3Class* current)
{
    if (!current)
        return false;
    current->ReadTag();
    const TagLyrics tag = current->LyricsTag();
    ResetEditor(lyrics);
    lyrics.EditLyrics[0].Artist = tag.LyricsArtist;
    lyrics.EditLyrics[0].Title = tag.LyricsTitle;
    AppendTagLines(lyrics.EditLyrics, tag.Lyrics);
    return true;
}

bool ImportMidiLyrics(LyricsState& lyrics, MidiFigures& figures, const QString& fileName, bool polish)
{
    const QByteArray bytes = ReadWholeFile(fileName);
    const auto parsed = ParseMidiFile(bytes);
    const MidiSongMeasure measure = parsed ? MeasureMidiSong(*parsed) : MidiSongMeasure{};
    figures.MidiSegmentLength = measure.Quarters * kMusicTimePerQuarter;
    QString title, artist;
    ReadMidiTitle(bytes, polish, title, artist);

    std::vector<LyricItem> songLyrics(1);
    ReadMidiWords(bytes, figures, measure.Seconds(), songLyrics, polish);
    if (songLyrics.size() - 1 < kFewestWordsElements) {
        ResetEditor(lyrics);
        return false;
    }
    FinishWords(songLyrics);
    songLyrics[0] = LyricItem{};
    songLyrics[0].Title = title;
    songLyrics[0].Artist = artist;
    lyrics.EditLyrics = std::move(songLyrics);
    lyrics.EditPictures.assign(1, PictureItem{});
    return true;
}
