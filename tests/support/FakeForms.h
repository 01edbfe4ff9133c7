#pragma once
// Windows and services that write what is asked of them to a journal.

#include "audio/SongSession.h"
#include "core/Forms.h"
#include "playback/PlayerCommands.h"
#include "support/TestSupport.h"

#include <set>
#include <vector>

class FakeForm {
protected:
    FakeForm(Journal& journal, QString name) : m_journal(journal), m_name(std::move(name)) {}
    void Log(const QString& what) const { m_journal(m_name + u'.' + what); }
    Journal& m_journal;
    QString m_name;
};

#define FAKE_FORM_BASICS                                                              \
    void Show() override { Log(QStringLiteral("Show")); }                             \
    void Hide() override { Log(QStringLiteral("Hide")); }                             \
    void Minimize() override { Log(QStringLiteral("Minimize")); }                     \
    void SetTopMost(bool f) override { Log(QStringLiteral("SetTopMost %1").arg(f)); } \
    void Unload() override { Log(QStringLiteral("Unload")); }

class FakePlayer final : public PlayerForm, FakeForm {
public:
    explicit FakePlayer(Journal& j) : FakeForm(j, QStringLiteral("Player")) {}
    FAKE_FORM_BASICS
    void DockAsFirstWindow() override { Log(QStringLiteral("DockAsFirstWindow")); }
    void ApplySkin() override { Log(QStringLiteral("ApplySkin")); }
    void BuildMenus() override { Log(QStringLiteral("BuildMenus")); }
    QRect Geometry() const override { return QRect(position, QSize(400, 150)); }
    QRect ScreenGeometry() const override { return QRect(0, 0, 1920, 1080); }
    void MoveTo(QPoint p) override
    {
        position = p;
        Log(QStringLiteral("MoveTo %1,%2").arg(p.x()).arg(p.y()));
    }
    void SetTimeText(const QString& t) override { timeText = t; }
    QString TimeStyle() const override { return timeStyle; }
    void SetTimeStyle(const QString& style) override { timeStyle = style; }
    void SetProgress(double f) override { progress = f; }
    double VolumeValue() const override { return volume; }
    void SetVolumeSlider(double v) override { Log(QStringLiteral("SetVolumeSlider %1").arg(v)); }
    void Light(PlayerLamp lamp, bool on) override
    {
        lamps[size_t(lamp)] = on;
        Log(QStringLiteral("Light %1,%2").arg(int(lamp)).arg(int(on)));
    }
    void SetButton(PlayerButton button, int s) override
    {
        Log(QStringLiteral("SetButton %1,%2").arg(int(button)).arg(s));
    }
    void PutLabels(const QString& a, const QString& t) override
    {
        artist = a;
        title = t;
    }
    void SetQualityLabels(const QString& b, const QString& hz) override
    {
        bitrate = b;
        sampleRate = hz;
    }

    QPoint position;
    QString timeText;
    QString timeStyle = QStringLiteral("CURRENT");
    double progress = -1;
    double volume = 1.0;
    bool lamps[6] = {};
    bool Lit(PlayerLamp lamp) const { return lamps[size_t(lamp)]; }
    QString artist, title, bitrate, sampleRate;
};

class FakePlaylistWindow final : public PlaylistForm, FakeForm {
public:
    explicit FakePlaylistWindow(Journal& j) : FakeForm(j, QStringLiteral("UserList")) {}
    FAKE_FORM_BASICS
    QRect Geometry() const override { return geometry; }
    void SetGeometry(const QRect& g) override
    {
        geometry = g;
        Log(QStringLiteral("SetGeometry"));
    }
    void MoveTo(QPoint p) override
    {
        geometry.moveTopLeft(p);
        Log(QStringLiteral("MoveTo %1,%2").arg(p.x()).arg(p.y()));
    }
    QRect geometry{0, 0, 360, 300};
};

class FakeSongList final : public SongList {
public:
    explicit FakeSongList(Journal& j) : m_journal(j) {}
    int ListCount() const override { return static_cast<int>(paths.size()); }
    QString ItemPath(int i) const override { return paths.value(i); }
    int SelectedIndex() const override { return selected; }
    void ClearList() override
    {
        paths.clear();
        texts.clear();
        m_journal(QStringLiteral("List.ClearList"));
    }
    void AddItem(const QString& text, const QString& time, const QString& path) override
    {
        texts << text + u'|' + time;
        paths << path;
    }
    void AppendFiles(const QStringList& files) override
    {
        for (const QString& file : files)
            AddItem(QString(), QString(), file);
    }
    void SetItemPath(int index, const QString& path) override { paths[index] = path; }
    void SetItemText(int index, const QString& text) override
    {
        texts[index] = text + texts[index].mid(texts[index].indexOf(u'|'));
    }
    void SetCurrentPlaying(int index) override
    {
        playing = index;
        m_journal(QStringLiteral("List.SetCurrentPlaying %1").arg(index));
    }
    void MarkMissing(int index, bool isMissing) override
    {
        if (isMissing)
            missing.insert(index);
        else
            missing.erase(index);
    }

    QStringList paths;
    std::set<int> missing;
    QStringList texts;
    int selected = -1;
    int playing = -1;

private:
    Journal& m_journal;
};

