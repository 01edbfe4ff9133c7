#include "ui/kit/VerseMenu.h"

#include "core/Language.h"
#include "midi/MidiBytes.h"
#include "ui/kit/KeyedMenu.h"

#include <QActionGroup>
#include <QMenu>

namespace {

QString VerseName(const MidiFigures& midi, size_t index, const LanguageTable& language)
{
    const QString& name = midi.Verses[index].Name;
    return name.isEmpty() ? language.GetText(QStringLiteral("Verse")) + u' ' + QString::number(index + 1) : name;
}

} // namespace

QString ShownVerseName(const MidiFigures& midi, const LanguageTable& language)
{
    for (size_t i = 0; i < midi.Verses.size(); ++i)
        if (midi.Verses[i].Track == midi.Verse)
            return VerseName(midi, i, language);
    return midi.Verses.empty() ? QString() : language.GetText(QStringLiteral("Verse"));
}

void FillVerseMenu(QMenu& menu, const MidiFigures& midi, const LanguageTable& language,
                   const std::function<void(const QString& key)>& run)
{
    menu.clear();
    auto* group = new QActionGroup(&menu);
    for (size_t i = 0; i < midi.Verses.size(); ++i) {
        QAction* action = menu.addAction(NumberedMenuText(int(i), VerseName(midi, i, language)));
        action->setCheckable(true);
        action->setChecked(midi.Verses[i].Track == midi.Verse);
        group->addAction(action);
        const QString key = QStringLiteral("Verse%1").arg(midi.Verses[i].Track);
        QObject::connect(action, &QAction::triggered, &menu, [run, key] { run(key); });
    }
}
