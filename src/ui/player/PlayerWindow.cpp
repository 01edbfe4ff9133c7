#include "ui/player/PlayerWindow.h"

#include "core/CoreState.h"
#include "core/WindowPosition.h"
#include "ui/kit/Desktop.h"
#include "ui/kit/Docking.h"

#include <QCloseEvent>
#include <QFileInfo>
#include <QFontMetrics>
#include <QIcon>
#include <QMenu>
#include <QMouseEvent>
#include <QPainter>
#include <QScreen>
#include <QToolTip>

namespace {

constexpr int kLabelWidth = 180;
constexpr int kTitlePoints = 13;
constexpr int kArtistPoints = 11;
const QPoint kLampOrigin(19, 72);
// Lamps in the strip: x and width, 10 high.
constexpr std::array<std::pair<int, int>, 6> kLampStrip{{{0, 5}, {9, 6}, {19, 6}, {33, 10}, {49, 6}, {60, 9}}};
// The disabled look: kind 1 over the record button, 2 over the voice button, 3 over the microphone.
constexpr std::array<QPoint, 3> kLightOutAt{{{293, 95}, {318, 95}, {318, 70}}};
constexpr std::array<int, 3> kLightOutButton{int(PlayerButton::Record), int(PlayerButton::Voice),
                                             int(PlayerButton::Microphone)};

// Mute and Record act on the press and look pressed while they are on.
bool IsLatching(int button)
{
    return button == int(PlayerButton::Mute) || button == int(PlayerButton::Record);
}
const QSize kLightOutSize(23, 15);

const char* const kTipKeys[Skin::kButtons] = {"Previous", "Play", "Pause", "Stop", "Next", "Mute", "Preferences",
                                              "FileOpen", "Controls", "UserList", "SwitchMicrophone", "Record",
                                              "YourVoice", "Editor", "KaraokeWindow"};

const QColor kLabelColour(0xee, 0xf2, 0xff);
const QColor kDimColour(0xae, 0xbb, 0xe8);
const QColor kQualityColour(0x8e, 0xa6, 0xf0);

} // namespace

QString FitLabelText(const QString& text, const QFont& font, int width)
{
    const QFontMetrics metrics(font);
    if (metrics.horizontalAdvance(text) <= width)
        return text;
    QString cut = text;
    while (!cut.isEmpty() && metrics.horizontalAdvance(cut + QStringLiteral("...")) > width)
        cut.chop(1);
    return cut + QStringLiteral("...");
}

PlayerWindow::PlayerWindow(CoreState& state, SettingsStore& store, Docking& docking)
    : m_state(state), m_store(store), m_docking(docking)
{
    setObjectName(QStringLiteral("Player"));
    setWindowTitle(QStringLiteral("Songweaver"));
    setWindowFlags(Qt::Window | Qt::FramelessWindowHint);
    setAttribute(Qt::WA_TranslucentBackground);
    setMouseTracking(true);
    setFocusPolicy(Qt::StrongFocus);
    setFixedSize(m_skin.Size());
    m_title = QStringLiteral("Songweaver");
}

QString PlayerWindow::Text(const char* key) const
{
    return DisplayText(m_state.Language.GetText(QString::fromLatin1(key)));
}

void PlayerWindow::DockAsFirstWindow()
{
    m_docking.Register(this);
}

void PlayerWindow::ApplySkin()
{
    setWindowIcon(QIcon(QStringLiteral(":/skin/songweaver.svg")));
    setFixedSize(m_skin.Size());
    setMask(m_skin.WindowRegion());
    LightOut(2);
    update();
}

QMenu* PlayerWindow::MakeMenu(const QString& name, const std::vector<MenuItem>& items)
{
    QMenu* menu = BuildKeyedMenu(this, name, items,
                                 {[this](const char* key) { return Text(key); },
                                  [this](const QString& key) { emit menuCommand(key); },
                                  [this](const QString& key) { return Menu(key); }});
    m_menus[name] = menu;
    return menu;
}

