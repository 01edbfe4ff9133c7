#include "ui/editor/DetailsDialog.h"

#include "core/Colors.h"
#include "core/Dialogs.h"
#include "core/Language.h"
#include "core/ThemeClass.h"
#include "lyrics/LyricTime.h"
#include "ui/editor/PictureDialog.h"
#include "ui/kit/Desktop.h"
#include "ui/kit/Palette.h"
#include "ui/kit/Pickers.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QDialogButtonBox>
#include <QFileInfo>
#include <QFormLayout>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QRadioButton>
#include <QSpinBox>
#include <QTabWidget>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace {

const QString kTitlePrefix = QStringLiteral("SWV: ");
const QString kPicturePatterns = QStringLiteral("*.jpg;*.jpeg;*.png;*.bmp;*.gif");
constexpr const char* kColorKeys[kDetailsColors] = {"DetailsNormal",   "DetailsHighlight", "DetailsOutline1",
                                                     "DetailsOutline2", "DetailsOutline3",  "DetailsOutline4",
                                                     "DetailsBackground"};
// The options from top to bottom with the values they stand for: the text and the picture are
// placed as the karaoke window reads them, 0 the centre, 1 the top, 2 the bottom.
constexpr std::pair<const char*, int> kTextPlaces[] = {{"DetailsTextTop", 1}, {"DetailsTextCenter", 0},
                                                       {"DetailsTextBottom", 2}};
constexpr std::pair<const char*, int> kPicturePlaces[] = {{"DetailsTop", 1}, {"DetailsCenter", 0},
                                                          {"DetailsBottom", 2}};
const QSize kPreviewSize(192, 108);
const QSize kOpeningSize(640, 520);

// Sets the option of a value, or none for a value no option has.
void CheckOption(QButtonGroup* group, int id)
{
    group->setExclusive(false);
    for (QAbstractButton* button : group->buttons())
        button->setChecked(group->id(button) == id);
    group->setExclusive(true);
}

QSpinBox* Spin(int minimum, int maximum, const QString& name)
{
    auto* spin = new QSpinBox;
    spin->setRange(minimum, maximum);
    spin->setObjectName(name);
    spin->setAccelerated(true);
    return spin;
}

} // namespace

DetailsDialog::DetailsDialog(LyricsState& lyrics, const ThemeClass& theme, const LanguageTable& language,
                             Dialogs& dialogs, const QString& baseFolder, QWidget* parent)
    : QDialog(parent), m_lyrics(lyrics), m_theme(theme), m_language(language), m_dialogs(dialogs),
      m_baseFolder(baseFolder), m_choice(DetailsOf(lyrics.EditLyrics[0], lyrics.EditPictures, theme))
{
    setObjectName(QStringLiteral("Details"));
    setWindowTitle(Text("DetailsCaption"));
    setPalette(ControlsPalette());
    setModal(true);
    resize(kOpeningSize);

    EditPicture = [this](const PictureItem* row, const QImage& before) -> std::optional<PictureItem> {
        PictureDialog dialog(row, before, m_theme, m_language, m_dialogs, m_baseFolder, this);
        if (dialog.exec() != QDialog::Accepted)
            return std::nullopt;
        return dialog.Picture();
    };

    m_tabs = new QTabWidget;
    m_tabs->setObjectName(QStringLiteral("TB"));
    m_tabs->addTab(ScrollingPage(BuildGeneralTab()), Text("DetailsGeneral"));
    m_tabs->addTab(ScrollingPage(BuildImagesTab()), Text("DetailsImages"));

    auto* clear = new QPushButton(Text("ButtonClear"));
    clear->setObjectName(QStringLiteral("bClear"));
    connect(clear, &QPushButton::clicked, this, &DetailsDialog::Clear);
    auto* buttons = new QDialogButtonBox;
    QPushButton* ok = buttons->addButton(Text("ButtonOK"), QDialogButtonBox::AcceptRole);
    ok->setObjectName(QStringLiteral("OK"));
    ok->setDefault(true);
    QPushButton* cancel = buttons->addButton(Text("ButtonCancel"), QDialogButtonBox::RejectRole);
    cancel->setObjectName(QStringLiteral("Anuluj"));
    connect(ok, &QPushButton::clicked, this, &DetailsDialog::Accept);
    connect(cancel, &QPushButton::clicked, this, &QDialog::reject);

    auto* bottom = new QHBoxLayout;
    bottom->addWidget(clear);
    bottom->addStretch(1);
    bottom->addWidget(buttons);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(m_tabs);
    layout->addLayout(bottom);
    ShowChoice();
}

