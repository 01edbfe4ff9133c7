#include "ui/editor/PictureDialog.h"

#include "core/Dialogs.h"
#include "core/Language.h"
#include "core/ThemeClass.h"
#include "lyrics/LyricTime.h"
#include "ui/kit/Desktop.h"
#include "ui/kit/Palette.h"
#include "ui/kit/Pickers.h"

#include <QDialogButtonBox>
#include <QFileInfo>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QImageReader>
#include <QLineEdit>
#include <QPainter>
#include <QPushButton>
#include <QSpinBox>
#include <QVBoxLayout>

namespace {

const QString kTitlePrefix = QStringLiteral("SWV: ");
const QString kPicturePatterns = QStringLiteral("*.jpg;*.jpeg;*.png;*.bmp;*.gif");
const QString kMissingFile = QStringLiteral("Picture file doesn't exist.");
const QString kNotAPicture = QStringLiteral("Incorrect picture file format.");
constexpr int kLongestSecond = 35999;  // 9:59:59
const QSize kPreviewSize(320, 180);
constexpr int kTimerMs = 10;

} // namespace

// ---- The preview control -------------------------------------------------------------------------

TransitionPreview::TransitionPreview(QWidget* parent) : QWidget(parent)
{
    setObjectName(QStringLiteral("PicPreview"));
    setFixedSize(kPreviewSize);
    setAttribute(Qt::WA_OpaquePaintEvent);
    m_timer.setInterval(kTimerMs);
    m_timer.setTimerType(Qt::PreciseTimer);
    connect(&m_timer, &QTimer::timeout, this, &TransitionPreview::Step);
}

// The picture as the karaoke window fits it: whole, keeping its shape, on black.
QImage TransitionPreview::Fitted(const QImage& picture) const
{
    const qreal dpr = devicePixelRatioF();
    QImage area(size() * dpr, QImage::Format_ARGB32_Premultiplied);
    area.fill(Qt::black);
    if (!picture.isNull()) {
        QPainter painter(&area);
        painter.setRenderHint(QPainter::SmoothPixmapTransform);
        const QSize fitted = picture.size().scaled(area.size(), Qt::KeepAspectRatio);
        painter.drawImage(QRect(QPoint((area.width() - fitted.width()) / 2, (area.height() - fitted.height()) / 2), fitted),
                          picture);
    }
    return area;
}

void TransitionPreview::ShowPicture(const QImage& picture)
{
    m_timer.stop();
    m_transition.reset();
    m_shown = Fitted(picture);
    update();
}

void TransitionPreview::Run(const QImage& before, const QImage& after, const std::optional<Effect>& effect, int speed)
{
    ShowPicture(before);
    if (!effect) {
        ShowPicture(after);
        return;
    }
    m_transition.emplace(m_shown, Fitted(after), *effect, TransitionPace::For(*effect, size(), speed),
                         devicePixelRatioF());
    m_clock.start();
    m_timer.start();
}

void TransitionPreview::Step()
{
    if (!m_transition)
        return;
    const double elapsed = double(m_clock.nsecsElapsed()) / 1e6;
    m_shown = m_transition->FrameAt(elapsed);
    if (m_transition->Finished(elapsed)) {
        m_timer.stop();
        m_transition.reset();
    }
    update();
}

void TransitionPreview::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    if (m_shown.isNull()) {
        painter.fillRect(rect(), Qt::black);
        return;
    }
    painter.drawImage(QRectF(rect()), m_shown, QRectF(m_shown.rect()));
}

// ---- The dialog ----------------------------------------------------------------------------------

