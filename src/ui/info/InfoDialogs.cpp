#include "ui/info/InfoDialogs.h"

#include "cdg/CdgSong.h"
#include "core/Forms.h"
#include "core/Numbers.h"
#include "midi/KaraokeWords.h"
#include "midi/MidiBytes.h"
#include "midi/MidiRead.h"
#include "playback/SongKind.h"
#include "tags/Genres.h"
#include "ui/kit/Palette.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QEvent>
#include <QFile>
#include <QFileInfo>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTimer>
#include <QVBoxLayout>

namespace {

const QString kSaveErrorTitle = QStringLiteral("SWV: Save error");
constexpr int kMinimumWidth = 460;
const char* const kV1Labels[5] = {"Title", "Artist", "Album", "Year", "Comment"};
const char* const kV2Labels[10] = {"Title",           "Artist",    "Album", "Year", "Comment",
                                   "Composer",        "Original artist", "Copyright", "URL", "Encoded by"};
const char* const kButtons[5] = {"Save", "Close", "Reload", "ID3v2 \u2192 ID3v1", "ID3v1 \u2192 ID3v2"};

// A box selects all its text when it gets the focus, so typing replaces it.
class SelectOnFocus final : public QObject {
public:
    using QObject::QObject;
    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (event->type() == QEvent::FocusIn)
            if (auto* box = qobject_cast<QLineEdit*>(watched))
                QTimer::singleShot(0, box, &QLineEdit::selectAll);
        return false;
    }
};

QLineEdit* Box(QObject* selector, const QString& name)
{
    auto* box = new QLineEdit;
    box->setObjectName(name);
    box->installEventFilter(selector);
    return box;
}

QComboBox* GenreBox(const QString& name, bool emptyFirst)
{
    auto* box = new QComboBox;
    box->setObjectName(name);
    box->setEditable(true);
    box->setInsertPolicy(QComboBox::NoInsert);
    if (emptyFirst)
        box->addItem(QString());
    box->addItems(GenreNames());
    return box;
}

// Shows a genre by the list's row that matches it, or as typed text when none does.
void ShowGenre(QComboBox& box, const QString& genre)
{
    const int row = box.findText(genre, Qt::MatchExactly | Qt::MatchCaseSensitive);
    if (row >= 0)
        box.setCurrentIndex(row);
    else
        box.setEditText(genre);
}

QPlainTextEdit* InfoText(const QString& name, const QString& text)
{
    auto* info = new QPlainTextEdit(text);
    info->setObjectName(name);
    info->setReadOnly(true);
    info->setLineWrapMode(QPlainTextEdit::NoWrap);
    info->setMinimumHeight(120);
    return info;
}

QLineEdit* PathBox(const QString& path)
{
    auto* box = new QLineEdit(path);
    box->setObjectName(QStringLiteral("Filepath"));
    box->setReadOnly(true);
    return box;
}

void Prepare(QDialog& dialog, const QString& name, const QString& caption)
{
    dialog.setObjectName(name);
    dialog.setWindowTitle(caption);
    dialog.setPalette(ControlsPalette());
    dialog.setAttribute(Qt::WA_DeleteOnClose);
    dialog.setMinimumWidth(kMinimumWidth);
}

QDialogButtonBox* OkBox(QDialog& dialog)
{
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok);
    buttons->button(QDialogButtonBox::Ok)->setObjectName(QStringLiteral("OK"));
    QObject::connect(buttons, &QDialogButtonBox::accepted, &dialog, &QDialog::close);
    return buttons;
}

// A read-only dialog's page: the file's path, its facts as selectable lines, OK.
QLabel* FactsPage(QDialog& dialog, const QString& path, const QString& name, const QString& facts)
{
    auto* info = new QLabel(facts);
    info->setObjectName(name);
    info->setTextInteractionFlags(Qt::TextSelectableByMouse);
    auto* form = new QFormLayout;
    form->addRow(QStringLiteral("File"), PathBox(path));
    auto* layout = new QVBoxLayout(&dialog);
    layout->addLayout(form);
    layout->addWidget(info);
    layout->addWidget(OkBox(dialog));
    return info;
}

// A file as its dialog shows it: the stream, then every tag.
void ReadWholly(MP3Class& song, const QString& path)
{
    song.SetFilename(path);
    song.ReadFile();
    song.ReadTag();
}

