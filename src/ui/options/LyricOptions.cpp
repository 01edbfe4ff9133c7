#include "ui/options/LyricOptions.h"

#include "audio/SoundDevices.h"
#include "core/Colors.h"
#include "core/Dialogs.h"
#include "core/KeyTable.h"
#include "core/SettingsStore.h"
#include "karaoke/PicturePlacing.h"
#include "playback/LatencyClicks.h"
#include "playback/PlayerState.h"
#include "remote/GuestBook.h"
#include "ui/kit/Desktop.h"
#include "ui/kit/Palette.h"
#include "ui/kit/Pickers.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QDoubleSpinBox>
#include <QFormLayout>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPainter>
#include <QPushButton>
#include <QRadioButton>
#include <QRegularExpressionValidator>
#include <QSpinBox>
#include <QTabWidget>
#include <QTimer>
#include <QTreeWidget>
#include <QVBoxLayout>

// A round light for the latency test.
class Lamp final : public QWidget {
public:
    Lamp() { setFixedSize(22, 22); }
    void SetLit(bool lit)
    {
        if (lit != m_lit) {
            m_lit = lit;
            update();
        }
    }

protected:
    void paintEvent(QPaintEvent*) override
    {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(QPen(QColor(0, 0, 0, 120), 1));
        painter.setBrush(m_lit ? QColor(0x7d, 0xff, 0xa8) : QColor(0x38, 0x42, 0x6f));
        painter.drawEllipse(QRectF(rect()).adjusted(1.5, 1.5, -1.5, -1.5));
    }

private:
    bool m_lit = false;
};

namespace {

// The karaoke window's settings that "Reset to defaults" takes back.
const char* const kKaraokeKeys[] = {"karaoke display mode", "karaoke mode",       "karaoke alignment",
                                    "karaoke font name",    "karaoke font size",  "karaoke font bold",
                                    "karaoke font italic",  "karaoke outline width", "fit font to window",
                                    "karaoke ball",         "show lyrics title",  "karaoke font color",
                                    "karaoke highlight color", "karaoke outline color", "karaoke ball color",
                                    "karaoke background color"};

constexpr int kRecordRates[] = {11025, 22050, 44100};

QLabel* Note(const QString& text)
{
    auto* label = new QLabel(text);
    label->setWordWrap(true);
    QFont font = label->font();
    font.setPointSizeF(font.pointSizeF() * 0.9);
    label->setFont(font);
    label->setForegroundRole(QPalette::PlaceholderText);
    return label;
}

QWidget* Page(std::initializer_list<QWidget*> groups)
{
    auto* page = new QWidget;
    auto* layout = new QVBoxLayout(page);
    for (QWidget* group : groups)
        layout->addWidget(group);
    layout->addStretch(1);
    return page;
}

} // namespace

LyricOptions::LyricOptions(PlayerState& state, SettingsStore& store, Dialogs& dialogs, QWidget* parent)
    : QDialog(parent), m_state(state), m_store(store), m_dialogs(dialogs), m_kept(state.Theme->StoredValues()),
      m_tabs(new QTabWidget), m_lampTimer(new QTimer(this))
{
    setObjectName(QStringLiteral("LyricOptions"));
    setWindowTitle(Text("PreferncesCaption"));
    setPalette(ControlsPalette());
    m_tabs->addTab(ScrollingPage(BuildGeneral()), Text("TabGeneral"));
    m_tabs->addTab(ScrollingPage(BuildKaraoke()), Text("KaraokeFrame"));
    m_tabs->addTab(ScrollingPage(BuildColors()), Text("TabColors"));
    m_tabs->addTab(ScrollingPage(BuildPictures()), Text("TabPicture"));
    m_tabs->addTab(ScrollingPage(BuildSound()), Text("TabAudio"));
    m_tabs->addTab(ScrollingPage(BuildKeyboard()), Text("TabShortcuts"));
    m_tabs->addTab(ScrollingPage(BuildRemote()), Text("TabRemote"));
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(m_tabs);
    layout->addWidget(BuildButtons());
    m_lampTimer->setInterval(10);
    m_lampTimer->setTimerType(Qt::PreciseTimer);
    connect(m_lampTimer, &QTimer::timeout, this,
            [this] { m_lamp->SetLit(m_latency && m_latency->Lit(m_state.Theme->LyricsOffset())); });
    Fill();
    resize(600, 560);
}

