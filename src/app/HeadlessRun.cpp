#include "app/HeadlessRun.h"

#include "ui/karaoke/LyricWindow.h"

#include <QApplication>
#include <QDir>
#include <QGuiApplication>
#include <QScreen>
#include <QTextStream>
#include <QTimer>
#include <QWidget>

#include <memory>

namespace {

void SaveWindows(const QString& folder)
{
    QDir().mkpath(folder);
    QTextStream out(stdout);
    for (QWidget* window : QApplication::topLevelWidgets()) {
        if (!window->isVisible() || window->objectName().isEmpty())
            continue;
        const QString path = QDir(folder).filePath(window->objectName() + QStringLiteral(".png"));
        if (window->grab().save(path))
            out << "saved " << path << Qt::endl;
    }
    if (QScreen* screen = QGuiApplication::primaryScreen()) {
        const QString path = QDir(folder).filePath(QStringLiteral("screen.png"));
        if (screen->grabWindow(0).save(path))
            out << "saved " << path << Qt::endl;
    }
}

} // namespace

void ArmHeadlessRun(std::function<void()> close)
{
    const QString folder = qEnvironmentVariable("SONGWEAVER_CAPTURE_DIR");
    if (folder.isEmpty())
        return;
    bool ok = false;
    double seconds = qEnvironmentVariable("SONGWEAVER_RUN_SECONDS").toDouble(&ok);
    if (!ok || seconds <= 0)
        seconds = 5;
    const int runMs = static_cast<int>(seconds * 1000);
    QTimer::singleShot(runMs / 2, qApp, [folder] { SaveWindows(folder); });
    QTimer::singleShot(runMs, qApp, [close = std::move(close)] {
        // A dialog nobody can answer is dismissed first, as a person would.
        if (QWidget* dialog = QApplication::activeModalWidget())
            dialog->close();
        close();
    });
}

void ArmScriptedKeys(std::function<void(int, Qt::KeyboardModifiers)> key, std::function<void(int)> button)
{
    if (qEnvironmentVariableIsEmpty("SONGWEAVER_CAPTURE_DIR"))
        return;
    const QStringList presses = qEnvironmentVariable("SONGWEAVER_KEYS").split(u' ', Qt::SkipEmptyParts);
    for (const QString& press : presses) {
        const QString second = press.section(u':', 0, 0);
        const QString what = press.section(u':', 1);
        bool ok = false;
        const int ms = int(second.toDouble(&ok) * 1000);
        if (!ok || what.isEmpty())
            continue;
        QTimer::singleShot(ms, qApp, [key, button, what, second] {
            QTextStream(stdout) << "press " << what << " at " << second << " s" << Qt::endl;
            if (what.startsWith(u'#'))
                button(what.mid(1).toInt());
            else if (what.startsWith(u'^') && what.size() > 1)
                key(Qt::Key_A + (what.at(1).toUpper().unicode() - u'A'), Qt::ControlModifier);
            else
                key(Qt::Key_A + (what.at(0).toUpper().unicode() - u'A'), Qt::NoModifier);
        });
    }
}

void LogLitSyllables(LyricWindow& window, const LyricsState& lyrics)
{
    if (qEnvironmentVariableIsEmpty("SONGWEAVER_CAPTURE_DIR"))
        return;
    auto shownTitle = std::make_shared<QString>();
    QObject::connect(&window, &LyricWindow::syllableLit, &window, [&lyrics, shownTitle](int index, double position) {
        QTextStream out(stdout);
        if (lyrics.LyricsTitleText != *shownTitle) {
            *shownTitle = lyrics.LyricsTitleText;
            out << "song: " << QString(*shownTitle).replace(u'|', QStringLiteral(" - ")) << Qt::endl;
        }
        out << QString::number(position, 'f', 2).rightJustified(7) << " s  syllable "
            << QString::number(index).rightJustified(3) << "  " << lyrics.PlayLyrics[size_t(index)].Text << Qt::endl;
    });
}
