// Song loading: OpenSong and the ways into it (command line, the open dialog, Next, Previous).

#include "core/AppState.h"
#include "lyrics/LyricsLoader.h"
#include "playback/MediaSession.h"
#include "playback/PlayerTransport.h"
#include "playback/PlayerWindow.h"
#include "text/Numbers.h"

#include <QCoreApplication>
#include <QFileDialog>
#include <QFileInfo>

QString SongListText(const MP3Class& song)
{
    const QString artist = song.Artist();
    const QString title = song.Title();
    if (title.isEmpty())
        return song.BaseName();
    return artist.isEmpty() ? title : artist + QStringLiteral(" - ") + title;
}

bool PlayerTransport::OpenSong(const QString& path, bool autoplay)
{
    CloseSong();
    ResetLyricsData(m_state.Lyrics);
    if (!QFileInfo(path).isFile())
        return false;
    m_ticks.Stop();

    m_state.CurrentInfo = std::make_unique<MP3Class>(m_state.Language.IsPolish);
    m_state.CurrentInfo->SetFilename(path);
    m_state.CurrentInfo->ReadFile();
    if (m_state.CurrentInfo->format() == u"MIDI")
        OpenMidiSong();
    else
        OpenAudioSong(path, autoplay);
    return true;
}

void PlayerTransport::OpenAudioSong(const QString& path, bool autoplay)
{
    m_state.IsMidi = false;
    if (!CreateGraph(path)) {
        // The one error of a load: the file is there but cannot be played.
        CloseSong();
        if (m_messages)
            m_messages->Critical(m_state.Language.GetText(QStringLiteral("ErrorAudioRead")));
        return;
    }
    m_state.CurrentFile = path;
    if (autoplay) {
        bool resume = false;
        PlaySong(resume);
    }
    if (MediaSession* session = Session())
        session->put_Volume(GetVolume());
    ShowSongLabels();
    const MP3Class& info = *m_state.CurrentInfo;
    m_player.SetQualityLabels(info.Bitrate() > 0 ? QString::number(info.Bitrate()) + QStringLiteral(" Kb/s") : QString(),
                              info.SampleRate() > 0 ? QString::number(info.SampleRate()) + QStringLiteral(" Hz") : QString());

    KaraokeForm* lyric = m_forms.Lyric();
    if (m_state.KaraokeOpen && lyric) {
        lyric->ClearLyrics();
        lyric->ClearNewLyrics();
    }
    QCoreApplication::processEvents();
    LoadSongLyrics();
    if (m_state.KaraokeOpen && lyric)
        lyric->ChangeLyrics();
}

void PlayerTransport::LoadSongLyrics()
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
    if (LoadLyrics(m_state.Lyrics, m_state.CurrentFile, env))
        return;
    // A song without lyrics of its own shows what the editor is writing for it.
    if (m_state.EditorOpen && m_state.EditorFile == m_state.CurrentFile && m_state.Lyrics.EditLyrics.size() > 1) {
        m_state.Lyrics.PlayLyrics = m_state.Lyrics.EditLyrics;
        m_state.Lyrics.PlayPictures = m_state.Lyrics.EditPictures;
        BuildPictureOrder(m_state.Lyrics);
        m_state.Lyrics.LongestLine = FindLongestLine(m_state.Lyrics.PlayLyrics, env.Font);
        m_state.Lyrics.LyricsTitleText = MakeLyricsTitle(m_state.Lyrics, env.Tags);
    }
}

void PlayerTransport::OpenMidiSong()
{
    m_state.IsMidi = true;
    KaraokeForm* lyric = m_forms.Lyric();
    if (m_state.KaraokeOpen && lyric) {
        lyric->ClearLyrics();
        lyric->ClearNewLyrics();
    }
    m_state.MidiDuration = m_state.CurrentInfo->Length();
    if (ControlsForm* midi = m_forms.MidiEq())
        midi->ChangeMidi(m_state.CurrentInfo->Filename(), 0);
    ShowSongLabels();
    m_state.EditorFile = m_state.CurrentInfo->Filename();
    m_state.CurrentFile = m_state.EditorFile;
}

void PlayerTransport::ShowSongLabels()
{
    const MP3Class& info = *m_state.CurrentInfo;
    const QString title = info.Title();
    m_player.PutLabels(info.Artist(), title.isEmpty() ? info.BaseName() : title);
}