QString DetailsDialog::Text(const char* key) const
{
    return DisplayText(m_language.GetText(QString::fromLatin1(key)));
}

QWidget* DetailsDialog::BuildGeneralTab()
{
    auto* tab = new QWidget;
    m_artist = new QLineEdit;
    m_artist->setObjectName(QStringLiteral("xArtist"));
    m_title = new QLineEdit;
    m_title->setObjectName(QStringLiteral("xTitle"));
    auto* names = new QFormLayout;
    names->addRow(Text("DetailsArtist"), m_artist);
    names->addRow(Text("DetailsTitle"), m_title);

    auto* colours = new QGroupBox(Text("DetailsColors"));
    auto* grid = new QGridLayout(colours);
    for (int i = 0; i < kDetailsColors; ++i) {
        auto* button = new QPushButton;
        button->setObjectName(QStringLiteral("Color%1").arg(i));
        button->setIconSize(kSwatchSize);
        button->setFlat(true);
        button->setCursor(Qt::PointingHandCursor);
        connect(button, &QPushButton::clicked, this, [this, i] { ChooseColor(i); });
        m_colors[size_t(i)] = button;
        auto* label = new QLabel(Text(kColorKeys[i]));
        label->setBuddy(button);
        grid->addWidget(button, i % 4, (i / 4) * 2);
        grid->addWidget(label, i % 4, (i / 4) * 2 + 1);
    }
    grid->setColumnStretch(1, 1);
    grid->setColumnStretch(3, 1);

    auto* alignment = new QGroupBox(Text("DetailsTextAlignment"));
    auto* row = new QHBoxLayout(alignment);
    m_alignment = new QButtonGroup(this);
    for (const auto& [key, value] : kTextPlaces) {
        auto* option = new QRadioButton(Text(key));
        option->setObjectName(QStringLiteral("AL%1").arg(value));
        m_alignment->addButton(option, value);
        row->addWidget(option);
    }
    row->addStretch(1);

    auto* picture = new QGroupBox(Text("BackgroundPicture"));
    auto* pictureRow = new QHBoxLayout(picture);
    m_picPath = new QLineEdit;
    m_picPath->setObjectName(QStringLiteral("PicPath"));
    auto* browse = new QPushButton(QStringLiteral("..."));
    browse->setObjectName(QStringLiteral("bb"));
    browse->setFixedWidth(32);
    connect(browse, &QPushButton::clicked, this, &DetailsDialog::BrowsePicture);
    auto* none = new QPushButton(Text("PictureClear"));
    none->setObjectName(QStringLiteral("NoPic"));
    connect(none, &QPushButton::clicked, this, [this] { m_picPath->clear(); });
    pictureRow->addWidget(m_picPath, 1);
    pictureRow->addWidget(browse);
    pictureRow->addWidget(none);

    auto* layout = new QVBoxLayout(tab);
    layout->addLayout(names);
    layout->addWidget(colours);
    layout->addWidget(alignment);
    layout->addWidget(picture);
    layout->addStretch(1);
    return tab;
}

