#include "ui/kit/AboutBoxes.h"

#include "audio/SoundDevices.h"
#include "core/Language.h"
#include "core/SiteAddresses.h"
#include "tags/TagBridge.h"
#include "ui/kit/Desktop.h"

#include <QCoreApplication>
#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QIcon>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace {

constexpr int kLogoSize = 72;

QLabel* Logo()
{
    auto* logo = new QLabel;
    logo->setPixmap(QIcon(QStringLiteral(":/skin/songweaver.svg")).pixmap(kLogoSize, kLogoSize));
    logo->setAlignment(Qt::AlignTop | Qt::AlignHCenter);
    logo->setFixedWidth(kLogoSize + 16);
    return logo;
}

QLabel* Heading(const QString& text)
{
    auto* label = new QLabel(text);
    QFont font = label->font();
    font.setPointSizeF(font.pointSizeF() * 1.6);
    font.setBold(true);
    label->setFont(font);
    return label;
}

QLabel* Paragraph(const QString& text)
{
    auto* label = new QLabel(text);
    label->setWordWrap(true);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    return label;
}

// A logo on the left and the texts on the right, buttons along the bottom.
QVBoxLayout* Frame(QDialog& box, QDialogButtonBox* buttons)
{
    auto* outer = new QVBoxLayout(&box);
    auto* row = new QHBoxLayout;
    row->setSpacing(16);
    row->addWidget(Logo());
    auto* texts = new QVBoxLayout;
    texts->setSpacing(8);
    row->addLayout(texts, 1);
    outer->addLayout(row);
    outer->addSpacing(8);
    outer->addWidget(buttons);
    QObject::connect(buttons, &QDialogButtonBox::rejected, &box, &QDialog::reject);
    QObject::connect(buttons, &QDialogButtonBox::accepted, &box, &QDialog::accept);
    return texts;
}

QPushButton* LinkButton(QDialogButtonBox* buttons, const QString& text, const char* name, const BrowseAddress& browse,
                        const QString& address)
{
    QPushButton* button = buttons->addButton(text, QDialogButtonBox::ActionRole);
    button->setObjectName(QLatin1String(name));
    button->setToolTip(address);
    QObject::connect(button, &QPushButton::clicked, button, [browse, address] { browse(address); });
    return button;
}

} // namespace

QStringList LibraryVersions()
{
    return QStringList{QStringLiteral("Qt ") + QString::fromLatin1(qVersion())} + AudioLibraryVersions()
           + QStringList{TagLibVersion()};
}

AboutBox::AboutBox(const LanguageTable& language, const SettingsStore& store, BrowseAddress browse, QWidget* parent)
    : QDialog(parent)
{
    setObjectName(QStringLiteral("About"));
    setWindowTitle(language.GetText(QStringLiteral("AboutWindowCaption")));
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close);
    LinkButton(buttons, language.GetText(QStringLiteral("Homepage")), "Homepage", browse, HomepageAddress(store));
    QVBoxLayout* texts = Frame(*this, buttons);

    texts->addWidget(Heading(QStringLiteral("Songweaver")));
    auto* version = Paragraph(QStringLiteral("%1 %2").arg(tr("Version"), QCoreApplication::applicationVersion()));
    version->setObjectName(QStringLiteral("Version"));
    texts->addWidget(version);
    texts->addWidget(Paragraph(tr("Karaoke player and lyrics editor.")));
    texts->addWidget(Paragraph(tr("Copyright © 2026 Tonehaven. All rights reserved.")));
    auto* libraries = Paragraph(tr("Built on %1. Each library is used under its own licence: Qt, FFmpeg, "
                                   "FluidSynth and TagLib under the GNU LGPL, PortAudio under the MIT licence.")
                                    .arg(LibraryVersions().join(QStringLiteral(", "))));
    libraries->setObjectName(QStringLiteral("Libraries"));
    texts->addWidget(libraries);
    texts->addStretch(1);
    setMinimumWidth(480);
}

FeedbackBox::FeedbackBox(const LanguageTable& language, const SettingsStore& store, BrowseAddress browse,
                         QWidget* parent)
    : QDialog(parent)
{
    setObjectName(QStringLiteral("Feedback"));
    setWindowTitle(language.GetText(QStringLiteral("FeedbackCaption")));
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close);
    LinkButton(buttons, language.GetText(QStringLiteral("VisitUs")), "VisitUs", browse, HomepageAddress(store))
        ->setDefault(true);
    LinkButton(buttons, language.GetText(QStringLiteral("EmailUs")), "EmailUs", browse, FeedbackAddress(store));
    QVBoxLayout* texts = Frame(*this, buttons);

    texts->addWidget(Heading(language.GetText(QStringLiteral("FeedbackCaption"))));
    texts->addWidget(Paragraph(DisplayText(language.GetText(QStringLiteral("FeedbackInfo1")))));
    texts->addWidget(Paragraph(DisplayText(language.GetText(QStringLiteral("FeedbackInfo2")))));
    texts->addStretch(1);
    setMinimumWidth(420);
}
