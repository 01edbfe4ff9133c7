#include "ui/midi/MidiEq.h"

#include "core/WindowPosition.h"
#include "midi/MidiBytes.h"
#include "midi/MidiKnobs.h"
#include "playback/MidiControls.h"
#include "playback/SongSound.h"
#include "playback/PlayerState.h"
#include "playback/VoiceCommands.h"
#include "ui/kit/Desktop.h"
#include "ui/kit/Docking.h"
#include "ui/kit/VerseMenu.h"
#include "ui/midi/MidiEqLayout.h"
#include "voice/Equalizer.h"

#include <QCloseEvent>
#include <QMenu>
#include <QMouseEvent>
#include <QWheelEvent>
#include <algorithm>
#include <cmath>
#include <memory>

using namespace MidiEqLayout;

namespace {

constexpr int kMaxControllerValue = 127;
// A whole-song balance drag: pixels for the knob's full turn.
constexpr double kBalanceDragPixels = 160;

// The level bar follows the microphone this often.
constexpr int kLevelMilliseconds = 50;
// The right column of the equaliser face: the switch, the bar and the voice's fader.
constexpr QRectF kMicrophoneColumn{192, 28, 64, 124};

int FaderValueAt(double y)
{
    const double share = (kFaderBottom - y) / (kFaderBottom - kFaderTop);
    return std::clamp(int(std::lround(share * kMaxControllerValue)), 0, kMaxControllerValue);
}

// The knobs read upwards: the top of the travel is the largest value.
int KnobTopAt(double y)
{
    const int drawnTop = int(std::lround(y - kKnobHeight / 2));
    return std::clamp(kKnobTop + kKnobBottom - drawnTop, kKnobTop, kKnobBottom);
}

} // namespace

MidiEq::MidiEq(PlayerState& state, SettingsStore& store, Docking& docking)
    : m_state(state), m_store(store), m_docking(docking)
{
    setObjectName(QStringLiteral("MidiEq"));
    setWindowTitle(QStringLiteral("Songweaver ") + Text("Controls"));
    setWindowFlags(Qt::Window | Qt::FramelessWindowHint);
    setAttribute(Qt::WA_TranslucentBackground);
    setMouseTracking(true);
    setFixedSize(kWidth, kHeight);
    ZeroVariables();
    m_levelTimer.setInterval(kLevelMilliseconds);
    connect(&m_levelTimer, &QTimer::timeout, this, [this] { FollowLevel(); });
    // Opened while a MIDI song plays, the window shows that song's channels.
    if (m_state.IsMidi)
        ChangeMidi(m_state.CurrentFile, 0);
}

MidiEq::~MidiEq() = default;

void MidiEq::AttachVoice(Equalizer& equalizer, VoiceCommands& voice)
{
    m_equalizer = &equalizer;
    m_voice = &voice;
    m_levelTimer.start();
}

void MidiEq::FollowLevel()
{
    if (!m_equalizer)
        return;
    const int pixels = m_equalizer->PollLevel();
    if (m_face != Face::Equaliser || !isVisible())
        return;
    // The switch may have moved through the main window's button or key as well.
    if (pixels != m_levelPixels || m_shownMicrophone != m_state.MicrophoneOn) {
        m_levelPixels = pixels;
        m_shownMicrophone = m_state.MicrophoneOn;
        update(kMicrophoneColumn.toAlignedRect());
    }
}

void MidiEq::MoveBass(int value)
{
    if (!m_equalizer)
        return;
    m_equalizer->setBass(value);
    update();
}

void MidiEq::MoveTreble(int value)
{
    if (!m_equalizer)
        return;
    m_equalizer->setTreble(value);
    update();
}

void MidiEq::MoveVoiceVolume(int value)
{
    if (!m_state.Theme)
        return;
    m_state.Theme->VoiceVolume = int16_t(std::clamp(value, 0, kVoiceFaderMax));
    if (m_state.VoiceControl && m_equalizer)
        m_state.VoiceControl->put_Volume(m_equalizer->VoiceLevel());
    update(kMicrophoneColumn.toAlignedRect());
}

void MidiEq::PressMicrophone()
{
    // The same switch as the main window's button, refused while a take is recorded.
    if (m_voice && !m_state.Recording)
        m_voice->SwitchMicrophone();
    m_shownMicrophone = m_state.MicrophoneOn;
    update(kMicrophoneColumn.toAlignedRect());
}

