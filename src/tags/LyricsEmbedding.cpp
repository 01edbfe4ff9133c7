#include "tags/LyricsEmbedding.h"

#include "lyrics/LyricsBlock.h"
#include "tags/EndTags.h"
#include "tags/FileBytes.h"
#include "core/TextCodec.h"

#include <QFileInfo>

const char* const kNoAudioDeviceMessage = "There is no audio device open.";

namespace {

const QByteArray kCrLf = QByteArrayLiteral("\r\n");

// Everything before the earlier block, when the file holds both of its markers.
void CutEarlierBlock(QByteArray& image)
{
    const qsizetype begin = image.lastIndexOf("#Songweaver");
    const qsizetype end = image.lastIndexOf("#End Songweaver");
    if (begin >= 0 && end >= 0)
        image.truncate(std::min(begin, end));
}

bool AppendToFile(const QString& path, const QString& block, bool midi)
{
    const FileBytes file(path);
    return file.IsOpen() && ReplaceFileContent(path, EmbedLyricsBlock(file.View().toByteArray(), block, midi));
}

} // namespace

QByteArray EmbedLyricsBlock(QByteArray image, const QString& block, bool midi)
{
    // Each write of the old text layer ended its output with CR LF, so every update adds two bytes.
    if (midi)
        return image + kCrLf + EncodeText(block);
    const BaseTag tags = RemoveBaseTag(image);
    CutEarlierBlock(image);
    image += kCrLf + EncodeText(block);
    SaveBaseTag(image, tags);
    return image;
}

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