LyricOptions::~LyricOptions() = default;

QString LyricOptions::Text(const char* key) const
{
    return m_state.Language.GetText(QString::fromLatin1(key));
}

void LyricOptions::ShowTab(int tab)
{
    m_tabs->setCurrentIndex(std::clamp(tab, 0, m_tabs->count() - 1));
    m_state.PreferencesTab = int16_t(m_tabs->currentIndex());
}

void LyricOptions::Changed()
{
    if (Applied)
        Applied();
}

void LyricOptions::Fill()
{
    m_filling = true;
    for (const auto& fill : m_fillers)
        fill();
    m_filling = false;
}

void LyricOptions::Apply()
{
    m_kept = m_state.Theme->StoredValues();
}

void LyricOptions::reject()
{
    m_state.Theme->Restore(m_kept);
    Fill();
    if (Applied)
        Applied();
    QDialog::reject();
}

void LyricOptions::done(int result)
{
    StopLatencyTest();
    QDialog::done(result);
}

void LyricOptions::StopLatencyTest()
{
    m_latency.reset();
    m_lampTimer->stop();
    m_lamp->SetLit(false);
    if (auto* button = findChild<QPushButton*>(QStringLiteral("LatencyTest")))
        button->setChecked(false);
}

void LyricOptions::ResetKaraoke()
{
    std::vector<std::pair<QString, QString>> defaults;
    for (const auto& [key, text] : m_state.Theme->DefaultValues())
        for (const char* wanted : kKaraokeKeys)
            if (key == QLatin1String(wanted))
                defaults.emplace_back(key, text);
    m_state.Theme->Restore(defaults);
    Fill();
    Changed();
}

// ---- Binders: a control shows a setting and writes it back on every change ---------------------

namespace {

using ComboItems = std::vector<std::pair<QString, QVariant>>;

// Short-lived: what it connects holds copies of what it needs, never the binder itself. A setting
// is written only when the user changes a control, never while the dialog fills them.
struct Binder {
    std::vector<std::function<void()>>& fillers;
    const bool& filling;
    std::function<void()> changed;

    template <typename Write>
    auto Writer(Write write) const
    {
        return [filling = &filling, changed = changed, write = std::move(write)](const auto&... value) {
            if (*filling)
                return;
            write(value...);
            changed();
        };
    }

    QCheckBox* Check(const QString& text, const char* name, std::function<bool()> get, std::function<void(bool)> set)
    {
        auto* box = new QCheckBox(text);
        box->setObjectName(QLatin1String(name));
        fillers.push_back([box, get = std::move(get)] { box->setChecked(get()); });
        QObject::connect(box, &QCheckBox::toggled, box, Writer(std::move(set)));
        return box;
    }

    QCheckBox* Check(const QString& text, const char* name, bool& field)
    {
        return Check(text, name, [&field] { return field; }, [&field](bool on) { field = on; });
    }

    template <typename T>
    QSpinBox* Spin(const char* name, T& field, int lowest, int highest)
    {
        auto* spin = new QSpinBox;
        spin->setObjectName(QLatin1String(name));
        spin->setRange(lowest, highest);
        fillers.push_back([spin, &field] { spin->setValue(int(field)); });
        QObject::connect(spin, &QSpinBox::valueChanged, spin, Writer([&field](int value) { field = T(value); }));
        return spin;
    }

    QDoubleSpinBox* Seconds(const char* name, double lowest, double highest, std::function<double()> get,
                            std::function<void(double)> set)
    {
        auto* spin = new QDoubleSpinBox;
        spin->setObjectName(QLatin1String(name));
        spin->setRange(lowest, highest);
        spin->setDecimals(2);
        spin->setSingleStep(0.01);
        spin->setSuffix(QStringLiteral(" s"));
        fillers.push_back([spin, get = std::move(get)] { spin->setValue(get()); });
        QObject::connect(spin, &QDoubleSpinBox::valueChanged, spin, Writer(std::move(set)));
        return spin;
    }

