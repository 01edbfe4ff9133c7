// Song loading: OpenSong and the ways into it (command line, the open dialog, playlist rows,
// Next, Previous).

#include "cdg/CdgSong.h"
#include "core/Dialogs.h"
#include "core/Numbers.h"
#include "formats/LyricsFiles.h"
#include "lyrics/LyricsLoader.h"
#include "midi/KaraokeWords.h"
#include "playback/MediaSession.h"
#include "playback/PlayerState.h"
#include "playback/PlayerTransport.h"
#include "playback/SongSound.h"
#include "video/VideoStream.h"

#include <QFileInfo>

QString SongListText(const MP3Class& song)
{
    const QString artist = song.Artist();
    const QString title = song.Title();
    if (title.isEmpty())
        return song.BaseName();
    return artist.isEmpty() ? title : artist + QStringLiteral(" - ") + title;
}

QString PlayerTransport::AudioOfSongFile(const QString& path)
{
    m_songFileLyrics.reset();
    m_songFileFault.clear();
    // A disc's graphics file opens the song it draws, a zip the pair it holds.
    if ((IsCdgName(path) || IsZipName(path)) && QFileInfo(path).isFile()) {
        const QString audio = AudioOfKaraokeFile(path, m_zipSong);
        if (m_zipSong && m_zipSong->Fault() != ZipSong::Problem::None) {
            m_songFileFault = ZipFaultText(*m_zipSong);
            m_zipSong.reset();
        } else if (audio.isEmpty()) {
            m_songFileFault = m_state.Language.GetText(QStringLiteral("ReasonCdgNoAudio"));
        }
        return audio.isEmpty() ? path : audio;
    }
    if (FormatOfFile(path) != LyricsFormat::UltraStar)
        return path;
    // An UltraStar song file plays the audio it names, with its own words.
    auto lyrics = ReadTimedLyricsFile(path, m_state.Language.IsPolish);
    const QString audio = lyrics ? UltraStarAudioPath(path, *lyrics) : QString();
    if (audio.isEmpty())
        return path;
    m_songFileLyrics = std::move(lyrics);
    return audio;
}

QString PlayerTransport::ZipOfSong(const QString& audio) const
{
    return m_zipSong && !audio.isEmpty() && m_zipSong->Audio() == audio ? m_zipSong->Source() : QString();
}

QString PlayerTransport::ZipFaultText(const ZipSong& zip) const
{
    switch (zip.Fault()) {
    case ZipSong::Problem::NoPair:
        return m_state.Language.GetText(QStringLiteral("ReasonZipNoPair"));
    case ZipSong::Problem::BrokenMember:
        return MessageNamingFile(m_state.Language.GetText(QStringLiteral("ReasonZipBroken")), zip.BrokenName());
    default:
        return m_state.Language.GetText(QStringLiteral("ReasonZipUnreadable"));
    }
}

bool PlayerTransport::OpenSong(const QString& songFile, bool autoplay)
{
    // A load runs to its end before the next one starts: one arriving meanwhile is refused.
    if (m_opening)
        return false;
    m_opening = true;
    CloseSong();
    ResetLyricsData(m_state.Lyrics);
    const QString path = AudioOfSongFile(songFile);
    const bool exists = QFileInfo(path).isFile();
    if (!m_songFileFault.isEmpty()) {
        ReportUnplayable(songFile);
    } else if (exists) {
        m_ticks.Stop();
        m_state.CurrentInfo = std::make_unique<MP3Class>(m_state.Language.IsPolish);
        m_state.CurrentInfo->SetFilename(path);
        m_state.CurrentInfo->ReadFile();
        if (m_state.CurrentInfo->format() == u"MIDI")
            OpenMidiSong(path);
        else
            OpenAudioSong(path, autoplay);
    } else if (KaraokeForm* lyric = m_forms.Lyric(); m_state.KaraokeOpen && lyric) {
        // Nothing of the song before stays on the karaoke window.
        lyric->ClearNewLyrics();
    }
    m_opening = false;
    return exists || !m_songFileFault.isEmpty();
}

