// UltraStar song files: "#KEY:value" headers, then notes on beats (a quarter of a BPM beat each,
// from #GAP milliseconds), line breaks, duet parts and the end.

#include "formats/LineBuilder.h"
#include "formats/TimedLyrics.h"

#include <QRegularExpression>
#include <algorithm>
#include <array>
#include <cmath>

namespace {

// What a song file may say: beats far beyond any song are held at this, tempos outside are no song.
constexpr qint64 kFarthestBeat = 1'000'000'000;
constexpr double kSlowestBpm = 1;
constexpr double kFastestBpm = 100'000;
const QRegularExpression kNote(QStringLiteral("^([:*FRG])\\s+(-?\\d{1,9})\\s+(-?\\d{1,9})\\s+(-?\\d{1,9})(?: (.*))?$"));
const QRegularExpression kBreak(QStringLiteral("^-\\s*(-?\\d{1,9})(?:\\s+(-?\\d{1,9}))?\\s*$"));
const QRegularExpression kPart(QStringLiteral("^P\\s*([123])\\s*$"));

double Number(QString text)
{
    return text.trimmed().replace(u',', u'.').toDouble();
}

// The song's header fields; a key it does not know is passed over.
void ReadHeader(const QString& key, const QString& value, TimedLyrics& lyrics)
{
    UltraStarSong& song = lyrics.ultraStar;
    LyricItem& header = lyrics.items[0];
    if (key == u"TITLE")
        header.Title = value;
    else if (key == u"ARTIST")
        header.Artist = value;
    else if (key == u"MP3" || key == u"AUDIO")
        song.audio = value;
    else if (key == u"VIDEO")
        song.video = value;
    else if (key == u"COVER")
        song.cover = value;
    else if (key == u"BACKGROUND")
        song.background = value;
    else if (key == u"BPM")
        song.bpm = Number(value);
    else if (key == u"GAP")
        song.gapMs = Number(value);
    else if (key == u"VIDEOGAP")
        song.videoGap = Number(value);
    else if (key == u"START")
        song.start = Number(value);
    else if (key == u"END")
        song.end = Number(value);
    else if (key == u"RELATIVE")
        song.relative = value.trimmed().compare(QStringLiteral("yes"), Qt::CaseInsensitive) == 0;
    else if (key == u"P1" || key == u"DUETSINGERP1")
        song.partNames.insert(0, value);
    else if (key == u"P2" || key == u"DUETSINGERP2")
        song.partNames.append(value);
}

struct PendingSyllable {
    double time;
    QString text;
};

} // namespace

std::optional<TimedLyrics> ReadUltraStar(const QString& text, int part)
{
    TimedLyrics lyrics;
    UltraStarSong& song = lyrics.ultraStar;
    std::vector<std::vector<PendingSyllable>> lines(1);
    std::vector<size_t> noteOfSyllable;
    int current = 1;
    qint64 base = 0;  // the beat the relative numbers count from
    bool notesStarted = false;
    for (const QString& raw : TextLines(text)) {
        const QString trimmed = raw.trimmed();
        if (trimmed.isEmpty())
            continue;
        if (trimmed.startsWith(u'#') && !notesStarted) {
            const qsizetype colon = trimmed.indexOf(u':');
            if (colon > 1)
                ReadHeader(trimmed.mid(1, colon - 1).trimmed().toUpper(), trimmed.mid(colon + 1).trimmed(), lyrics);
            continue;
        }
        if (trimmed == u"E")
            break;
        if (const QRegularExpressionMatch p = kPart.match(trimmed); p.hasMatch()) {
            current = p.captured(1).toInt();
            lines.emplace_back();
            continue;
        }
        if (!(song.bpm >= kSlowestBpm && song.bpm <= kFastestBpm) || !std::isfinite(song.gapMs))
            return std::nullopt;
        const bool shown = current == part || current == 3;
        if (const QRegularExpressionMatch b = kBreak.match(trimmed); b.hasMatch()) {
            notesStarted = true;
            if (song.relative)
                base = std::clamp<qint64>(base + (b.captured(2).isEmpty() ? b.captured(1) : b.captured(2)).toLongLong(),
                                          -kFarthestBeat, kFarthestBeat);
            if (shown)
                lines.emplace_back();
            continue;
        }
        // Blanks after the pitch belong to the syllable, so only the line's start is cut.
        const QRegularExpressionMatch n = kNote.match(raw.mid(raw.indexOf(trimmed.at(0))));
        if (!n.hasMatch())
            continue;
        notesStarted = true;
        UltraStarNote note;
        note.kind = char(n.captured(1).at(0).toLatin1());
        note.beat = int(std::clamp<qint64>(base + n.captured(2).toLongLong(), -kFarthestBeat, kFarthestBeat));
        note.length = n.captured(3).toInt();
        note.pitch = n.captured(4).toInt();
        note.part = current == 3 ? part : current;
        song.notes.push_back(note);
        const QString syllable = n.captured(5);
        const double beatSeconds = 60.0 / (song.bpm * 4);
        if (!shown)
            continue;
        if (!syllable.trimmed().isEmpty() && syllable.trimmed() != u"~") {
            lines.back().push_back({song.gapMs / 1000 + note.beat * beatSeconds, syllable});
            noteOfSyllable.push_back(song.notes.size() - 1);
        } else if (syllable.endsWith(u' ') && !lines.back().empty()) {
            // A held note that ends a word.
            lines.back().back().text += u' ';
        }
    }

    LineBuilder builder;
    for (std::vector<PendingSyllable>& words : lines) {
        // A syllable's leading blank ends the word before it.
        for (size_t i = 0; i < words.size(); ++i) {
            QString& text = words[i].text;
            const qsizetype blanks = text.size() - QString(text).remove(QRegularExpression(QStringLiteral("^\\s+"))).size();
            if (blanks > 0 && i > 0 && !words[i - 1].text.endsWith(u' '))
                words[i - 1].text += u' ';
            text.remove(0, blanks);
        }
        for (const PendingSyllable& word : words)
            builder.Add(word.time, word.text);
        builder.EndLine();
    }
    for (size_t i = 0; i < noteOfSyllable.size(); ++i)
        song.notes[noteOfSyllable[i]].syllable = int(i + 1);
    return builder.Finish(std::move(lyrics), QStringLiteral("UltraStar"), false);
}

