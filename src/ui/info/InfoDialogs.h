#pragma once
// The file information dialogs: an MP3 file's stream and its two ID3 tags side by side, which
// the user edits and saves; an Ogg file's comments and a WAV file's format, read-only; a MIDI
// file's tempo, measure and length.

#include "tags/MP3Class.h"

#include <QDialog>
#include <array>
#include <functional>

class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class QPlainTextEdit;
class QPushButton;
class SongList;

// What the dialogs need of the program.
struct InfoContext {
    bool Polish = false;
    SongList* List = nullptr;
    // Releases the file if it plays, runs the rewrite, takes the song up again.
    PlayingFileRelease Release;
    // A message with a critical icon: its text and its title.
    std::function<void(const QString& text, const QString& title)> Critical;
};

class Id3InfoDialog final : public QDialog {
    Q_OBJECT
public:
    Id3InfoDialog(const QString& path, InfoContext context, QWidget* parent = nullptr);

    // The file's tags anew into the two groups.
    void ReadInfo();
    // The buttons by their index: 0 save, 1 close, 2 read again, 3 ID3v2 to ID3v1, 4 ID3v1 to ID3v2.
    void Button(int index);
    void Save();
    Id3TagTexts Texts() const;

    QCheckBox& Check1() { return *m_check1; }
    QCheckBox& Check2() { return *m_check2; }
    QLineEdit& Id1(int index) { return *m_id1[size_t(index)]; }
    QLineEdit& Id2(int index) { return *m_id2[size_t(index)]; }
    QLineEdit& Track1() { return *m_track1; }
    QLineEdit& Track2() { return *m_track2; }
    QComboBox& Combo1() { return *m_combo1; }
    QComboBox& Combo2() { return *m_combo2; }

private:
    QWidget* BuildGroup(int group);
    void ClearGroup(int group);
    void CopyGroup(int from);
    void RebuildRowText(const Id3TagTexts& saved);

    QString m_path;
    InfoContext m_context;
    MP3Class m_song;
    QLineEdit* m_filepath;
    QPlainTextEdit* m_mpegInfo;
    QCheckBox* m_check1 = nullptr;
    QCheckBox* m_check2 = nullptr;
    std::array<QLineEdit*, 5> m_id1{};
    std::array<QLineEdit*, 10> m_id2{};
    QLineEdit* m_track1 = nullptr;
    QLineEdit* m_track2 = nullptr;
    QComboBox* m_combo1 = nullptr;
    QComboBox* m_combo2 = nullptr;
};

// The Ogg comments, read-only.
class OggInfoDialog final : public QDialog {
    Q_OBJECT
public:
    OggInfoDialog(const QString& path, bool polish, QWidget* parent = nullptr);
    QString Shown(int index) const;
    QString ShownGenre() const;

private:
    std::array<QLineEdit*, 8> m_boxes{};
    QComboBox* m_genre;
};

// A WAV file's format, read-only.
class WavInfoDialog final : public QDialog {
    Q_OBJECT
public:
    WavInfoDialog(const QString& path, bool polish, QWidget* parent = nullptr);
    QString Shown() const;

private:
    QPlainTextEdit* m_info;
};

// A karaoke disc song (CD+G) or a video: what it is, how long it plays, its title and artist, and
// for a disc song its graphics file.
class KaraokeInfoDialog final : public QDialog {
    Q_OBJECT
public:
    KaraokeInfoDialog(const QString& path, bool polish, QWidget* parent = nullptr);
    QString Shown() const;

private:
    QLabel* m_info;
};

// A MIDI file's tempo, measure and length.
class MidiInfoDialog final : public QDialog {
    Q_OBJECT
public:
    MidiInfoDialog(const QString& path, bool polish, QWidget* parent = nullptr);
    QString Shown() const;

private:
    QLabel* m_info;
};