QString PlayerTransport::UnplayableReason(const QString& path) const
{
    if (!m_unavailableKind.isEmpty())
        return m_unavailableKind;
    if (!m_songFileFault.isEmpty())
        return m_songFileFault;
    const char* reason = "ReasonDamaged";
    if (QFileInfo(path).size() == 0)
        reason = "ReasonEmpty";
    else if (!m_state.CurrentInfo || m_state.CurrentInfo->format().isEmpty())
        reason = "ReasonUnknown";
    return m_state.Language.GetText(QString::fromLatin1(reason));
}

void PlayerTransport::ReportUnplayable(const QString& path)
{
    const QString reason = UnplayableReason(path);
    CloseSong();
    if (!m_messages)
        return;
    // What keeps a whole kind of song from playing is said once as it is; after that each such
    // song is named with it.
    if (!m_unavailableKind.isEmpty() && !m_unavailableReported) {
        m_unavailableReported = true;
        m_messages->Critical(m_unavailableKind);
        return;
    }
    m_messages->Critical(MessageNamingFile(m_state.Language.GetText(QStringLiteral("ErrorSongUnplayable")), path) +
                         QStringLiteral("\r\n") + reason);
}

void PlayerTransport::OpenAudioSong(const QString& path, bool autoplay)
{
    m_state.IsMidi = false;
    if (!CreateGraph(path)) {
        ReportUnplayable(path);
        return;
    }
    m_state.CurrentFile = path;
    RecallSongSound(m_state, path);
    if (ControlsForm* midi = m_forms.MidiEq())
        midi->Refresh();
    if (autoplay)
        PlaySong();
    ShowSongLabels();
    const MP3Class& info = *m_state.CurrentInfo;
    Player().SetQualityLabels(info.Bitrate() > 0 ? QString::number(info.Bitrate()) + QStringLiteral(" Kb/s") : QString(),
                              info.SampleRate() > 0 ? QString::number(info.SampleRate()) + QStringLiteral(" Hz") : QString());

    KaraokeForm* lyric = m_forms.Lyric();
    if (m_state.KaraokeOpen && lyric) {
        lyric->ClearLyrics();
        lyric->ClearNewLyrics();
    }
    LoadSongLyrics();
    ShowGraphicsOf(path);
    ShowVideoOf(path);
    if (m_state.KaraokeOpen && lyric)
        lyric->ChangeLyrics();
}

LyricsEnvironment PlayerTransport::LyricsEnvironmentOfSong()
{
    KaraokeForm* lyric = m_forms.Lyric();
    LyricsEnvironment env;
    env.Font = m_state.Theme->LyricsFontFace();
    env.Polish = m_state.Language.IsPolish;
    env.Tags = m_state.CurrentInfo.get();
    env.Refit = [this, lyric] {
        if (m_state.KaraokeOpen && lyric && m_state.Theme->LyricsFitFont) {
            lyric->FitLyrics();
            lyric->ChangeLyrics();
        }
    };
    return env;
}

void PlayerTransport::LoadSongLyrics()
{
    const LyricsEnvironment env = LyricsEnvironmentOfSong();
    if (m_songFileLyrics) {
        ShowTimedLyrics(m_state.Lyrics, *m_songFileLyrics, env);
        return;
    }
    if (LoadLyrics(m_state.Lyrics, m_state.CurrentFile, env) || LoadSiblingLyrics(m_state.Lyrics, m_state.CurrentFile, env))
        return;
    // A zipped song's lyrics file stands beside the zip, where the editor saves it.
    if (const QString zip = ZipOfSong(m_state.CurrentFile); !zip.isEmpty() && LoadLyrics(m_state.Lyrics, zip, env))
        return;
    // A song without lyrics of its own shows what the editor is writing for it.
    if (m_state.EditorOpen && m_state.EditorFile == m_state.CurrentFile && m_state.Lyrics.EditLyrics.size() > 1) {
        m_state.Lyrics.PlayLyrics = m_state.Lyrics.EditLyrics;
        m_state.Lyrics.PlayPictures = m_state.Lyrics.EditPictures;
        FinishShownLyrics(m_state.Lyrics, env);
        return;
    }
    // The karaoke window says why a song that has lyrics shows none.
    if (const QString& damaged = m_state.Lyrics.DamagedLyricsFile; !damaged.isEmpty())
        m_state.Lyrics.LyricsTitleText = m_state.Language.GetText(QStringLiteral("LyricsDamaged")) + u'|' +
                                         QFileInfo(damaged).fileName();
}

