#include "playback/PlayerWindow.h"

#include "core/AppState.h"
#include "core/WindowPosition.h"
#include "widgets/Desktop.h"
#include "widgets/Docking.h"

#include <QCloseEvent>
#include <QContextMenuEvent>
#include <QFontMetrics>
#include <QHBoxLayout>
#include <QIcon>
#include <QLabel>
#include <QMenu>
#include <QScreen>
#include <QSlider>
#include <QStyle>
#include <QVBoxLayout>

namespace {

constexpr int kSliderSteps = 1000;
constexpr int kLabelWidth = 180;
constexpr int kTitlePoints = 13;
constexpr int kArtistPoints = 11;

const char* const kLampKeys[6] = {"ShortPlay", "ShortPause", "ShortStop", "ShortMicrophone", "ShortRecord", "ShortVoice"};

const char* const kStyleSheet = R"(
PlayerWindow { background: qlineargradient(x1:0, y1:0, x2:0, y2:1, stop:0 #2b3566, stop:1 #141a36); }
QLabel { color: #cedcfd; }
QLabel#digits { font-family: "DejaVu Sans Mono"; font-size: 34px; font-weight: bold; color: #eef2ff; }
QLabel#tLab { font-size: 13pt; color: #eef2ff; }
QLabel#aLab { font-size: 11pt; color: #aebbe8; }
QLabel#BitLabel, QLabel#HzLabel { font-size: 9px; color: #8ea6f0; }
QLabel[lamp="true"] { font-size: 9px; font-weight: bold; color: #4b5687; padding: 1px 4px;
                      border: 1px solid #39447a; border-radius: 3px; }
QLabel[lamp="true"][lit="true"] { color: #10162e; background: #8fe3a8; border-color: #b9f5ca; }
QLabel#muted { font-size: 9px; font-weight: bold; color: #ffb0b0; }
QSlider::groove:horizontal { height: 4px; background: #39447a; border-radius: 2px; }
QSlider::sub-page:horizontal { background: #8ea6f0; border-radius: 2px; }
QSlider::handle:horizontal { width: 12px; margin: -5px 0; border-radius: 6px; background: #eef2ff; }
)";

} // namespace

PlayerWindow::PlayerWindow(AppState& state, SettingsStore& store, Docking& docking)
    : m_state(state), m_store(store), m_docking(docking)
{
    setObjectName(QStringLiteral("Player"));
    setWindowTitle(QStringLiteral("Songweaver"));

    m_title = new QLabel(this);
    m_title->setObjectName(QStringLiteral("tLab"));
    m_artist = new QLabel(this);
    m_artist->setObjectName(QStringLiteral("aLab"));
    m_bitrate = new QLabel(this);
    m_bitrate->setObjectName(QStringLiteral("BitLabel"));
    m_hz = new QLabel(this);
    m_hz->setObjectName(QStringLiteral("HzLabel"));
    m_digits = new QLabel(this);
    m_digits->setObjectName(QStringLiteral("digits"));
    m_muted = new QLabel(this);
    m_muted->setObjectName(QStringLiteral("muted"));
    m_progress = new QSlider(Qt::Horizontal, this);
    m_progress->setRange(0, kSliderSteps);
    m_volume = new QSlider(Qt::Horizontal, this);
    m_volume->setRange(0, kSliderSteps);
    m_volume->setFixedWidth(90);
    connect(m_progress, &QSlider::sliderMoved, this, [this](int v) { emit progressMoved(double(v) / kSliderSteps); });
    connect(m_volume, &QSlider::valueChanged, this, [this](int v) { emit volumeMoved(double(v) / kSliderSteps); });

    auto* lamps = new QHBoxLayout;
    lamps->setSpacing(4);
    for (size_t i = 0; i < m_lamps.size(); ++i) {
        m_lamps[i] = new QLabel(this);
        m_lamps[i]->setProperty("lamp", true);
        lamps->addWidget(m_lamps[i]);
    }
    lamps->addStretch();
    lamps->addWidget(m_muted);

    auto* top = new QHBoxLayout;
    top->addWidget(m_digits);
    top->addStretch();
    top->addWidget(m_volume, 0, Qt::AlignBottom);

    auto* quality = new QVBoxLayout;
    quality->addWidget(m_bitrate, 0, Qt::AlignRight);
    quality->addWidget(m_hz, 0, Qt::AlignRight);
    auto* names = new QVBoxLayout;
    names->addWidget(m_title);
    names->addWidget(m_artist);
    auto* heading = new QHBoxLayout;
    heading->addLayout(names);
    heading->addStretch();
    heading->addLayout(quality);

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(14, 10, 14, 12);
    layout->setSpacing(6);
    layout->addLayout(heading);
    layout->addLayout(top);
    layout->addLayout(lamps);
    layout->addWidget(m_progress);
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
    setStyleSheet(QString::fromLatin1(kStyleSheet));
    for (size_t i = 0; i < m_lamps.size(); ++i)
        m_lamps[i]->setText(Text(kLampKeys[i]).toUpper());
    m_volume->setToolTip(Text("Vocal"));
    m_title->setText(QStringLiteral("Songweaver"));
    setFixedSize(460, 160);
}

void PlayerWindow::BuildMenus()
{
    m_menu = new QMenu(this);
    QMenu* options = m_menu->addMenu(Text("Options"));
    options->addAction(Text("TimeRemaining"), this, [this] { m_timeStyle = QStringLiteral("CURRENT"); });
    options->addAction(Text("TimeElapsed"), this, [this] { m_timeStyle = QStringLiteral("ELAPSED"); });
    m_menu->addSeparator();
    m_menu->addAction(Text("Exit"), this, &PlayerWindow::closeRequested);
}

void PlayerWindow::contextMenuEvent(QContextMenuEvent* event)
{
    if (m_menu)
        m_menu->popup(event->globalPos());
}

void PlayerWindow::closeEvent(QCloseEvent* event)
{
    // Closing goes through the application's orderly way out, which unloads this window.
    event->ignore();
    emit closeRequested();
}

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

void PlayerWindow::MoveTo(QPoint topLeft) { move(topLeft); }
void PlayerWindow::SetTimeText(const QString& text) { m_digits->setText(text); }
void PlayerWindow::SetProgress(double fraction) { m_progress->setValue(qRound(fraction * kSliderSteps)); }
void PlayerWindow::SetVolumeSlider(double value) { m_volume->setValue(qRound(value * kSliderSteps)); }
double PlayerWindow::VolumeValue() const { return double(m_volume->value()) / kSliderSteps; }

void PlayerWindow::Light(int index, int state)
{
    if (index < 0 || index >= static_cast<int>(m_lamps.size()))
        return;
    QLabel* lamp = m_lamps[static_cast<size_t>(index)];
    lamp->setProperty("lit", state != 0);
    lamp->style()->unpolish(lamp);
    lamp->style()->polish(lamp);
}

void PlayerWindow::SetButton(int index, int)
{
    if (index == 6)
        m_muted->setText(m_state.Muted ? Text("Mute").toUpper() : QString());
}

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

void PlayerWindow::PutLabels(const QString& artist, const QString& title)
{
    QFont titleFont = m_title->font();
    titleFont.setPointSize(kTitlePoints);
    QFont artistFont = m_artist->font();
    artistFont.setPointSize(kArtistPoints);
    m_title->setText(FitLabelText(title, titleFont, kLabelWidth));
    m_artist->setText(FitLabelText(artist, artistFont, kLabelWidth));
}

void PlayerWindow::SetQualityLabels(const QString& bitrate, const QString& sampleRate)
{
    m_bitrate->setText(bitrate);
    m_hz->setText(sampleRate);
}

QString PlayerWindow::TitleLabel() const
{
    return m_title->text();
}

QString PlayerWindow::ArtistLabel() const
{
    return m_artist->text();
}