// The playlist text of a song: artist - title, or whichever of them there is.
QString RowText(const QString& artist, const QString& title)
{
    if (artist.isEmpty())
        return title;
    if (title.isEmpty())
        return artist;
    return artist + QStringLiteral(" - ") + title;
}

} // namespace

// ---- MP3 -----------------------------------------------------------------------------------------

Id3InfoDialog::Id3InfoDialog(const QString& path, InfoContext context, QWidget* parent)
    : QDialog(parent), m_path(path), m_context(std::move(context)), m_song(m_context.Polish)
{
    Prepare(*this, QStringLiteral("frmInfo"), QStringLiteral("File information - %1").arg(QFileInfo(path).fileName()));
    m_filepath = PathBox(path);
    m_mpegInfo = InfoText(QStringLiteral("MPEGfo"), QString());

    auto* groups = new QHBoxLayout;
    groups->addWidget(BuildGroup(1), 1);
    groups->addWidget(BuildGroup(2), 1);

    auto* buttons = new QHBoxLayout;
    for (int i = 0; i < 5; ++i) {
        auto* button = new QPushButton(QString::fromUtf8(kButtons[i]));
        button->setObjectName(QStringLiteral("IDBtn%1").arg(i));
        connect(button, &QPushButton::clicked, this, [this, i] { Button(i); });
        if (i == 3)
            buttons->addStretch(1);
        buttons->addWidget(button);
    }

    auto* top = new QFormLayout;
    top->addRow(QStringLiteral("File"), m_filepath);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(top);
    layout->addWidget(m_mpegInfo);
    layout->addLayout(groups);
    layout->addLayout(buttons);
    ReadInfo();
}

QWidget* Id3InfoDialog::BuildGroup(int group)
{
    auto* selector = new SelectOnFocus(this);
    auto* box = new QGroupBox;
    auto* form = new QFormLayout(box);
    auto* check = new QCheckBox(group == 1 ? QStringLiteral("ID3v1 tag") : QStringLiteral("ID3v2 tag"));
    check->setObjectName(QStringLiteral("Check%1").arg(group));
    connect(check, &QCheckBox::toggled, this, [this, group](bool on) {
        if (!on)
            ClearGroup(group);
    });
    form->addRow(check);
    const int count = group == 1 ? 5 : 10;
    for (int i = 0; i < count; ++i) {
        QLineEdit* edit = Box(selector, QStringLiteral("ID%1_%2").arg(group).arg(i));
        if (group == 1) {
            edit->setMaxLength(i == 3 ? 4 : i == 4 ? 28 : 30);
            m_id1[size_t(i)] = edit;
        } else {
            m_id2[size_t(i)] = edit;
        }
        form->addRow(QString::fromLatin1(group == 1 ? kV1Labels[i] : kV2Labels[i]), edit);
        if (i == 4) {
            QLineEdit*& track = group == 1 ? m_track1 : m_track2;
            track = Box(selector, QStringLiteral("Track%1").arg(group));
            QComboBox*& genre = group == 1 ? m_combo1 : m_combo2;
            genre = GenreBox(QStringLiteral("Combo%1").arg(group), group == 1);
            form->addRow(QStringLiteral("Track"), track);
            form->addRow(QStringLiteral("Genre"), genre);
        }
    }
    (group == 1 ? m_check1 : m_check2) = check;
    return box;
}

void Id3InfoDialog::ClearGroup(int group)
{
    if (group == 1) {
        for (QLineEdit* box : m_id1)
            box->clear();
        m_track1->clear();
        m_combo1->setCurrentIndex(0);
        m_combo1->setEditText(QString());
    } else {
        for (QLineEdit* box : m_id2)
            box->clear();
        m_track2->clear();
        m_combo2->setEditText(QString());
    }
}

void Id3InfoDialog::ReadInfo()
{
    ReadWholly(m_song, m_path);
    m_filepath->setText(m_song.Filename());
    m_mpegInfo->setPlainText(m_song.MPEGInfo());
    const Id3TagTexts t = m_song.TagTexts();
    m_check1->setChecked(m_song.ID3v1Exist());
    ClearGroup(1);
    if (m_song.ID3v1Exist()) {
        const QString v1[5] = {t.Title1, t.Artist1, t.Album1, t.Year1, t.Comment1};
        for (int i = 0; i < 5; ++i)
            m_id1[size_t(i)]->setText(v1[i]);
        m_track1->setText(t.Track1);
        ShowGenre(*m_combo1, t.Genre1);
    }
    m_check2->setChecked(m_song.ID3v2Exist());
    ClearGroup(2);
    if (m_song.ID3v2Exist()) {
        const QString v2[10] = {t.Title2,   t.Artist2,        t.Album2,    t.Year2, t.Comment2,
                                t.Composer, t.OriginalArtist, t.Copyright, t.URL,   t.Encoded};
        for (int i = 0; i < 10; ++i)
            m_id2[size_t(i)]->setText(v2[i]);
        m_track2->setText(t.Track2);
        ShowGenre(*m_combo2, t.Genre2);
    }
}

