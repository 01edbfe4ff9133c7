#include "ui/editor/Editor.h"

#include "core/Dialogs.h"
#include "core/KeyTable.h"
#include "core/SettingsStore.h"
#include "core/WindowPosition.h"
#include "editor/LyricsDetails.h"
#include "editor/Onsets.h"
#include "lyrics/LyricsLoader.h"
#include "playback/PlayerCommands.h"
#include "playback/PlayerState.h"
#include "playback/PlayerTransport.h"
#include "playback/SongMemory.h"
#include "playback/SongSound.h"
#include "ui/editor/DetailsDialog.h"
#include "ui/editor/LyricsTable.h"
#include "ui/editor/TimeSpin.h"
#include "ui/kit/Desktop.h"
#include "ui/kit/Palette.h"
#include "ui/print/Printer.h"

#include <QActionGroup>
#include <QApplication>
#include <QCheckBox>
#include <QCloseEvent>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QMenuBar>
#include <QPainter>
#include <QPainterPath>
#include <QPlainTextEdit>
#include <QPointer>
#include <QPushButton>
#include <QSplitter>
#include <QStandardPaths>
#include <QStatusBar>
#include <QThreadPool>
#include <QToolBar>
#include <QVBoxLayout>
#include <map>
#include <set>

namespace {

// The smallest the window may be: 8505 by 4800 twips.
constexpr QSize kMinimumSize(567, 320);
constexpr QSize kFirstSize(780, 520);
// A held correction key repeats about as fast as a keyboard does.
constexpr int kCorrectIntervalMs = 33;
// The waveform's pace: a frame of a 30 Hz display.
constexpr int kWaveIntervalMs = 33;
// The key left of 1: "`" on most layouts, and by its place on the keyboard on any other.
bool IsCaptureKey(const QKeyEvent* event)
{
    constexpr quint32 kTildeKeyScanCode = 49;
    return event->key() == Qt::Key_QuoteLeft || event->key() == Qt::Key_AsciiTilde
           || event->nativeScanCode() == kTildeKeyScanCode;
}

const KeyBinding* EditorKey(const QKeyEvent* event)
{
    return FindKey(KeyWindow::Editor, event->key(), event->modifiers());
}

// The menu commands that have a key, and the key table's command behind each.
const std::map<QString, KeyCommand>& MenuKeys()
{
    static const std::map<QString, KeyCommand> keys = {
        {QStringLiteral("MenuNew"), KeyCommand::NewLyrics},         {QStringLiteral("MenuFileOpen"), KeyCommand::OpenSong},
        {QStringLiteral("MenuLyricsOpen"), KeyCommand::OpenLyrics}, {QStringLiteral("MenuSave"), KeyCommand::SaveLyrics},
        {QStringLiteral("MenuSaveAs"), KeyCommand::SaveLyricsAs},   {QStringLiteral("MenuPrint"), KeyCommand::PrintLyrics},
        {QStringLiteral("MenuCut"), KeyCommand::CutRows},           {QStringLiteral("MenuCopy"), KeyCommand::CopyRows},
        {QStringLiteral("MenuPaste"), KeyCommand::PasteRows},       {QStringLiteral("MenuDelete"), KeyCommand::RemoveRows},
        {QStringLiteral("MenuSelectAll"), KeyCommand::SelectAll},   {QStringLiteral("MenuInsert"), KeyCommand::InsertRow},
        {QStringLiteral("MenuAddNew"), KeyCommand::AddRow},         {QStringLiteral("MenuTutorial"), KeyCommand::Help},
        {QStringLiteral("MenuUndo"), KeyCommand::Undo},             {QStringLiteral("MenuRedo"), KeyCommand::Redo},
        {QStringLiteral("Speed50"), KeyCommand::SpeedHalf},         {QStringLiteral("Speed75"), KeyCommand::SpeedThreeQuarters},
        {QStringLiteral("Speed100"), KeyCommand::SpeedFull},
    };
    return keys;
}

// The menu command a key runs wherever the focus is in the window; empty for keys that only the
// list of rows answers.
QString WindowWideMenuCommand(const KeyBinding* binding)
{
    static const std::set<KeyCommand> windowWide = {KeyCommand::NewLyrics,   KeyCommand::OpenSong,
                                                    KeyCommand::OpenLyrics,  KeyCommand::SaveLyrics,
                                                    KeyCommand::SaveLyricsAs, KeyCommand::PrintLyrics,
                                                    KeyCommand::SelectAll,   KeyCommand::Help,
                                                    KeyCommand::Undo,        KeyCommand::Redo,
                                                    KeyCommand::SpeedHalf,   KeyCommand::SpeedThreeQuarters,
                                                    KeyCommand::SpeedFull};
    if (!binding || !windowWide.contains(binding->command))
        return {};
    for (const auto& [menu, command] : MenuKeys())
        if (command == binding->command)
            return menu;
    return {};
}

// The menu item's text with its key, as menus show keys.
QString WithKeyLabel(const QString& text, const QString& menuCommand)
{
    const auto it = MenuKeys().find(menuCommand);
    if (it == MenuKeys().end())
        return text;
    for (const KeyBinding& binding : KeyTable())
        if (binding.window == KeyWindow::Editor && binding.command == it->second && binding.label)
            return text + u'\t' + QString::fromLatin1(binding.label);
    return text;
}

bool IsCorrectionKey(const KeyBinding* binding)
{
    return binding && (binding->command == KeyCommand::CorrectUp || binding->command == KeyCommand::CorrectDown);
}

enum class Glyph { Play, Pause, Stop, Delete, Insert, AddNew };

// Two rows and a plus, the plus where the new row goes.
void PaintRowsAndPlus(QPainter& painter, QPointF rows, QPointF plus)
{
    painter.setPen(QPen(Palette::LitBlue, 1.6, Qt::SolidLine, Qt::RoundCap));
    painter.drawLine(rows, rows + QPointF(7, 0));
    painter.drawLine(rows + QPointF(0, 2.5), rows + QPointF(7, 2.5));
    painter.setPen(QPen(Palette::LitGreen, 2, Qt::SolidLine, Qt::RoundCap));
    painter.drawLine(plus + QPointF(0, -3.5), plus + QPointF(0, 3.5));
    painter.drawLine(plus + QPointF(-3.5, 0), plus + QPointF(3.5, 0));
}

void PaintGlyph(QPainter& painter, Glyph glyph)
{
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(Palette::ButtonText);
    switch (glyph) {
    case Glyph::Play: {
        QPainterPath triangle;
        triangle.moveTo(4, 2.5);
        triangle.lineTo(13.5, 8);
        triangle.lineTo(4, 13.5);
        triangle.closeSubpath();
        painter.setBrush(Palette::LitGreen);
        painter.drawPath(triangle);
        break;
    }
    case Glyph::Pause:
        painter.setBrush(Palette::LitAmber);
        painter.drawRoundedRect(QRectF(3.5, 3, 3.2, 10), 1, 1);
        painter.drawRoundedRect(QRectF(9.3, 3, 3.2, 10), 1, 1);
        break;
    case Glyph::Stop:
        painter.setBrush(Palette::LitRed);
        painter.drawRoundedRect(QRectF(3.5, 3.5, 9, 9), 1.5, 1.5);
        break;
    case Glyph::Delete:
        painter.setPen(QPen(Palette::LitRed, 2.2, Qt::SolidLine, Qt::RoundCap));
        painter.drawLine(QPointF(4, 4), QPointF(12, 12));
        painter.drawLine(QPointF(12, 4), QPointF(4, 12));
        break;
    case Glyph::Insert:
        PaintRowsAndPlus(painter, QPointF(7, 11.5), QPointF(5, 5.5));
        break;
    case Glyph::AddNew:
        PaintRowsAndPlus(painter, QPointF(2, 2.5), QPointF(11, 11));
        break;
    }
}

// Drawn at 1x and 2x, so it is sharp on either kind of screen.
QIcon GlyphIcon(Glyph glyph)
{
    QIcon icon;
    for (const qreal ratio : {1.0, 2.0}) {
        QPixmap pixmap(QSize(16, 16) * ratio);
        pixmap.setDevicePixelRatio(ratio);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        PaintGlyph(painter, glyph);
        painter.end();
        icon.addPixmap(pixmap);
    }
    return icon;
}

} // namespace

