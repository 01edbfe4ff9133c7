#pragma once
// The editor's dialogs answered as a user would, from queues a test fills.

#include "ui/editor/EditorDialogs.h"

#include <QColor>
#include <QStringList>
#include <deque>
#include <optional>
#include <vector>

class ScriptedDialogs final : public EditorDialogs {
public:
    QString OpenFileName(const QString& title, const QString& filter) override
    {
        titles << title;
        filters << filter;
        return Next();
    }
    QString SaveFileName(const QString& title, const QString& suggested, const QString& filter) override
    {
        titles << title;
        filters << filter;
        suggestions << suggested;
        return Next();
    }
    bool AskYesNo(const QString& text) override
    {
        questions << text;
        return yes;
    }
    void Information(const QString& text) override { messages << QStringLiteral("info: ") + text; }
    void Critical(const QString& text) override { messages << QStringLiteral("critical: ") + text; }
    void Browse(const QString& address) override { browsed << address; }
    std::optional<QColor> ChooseColor(const QColor& initial) override
    {
        offered.push_back(initial);
        if (colors.empty())
            return std::nullopt;
        const QColor colour = colors.front();
        colors.pop_front();
        return colour;
    }

    std::optional<QFont> ChooseFont(const QFont& initial) override
    {
        offeredFonts.push_back(initial);
        if (fonts.empty())
            return std::nullopt;
        const QFont font = fonts.front();
        fonts.pop_front();
        return font;
    }
    QString ChooseFolder(const QString& title, const QString&) override
    {
        titles << title;
        return Next();
    }

    std::deque<QString> files;  // the answers of the file and folder dialogs
    std::deque<QFont> fonts;
    std::vector<QFont> offeredFonts;
    std::deque<QColor> colors;
    std::vector<QColor> offered;
    bool yes = true;
    QStringList titles, filters, suggestions, questions, messages, browsed;

private:
    QString Next()
    {
        if (files.empty())
            return {};
        QString file = files.front();
        files.pop_front();
        return file;
    }
};