Id3TagTexts Id3InfoDialog::Texts() const
{
    Id3TagTexts t;
    t.Title1 = m_id1[0]->text();
    t.Artist1 = m_id1[1]->text();
    t.Album1 = m_id1[2]->text();
    t.Year1 = m_id1[3]->text();
    t.Comment1 = m_id1[4]->text();
    t.Genre1 = m_combo1->currentText();
    t.Track1 = m_track1->text();
    t.Title2 = m_id2[0]->text();
    t.Artist2 = m_id2[1]->text();
    t.Album2 = m_id2[2]->text();
    t.Year2 = m_id2[3]->text();
    t.Comment2 = m_id2[4]->text();
    t.Genre2 = m_combo2->currentText();
    t.Track2 = m_track2->text();
    t.Composer = m_id2[5]->text();
    t.OriginalArtist = m_id2[6]->text();
    t.Copyright = m_id2[7]->text();
    t.URL = m_id2[8]->text();
    t.Encoded = m_id2[9]->text();
    return t;
}

void Id3InfoDialog::CopyGroup(int from)
{
    const bool toV1 = from == 2;
    for (size_t i = 0; i < m_id1.size(); ++i)
        (toV1 ? m_id1[i] : m_id2[i])->setText((toV1 ? m_id2[i] : m_id1[i])->text());
    (toV1 ? m_track1 : m_track2)->setText((toV1 ? m_track2 : m_track1)->text());
    ShowGenre(toV1 ? *m_combo1 : *m_combo2, (toV1 ? m_combo2 : m_combo1)->currentText());
    (toV1 ? m_check1 : m_check2)->setChecked(true);
}

void Id3InfoDialog::Button(int index)
{
    switch (index) {
    case 0: Save(); break;
    case 1: close(); break;
    case 2: ReadInfo(); break;
    case 3: CopyGroup(2); break;
    case 4: CopyGroup(1); break;
    default: break;
    }
}

void Id3InfoDialog::Save()
{
    // A listed genre goes into the ID3v2 tag in its numeric form, "(17)Rock".
    const int row = m_combo2->findText(m_combo2->currentText(), Qt::MatchExactly | Qt::MatchCaseSensitive);
    if (row >= 0 && !m_combo2->currentText().isEmpty())
        m_combo2->setEditText(QStringLiteral("(%1)%2").arg(row).arg(m_combo2->currentText()));
    if (!m_check1->isChecked())
        ClearGroup(1);
    if (!m_check2->isChecked())
        ClearGroup(2);
    const Id3TagTexts texts = Texts();
    const int16_t result = m_song.SaveId3Tag(texts, m_context.Release);
    if (result >= 0) {
        RebuildRowText(texts);
        close();
        return;
    }
    static const char* const kMessages[3] = {"Can't write ID3v1 tag.", "Can't write ID3v2 tag.",
                                             "Can't write both ID3v1 and Id3v2 tag."};
    if (m_context.Critical)
        m_context.Critical(QString::fromLatin1(kMessages[std::min(3, -result) - 1]), kSaveErrorTitle);
}

void Id3InfoDialog::RebuildRowText(const Id3TagTexts& saved)
{
    const QString title = saved.Title2.isEmpty() ? saved.Title1 : saved.Title2;
    const QString artist = saved.Artist2.isEmpty() ? saved.Artist1 : saved.Artist2;
    const QString text = RowText(artist, title);
    if (!m_context.List || text.isEmpty())
        return;
    for (int i = 0; i < m_context.List->ListCount(); ++i)
        if (m_context.List->ItemPath(i) == m_path)
            m_context.List->SetItemText(i, text);
}

// ---- Ogg, WAV, MIDI ------------------------------------------------------------------------------

