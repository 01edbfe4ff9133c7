// How the MIDI window draws: the skin of the main window in vector form, so it is as sharp at
// any scale.

#include "ui/midi/MidiEq.h"

#include "midi/MidiBytes.h"
#include "midi/MidiKnobs.h"
#include "playback/PlayerState.h"
#include "playback/SongSound.h"
#include "ui/kit/Palette.h"
#include "ui/kit/VerseMenu.h"
#include "ui/midi/MidiEqLayout.h"
#include "voice/Equalizer.h"

#include <QPainter>
#include <QPainterPath>
#include <algorithm>
#include <cmath>
#include <numbers>

using namespace MidiEqLayout;

namespace {

constexpr double kSweep = 135;  // a round knob turns from -135 to +135 degrees
const QColor kGroove(0x1f, 0x27, 0x50);
const QColor kKnobRim(0x6f, 0x82, 0xd8);

QFont PixelFont(const QFont& base, int pixels, bool bold, double spacing = 0)
{
    QFont font = base;
    font.setPixelSize(pixels);
    font.setBold(bold);
    if (spacing > 0)
        font.setLetterSpacing(QFont::AbsoluteSpacing, spacing);
    return font;
}

// A tone knob's shelf, as "+4.5 dB".
QString ToneText(int knob)
{
    const int shelf = Equalizer::ShelfOfKnob(knob);
    return shelf == 0 ? QStringLiteral("0 dB") : QString::asprintf("%+.1f dB", shelf / 100.0);
}

// A point at `degrees` clockwise from twelve o'clock.
QPointF OnCircle(QPointF centre, double radius, double degrees)
{
    const double radians = degrees * std::numbers::pi / 180;
    return centre + QPointF(radius * std::sin(radians), -radius * std::cos(radians));
}

void PaintArc(QPainter& painter, QPointF centre, double radius, double from, double to, const QPen& pen)
{
    painter.setPen(pen);
    painter.setBrush(Qt::NoBrush);
    const QRectF box(centre.x() - radius, centre.y() - radius, 2 * radius, 2 * radius);
    painter.drawArc(box, int(std::lround((90 - from) * 16)), int(std::lround(-(to - from) * 16)));
}

// A round knob with its pointer at `share` (0 to 1) of its sweep; a lit arc from the centre.
void PaintRoundKnob(QPainter& painter, QPointF centre, double radius, double share, bool enabled, bool arc)
{
    const double angle = -kSweep + 2 * kSweep * share;
    if (arc) {
        PaintArc(painter, centre, radius + 5, -kSweep, kSweep, QPen(Palette::Unlit, 3, Qt::SolidLine, Qt::RoundCap));
        if (std::abs(angle) > 0.5)
            PaintArc(painter, centre, radius + 5, std::min(0.0, angle), std::max(0.0, angle),
                     QPen(Palette::LitBlue, 3, Qt::SolidLine, Qt::RoundCap));
    }
    QRadialGradient body(centre - QPointF(radius * 0.3, radius * 0.4), radius * 1.4);
    body.setColorAt(0, enabled ? QColor(0x4a, 0x58, 0xa0) : QColor(0x1d, 0x23, 0x47));
    body.setColorAt(1, enabled ? QColor(0x1b, 0x22, 0x48) : QColor(0x12, 0x16, 0x30));
    painter.setBrush(body);
    painter.setPen(QPen(enabled ? kKnobRim : Palette::WellEdge, 1));
    painter.drawEllipse(centre, radius, radius);
    if (!enabled)
        return;
    painter.setPen(QPen(Palette::ButtonText, radius > 10 ? 2.4 : 1.4, Qt::SolidLine, Qt::RoundCap));
    painter.drawLine(OnCircle(centre, radius * 0.35, angle), OnCircle(centre, radius * 0.85, angle));
}

// A lamp with a soft glow when lit.
void PaintLamp(QPainter& painter, QPointF centre, double radius, const QColor& colour, bool lit)
{
    if (lit) {
        QRadialGradient glow(centre, radius * 2.4);
        QColor halo = colour;
        halo.setAlphaF(0.35);
        glow.setColorAt(0, halo);
        glow.setColorAt(1, Qt::transparent);
        painter.setPen(Qt::NoPen);
        painter.setBrush(glow);
        painter.drawEllipse(centre, radius * 2.4, radius * 2.4);
    }
    painter.setBrush(lit ? colour : Palette::Unlit);
    painter.setPen(QPen(lit ? colour.lighter(130) : Palette::WellEdge, 0.8));
    painter.drawEllipse(centre, radius, radius);
}

} // namespace