class FakeKaraoke final : public KaraokeForm, FakeForm {
public:
    explicit FakeKaraoke(Journal& j) : FakeForm(j, QStringLiteral("Lyric")) {}
    FAKE_FORM_BASICS
    void IsPlaying(double& position) override
    {
        seen.push_back(position);
        position -= offset;
    }
    void ClearLyrics() override { Log(QStringLiteral("ClearLyrics")); }
    void GetLastPos() override { Log(QStringLiteral("GetLastPos")); }
    void ChangeLyrics() override { Log(QStringLiteral("ChangeLyrics")); }
    void ClearNewLyrics() override { Log(QStringLiteral("ClearNewLyrics")); }
    void FadeLyrics(int16_t& mode) override { Log(QStringLiteral("FadeLyrics %1").arg(mode)); }
    void FitLyrics() override { Log(QStringLiteral("FitLyrics")); }
    std::vector<double> seen;
    double offset = 0;
};

class FakeControls final : public ControlsForm, FakeForm {
public:
    explicit FakeControls(Journal& j) : FakeForm(j, QStringLiteral("MidiEq")) {}
    FAKE_FORM_BASICS
    void CloseDevice() override { Log(QStringLiteral("CloseDevice")); }
    void ChangeMidi(const QString& file, int mode) override { Log(QStringLiteral("ChangeMidi %1 %2").arg(file).arg(mode)); }
    void Refresh() override { Log(QStringLiteral("Refresh")); }
};

class FakeEditor final : public EditorForm, FakeForm {
public:
    explicit FakeEditor(Journal& j) : FakeForm(j, QStringLiteral("Editor")) {}
    FAKE_FORM_BASICS
    void Open() override { Log(QStringLiteral("Open")); }
    bool CloseByUser() override
    {
        Log(QStringLiteral("CloseByUser"));
        return closes;
    }
    bool closes = true;  // the user's answer about changed rows
};

// Every window of the program; each is loaded by its Load call, or from the start.
class FakeWindows final : public FormProvider {
public:
    explicit FakeWindows(Journal& j, bool allLoaded = true) : player(j), userList(j), lyric(j), midiEq(j), editor(j)
    {
        if (allLoaded)
            m_loaded = {&player, &userList, &lyric, &midiEq, &editor};
        else
            m_loaded = {&player};
    }
    PlayerForm& Player() override { return player; }
    PlaylistForm* UserList() override { return Loaded(&userList) ? &userList : nullptr; }
    KaraokeForm* Lyric() override { return Loaded(&lyric) ? &lyric : nullptr; }
    ControlsForm* MidiEq() override { return Loaded(&midiEq) ? &midiEq : nullptr; }
    EditorForm* Editor() override { return Loaded(&editor) ? &editor : nullptr; }
    PlaylistForm& LoadUserList() override { return Load(userList); }
    KaraokeForm& LoadLyric() override { return Load(lyric); }
    ControlsForm& LoadMidiEq() override { return Load(midiEq); }
    EditorForm& LoadEditor() override { return Load(editor); }
    std::vector<Form*> LoadedForms() override { return m_loaded; }
    void ShowFileInfo(const QString& format, const QString& path) override { shownInfo << format + u' ' + path; }
    void ShowPreferences(int tab) override { shownInfo << QStringLiteral("Preferences %1").arg(tab); }
    void ShowAbout() override { shownInfo << QStringLiteral("About"); }
    void ShowLibrary() override { shownInfo << QStringLiteral("Library"); }
    void ShowSingers() override { shownInfo << QStringLiteral("Singers"); }
    void ShowRemote() override { shownInfo << QStringLiteral("Remote"); }
    void ShowTutorial() override { shownInfo << QStringLiteral("Tutorial"); }
    QStringList shownInfo;  // the dialogs and pages shown, in order

    FakePlayer player;
    FakePlaylistWindow userList;
    FakeKaraoke lyric;
    FakeControls midiEq;
    FakeEditor editor;

private:
    bool Loaded(Form* form) const { return std::find(m_loaded.begin(), m_loaded.end(), form) != m_loaded.end(); }
    template <typename T>
    T& Load(T& form)
    {
        if (!Loaded(&form))
            m_loaded.push_back(&form);
        return form;
    }
    std::vector<Form*> m_loaded;
};

class FakeTransport final : public SongTransport {
public:
    explicit FakeTransport(Journal& j) : m_journal(j) {}
    void StopSong() override { m_journal(QStringLiteral("StopSong")); }
    void DALEJ() override { m_journal(QStringLiteral("DALEJ")); }
    void OpenFromCommandLine(const QString& c) override { m_journal(QStringLiteral("OpenFromCommandLine ") + c); }

private:
    Journal& m_journal;
};

// A session whose position and length the test sets.
class FakeSession final : public SongSession {
public:
    FakeSession(Journal& j, QString name) : m_journal(j), m_name(std::move(name)) {}
    ~FakeSession() override { m_journal(m_name + QStringLiteral(".Release")); }
    bool RenderFile(const QString&) override { return true; }
    QString ErrorText() const override { return {}; }
    void Run() override { state = Running; }
    void Pause() override { state = Paused; }
    void Stop() override
    {
        state = Stopped;
        m_journal(m_name + QStringLiteral(".Stop"));
    }
    int GetState() const override { return state; }
    double get_Duration() const override { return duration; }
    double get_CurrentPosition() const override { return position; }
    void put_CurrentPosition(double seconds) override { position = seconds; }
    double get_Rate() const override { return rate; }
    void put_Rate(double r) override { rate = r; }
    void put_Volume(int v) override { volume = v; }
    int get_Volume() const override { return volume; }
    void put_Balance(int) override {}

    double position = 0;
    double duration = 0;
    double rate = 1.0;
    int volume = 0;
    int state = Stopped;

private:
    Journal& m_journal;
    QString m_name;
};

class FakeTray final : public TrayIcon {
public:
    bool Available() const override { return available; }
    void Show() override { shown = true; }
    void Hide() override { shown = false; }
    bool available = true;
    bool shown = false;
};
