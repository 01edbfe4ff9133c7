#include "midi/KaraokeWords.h"

#include "core/TextCodec.h"
#include "midi/MidiFile.h"

#include <QCoreApplication>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <algorithm>
#include <cmath>
#include <optional>
#include <utility>

namespace {

constexpr double kLeadInSeconds = 2.0;
constexpr uint8_t kTextEvent = 0x01;
constexpr uint8_t kLyricEvent = 0x05;
constexpr uint8_t kTrackName = 0x03;
constexpr int kConverterWaitMs = 60000;

double RoundedSeconds(double milliseconds)
{
    return std::round(milliseconds) / 1000.0;
}

QString LeftTrimmed(const QString& text)
{
    qsizetype i = 0;
    while (i < text.size() && text[i].isSpace())
        ++i;
    return text.mid(i);
}

bool IsLineMark(QChar c)
{
    return c == u'/' || c == u'\\';
}

// The delta time behind an event, its length told by where the next 255 stands: in a words
// track every following event is expected to be a meta event.
uint32_t DeltaAt(const QByteArray& track, qsizetype at)
{
    const int b[4] = {ByteAt(track, at), ByteAt(track, at + 1), ByteAt(track, at + 2), ByteAt(track, at + 3)};
    int count = 4;
    if (b[1] == 255)
        return uint32_t(b[0]);
    if (b[2] == 255)
        count = 2;
    else if (b[3] == 255)
        count = 3;
    uint32_t value = 0;
    for (int i = 0; i < count; ++i)
        value = (value << 7) | uint32_t(b[i] & 127);
    return value;
}

// The line rules of the words: a mark with text closes the line before (the first one makes
// the lead-in and drops what came before it), a bare mark gives nothing.
class WordsCollector {
public:
    explicit WordsCollector(std::vector<LyricItem>& lyrics) : m_lyrics(lyrics) {}

    void Add(const QString& word, double start)
    {
        const QString trimmed = word.trimmed();
        if (trimmed.isEmpty()) {
            if (!word.isEmpty())
                m_lyrics.push_back(Syllable(word, start));
        } else if (trimmed.size() == 1 && IsLineMark(trimmed[0])) {
            return;
        } else if (IsLineMark(trimmed[0])) {
            m_lineEnds = false;
            StartLine(LeftTrimmed(LeftTrimmed(word).mid(1)), start);
        } else if (IsLineMark(trimmed.back())) {
            // A mark behind a word ends its line: the next word starts one.
            AddSyllable(trimmed.chopped(1), start);
            m_lineEnds = true;
        } else {
            AddSyllable(word, start);
        }
    }

private:
    static LyricItem Syllable(const QString& text, double start)
    {
        LyricItem item;
        item.Text = text;
        item.Time = start;
        return item;
    }

    void AddSyllable(const QString& text, double start)
    {
        if (std::exchange(m_lineEnds, false))
            StartLine(text, start);
        else
            m_lyrics.push_back(Syllable(text, start));
    }

    void StartLine(const QString& text, double start)
    {
        if (m_firstLineSeen) {
            m_lyrics.back().LineEnd = true;
            m_lyrics.push_back(Syllable(text, start));
            return;
        }
        if (text.isEmpty())
            return;
        m_firstLineSeen = true;
        m_lyrics.resize(3);
        m_lyrics[2] = Syllable(text, start);
        m_lyrics[1] = Syllable(QString(), std::max(0.0, start - kLeadInSeconds));
        m_lyrics[1].LineEnd = true;
    }

