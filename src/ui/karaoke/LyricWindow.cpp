#include "ui/karaoke/LyricWindow.h"

#include "core/WindowPosition.h"
#include "midi/MidiBytes.h"
#include "ui/kit/Desktop.h"
#include "ui/kit/KeyedMenu.h"
#include "ui/kit/VerseMenu.h"

#include <QContextMenuEvent>
#include <algorithm>
#include <QGuiApplication>
#include <QMenu>
#include <QPainter>
#include <QScreen>
#include <QWindow>

namespace {

const QString kPositionKey = QStringLiteral("karaoke window position");
constexpr int kLastTimerMs = 8000;
// A transition's frames are due by its own pace, but never more often than the lyrics' tick:
// a late timer skips to the frame of its moment, so the run keeps its length.
constexpr double kShortestFrameMs = 10.0;

const std::vector<MenuItem> kMenu = {
    {"Fullscreen", "Fullscreen"}, {"FitLyrics", "FitText"}, {nullptr, nullptr},
    {"Previous", "Previous"},     {"Play", "Play"},         {"Pause", "Pause"},
    {"Stop", "Stop"},             {"Next", "Next"},         {nullptr, nullptr},
    {"OffsetIn", "Display+Offset"}, {"OffsetOut", "Display-Offset"}, {"IncFont", "IncreaseFont"},
    {"DecFont", "DecreaseFont"},  {nullptr, nullptr},       {"Sound", "SongSound"},
    {"Options", "Options"},
};

} // namespace

LyricWindow::LyricWindow(CoreState& state, LyricsState& lyrics, SettingsStore& store, const SongClock& song)
    : m_state(state), m_lyrics(lyrics), m_store(store), m_view(lyrics, *state.Theme, song)
{
    setObjectName(QStringLiteral("Lyric"));
    setWindowTitle(QStringLiteral("Songweaver Karaoke"));
    setAttribute(Qt::WA_OpaquePaintEvent);
    setMinimumSize(160, 90);
    m_lastTimer.setInterval(kLastTimerMs);
    connect(&m_lastTimer, &QTimer::timeout, this, [this] {
        m_view.Restore();
        m_lastTimer.stop();
    });
    m_view.LastTimerSwitch = [this](bool enabled) {
        if (!enabled)
            m_lastTimer.stop();
        else if (!m_lastTimer.isActive())
            m_lastTimer.start();
    };
    m_view.Changed = [this](const QRect& rect) { update(rect); };
    m_transitionTimer.setTimerType(Qt::PreciseTimer);
    connect(&m_transitionTimer, &QTimer::timeout, this, [this] { m_view.StepTransition(); });
    m_view.TransitionTimer = [this](double intervalMs) {
        if (intervalMs <= 0) {
            m_transitionTimer.stop();
            return;
        }
        m_transitionTimer.start(int(std::max(kShortestFrameMs, intervalMs)));
    };

    const auto saved = ReadWindowPosition(m_store, kPositionKey);
    m_placed = saved.has_value();
    if (saved)
        PlaceOnScreen(*this, *saved);
    else
        resize(kKaraokeFirstSize);
    m_framedGeometry = geometry();
}

LyricWindow::~LyricWindow() = default;

void LyricWindow::Show()
{
    show();
    // The frame is known once the window shows: the first place is measured again with it.
    PlaceBesideWithFrame();
    Rebuild();
    if (windowHandle())
        connect(windowHandle(), &QWindow::screenChanged, this, &LyricWindow::Rebuild, Qt::UniqueConnection);
}

void LyricWindow::OpenBeside(const QRect& taken)
{
    if (m_placed)
        return;
    m_besideArea = taken;
    setGeometry(PlaceKaraoke(AvailableScreenAt(taken), taken));
    m_framedGeometry = geometry();
    m_placed = true;
}

void LyricWindow::PlaceBesideWithFrame()
{
    if (!m_besideArea)
        return;
    const QRect framed = PlaceKaraoke(AvailableScreenAt(*m_besideArea), *m_besideArea);
    setGeometry(framed.marginsRemoved(FrameMargins(*this)));
    m_framedGeometry = geometry();
    m_besideArea.reset();
}

void LyricWindow::Hide()
{
    hide();
}

void LyricWindow::SetTopMost(bool flag)
{
    setWindowFlag(Qt::WindowStaysOnTopHint, flag);
    if (m_state.KaraokeOpen)
        show();
}

void LyricWindow::Unload()
{
    WriteWindowPosition(m_store, kPositionKey, isFullScreen() ? m_framedGeometry : geometry());
    m_lastTimer.stop();
    m_transitionTimer.stop();
    hide();
}

void LyricWindow::IsPlaying(double& position)
{
    const int32_t before = m_lyrics.CurrentLyric;
    m_view.Tick(position);
    const int32_t now = m_lyrics.CurrentLyric;
    if (now == before)
        return;
    QTimer::singleShot(0, this, [this] { m_view.PrepareUpcoming(); });
    if (now > 0)
        emit syllableLit(now, position);
}

void LyricWindow::ClearLyrics()
{
    m_view.ClearLyrics();
}

void LyricWindow::GetLastPos()
{
    m_view.Timeline().GetLastPos(m_state.KaraokeOpen);
}

void LyricWindow::ChangeLyrics()
{
    m_view.ChangeLyrics();
}

void LyricWindow::ClearNewLyrics()
{
    m_view.ClearNewLyrics();
}

void LyricWindow::FadeLyrics(int16_t& mode)
{
    m_view.FadeLyrics(mode);
}

void LyricWindow::FitLyrics()
{
    m_view.FitLyrics();
}

