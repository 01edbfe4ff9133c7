// swtool tags: the information dialog's save without the dialog. The fields start as the dialog
// shows them, each --set replaces one, and the result code is printed as the dialog reads it.

#include "app/SwtoolCommands.h"

#include <QFileInfo>
#include <QTextStream>
#include <map>

namespace {

using Field = QString Id3TagTexts::*;

const std::map<QString, Field>& Fields()
{
    static const std::map<QString, Field> fields = {
        {QStringLiteral("Title1"), &Id3TagTexts::Title1},   {QStringLiteral("Artist1"), &Id3TagTexts::Artist1},
        {QStringLiteral("Album1"), &Id3TagTexts::Album1},   {QStringLiteral("Year1"), &Id3TagTexts::Year1},
        {QStringLiteral("Comment1"), &Id3TagTexts::Comment1}, {QStringLiteral("Genre1"), &Id3TagTexts::Genre1},
        {QStringLiteral("Track1"), &Id3TagTexts::Track1},   {QStringLiteral("Title2"), &Id3TagTexts::Title2},
        {QStringLiteral("Artist2"), &Id3TagTexts::Artist2}, {QStringLiteral("Album2"), &Id3TagTexts::Album2},
        {QStringLiteral("Year2"), &Id3TagTexts::Year2},     {QStringLiteral("Comment2"), &Id3TagTexts::Comment2},
        {QStringLiteral("Genre2"), &Id3TagTexts::Genre2},   {QStringLiteral("Track2"), &Id3TagTexts::Track2},
        {QStringLiteral("Composer"), &Id3TagTexts::Composer},
        {QStringLiteral("OriginalArtist"), &Id3TagTexts::OriginalArtist},
        {QStringLiteral("Copyright"), &Id3TagTexts::Copyright}, {QStringLiteral("URL"), &Id3TagTexts::URL},
        {QStringLiteral("Encoded"), &Id3TagTexts::Encoded},
    };
    return fields;
}

const QStringList kApeFields = {QStringLiteral("Title1"), QStringLiteral("Artist1"), QStringLiteral("Album1"),
                                QStringLiteral("Year1"),  QStringLiteral("Comment1"), QStringLiteral("Genre1"),
                                QStringLiteral("Track1")};

struct TagsOptions {
    QString file;
    bool ape = false;
    std::vector<std::pair<QString, QString>> sets;
};

bool ReadOptions(QStringList args, TagsOptions& o)
{
    while (!args.isEmpty()) {
        const QString arg = args.takeFirst();
        if (arg == u"--ape") {
            o.ape = true;
        } else if (arg == u"--set" && !args.isEmpty()) {
            const QString set = args.takeFirst();
            const qsizetype equals = set.indexOf(u'=');
            if (equals < 1 || !Fields().count(set.left(equals)))
                return false;
            o.sets.emplace_back(set.left(equals), set.mid(equals + 1));
        } else if (!arg.startsWith(u'-') && o.file.isEmpty()) {
            o.file = arg;
        } else {
            return false;
        }
    }
    if (o.ape)
        for (const auto& [name, value] : o.sets)
            if (!kApeFields.contains(name))
                return false;
    return !o.file.isEmpty();
}

} // namespace

int SaveTags(const QStringList& args)
{
    TagsOptions o;
    if (!ReadOptions(args, o))
        return 2;
    if (!QFileInfo(o.file).isFile()) {
        QTextStream(stderr) << "File not found: " << o.file << '\n';
        return 1;
    }
    PlayerReading reading(o.file);
    MP3Class& song = reading.song;
    // An ID3 tag goes only into an MP3 file, an APE tag only where the format has a place for it.
    const QString format = song.FormatOnDisk();
    const bool takes = o.ape ? MP3Class::TakesApeTag(format) : format == u"MP3";
    if (!takes) {
        QTextStream(stderr) << (o.ape ? "Not an MP3, Monkey's Audio or Musepack file: " : "Not an MP3 file: ")
                            << o.file << '\n';
        return 1;
    }
    song.ReadTag();
    Id3TagTexts texts = song.TagTexts();
    for (const auto& [name, value] : o.sets)
        texts.*(Fields().at(name)) = value;
    const int16_t result = o.ape ? song.SaveAPETag({texts.Title1, texts.Artist1, texts.Album1, texts.Year1,
                                                    texts.Comment1, texts.Genre1, texts.Track1})
                                 : song.SaveId3Tag(texts);
    QTextStream(stdout) << "result\t" << result << '\n';
    return 0;
}
