#pragma once
// The lyrics details dialog: a song's artist, title, colours, text alignment and background
// picture on one tab; its timed pictures and their placing on the other. It edits a copy, so
// Cancel changes nothing; OK writes the copy back by the rules of LyricsDetails.

#include "editor/LyricsDetails.h"

#include <QDialog>
#include <functional>
#include <optional>

class Dialogs;
class LanguageTable;
class QButtonGroup;
class QCheckBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QSpinBox;
class QTabWidget;
class QTreeWidget;
class QWidget;
class ThemeClass;

class DetailsDialog final : public QDialog {
    Q_OBJECT
public:
    // Picture names that are not absolute belong to the lyrics' folder.
    DetailsDialog(LyricsState& lyrics, const ThemeClass& theme, const LanguageTable& language, Dialogs& dialogs,
                  const QString& baseFolder, QWidget* parent = nullptr);

    // The picture details dialog for a new row (nullptr) or a row's copy; nothing when cancelled.
    std::function<std::optional<PictureItem>(const PictureItem* row, const QImage& before)> EditPicture;

    // The buttons' commands.
    void Accept();
    void Clear();
    void ChooseColor(int index);
    void BrowsePicture();
    void AddPicture();
    void EditSelectedPicture();
    void RemoveSelectedPicture();
    void PreviewSelectedPicture();

    const DetailsChoice& Choice() const { return m_choice; }
    QColor ShownColor(int index) const;

private:
    QString Text(const char* key) const;
    QWidget* BuildGeneralTab();
    QWidget* BuildImagesTab();
    QWidget* BuildPlacing();
    void ShowChoice();
    void ShowPictures(int selectRow);
    void ShowSizing();
    void ReadControls();
    void SizeChanged(bool width, int value);
    int SelectedPicture() const;
    QImage PictureBefore(int row) const;
    QImage LoadPicture(const QString& name) const;

    LyricsState& m_lyrics;
    const ThemeClass& m_theme;
    const LanguageTable& m_language;
    Dialogs& m_dialogs;
    QString m_baseFolder;
    DetailsChoice m_choice;
    bool m_filling = false;

    QTabWidget* m_tabs;
    QLineEdit* m_artist;
    QLineEdit* m_title;
    std::array<QPushButton*, kDetailsColors> m_colors{};
    QButtonGroup* m_alignment;
    QLineEdit* m_picPath;
    QTreeWidget* m_pictures;
    QLabel* m_preview;
    QButtonGroup* m_sizing;
    QButtonGroup* m_position;
    QSpinBox* m_sizeX;
    QSpinBox* m_sizeY;
    QSpinBox* m_offsetX;
    QSpinBox* m_offsetY;
    QCheckBox* m_aspect;
    std::vector<QWidget*> m_customControls;
};