QWidget* DetailsDialog::BuildImagesTab()
{
    auto* tab = new QWidget;
    auto* list = new QGroupBox(Text("DetailsBackPicture"));
    m_pictures = new QTreeWidget;
    m_pictures->setObjectName(QStringLiteral("KARList"));
    m_pictures->setRootIsDecorated(false);
    m_pictures->setUniformRowHeights(true);
    m_pictures->setHeaderLabels({Text("HeaderTime"), Text("PictureFilename"), Text("PictureTransition")});
    m_pictures->header()->setStretchLastSection(true);
    m_pictures->setContextMenuPolicy(Qt::CustomContextMenu);
    connect(m_pictures, &QTreeWidget::itemDoubleClicked, this, [this] { EditSelectedPicture(); });
    connect(m_pictures, &QTreeWidget::currentItemChanged, this, [this] { PreviewSelectedPicture(); });
    connect(m_pictures, &QWidget::customContextMenuRequested, this, [this](const QPoint& at) {
        QMenu menu(this);
        menu.addAction(Text("DetailsBtnAdd"), this, &DetailsDialog::AddPicture);
        QAction* edit = menu.addAction(Text("DetailsBtnEdit"), this, &DetailsDialog::EditSelectedPicture);
        QAction* remove = menu.addAction(Text("DetailsBtnRemove"), this, &DetailsDialog::RemoveSelectedPicture);
        menu.addSeparator();
        QAction* preview = menu.addAction(Text("PicturePreview"), this, &DetailsDialog::PreviewSelectedPicture);
        for (QAction* action : {edit, remove, preview})
            action->setEnabled(SelectedPicture() > 0);
        menu.exec(m_pictures->viewport()->mapToGlobal(at));
    });

    auto* buttons = new QVBoxLayout;
    const std::pair<const char*, void (DetailsDialog::*)()> commands[] = {
        {"AddPic", &DetailsDialog::AddPicture},
        {"EditPic", &DetailsDialog::EditSelectedPicture},
        {"RemPic", &DetailsDialog::RemoveSelectedPicture}};
    const char* captions[] = {"DetailsBtnAdd", "DetailsBtnEdit", "DetailsBtnRemove"};
    for (size_t i = 0; i < std::size(commands); ++i) {
        auto* button = new QPushButton(Text(captions[i]));
        button->setObjectName(QString::fromLatin1(commands[i].first));
        connect(button, &QPushButton::clicked, this, commands[i].second);
        buttons->addWidget(button);
    }
    buttons->addStretch(1);
    m_preview = new QLabel;
    m_preview->setObjectName(QStringLiteral("PicPreview"));
    m_preview->setFixedSize(kPreviewSize);
    m_preview->setAlignment(Qt::AlignCenter);
    m_preview->setFrameShape(QFrame::StyledPanel);
    m_preview->setAutoFillBackground(true);
    QPalette dark = m_preview->palette();
    dark.setColor(QPalette::Window, Qt::black);
    m_preview->setPalette(dark);
    buttons->addWidget(m_preview);

    auto* listRow = new QHBoxLayout(list);
    listRow->addWidget(m_pictures, 1);
    listRow->addLayout(buttons);

    auto* layout = new QVBoxLayout(tab);
    layout->addWidget(list, 1);
    layout->addWidget(BuildPlacing());
    return tab;
}

QWidget* DetailsDialog::BuildPlacing()
{
    auto* placing = new QWidget;
    auto* size = new QGroupBox(Text("DetailsSize"));
    auto* sizeGrid = new QGridLayout(size);
    m_sizing = new QButtonGroup(this);
    auto* fit = new QRadioButton(Text("SizeFit"));
    fit->setObjectName(QStringLiteral("SizeFit"));
    auto* custom = new QRadioButton(Text("SizeCustom"));
    custom->setObjectName(QStringLiteral("SizeCustom"));
    m_sizing->addButton(fit, int(1));
    m_sizing->addButton(custom, int(2));
    connect(m_sizing, &QButtonGroup::idClicked, this, [this] { ShowSizing(); });
    m_sizeX = Spin(1, 32767, QStringLiteral("SizeX"));
    m_sizeY = Spin(1, 32767, QStringLiteral("SizeY"));
    connect(m_sizeX, &QSpinBox::valueChanged, this, [this](int value) { SizeChanged(true, value); });
    connect(m_sizeY, &QSpinBox::valueChanged, this, [this](int value) { SizeChanged(false, value); });
    m_aspect = new QCheckBox(Text("DetailsRatio"));
    m_aspect->setObjectName(QStringLiteral("ASP"));
    sizeGrid->addWidget(fit, 0, 0, 1, 2);
    sizeGrid->addWidget(custom, 1, 0, 1, 2);
    sizeGrid->addWidget(new QLabel(Text("DetailsWidth")), 2, 0);
    sizeGrid->addWidget(m_sizeX, 2, 1);
    sizeGrid->addWidget(new QLabel(Text("DetailsHeight")), 3, 0);
    sizeGrid->addWidget(m_sizeY, 3, 1);
    sizeGrid->addWidget(m_aspect, 4, 0, 1, 2);

    auto* position = new QGroupBox(Text("DetailsAlignment"));
    auto* positionColumn = new QVBoxLayout(position);
    m_position = new QButtonGroup(this);
    for (const auto& [key, value] : kPicturePlaces) {
        auto* option = new QRadioButton(Text(key));
        option->setObjectName(QStringLiteral("ALG%1").arg(value));
        m_position->addButton(option, value);
        positionColumn->addWidget(option);
        m_customControls.push_back(option);
    }
    positionColumn->addStretch(1);

    auto* offset = new QGroupBox(Text("DetailsOffset"));
    auto* offsetForm = new QFormLayout(offset);
    m_offsetX = Spin(-32768, 32767, QStringLiteral("ImOffsetX"));
    m_offsetY = Spin(-32768, 32767, QStringLiteral("ImOffsetY"));
    offsetForm->addRow(QStringLiteral("X"), m_offsetX);
    offsetForm->addRow(QStringLiteral("Y"), m_offsetY);

    for (QWidget* control : std::initializer_list<QWidget*>{m_sizeX, m_sizeY, m_aspect, m_offsetX, m_offsetY})
        m_customControls.push_back(control);
    auto* row = new QHBoxLayout(placing);
    row->setContentsMargins(0, 0, 0, 0);
    row->addWidget(size, 1);
    row->addWidget(position, 1);
    row->addWidget(offset, 1);
    return placing;
}

