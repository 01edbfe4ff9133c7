#pragma once
// Windows and services that write what is asked of them to a journal.

#include "core/Forms.h"
#include "core/MediaGraph.h"
#include "support/TestSupport.h"

#include <vector>

class FakeForm {
protected:
    FakeForm(Journal& journal, QString name) : m_journal(journal), m_name(std::move(name)) {}
    void Log(const QString& what) const { m_journal(m_name + u'.' + what); }
    Journal& m_journal;
    QString m_name;
};

#define FAKE_FORM_BASICS                                                   \
    void Show() override { Log(QStringLiteral("Show")); }                  \
    void Hide() override { Log(QStringLiteral("Hide")); }                  \
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
    void SetProgress(double f) override { progress = f; }
    void SetVolumeSlider(double v) override { Log(QStringLiteral("SetVolumeSlider %1").arg(v)); }
    void Light(int i, int s) override { Log(QStringLiteral("Light %1,%2").arg(i).arg(s)); }
    void SetButton(int i, int s) override { Log(QStringLiteral("SetButton %1,%2").arg(i).arg(s)); }

    QPoint position;
    QString timeText;
    QString timeStyle = QStringLiteral("CURRENT");
    double progress = -1;
};

class FakePlaylist final : public PlaylistForm, FakeForm {
public:
    explicit FakePlaylist(Journal& j) : FakeForm(j, QStringLiteral("UserList")) {}
    FAKE_FORM_BASICS
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
    int ListCount() const override { return static_cast<int>(paths.size()); }
    QString ItemPath(int i) const override { return paths.value(i); }
    void LoadPlaylist(const QString& path) override { Log(QStringLiteral("LoadPlaylist ") + path); }
    int SelectedIndex() const override { return selected; }
    void fnChangeSong(int index) override { Log(QStringLiteral("fnChangeSong %1").arg(index)); }
    void ClearList() override
    {
        paths.clear();
        texts.clear();
        Log(QStringLiteral("ClearList"));
    }
    void AddItem(const QString& text, const QString& time, const QString& path) override
    {
        texts << text + u'|' + time;
        paths << path;
    }
    void SetItemPath(int index, const QString& path) override { paths[index] = path; }
    void SetCurrentPlaying(int index) override
    {
        playing = index;
        Log(QStringLiteral("SetCurrentPlaying %1").arg(index));
    }

    QRect geometry;
    QStringList paths;
    QStringList texts;
    int selected = -1;
    int playing = -1;
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
    double MidiTime() override { return midiTime; }
    void CloseDevice() override { Log(QStringLiteral("CloseDevice")); }
    void ChangeMidi(const QString& file, int mode) override { Log(QStringLiteral("ChangeMidi %1 %2").arg(file).arg(mode)); }
    double midiTime = 0;
};

// Every window of the program, loaded in the usual order.
class FakeWindows final : public FormProvider {
public:
    explicit FakeWindows(Journal& j) : player(j), userList(j), lyric(j), midiEq(j) {}
    PlayerForm& Player() override { return player; }
    PlaylistForm* UserList() override { return &userList; }
    ControlsForm* MidiEq() override { return &midiEq; }
    KaraokeForm* Lyric() override { return &lyric; }
    std::vector<Form*> LoadedForms() override { return {&player, &userList, &lyric, &midiEq}; }

    FakePlayer player;
    FakePlaylist userList;
    FakeKaraoke lyric;
    FakeControls midiEq;
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

class FakeMedia final : public MediaGraph {
public:
    FakeMedia(Journal& j, QString name) : m_journal(j), m_name(std::move(name)) {}
    ~FakeMedia() override { m_journal(m_name + QStringLiteral(".Release")); }
    void Stop() override { m_journal(m_name + QStringLiteral(".Stop")); }
    double get_CurrentPosition() override { return position; }
    double get_Duration() override { return duration; }
    double position = 0;
    double duration = 0;

private:
    Journal& m_journal;
    QString m_name;
};