bool Editor::EditsSongThatPlays() const
{
    return !m_state.EditorFile.isEmpty() && m_state.EditorFile == m_state.CurrentFile;
}

Editor::Editor(PlayerState& state, SettingsStore& store, FormProvider& forms, PlayerTransport& transport,
               PlayerCommands& commands, Dialogs& dialogs)
    : m_state(state), m_store(store), m_forms(forms), m_transport(transport), m_commands(commands),
      m_dialogs(dialogs), m_document(state.Lyrics), m_history(state.Lyrics),
      m_timing(m_document, state.Lyrics, state.Clock,
               [this] { return EditsSongThatPlays(); })
{
    m_timing.SetTempo([this] { return m_state.SongOpen() ? KnobTempo(m_state) : 1.0; });
    setObjectName(QStringLiteral("Editor"));
    setPalette(ControlsPalette());
    setAutoFillBackground(true);
    setMinimumSize(kMinimumSize);
    resize(kFirstSize);

    BuildWindow();
    BuildMenus();
    BuildToolBar();
    ApplyLanguage();
    WatchKeys();

    m_correctTimer.setInterval(kCorrectIntervalMs);
    m_waveTimer.setInterval(kWaveIntervalMs);
    connect(&m_waveTimer, &QTimer::timeout, this, &Editor::FollowSong);
    connect(&m_correctTimer, &QTimer::timeout, this, [this] { CorrectionTick(); });
    m_actionTimer.setSingleShot(true);
    m_actionTimer.setInterval(0);
    connect(&m_actionTimer, &QTimer::timeout, this, [this] {
        const QString tag = std::exchange(m_actionTag, QString());
        if (tag == u"SaveMP3")
            SaveIntoSong();
    });
}

Editor::~Editor()
{
    // The children still call into the window while they go: the list asks the model for its
    // headers, which asks the window for their texts, and a cleared selection updates the status
    // bar. So they go first, while the window is whole.
    delete centralWidget();
    delete m_model;
}

QString Editor::Text(const char* key) const
{
    return DisplayText(m_state.Language.GetText(QString::fromLatin1(key)));
}

// ---- The window ---------------------------------------------------------------------------------

