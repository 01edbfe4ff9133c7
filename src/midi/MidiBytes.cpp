#include "midi/MidiBytes.h"

#include "midi/KaraokeWords.h"
#include "midi/MidiFile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <cmath>

namespace {

constexpr qsizetype kChannelSearchStart = 21;
constexpr int kTextEventsOfAWordsTrack = 50;
constexpr qint64 kFirstTrack = 14;

struct TrackSpan {
    qint64 body = 0;
    qint64 length = 0;
};

// The spans of the counted tracks, walked by their stated lengths; the marks are not checked.
std::vector<TrackSpan> TrackSpans(const QByteArray& file)
{
    std::vector<TrackSpan> spans;
    const uint32_t count = JoinedHexNumber(file, 10, 2);
    qint64 start = kFirstTrack;
    for (uint32_t i = 0; i < count && start < file.size(); ++i) {
        const qint64 length = BigEndianAt(file, start + 4, 4);
        spans.push_back({start + 8, length});
        start += length + 8;
    }
    return spans;
}

QByteArray BodyOf(const QByteArray& file, const TrackSpan& span)
{
    if (span.body >= file.size())
        return {};
    return file.mid(qsizetype(span.body), qsizetype(std::min<qint64>(span.length, file.size() - span.body)));
}

bool IsWordsTrack(const QByteArray& body)
{
    static const QByteArray wordsName = QByteArrayLiteral("\xFF\x03\x05Words");
    if (body.contains(wordsName))
        return true;
    return body.count(QByteArrayLiteral("\xFF\x01")) >= kTextEventsOfAWordsTrack;
}

void ReadTempo(const QByteArray& file, MidiFigures& figures)
{
    const qsizetype tempo = file.indexOf(QByteArrayLiteral("\xFF\x51"));
    if (tempo < 0)
        return;
    figures.MidiTempoMicros = BigEndianAt(file, tempo + 3, 3);
    const double division = BigEndianAt(file, 12, 2);
    figures.MidiQuarterDivision = division / 4;
    // A division or tempo of 0 was an error the old reader skipped: the figure before stays.
    if (figures.MidiTempoMicros > 0)
        figures.MidiBpm = QString::number(60000000.0 / figures.MidiTempoMicros, 'f', 2).toFloat();
    if (figures.MidiQuarterDivision > 0)
        figures.MidiMsPerTick = figures.MidiTempoMicros / figures.MidiQuarterDivision / 4000;
}

// The first `first` byte from the search start whose following byte passes `accept`.
template <typename Accept>
qsizetype FindFollowed(const QByteArray& file, const QByteArray& pattern, qsizetype from, Accept accept)
{
    for (qsizetype at = file.indexOf(pattern, from); at >= 0; at = file.indexOf(pattern, at + 1))
        if (accept(ByteAt(file, at + pattern.size())))
            return at + pattern.size();
    return -1;
}

void ReadChannel(const QByteArray& file, int c, ChannelRecord& record)
{
    record.Channel = -1;
    if (!file.contains(char(144 + c)))
        return;
    record.Channel = int16_t(c + 1);

    const qsizetype program = FindFollowed(file, QByteArray(1, char(192 + c)), kChannelSearchStart,
                                           [](int value) { return value >= 1; });
    if (program >= 0)
        record.Patch = int16_t(ByteAt(file, program));

    record.Volume = 100;
    const qsizetype volume = FindFollowed(file, QByteArray(1, char(176 + c)) + char(7), kChannelSearchStart,
                                          [](int value) { return value >= 1 && value <= 126; });
    if (volume >= 0)
        record.Volume = int16_t(ByteAt(file, volume));

    const QByteArray panPair = QByteArray(1, char(176 + c)) + char(10);
    const qsizetype pan = file.indexOf(panPair, kChannelSearchStart);
    if (pan < 0)
        return;
    record.Pan = int16_t(ByteAt(file, pan + 2));
    if (record.Pan == 0 || record.Pan >= 128) {
        const qsizetype retry = file.indexOf(panPair, pan + 1);
        if (retry >= 0)
            record.Pan = int16_t(ByteAt(file, retry + 2));
    }
}

void ReadChannels(const QByteArray& file, MidiFigures& figures)
{
    for (int c = 0; c < 16; ++c) {
        ChannelRecord& record = figures.ChannelTable[size_t(c)];
        ReadChannel(file, c, record);
        record.PatchChanged = false;
        record.VolumeChanged = false;
        if (record.Channel != -1)
            record.State = 2;
    }
}

} // namespace

uint32_t JoinedHexNumber(const QByteArray& bytes, qsizetype at, int count)
{
    QString text;
    for (int i = 0; i < count; ++i)
        text += QString::number(ByteAt(bytes, at + i), 16);
    return text.toUInt(nullptr, 16);
}

int ChooseWordsTrack(const QByteArray& file)
{
    const std::vector<TrackSpan> spans = TrackSpans(file);
    for (size_t i = 0; i < spans.size(); ++i)
        if (IsWordsTrack(BodyOf(file, spans[i])))
            return int(i);
    return -1;
}

QByteArray TrackBody(const QByteArray& file, int index)
{
    const std::vector<TrackSpan> spans = TrackSpans(file);
    return index >= 0 && size_t(index) < spans.size() ? BodyOf(file, spans[size_t(index)]) : QByteArray();
}

int ReadFile(const QByteArray& file, MidiFigures& figures, std::vector<LyricItem>& songLyrics, bool polish)
{
    ReadTempo(file, figures);
    const int track = ChooseWordsTrack(file);
    GetWords(track >= 0 ? TrackBody(file, track) : file, figures.MidiMsPerTick, polish, songLyrics);
    ReadChannels(file, figures);
    return track;
}

QByteArray FileTempBytes()
{
    QByteArray bytes("MThd\0\0\0\x06\0\0\0\x01\0\x60MTrk\0\0\x01\x80\0", 23);
    for (int program = 0; program < 128; ++program)
        bytes += QByteArray("\xC0", 1) + char(program) + char(1);
    bytes += QByteArray("\0\xFF\x2F\0", 4);
    return bytes;
}

bool CreateFileTemp(const QString& folder)
{
    QFile file(QDir(folder).filePath(QStringLiteral("filetemp.tmp")));
    return file.open(QIODevice::WriteOnly) && file.write(FileTempBytes()) == FileTempBytes().size();
}

QString AcceptConvertedFile(const QString& converted, const QString& song)
{
    if (QFileInfo(converted).size() >= kSmallestConvertedFile)
        return converted;
    QFile::remove(converted);
    return song;
}