void LyricWindow::Rebuild()
{
    m_view.ResizeMe(size(), devicePixelRatioF(), isFullScreen());
}

namespace {

// A quarter of the window's shorter side in its lower right corner: big enough for a phone's
// camera across a room, small enough to leave the countdown's lines free.
QRect InvitationArea(QSize window)
{
    const int side = std::min(window.width(), window.height()) / 4;
    const int margin = side / 10;
    return {window.width() - side - margin, window.height() - side - margin, side, side};
}

} // namespace

void LyricWindow::paintEvent(QPaintEvent* event)
{
    QPainter painter(this);
    if (m_view.Frame().isNull())
        painter.fillRect(event->rect(), Qt::black);
    else
        m_view.Paint(painter, event->rect());
    if (!m_invitation.isNull())
        PaintInvitation(painter);
}

void LyricWindow::PaintInvitation(QPainter& painter) const
{
    const QRect code = InvitationArea(size());
    painter.drawImage(code, m_invitation);
    QFont font = painter.font();
    font.setPixelSize(std::max(10, code.height() / 9));
    painter.setFont(font);
    const QFontMetrics metrics(font);
    const int margin = width() - code.right();
    QRect line(margin, code.top() - metrics.height() - margin / 2, code.right() - margin, metrics.height());
    const QString caption = metrics.elidedText(m_invitationCaption, Qt::ElideLeft, line.width());
    const QRect behind = metrics.boundingRect(line, Qt::AlignRight | Qt::AlignVCenter, caption).adjusted(-6, -2, 6, 2);
    painter.fillRect(behind, QColor(0, 0, 0, 160));
    painter.setPen(Qt::white);
    painter.drawText(line, Qt::AlignRight | Qt::AlignVCenter, caption);
}

void LyricWindow::ShowInvitation(const QImage& code, const QString& caption)
{
    if (code.cacheKey() == m_invitation.cacheKey() && caption == m_invitationCaption)
        return;
    m_invitation = code;
    m_invitationCaption = code.isNull() ? QString() : caption;
    update();
}

void LyricWindow::resizeEvent(QResizeEvent*)
{
    if (!isFullScreen())
        m_framedGeometry = geometry();
    Rebuild();
}

QScreen* LyricWindow::ChosenScreen() const
{
    const QString& chosen = m_state.Theme->Monitor;
    for (const MonitorRecord& monitor : m_state.MonitorList) {
        if (monitor.name != chosen && monitor.name + QStringLiteral(" (primary)") != chosen)
            continue;
        for (QScreen* screen : QGuiApplication::screens())
            if (screen->geometry().topLeft() == QPoint(monitor.left, monitor.top))
                return screen;
    }
    return QGuiApplication::primaryScreen();
}

void LyricWindow::ToggleFullScreen()
{
    if (isFullScreen()) {
        const QRect framed = m_framedGeometry;
        showNormal();
        setGeometry(framed);
        return;
    }
    m_framedGeometry = geometry();
    if (QScreen* screen = ChosenScreen()) {
        if (windowHandle())
            windowHandle()->setScreen(screen);
        move(screen->geometry().topLeft());
    }
    showFullScreen();
}

void LyricWindow::RunCommand(const QString& key)
{
    if (key == u"Fullscreen")
        ToggleFullScreen();
    else if (key == u"FitLyrics") {
        m_view.FitLyrics();
        m_view.Repaint();
    } else if (key == u"OffsetIn")
        m_view.OffsetIn();
    else if (key == u"OffsetOut")
        m_view.OffsetOut();
    else if (key == u"IncFont")
        m_view.IncFont();
    else if (key == u"DecFont")
        m_view.DecFont();
    else if (PlayerCommand)
        PlayerCommand(key);
}

QMenu* LyricWindow::BuildMenu()
{
    QMenu* menu = BuildKeyedMenu(
        this, QStringLiteral("Lyric"), kMenu,
        {[this](const char* key) { return DisplayText(m_state.Language.GetText(QString::fromLatin1(key))); },
         [this](const QString& key) { RunCommand(key); }, [this](const QString& key) { return BuildSubmenu(key); }});
    if (Midi && !Midi->Verses.empty()) {
        auto* verses = new QMenu(m_state.Language.GetText(QStringLiteral("Verse")), menu);
        verses->setObjectName(QStringLiteral("Verses"));
        FillVerseMenu(*verses, *Midi, m_state.Language, [this](const QString& key) { RunCommand(key); });
        // Beside the commands of what the window shows, before those of the player.
        menu->insertMenu(menu->actions().value(2), verses);
    }
    return menu;
}

QMenu* LyricWindow::BuildSubmenu(const QString& key)
{
    if (key != u"Sound")
        return nullptr;
    QMenu* sound = BuildKeyedMenu(
        this, key, SoundMenuItems(),
        {[this](const char* caption) { return DisplayText(m_state.Language.GetText(QString::fromLatin1(caption))); },
         [this](const QString& command) { RunCommand(command); }, {}});
    CheckVocalsItem(*sound, m_state.VocalsOff);
    return sound;
}

void LyricWindow::contextMenuEvent(QContextMenuEvent* event)
{
    const std::unique_ptr<QMenu> menu(BuildMenu());
    menu->exec(event->globalPos());
}

void LyricWindow::mouseDoubleClickEvent(QMouseEvent*)
{
    ToggleFullScreen();
}

void LyricWindow::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Escape && isFullScreen())
        ToggleFullScreen();
    else
        emit keyPressed(event->key(), event->modifiers());
}

void LyricWindow::closeEvent(QCloseEvent* event)
{
    m_state.KaraokeOpen = false;
    emit closedByUser();
    QWidget::closeEvent(event);
}