void Editor::BuildWindow()
{
    auto* splitter = new QSplitter(Qt::Horizontal, this);
    splitter->setChildrenCollapsible(false);

    auto* listSide = new QWidget(splitter);
    auto* listLayout = new QVBoxLayout(listSide);
    listLayout->setContentsMargins(8, 8, 4, 8);
    listLayout->setSpacing(8);
    m_list = new LyricsList(listSide);
    m_model = new LyricsTableModel(
        m_document,
        [this](int column) {
            static const char* const kHeaders[] = {"HeaderTime", "HeaderText", "LineBreak"};
            return Text(kHeaders[column]);
        },
        this);
    m_model->TextEdited = [this](int row, const QString& text) { TextEdited(row, text); };
    m_list->setModel(m_model);
    // The time column is as wide as a stamp from the start, so the taps do not make it jump.
    const QFontMetrics metrics(m_list->font());
    m_list->horizontalHeader()->setSectionResizeMode(LyricsTableModel::TimeColumn, QHeaderView::Fixed);
    m_list->horizontalHeader()->resizeSection(LyricsTableModel::TimeColumn,
                                              metrics.horizontalAdvance(QStringLiteral("- 00:00,000")) + 16);
    m_list->verticalHeader()->setDefaultSectionSize(metrics.height() + 8);
    m_list->horizontalHeader()->setSectionResizeMode(LyricsTableModel::TextColumn, QHeaderView::Stretch);
    m_list->horizontalHeader()->setSectionResizeMode(LyricsTableModel::BreakColumn, QHeaderView::Fixed);
    m_list->KeyDown = [this](QKeyEvent* event) { return ListKeyDown(event); };
    m_list->KeyUp = [this](QKeyEvent* event) { return ListKeyUp(event); };
    m_list->RowChosen = [this] { RowChosen(); };
    connect(m_list->selectionModel(), &QItemSelectionModel::selectionChanged, this, [this] { ShowRowCount(); });
    listLayout->addWidget(m_list, 1);
    m_wave = new WaveformStrip(listSide);
    connect(m_wave, &WaveformStrip::seekRequested, this, [this](double seconds) {
        if (EditsSongThatPlays())
            m_transport.SeekToSeconds(seconds);
    });
    connect(m_wave, &WaveformStrip::stampMoved, this, &Editor::StampDragged);
    listLayout->addWidget(m_wave);
    listLayout->addWidget(BuildTimingBar());

    auto* textSide = new QWidget(splitter);
    auto* textLayout = new QVBoxLayout(textSide);
    textLayout->setContentsMargins(4, 8, 8, 8);
    textLayout->setSpacing(4);
    m_lyricsHeading = new QLabel(textSide);
    m_lyricsHeading->setObjectName(QStringLiteral("HeaderEditor"));
    QFont heading = m_lyricsHeading->font();
    heading.setBold(true);
    m_lyricsHeading->setFont(heading);
    m_lyrics = new QPlainTextEdit(textSide);
    m_lyrics->setObjectName(QStringLiteral("Lyrics"));
    m_lyrics->setTabChangesFocus(true);
    // Each line of the text is a line on the karaoke screen; a wrapped line would hide that.
    m_lyrics->setLineWrapMode(QPlainTextEdit::NoWrap);
    textLayout->addWidget(m_lyricsHeading);
    textLayout->addWidget(m_lyrics, 1);

    splitter->addWidget(listSide);
    splitter->addWidget(textSide);
    splitter->setStretchFactor(0, 3);
    splitter->setStretchFactor(1, 2);
    setCentralWidget(splitter);

    m_fileLabel = new QLabel(this);
    m_fileLabel->setObjectName(QStringLiteral("Status1"));
    m_countLabel = new QLabel(this);
    m_fileLabel->setContentsMargins(6, 0, 0, 0);
    m_countLabel->setContentsMargins(0, 0, 6, 0);
    m_countLabel->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    m_countLabel->setMinimumWidth(m_countLabel->fontMetrics().horizontalAdvance(QStringLiteral("00000 / 00000")) + 12);
    statusBar()->addWidget(m_fileLabel, 1);
    statusBar()->addPermanentWidget(m_countLabel);
}

QWidget* Editor::BuildTimingBar()
{
    auto* bar = new QWidget(this);
    auto* layout = new QHBoxLayout(bar);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(6);

    m_correct = new TimeSpin(bar);
    m_correct->setMinimumWidth(110);
    m_correct->ArrowDown = [this](bool up) { GetKey(up ? 38 : 40); };
    m_correct->ArrowUp = [this] { EndCorrection(); };
    connect(m_correct, &QDoubleSpinBox::valueChanged, this, [this](double value) { CorrectEdited(value); });

    m_break = new QCheckBox(bar);
    m_break->setObjectName(QStringLiteral("chBreak"));
    connect(m_break, &QCheckBox::clicked, this, [this](bool checked) { BreakClicked(checked); });

    m_offset = new QDoubleSpinBox(bar);
    m_offset->setObjectName(QStringLiteral("Offst"));
    m_offset->setDecimals(3);
    m_offset->setRange(-600, 600);
    m_offset->setSingleStep(0.1);
    m_offset->setSuffix(QStringLiteral(" s"));
    m_doOff = new QPushButton(bar);
    m_doOff->setObjectName(QStringLiteral("DoOff"));
    connect(m_doOff, &QPushButton::clicked, this, [this] { DoOff(); });

    m_details = new QPushButton(bar);
    m_details->setObjectName(QStringLiteral("Detale"));
    connect(m_details, &QPushButton::clicked, this, [this] { MenuDetails(); });

    m_capture = new QPushButton(bar);
    m_capture->setObjectName(QStringLiteral("Capture"));
    m_capture->setMinimumWidth(110);
    m_capture->setFocusPolicy(Qt::NoFocus);
    QFont bold = m_capture->font();
    bold.setBold(true);
    m_capture->setFont(bold);
    connect(m_capture, &QPushButton::clicked, this, [this] { CaptureLine(); });

    layout->addWidget(m_correct);
    layout->addWidget(m_break);
    layout->addSpacing(10);
    layout->addWidget(m_offset);
    layout->addWidget(m_doOff);
    layout->addStretch(1);
    layout->addWidget(m_details);
    layout->addWidget(m_capture);
    return bar;
}