void PlayerWindow::BuildMenus()
{
    MakeMenu(QStringLiteral("Options"), {{"Prefs", "Preferences"}, {nullptr, nullptr}, {"Current", "TimeRemaining"},
                                         {"Elapsed", "TimeElapsed"}});
    MakeMenu(QStringLiteral("Player"),
             {{"Previous", "Previous"}, {"Play", "Play"}, {"Pause", "Pause"}, {"Stop", "Stop"}, {"Next", "Next"}});
    QMenu* sound = MakeMenu(QStringLiteral("Sound"), SoundMenuItems());
    connect(sound, &QMenu::aboutToShow, this, [this, sound] { CheckVocalsItem(*sound, m_state.VocalsOff); });
    QMenu* recent = MakeMenu(QStringLiteral("Recent"), {});
    connect(recent, &QMenu::aboutToShow, this, [this, recent] { FillRecentMenu(*recent); });
    MakeMenu(QStringLiteral("Main"),
             {{"About", "About"}, {nullptr, nullptr}, {"Open", "FileOpen"}, {"Recent", "RecentFiles"}, {"Info", "FileInfo"},
              {nullptr, nullptr},
              {"List", "UserList"}, {"Control", "Controls"}, {"Karaoke", "KaraokeWindow"}, {"Editor", "Editor"},
              {"Library", "SongLibrary"}, {"Singers", "Singers"}, {"Remote", "RemoteMenu"}, {nullptr, nullptr}, {"Microphone", "SwitchMicrophone"}, {"Record", "Record"}, {"Voice", "YourVoice"},
              {nullptr, nullptr}, {"Options", "Options"}, {"Player", "Playback"}, {"Sound", "SongSound"},
              {nullptr, nullptr},
              {"HelpMe", "MnuHelp"}, {"Keyboard", "Keyboard"}, {nullptr, nullptr}, {"Exit", "Exit"}});
    MakeMenu(QStringLiteral("TrayMenu"), {{"TrayRestore", "Restore"}, {"TrayExit", "Exit"}});
}

void PlayerWindow::FillRecentMenu(QMenu& menu)
{
    menu.clear();
    const QStringList& paths = m_state.Recent.Paths();
    for (int i = 0; i < paths.size(); ++i) {
        QAction* action = menu.addAction(NumberedMenuText(i, QFileInfo(paths[i]).fileName()));
        action->setToolTip(paths[i]);
        const QString key = QStringLiteral("Recent%1").arg(i);
        connect(action, &QAction::triggered, this, [this, key] { emit menuCommand(key); });
    }
    menu.setToolTipsVisible(true);
    if (!paths.isEmpty())
        menu.addSeparator();
    QAction* clear = menu.addAction(Text("RecentClear"));
    clear->setEnabled(!paths.isEmpty());
    connect(clear, &QAction::triggered, this, [this] { emit menuCommand(QStringLiteral("RecentClear")); });
}

QMenu* PlayerWindow::Menu(const QString& name) const
{
    const auto it = m_menus.find(name);
    return it == m_menus.end() ? nullptr : it->second;
}

// ---- Painting ------------------------------------------------------------------------------

void PlayerWindow::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const qreal dpr = devicePixelRatioF();
    painter.drawImage(QPoint(0, 0), m_skin.Picture(Skin::Normal, dpr));
    for (int button = 1; button <= Skin::kButtons; ++button)
        PaintButton(painter, button, dpr);

    const QImage& off = m_skin.Lamps(false, dpr);
    const QImage& on = m_skin.Lamps(true, dpr);
    painter.drawImage(kLampOrigin, off);
    for (size_t i = 0; i < kLampStrip.size(); ++i) {
        if (!m_lamps[i])
            continue;
        const auto [x, w] = kLampStrip[i];
        painter.drawImage(QRectF(kLampOrigin.x() + x, kLampOrigin.y(), w, 10), on, QRectF(x * dpr, 0, w * dpr, 10 * dpr));
    }
    PaintLabels(painter);
    PaintSlider(painter, m_skin.Element(QStringLiteral("progress")), m_progress);
    PaintSlider(painter, m_skin.Element(QStringLiteral("volume")), m_volume);
}

