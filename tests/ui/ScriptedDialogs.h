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

    std::deque<QString> files;
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