void PlayerTransport::ShowGraphicsOf(const QString& path)
{
    const QString cdg = CdgFileOf(path);
    if (cdg.isEmpty())
        return;
    m_state.Lyrics.Graphics = ReadCdgFile(cdg);
    if (!m_state.Lyrics.Graphics)
        m_state.Lyrics.LyricsTitleText =
            m_state.Language.GetText(QStringLiteral("GraphicsDamaged")) + u'|' + QFileInfo(cdg).fileName();
}

void PlayerTransport::ShowVideoOf(const QString& path)
{
    if (m_state.Lyrics.Graphics)
        return;
    auto video = std::make_shared<VideoStream>(path);
    if (!video->Facts().Valid())
        return;
    if (!video->Failed())
        m_state.Lyrics.Video = std::move(video);
    else if (m_state.Lyrics.PlayLyrics.size() <= 1)
        m_state.Lyrics.LyricsTitleText =
            m_state.Language.GetText(QStringLiteral("VideoDamaged")) + u'|' + QFileInfo(path).fileName();
}

void PlayerTransport::OpenMidiSong(const QString& path)
{
    m_state.IsMidi = true;
    KaraokeForm* lyric = m_forms.Lyric();
    if (m_state.KaraokeOpen && lyric) {
        lyric->ClearLyrics();
        lyric->ClearNewLyrics();
    }
    if (!CreateGraph(path)) {
        ReportUnplayable(path);
        return;
    }
    m_state.EditorFile = m_state.CurrentInfo->Filename();
    m_state.CurrentFile = m_state.EditorFile;
    // The words of a MIDI song come from the file itself; there is no search.
    if (!LoadMidiLyrics(m_state.Lyrics, m_state.Midi, path, LyricsEnvironmentOfSong()))
        LoadSiblingLyrics(m_state.Lyrics, path, LyricsEnvironmentOfSong());
    RecallSongSound(m_state, path);
    if (ControlsForm* midi = m_forms.MidiEq())
        midi->ChangeMidi(m_state.CurrentInfo->Filename(), 0);
    // A MIDI song starts as soon as it is loaded.
    PlaySong();
    if (m_state.KaraokeOpen && lyric)
        lyric->ChangeLyrics();
    ShowSongLabels();
    // The label of the bit rate shows the time signature, under the word "Tempo".
    Player().SetQualityLabels(QStringLiteral("Tempo: %1/%2").arg(m_state.Midi.BeatsPerMeasure).arg(m_state.Midi.Beat),
                              QString());
}

void PlayerTransport::ShowVerse(int track)
{
    if (!m_state.IsMidi || !m_state.SongOpen() || track == m_state.Midi.Verse)
        return;
    // Only the words change: the song's figures, with the user's channel settings, stay.
    MidiFigures kept = m_state.Midi;
    LoadMidiLyrics(m_state.Lyrics, m_state.Midi, m_state.CurrentFile, LyricsEnvironmentOfSong(), track);
    kept.Verses = m_state.Midi.Verses;
    kept.Verse = m_state.Midi.Verse;
    m_state.Midi = kept;
    if (KaraokeForm* lyric = m_forms.Lyric(); m_state.KaraokeOpen && lyric) {
        lyric->ChangeLyrics();
        lyric->GetLastPos();
    }
    if (ControlsForm* midi = m_forms.MidiEq())
        midi->Refresh();
}

void PlayerTransport::ShowSongLabels()
{
    const MP3Class& info = *m_state.CurrentInfo;
    const QString title = info.Title();
    Player().PutLabels(info.Artist(), title.isEmpty() ? info.BaseName() : title);
}