void MidiEq::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    PaintWindowBody(painter, rect());
    PaintCaption(painter, QRectF(19, 0, kSwitcher.left() - 24, 22), Text("Controls"));
    PaintSwitcher(painter);
    PaintCloseButton(painter, kClose);
    if (m_face == Face::Strips)
        PaintStrips(painter);
    else
        PaintEqualiser(painter);
    PaintKnobs(painter);
}

void MidiEq::PaintSwitcher(QPainter& painter) const
{
    const QRectF whole = kSwitcher;
    PaintWell(painter, whole, whole.height() / 2);
    const bool strips = m_face == Face::Strips;
    QRectF lit(strips ? whole.left() : whole.center().x(), whole.top(), whole.width() / 2, whole.height());
    PaintButtonFace(painter, lit.adjusted(1, 1, -1, -1), (whole.height() - 2) / 2, m_switcherHover);
    painter.setFont(PixelFont(font(), 8, true, 1));
    const QRectF left(whole.left(), whole.top(), whole.width() / 2, whole.height());
    const QRectF right(whole.center().x(), whole.top(), whole.width() / 2, whole.height());
    painter.setPen(strips ? Palette::ButtonText : Palette::CaptionText.darker(140));
    painter.drawText(left, Qt::AlignCenter, QStringLiteral("MIX"));
    painter.setPen(strips ? Palette::CaptionText.darker(140) : Palette::ButtonText);
    painter.drawText(right, Qt::AlignCenter, QStringLiteral("EQ"));
}

void MidiEq::PaintStrips(QPainter& painter) const
{
    PaintWell(painter, kStripWell);
    for (int channel = 0; channel < kChannels; ++channel)
        PaintStrip(painter, channel);

    PaintWell(painter, kStripDisplay, 4);
    painter.setFont(PixelFont(font(), 9, false));
    painter.setPen(Palette::LitBlue);
    QString text;
    if (m_hoverChannel >= 0) {
        text = StripText(m_hoverChannel);
    } else {
        const auto used = std::count_if(m_strips.begin(), m_strips.end(), [](const Strip& s) { return s.enabled; });
        text = used > 0 ? QStringLiteral("%1 of 16 channels in use").arg(used) : QStringLiteral("No MIDI song");
    }
    painter.drawText(kStripDisplay.adjusted(7, 0, -7, 0), Qt::AlignLeft | Qt::AlignVCenter, text);
    if (m_hoverChannel < 0 && !m_state.Midi.Verses.empty()) {
        painter.setPen(Palette::ButtonText);
        painter.drawText(kVerseBox.adjusted(0, 0, -7, 0), Qt::AlignRight | Qt::AlignVCenter,
                         ShownVerseName(m_state.Midi, m_state.Language) + QStringLiteral(" \u25BE"));
    }
}

void MidiEq::PaintStrip(QPainter& painter, int channel) const
{
    const Strip& strip = m_strips[size_t(channel)];
    const double x = StripCentre(channel);
    if (channel == m_hoverChannel && strip.enabled) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(QColor(255, 255, 255, 14));
        painter.drawRoundedRect(StripBox(channel).adjusted(1, 2, -1, -2), 4, 4);
    }

    painter.setFont(PixelFont(font(), 8, true));
    painter.setPen(strip.enabled ? Palette::CaptionText : Palette::Unlit);
    painter.drawText(QRectF(x - 8, 26, 16, 11), Qt::AlignCenter, QString::number(channel + 1));

    PaintLamp(painter, QPointF(x, kMuteY), 3.2, strip.muted ? Palette::LitRed : Palette::LitGreen, strip.enabled);

    painter.setPen(Qt::NoPen);
    painter.setBrush(kGroove);
    painter.drawRoundedRect(QRectF(x - 1.5, kFaderTop, 3, kFaderBottom - kFaderTop), 1.5, 1.5);
    if (strip.enabled) {
        const double y = kFaderBottom - strip.volume / 127.0 * (kFaderBottom - kFaderTop);
        QLinearGradient level(0, kFaderBottom, 0, kFaderTop);
        level.setColorAt(0, QColor(0x3c, 0x6c, 0xd8));
        level.setColorAt(1, strip.muted ? Palette::Unlit : Palette::LitBlue);
        painter.setBrush(level);
        painter.drawRoundedRect(QRectF(x - 1.5, y, 3, kFaderBottom - y), 1.5, 1.5);
        PaintButtonFace(painter, QRectF(x - 5.5, y - 3.5, 11, 7), 2, channel == m_hoverChannel);
        painter.setPen(QPen(Palette::ButtonText, 1));
        painter.drawLine(QPointF(x - 3, y), QPointF(x + 3, y));
    }

    PaintRoundKnob(painter, QPointF(x, kPanY), 5, strip.balance / 127.0, strip.enabled, false);
}

