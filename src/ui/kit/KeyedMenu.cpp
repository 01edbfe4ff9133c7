#include "ui/kit/KeyedMenu.h"

#include <QAction>
#include <QMenu>

QString NumberedMenuText(int index, const QString& text)
{
    const QString number = index < 9    ? QStringLiteral("&%1").arg(index + 1)
                           : index == 9 ? QStringLiteral("1&0")
                                        : QString::number(index + 1);
    return number + u' ' + QString(text).replace(u'&', QStringLiteral("&&"));
}

QMenu* BuildKeyedMenu(QWidget* parent, const QString& name, const std::vector<MenuItem>& items, const MenuTexts& texts)
{
    auto* menu = new QMenu(parent);
    menu->setObjectName(name);
    for (const MenuItem& item : items) {
        if (!item.key) {
            menu->addSeparator();
            continue;
        }
        const QString key = QString::fromLatin1(item.key);
        if (QMenu* sub = texts.submenu ? texts.submenu(key) : nullptr) {
            sub->setTitle(texts.caption(item.caption));
            menu->addMenu(sub);
            continue;
        }
        QAction* action = menu->addAction(texts.caption(item.caption));
        action->setData(key);
        QObject::connect(action, &QAction::triggered, menu, [run = texts.run, key] { run(key); });
    }
    return menu;
}

const std::vector<MenuItem>& SoundMenuItems()
{
    static const std::vector<MenuItem> items = {
        {"KeyUp", "ShortKeyUp"},       {"KeyDown", "ShortKeyDown"},   {nullptr, nullptr},
        {"TempoUp", "ShortTempoUp"},   {"TempoDown", "ShortTempoDown"}, {nullptr, nullptr},
        {"OwnSound", "ShortOwnSound"}, {nullptr, nullptr},            {"VocalsOff", "ShortVocalsOff"}};
    return items;
}

void CheckVocalsItem(QMenu& menu, bool vocalsOff)
{
    for (QAction* action : menu.actions()) {
        if (action->data().toString() != u"VocalsOff")
            continue;
        action->setCheckable(true);
        action->setChecked(vocalsOff);
    }
}
