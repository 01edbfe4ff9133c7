#include "tags/LyricsEmbedding.h"

#include "lyrics/LyricsBlock.h"
#include "tags/EndTags.h"
#include "tags/FileBytes.h"
#include "core/FilePieces.h"
#include "core/TextCodec.h"

#include <QFileInfo>

const char* const kNoAudioDeviceMessage = "There is no audio device open.";

namespace {

const QByteArray kCrLf = QByteArrayLiteral("\r\n");

// An audio file's save manages its earlier block with everything behind it, when the file
// holds both of its markers, and its end tags; a MIDI file's save manages nothing and appends.
std::optional<KeptRange> LyricsRegions(const QString& path, bool midi)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return std::nullopt;
    if (midi)
        return KeptRange{0, file.size()};
    const qint64 audioEnd = file.size() - EndTagSpan(FileBytes(path).View());
    const qint64 begin = LastIndexOfInFile(file, "#Songweaver", audioEnd);
    const qint64 end = LastIndexOfInFile(file, "#End Songweaver", audioEnd);
    if (begin >= 0 && end >= 0)
        return KeptRange{0, std::min(begin, end)};
    return KeptRange{0, audioEnd};
}

bool AppendToFile(const QString& path, const QString& block, bool midi)
{
    const RegionFinder find = [midi](const QString& file) { return LyricsRegions(file, midi); };
    return SpliceFile(path, find, [&](QByteArray&, QByteArray& tail) {
               // The end tags go back behind the block as the very bytes they were. Each write of
               // the old text layer ended its output with CR LF, so every update adds two bytes.
               const BaseTag tags = RemoveBaseTag(tail);
               tail = kCrLf + EncodeText(block);
               SaveBaseTag(tail, tags);
               return true;
           })
           != SpliceResult::Refused;
}

} // namespace

SaveMP3Result SaveMP3(const QString& target, const std::vector<LyricItem>& lyrics,
                      const std::vector<PictureItem>& pictures, const SaveMP3Host& host)
{
    if (!QFileInfo(target).isFile())
        return SaveMP3Result::NoTarget;
    if (!host.MediaOpen && !host.MidiActive) {
        host.Critical(QString::fromLatin1(kNoAudioDeviceMessage));
        return SaveMP3Result::NoAudioDevice;
    }
    if (lyrics.size() <= 1) {
        host.Information(host.Text("MsgSave"));
        return SaveMP3Result::NothingToSave;
    }
    host.WaitCursor(true);
    const QString block = BuildLyricsBlock(lyrics, pictures);

    if (host.MidiActive) {
        const bool saved = AppendToFile(target, block, true);
        host.WaitCursor(false);
        if (!saved)
            host.Critical(host.Text("ErrorWriteFile"));
        return saved ? SaveMP3Result::Saved : SaveMP3Result::WriteFailed;
    }

    MP3Class song(host.Polish);
    song.SetFilename(target);
    if (!song.ReadFile()) {
        // The wait cursor stays on here, as it always has after this message.
        host.Critical(host.Text("ErrorAudioFile"));
        return SaveMP3Result::NotAudio;
    }
    bool saved = false;
    auto rewrite = [&] { saved = AppendToFile(target, block, false); };
    if (host.Release)
        host.Release(target, rewrite);
    else
        rewrite();
    host.WaitCursor(false);
    if (!saved)
        host.Critical(host.Text("ErrorWriteFile"));
    return saved ? SaveMP3Result::Saved : SaveMP3Result::WriteFailed;
}
