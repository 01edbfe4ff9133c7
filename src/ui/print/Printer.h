#pragma once
// The print dialog of the lyrics editor: the fonts and colours of the lyrics and the title,
// whether the title prints, the alignment; Preview, Print and Page setup lay out the page the
// choices make. OK keeps the choices for the next run; Cancel forgets them.

#include "print/PrintSettings.h"

#include <QDialog>
#include <QPrinter>
#include <optional>
#include <vector>

struct LyricItem;
class ColorButton;
class Dialogs;
class FontButton;
class LanguageTable;
class QButtonGroup;
class QCheckBox;
class QGridLayout;
class SettingsStore;

class Printer final : public QDialog {
    Q_OBJECT
public:
    Printer(const std::vector<LyricItem>& lyrics, SettingsStore& store, const LanguageTable& language,
            Dialogs& dialogs, QWidget* parent = nullptr);
    ~Printer() override;

    // The page of the current choices, written to the temporary folder under the name and read
    // back as it will be laid out.
    QString PreparePage(const QString& name) const;

    void Preview();
    void Print();
    void PageSetup();
    // Keeps the choices and closes.
    void Accept();

    const PrintSettings& Choice() const { return m_settings; }
    QPrinter& Device() { return m_printer; }

private:
    QString Text(const char* key) const;
    // A font button and a colour button side by side, named NAMEFont and NAMEColor.
    void AddFontAndColour(QGridLayout* grid, int row, const QString& name, FontButton*& font, ColorButton*& colour);
    QWidget* BuildLyricsGroup();
    QWidget* BuildTitleGroup();
    QWidget* BuildPageGroup();
    QWidget* BuildButtons();

    const std::vector<LyricItem>& m_lyrics;
    SettingsStore& m_store;
    const LanguageTable& m_language;
    Dialogs& m_dialogs;
    PrintSettings m_settings;
    QPrinter m_printer;

    FontButton* m_lyricsFont;
    ColorButton* m_lyricsColor;
    QCheckBox* m_printTitle;
    FontButton* m_titleFont;
    ColorButton* m_titleColor;
    QButtonGroup* m_alignment;
};
