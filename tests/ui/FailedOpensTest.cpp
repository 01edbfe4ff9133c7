// Songs that cannot play, opened one after another while the desktop's message boxes are up:
// a text file named as an MP3, an empty KAR file, a missing file, each asked for again from
// inside the box of the one before, with the ticks running. Nothing may fall over, and every box
// names its file.

#include "SessionWindows.h"
#include "playback/PlayerState.h"
#include "playback/PlayerTransport.h"
#include "support/PlayerSetup.h"
#include "ui/kit/DesktopDialogs.h"

#include <QApplication>
#include <QMessageBox>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <gtest/gtest.h>

namespace {

class FailedOpens : public testing::Test {
protected:
    FailedOpens()
    {
        LoadDefaults(state, windows.store);
        StartManualEngine(state);
        state.KaraokeOpen = true;
        WriteFileBytes(dir.filePath("words.mp3"), "These are the words, not the song.\n");
        WriteFileBytes(dir.filePath("empty.kar"), "");
        list.paths = {dir.filePath("words.mp3"), dir.filePath("empty.kar"), dir.filePath("gone.wav"),
                      WriteRampWav(dir.filePath("good.wav"), 48000)};
    }

    QTemporaryDir dir;
    PlayerState state;
    Journal journal;
    SessionWindows windows{state, journal};
    FakeSongList list{journal};
    DesktopDialogs dialogs;
    PlayerTransport transport{state, windows, list, &dialogs};
};

// Closes every message box as soon as it shows, after `inside` has run under the first one.
class BoxCloser {
public:
    explicit BoxCloser(std::function<void()> inside) : m_inside(std::move(inside))
    {
        QObject::connect(&m_timer, &QTimer::timeout, [this] { Step(); });
        m_timer.start(5);
    }
    QStringList texts;

private:
    void Step()
    {
        auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
        if (!box)
            return;
        if (m_inside) {
            // Another open from inside this box's own event loop; the box stays up meanwhile.
            QTimer::singleShot(0, std::exchange(m_inside, nullptr));
            return;
        }
        texts << box->text();
        box->done(QMessageBox::Ok);
    }

    std::function<void()> m_inside;
    QTimer m_timer;
};

} // namespace

TEST_F(FailedOpens, OneAfterAnotherWhileTheBoxesAreOpen)
{
    for (int round = 0; round < 20; ++round) {
        const int first = round % 3;
        BoxCloser closer([this, first] { transport.fnChangeSong((first + 1) % 3); });
        transport.fnChangeSong(first);
        QTest::qWait(20);
        ASSERT_FALSE(closer.texts.isEmpty()) << round;
        for (const QString& text : closer.texts)
            EXPECT_TRUE(text.contains(dir.path())) << text.toStdString();
        EXPECT_EQ(state.Session, nullptr);
    }
    transport.fnChangeSong(3);
    ASSERT_NE(state.Session, nullptr) << "a good song still plays after them";
    EXPECT_EQ(state.CurrentFile, dir.filePath("good.wav"));
}
