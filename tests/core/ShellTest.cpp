#include "core/Shell.h"
#include "support/TestSupport.h"

#include <QFileInfo>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace {

struct Desktop {
    QTemporaryDir root;
    ShellFolders folders{root.path() + QStringLiteral("/data"), root.path() + QStringLiteral("/config"),
                         {root.path() + QStringLiteral("/system")}};
    QString Path(const char* relative) const { return root.path() + u'/' + QLatin1String(relative); }
};

} // namespace

TEST(Shell, RegistersTheLyricsTypeOnceAndLeavesItAlone)
{
    Desktop desktop;
    WriteFileBytes(desktop.Path("config/mimeapps.list"), "[Default Applications]\naudio/mpeg=vlc.desktop;\n");

    ASSERT_TRUE(RegisterFileType(QStringLiteral(".lrs"), QStringLiteral("lyrics file"),
                                 QStringLiteral("/opt/sw/songweaver"), desktop.folders));
    const QByteArray mime = ReadFileBytes(desktop.Path("data/mime/packages/songweaver.xml"));
    EXPECT_TRUE(mime.contains("<comment>lyrics file</comment>"));
    EXPECT_TRUE(mime.contains("<glob pattern=\"*.lrs\"/>"));
    const QByteArray entry = ReadFileBytes(desktop.Path("data/applications/songweaver.desktop"));
    EXPECT_TRUE(entry.contains("Exec=\"/opt/sw/songweaver\" %f"));
    EXPECT_TRUE(entry.contains("MimeType=text/x-songweaver-lyrics;"));
    const QByteArray defaults = ReadFileBytes(desktop.Path("config/mimeapps.list"));
    EXPECT_TRUE(defaults.contains("text/x-songweaver-lyrics=songweaver.desktop;"));
    EXPECT_TRUE(defaults.contains("audio/mpeg=vlc.desktop;")) << "other choices stay";
    EXPECT_FALSE(Mp3ContentTypeIsOurs(desktop.folders));

    EXPECT_TRUE(ExtensionHasMimeType(QStringLiteral(".LRS"), desktop.folders));
    EXPECT_FALSE(RegisterFileType(QStringLiteral(".lrs"), QStringLiteral("other text"),
                                  QStringLiteral("/elsewhere/songweaver"), desktop.folders))
        << "a second start changes nothing";
    EXPECT_EQ(ReadFileBytes(desktop.Path("data/mime/packages/songweaver.xml")), mime);
    EXPECT_EQ(ReadFileBytes(desktop.Path("data/applications/songweaver.desktop")), entry);
}

TEST(Shell, ATypeOwnedByAnotherProgramStaysWithIt)
{
    Desktop desktop;
    WriteFileBytes(desktop.Path("system/mime/globs2"), "50:application/x-other-lyrics:*.lrs\n");
    EXPECT_FALSE(RegisterFileType(QStringLiteral(".lrs"), QStringLiteral("lyrics file"),
                                  QStringLiteral("/opt/sw/songweaver"), desktop.folders));
    EXPECT_FALSE(QFileInfo::exists(desktop.Path("data/mime/packages/songweaver.xml")));
    EXPECT_FALSE(QFileInfo::exists(desktop.Path("config/mimeapps.list")));

    Desktop other;
    WriteFileBytes(other.Path("data/mime/packages/karaoke.xml"),
                   "<mime-type type=\"text/x-karaoke\"><glob pattern=\"*.lrs\"/></mime-type>");
    EXPECT_FALSE(RegisterFileType(QStringLiteral(".lrs"), QStringLiteral("lyrics file"),
                                  QStringLiteral("/opt/sw/songweaver"), other.folders));
    EXPECT_FALSE(ExtensionHasMimeType(QStringLiteral(".lr"), other.folders));
}

TEST(Shell, Mp3DefaultProgram)
{
    Desktop desktop;
    EXPECT_FALSE(Mp3ContentTypeIsOurs(desktop.folders));
    WriteFileBytes(desktop.Path("data/applications/mimeapps.list"),
                   "[Added Associations]\naudio/mpeg=vlc.desktop;\n[Default Applications]\naudio/mpeg=songweaver.desktop;vlc.desktop;\n");
    EXPECT_TRUE(Mp3ContentTypeIsOurs(desktop.folders));
    WriteFileBytes(desktop.Path("config/mimeapps.list"), "[Default Applications]\naudio/mpeg=rhythmbox.desktop\n");
    EXPECT_FALSE(Mp3ContentTypeIsOurs(desktop.folders)) << "the user's own choice comes first";
}

TEST(Shell, ChildProcessesAndTheTempFolder)
{
    EXPECT_EQ(RunAndWait(QStringLiteral("sh -c \"exit 3\"")), 3);
    EXPECT_EQ(RunAndWait(QStringLiteral("true")), 0);
    EXPECT_EQ(RunAndWait(QStringLiteral("/no/such/program")), -1);
    EXPECT_EQ(RunAndWait(QString()), -1);
    EXPECT_TRUE(GetTempFolder().endsWith(u'/'));
    EXPECT_TRUE(QFileInfo(GetTempFolder()).isDir());
}