PictureDialog::PictureDialog(const PictureItem* row, const QImage& before, const ThemeClass& theme,
                             const LanguageTable& language, Dialogs& dialogs, const QString& baseFolder,
                             QWidget* parent)
    : QDialog(parent), m_language(language), m_dialogs(dialogs), m_baseFolder(baseFolder), m_before(before)
{
    setObjectName(QStringLiteral("PictureDetails"));
    setWindowTitle(Text("PictureCaption"));
    setPalette(ControlsPalette());
    setModal(true);

    m_file = new QLineEdit;
    m_file->setObjectName(QStringLiteral("FileName"));
    auto* browse = new QPushButton(QStringLiteral("..."));
    browse->setFixedWidth(32);
    connect(browse, &QPushButton::clicked, this, &PictureDialog::Browse);
    auto* fileRow = new QHBoxLayout;
    fileRow->addWidget(m_file, 1);
    fileRow->addWidget(browse);

    m_time = new QSpinBox;
    m_time->setObjectName(QStringLiteral("Time"));
    m_time->setRange(0, kLongestSecond);
    m_time->setSuffix(QStringLiteral(" ") + Text("PictureSeconds"));

    auto* file = new QFormLayout;
    file->addRow(Text("PictureFilename"), fileRow);
    file->addRow(Text("PictureTime"), m_time);

    m_effect = new EffectPicker({Text("PictureClearEffect"), Text("PictureNoDetails"), Text("PictureTransition"),
                                 Text("PictureDetails"), Text("PictureSpeed")});
    auto* effectBox = new QGroupBox(Text("PictureEffect"));
    auto* effectColumn = new QVBoxLayout(effectBox);
    effectColumn->addWidget(m_effect);

    m_preview = new TransitionPreview;
    auto* previewButton = new QPushButton(Text("PictureBtnPreview"));
    previewButton->setObjectName(QStringLiteral("Preview"));
    connect(previewButton, &QPushButton::clicked, this, &PictureDialog::Preview);
    auto* previewBox = new QGroupBox(Text("PicturePreview"));
    auto* previewColumn = new QVBoxLayout(previewBox);
    previewColumn->addWidget(m_preview, 0, Qt::AlignHCenter);
    previewColumn->addWidget(previewButton, 0, Qt::AlignRight);

    auto* buttons = new QDialogButtonBox;
    QPushButton* ok = buttons->addButton(Text("ButtonOK"), QDialogButtonBox::AcceptRole);
    ok->setDefault(true);
    QPushButton* cancel = buttons->addButton(Text("ButtonCancel"), QDialogButtonBox::RejectRole);
    connect(ok, &QPushButton::clicked, this, &PictureDialog::Accept);
    connect(cancel, &QPushButton::clicked, this, &QDialog::reject);

    auto* body = new QWidget;
    auto* bodyLayout = new QVBoxLayout(body);
    bodyLayout->setContentsMargins(0, 0, 0, 0);
    bodyLayout->addLayout(file);
    bodyLayout->addWidget(effectBox);
    bodyLayout->addWidget(previewBox);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(ScrollingPage(body));
    layout->addWidget(buttons);

    // A new row starts from the settings' effect; speeds outside the slider's range come to it.
    const PictureItem start = row ? *row : PictureItem{QString(), 0, theme.ImageEffect, theme.EffectDetail, theme.EffectSpeed};
    m_file->setText(start.File);
    m_time->setValue(std::clamp(int(start.Time), 0, kLongestSecond));
    m_effect->SetChoice(start.Effect, start.Detail, start.Speed);
    m_preview->ShowPicture(m_before);
}

QString PictureDialog::Text(const char* key) const
{
    return DisplayText(m_language.GetText(QString::fromLatin1(key)));
}

PictureItem PictureDialog::Picture() const
{
    PictureItem picture;
    picture.File = m_file->text().trimmed();
    picture.Time = m_time->value();
    picture.Effect = m_effect->EffectName();
    if (!picture.Effect.isEmpty()) {
        picture.Detail = m_effect->Detail();
        picture.Speed = int16_t(m_effect->Speed());
    }
    return picture;
}

void PictureDialog::Accept()
{
    const QString path = ResolvePicturePath(m_baseFolder, Picture().File);
    if (Picture().File.isEmpty() || !QFileInfo(path).isFile()) {
        m_dialogs.Critical(kMissingFile);
        return;
    }
    if (QImageReader(path).read().isNull()) {
        m_dialogs.Critical(kNotAPicture);
        return;
    }
    accept();
}

void PictureDialog::Browse()
{
    const QString file = m_dialogs.OpenFileName(kTitlePrefix + Text("DialogOpenPicture"),
                                                DialogFilter(m_language.GetRawText(QStringLiteral("FilterPicture")),
                                                             kPicturePatterns));
    if (file.isEmpty())
        return;
    m_file->setText(file);
    Preview();
}

void PictureDialog::Preview()
{
    const PictureItem picture = Picture();
    const QImage after(ResolvePicturePath(m_baseFolder, picture.File));
    m_preview->Run(m_before, after, FindEffect(picture.Effect, picture.Detail), picture.Speed);
}