QString MidiEq::Text(const char* key) const
{
    return DisplayText(m_state.Language.GetText(QString::fromLatin1(key)));
}

// ---- The form ---------------------------------------------------------------------------------

void MidiEq::Show()
{
    m_docking.Register(this);
    show();
}

void MidiEq::Hide()
{
    hide();
}

void MidiEq::SetTopMost(bool flag)
{
    ::SetTopMost(*this, flag);
}

void MidiEq::Unload()
{
    WriteWindowPosition(m_store, QStringLiteral("eq position"), geometry());
    m_docking.Unregister(this);
    hide();
}

void MidiEq::closeEvent(QCloseEvent* event)
{
    event->ignore();
    Hide();
    m_state.ControlsOpen = false;
}

void MidiEq::ZeroVariables()
{
    for (Strip& strip : m_strips)
        strip = Strip{};
    update();
}

void MidiEq::CloseDevice()
{
    ZeroVariables();
    m_face = Face::Strips;
    update();
}

void MidiEq::ChangeMidi(const QString&, int)
{
    for (int channel = 0; channel < kChannels; ++channel) {
        const ChannelRecord& record = m_state.Midi.ChannelTable[size_t(channel)];
        Strip& strip = m_strips[size_t(channel)];
        strip = Strip{};
        if (record.Channel == -1)
            continue;
        strip.enabled = true;
        strip.volume = std::clamp<int>(record.Volume, 0, kMaxControllerValue);
        // The reader passes over a pan of 0, so 0 here means the file set none: the synthesiser
        // plays such a channel in the middle.
        strip.balance = record.Pan > 0 ? std::clamp<int>(record.Pan, 0, kMaxControllerValue) : 64;
        strip.patch = record.Patch;
    }
    update();
}

QMenu* MidiEq::BuildVerseMenu()
{
    auto* menu = new QMenu(this);
    FillVerseMenu(*menu, m_state.Midi, m_state.Language, [this](const QString& key) {
        if (PlayerCommand)
            PlayerCommand(key);
    });
    return menu;
}

// ---- The controls -------------------------------------------------------------------------------

void MidiEq::MoveVolume(int channel, int value)
{
    Strip& strip = m_strips[size_t(channel)];
    if (!strip.enabled)
        return;
    strip.volume = std::clamp(value, 0, kMaxControllerValue);
    ApplyChannelVolume(m_state, channel, strip.volume);
    update();
}

void MidiEq::MoveBalance(int channel, int value)
{
    Strip& strip = m_strips[size_t(channel)];
    if (!strip.enabled)
        return;
    strip.balance = std::clamp(value, 0, kMaxControllerValue);
    ApplyChannelBalance(m_state, channel, strip.balance);
    update();
}

void MidiEq::ToggleMute(int channel)
{
    Strip& strip = m_strips[size_t(channel)];
    if (!strip.enabled)
        return;
    strip.muted = !strip.muted;
    ApplyChannelMute(m_state, channel, strip.muted);
    update();
}

void MidiEq::MoveTranspose(int top)
{
    ApplyTranspose(m_state, top);
    update();
}

void MidiEq::MoveTempo(int top)
{
    ApplyTempo(m_state, top);
    update();
}

int MidiEq::TransposeTop() const
{
    return m_state.Sound.keyTop;
}

int MidiEq::TempoTop() const
{
    return m_state.Sound.tempoTop;
}

void MidiEq::MoveSongBalance(int value)
{
    ApplySongBalance(m_state, std::clamp(value, 0, 2 * kBalanceCentre));
    update();
}

void MidiEq::Switch()
{
    m_face = m_face == Face::Strips ? Face::Equaliser : Face::Strips;
    update();
}

QString MidiEq::ToneLabel() const
{
    if (m_state.IsMidi)
        return KnobLabel(KnobValue(TransposeTop()));
    // An audio song moves by single semitones, and says so.
    const int semitones = KnobSemitones(m_state);
    return semitones > 0 ? u'+' + QString::number(semitones) : QString::number(semitones);
}

QString MidiEq::TempoLabel() const
{
    return KnobLabel(KnobValue(TempoTop()));
}

