// swtool as a user runs it: its printed text is part of what it promises.

#include "support/TestSupport.h"

#include <QProcess>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace {

struct ToolRun {
    int exitCode = -1;
    QString out;
    QString err;
};

ToolRun Swtool(const QStringList& args, const QString& configHome)
{
    QProcess process;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert(QStringLiteral("XDG_CONFIG_HOME"), configHome);
    env.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
    process.setProcessEnvironment(env);
    process.start(QStringLiteral(SWTOOL_PATH), args);
    process.waitForFinished(30000);
    return {process.exitCode(), QString::fromUtf8(process.readAllStandardOutput()),
            QString::fromUtf8(process.readAllStandardError())};
}

} // namespace

TEST(Swtool, TextPrintsTheDisplayTextOfAKey)
{
    QTemporaryDir home;
    EXPECT_EQ(Swtool({"text", "Play"}, home.path()).out, "Play\n");
    EXPECT_EQ(Swtool({"text", "Play", "--polish"}, home.path()).out, "Odtwarzaj\n");
    EXPECT_EQ(Swtool({"text", "MsgNew"}, home.path()).out, "All data inside editor will be lost.\r\nContinue anyway?\n");
    EXPECT_EQ(Swtool({"text", "NoSuchKey"}, home.path()).out, "\n");
    const ToolRun bad = Swtool({"text"}, home.path());
    EXPECT_EQ(bad.exitCode, 2);
    EXPECT_TRUE(bad.err.contains(QStringLiteral("usage: swtool")));
    EXPECT_EQ(Swtool({"frobnicate"}, home.path()).exitCode, 2);
}

TEST(Swtool, SettingsPrintsEveryKeyInLoadOrderAsStored)
{
    QTemporaryDir home;
    WriteFileBytes(home.filePath(QStringLiteral("Tonehaven/Songweaver.conf")),
                   "[General]\nkaraoke%20offset=\"0,5\"\nkaraoke%20ball=-1\nfullscreen%20monitor=Monitor 9\n");
    const ToolRun run = Swtool({"settings"}, home.path());
    ASSERT_EQ(run.exitCode, 0) << run.err.toStdString();
    const QStringList lines = run.out.split(u'\n', Qt::SkipEmptyParts);
    ASSERT_EQ(lines.size(), 42);
    EXPECT_EQ(lines[0], "karaoke window\t1");
    EXPECT_EQ(lines[1], "karaoke offset\t0.5");
    EXPECT_EQ(lines[2], "record device\t4099");
    EXPECT_TRUE(lines.contains(QStringLiteral("karaoke ball\t1")));
    EXPECT_TRUE(lines.contains(QStringLiteral("karaoke outline color\t0,0,0,0")));
    EXPECT_TRUE(lines.contains(QStringLiteral("karaoke background picture\tdefault")));
    EXPECT_EQ(lines.last(), "fullscreen monitor\tMonitor 1 (primary)") << "an absent monitor gives the first";
    EXPECT_EQ(ReadFileBytes(home.filePath(QStringLiteral("Tonehaven/Songweaver.conf"))),
              "[General]\nkaraoke%20offset=\"0,5\"\nkaraoke%20ball=-1\nfullscreen%20monitor=Monitor 9\n")
        << "looking does not write";
}