void MidiEq::PaintKnobs(QPainter& painter) const
{
    PaintWell(painter, kKnobWell);
    const int semitones = KnobSemitones(m_state);
    const QString toneEffect = (semitones > 0 ? QStringLiteral("+%1 st") : QStringLiteral("%1 st")).arg(semitones);
    const QString tempoEffect = QStringLiteral("\u00d7") + QString::number(KnobTempo(m_state), 'f', 2);
    PaintKnob(painter, kToneX, TransposeTop(), QStringLiteral("KEY"), ToneLabel(), toneEffect);
    PaintKnob(painter, kTempoX, TempoTop(), QStringLiteral("TEMPO"), TempoLabel(), tempoEffect);
}

void MidiEq::PaintKnob(QPainter& painter, double x, int top, const QString& caption, const QString& label,
                       const QString& effect) const
{
    painter.setFont(PixelFont(font(), 8, true, 1.5));
    painter.setPen(Palette::CaptionText);
    painter.drawText(QRectF(x - 22, 27, 44, 11), Qt::AlignCenter, caption);

    const QRectF screen(x - 18, 40, 36, 18);
    PaintWell(painter, screen, 4);
    painter.setFont(PixelFont(font(), 12, true));
    painter.setPen(Palette::LitAmber);
    painter.drawText(screen, Qt::AlignCenter, label);
    painter.setFont(PixelFont(font(), 8, false));
    painter.setPen(Palette::CaptionText);
    painter.drawText(QRectF(x - 22, 60, 44, 11), Qt::AlignCenter, effect);

    const double grooveTop = kKnobTravelTop + kKnobHeight / 2;
    const double grooveBottom = kKnobTravelBottom + kKnobHeight / 2;
    painter.setPen(QPen(Palette::WellEdge, 1));
    for (double y : {grooveTop, (grooveTop + grooveBottom) / 2, grooveBottom}) {
        painter.drawLine(QPointF(x - 15, y), QPointF(x - 12, y));
        painter.drawLine(QPointF(x + 12, y), QPointF(x + 15, y));
    }
    painter.setPen(Qt::NoPen);
    painter.setBrush(kGroove);
    painter.drawRoundedRect(QRectF(x - 2, grooveTop, 4, grooveBottom - grooveTop), 2, 2);

    // The knob's top reads downwards in the rules and upwards on screen.
    const double drawnTop = kKnobTravelTop + kKnobTravelBottom - top;
    const QRectF knob(x - kKnobWidth / 2, drawnTop, kKnobWidth, kKnobHeight);
    PaintButtonFace(painter, knob, 3, false);
    painter.setPen(QPen(Palette::LitAmber, 1.4, Qt::SolidLine, Qt::RoundCap));
    painter.drawLine(QPointF(knob.left() + 5, knob.center().y()), QPointF(knob.right() - 5, knob.center().y()));
}

void MidiEq::PaintEqualiser(QPainter& painter) const
{
    const QRectF well = kStripWell.united(kStripDisplay);
    PaintWell(painter, well);
    const int bass = m_equalizer ? m_equalizer->Bass() : Equalizer::kKnobCentre;
    const int treble = m_equalizer ? m_equalizer->Treble() : Equalizer::kKnobCentre;
    PaintEqKnob(painter, kBassKnob, QStringLiteral("BASS"), bass / (2.0 * Equalizer::kKnobCentre), ToneText(bass));
    PaintEqKnob(painter, kTrebleKnob, QStringLiteral("TREBLE"), treble / (2.0 * Equalizer::kKnobCentre),
                ToneText(treble));
    PaintEqKnob(painter, kBalanceKnob, QStringLiteral("BALANCE"), m_state.SongBalance / (2.0 * kBalanceCentre),
                BalanceText(m_state.SongBalance, kBalanceCentre));
    painter.setFont(PixelFont(font(), 8, true));
    painter.setPen(Palette::CaptionText);
    const QPointF left = OnCircle(kBalanceKnob, kEqKnobRadius + 12, -kSweep);
    const QPointF right = OnCircle(kBalanceKnob, kEqKnobRadius + 12, kSweep);
    painter.drawText(QRectF(left.x() - 8, left.y() - 6, 16, 12), Qt::AlignCenter, QStringLiteral("L"));
    painter.drawText(QRectF(right.x() - 8, right.y() - 6, 16, 12), Qt::AlignCenter, QStringLiteral("R"));

    painter.setPen(QPen(Palette::WellEdge, 1));
    painter.drawLine(QPointF(188, 34), QPointF(188, 164));
    PaintSwitch(painter, kVocalsSwitch, QStringLiteral("NO VOCALS"), m_state.VocalsOff,
                m_hoverSwitch == Part::Vocals);
    PaintMicrophone(painter);
}