QString MidiEq::StripText(int channel) const
{
    const Strip& strip = m_strips[size_t(channel)];
    const QString number = QString::number(channel + 1);
    if (!strip.enabled)
        return number + QStringLiteral("  \u2014");
    QString text = number + QStringLiteral("  ") + ChannelInstrument(channel, strip.patch) + QStringLiteral("   vol %1   pan %2")
                                                                               .arg(strip.volume)
                                                                               .arg(BalanceText(strip.balance, 64));
    if (strip.muted)
        text += QStringLiteral("   muted");
    return text;
}

// ---- The mouse ----------------------------------------------------------------------------------

MidiEq::Hit MidiEq::HitAt(QPointF at) const
{
    if (kSwitcher.contains(at))
        return {Part::Switcher};
    if (QRectF(kClose.x() - 7, kClose.y() - 7, 14, 14).contains(at))
        return {Part::Close};
    if (KnobTrack(kToneX).adjusted(-4, -4, 4, 4).contains(at))
        return {Part::Tone};
    if (KnobTrack(kTempoX).adjusted(-4, -4, 4, 4).contains(at))
        return {Part::Tempo};
    if (m_face == Face::Equaliser)
        return EqualiserHitAt(at);
    if (!m_state.Midi.Verses.empty() && kVerseBox.contains(at))
        return {Part::Verse};
    for (int channel = 0; channel < kChannels; ++channel) {
        if (!StripBox(channel).contains(at))
            continue;
        if (!m_strips[size_t(channel)].enabled)
            return {Part::Window};
        if (MuteBox(channel).contains(at))
            return {Part::Mute, channel};
        if (FaderBox(channel).contains(at))
            return {Part::Volume, channel};
        if (PanBox(channel).contains(at))
            return {Part::Pan, channel};
    }
    return {Part::Window};
}

MidiEq::Hit MidiEq::EqualiserHitAt(QPointF at) const
{
    if (KnobBox(kBalanceKnob).contains(at))
        return {Part::SongBalance};
    if (m_equalizer && KnobBox(kBassKnob).contains(at))
        return {Part::Bass};
    if (m_equalizer && KnobBox(kTrebleKnob).contains(at))
        return {Part::Treble};
    if (kMicSwitch.contains(at))
        return {Part::Microphone};
    if (kVocalsSwitch.contains(at))
        return {Part::Vocals};
    if (VoiceFaderBox().contains(at))
        return {Part::VoiceFader};
    return {Part::Window};
}

void MidiEq::mousePressEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton)
        return;
    const QPointF at = event->position();
    const Hit hit = HitAt(at);
    m_drag = {};
    switch (hit.part) {
    case Part::Switcher:
        Switch();
        return;
    case Part::Close:
        close();
        return;
    case Part::Mute:
        ToggleMute(hit.channel);
        return;
    case Part::Microphone:
        PressMicrophone();
        return;
    case Part::Vocals:
        if (PlayerCommand)
            PlayerCommand(QStringLiteral("VocalsOff"));
        update(kVocalsSwitch.toAlignedRect());
        return;
    case Part::Verse: {
        const std::unique_ptr<QMenu> menu(BuildVerseMenu());
        menu->exec(mapToGlobal(kVerseBox.bottomLeft().toPoint()));
        return;
    }
    case Part::Bass:
        m_dragStartValue = m_equalizer->Bass();
        break;
    case Part::Treble:
        m_dragStartValue = m_equalizer->Treble();
        break;
    case Part::Window:
        m_drag = hit;
        m_windowOffset = event->globalPosition().toPoint() - pos();
        return;
    case Part::Pan:
        m_dragStartValue = m_strips[size_t(hit.channel)].balance;
        break;
    case Part::SongBalance:
        m_dragStartValue = m_state.SongBalance;
        break;
    default:
        break;
    }
    m_drag = hit;
    m_dragStart = at;
    DragTo(at);
}