void Editor::BuildMenus()
{
    // By position, separators (nullptr) counted: the places the old menus had.
    const std::vector<std::pair<const char*, std::vector<const char*>>> menus = {
        {"MenuFile",
         {"MenuNew", "MenuFileOpen", "MenuLyricsOpen", "MenuLyricsImport", nullptr, "MenuSave", "MenuSaveAs", nullptr,
          "MenuTextOpen", "MenuTextSave", nullptr, "MenuPrint", "MenuUpdate", nullptr, "MenuExit"}},
        {"MenuEdit",
         {"MenuUndo", "MenuRedo", nullptr, "MenuCut", "MenuCopy", "MenuPaste", "MenuDelete", "MenuSelectAll",
          "MenuRemoveAll"}},
        {"MenuKaraoke",
         {"MenuDetails", nullptr, "MenuSplitText", "MenuSplitWords", "MenuMergeText", nullptr, "MenuHeldTaps",
          "MenuSnapOnsets", nullptr, "MenuInsert", "MenuAddNew", nullptr, "MenuClear"}},
        {"MenuHelp", {"MenuTutorial", "MenuSupport", "MenuVersion", nullptr, "MenuAbout"}},
    };
    for (const auto& [name, items] : menus) {
        QMenu* menu = menuBar()->addMenu(QString());
        menu->setObjectName(QString::fromLatin1(name));
        m_menus[QString::fromLatin1(name)] = menu;
        for (const char* item : items) {
            if (!item) {
                menu->addSeparator();
                continue;
            }
            const QString key = QString::fromLatin1(item);
            QAction* action = menu->addAction(QString());
            action->setData(key);
            connect(action, &QAction::triggered, this, [this, key] { Command(key); });
            m_actions[key] = action;
        }
    }
    QMenu& file = *m_menus[QStringLiteral("MenuFile")];
    AddExportMenu(file, file.actions().value(file.actions().indexOf(m_actions[QStringLiteral("MenuLyricsImport")]) + 1));
    m_actions[QStringLiteral("MenuHeldTaps")]->setCheckable(true);
    QMenu& karaoke = *m_menus[QStringLiteral("MenuKaraoke")];
    AddLanguageMenu(karaoke, m_actions[QStringLiteral("MenuMergeText")]);
}

void Editor::AddLanguageMenu(QMenu& karaoke, QAction* before)
{
    m_lyricsLanguage = DefaultLyricsLanguage(m_state.Language.IsPolish);
    auto* languages = new QMenu(&karaoke);
    languages->setObjectName(QStringLiteral("LyricsLanguage"));
    auto* group = new QActionGroup(languages);
    for (const QString& code : HyphenationLanguages()) {
        QAction* action = languages->addAction(code);
        action->setCheckable(true);
        action->setChecked(code == m_lyricsLanguage);
        action->setData(code);
        group->addAction(action);
        connect(action, &QAction::triggered, this, [this, code] { m_lyricsLanguage = code; });
    }
    karaoke.insertMenu(before, languages)->setData(languages->objectName());
    m_menus[languages->objectName()] = languages;
}

void Editor::BuildToolBar()
{
    QToolBar* tools = addToolBar(QString());
    tools->setObjectName(QStringLiteral("eBTN"));
    tools->setMovable(false);
    tools->setIconSize(QSize(16, 16));
    tools->setToolButtonStyle(Qt::ToolButtonIconOnly);
    // The buttons by their old index: 1 to 3 the player's, 5 to 7 the list's.
    const std::vector<std::tuple<int, Glyph, const char*>> buttons = {
        {1, Glyph::Play, "Play"},         {2, Glyph::Pause, "Pause"},   {3, Glyph::Stop, "Stop"},
        {5, Glyph::Delete, "MenuDelete"}, {6, Glyph::Insert, "MenuInsert"}, {7, Glyph::AddNew, "MenuAddNew"},
    };
    for (const auto& [index, glyph, key] : buttons) {
        if (index == 5)
            tools->addSeparator();
        QAction* action = tools->addAction(GlyphIcon(glyph), QString());
        action->setObjectName(QStringLiteral("eBTN%1").arg(index));
        action->setData(QString::fromLatin1(key));
        const int button = index;
        connect(action, &QAction::triggered, this, [this, button] {
            switch (button) {
            case 1: m_commands.ButtonAction(PlayerButton::Play); break;
            case 2: m_commands.ButtonAction(PlayerButton::Pause); break;
            case 3: m_commands.ButtonAction(PlayerButton::Stop); break;
            case 5: DeleteRows(); break;
            case 6: InsertRow(); break;
            default: AddNewRow(); break;
            }
        });
    }
    // Slower playback for a fast verse: the taps stamp song time all the same.
    tools->addSeparator();
    auto* speeds = new QActionGroup(tools);
    for (const char* key : {"Speed50", "Speed75", "Speed100"}) {
        QAction* action = tools->addAction(QString::fromLatin1(key).mid(5) + u'%');
        action->setObjectName(QString::fromLatin1(key));
        action->setData(QString::fromLatin1(key));
        action->setCheckable(true);
        action->setChecked(key == std::string_view("Speed100"));
        speeds->addAction(action);
        connect(action, &QAction::triggered, this, [this, key] { Command(QString::fromLatin1(key)); });
    }
    if (QWidget* button = tools->widgetForAction(speeds->actions().first()))
        button->setMinimumWidth(button->fontMetrics().horizontalAdvance(QStringLiteral("100%")) + 12);
}

void Editor::PlayAt(double tempo, const char* key)
{
    m_transport.PlayAtSpeed(tempo);
    if (auto* action = findChild<QAction*>(QString::fromLatin1(key)))
        action->setChecked(true);
}

void Editor::PlayAtHalf()
{
    PlayAt(0.5, "Speed50");
}

void Editor::PlayAtThreeQuarters()
{
    PlayAt(0.75, "Speed75");
}

void Editor::PlayAtFull()
{
    PlayAt(1.0, "Speed100");
}