void PlayerTransport::OpenFromCommandLine(const QString& commandLine)
{
    const QString path = CommandLineSongPath(commandLine);
    if (!OpenSong(path, false))
        return;
    if (PlaylistForm* list = m_forms.UserList()) {
        list->ClearList();
        list->AddItem(SongListText(*m_state.CurrentInfo), FormatTime(m_state.CurrentInfo->Length()), path);
        m_state.PlayingIndex = 0;
        list->SetCurrentPlaying(0);
        list->SetItemPath(0, m_state.CurrentFile);
    }
    if (m_state.MediaControl) {
        bool resume = false;
        PlaySong(resume);
    }
}

void PlayerTransport::OpenFileDialog()
{
    if (m_state.Recording || m_state.EditorOpen)
        return;
    const QString title = QStringLiteral("SWV: ") + m_state.Language.GetText(QStringLiteral("DialogAddFiles"));
    const QString filter = m_state.Language.GetText(QStringLiteral("FilterOpenAudio"))
                           + QStringLiteral(" (*.wav *.mp3 *.mpc *.ape *.ogg *.mid *.midi *.kar)");
    const QStringList files = QFileDialog::getOpenFileNames(&m_player, title, m_state.Theme->MusicPath, filter);
    if (files.isEmpty())
        return;
    m_state.Theme->MusicPath = QFileInfo(files.first()).absolutePath();
    PlaylistForm* list = m_forms.UserList();
    if (!list) {
        OpenSong(files.first(), true);
        return;
    }
    list->ClearList();
    for (qsizetype i = 0; i < files.size(); ++i) {
        MP3Class song(m_state.Language.IsPolish);
        song.SetFilename(files[i]);
        song.ReadFile();
        list->AddItem(SongListText(song), FormatTime(std::max(0.0, song.Length())), files[i]);
        QCoreApplication::processEvents();
        if (i == 0)
            list->fnChangeSong(0);
    }
}

bool PlayerTransport::WalkList(PlaylistForm& list, int first, int last)
{
    const int step = first <= last ? 1 : -1;
    for (int index = first; index != last + step; index += step) {
        list.SetCurrentPlaying(index);
        m_state.PlayingIndex = int16_t(index);
        if (OpenSong(list.ItemPath(index), true)) {
            // Closing the old song cleared the index; the row that opened is the one playing.
            m_state.PlayingIndex = int16_t(index);
            return true;
        }
    }
    return false;
}

PlaylistForm* PlayerTransport::ListToWalk()
{
    // While the editor is open the end of a song never moves on; an empty list ends the song.
    if (m_state.EditorOpen) {
        StopSong();
        return nullptr;
    }
    PlaylistForm* list = m_forms.UserList();
    if (!list || list->ListCount() == 0) {
        CloseSong();
        return nullptr;
    }
    return list;
}

void PlayerTransport::DALEJ()
{
    PlaylistForm* list = ListToWalk();
    if (!list)
        return;
    if (list->ListCount() == 1) {
        const QString path = list->ItemPath(0);
        if (path == m_state.CurrentFile && (m_state.MediaControl || m_state.IsMidi))
            return;
        if (OpenSong(path, true)) {
            m_state.PlayingIndex = 0;
            list->SetCurrentPlaying(0);
            QCoreApplication::processEvents();
            return;
        }
        CloseSong();
        return;
    }
    int first = m_state.PlayingIndex + 1;
    if (first > list->ListCount() - 1)
        first = 0;
    if (!WalkList(*list, first, list->ListCount() - 1))
        CloseSong();
}

void PlayerTransport::WSTECZ()
{
    PlaylistForm* list = ListToWalk();
    if (!list)
        return;
    if (list->ListCount() == 1) {
        // Previous on a one-song list starts that song again.
        if (OpenSong(list->ItemPath(0), true)) {
            m_state.PlayingIndex = 0;
            list->SetCurrentPlaying(0);
        } else
            CloseSong();
        return;
    }
    int first = m_state.PlayingIndex - 1;
    if (first < 0)
        first = list->ListCount() - 1;
    if (!WalkList(*list, first, 0))
        CloseSong();
}