void MidiEq::DragTo(QPointF at)
{
    // Round knobs turn with the mouse moving right or up, as on a mixing desk.
    const double turned = (at.x() - m_dragStart.x()) - (at.y() - m_dragStart.y());
    switch (m_drag.part) {
    case Part::Volume:
        MoveVolume(m_drag.channel, FaderValueAt(at.y()));
        break;
    case Part::Pan:
        MoveBalance(m_drag.channel, m_dragStartValue + int(std::lround(turned)));
        break;
    case Part::Tone:
        MoveTranspose(KnobTopAt(at.y()));
        break;
    case Part::Tempo:
        MoveTempo(KnobTopAt(at.y()));
        break;
    case Part::SongBalance:
        MoveSongBalance(m_dragStartValue + int(std::lround(turned / kBalanceDragPixels * 2 * kBalanceCentre)));
        break;
    case Part::Bass:
        MoveBass(m_dragStartValue + int(std::lround(turned / kBalanceDragPixels * 2 * Equalizer::kKnobCentre)));
        break;
    case Part::Treble:
        MoveTreble(m_dragStartValue + int(std::lround(turned / kBalanceDragPixels * 2 * Equalizer::kKnobCentre)));
        break;
    case Part::VoiceFader:
        MoveVoiceVolume(int(std::lround((at.y() - kVoiceFaderTop) / (kVoiceFaderBottom - kVoiceFaderTop) * kVoiceFaderMax)));
        break;
    default:
        break;
    }
}

void MidiEq::mouseMoveEvent(QMouseEvent* event)
{
    const QPointF at = event->position();
    if (m_drag.part == Part::Window) {
        move(event->globalPosition().toPoint() - m_windowOffset);
        return;
    }
    if (m_drag.part != Part::None) {
        DragTo(at);
        return;
    }
    const bool switcherHover = kSwitcher.contains(at);
    const Part hoverSwitch = m_face != Face::Equaliser    ? Part::None
                             : kMicSwitch.contains(at)    ? Part::Microphone
                             : kVocalsSwitch.contains(at) ? Part::Vocals
                                                          : Part::None;
    if (hoverSwitch != m_hoverSwitch) {
        m_hoverSwitch = hoverSwitch;
        update();
    }
    int hoverChannel = -1;
    for (int channel = 0; channel < kChannels && m_face == Face::Strips; ++channel)
        if (StripBox(channel).contains(at))
            hoverChannel = channel;
    if (switcherHover != m_switcherHover || hoverChannel != m_hoverChannel) {
        m_switcherHover = switcherHover;
        m_hoverChannel = hoverChannel;
        update();
    }
}

void MidiEq::mouseReleaseEvent(QMouseEvent*)
{
    m_drag = {};
}

void MidiEq::leaveEvent(QEvent*)
{
    m_switcherHover = false;
    m_hoverSwitch = Part::None;
    m_hoverChannel = -1;
    update();
}

void MidiEq::ResetControl(const Hit& hit)
{
    switch (hit.part) {
    case Part::Pan:
        MoveBalance(hit.channel, 64);
        break;
    case Part::Tone:
        MoveTranspose(kKnobCentre);
        break;
    case Part::Tempo:
        MoveTempo(kKnobCentre);
        break;
    case Part::SongBalance:
        MoveSongBalance(kBalanceCentre);
        break;
    case Part::Bass:
        MoveBass(Equalizer::kKnobCentre);
        break;
    case Part::Treble:
        MoveTreble(Equalizer::kKnobCentre);
        break;
    default:
        break;
    }
}

void MidiEq::mouseDoubleClickEvent(QMouseEvent* event)
{
    const Hit hit = HitAt(event->position());
    if (hit.part == Part::Mute)
        ToggleMute(hit.channel);
    else
        ResetControl(hit);
}

void MidiEq::Nudge(const Hit& hit, int steps)
{
    switch (hit.part) {
    case Part::Volume:
        MoveVolume(hit.channel, m_strips[size_t(hit.channel)].volume + 4 * steps);
        break;
    case Part::Pan:
        MoveBalance(hit.channel, m_strips[size_t(hit.channel)].balance + 4 * steps);
        break;
    case Part::Tone:
        MoveTranspose(TransposeTop() + steps);
        break;
    case Part::Tempo:
        MoveTempo(TempoTop() + steps);
        break;
    case Part::SongBalance:
        MoveSongBalance(m_state.SongBalance + 500 * steps);
        break;
    case Part::Bass:
        MoveBass(m_equalizer->Bass() + 500 * steps);
        break;
    case Part::Treble:
        MoveTreble(m_equalizer->Treble() + 500 * steps);
        break;
    case Part::VoiceFader:
        MoveVoiceVolume((m_state.Theme ? m_state.Theme->VoiceVolume : 0) - steps);
        break;
    default:
        break;
    }
}

void MidiEq::wheelEvent(QWheelEvent* event)
{
    const int steps = event->angleDelta().y() / 120;
    if (steps != 0)
        Nudge(HitAt(event->position()), steps);
    event->accept();
}