// ---- Controls from the choice and back -----------------------------------------------------------

void DetailsDialog::ShowChoice()
{
    m_filling = true;
    m_artist->setText(m_choice.Header.Artist);
    m_title->setText(m_choice.Header.Title);
    for (int i = 0; i < kDetailsColors; ++i)
        m_colors[size_t(i)]->setIcon(Swatch(ShownColor(i)));
    CheckOption(m_alignment, m_choice.Header.Alignment);
    m_picPath->setText(m_choice.Header.Picture);
    CheckOption(m_sizing, m_choice.Header.ImageLayout);
    CheckOption(m_position, m_choice.Header.ImagePosition);
    m_sizeX->setValue(m_choice.Header.ImageCustomX);
    m_sizeY->setValue(m_choice.Header.ImageCustomY);
    m_offsetX->setValue(m_choice.Header.ImageOffsetX);
    m_offsetY->setValue(m_choice.Header.ImageOffsetY);
    m_filling = false;
    ShowPictures(1);
    ShowSizing();
}

void DetailsDialog::ShowPictures(int selectRow)
{
    m_pictures->clear();
    for (size_t i = 1; i < m_choice.Pictures.size(); ++i) {
        const PictureItem& p = m_choice.Pictures[i];
        const QString effect = p.Effect.isEmpty() ? QString() : p.Effect + (p.Detail.isEmpty() ? QString() : QStringLiteral(", ") + p.Detail);
        auto* item = new QTreeWidgetItem({PictureTimeText(p.Time), QFileInfo(p.File).fileName(), effect});
        item->setToolTip(1, p.File);
        m_pictures->addTopLevelItem(item);
    }
    m_pictures->resizeColumnToContents(0);
    m_pictures->resizeColumnToContents(1);
    if (selectRow >= 1 && selectRow <= m_pictures->topLevelItemCount())
        m_pictures->setCurrentItem(m_pictures->topLevelItem(selectRow - 1));
    else
        m_preview->clear();
}

void DetailsDialog::ShowSizing()
{
    const bool custom = m_sizing->checkedId() == 2;
    for (QWidget* control : m_customControls)
        control->setEnabled(custom);
}

QColor DetailsDialog::ShownColor(int index) const
{
    return ColorFromWin32(m_choice.Colors[size_t(index)]);
}

void DetailsDialog::ReadControls()
{
    m_choice.Header.Artist = m_artist->text();
    m_choice.Header.Title = m_title->text();
    m_choice.Header.Picture = m_picPath->text();
    m_choice.Header.Alignment = int16_t(m_alignment->checkedId());
    if (m_sizing->checkedId() > 0)
        m_choice.Header.ImageLayout = int16_t(m_sizing->checkedId());
    if (m_position->checkedId() >= 0)
        m_choice.Header.ImagePosition = int16_t(m_position->checkedId());
    m_choice.Header.ImageCustomX = int16_t(m_sizeX->value());
    m_choice.Header.ImageCustomY = int16_t(m_sizeY->value());
    m_choice.Header.ImageOffsetX = int16_t(m_offsetX->value());
    m_choice.Header.ImageOffsetY = int16_t(m_offsetY->value());
}