    // A drop-down list of (text, value); a value no item has shows the first item.
    QComboBox* Combo(const char* name, const ComboItems& items, std::function<QVariant()> get,
                     std::function<void(QVariant)> set)
    {
        auto* combo = new QComboBox;
        combo->setObjectName(QLatin1String(name));
        for (const auto& [text, value] : items)
            combo->addItem(text, value);
        fillers.push_back([combo, get = std::move(get)] { combo->setCurrentIndex(std::max(0, combo->findData(get()))); });
        QObject::connect(combo, &QComboBox::currentIndexChanged, combo,
                         [combo, write = Writer(std::move(set))] { write(combo->currentData()); });
        return combo;
    }

    template <typename T>
    QComboBox* Combo(const char* name, const ComboItems& items, T& field)
    {
        return Combo(
            name, items, [&field] { return QVariant(int(field)); }, [&field](const QVariant& value) { field = T(value.toInt()); });
    }

    // Radio buttons of (text, value) in a row or a column; a value no option has checks none.
    template <typename T>
    QWidget* Options(const char* name, T& field, std::initializer_list<std::pair<QString, int>> options,
                     bool vertical = false)
    {
        auto* box = new QWidget;
        box->setObjectName(QLatin1String(name));
        QBoxLayout* layout = vertical ? static_cast<QBoxLayout*>(new QVBoxLayout(box)) : new QHBoxLayout(box);
        layout->setContentsMargins(0, 0, 0, 0);
        auto* group = new QButtonGroup(box);
        for (const auto& [text, value] : options) {
            auto* option = new QRadioButton(text);
            option->setObjectName(QStringLiteral("%1%2").arg(QLatin1String(name)).arg(value));
            group->addButton(option, value);
            layout->addWidget(option);
        }
        if (!vertical)
            layout->addStretch(1);
        fillers.push_back([group, &field] {
            group->setExclusive(false);
            for (QAbstractButton* button : group->buttons())
                button->setChecked(group->id(button) == int(field));
            group->setExclusive(true);
        });
        QObject::connect(group, &QButtonGroup::idClicked, box, Writer([&field](int value) { field = T(value); }));
        return box;
    }

    ColorButton* Colour(const char* name, int32_t& field, const ColorButton::Picker& picker)
    {
        auto* button = new ColorButton(picker);
        button->setObjectName(QLatin1String(name));
        fillers.push_back([button, &field] { button->SetWin32(field); });
        QObject::connect(button, &ColorButton::Changed, button, Writer([&field](int32_t colour) { field = colour; }));
        return button;
    }

    PathPicker* Path(const char* name, QString& field, const PathPicker::Picker& picker)
    {
        auto* path = new PathPicker(picker);
        path->setObjectName(QLatin1String(name));
        fillers.push_back([path, &field] { path->SetPath(field); });
        QObject::connect(path, &PathPicker::Changed, path,
                         Writer([&field](const QString& chosen) { field = chosen; }));
        return path;
    }

    EffectPicker* Effect(const EffectPicker::Texts& texts, QString& effect, QString& detail, int16_t& speed)
    {
        auto* picker = new EffectPicker(texts);
        fillers.push_back([picker, &effect, &detail, &speed] { picker->SetChoice(effect, detail, speed); });
        QObject::connect(picker, &EffectPicker::Changed, picker, Writer([picker, &effect, &detail, &speed] {
            effect = picker->EffectName();
            detail = picker->Detail();
            speed = int16_t(picker->Speed());
        }));
        return picker;
    }
};

} // namespace

// ---- The tabs -------------------------------------------------------------------------------------