    std::vector<LyricItem>& m_lyrics;
    bool m_firstLineSeen = false;
    bool m_lineEnds = false;
};

bool WordsUsable(const std::vector<LyricItem>& lyrics, double duration)
{
    if (lyrics.size() - 1 < kFewestWordsElements)
        return false;
    return duration <= 0 || std::none_of(lyrics.begin() + 1, lyrics.end(),
                                         [duration](const LyricItem& item) { return item.Time > duration; });
}

struct TimedText {
    double start = 0;
    QString text;
};

std::vector<TimedText> EventTexts(const MidiTrack& track, uint8_t metaType, double msPerTick, bool polish)
{
    std::vector<TimedText> texts;
    QList<QByteArray> bytes;
    for (const MidiEvent& event : track.Events)
        if (event.Status == 0xFF && event.MetaType == metaType) {
            texts.push_back({RoundedSeconds(double(event.Tick) * msPerTick), QString()});
            bytes << event.Data;
        }
    const QStringList decoded = DecodeTexts(bytes, polish);
    for (size_t i = 0; i < texts.size(); ++i)
        texts[i].text = decoded[qsizetype(i)];
    return texts;
}

// Where the byte reader chose no track, the words are most likely where most texts are.
const MidiTrack* TrackWithMostTexts(const MidiFile& file)
{
    const MidiTrack* best = nullptr;
    qsizetype bestCount = 0;
    for (const MidiTrack& track : file.Tracks) {
        const qsizetype count = std::count_if(track.Events.begin(), track.Events.end(), [](const MidiEvent& e) {
            return e.Status == 0xFF && e.MetaType == kTextEvent && !e.Data.startsWith('@');
        });
        if (count > bestCount) {
            best = &track;
            bestCount = count;
        }
    }
    return best;
}

// Text events read as the byte reader reads them: "@" lines are headers.
void CollectTextEvents(const std::vector<TimedText>& texts, std::vector<LyricItem>& lyrics)
{
    WordsCollector words(lyrics);
    for (const TimedText& t : texts)
        if (!t.text.startsWith(u'@'))
            words.Add(t.text, t.start);
}

bool IsLineBreak(QChar c)
{
    return c == u'\r' || c == u'\n';
}

// The text of a lyric event without its line breaks; its blanks belong to the syllable.
QString WithoutLineBreaks(const QString& text)
{
    qsizetype from = 0;
    qsizetype to = text.size();
    while (from < to && IsLineBreak(text[from]))
        ++from;
    while (to > from && IsLineBreak(text[to - 1]))
        --to;
    return text.mid(from, to - from);
}

QString RightTrimmed(const QString& text)
{
    qsizetype to = text.size();
    while (to > 0 && text[to - 1].isSpace())
        --to;
    return text.left(to);
}

// Lyric events as notation programs write them: a line break before (or after) a syllable
// starts a line, and where syllables end in "-" to join words, the others end a word.
void CollectLyricEvents(const std::vector<TimedText>& texts, std::vector<LyricItem>& lyrics)
{
    const bool hyphenated = std::any_of(texts.begin(), texts.end(),
                                        [](const TimedText& t) { return t.text.trimmed().endsWith(u'-'); });
    WordsCollector words(lyrics);
    bool lineStarts = true;  // the first syllable opens the first line, and so the lead-in
    for (const TimedText& t : texts) {
        const bool breakBefore = !t.text.isEmpty() && IsLineBreak(t.text.front());
        const bool breakAfter = !t.text.isEmpty() && IsLineBreak(t.text.back());
        QString text = WithoutLineBreaks(t.text);
        if (text.trimmed().isEmpty())
            text.clear();
        else if (hyphenated && RightTrimmed(text).endsWith(u'-'))
            text = RightTrimmed(text).chopped(1);
        else if (hyphenated && !text.back().isSpace())
            text += u' ';
        if (text.isEmpty()) {
            lineStarts = lineStarts || breakBefore || breakAfter;
            continue;
        }
        if ((lineStarts || breakBefore) && !IsLineMark(text.front()))
            text.prepend(u'/');
        words.Add(text, t.start);
        lineStarts = breakAfter;
    }
}

// The bytes to read the words from: what a karaoke converter installed beside the program
// writes, when there is one and its output is whole, else the song.
QByteArray WordsFileBytes(const QString& song)
{
    const QString converter =
        QStandardPaths::findExecutable(QStringLiteral("m2k"), {QCoreApplication::applicationDirPath()});
    const QTemporaryDir work;
    if (converter.isEmpty() || !work.isValid())
        return ReadWholeFile(song);
    const QString output = work.filePath(QStringLiteral("swtmp.tmp"));
    QProcess process;
    process.start(converter, {song, output});
    if (!process.waitForFinished(kConverterWaitMs))
        process.kill();
    return ReadWholeFile(AcceptConvertedFile(output, song));
}

// The words of one track, and which of its events gave them.
struct TrackWords {
    std::vector<LyricItem> words;
    WordsOrigin origin = WordsOrigin::TextEvents;
};

// A track's text events where they make usable words, else its lyric events.
std::optional<TrackWords> ReadTrackWords(const MidiTrack& track, double msPerTick, double songEnd, bool polish,
                                         const LyricItem& header)
{
    std::vector<LyricItem> texts(1, header);
    CollectTextEvents(EventTexts(track, kTextEvent, msPerTick, polish), texts);
    if (WordsUsable(texts, songEnd))
        return TrackWords{std::move(texts), WordsOrigin::TextEvents};
    std::vector<LyricItem> lyrics(1, header);
    CollectLyricEvents(EventTexts(track, kLyricEvent, msPerTick, polish), lyrics);
    if (WordsUsable(lyrics, songEnd))
        return TrackWords{std::move(lyrics), WordsOrigin::LyricEvents};
    return std::nullopt;
}

QString TrackName(const MidiTrack& track, bool polish)
{
    const auto name = std::find_if(track.Events.begin(), track.Events.end(), [](const MidiEvent& e) {
        return e.Status == 0xFF && e.MetaType == kTrackName;
    });
    return name == track.Events.end() ? QString() : DecodeText(name->Data, polish).trimmed();
}

QStringList SyllableTexts(const std::vector<LyricItem>& words)
{
    QStringList texts;
    for (size_t i = 1; i < words.size(); ++i)
        texts << words[i].Text;
    return texts;
}

struct Verse {
    WordsTrack track;
    TrackWords read;
};

std::vector<Verse> ReadVerses(const MidiFile& file, double msPerTick, double songEnd, bool polish)
{
    std::vector<Verse> verses;
    for (size_t i = 0; i < file.Tracks.size(); ++i) {
        auto read = ReadTrackWords(file.Tracks[i], msPerTick, songEnd, polish, LyricItem{});
        if (!read)
            continue;
        const QStringList texts = SyllableTexts(read->words);
        const bool repeated = std::any_of(verses.begin(), verses.end(),
                                          [&texts](const Verse& v) { return SyllableTexts(v.read.words) == texts; });
        if (!repeated)
            verses.push_back({WordsTrack{int(i), TrackName(file.Tracks[i], polish)}, std::move(*read)});
    }
    return verses;
}

// The song's verses into figures, and the words of the chosen one in place of those read first.
// Without a choice (or with a track that is no verse), the verse shown is the one whose words
// were read first.
WordsOrigin ChooseVerse(const QByteArray& bytes, MidiFigures& figures, int chosen, bool polish,
                        std::vector<LyricItem>& songLyrics, WordsOrigin origin)
{
    figures.Verses.clear();
    figures.Verse = -1;
    const auto parsed = ParseMidiFile(bytes);
    if (!parsed)
        return origin;
    std::vector<Verse> verses = ReadVerses(*parsed, figures.MidiMsPerTick, figures.MidiDuration, polish);
    if (verses.size() < 2)
        return origin;
    for (const Verse& verse : verses)
        figures.Verses.push_back(verse.track);
    const auto chosenVerse =
        std::find_if(verses.begin(), verses.end(), [chosen](const Verse& v) { return v.track.Track == chosen; });
    if (chosenVerse != verses.end()) {
        const LyricItem header = songLyrics[0];
        songLyrics = std::move(chosenVerse->read.words);
        songLyrics[0] = header;
        figures.Verse = chosen;
        return chosenVerse->read.origin;
    }
    const QStringList shown = SyllableTexts(songLyrics);
    const auto shownVerse = std::find_if(verses.begin(), verses.end(),
                                         [&shown](const Verse& v) { return SyllableTexts(v.read.words) == shown; });
    if (shownVerse != verses.end())
        figures.Verse = shownVerse->track.Track;
    return origin;
}

} // namespace