QString WriteUltraStar(const std::vector<LyricItem>& lyrics, const QString& audioFile)
{
    const LyricItem header = lyrics.empty() ? LyricItem{} : lyrics[0];
    const double gap = lyrics.size() > 1 ? std::max(0.0, lyrics[1].Time) : 0.0;
    // The longest beat that puts every syllable within a millisecond of one.
    constexpr std::array kBeats = {0.01, 0.005, 0.0025, 0.002, 0.001};
    double beat = kBeats.back();
    for (const double candidate : kBeats) {
        const bool fits = std::all_of(lyrics.begin() + std::min<size_t>(1, lyrics.size()), lyrics.end(), [&](const LyricItem& s) {
            const double beats = (s.Time - gap) / candidate;
            return std::abs(beats - std::round(beats)) * candidate <= 0.001 + 1e-9;
        });
        if (fits) {
            beat = candidate;
            break;
        }
    }
    const auto beatOf = [&](double time) { return std::llround((time - gap) / beat); };
    // A line's last note holds a second at the most.
    const long long longestLast = std::llround(1.0 / beat);

    QString out;
    if (!header.Title.isEmpty())
        out += QStringLiteral("#TITLE:%1\r\n").arg(header.Title);
    if (!header.Artist.isEmpty())
        out += QStringLiteral("#ARTIST:%1\r\n").arg(header.Artist);
    out += QStringLiteral("#MP3:%1\r\n#BPM:%2\r\n#GAP:%3\r\n")
               .arg(audioFile, QString::number(60.0 / (4 * beat), 'g', 10), QString::number(gap * 1000, 'f', 3));
    for (size_t i = 1; i < lyrics.size(); ++i) {
        const LyricItem& s = lyrics[i];
        const long long start = beatOf(s.Time);
        const bool last = s.LineEnd || i + 1 == lyrics.size();
        long long until = i + 1 < lyrics.size() ? beatOf(lyrics[i + 1].Time) : start + longestLast;
        if (last)
            until = std::min(until, start + longestLast);
        // A held tap measured how long the syllable is sung.
        if (s.Length > 0)
            until = std::min(until, beatOf(s.Time + s.Length));
        const long long length = std::max(1LL, until - start);
        out += QStringLiteral(": %1 %2 0 %3\r\n").arg(start).arg(length).arg(s.Text.isEmpty() ? QStringLiteral("~") : s.Text);
        if (last && i + 1 < lyrics.size())
            out += QStringLiteral("- %1\r\n").arg(std::min(start + length, beatOf(lyrics[i + 1].Time)));
    }
    return out + QStringLiteral("E\r\n");
}