void Editor::ApplyLanguage()
{
    // The shipped tables' caption row has never been read ("=>"); the window keeps its own then.
    const QString caption = Text("EditorCaption");
    setWindowTitle(caption.isEmpty() ? QStringLiteral("SWV Editor") : caption);
    for (auto& [name, menu] : m_menus)
        menu->setTitle(Text(name.toLatin1().constData()));
    for (auto& [key, action] : m_actions)
        action->setText(WithKeyLabel(Text(key.toLatin1().constData()), key));
    ShowUndoState();
    if (auto* tools = findChild<QToolBar*>(QStringLiteral("eBTN")))
        for (QAction* action : tools->actions())
            if (!action->isSeparator())
                action->setToolTip(WithKeyLabel(Text(action->data().toString().toLatin1().constData()).remove(u'&'),
                                                action->data().toString())
                                       .replace(u'\t', QStringLiteral(" - ")));
    m_lyricsHeading->setText(Text("HeaderEditor"));
    m_break->setText(Text("LineBreak"));
    m_doOff->setText(Text("Offset"));
    m_capture->setText(Text("Capture"));
    m_details->setText(Text("Details"));
    m_capture->setToolTip(QStringLiteral("Space, `"));
    m_model->HeadersChanged();
    const QFontMetrics metrics(m_list->horizontalHeader()->font());
    m_list->horizontalHeader()->resizeSection(LyricsTableModel::BreakColumn,
                                              metrics.horizontalAdvance(Text("LineBreak")) + 24);
}

// The key left of 1 stamps wherever the focus is.
void Editor::WatchKeys()
{
    installEventFilter(this);
    for (QWidget* child : findChildren<QWidget*>())
        child->installEventFilter(this);
}

bool Editor::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::KeyPress) {
        auto* key = static_cast<QKeyEvent*>(event);
        if (IsCaptureKey(key)) {
            if (!key->isAutoRepeat())
                CaptureLine();
            return true;
        }
        if (const QString command = WindowWideMenuCommand(EditorKey(key)); !command.isEmpty()) {
            if (!key->isAutoRepeat())
                Command(command);
            return true;
        }
    } else if (event->type() == QEvent::KeyRelease) {
        auto* key = static_cast<QKeyEvent*>(event);
        if (IsCaptureKey(key)) {
            if (!key->isAutoRepeat())
                CaptureReleased();
            return true;
        }
    }
    return QMainWindow::eventFilter(watched, event);
}

QMenu* Editor::Menu(const QString& key) const
{
    const auto it = m_menus.find(key);
    return it == m_menus.end() ? nullptr : it->second;
}

QString Editor::StatusMessage() const
{
    return statusBar()->currentMessage();
}

QString Editor::StatusText() const
{
    return m_fileLabel->text();
}

// ---- The form -----------------------------------------------------------------------------------

void Editor::Open()
{
    const auto saved = ReadWindowPosition(m_store, QStringLiteral("editor position"));
    if (saved)
        PlaceOnScreen(*this, *saved);
    ApplyLanguage();
    // The lyrics of the song that plays come into the editor; an empty editor takes up the song
    // even without them, so that its first taps show on the karaoke window.
    if (m_state.SongOpen() && m_state.Lyrics.PlayLyrics.size() > 1) {
        m_state.Lyrics.EditLyrics = m_state.Lyrics.PlayLyrics;
        m_state.Lyrics.EditPictures = m_state.Lyrics.PlayPictures;
        m_state.EditorFile = m_state.CurrentFile;
        m_document.MarkSaved();
    } else if (m_state.SongOpen() && m_document.Count() == 0) {
        m_state.EditorFile = m_state.CurrentFile;
    }
    FillEditorList();
    MeasureLab();
    Show();
    // The first time, beside the player; the frame is known only once the window shows.
    if (!saved) {
        const QRect player = m_forms.Player().Geometry();
        move(PlaceBeside(player, frameGeometry().size(), AvailableScreenAt(player)).topLeft());
        PlaceOnScreen(*this, geometry());
    }
}

void Editor::Show()
{
    m_waveTimer.start();
    show();
    raise();
    activateWindow();
}

void Editor::SetTopMost(bool flag)
{
    ::SetTopMost(*this, flag);
}

void Editor::Unload()
{
    EndCorrection();
    WriteWindowPosition(m_store, QStringLiteral("editor position"), geometry());
    hide();
}

void Editor::closeEvent(QCloseEvent* event)
{
    if (!ChangesSettled()) {
        event->ignore();
        return;
    }
    Unload();
    m_state.EditorOpen = false;
    event->accept();
}

void Editor::MeasureLab()
{
    m_fileLabel->setText(m_state.EditorFile);
    ShowRowCount();
}

void Editor::ShowRowCount()
{
    const int count = m_document.Count();
    m_countLabel->setText(count > 0 ? QStringLiteral("%1 / %2").arg(m_list->SelectedRow()).arg(count) : QString());
}

// ---- Commands by key ----------------------------------------------------------------------------

void Editor::Command(const QString& key)
{
    static const std::map<QString, void (Editor::*)()> kCommands = {
        {QStringLiteral("MenuNew"), &Editor::MenuNew},
        {QStringLiteral("MenuFileOpen"), &Editor::MenuFileOpen},
        {QStringLiteral("MenuLyricsOpen"), &Editor::MenuLyricsOpen},
        {QStringLiteral("MenuLyricsImport"), &Editor::MenuLyricsImport},
        {QStringLiteral("MenuSave"), &Editor::MenuSave},
        {QStringLiteral("MenuSaveAs"), &Editor::MenuSaveAs},
        {QStringLiteral("MenuTextOpen"), &Editor::MenuTextOpen},
        {QStringLiteral("MenuTextSave"), &Editor::MenuTextSave},
        {QStringLiteral("MenuUpdate"), &Editor::MenuUpdate},
        {QStringLiteral("MenuSplitText"), &Editor::SplitText},
        {QStringLiteral("MenuSplitWords"), &Editor::SplitWords},
        {QStringLiteral("MenuSnapOnsets"), &Editor::SnapToOnsets},
        {QStringLiteral("MenuUndo"), &Editor::Undo},
        {QStringLiteral("MenuRedo"), &Editor::Redo},
        {QStringLiteral("Speed50"), &Editor::PlayAtHalf},
        {QStringLiteral("Speed75"), &Editor::PlayAtThreeQuarters},
        {QStringLiteral("Speed100"), &Editor::PlayAtFull},
        {QStringLiteral("MenuMergeText"), &Editor::fnMoveTime},
        {QStringLiteral("MenuInsert"), &Editor::InsertRow},
        {QStringLiteral("MenuAddNew"), &Editor::AddNewRow},
        {QStringLiteral("MenuClear"), &Editor::RemoveAll},
        {QStringLiteral("MenuDetails"), &Editor::MenuDetails},
        {QStringLiteral("MenuVersion"), &Editor::MenuVersion},
        {QStringLiteral("MenuTutorial"), &Editor::MenuTutorial},
        {QStringLiteral("MenuPrint"), &Editor::MenuPrint},
        {QStringLiteral("MenuSupport"), &Editor::MenuSupport},
        {QStringLiteral("MenuAbout"), &Editor::MenuAbout},
    };
    if (const auto it = kCommands.find(key); it != kCommands.end())
        (this->*(it->second))();
    else if (key == u"MenuExit")
        close();
    else
        EditMenuCommand(key);
}