void ResetLyrics(LyricsState& lyrics, std::vector<LyricItem>& songLyrics)
{
    songLyrics.assign(1, LyricItem{});
    lyrics.PlayPictures.resize(1);
    lyrics.LyricsTitleText.clear();
}

void GetWords(const QByteArray& track, double msPerTick, bool polish, std::vector<LyricItem>& songLyrics)
{
    // Every 255 is taken for an event, also one inside a text or a delta; the search goes on
    // one byte further, not behind the event. The words are read first, then decoded together.
    QList<QByteArray> texts;
    std::vector<double> times;
    double clock = 0;
    for (qsizetype at = track.indexOf('\xFF'); at >= 0; at = track.indexOf('\xFF', at + 1)) {
        const int length = ByteAt(track, at + 2);
        const bool word = ByteAt(track, at + 1) == kTextEvent && ByteAt(track, at + 3) != '@';
        texts << (word ? track.mid(at + 3, length) : QByteArray());
        const double delta = DeltaAt(track, at + 3 + length) * msPerTick;
        clock += delta;
        times.push_back(RoundedSeconds(clock - delta));
    }
    WordsCollector words(songLyrics);
    const QStringList decoded = DecodeTexts(texts, polish);
    for (size_t i = 0; i < times.size(); ++i)
        words.Add(decoded[qsizetype(i)], times[i]);
}