QWidget* LyricOptions::BuildGeneral()
{
    ThemeClass& t = *m_state.Theme;
    Binder bind{m_fillers, m_filling, [this] { Changed(); }};

    auto* player = new QGroupBox(Text("PlayerFrame"));
    auto* playerForm = new QFormLayout(player);
    playerForm->addRow(bind.Check(Text("OptOnTop"), "OnTop", [&t] { return t.OnTop(); }, [&t](bool on) { t.SetOnTop(on); }));
    playerForm->addRow(bind.Check(Text("OptKaraokeAtStart"), "KaraokeAtStart", t.KaraokeWindow));
    playerForm->addRow(bind.Check(Text("OptScrollTitle"), "ScrollTitle", t.Scroll));
    playerForm->addRow(Text("OptMusicFolder"), bind.Path("MusicFolder", t.MusicPath, [this](const QString& now) {
        return m_dialogs.ChooseFolder(Text("DialogDirectory"), now);
    }));

    auto* library = new QGroupBox(Text("OptLibraryFolders"));
    auto* libraryGrid = new QGridLayout(library);
    auto* folders = new QListWidget;
    folders->setObjectName(QStringLiteral("LibraryFolders"));
    folders->setMaximumHeight(folders->fontMetrics().height() * 5);
    auto* addFolder = new QPushButton(Text("LibraryAddFolder"));
    auto* removeFolder = new QPushButton(Text("LibraryRemoveFolder"));
    libraryGrid->addWidget(folders, 0, 0, 3, 1);
    libraryGrid->addWidget(addFolder, 0, 1);
    libraryGrid->addWidget(removeFolder, 1, 1);
    m_fillers.push_back([folders, &t] {
        folders->clear();
        folders->addItems(t.LibraryFolders.split(u'\n', Qt::SkipEmptyParts));
    });
    auto storeFolders = [this, folders, &t] {
        QStringList list;
        for (int i = 0; i < folders->count(); ++i)
            list << folders->item(i)->text();
        t.LibraryFolders = list.join(u'\n');
        Changed();
    };
    connect(addFolder, &QPushButton::clicked, this, [this, folders, storeFolders] {
        const QString folder = m_dialogs.ChooseFolder(Text("DialogDirectory"), QString());
        if (!folder.isEmpty() && folders->findItems(folder, Qt::MatchExactly).isEmpty()) {
            folders->addItem(folder);
            storeFolders();
        }
    });
    connect(removeFolder, &QPushButton::clicked, this, [folders, storeFolders] {
        delete folders->currentItem();
        storeFolders();
    });

    auto* karaoke = new QGroupBox(Text("KaraokeFrame"));
    auto* karaokeForm = new QFormLayout(karaoke);
    ComboItems monitors;
    for (const MonitorRecord& record : m_state.MonitorList)
        monitors.emplace_back(record.name, record.name);
    auto* monitor = bind.Combo("Monitor", monitors, [&t] { return QVariant(t.Monitor); },
                               [&t](const QVariant& name) { t.Monitor = name.toString(); });
    karaokeForm->addRow(Text("Fullscreen"), monitor);

    auto* language = new QGroupBox(Text("OptLanguage"));
    auto* languageColumn = new QVBoxLayout(language);
    auto* choice = bind.Combo(
        "Language", {{QStringLiteral("English"), QStringLiteral("en")}, {QStringLiteral("Polski"), QStringLiteral("pl")}},
        [this] {
            return QVariant(m_store.RegReadString(QStringLiteral("language")) == u"pl" ? QStringLiteral("pl")
                                                                                      : QStringLiteral("en"));
        },
        [this](const QVariant& language) {
            m_store.RegWriteString(QStringLiteral("language"), language.toString());
            m_store.Sync();
        });
    languageColumn->addWidget(choice);
    languageColumn->addWidget(Note(Text("OptLanguageNote")));

    return Page({player, library, karaoke, language});
}