// The Edit menu acts on the text box or on the rows, whichever has the focus.
void Editor::EditMenuCommand(const QString& key)
{
    if (focusWidget() == m_lyrics) {
        if (key == u"MenuCut")
            m_lyrics->cut();
        else if (key == u"MenuCopy")
            m_lyrics->copy();
        else if (key == u"MenuPaste")
            m_lyrics->paste();
        else if (key == u"MenuDelete")
            m_lyrics->textCursor().deleteChar();
        else if (key == u"MenuSelectAll")
            m_lyrics->selectAll();
        else if (key == u"MenuRemoveAll")
            m_lyrics->clear();
        return;
    }
    if (focusWidget() != m_list)
        return;
    if (key == u"MenuCut") {
        CutRows();
    } else if (key == u"MenuCopy") {
        CopyRows();
    } else if (key == u"MenuPaste") {
        PasteRows();
    } else if (key == u"MenuDelete") {
        DeleteRows();
    } else if (key == u"MenuSelectAll") {
        m_list->selectAll();
    } else if (key == u"MenuRemoveAll") {
        RemoveAll();
    }
}

// ---- The list and its rows ----------------------------------------------------------------------

bool Editor::ListKeyDown(QKeyEvent* event)
{
    const KeyBinding* binding = EditorKey(event);
    if (!binding)
        return false;
    switch (binding->command) {
    case KeyCommand::Capture:
        if (!event->isAutoRepeat())
            CaptureLine();
        break;
    case KeyCommand::CorrectUp:
        if (!m_correctTimer.isActive())
            CorrectUp();
        break;
    case KeyCommand::CorrectDown:
        if (!m_correctTimer.isActive())
            CorrectDown();
        break;
    case KeyCommand::InsertRow:
        InsertRow();
        break;
    case KeyCommand::AddRow:
        AddNewRow();
        break;
    case KeyCommand::RemoveRows:
        DeleteRows();
        break;
    case KeyCommand::EditText:
        m_list->BeginTextEdit(m_list->SelectedRow());
        break;
    case KeyCommand::CopyRows:
        CopyRows();
        break;
    case KeyCommand::PasteRows:
        PasteRows();
        break;
    case KeyCommand::CutRows:
        CutRows();
        break;
    default:
        return false;
    }
    return true;
}

bool Editor::ListKeyUp(QKeyEvent* event)
{
    if (const KeyBinding* binding = EditorKey(event); binding && binding->command == KeyCommand::Capture) {
        if (!event->isAutoRepeat())
            CaptureReleased();
        return true;
    }
    if (!IsCorrectionKey(EditorKey(event)))
        return false;
    if (!event->isAutoRepeat())
        EndCorrection();
    return true;
}

void Editor::FillEditorList()
{
    m_history.Reset();
    ShowUndoState();
    m_filling = true;
    m_model->Reset();
    m_break->setChecked(m_document.Count() > 0 && m_document.Entry(1).LineEnd);
    m_list->SelectRow(1);
    fnMoveTime();
    m_timing.SetCorrect(m_document.Count() > 0 ? m_document.Entry(1).Time : 0, m_list->SelectedRow());
    ShowCorrect();
    MeasureLab();
    m_filling = false;
}

void Editor::FollowSong()
{
    if (!isVisible())
        return;
    const QString song = EditsSongThatPlays() ? m_state.CurrentFile : QString();
    if (song != m_waveSong)
        LoadWaveform(song);
    std::vector<WaveformStrip::Mark> marks;
    const std::vector<int> selected = m_list->SelectedRows();
    for (int row = 1; row <= m_document.Count(); ++row)
        marks.push_back({m_document.Entry(row).Time, m_document.Entry(row).Length, m_document.Entry(row).Text,
                         std::find(selected.begin(), selected.end(), row) != selected.end()});
    m_wave->SetMarks(std::move(marks));
    const SongSession* session = m_state.Session.get();
    m_wave->SetPlayhead(m_state.Clock.Position(), session && session->GetState() == SongSession::Running);
}

void Editor::LoadWaveform(const QString& song)
{
    m_waveSong = song;
    m_onsets.reset();
    m_wave->SetPeaks(std::nullopt);
    m_wave->SetOnsets({});
    if (song.isEmpty())
        return;
    // Decoded on a worker; the answer is taken only if the editor still shows that song.
    const QString folder = QStandardPaths::writableLocation(QStandardPaths::CacheLocation) + QStringLiteral("/waveforms");
    QPointer<Editor> self(this);
    QThreadPool::globalInstance()->start([self, song, folder] {
        auto peaks = PeaksOfSong(folder, song, SongMemory::SongKey(song));
        QMetaObject::invokeMethod(qApp, [self, song, peaks = std::move(peaks)]() mutable {
            if (self && self->m_waveSong == song)
                self->m_wave->SetPeaks(std::move(peaks));
        });
        auto onsets = FindOnsets(song);
        QMetaObject::invokeMethod(qApp, [self, song, onsets = std::move(onsets)]() mutable {
            if (self && self->m_waveSong == song) {
                self->m_onsets = onsets;
                self->m_wave->SetOnsets(std::move(onsets));
            }
        });
    });
}