void DetailsDialog::SizeChanged(bool width, int value)
{
    if (m_filling)
        return;
    int16_t& changed = width ? m_choice.Header.ImageCustomX : m_choice.Header.ImageCustomY;
    int16_t& other = width ? m_choice.Header.ImageCustomY : m_choice.Header.ImageCustomX;
    if (m_aspect->isChecked()) {
        other = int16_t(std::clamp(KeptAspect(changed, value, other), 1, 32767));
        m_filling = true;
        (width ? m_sizeY : m_sizeX)->setValue(other);
        m_filling = false;
    }
    changed = int16_t(value);
}

// ---- Commands ------------------------------------------------------------------------------------

void DetailsDialog::Accept()
{
    ReadControls();
    AcceptDetails(m_choice, m_theme, m_lyrics.EditLyrics[0], m_lyrics.EditPictures);
    accept();
}

void DetailsDialog::Clear()
{
    ReadControls();
    ClearDetails(m_choice, m_theme);
    ShowChoice();
}

void DetailsDialog::ChooseColor(int index)
{
    if (const auto colour = m_dialogs.ChooseColor(ShownColor(index))) {
        m_choice.Colors[size_t(index)] = Win32FromColor(*colour);
        m_colors[size_t(index)]->setIcon(Swatch(*colour));
    }
}

void DetailsDialog::BrowsePicture()
{
    const QString file = m_dialogs.OpenFileName(kTitlePrefix + Text("DialogOpenPicture"),
                                                DialogFilter(m_language.GetRawText(QStringLiteral("FilterPicture")),
                                                             kPicturePatterns));
    if (!file.isEmpty())
        m_picPath->setText(file);
}

int DetailsDialog::SelectedPicture() const
{
    QTreeWidgetItem* item = m_pictures->currentItem();
    return item ? m_pictures->indexOfTopLevelItem(item) + 1 : 0;
}

// The picture a new or edited row comes after: the latest one before its second, else the song's
// background picture.
QImage DetailsDialog::PictureBefore(int row) const
{
    const int32_t second = row > 0 ? m_choice.Pictures[size_t(row)].Time : INT32_MAX;
    int best = 0;
    for (size_t i = 1; i < m_choice.Pictures.size(); ++i) {
        const int32_t t = m_choice.Pictures[i].Time;
        if (int(i) != row && t <= second && (best == 0 || t >= m_choice.Pictures[size_t(best)].Time))
            best = int(i);
    }
    QImage picture = LoadPicture(best > 0 ? m_choice.Pictures[size_t(best)].File : m_picPath->text());
    if (picture.isNull())
        picture = m_theme.LyricsPicture();
    return picture;
}

QImage DetailsDialog::LoadPicture(const QString& name) const
{
    return name.isEmpty() ? QImage() : QImage(ResolvePicturePath(m_baseFolder, name));
}

void DetailsDialog::AddPicture()
{
    ReadControls();
    if (const auto picture = EditPicture(nullptr, PictureBefore(0))) {
        m_choice.Pictures.push_back(*picture);
        ShowPictures(int(m_choice.Pictures.size()) - 1);
    }
}

void DetailsDialog::EditSelectedPicture()
{
    const int row = SelectedPicture();
    if (row < 1)
        return;
    ReadControls();
    if (const auto picture = EditPicture(&m_choice.Pictures[size_t(row)], PictureBefore(row))) {
        m_choice.Pictures[size_t(row)] = *picture;
        ShowPictures(row);
    }
}

void DetailsDialog::RemoveSelectedPicture()
{
    const int row = SelectedPicture();
    if (row < 1)
        return;
    ReadControls();
    m_choice.Pictures.erase(m_choice.Pictures.begin() + row);
    if (m_choice.Pictures.size() == 1) {
        DefaultImagePlacing(m_choice, m_theme);
        ShowChoice();
        return;
    }
    ShowPictures(std::min(row, int(m_choice.Pictures.size()) - 1));
}

void DetailsDialog::PreviewSelectedPicture()
{
    const int row = SelectedPicture();
    const QImage picture = row > 0 ? LoadPicture(m_choice.Pictures[size_t(row)].File) : QImage();
    if (picture.isNull()) {
        m_preview->clear();
        return;
    }
    const qreal dpr = m_preview->devicePixelRatioF();
    QPixmap pixmap = QPixmap::fromImage(
        picture.scaled(kPreviewSize * dpr, Qt::KeepAspectRatio, Qt::SmoothTransformation));
    pixmap.setDevicePixelRatio(dpr);
    m_preview->setPixmap(pixmap);
}