QWidget* LyricOptions::BuildKaraoke()
{
    ThemeClass& t = *m_state.Theme;
    Binder bind{m_fillers, m_filling, [this] { Changed(); }};

    auto* text = new QGroupBox(Text("Font"));
    auto* textForm = new QFormLayout(text);
    auto* font = new FontButton([this](const QFont& f) { return m_dialogs.ChooseFont(f); });
    font->setObjectName(QStringLiteral("LyricsFont"));
    m_fillers.push_back([font, &t] { font->SetFont(t.LyricsFontFace()); });
    connect(font, &FontButton::Changed, this, [this, &t](const QFont& chosen) {
        t.LyricsFont = chosen.family();
        t.LyricsFontSize = int16_t(std::clamp(chosen.pointSize(), 1, 400));
        t.LyricsFontBold = chosen.bold();
        t.LyricsFontItalic = chosen.italic();
        Fill();
        Changed();
    });
    textForm->addRow(Text("Font"), font);
    textForm->addRow(Text("FontSize"), bind.Spin("FontSize", t.LyricsFontSize, 1, 400));
    textForm->addRow(Text("OutlineWidth"), bind.Spin("OutlineWidth", t.LyricsOutlineWidth, 0, 10));
    textForm->addRow(bind.Check(Text("FitText"), "FitText", t.LyricsFitFont));

    auto* display = new QGroupBox(Text("LineMode"));
    auto* displayForm = new QFormLayout(display);
    displayForm->addRow(bind.Options("DisplayMode", t.DisplayMode,
                                     {{Text("SingleLine"), 0}, {Text("TwoLines"), 1}, {Text("TwoSeparated"), 2},
                                      {Text("ThreeLines"), 3}},
                                     true));
    displayForm->addRow(Text("KaraokeMode"),
                        bind.Options("LyricsMode", t.LyricsMode, {{Text("ModeSyllables"), 0}, {Text("ModeLines"), 1}}));
    displayForm->addRow(Text("Alignment"),
                        bind.Options("Alignment", t.LyricsAlignment,
                                     {{Text("AlignmentTop"), 1}, {Text("AlignmentCenter"), 0}, {Text("AlignmentBottom"), 2}}));
    displayForm->addRow(bind.Check(Text("DisplayBall"), "Ball", t.LyricsShowBall));
    displayForm->addRow(bind.Check(Text("DisplayTitle"), "Title", t.ShowLyricsTitle));
    displayForm->addRow(bind.Check(Text("CdgSmooth"), "CdgSmooth", t.CdgSmooth));

    auto* reset = new QPushButton(Text("ResetDefault"));
    reset->setObjectName(QStringLiteral("ResetDefault"));
    connect(reset, &QPushButton::clicked, this, &LyricOptions::ResetKaraoke);
    auto* resetRow = new QWidget;
    auto* row = new QHBoxLayout(resetRow);
    row->setContentsMargins(0, 0, 0, 0);
    row->addStretch(1);
    row->addWidget(reset);
    return Page({text, display, resetRow});
}

QWidget* LyricOptions::BuildColors()
{
    ThemeClass& t = *m_state.Theme;
    Binder bind{m_fillers, m_filling, [this] { Changed(); }};
    const ColorButton::Picker picker = [this](const QColor& c) { return m_dialogs.ChooseColor(c); };
    const auto grid = [&](const char* title, std::initializer_list<std::tuple<const char*, const char*, int32_t*>> rows) {
        auto* group = new QGroupBox(Text(title));
        auto* form = new QFormLayout(group);
        for (const auto& [key, name, field] : rows)
            form->addRow(Text(key), bind.Colour(name, *field, picker));
        return group;
    };
    return Page({grid("TextColors", {{"NormalText", "Normal", &t.LyricsColor},
                                     {"HighlightText", "Highlight", &t.LyricsHighlightColor},
                                     {"OutlineCOlor1", "Outline1", &t.LyricsOutlineColor1},
                                     {"OutlineCOlor2", "Outline2", &t.LyricsOutlineColor2},
                                     {"OutlineCOlor3", "Outline3", &t.LyricsOutlineColor3},
                                     {"OutlineCOlor4", "Outline4", &t.LyricsOutlineColor4}}),
                 grid("MiscColors", {{"BallColor", "Ball", &t.LyricsBallColor},
                                     {"BackgroundColor", "Background", &t.LyricsBackColor}})});
}

