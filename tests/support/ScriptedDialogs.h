#pragma once
// The desktop's dialogs answered as a user would, from answers a test sets beforehand; every
// message and question is kept for the test to read.

#include "core/Dialogs.h"

#include <QColor>
#include <QStringList>
#include <deque>
#include <functional>
#include <optional>
#include <vector>

class ScriptedDialogs final : public Dialogs {
public:
    void Critical(const QString& text) override { Tell(QStringLiteral("critical: "), text); }
    void Inform(const QString& text) override { Tell(QStringLiteral("info: "), text); }
    bool AskYesNo(const QString& text) override
    {
        questions << text;
        return yes;
    }
    SaveChoice AskSaveChanges(const SaveQuestion& question) override
    {
        questions << question.text;
        return saveChoice;
    }
    QString OpenFileName(const QString& title, const QString& filter) override
    {
        titles << title;
        filters << filter;
        return Next();
    }
    QStringList OpenFileNames(const QString& title, const QString&, const QString& filter) override
    {
        titles << title;
        filters << filter;
        ++asked;
        return chosen;
    }
    QString SaveFileName(const QString& title, const QString& suggested, const QString& filter) override
    {
        titles << title;
        filters << filter;
        suggestions << suggested;
        return Next();
    }
    QString ChooseFolder(const QString& title, const QString&) override
    {
        titles << title;
        return Next();
    }
    std::optional<QColor> ChooseColor(const QColor& initial) override
    {
        offered.push_back(initial);
        return Take(colors);
    }
    std::optional<QFont> ChooseFont(const QFont& initial) override
    {
        offeredFonts.push_back(initial);
        return Take(fonts);
    }
    void Browse(const QString& address) override { browsed << address; }

    // The texts of the message boxes, without their kinds.
    QStringList Shown() const
    {
        QStringList texts;
        for (const QString& message : messages)
            texts << message.section(QStringLiteral(": "), 1);
        return texts;
    }

    std::deque<QString> files;  // the answers of the single file and folder dialogs
    QStringList chosen;         // the answer of the dialog that opens several files
    SaveChoice saveChoice = SaveChoice::Cancel;
    int asked = 0;              // how often that dialog was shown
    std::deque<QFont> fonts;
    std::vector<QFont> offeredFonts;
    std::deque<QColor> colors;
    std::vector<QColor> offered;
    bool yes = true;
    QStringList titles, filters, suggestions, questions, messages, browsed;
    // Called with each message as it is shown, as a user would see it pop up mid-command.
    std::function<void(const QString&)> shown;

private:
    void Tell(const QString& kind, const QString& text)
    {
        messages << kind + text;
        if (shown)
            shown(kind + text);
    }
    QString Next()
    {
        if (files.empty())
            return {};
        QString file = files.front();
        files.pop_front();
        return file;
    }
    template <typename T>
    static std::optional<T> Take(std::deque<T>& answers)
    {
        if (answers.empty())
            return std::nullopt;
        T answer = answers.front();
        answers.pop_front();
        return answer;
    }
};