void Editor::SnapToOnsets()
{
    if (m_waveSong.isEmpty() || m_document.Count() == 0)
        return;
    // Found on the worker with the waveform; asked for before it is done, found here.
    if (!m_onsets)
        m_onsets = FindOnsets(m_waveSong);
    std::vector<int> rows = m_list->SelectedRows();
    if (SnapRows(m_state.Lyrics.EditLyrics, rows, *m_onsets) == 0)
        return;
    m_model->RowsChanged(1, m_document.Count());
    if (const int row = m_list->SelectedRow(); row > 0) {
        m_timing.SetCorrect(m_document.Entry(row).Time, row);
        ShowCorrect();
    }
    ShowOnDisplay(false);
    Recorded("MenuSnapOnsets");
}

void Editor::StampDragged(int row, double seconds)
{
    if (row < 1 || row > m_document.Count())
        return;
    m_document.SetTime(row, seconds);
    m_model->RowsChanged(row, row);
    if (row == m_list->SelectedRow()) {
        m_timing.SetCorrect(seconds, row);
        ShowCorrect();
    }
    ShowOnDisplay(false);
    Recorded("DragStamp");
}

void Editor::Recorded(const char* change)
{
    if (m_history.Record(QString::fromLatin1(change)))
        ShowUndoState();
}

void Editor::ShowUndoState()
{
    // "Undo Split text into syllables": the change as its menu item or button names it.
    const auto named = [this](const char* verb, const QString& change) {
        QString name = Text(change.toLatin1().constData()).remove(u'&').remove(QStringLiteral("..."));
        return WithKeyLabel(change.isEmpty() ? Text(verb) : Text(verb) + u' ' + name.toLower(),
                            QString::fromLatin1(verb));
    };
    QAction* undo = m_actions[QStringLiteral("MenuUndo")];
    QAction* redo = m_actions[QStringLiteral("MenuRedo")];
    undo->setText(named("MenuUndo", m_history.UndoChange()));
    undo->setEnabled(m_history.CanUndo());
    redo->setText(named("MenuRedo", m_history.RedoChange()));
    redo->setEnabled(m_history.CanRedo());
}

void Editor::Undo()
{
    if (m_correctTimer.isActive() || !m_history.Undo())
        return;
    RowsReplaced(m_list->SelectedRow());
    ShowUndoState();
}

void Editor::Redo()
{
    if (m_correctTimer.isActive() || !m_history.Redo())
        return;
    RowsReplaced(m_list->SelectedRow());
    ShowUndoState();
}

void Editor::RowsReplaced(int selectRow)
{
    m_model->Reset();
    m_list->SelectRow(std::min(selectRow, m_document.Count()));
    const int row = m_list->SelectedRow();
    m_timing.SetCorrect(row >= 1 ? m_document.Entry(row).Time : 0, std::max(row, 0));
    ShowCorrect();
    ShowRowState(row);
    MeasureLab();
    ShowOnDisplay(true);
}

void Editor::ShowOnDisplay(bool newRows)
{
    m_timing.ShowOnDisplay();
    if (!newRows || !m_state.SongOpen())
        return;
    ShowPicturesOnDisplay(m_state.Lyrics, QFileInfo(m_state.CurrentFile).absolutePath());
    FinishShownLyrics(m_state.Lyrics, m_transport.LyricsEnvironmentOfSong());
    // From the first row again: the tick catches up with stamped rows and waits at an untimed
    // one, where a jump to the position would take every row at 0 as sung.
    KaraokeForm* lyric = m_forms.Lyric();
    if (m_state.KaraokeOpen && lyric)
        lyric->ChangeLyrics();
}

void Editor::MenuPrint()
{
    Printer dialog(m_state.Lyrics.EditLyrics, m_store, m_state.Language, m_dialogs, this);
    dialog.exec();
}

void Editor::MenuDetails()
{
    const QString folder = m_state.EditorFile.isEmpty() ? QString() : QFileInfo(m_state.EditorFile).absolutePath();
    DetailsDialog dialog(m_state.Lyrics, *m_state.Theme, m_state.Language, m_dialogs, folder, this);
    if (dialog.exec() == QDialog::Accepted) {
        ShowOnDisplay(true);
        Recorded("MenuDetails");
    }
}

void Editor::ShowRowState(int row)
{
    m_filling = true;
    m_break->setChecked(row >= 1 && m_document.Entry(row).LineEnd);
    m_filling = false;
}

void Editor::ShowCorrect()
{
    const QSignalBlocker quiet(m_correct);
    m_correct->setValue(m_timing.Correct());
}

void Editor::MenuNew()
{
    if (m_document.Count() > 0
        && !(m_document.Modified() ? ChangesSettled()
                                   : m_dialogs.AskYesNo(m_state.Language.GetText(QStringLiteral("MsgNew")))))
        return;
    m_lyrics->clear();
    m_document.Clear();
    m_document.MarkSaved();
    m_timing.SetCorrect(0, 0);
    ShowCorrect();
    RowsReplaced(0);
    m_history.Reset();
    ShowUndoState();
}

void Editor::SplitText()
{
    const Hyphenator syllables(m_lyricsLanguage);
    if (!syllables.Loaded())
        m_dialogs.Inform(MessageNamingFile(m_state.Language.GetText(QStringLiteral("NoHyphenation")), m_lyricsLanguage));
    SplitRows(syllables.Loaded() ? &syllables : nullptr);
}

void Editor::SplitWords()
{
    SplitRows(nullptr);
}

void Editor::SplitRows(const Hyphenator* syllables)
{
    if (!m_document.Split(m_lyrics->toPlainText(), syllables))
        return;
    RowsReplaced(1);
    Recorded(syllables ? "MenuSplitText" : "MenuSplitWords");
}

