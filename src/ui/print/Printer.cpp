#include "ui/print/Printer.h"

#include "core/Dialogs.h"
#include "core/Language.h"
#include "print/LyricsDocument.h"
#include "print/PrintedPages.h"
#include "ui/kit/Palette.h"
#include "ui/kit/Pickers.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QDialogButtonBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QPageSetupDialog>
#include <QPrintDialog>
#include <QPrintPreviewDialog>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

namespace {

constexpr const char* kAlignments[][2] = {{"Left", "PrintLeft"}, {"Center", "PrintCenter"}, {"Right", "PrintRight"}};

} // namespace

Printer::Printer(const std::vector<LyricItem>& lyrics, SettingsStore& store, const LanguageTable& language,
                 Dialogs& dialogs, QWidget* parent)
    : QDialog(parent),
      m_lyrics(lyrics),
      m_store(store),
      m_language(language),
      m_dialogs(dialogs),
      m_settings(PrintSettings::Load(store)),
      m_printer(QPrinter::HighResolution)
{
    setObjectName(QStringLiteral("Printer"));
    setWindowTitle(Text("PrintCaption"));
    setPalette(ControlsPalette());
    m_printer.setDocName(QStringLiteral("SWVLyrics"));
    m_printer.setPageSize(QPageSize(QPageSize::A4));

    auto* layout = new QVBoxLayout(this);
    layout->setSpacing(10);
    layout->addWidget(BuildTitleGroup());
    layout->addWidget(BuildLyricsGroup());
    layout->addWidget(BuildPageGroup());
    layout->addStretch(1);
    layout->addWidget(BuildButtons());
    setMinimumWidth(540);
}

Printer::~Printer() = default;

QString Printer::Text(const char* key) const
{
    return m_language.GetText(QString::fromLatin1(key));
}

void Printer::AddFontAndColour(QGridLayout* grid, int row, const QString& name, FontButton*& font,
                               ColorButton*& colour)
{
    font = new FontButton([this](const QFont& f) { return m_dialogs.ChooseFont(f); });
    font->setObjectName(name + QStringLiteral("Font"));
    font->setToolTip(Text("PrintSelFont"));
    colour = new ColorButton([this](const QColor& c) { return m_dialogs.ChooseColor(c); }, Text("PrintSelColor"));
    colour->setObjectName(name + QStringLiteral("Color"));
    grid->addWidget(font, row, 0);
    grid->addWidget(colour, row, 1);
    grid->setColumnStretch(0, 1);
}

QWidget* Printer::BuildLyricsGroup()
{
    auto* group = new QGroupBox(Text("PrintLyricsText"));
    AddFontAndColour(new QGridLayout(group), 0, QStringLiteral("Lyrics"), m_lyricsFont, m_lyricsColor);
    m_lyricsFont->SetFont(m_settings.LyricsFont());
    m_lyricsColor->SetWin32(m_settings.LyricColor);
    connect(m_lyricsFont, &FontButton::Changed, this, [this](const QFont& f) { m_settings.SetLyricsFont(f); });
    connect(m_lyricsColor, &ColorButton::Changed, this, [this](int32_t c) { m_settings.LyricColor = c; });
    return group;
}

QWidget* Printer::BuildTitleGroup()
{
    auto* group = new QGroupBox(Text("PrintLyricsTitle"));
    auto* grid = new QGridLayout(group);
    m_printTitle = new QCheckBox(Text("PrintTitles"));
    m_printTitle->setObjectName(QStringLiteral("pTitle"));
    m_printTitle->setChecked(m_settings.PrintTitle);
    grid->addWidget(m_printTitle, 0, 0, 1, 2);
    AddFontAndColour(grid, 1, QStringLiteral("Title"), m_titleFont, m_titleColor);
    m_titleFont->SetFont(m_settings.TitleFont());
    m_titleColor->SetWin32(m_settings.TitleColor);
    const auto enableTitle = [this](bool on) {
        m_titleFont->setEnabled(on);
        m_titleColor->setEnabled(on);
    };
    enableTitle(m_settings.PrintTitle);
    connect(m_printTitle, &QCheckBox::toggled, this, [this, enableTitle](bool on) {
        m_settings.PrintTitle = on;
        enableTitle(on);
    });
    connect(m_titleFont, &FontButton::Changed, this, [this](const QFont& f) { m_settings.SetTitleFont(f); });
    connect(m_titleColor, &ColorButton::Changed, this, [this](int32_t c) { m_settings.TitleColor = c; });
    return group;
}