OggInfoDialog::OggInfoDialog(const QString& path, bool polish, QWidget* parent) : QDialog(parent)
{
    Prepare(*this, QStringLiteral("OGGInfo"), QStringLiteral("Ogg Vorbis information - %1").arg(QFileInfo(path).fileName()));
    MP3Class song(polish);
    ReadWholly(song, path);
    auto* selector = new SelectOnFocus(this);
    auto* file = new QFormLayout;
    file->addRow(QStringLiteral("File"), PathBox(song.Filename()));
    auto* form = new QFormLayout;
    const QString values[8] = {song.Title(), song.Artist(),  song.Album(),     song.Track(),
                               song.Year(),  song.Comment(), song.Performer(), song.Description()};
    const char* const labels[8] = {"Title", "Artist", "Album", "Track", "Year", "Comment", "Performer", "Description"};
    for (int i = 0; i < 8; ++i) {
        m_boxes[size_t(i)] = Box(selector, QStringLiteral("OGG%1").arg(i));
        m_boxes[size_t(i)]->setText(values[i]);
        m_boxes[size_t(i)]->setReadOnly(true);
        form->addRow(QString::fromLatin1(labels[i]), m_boxes[size_t(i)]);
    }
    m_genre = GenreBox(QStringLiteral("genreCMB"), false);
    ShowGenre(*m_genre, song.Genre());
    m_genre->lineEdit()->setReadOnly(true);
    form->addRow(QStringLiteral("Genre"), m_genre);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(file);
    layout->addWidget(InfoText(QStringLiteral("OGGfo"), song.OGGInfo()));
    layout->addLayout(form);
    layout->addWidget(OkBox(*this));
}

QString OggInfoDialog::Shown(int index) const
{
    return m_boxes[size_t(index)]->text();
}

QString OggInfoDialog::ShownGenre() const
{
    return m_genre->currentText();
}

WavInfoDialog::WavInfoDialog(const QString& path, bool polish, QWidget* parent) : QDialog(parent)
{
    Prepare(*this, QStringLiteral("WAVInfo"), QStringLiteral("WAV information - %1").arg(QFileInfo(path).fileName()));
    MP3Class song(polish);
    ReadWholly(song, path);
    m_info = InfoText(QStringLiteral("WAVEfo"), song.WAVInfo());
    auto* form = new QFormLayout;
    form->addRow(QStringLiteral("File"), PathBox(song.Filename()));
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(form);
    layout->addWidget(m_info);
    layout->addWidget(OkBox(*this));
}

QString WavInfoDialog::Shown() const
{
    return m_info->toPlainText();
}

KaraokeInfoDialog::KaraokeInfoDialog(const QString& path, bool polish, QWidget* parent) : QDialog(parent)
{
    Prepare(*this, QStringLiteral("KaraokeInfo"), QStringLiteral("Karaoke information - %1").arg(QFileInfo(path).fileName()));
    std::unique_ptr<ZipSong> zip;
    const QString audio = AudioOfKaraokeFile(path, zip);
    MP3Class song(polish);
    ReadWholly(song, audio);
    QStringList lines{QStringLiteral("Kind: ") + SongKindText(audio, song.format()),
                      QStringLiteral("Length: ") + FormatTime(song.Length()),
                      QStringLiteral("Song: ") + RowText(song.Artist(), song.Title())};
    if (const QString graphics = CdgFileOf(audio); !graphics.isEmpty())
        lines << QStringLiteral("Graphics: ") + QFileInfo(graphics).fileName();
    m_info = FactsPage(*this, path, QStringLiteral("KaraokeInfoText"), lines.join(u'\n'));
}

QString KaraokeInfoDialog::Shown() const
{
    return m_info->text();
}

MidiInfoDialog::MidiInfoDialog(const QString& path, bool polish, QWidget* parent) : QDialog(parent)
{
    Prepare(*this, QStringLiteral("MIDIInfo"), QStringLiteral("MIDI information - %1").arg(QFileInfo(path).fileName()));
    QFile file(path);
    const QByteArray bytes = file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    MidiFigures figures;
    MeasureSong(bytes, figures);
    std::vector<LyricItem> words(1);
    ReadFile(bytes, figures, words, polish);
    m_info = FactsPage(*this, path, QStringLiteral("MidiFacts"),
                       QStringLiteral("Tempo: %1 BPM\nMeasure: %2/%3\nLength: %4")
                           .arg(QString::number(figures.MidiBpm, 'f', 2))
                           .arg(figures.BeatsPerMeasure)
                           .arg(figures.Beat)
                           .arg(FormatTime(figures.MidiDuration)));
}

QString MidiInfoDialog::Shown() const
{
    return m_info->text();
}
