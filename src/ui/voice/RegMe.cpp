#include "ui/voice/RegMe.h"

#include "playback/PlayerState.h"
#include "ui/kit/Palette.h"

#include <QPainter>

namespace {

constexpr int kBlinkMilliseconds = 500;
constexpr QSize kSize(132, 24);
const QRectF kRecoPanel(4, 3, 58, 18);
const QRectF kVocPanel(68, 3, 60, 18);

} // namespace

RegMe::RegMe(const PlayerState& state, QWidget& anchor) : m_state(state), m_anchor(anchor)
{
    setObjectName(QStringLiteral("RegMe"));
    setWindowFlags(Qt::Tool | Qt::FramelessWindowHint | Qt::WindowDoesNotAcceptFocus);
    setAttribute(Qt::WA_TranslucentBackground);
    setAttribute(Qt::WA_ShowWithoutActivating);
    setFixedSize(kSize);
    m_timer.setInterval(kBlinkMilliseconds);
    connect(&m_timer, &QTimer::timeout, this, [this] { Blink(); });
}

void RegMe::Show()
{
    m_vocLeft = 0;
    m_recoLeft = 0;
    const QRect player = m_anchor.frameGeometry();
    move(player.right() - width() + 1, player.bottom() + 2);
    show();
    m_timer.start();
    update();
}

void RegMe::Hide()
{
    m_timer.stop();
    hide();
}

void RegMe::Blink()
{
    if (m_state.VoicePlaying)
        m_vocLeft = BlinkPanel(m_vocLeft);
    if (m_state.Recording)
        m_recoLeft = BlinkPanel(m_recoLeft);
    update();
}

void RegMe::PaintPanel(QPainter& painter, const QRectF& box, const QColor& lamp, const QString& text) const
{
    PaintWell(painter, box, box.height() / 2);
    painter.setPen(Qt::NoPen);
    painter.setBrush(lamp);
    painter.drawEllipse(QPointF(box.left() + 10, box.center().y()), 3.5, 3.5);
    QFont small = font();
    small.setPixelSize(9);
    small.setBold(true);
    small.setLetterSpacing(QFont::AbsoluteSpacing, 1.2);
    painter.setFont(small);
    painter.setPen(Palette::ButtonText);
    painter.drawText(box.adjusted(18, 0, -4, 0), Qt::AlignVCenter | Qt::AlignLeft, text);
}

void RegMe::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    PaintWindowBody(painter, QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5));
    const bool recording = m_state.Recording && m_recoLeft == 0;
    const bool voice = m_state.VoicePlaying && m_vocLeft == 0;
    PaintPanel(painter, kRecoPanel, recording ? Palette::LitRed : Palette::Unlit, QStringLiteral("REC"));
    PaintPanel(painter, kVocPanel, voice ? Palette::LitBlue : Palette::Unlit, QStringLiteral("VOICE"));
}
