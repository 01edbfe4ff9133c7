#include "playback/SongMemory.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <algorithm>
#include <cmath>
#include <optional>

namespace {

constexpr qint64 kHashedBytes = 1 << 20;
// A line is some 60 bytes; a file far larger than the songs it may hold is not read further.
constexpr qint64 kLongestFile = qint64(SongMemory::kKept) * 200;
const QByteArray kHeader = "#Songweaver song settings 1";

// The choice in the knobs' ranges; a tempo that is no number is the song's own.
SongChoice InRange(const SongChoice& choice)
{
    return SongChoice{std::clamp(choice.semitones, -12, 12),
                      std::isfinite(choice.tempo) ? std::clamp(choice.tempo, 0.5, 2.0) : 1.0, choice.vocalsOff};
}

std::optional<SongChoice> ParseChoice(const QList<QByteArray>& fields)
{
    if (fields.size() != 4)
        return std::nullopt;
    bool semitonesOk = false, tempoOk = false, vocalsOk = false;
    const int semitones = fields[1].toInt(&semitonesOk);
    const double tempo = fields[2].toDouble(&tempoOk);
    const int vocals = fields[3].toInt(&vocalsOk);
    if (!semitonesOk || !tempoOk || !vocalsOk || !std::isfinite(tempo))
        return std::nullopt;
    return InRange(SongChoice{semitones, tempo, vocals != 0});
}

} // namespace

SongMemory::SongMemory(QString file) : m_file(std::move(file)) {}

QString SongMemory::SongKey(const QString& songPath)
{
    QFile song(songPath);
    if (!song.open(QIODevice::ReadOnly))
        return {};
    const QByteArray start = song.read(kHashedBytes);
    return QString::number(song.size()) + u'-' +
           QString::fromLatin1(QCryptographicHash::hash(start, QCryptographicHash::Sha1).toHex());
}

void SongMemory::Load()
{
    if (m_loaded)
        return;
    m_loaded = true;
    QFile file(m_file);
    if (!file.open(QIODevice::ReadOnly))
        return;
    const QList<QByteArray> lines = file.read(kLongestFile).split('\n');
    if (lines.isEmpty() || lines.first().trimmed() != kHeader)
        return;
    for (qsizetype i = 1; i < lines.size() && m_order.size() < kKept; ++i) {
        const QList<QByteArray> fields = lines[i].trimmed().split('\t');
        const auto choice = ParseChoice(fields);
        const QString key = QString::fromLatin1(fields[0]);
        if (!choice || choice->IsNeutral() || m_choices.contains(key))
            continue;
        m_choices.insert(key, *choice);
        m_order << key;
    }
}

bool SongMemory::Save() const
{
    QDir().mkpath(QFileInfo(m_file).absolutePath());
    QSaveFile file(m_file);
    if (!file.open(QIODevice::WriteOnly))
        return false;
    QByteArray text = kHeader + '\n';
    for (const QString& key : m_order) {
        const SongChoice& c = m_choices[key];
        text += key.toLatin1() + '\t' + QByteArray::number(c.semitones) + '\t' + QByteArray::number(c.tempo, 'g', 6) +
                '\t' + (c.vocalsOff ? "1" : "0") + '\n';
    }
    file.write(text);
    return file.commit();
}

SongChoice SongMemory::Recall(const QString& key)
{
    Load();
    return m_choices.value(key);
}

bool SongMemory::Remember(const QString& key, const SongChoice& choice)
{
    if (key.isEmpty())
        return false;
    Load();
    m_order.removeAll(key);
    m_choices.remove(key);
    const SongChoice kept = InRange(choice);
    if (!kept.IsNeutral()) {
        m_choices.insert(key, kept);
        m_order << key;
        while (m_order.size() > kKept)
            m_choices.remove(m_order.takeFirst());
    }
    return Save();
}