void FinishWords(std::vector<LyricItem>& songLyrics)
{
    QString line;
    size_t lineStart = 1;
    for (size_t i = 1; i < songLyrics.size(); ++i) {
        const LyricItem& item = songLyrics[i];
        line += item.Text;
        if (!item.LineEnd)
            continue;
        for (size_t j = lineStart; j <= i; ++j)
            songLyrics[j].LineText = line;
        line.clear();
        lineStart = i + 1;
    }
}

WordsOrigin ReadMidiWords(const QByteArray& file, MidiFigures& figures, double songEnd,
                          std::vector<LyricItem>& songLyrics, bool polish)
{
    const int track = ReadFile(file, figures, songLyrics, polish);
    if (WordsUsable(songLyrics, songEnd))
        return WordsOrigin::TextBytes;
    const auto parsed = ParseMidiFile(file);
    if (!parsed)
        return WordsOrigin::TextBytes;

    auto tryWords = [&](const std::vector<TimedText>& texts, auto collect) {
        std::vector<LyricItem> words(1, songLyrics[0]);
        collect(texts, words);
        if (!WordsUsable(words, songEnd))
            return false;
        songLyrics = std::move(words);
        return true;
    };
    const double msPerTick = figures.MidiMsPerTick;
    const MidiTrack* textTrack =
        track >= 0 && size_t(track) < parsed->Tracks.size() ? &parsed->Tracks[size_t(track)] : TrackWithMostTexts(*parsed);
    if (textTrack && tryWords(EventTexts(*textTrack, kTextEvent, msPerTick, polish), CollectTextEvents))
        return WordsOrigin::TextEvents;
    for (const MidiTrack& t : parsed->Tracks) {
        const std::vector<TimedText> lyrics = EventTexts(t, kLyricEvent, msPerTick, polish);
        if (lyrics.empty())
            continue;
        if (tryWords(lyrics, CollectLyricEvents))
            return WordsOrigin::LyricEvents;
        break;
    }
    return WordsOrigin::TextBytes;
}

double StoreSongLength(const MidiSongMeasure& measure, MidiFigures& figures)
{
    figures.MidiSegmentLength = measure.Quarters * kMusicTimePerQuarter;
    figures.MidiDuration = measure.Seconds();
    figures.BeatsPerMeasure = measure.BeatsPerMeasure;
    figures.Beat = measure.Beat;
    return figures.MidiDuration;
}

double MeasureSong(const QByteArray& file, MidiFigures& figures)
{
    const auto parsed = ParseMidiFile(file);
    return StoreSongLength(parsed ? MeasureMidiSong(*parsed) : MidiSongMeasure{}, figures);
}

bool LoadMidiLyrics(LyricsState& lyrics, MidiFigures& figures, const QString& songPath, const LyricsEnvironment& env,
                    int verse)
{
    figures.Verses.clear();
    figures.Verse = -1;
    if (LoadEmbeddedLyrics(lyrics, songPath, env)) {
        lyrics.LyricsTitleText = MakeLyricsTitle(lyrics, env.Tags);
        return true;
    }
    std::vector<LyricItem> songLyrics;
    ResetLyrics(lyrics, songLyrics);
    const QByteArray bytes = WordsFileBytes(songPath);
    WordsOrigin origin = ReadMidiWords(bytes, figures, figures.MidiDuration, songLyrics, env.Polish);
    origin = ChooseVerse(bytes, figures, verse, env.Polish, songLyrics, origin);
    FinishWords(songLyrics);

    lyrics.PlayLyrics = std::move(songLyrics);
    LyricItem& header = lyrics.PlayLyrics[0];
    if (env.Tags) {
        header.Artist = env.Tags->Artist();
        header.Title = env.Tags->Title();
    }
    header.FormatName = origin == WordsOrigin::LyricEvents  ? QStringLiteral("MIDI lyric events")
                        : origin == WordsOrigin::TextEvents ? QStringLiteral("MIDI text events (parsed)")
                                                            : QStringLiteral("MIDI text events");
    BuildPictureOrder(lyrics);
    lyrics.LongestLine = FindLongestLine(lyrics.PlayLyrics, env.Font);
    lyrics.LyricsTitleText = MakeLyricsTitle(lyrics, env.Tags);
    if (env.Refit)
        env.Refit();
    return lyrics.PlayLyrics.size() > 1;
}
