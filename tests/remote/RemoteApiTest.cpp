// The guests' API as calls and answers: the PIN and its block, sessions, search, asking for a
// song and withdrawing it, the queue as a guest sees it, the limits, and hostile requests.

#include "RemoteApiFixture.h"

#include <QJsonArray>

TEST_F(RemoteApiTest, AGuestJoinsWithTheRightPinAndGetsAnHttpOnlyStrictSessionCookie)
{
    const RemoteReply reply = api.Handle(Post("/api/join", R"({"name":" Anna  Maria ","pin":"4321"})"));
    ASSERT_EQ(reply.status, 200);
    EXPECT_EQ(Json(reply)["name"].toString(), "Anna Maria");
    ASSERT_EQ(reply.headers.size(), 1u);
    const QByteArray cookie = reply.headers.front().second;
    EXPECT_TRUE(cookie.contains("HttpOnly"));
    EXPECT_TRUE(cookie.contains("SameSite=Strict"));
    const QByteArray token = CookieValue(cookie.split(';').first(), RemoteApi::kCookie);
    EXPECT_GE(token.size() * 4, 128) << "at least 128 bits of hex";
    EXPECT_EQ(api.Handle(Get("/api/me", "songweaver_guest=" + token)).status, 200);
    const QByteArray altered = token.left(63) + (token.endsWith('0') ? "1" : "0");
    EXPECT_EQ(api.Handle(Get("/api/me", "songweaver_guest=" + altered)).status, 401);
    EXPECT_EQ(api.Handle(Get("/api/me")).status, 401);
}

TEST_F(RemoteApiTest, WrongPinsAreAnsweredSlowlyAndFiveBlockTheAddressForAMinute)
{
    for (int i = 0; i < 4; ++i) {
        const RemoteReply wrong = api.Handle(Post("/api/join", R"({"name":"Eve","pin":"0000"})"));
        EXPECT_EQ(wrong.status, 403);
        EXPECT_GE(wrong.delayMs, 1000);
        EXPECT_EQ(Json(wrong)["error"].toString(), "WebWrongPin");
    }
    const RemoteReply fifth = api.Handle(Post("/api/join", R"({"name":"Eve","pin":"0000"})"));
    EXPECT_EQ(fifth.status, 429);
    EXPECT_EQ(Json(Post("/api/join", R"({"name":"Eve","pin":"4321"})"), api)["error"].toString(), "WebWaitPin")
        << "even the right PIN waits out the block";
    EXPECT_EQ(api.Handle(Post("/api/join", R"({"name":"Bob","pin":"4321"})", "", "10.0.0.8")).status, 200)
        << "another address is not blocked";
    now += GuestBook::kBlockMs;
    EXPECT_EQ(api.Handle(Post("/api/join", R"({"name":"Eve","pin":"4321"})")).status, 200);
}