void Editor::fnMoveTime()
{
    if (m_document.Count() > 0)
        m_lyrics->setPlainText(m_document.Merge());
}

void Editor::InsertRow()
{
    const int row = m_list->SelectedRow();
    if (row == 0)
        return;
    m_document.Insert(row);
    RowsReplaced(row);
    Recorded("MenuInsert");
}

void Editor::AddNewRow()
{
    RowsReplaced(m_document.AddNew());
    Recorded("MenuAddNew");
}

void Editor::DeleteRows()
{
    const std::vector<int> rows = m_list->SelectedRows();
    if (rows.empty())
        return;
    m_document.Delete(rows);
    RowsReplaced(rows.front());
    Recorded("MenuDelete");
}

void Editor::CutRows()
{
    const std::vector<int> rows = m_list->SelectedRows();
    if (rows.empty())
        return;
    m_document.Cut(rows);
    RowsReplaced(rows.front());
    Recorded("MenuCut");
}

void Editor::CopyRows()
{
    const std::vector<int> rows = m_list->SelectedRows();
    if (!rows.empty())
        m_document.Copy(rows);
}

void Editor::PasteRows()
{
    const int row = m_list->SelectedRow();
    if (m_document.Paste(row == 0 ? m_document.Count() + 1 : row)) {
        RowsReplaced(row == 0 ? 1 : row);
        Recorded("MenuPaste");
    }
}

void Editor::RemoveAll()
{
    if (m_document.Count() == 0)
        return;
    m_document.Clear();
    m_timing.SetCorrect(0, 0);
    ShowCorrect();
    m_model->Reset();
    MeasureLab();
    if (EditsSongThatPlays())
        if (KaraokeForm* lyric = m_forms.Lyric(); lyric && m_state.KaraokeOpen)
            lyric->ClearLyrics();
    Recorded("MenuClear");
}

void Editor::TextEdited(int row, const QString& text)
{
    m_document.EditText(row, text);
    m_model->RowsChanged(1, m_document.Count());
    ShowOnDisplay(true);
    Recorded("EditTextChange");
}

void Editor::BreakClicked(bool checked)
{
    const int row = m_list->SelectedRow();
    if (m_filling || m_document.Count() == 0 || row == 0)
        return;
    m_document.SetBreak(row, checked);
    m_model->RowsChanged(1, m_document.Count());
    ShowOnDisplay(true);
    Recorded("LineBreak");
}

// ---- Timing -------------------------------------------------------------------------------------

void Editor::CaptureLine()
{
    const int selected = m_list->SelectedRow();
    const int next = m_timing.CaptureLine(selected);
    if (next == 0)
        return;
    // The karaoke page shows the tap now rather than at the next tick.
    m_transport.Ticks().PlaybackTick();
    const int stamped = selected == 0 ? 1 : selected;
    m_heldRow = stamped;
    m_model->RowsChanged(stamped, stamped);
    if (next != stamped) {
        m_list->SelectRow(next);
        ShowRowState(next);
        // The row after the next one stays in sight too, so the singer sees what comes.
        if (next < m_document.Count())
            m_list->scrollTo(m_model->index(next, 0));
    }
    ShowCorrect();
    // A held tap is one step with its length, taken when the key is let go.
    if (!HeldTaps())
        Recorded("Capture");
}

bool Editor::HeldTaps() const
{
    const auto it = m_actions.find(QStringLiteral("MenuHeldTaps"));
    return it != m_actions.end() && it->second->isChecked();
}

void Editor::CaptureReleased()
{
    const int row = std::exchange(m_heldRow, 0);
    if (!HeldTaps() || row == 0)
        return;
    m_timing.HoldEnd(row);
    m_model->RowsChanged(row, row);
    Recorded("Capture");
}

void Editor::CorrectUp()
{
    StartCorrection(true);
}

void Editor::CorrectDown()
{
    StartCorrection(false);
}

void Editor::GetKey(int keyCode)
{
    if (keyCode == 38)
        CorrectUp();
    else if (keyCode == 40)
        CorrectDown();
}

bool Editor::StartCorrection(bool up)
{
    if (m_correctTimer.isActive() || !m_timing.StartCorrection(m_list->SelectedRow(), up))
        return false;
    m_list->ClearSelectionOnly();
    m_correctTimer.start();
    return true;
}

void Editor::CorrectionTick()
{
    m_timing.CorrectionTick();
    ShowCorrect();
    m_model->RowsChanged(1, m_document.Count());
}

void Editor::EndCorrection()
{
    if (!m_correctTimer.isActive())
        return;
    m_correctTimer.stop();
    const int row = m_timing.StopCorrection();
    m_list->SelectRow(row);
    m_list->setFocus();
    Recorded("EditCorrection");
}

void Editor::CorrectEdited(double seconds)
{
    const int row = m_list->SelectedRow();
    m_timing.SetCorrect(seconds, row);
    if (m_document.Count() == 0)
        ShowCorrect();
    else if (row > 0)
        m_model->RowsChanged(row, row);
    Recorded("EditCorrection");
}

void Editor::RowChosen()
{
    const int row = m_list->SelectedRow();
    if (row == 0 || m_correctTimer.isActive())
        return;
    const double time = m_document.Entry(row).Time;
    m_timing.SetCorrect(time, row);
    ShowCorrect();
    ShowRowState(row);
    if (time == 0 || !EditsSongThatPlays())
        return;
    m_transport.SeekToSeconds(time);
}

void Editor::DoOff()
{
    const std::vector<int> rows = m_list->SelectedRows();
    if (m_document.Count() == 0 || rows.empty())
        return;
    m_document.Offset(rows, m_offset->value());
    m_model->RowsChanged(1, m_document.Count());
    const int row = m_list->SelectedRow();
    if (row > 0) {
        m_timing.SetCorrect(m_document.Entry(row).Time, row);
        ShowCorrect();
    }
    ShowOnDisplay(false);
    Recorded("Offset");
}
