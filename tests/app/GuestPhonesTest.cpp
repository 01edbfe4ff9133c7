// Guests' phones at a host's evening: the page switched on in the preferences, a guest in a
// real browser finding a song and asking for it, the host's singers window showing the request,
// and "Next singer" playing it; songs waiting for the host's approval, and a guest blocked.

#include "library/KaraokeEvening.h"
#include "library/LibraryPaths.h"
#include "library/LibrarySongs.h"
#include "library/SingerQueue.h"
#include "remote/RemoteServer.h"
#include "support/PlayerSetup.h"
#include "support/ProgramWindows.h"
#include "ui/karaoke/LyricWindow.h"
#include "ui/library/SingersWindow.h"
#include "ui/player/PlayerWindow.h"
#include "ui/remote/RemoteWindow.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLabel>
#include <QListWidget>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QProcess>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>
#include <QTreeWidget>
#include <gtest/gtest.h>

namespace {

constexpr int kRate = 48000;

class GuestPhones : public testing::Test, protected ProgramWindows {
protected:
    GuestPhones()
    {
        LoadDefaults(state, store);
        StartManualEngine(state, kRate);
        windows.PlayerWidget().ApplySkin();
        windows.PlayerWidget().BuildMenus();
        QDir().mkpath(dir.filePath("music"));
        state.Library = std::make_unique<LibraryDatabase>(dir.filePath("data/library.db"));
        EXPECT_TRUE(state.Library->Open().Usable());
        song = Store("Wonderwall", "Oasis");
        Store("Dancing Queen", "ABBA");
        state.Theme->RemoteOn = true;
        state.Theme->RemotePort = 0;
        state.Theme->RemotePin = "5150";
    }

    QString Store(const QString& title, const QString& artist)
    {
        const QString path = WriteRampWav(dir.filePath("music/" + title + ".wav"), kRate * 2, kRate);
        LibrarySong stored;
        stored.path = RawPath(path);
        stored.kind = SongKinds::Audio;
        stored.title = title;
        stored.artist = artist;
        stored.length = 2;
        EXPECT_TRUE(state.Library->Write([&] { return StoreSong(state.Library->Db(), stored); }));
        return path;
    }

    // Where the page listened, kept for after it is switched off.
    QString Address()
    {
        if (windows.Remote())
            address = QStringLiteral("http://127.0.0.1:%1/").arg(windows.Remote()->Listening().port);
        return address;
    }

    // The request's answer as JSON, waiting for it with the interface thread's events running.
    QJsonObject Call(QNetworkAccessManager& phone, const QByteArray& method, const QString& path, const QByteArray& body = {})
    {
        QNetworkRequest request(QUrl(Address() + path));
        request.setHeader(QNetworkRequest::ContentTypeHeader, "application/json");
        QNetworkReply* reply = phone.sendCustomRequest(request, method, body);
        EXPECT_TRUE(QTest::qWaitFor([reply] { return reply->isFinished(); }, 10000));
        reply->deleteLater();
        return QJsonDocument::fromJson(reply->readAll()).object();
    }

    QString SongRow(SingersWindow& singers, const QString& title)
    {
        for (QTreeWidgetItemIterator it(&singers.Tree()); *it; ++it) {
            if ((*it)->text(0).contains(title))
                return (*it)->text(0);
        }
        return {};
    }

    QTemporaryDir dir;
    QString song;
    QString address;
};

} // namespace