QWidget* LyricOptions::BuildPictures()
{
    ThemeClass& t = *m_state.Theme;
    Binder bind{m_fillers, m_filling, [this] { Changed(); }};

    auto* background = new QGroupBox(Text("BackgroundPicture"));
    auto* backgroundForm = new QFormLayout(background);
    auto* file = new PathPicker([this](const QString&) {
        return m_dialogs.OpenFileName(QStringLiteral("SWV: ") + Text("DialogOpenPicture"),
                                      QStringLiteral("%1 (*.jpg *.jpeg *.png *.bmp *.gif)").arg(Text("BackgroundPicture")));
    });
    file->setObjectName(QStringLiteral("PicturePath"));
    auto* useDefault = new QPushButton(Text("PictureDefault"));
    useDefault->setObjectName(QStringLiteral("PictureDefault"));
    const auto setPicture = [this, &t](const QString& path) {
        t.SetLyricsPicPath(path);
        Fill();
        Changed();
    };
    connect(file, &PathPicker::Changed, this, setPicture);
    connect(useDefault, &QPushButton::clicked, this, [setPicture] { setPicture(QStringLiteral("default")); });
    m_fillers.push_back([file, &t] { file->SetPath(t.LyricsPicPath() == u"default" ? QString() : t.LyricsPicPath()); });
    auto* pictureButtons = new QHBoxLayout;
    pictureButtons->addWidget(useDefault);
    pictureButtons->addStretch(1);
    backgroundForm->addRow(file);
    backgroundForm->addRow(pictureButtons);
    backgroundForm->addRow(bind.Options("PicLayout", t.LyricsPicLayout,
                                        {{Text("PictureOriginal"), 2}, {Text("PictureStretch"), 1}, {Text("PictureTile"), 0}}));

    auto* images = new QGroupBox(Text("OptImageDefaults"));
    auto* imagesForm = new QFormLayout(images);
    imagesForm->addRow(Text("DetailsSize"),
                       bind.Options("ImageSize", t.ImageSize, {{Text("SizeFit"), 1}, {Text("SizeCustom"), 2}}));
    auto* size = new QHBoxLayout;
    size->addWidget(bind.Spin("ImageSizeX", t.ImageSizeX, 1, 32767));
    size->addWidget(new QLabel(QStringLiteral("×")));
    size->addWidget(bind.Spin("ImageSizeY", t.ImageSizeY, 1, 32767));
    size->addStretch(1);
    imagesForm->addRow(Text("DetailsWidth") + QStringLiteral(" × ") + Text("DetailsHeight"), size);
    auto* offset = new QHBoxLayout;
    offset->addWidget(bind.Spin("ImageOffsetX", t.ImageOffsetX, -32768, 32767));
    offset->addWidget(bind.Spin("ImageOffsetY", t.ImageOffsetY, -32768, 32767));
    offset->addStretch(1);
    imagesForm->addRow(Text("DetailsOffset"), offset);
    imagesForm->addRow(Text("DetailsAlignment"),
                       bind.Options("ImageAlign", t.ImageAlign,
                                    {{Text("DetailsTop"), 1}, {Text("DetailsCenter"), 0}, {Text("DetailsBottom"), 2}}));
    ComboItems borders{{QStringLiteral("None"), QStringLiteral("None")}};
    for (const QString& style : BorderStyles())
        borders.emplace_back(style, style);
    auto* border = bind.Combo("ImageBorder", borders, [&t] { return QVariant(t.ImageBorder); },
                              [&t](const QVariant& style) { t.ImageBorder = style.toString(); });
    imagesForm->addRow(Text("OptBorder"), border);

    auto* effects = new QGroupBox(Text("OptEffectDefaults"));
    auto* effectsColumn = new QVBoxLayout(effects);
    effectsColumn->addWidget(bind.Effect({Text("PictureClearEffect"), Text("PictureNoDetails"), Text("PictureTransition"),
                                          Text("PictureDetails"), Text("PictureSpeed")},
                                         t.ImageEffect, t.EffectDetail, t.EffectSpeed));

    return Page({background, images, effects});
}