QWidget* Printer::BuildPageGroup()
{
    auto* group = new QGroupBox(Text("PrintFrame"));
    auto* row = new QHBoxLayout(group);
    m_alignment = new QButtonGroup(this);
    for (int i = 0; i < 3; ++i) {
        auto* option = new QRadioButton(Text(kAlignments[i][1]));
        option->setObjectName(QLatin1String(kAlignments[i][1]));
        option->setChecked(m_settings.Alignment == QLatin1String(kAlignments[i][0]));
        m_alignment->addButton(option, i);
        row->addWidget(option);
    }
    row->addStretch(1);
    connect(m_alignment, &QButtonGroup::idClicked, this,
            [this](int id) { m_settings.Alignment = QLatin1String(kAlignments[id][0]); });
    return group;
}

QWidget* Printer::BuildButtons()
{
    auto* box = new QDialogButtonBox;
    const auto add = [box](const QString& text, const char* name, QDialogButtonBox::ButtonRole role) {
        QPushButton* button = box->addButton(text, role);
        button->setObjectName(QLatin1String(name));
        return button;
    };
    connect(add(Text("PrintPreview"), "bPreview", QDialogButtonBox::ActionRole), &QPushButton::clicked, this,
            &Printer::Preview);
    connect(add(Text("PrintPage"), "bSettings", QDialogButtonBox::ActionRole), &QPushButton::clicked, this,
            &Printer::PageSetup);
    connect(add(Text("PrintBtnPrint"), "bPrint", QDialogButtonBox::ActionRole), &QPushButton::clicked, this,
            &Printer::Print);
    QPushButton* ok = add(Text("ButtonOK"), "bAccept", QDialogButtonBox::AcceptRole);
    ok->setDefault(true);
    connect(ok, &QPushButton::clicked, this, &Printer::Accept);
    connect(add(Text("ButtonCancel"), "Anuluj", QDialogButtonBox::RejectRole), &QPushButton::clicked, this,
            &QDialog::reject);
    return box;
}

QString Printer::PreparePage(const QString& name) const
{
    const QString html = BuildDocument(m_lyrics, m_settings);
    // Without a temporary folder the page is laid out from memory all the same.
    if (const auto path = WriteDocument(name, html))
        return ReadDocument(*path);
    return html;
}

void Printer::Preview()
{
    const QString html = PreparePage(QStringLiteral("Preview"));
    QPrintPreviewDialog preview(&m_printer, this);
    preview.setObjectName(QStringLiteral("PrintPreview"));
    preview.setWindowTitle(Text("PrintPreview"));
    connect(&preview, &QPrintPreviewDialog::paintRequested, this,
            [&html](QPrinter* printer) { PaintPages(html, *printer); });
    preview.resize(760, 880);
    preview.exec();
}

void Printer::Print()
{
    const QString html = PreparePage(QStringLiteral("SWVLyrics"));
    QPrintDialog dialog(&m_printer, this);
    dialog.setWindowTitle(Text("PrintBtnPrint"));
    if (dialog.exec() == QDialog::Accepted)
        PaintPages(html, m_printer);
}

void Printer::PageSetup()
{
    QPageSetupDialog dialog(&m_printer, this);
    dialog.exec();
}

void Printer::Accept()
{
    m_settings.Save(m_store);
    accept();
}