TEST_F(GuestPhones, AGuestsBrowserAsksForASongTheHostSeesItAndItPlaysInTurn)
{
    windows.StartLibrary();
    ASSERT_NE(windows.Remote(), nullptr) << "switched on in the preferences, the page listens";
    windows.ShowSingers();
    SingersWindow& singers = *windows.SingersWidget();

    QProcess phone;
    phone.setProcessChannelMode(QProcess::MergedChannels);
    phone.start(QStringLiteral("/usr/bin/python3"),
                {SourcePath("tests/browser/guest_phone.py"), Address(), "5150", "Zoë <b>", "wonder", "Wonderwall"});
    ASSERT_TRUE(phone.waitForStarted(10000));
    // The interface thread keeps running while the browser works: the server needs none of it.
    ASSERT_TRUE(QTest::qWaitFor([&] { return phone.state() == QProcess::NotRunning; }, 120000));
    const QString seen = QString::fromUtf8(phone.readAll());
    if (phone.exitCode() == 77)
        GTEST_SKIP() << seen.toStdString();
    ASSERT_EQ(phone.exitCode(), 0) << seen.toStdString();
    EXPECT_TRUE(seen.contains("hello: Hello, Zoë <b>!")) << seen.toStdString();
    EXPECT_TRUE(seen.contains("found: Wonderwall - Oasis")) << seen.toStdString();
    EXPECT_TRUE(seen.contains("place: Your song is number 1 in the queue.")) << seen.toStdString();
    EXPECT_TRUE(seen.contains("markup elements in the queue: 0")) << "a name's markup stays text";

    ASSERT_TRUE(QTest::qWaitFor([&] { return !SongRow(singers, "Wonderwall").isEmpty(); }, 5000));
    EXPECT_EQ(SongRow(singers, "Wonderwall"), "Oasis - Wonderwall (from the phone of Zoë <b>)");
    EXPECT_EQ(singers.NextLabel().text(), "Next: Zoë <b> - Oasis - Wonderwall");
    EXPECT_EQ(singers.NextLabel().textFormat(), Qt::PlainText);

    windows.LoadLyric();
    LyricWindow& karaoke = *windows.LyricWidget();
    ASSERT_TRUE(QTest::qWaitFor([&] { return !karaoke.Invitation().isNull(); }, 3000))
        << "between songs the karaoke window shows the page's QR code";
    EXPECT_TRUE(karaoke.InvitationCaption().endsWith("PIN 5150")) << karaoke.InvitationCaption().toStdString();
    ASSERT_TRUE(windows.Evening()->PlayNext());
    EXPECT_EQ(state.CurrentFile, song);
    EXPECT_TRUE(QTest::qWaitFor([&] { return karaoke.Invitation().isNull(); }, 3000)) << "and not over a song";
}

TEST_F(GuestPhones, SongsWaitForApprovalAndABlockedGuestIsTurnedAway)
{
    state.Theme->RemoteApprove = true;
    windows.StartLibrary();
    ASSERT_NE(windows.Remote(), nullptr);
    windows.ShowSingers();
    SingersWindow& singers = *windows.SingersWidget();

    QNetworkAccessManager eve;
    ASSERT_EQ(Call(eve, "POST", "api/join", R"({"name":"Eve","pin":"5150"})")["name"].toString(), "Eve");
    const QJsonObject hits = Call(eve, "GET", "api/search?q=dancing");
    const qint64 id = hits["songs"].toArray().at(0).toObject()["id"].toInteger();
    const QJsonObject asked = Call(eve, "POST", "api/requests", QStringLiteral(R"({"song":%1})").arg(id).toUtf8());
    EXPECT_TRUE(asked["pending"].toBool());

    ASSERT_TRUE(QTest::qWaitFor([&] { return !SongRow(singers, "Dancing Queen").isEmpty(); }, 5000));
    EXPECT_EQ(SongRow(singers, "Dancing Queen"), "ABBA - Dancing Queen (waiting for approval)");
    EXPECT_EQ(singers.NextLabel().text(), "Nobody waits with a song. Queue songs from the song library.") << "a waiting song is no turn yet";

    for (QTreeWidgetItemIterator it(&singers.Tree()); *it; ++it) {
        if ((*it)->text(0).contains("Dancing Queen"))
            singers.Tree().setCurrentItem(*it);
    }
    ASSERT_TRUE(singers.ApproveButton().isEnabled());
    singers.ApproveButton().click();
    EXPECT_EQ(singers.NextLabel().text(), "Next: Eve - ABBA - Dancing Queen");

    windows.ShowRemote();
    RemoteWindow& remote = *windows.RemoteWidget();
    EXPECT_TRUE(remote.Status().text().contains("PIN 5150")) << remote.Status().text().toStdString();
    EXPECT_FALSE(remote.Code().pixmap().isNull()) << "a QR code of the address";
    ASSERT_EQ(remote.Guests().count(), 1);
    EXPECT_TRUE(remote.Guests().item(0)->text().startsWith("Eve ("));

    for (QTreeWidgetItemIterator it(&singers.Tree()); *it; ++it) {
        if ((*it)->text(0).contains("Dancing Queen"))
            singers.Tree().setCurrentItem(*it);
    }
    ASSERT_TRUE(singers.BlockButton().isEnabled());
    singers.BlockButton().click();
    EXPECT_TRUE(SongRow(singers, "Dancing Queen").isEmpty()) << "a blocked guest's songs leave the queue";
    EXPECT_EQ(Call(eve, "GET", "api/queue")["error"].toString(), "WebBlocked");

    state.Theme->RemoteOn = false;
    windows.ApplyRemote();
    EXPECT_EQ(windows.Remote(), nullptr);
    EXPECT_TRUE(Call(eve, "GET", "api/queue").isEmpty()) << "switched off, nothing answers";
}