QWidget* LyricOptions::BuildSound()
{
    ThemeClass& t = *m_state.Theme;
    Binder bind{m_fillers, m_filling, [this] { Changed(); }};
    const auto devices = [this](const QStringList& names) {
        ComboItems items{{Text("OptSystemDefault"), 0}};
        for (int i = 0; i < names.size(); ++i)
            items.emplace_back(names[i], i + 1);
        return items;
    };

    auto* output = new QGroupBox(Text("AudioDevices"));
    auto* outputForm = new QFormLayout(output);
    outputForm->addRow(Text("AudioDevice"), bind.Combo("AudioDevice", devices(OutputDeviceNames()), t.AudioDevice));
    outputForm->addRow(Note(Text("OptDeviceNote")));
    auto* offset = bind.Seconds("TimeOffset", -5, 5, [&t] { return t.LyricsOffset(); },
                                [&t](double seconds) { t.SetLyricsOffset(seconds); });
    auto* test = new QPushButton(Text("OptLatencyTest"));
    test->setObjectName(QStringLiteral("LatencyTest"));
    test->setCheckable(true);
    test->setEnabled(m_state.Engine != nullptr);
    connect(test, &QPushButton::clicked, this, &LyricOptions::ToggleLatencyTest);
    m_lamp = new Lamp;
    auto* offsetRow = new QHBoxLayout;
    offsetRow->addWidget(offset);
    offsetRow->addWidget(test);
    offsetRow->addWidget(m_lamp);
    offsetRow->addStretch(1);
    outputForm->addRow(Text("TimeOffset"), offsetRow);
    outputForm->addRow(Note(Text("OptLatencyNote")));
    outputForm->addRow(Text("OptSoundFont"), bind.Path("SoundFont", t.SoundFont, [this](const QString&) {
        return m_dialogs.OpenFileName(QStringLiteral("SWV: ") + Text("OptSoundFont"),
                                      QStringLiteral("SoundFont (*.sf2 *.sf3)"));
    }));
    outputForm->addRow(Note(Text("OptSoundFontNote")));
    outputForm->addRow(bind.Check(Text("KeepPitch"), "KeepPitch", t.KeepPitch));

    auto* recording = new QGroupBox(Text("RecordVoice"));
    auto* recordingForm = new QFormLayout(recording);
    recordingForm->addRow(Text("RecordDevice"), bind.Combo("RecordDevice", devices(InputDeviceNames()), t.RecordDevice));
    ComboItems rates;
    for (int i = 0; i < 3; ++i)
        rates.emplace_back(Text(i == 0 ? "RecordQuality0" : i == 1 ? "RecordQuality1" : "RecordQuality2"), kRecordRates[i]);
    auto* quality = bind.Combo("RecordQuality", rates, t.RecordQuality);
    recordingForm->addRow(Text("RecordQuality"), quality);
    recordingForm->addRow(Text("OptRecordMode"),
                          bind.Options("RecordMode", t.RecordMode, {{Text("OptMono"), 1}, {Text("OptStereo"), 2}}));
    recordingForm->addRow(Text("RecordFolder"),
                          bind.Options("RecordFolder", t.RecordFolder,
                                       {{Text("RecordKaraoke"), 1}, {Text("RecordDirectory"), 0}}, true));
    recordingForm->addRow(QString(), bind.Path("VoiceDirectory", t.VoiceDirectory, [this](const QString& now) {
        return m_dialogs.ChooseFolder(Text("DialogDirectory"), now);
    }));
    return Page({output, recording});
}

void LyricOptions::ToggleLatencyTest()
{
    if (m_latency || !m_state.Engine) {
        StopLatencyTest();
        return;
    }
    m_latency = std::make_unique<LatencyClicks>(*m_state.Engine);
    QString error;
    if (!m_latency->Start(error)) {
        StopLatencyTest();
        m_dialogs.Critical(error);
        return;
    }
    m_lampTimer->start();
}