void PlayerWindow::PaintButton(QPainter& painter, int button, qreal dpr)
{
    const QRect box = m_skin.ButtonRect(button).adjusted(-1, -1, 1, 1);
    const int kind = int(std::find(kLightOutButton.begin(), kLightOutButton.end(), button) - kLightOutButton.begin()) + 1;
    if (kind <= 3 && m_lightsOut.count(kind)) {
        const QImage& strip = m_skin.Disabled(dpr);
        painter.drawImage(QRectF(kLightOutAt[size_t(kind - 1)], kLightOutSize), strip,
                          QRectF((kind - 1) * 23 * dpr, 0, 23 * dpr, 15 * dpr));
        return;
    }
    const int state = m_buttonState[size_t(button)];
    if (state == Skin::Normal)
        return;
    painter.drawImage(QRectF(box), m_skin.Picture(state, dpr),
                      QRectF(box.x() * dpr, box.y() * dpr, box.width() * dpr, box.height() * dpr));
}

void PlayerWindow::PaintLabels(QPainter& painter)
{
    const QRect display = m_skin.Element(QStringLiteral("display"));
    QFont title = font();
    title.setPointSize(kTitlePoints);
    title.setBold(true);
    QFont artist = font();
    artist.setPointSize(kArtistPoints);
    painter.setFont(title);
    painter.setPen(kLabelColour);
    painter.drawText(QRect(19, display.top() + 3, kLabelWidth + 8, 20), Qt::AlignLeft | Qt::AlignVCenter, m_title);
    painter.setFont(artist);
    painter.setPen(kDimColour);
    painter.drawText(QRect(19, display.top() + 23, kLabelWidth + 8, 18), Qt::AlignLeft | Qt::AlignVCenter, m_artist);

    QFont digits(QStringLiteral("DejaVu Sans Mono"));
    digits.setPixelSize(26);
    digits.setBold(true);
    painter.setFont(digits);
    painter.setPen(kLabelColour);
    painter.drawText(QRect(display.right() - 104, display.top() + 2, 98, display.height() - 4),
                     Qt::AlignRight | Qt::AlignVCenter, m_time);

    QFont small = font();
    small.setPixelSize(9);
    small.setBold(true);
    painter.setFont(small);
    painter.setPen(kQualityColour);
    painter.drawText(QRect(98, 69, 56, 16), Qt::AlignLeft | Qt::AlignVCenter, m_bitrate);
    painter.drawText(QRect(152, 69, 60, 16), Qt::AlignLeft | Qt::AlignVCenter, m_hz);
}

void PlayerWindow::PaintSlider(QPainter& painter, const QRect& well, double value)
{
    const qreal filled = well.width() * std::clamp(value, 0.0, 1.0);
    QLinearGradient fill(well.topLeft(), well.topRight());
    fill.setColorAt(0, QColor(0x6f, 0x82, 0xd8));
    fill.setColorAt(1, QColor(0xb8, 0xc6, 0xff));
    painter.setPen(Qt::NoPen);
    painter.setBrush(fill);
    painter.drawRoundedRect(QRectF(well.left() + 0.5, well.top() + 0.5, std::max<qreal>(filled - 1, 0), well.height() - 1), 2.5, 2.5);
    painter.setBrush(QColor(0xf4, 0xf6, 0xff));
    painter.setPen(QPen(QColor(0x2c, 0x36, 0x70), 1));
    painter.drawEllipse(QPointF(well.left() + filled, well.center().y() + 0.5), 5, 5);
}

// ---- Mouse and keys ----------------------------------------------------------------------------

double PlayerWindow::SliderValueAt(const QRect& well, int x) const
{
    return std::clamp(double(x - well.left()) / std::max(1, well.width()), 0.0, 1.0);
}

