// Saves tags into arbitrary bytes taken for a song file (an ID3 save, an APE save, a Lyrics3
// save), and checks after each that the bytes outside the regions the save manages are in the
// new file unchanged, right after its new head, or that the file was left as it was.

#include "tags/EndTags.h"
#include "tags/MP3Class.h"
#include "tags/StreamFacts.h"

#include <QFile>
#include <QTemporaryDir>
#include <cstdint>
#include <cstdlib>

namespace {

QByteArray ReadAll(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

qsizetype HeadOf(const QByteArray& file)
{
    return FirstId3v2Span(file).value_or(0);
}

QByteArray KeptById3Save(const QByteArray& file)
{
    const auto head = FirstId3v2Span(file);
    const qsizetype tail = file.size() - Id3v1Span(file);
    return head && *head <= tail ? file.mid(*head, tail - *head) : QByteArray();
}

QByteArray KeptByEndTagSave(const QByteArray& file)
{
    return file.first(file.size() - EndTagSpan(file));
}

void Check(const QString& path, const QByteArray& before, QByteArray (*kept)(const QByteArray&),
           qsizetype (*keptAt)(const QByteArray&))
{
    const QByteArray after = ReadAll(path);
    if (after != before && after.mid(keptAt(after), kept(before).size()) != kept(before))
        std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("song.mp3"));
    const QByteArray bytes(reinterpret_cast<const char*>(data), qsizetype(size));
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate))
        return 0;
    file.write(bytes);
    file.close();

    MP3Class song;
    song.SetFilename(path);
    song.ReadTag();
    Id3TagTexts texts = song.TagTexts();
    texts.Title1 = texts.Title2 = QStringLiteral("Fuzzed");
    song.SaveId3Tag(texts);
    Check(path, bytes, KeptById3Save, HeadOf);

    QByteArray before = ReadAll(path);
    song.SaveAPETag({QStringLiteral("Ape"), {}, {}, {}, {}, {}, {}});
    Check(path, before, KeptByEndTagSave, [](const QByteArray&) { return qsizetype(0); });

    before = ReadAll(path);
    song.SaveLyrics({}, QStringLiteral("Artist"), QStringLiteral("Title"), {}, {}, QStringLiteral("[00:01]la"));
    Check(path, before, KeptByEndTagSave, [](const QByteArray&) { return qsizetype(0); });
    return 0;
}