QWidget* LyricOptions::BuildRemote()
{
    ThemeClass& t = *m_state.Theme;
    Binder bind{m_fillers, m_filling, [this] { Changed(); }};
    auto* page = new QWidget;
    auto* form = new QFormLayout(page);
    form->addRow(bind.Check(Text("OptRemoteOn"), "RemoteOn", t.RemoteOn));
    form->addRow(Text("OptRemotePort"), bind.Spin("RemotePort", t.RemotePort, 1024, 65535));

    auto* pin = new QLineEdit;
    pin->setObjectName(QStringLiteral("RemotePin"));
    pin->setValidator(new QRegularExpressionValidator(QRegularExpression(QStringLiteral("[0-9]{0,6}")), pin));
    pin->setMaxLength(6);
    auto* newPin = new QPushButton(Text("RemoteNewPin"));
    auto* pinRow = new QHBoxLayout;
    pinRow->addWidget(pin);
    pinRow->addWidget(newPin);
    form->addRow(Text("OptRemotePin"), pinRow);
    auto* pinProblem = new QLabel;
    pinProblem->setObjectName(QStringLiteral("RemotePinProblem"));
    form->addRow(pinProblem);
    m_fillers.push_back([pin, pinProblem, &t] {
        pin->setText(t.RemotePin);
        pinProblem->clear();
    });
    connect(pin, &QLineEdit::textEdited, this, [this, pinProblem, &t](const QString& text) {
        const bool valid = ValidPin(text);
        pinProblem->setText(valid ? QString() : Text("RemotePinInvalid"));
        if (valid) {
            t.RemotePin = text;
            Changed();
        }
    });
    connect(newPin, &QPushButton::clicked, this, [this, pin, pinProblem, &t] {
        t.RemotePin = NewPin();
        pin->setText(t.RemotePin);
        pinProblem->clear();
        Changed();
    });

    form->addRow(bind.Check(Text("OptRemoteApprove"), "RemoteApprove", t.RemoteApprove));
    form->addRow(Text("OptRemotePerMinute"), bind.Spin("RemotePerMinute", t.RemoteRequestsPerMinute, 1, 60));
    form->addRow(Text("OptRemoteSongsPerGuest"), bind.Spin("RemoteSongsPerGuest", t.RemoteSongsPerGuest, 1, 20));
    return page;
}

QWidget* LyricOptions::BuildKeyboard()
{
    auto* tree = new QTreeWidget;
    tree->setObjectName(QStringLiteral("Shortcuts"));
    tree->setColumnCount(2);
    tree->setHeaderLabels({Text("OptShortcutKey"), Text("OptShortcutAction")});
    tree->setRootIsDecorated(false);
    tree->setAlternatingRowColors(true);
    tree->setSelectionMode(QAbstractItemView::NoSelection);
    std::optional<KeyWindow> current;
    for (const KeyBinding& shortcut : KeyTable()) {
        if (!shortcut.action)
            continue;
        if (shortcut.window != current) {
            current = shortcut.window;
            auto* section = new QTreeWidgetItem(tree, {Text(KeyWindowText(shortcut.window))});
            section->setFirstColumnSpanned(true);
            QFont bold = section->font(0);
            bold.setBold(true);
            section->setFont(0, bold);
        }
        const QString key = shortcut.label ? QString::fromLatin1(shortcut.label) : Text("OptDoubleClick");
        new QTreeWidgetItem(tree, {key, Text(shortcut.action)});
    }
    tree->header()->setSectionResizeMode(0, QHeaderView::ResizeToContents);
    tree->header()->setStretchLastSection(true);
    auto* page = new QWidget;
    auto* layout = new QVBoxLayout(page);
    layout->addWidget(tree);
    return page;
}

QWidget* LyricOptions::BuildButtons()
{
    auto* box = new QDialogButtonBox;
    QPushButton* ok = box->addButton(Text("ButtonOK"), QDialogButtonBox::AcceptRole);
    ok->setObjectName(QStringLiteral("OK"));
    ok->setDefault(true);
    QPushButton* cancel = box->addButton(Text("ButtonCancel"), QDialogButtonBox::RejectRole);
    cancel->setObjectName(QStringLiteral("Cancel"));
    QPushButton* apply = box->addButton(Text("ButtonAccept"), QDialogButtonBox::ApplyRole);
    apply->setObjectName(QStringLiteral("Apply"));
    connect(ok, &QPushButton::clicked, this, [this] {
        Apply();
        accept();
    });
    connect(cancel, &QPushButton::clicked, this, &LyricOptions::reject);
    connect(apply, &QPushButton::clicked, this, &LyricOptions::Apply);
    return box;
}