void PlayerWindow::mouseMoveEvent(QMouseEvent* event)
{
    const QPoint at = event->position().toPoint();
    switch (m_drag) {
    case Drag::Window:
        move(event->globalPosition().toPoint() - m_dragOffset);
        return;
    case Drag::Progress:
        m_progress = SliderValueAt(m_skin.Element(QStringLiteral("progress")), at.x());
        update();
        emit progressMoved(m_progress);
        return;
    case Drag::Volume:
        m_volume = SliderValueAt(m_skin.Element(QStringLiteral("volume")), at.x());
        update();
        emit volumeMoved(m_volume);
        return;
    case Drag::None:
        break;
    }
    if (event->buttons() != Qt::NoButton)
        return;
    const int hit = m_skin.ButtonAt(at);
    const int hover = m_state.HoverButton;
    if (hit) {
        QToolTip::showText(event->globalPosition().toPoint(), Text(kTipKeys[hit - 1]), this, m_skin.ButtonRect(hit));
        if (hit != hover) {
            if (hover)
                ShowButton(hover, Skin::Normal);
            ShowButton(hit, Skin::Hover);
        }
    } else if (hover) {
        ShowButton(hover, Skin::Normal);
    }
}

void PlayerWindow::leaveEvent(QEvent*)
{
    if (m_state.HoverButton)
        ShowButton(m_state.HoverButton, Skin::Normal);
}

void PlayerWindow::mousePressEvent(QMouseEvent* event)
{
    const QPoint at = event->position().toPoint();
    if (event->button() == Qt::RightButton) {
        if (QMenu* main = Menu(QStringLiteral("Main")))
            main->popup(event->globalPosition().toPoint());
        return;
    }
    if (event->button() != Qt::LeftButton)
        return;
    if (const int hit = m_skin.ButtonAt(at)) {
        if (IsLatching(hit))
            emit buttonAction(PlayerButton(hit));
        if (hit != int(PlayerButton::Record))
            ShowButton(hit, Skin::Pressed);
        m_pressed = hit;
        return;
    }
    const QRect progress = m_skin.Element(QStringLiteral("progress")).adjusted(-2, -5, 2, 5);
    const QRect volume = m_skin.Element(QStringLiteral("volume")).adjusted(-2, -5, 2, 5);
    if (progress.contains(at)) {
        m_drag = Drag::Progress;
        mouseMoveEvent(event);
    } else if (volume.contains(at)) {
        emit windowsToFront();
        m_drag = Drag::Volume;
        mouseMoveEvent(event);
    } else if (m_skin.Element(QStringLiteral("close")).contains(at)) {
        emit closeRequested();
    } else if (m_skin.Element(QStringLiteral("minimize")).contains(at)) {
        emit minimizeRequested();
    } else if (m_skin.Element(QStringLiteral("display")).contains(at)) {
        emit windowsToFront();
    } else {
        m_drag = Drag::Window;
        m_dragOffset = event->globalPosition().toPoint() - pos();
    }
}

void PlayerWindow::mouseReleaseEvent(QMouseEvent* event)
{
    m_drag = Drag::None;
    if (event->button() != Qt::LeftButton || !m_pressed)
        return;
    const int pressed = std::exchange(m_pressed, 0);
    const int hit = m_skin.ButtonAt(event->position().toPoint());
    if (pressed != int(PlayerButton::Record))
        ShowButton(pressed, hit == pressed ? Skin::Hover : Skin::Normal);
    if (hit && !IsLatching(hit))
        emit buttonAction(PlayerButton(hit));
}

void PlayerWindow::keyPressEvent(QKeyEvent* event)
{
    emit keyPressed(event->key(), event->modifiers());
}

void PlayerWindow::closeEvent(QCloseEvent* event)
{
    // Closing goes through the application's orderly way out, which unloads this window.
    event->ignore();
    emit closeRequested();
}

// ---- The form's operations ------------------------------------------------------------------------

void PlayerWindow::Show() { show(); }
void PlayerWindow::Hide() { hide(); }
void PlayerWindow::SetTopMost(bool flag) { ::SetTopMost(*this, flag); }

