#pragma once
// The MIDI window: 16 channel strips (mute, volume, balance, the instrument) of the MIDI song
// that plays, the transpose and tempo knobs, and the equaliser face with the whole-song balance,
// one face at a time behind the switch in the caption.

#include "core/Forms.h"

#include <QTimer>
#include <QWidget>
#include <array>
#include <functional>

class Docking;
class Equalizer;
class QMenu;
class SettingsStore;
class VoiceCommands;
struct PlayerState;

class MidiEq final : public QWidget, public ControlsForm {
    Q_OBJECT
public:
    // One channel strip as it shows: unused channels have no control enabled.
    struct Strip {
        bool enabled = false;
        bool muted = false;
        int volume = 0;
        int balance = 64;
        int patch = 0;
    };
    enum class Face { Strips, Equaliser };

    MidiEq(PlayerState& state, SettingsStore& store, Docking& docking);
    ~MidiEq() override;
    // The equaliser face's tone knobs, level bar and microphone switch work once these are given.
    void AttachVoice(Equalizer& equalizer, VoiceCommands& voice);

    void Show() override;
    void Hide() override;
    void Minimize() override { showMinimized(); }
    void SetTopMost(bool flag) override;
    void Unload() override;
    void CloseDevice() override;
    void ChangeMidi(const QString& file, int mode) override;
    void Refresh() override { update(); }

    // The controls as a person moves them; each reaches the song that plays.
    void MoveVolume(int channel, int value);
    void MoveBalance(int channel, int value);
    void ToggleMute(int channel);
    void MoveTranspose(int top);
    void MoveTempo(int top);
    void MoveSongBalance(int value);
    void MoveBass(int value);
    void MoveTreble(int value);
    // 0 loudest to 91 silent.
    void MoveVoiceVolume(int value);
    void PressMicrophone();
    void Switch();
    // The verses of the song, to choose the one the karaoke window shows; built when opened.
    QMenu* BuildVerseMenu();
    // Where the player's commands go ("Verse<track>").
    std::function<void(const QString& key)> PlayerCommand;
    // Lit pixels of the microphone's level bar.
    int LevelPixels() const { return m_levelPixels; }

    const Strip& StripOf(int channel) const { return m_strips[size_t(channel)]; }
    int TransposeTop() const;
    int TempoTop() const;
    Face ShownFace() const { return m_face; }
    // labTONE and labTMP.
    QString ToneLabel() const;
    QString TempoLabel() const;
    // What the display under the strips says about a channel.
    QString StripText(int channel) const;

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

private:
    enum class Part {
        None, Window, Switcher, Close, Mute, Volume, Pan, Tone, Tempo, SongBalance, Bass, Treble, Microphone, Vocals, VoiceFader,
        Verse
    };
    struct Hit {
        Part part = Part::None;
        int channel = -1;
    };

    Hit HitAt(QPointF at) const;
    void ZeroVariables();
    void DragTo(QPointF at);
    void Nudge(const Hit& hit, int steps);
    void ResetControl(const Hit& hit);

    void PaintStrips(QPainter& painter) const;
    void PaintStrip(QPainter& painter, int channel) const;
    void PaintEqualiser(QPainter& painter) const;
    void PaintEqKnob(QPainter& painter, QPointF centre, const QString& caption, double share,
                     const QString& value) const;
    void PaintMicrophone(QPainter& painter) const;
    void PaintSwitch(QPainter& painter, const QRectF& box, const QString& caption, bool on, bool hover) const;
    Hit EqualiserHitAt(QPointF at) const;
    void FollowLevel();
    void PaintKnobs(QPainter& painter) const;
    void PaintKnob(QPainter& painter, double x, int top, const QString& caption, const QString& label,
                   const QString& effect) const;
    void PaintSwitcher(QPainter& painter) const;
    QString Text(const char* key) const;

    PlayerState& m_state;
    SettingsStore& m_store;
    Docking& m_docking;
    std::array<Strip, 16> m_strips{};
    Face m_face = Face::Strips;

    Hit m_drag;
    QPointF m_dragStart;
    int m_dragStartValue = 0;
    QPoint m_windowOffset;
    int m_hoverChannel = -1;
    bool m_switcherHover = false;
    Part m_hoverSwitch = Part::None;  // the equaliser face's switch under the mouse
    bool m_shownMicrophone = false;

    Equalizer* m_equalizer = nullptr;
    VoiceCommands* m_voice = nullptr;
    QTimer m_levelTimer;
    int m_levelPixels = 0;
};