TEST_F(RemoteApiTest, NamesAreCheckedAndMarkupStaysText)
{
    EXPECT_EQ(api.Handle(Post("/api/join", R"({"name":"   ","pin":"4321"})")).status, 400);
    EXPECT_EQ(api.Handle(Post("/api/join", QByteArray(R"({"name":")") + QByteArray(41, 'x') + R"(","pin":"4321"})")).status, 400);
    EXPECT_EQ(api.Handle(Post("/api/join", R"({"name":"a\u0007b","pin":"4321"})")).status, 400);
    EXPECT_EQ(api.Handle(Post("/api/join", R"({"name":"Bob","pin":4321})")).status, 400) << "the PIN is a text";
    const QByteArray cookie = JoinAs("<img src=x onerror=alert(1)>");
    Ask(cookie, songs[0]);
    const QJsonObject queue = Json(api.Handle(Get("/api/queue", cookie)));
    EXPECT_EQ(queue["turns"].toArray()[0].toObject()["singer"].toString(), "<img src=x onerror=alert(1)>");
    EXPECT_EQ(this->queue.Singers().front().name, "<img src=x onerror=alert(1)>");
}

TEST_F(RemoteApiTest, SearchFindsSongsByIdNeverByPath)
{
    const QByteArray cookie = JoinAs("Ann");
    const QJsonArray hits = Json(api.Handle(Get("/api/search?q=rain", cookie)))["songs"].toArray();
    ASSERT_EQ(hits.size(), 1);
    EXPECT_EQ(hits[0].toObject()["title"].toString(), "Purple Rain");
    EXPECT_EQ(hits[0].toObject()["id"].toInteger(), songs[1]);
    EXPECT_FALSE(hits[0].toObject().contains("path"));
    EXPECT_FALSE(api.Handle(Get("/api/search?q=", cookie)).body.contains("/music/")) << "no path in any answer";
    EXPECT_EQ(Json(api.Handle(Get("/api/search?q=", cookie)))["songs"].toArray().size(), 3);
    EXPECT_EQ(api.Handle(Get("/api/search?q=rain")).status, 401);
}

TEST_F(RemoteApiTest, AGuestAsksForSongsSeesTheirPlaceAndWithdrawsOnlyTheirOwn)
{
    const QByteArray ann = JoinAs("Ann");
    const QByteArray bob = JoinAs("Bob", "10.0.0.9");
    const qint64 annSong = Ask(ann, songs[0]);
    const RemoteReply keyed = api.Handle(Post("/api/requests", QStringLiteral(R"({"song":%1,"key":-2})").arg(songs[1]).toUtf8(), bob));
    ASSERT_EQ(keyed.status, 201);
    EXPECT_EQ(queue.Upcoming().at(1).song.semitones, -2);
    EXPECT_EQ(queue.Upcoming().at(1).song.guest.isEmpty(), false);

    const QJsonArray turns = Json(api.Handle(Get("/api/queue", bob)))["turns"].toArray();
    ASSERT_EQ(turns.size(), 2);
    EXPECT_FALSE(turns[0].toObject().contains("id")) << "Ann's request is not Bob's to see by id";
    EXPECT_EQ(turns[1].toObject()["id"].toInteger(), Json(keyed)["id"].toInteger());

    EXPECT_EQ(api.Handle(Delete(QStringLiteral("/api/requests/%1").arg(annSong), bob)).status, 404);
    EXPECT_EQ(queue.Upcoming().size(), 2u);
    EXPECT_EQ(api.Handle(Delete(QStringLiteral("/api/requests/%1").arg(annSong), ann)).status, 200);
    EXPECT_EQ(queue.Upcoming().size(), 1u);
    EXPECT_EQ(api.Handle(Post("/api/requests", R"({"song":999999})", ann)).status, 404);
    EXPECT_EQ(api.Handle(Post("/api/requests", R"({"song":1,"key":7})", ann)).status, 400);
    EXPECT_EQ(api.Handle(Post("/api/requests", R"({"song":1,"key":1.5})", ann)).status, 400);
    EXPECT_EQ(api.Handle(Post("/api/requests", R"({"song":"1"})", ann)).status, 400);
}

TEST_F(RemoteApiTest, NowPlayingIsInTheGuestsQueue)
{
    const QByteArray ann = JoinAs("Ann");
    EXPECT_TRUE(Json(api.Handle(Get("/api/queue", ann)))["now"].isNull());
    shared.SetNowPlaying({"Purple Rain", "Prince", "Bob"});
    const QJsonObject now = Json(api.Handle(Get("/api/queue", ann)))["now"].toObject();
    EXPECT_EQ(now["title"].toString(), "Purple Rain");
    EXPECT_EQ(now["singer"].toString(), "Bob");
}

TEST_F(RemoteApiTest, SongsWaitForTheHostWhenEachIsApproved)
{
    RemoteSettings settings = shared.Settings();
    settings.approveEach = true;
    shared.SetSettings(settings);
    const QByteArray ann = JoinAs("Ann");
    const qint64 asked = Ask(ann, songs[2]);
    EXPECT_TRUE(queue.Upcoming().empty()) << "not in the rotation before approval";
    const QJsonObject seen = Json(api.Handle(Get("/api/queue", ann)));
    ASSERT_EQ(seen["waiting"].toArray().size(), 1);
    EXPECT_EQ(seen["waiting"].toArray()[0].toObject()["id"].toInteger(), asked);
    ASSERT_TRUE(queue.Approve(asked));
    EXPECT_EQ(queue.Upcoming().size(), 1u);
    EXPECT_TRUE(Json(api.Handle(Get("/api/queue", ann)))["waiting"].toArray().isEmpty());
}

TEST_F(RemoteApiTest, LimitsAnswerWithTheirStatusAndTheirMessage)
{
    const QByteArray ann = JoinAs("Ann");
    for (int i = 0; i < 3; ++i)
        Ask(ann, songs[i]);
    const RemoteReply fourth = api.Handle(Post("/api/requests", QStringLiteral(R"({"song":%1})").arg(songs[0]).toUtf8(), ann));
    EXPECT_EQ(fourth.status, 409);
    EXPECT_EQ(Json(fourth)["error"].toString(), "WebTooManySongs");

    // Asking and withdrawing again and again is held at the songs a minute.
    const QByteArray bob = JoinAs("Bob", "10.0.0.9");
    int refused = 0;
    for (int i = 0; i < 12; ++i) {
        const RemoteReply reply = api.Handle(Post("/api/requests", QStringLiteral(R"({"song":%1})").arg(songs[0]).toUtf8(), bob));
        if (reply.status == 201)
            api.Handle(Delete("/api/requests/" + QString::number(Json(reply)["id"].toInteger()), bob));
        else if (reply.status == 429)
            ++refused;
        now += 100;
    }
    EXPECT_EQ(refused, 2);
    now += 60'000;
    EXPECT_EQ(api.Handle(Post("/api/requests", QStringLiteral(R"({"song":%1})").arg(songs[0]).toUtf8(), bob)).status, 201);

    int slowed = 0;
    for (int i = 0; i < 100; ++i)
        slowed += api.Handle(Get("/api/queue", bob)).status == 429;
    EXPECT_GT(slowed, 50) << "a flood of calls at one moment is held back";
}

TEST_F(RemoteApiTest, AHundredGuestsAtOnceAndNoMore)
{
    for (int i = 0; i < 100; ++i)
        ASSERT_EQ(api.Handle(Post("/api/join", QStringLiteral(R"({"name":"Guest %1","pin":"4321"})").arg(i).toUtf8())).status, 200);
    const RemoteReply full = api.Handle(Post("/api/join", R"({"name":"One too many","pin":"4321"})"));
    EXPECT_EQ(full.status, 503);
    EXPECT_EQ(shared.Guests().size(), 100u);
}

TEST_F(RemoteApiTest, ABlockedGuestIsTurnedAwayAndCannotJoinAgainFromTheirAddress)
{
    const QByteArray eve = JoinAs("Eve", "10.0.0.66");
    Ask(eve, songs[0]);
    ASSERT_EQ(shared.Guests().size(), 1u);
    shared.Block(shared.Guests().front().id);
    EXPECT_EQ(api.Handle(Get("/api/queue", eve)).status, 403);
    EXPECT_EQ(api.Handle(Post("/api/join", R"({"name":"Eve2","pin":"4321"})", "", "10.0.0.66")).status, 403);
    EXPECT_EQ(api.Handle(Post("/api/join", R"({"name":"Ann","pin":"4321"})", "", "10.0.0.67")).status, 200);
}

TEST_F(RemoteApiTest, MalformedAndHostileRequestsGetTheirStatus)
{
    const QByteArray ann = JoinAs("Ann");
    EXPECT_EQ(api.Handle(Post("/api/requests", "{not json", ann)).status, 400);
    EXPECT_EQ(api.Handle(Post("/api/requests", "[1,2]", ann)).status, 400);
    EXPECT_EQ(api.Handle(Post("/api/join", QByteArray(5000, ' '))).status, 413);
    RemoteCall form = Post("/api/join", "name=a&pin=4321");
    form.headers["content-type"] = "application/x-www-form-urlencoded";
    EXPECT_EQ(api.Handle(form).status, 415) << "a form of another site cannot post";
    RemoteCall foreign = Post("/api/requests", R"({"song":1})", ann);
    foreign.headers["origin"] = "http://evil.example";
    EXPECT_EQ(api.Handle(foreign).status, 403);
    RemoteCall rebound = Get("/api/queue", ann);
    rebound.headers["host"] = "attacker.example:8777";
    EXPECT_EQ(api.Handle(rebound).status, 403);
    EXPECT_EQ(api.Handle(Get("/api/queue/extra", ann)).status, 404);
    EXPECT_EQ(api.Handle(Delete("/api/queue", ann)).status, 405);
    EXPECT_EQ(api.Handle(Get("/api/requests/1", ann)).status, 405);
}

TEST_F(RemoteApiTest, OnlyThePagesOwnFilesAreServed)
{
    const RemoteReply page = api.Handle(Get("/"));
    ASSERT_EQ(page.status, 200);
    EXPECT_TRUE(page.body.contains("remote.js"));
    EXPECT_TRUE(page.contentType.startsWith("text/html"));
    EXPECT_EQ(api.Handle(Get("/remote.js")).status, 200);
    for (const char* path : {"/../../etc/passwd", "/remote.js/../../../etc/passwd", "/%2e%2e/%2e%2e/etc/passwd",
                             "/lang/english.lng", "/:/lang/english.lng", "//etc/passwd", "/index.html%00.js",
                             "/etc/passwd", "/C:/Windows/win.ini"})
        EXPECT_EQ(api.Handle(Get(path)).status, 404) << path;
}

TEST_F(RemoteApiTest, ThePagesTextsComeInTheBrowsersLanguage)
{
    const QJsonObject polish = Json(api.Handle(Get("/texts.json?lang=pl-PL")));
    EXPECT_EQ(polish["language"].toString(), "pl");
    EXPECT_EQ(polish["texts"].toObject()["WebJoin"].toString(), QString::fromUtf8("Dołącz"));
    const QJsonObject english = Json(api.Handle(Get("/texts.json?lang=de")));
    EXPECT_EQ(english["texts"].toObject()["WebJoin"].toString(), "Join");
    EXPECT_FALSE(english["texts"].toObject().contains("LibraryClosed")) << "only the page's own texts";
}