void PlayerTransport::OpenFromCommandLine(const QString& commandLine)
{
    const QString path = CommandLineSongPath(commandLine);
    if (!OpenSong(path, false) || !m_state.CurrentInfo)
        return;
    m_state.Recent.Add(m_state.CurrentFile);
    m_list.ClearList();
    m_list.AddItem(SongListText(*m_state.CurrentInfo), FormatTime(m_state.CurrentInfo->Length()), path);
    m_state.PlayingIndex = 0;
    m_list.SetCurrentPlaying(0);
    m_list.SetItemPath(0, m_state.CurrentFile);
    if (m_state.Session && !m_state.IsMidi)
        PlaySong();
}

void PlayerTransport::OpenFiles(const QStringList& files)
{
    if (files.isEmpty())
        return;
    m_list.ClearList();
    MP3Class first(m_state.Language.IsPolish);
    first.SetFilename(files.first());
    first.ReadFile();
    m_list.AddItem(SongListText(first), FormatTime(std::max(0.0, first.Length())), files.first());
    // The first song plays while the others are still being read.
    fnChangeSong(0);
    if (m_state.CurrentFile == files.first())
        m_state.Recent.Add(files.first());
    m_list.AppendFiles(files.mid(1));
}

void PlayerTransport::fnChangeSong(int index)
{
    if (index < 0 || index >= m_list.ListCount())
        return;
    // The row is marked before the song is read, also when the read then fails.
    m_state.PlayingIndex = int16_t(index);
    m_list.SetCurrentPlaying(index);
    if (OpenListedSong(index)) {
        m_state.PlayingIndex = int16_t(index);
        m_list.SetCurrentPlaying(index);
    } else if (m_messages && !QFileInfo(m_list.ItemPath(index)).isFile()) {
        m_messages->Critical(
            MessageNamingFile(m_state.Language.GetText(QStringLiteral("SongMissing")), m_list.ItemPath(index)));
    }
}

bool PlayerTransport::OpenListedSong(int index)
{
    const QString path = m_list.ItemPath(index);
    m_list.MarkMissing(index, !QFileInfo(path).isFile());
    return OpenSong(path, true);
}

bool PlayerTransport::WalkList(int first, int last)
{
    const int step = first <= last ? 1 : -1;
    for (int index = first; index != last + step; index += step) {
        m_list.SetCurrentPlaying(index);
        m_state.PlayingIndex = int16_t(index);
        if (OpenListedSong(index)) {
            // Closing the old song cleared the index; the row that opened is the one playing.
            m_state.PlayingIndex = int16_t(index);
            return true;
        }
    }
    return false;
}

bool PlayerTransport::MayWalkList()
{
    // While the editor is open the end of a song never moves on; an empty list ends the song.
    if (m_state.EditorOpen) {
        StopSong();
        return false;
    }
    if (m_list.ListCount() == 0) {
        CloseSong();
        return false;
    }
    return true;
}

void PlayerTransport::DALEJ()
{
    if (m_opening || !MayWalkList())
        return;
    if (m_list.ListCount() == 1) {
        const QString path = m_list.ItemPath(0);
        if (path == m_state.CurrentFile && m_state.SongOpen())
            return;
        if (OpenSong(path, true)) {
            m_state.PlayingIndex = 0;
            m_list.SetCurrentPlaying(0);
            return;
        }
        CloseSong();
        return;
    }
    int first = m_state.PlayingIndex + 1;
    if (first > m_list.ListCount() - 1)
        first = 0;
    if (!WalkList(first, m_list.ListCount() - 1))
        CloseSong();
}

void PlayerTransport::WSTECZ()
{
    if (m_opening || !MayWalkList())
        return;
    if (m_list.ListCount() == 1) {
        // Previous on a one-song list starts that song again.
        if (OpenSong(m_list.ItemPath(0), true)) {
            m_state.PlayingIndex = 0;
            m_list.SetCurrentPlaying(0);
        } else
            CloseSong();
        return;
    }
    int first = m_state.PlayingIndex - 1;
    if (first < 0)
        first = m_list.ListCount() - 1;
    if (!WalkList(first, 0))
        CloseSong();
}