void MidiEq::PaintEqKnob(QPainter& painter, QPointF centre, const QString& caption, double share,
                         const QString& value) const
{
    painter.setFont(PixelFont(font(), 8, true, 1.5));
    painter.setPen(Palette::CaptionText);
    painter.drawText(QRectF(centre.x() - 28, 38, 56, 12), Qt::AlignCenter, caption);
    PaintRoundKnob(painter, centre, kEqKnobRadius, share, true, true);
    const QRectF screen(centre.x() - 25, 132, 50, 17);
    PaintWell(painter, screen, 4);
    painter.setFont(PixelFont(font(), 10, true));
    painter.setPen(Palette::LitBlue);
    painter.drawText(screen, Qt::AlignCenter, value);
}

// A switch with its lamp, lit while it is on.
void MidiEq::PaintSwitch(QPainter& painter, const QRectF& box, const QString& caption, bool on, bool hover) const
{
    PaintButtonFace(painter, box, box.height() / 2, hover);
    painter.setFont(PixelFont(font(), 8, true, 1.2));
    painter.setPen(on ? Palette::LitGreen : Palette::ButtonText);
    painter.drawText(box.adjusted(6, 0, 0, 0), Qt::AlignCenter, caption);
    painter.setPen(Qt::NoPen);
    painter.setBrush(on ? Palette::LitGreen : Palette::Unlit);
    painter.drawEllipse(QPointF(box.left() + 9, box.center().y()), 2.5, 2.5);
}

void MidiEq::PaintMicrophone(QPainter& painter) const
{
    PaintSwitch(painter, kMicSwitch, QStringLiteral("MIC"), m_state.MicrophoneOn, m_hoverSwitch == Part::Microphone);

    // The level bar: lit from the bottom, green to amber to red.
    PaintWell(painter, kLevelBar.adjusted(-2, -2, 2, 2), 2);
    painter.setBrush(Palette::Unlit);
    painter.drawRect(kLevelBar);
    const double lit = m_levelPixels;
    if (lit > 0) {
        QLinearGradient level(0, kLevelBar.bottom(), 0, kLevelBar.top());
        level.setColorAt(0, Palette::LitGreen);
        level.setColorAt(0.7, Palette::LitAmber);
        level.setColorAt(1, Palette::LitRed);
        painter.setBrush(level);
        painter.drawRect(QRectF(kLevelBar.left(), kLevelBar.bottom() - lit, kLevelBar.width(), lit));
    }

    // The voice's fader: its top is the loudest.
    painter.setBrush(kGroove);
    painter.drawRoundedRect(QRectF(kVoiceFaderX - 2, kVoiceFaderTop, 4, kVoiceFaderBottom - kVoiceFaderTop), 2, 2);
    const double share = double(m_state.Theme ? m_state.Theme->VoiceVolume : 33) / kVoiceFaderMax;
    const double y = kVoiceFaderTop + std::clamp(share, 0.0, 1.0) * (kVoiceFaderBottom - kVoiceFaderTop);
    const QRectF knob(kVoiceFaderX - 8, y - 4, 16, 8);
    PaintButtonFace(painter, knob, 2, false);
    painter.setPen(QPen(Palette::LitAmber, 1.2, Qt::SolidLine, Qt::RoundCap));
    painter.drawLine(QPointF(knob.left() + 4, knob.center().y()), QPointF(knob.right() - 4, knob.center().y()));

    painter.setFont(PixelFont(font(), 8, true, 1.2));
    painter.setPen(Palette::CaptionText);
    painter.drawText(QRectF(kLevelBar.center().x() - 10, 132, 20, 17), Qt::AlignCenter, QStringLiteral("IN"));
    painter.drawText(QRectF(kVoiceFaderX - 18, 132, 36, 17), Qt::AlignCenter, QStringLiteral("VOICE"));
}