void PlayerWindow::Unload()
{
    WritePlayerPosition(m_store, {Geometry(), m_state.PlaylistOpen, m_state.ControlsOpen});
    m_docking.Unregister(this);
    hide();
}

QRect PlayerWindow::Geometry() const { return QRect(pos(), size()); }

QRect PlayerWindow::ScreenGeometry() const
{
    const QScreen* s = screen();
    return s ? s->availableGeometry() : QRect(0, 0, 1280, 800);
}

void PlayerWindow::MoveTo(QPoint topLeft) { PlaceOnScreen(*this, QRect(topLeft, size())); }

void PlayerWindow::SetTimeText(const QString& text)
{
    // The ticks set the time a hundred times a second; its text changes once a second.
    if (text == m_time)
        return;
    m_time = text;
    update(m_skin.Element(QStringLiteral("display")));
}

void PlayerWindow::SetProgress(double fraction)
{
    if (m_drag == Drag::Progress)
        return;
    // The knob is drawn to a quarter of a device pixel: a smaller move shows nothing.
    const QRect well = m_skin.Element(QStringLiteral("progress"));
    auto drawnAt = [&](double value) {
        return std::lround(well.width() * std::clamp(value, 0.0, 1.0) * devicePixelRatioF() * 4);
    };
    const bool moved = drawnAt(fraction) != drawnAt(m_progress);
    m_progress = fraction;
    if (moved)
        update(well.adjusted(-6, -6, 6, 6));
}

void PlayerWindow::SetVolumeSlider(double value)
{
    m_volume = std::clamp(value, 0.0, 1.0);
    update();
    emit volumeMoved(m_volume);
}

void PlayerWindow::Light(PlayerLamp lamp, bool on)
{
    m_lamps[size_t(lamp)] = on;
    update(QRect(kLampOrigin, QSize(69, 10)));
}

void PlayerWindow::LightOut(int kind)
{
    if (kind < 1 || kind > 3)
        return;
    m_lightsOut.insert(kind);
    update(QRect(kLightOutAt[size_t(kind - 1)], kLightOutSize));
}

void PlayerWindow::SetButton(PlayerButton button, int state)
{
    ShowButton(int(button), state);
}

void PlayerWindow::ShowButton(int index, int state)
{
    if (index < 1 || index > Skin::kButtons)
        return;
    const auto button = PlayerButton(index);
    const bool skip = (button == PlayerButton::Microphone && m_state.Recording)
                      || (button == PlayerButton::Record && !m_state.MicrophoneOn)
                      || (button == PlayerButton::Voice && m_state.Recording);
    if (!skip) {
        int shown = state;
        const bool latched = button == PlayerButton::Mute ? m_state.Muted : button == PlayerButton::Record ? m_state.Recording : false;
        if (IsLatching(index)) {
            if (latched && state < Skin::Pressed)
                shown = Skin::Pressed;
            else if (!latched && state == Skin::Pressed)
                shown = Skin::Normal;
        }
        m_buttonState[size_t(index)] = shown;
        for (size_t kind = 0; kind < kLightOutButton.size(); ++kind)
            if (kLightOutButton[kind] == index)
                m_lightsOut.erase(int(kind) + 1);
        update(m_skin.ButtonRect(index).adjusted(-2, -2, 2, 2));
    }
    m_state.HoverButton = int16_t(state == Skin::Hover ? index : 0);
}

void PlayerWindow::PutLabels(const QString& artist, const QString& title)
{
    QFont titleFont = font();
    titleFont.setPointSize(kTitlePoints);
    titleFont.setBold(true);
    QFont artistFont = font();
    artistFont.setPointSize(kArtistPoints);
    m_title = FitLabelText(title, titleFont, kLabelWidth);
    m_artist = FitLabelText(artist, artistFont, kLabelWidth);
    update(m_skin.Element(QStringLiteral("display")));
}

void PlayerWindow::SetQualityLabels(const QString& bitrate, const QString& sampleRate)
{
    m_bitrate = bitrate;
    m_hz = sampleRate;
    update(QRect(96, 68, 120, 18));
}
