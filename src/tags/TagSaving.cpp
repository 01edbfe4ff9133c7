// MP3Class's tag writers. A save reads only the tags it manages (the first ID3v2 tag, the end
// tags), edits them in memory, and splices them around the audio copied from disk as it was; the
// new file replaces the old one only after the audio is found in it unchanged.

#include "core/Numbers.h"
#include "tags/EndTags.h"
#include "tags/FileBytes.h"
#include "tags/Genres.h"
#include "tags/MP3Class.h"
#include "tags/TagBridge.h"

#include "tags/StreamFacts.h"

#include <algorithm>

namespace {

bool AnyText(std::initializer_list<const QString*> texts)
{
    return std::any_of(texts.begin(), texts.end(), [](const QString* t) { return !t->isEmpty(); });
}

Id3v1Fields Id3v1Of(const QString& title, const QString& artist, const QString& album, const QString& year,
                    const QString& comment, const QString& genre, const QString& track)
{
    return {title, artist, album, year, comment, ToInt16(NumericValue(track)), GenreCode(genre)};
}

Id3v2Fields Id3v2Of(const Id3TagTexts& t)
{
    return {t.Title2, t.Artist2, t.Album2, t.Track2, t.Year2, t.Genre2, t.Comment2,
            t.Composer, t.Encoded, t.Copyright, t.URL, t.OriginalArtist};
}

ApeTagFields ApeOf(const ApeTagTexts& t)
{
    ApeTagFields f;
    f.Title = t.Title;
    f.Artist = t.Artist;
    f.Album = t.Album;
    f.Year = t.Year;
    f.Comment = t.Comment;
    f.Genre = t.Genre;
    f.Track = t.Track;
    return f;
}

bool AllEmpty(const ApeTagTexts& t)
{
    return !AnyText({&t.Title, &t.Artist, &t.Album, &t.Year, &t.Comment, &t.Track}) && NumericValue(t.Genre) == 0;
}

// The genre of an APE save counts by its number; a text that is none stops the save.
bool GenreIsNumber(const QString& genre)
{
    bool number = false;
    genre.trimmed().toDouble(&number);
    return genre.trimmed().isEmpty() || number;
}

// The kind of tag a file holds, the later found winning: "Id3v1", "Id3v2", "APE".
QString TagKindFound(const QString& path, bool polish)
{
    const FileBytes file(path);
    if (!file.IsOpen())
        return {};
    Id3v1Fields v1;
    ApeTagFields ape;
    QString kind;
    if (ReadId3v1(file.View(), polish, v1))
        kind = QStringLiteral("Id3v1");
    if (Id3v2Span(file.View()) > 0)
        kind = QStringLiteral("Id3v2");
    if (ReadApeTag(file.View(), ape))
        kind = QStringLiteral("APE");
    return kind;
}

// A writer's new bytes in place of the old ones; false when it could not write them.
bool Take(QByteArray& bytes, const std::optional<QByteArray>& written)
{
    if (written)
        bytes = *written;
    return written.has_value();
}

// The ID3 saves manage the first ID3v2 tag and the ID3v1 tag: a second ID3v2 tag, an APE or
// Lyrics3 tag and the audio stay as they are.
std::optional<KeptRange> Id3Regions(const QString& path)
{
    const FileBytes file(path);
    const auto head = file.IsOpen() ? FirstId3v2Span(file.View()) : std::nullopt;
    if (!head)
        return std::nullopt;
    const qint64 tail = file.View().size() - Id3v1Span(file.View());
    if (*head > tail)
        return std::nullopt;
    return KeptRange{*head, tail};
}

} // namespace

QString MP3Class::FormatOnDisk() const
{
    if (IsMidiName(m_filename))
        return QStringLiteral("MIDI");
    MP3Class probe(m_polish);
    const FileBytes file(m_filename);
    if (file.IsOpen())
        probe.SniffFormat(file.View());
    return probe.m_format;
}

bool MP3Class::TakesApeTag(const QString& format)
{
    return format == u"MP3" || format == u"APE" || format == u"MPC";
}

bool MP3Class::Splice(const PlayingFileRelease& release, const RegionFinder& find, const RegionEdit& edit)
{
    SpliceResult result = SpliceResult::Refused;
    auto rewrite = [&] { result = SpliceFile(m_filename, find, edit); };
    if (release)
        release(m_filename, rewrite);
    else
        rewrite();
    return result != SpliceResult::Refused;
}

int16_t MP3Class::SaveId3Tag(const Id3TagTexts& t, const PlayingFileRelease& release)
{
    const bool anyV1 = AnyText({&t.Title1, &t.Artist1, &t.Album1, &t.Year1, &t.Comment1, &t.Genre1, &t.Track1});
    const bool anyV2 = AnyText({&t.Title2, &t.Artist2, &t.Album2, &t.Year2, &t.Comment2, &t.Genre2, &t.Track2});
    // What a tag touches follows from the file as it is, so a write that fails reads back as one.
    bool hadV1 = false;
    bool hadV2 = false;
    {
        const FileBytes file(m_filename);
        Id3v1Fields v1;
        hadV1 = file.IsOpen() && ReadId3v1(file.View(), m_polish, v1);
        hadV2 = file.IsOpen() && Id3v2Span(file.View()) > 0;
    }
    const bool touchedV1 = anyV1 || hadV1;
    const bool touchedV2 = anyV2 || hadV2;
    // Another format would be broken by an ID3 tag: the save is refused, and the unchanged file
    // reads back as a failed write.
    if (FormatOnDisk() == u"MP3")
        Splice(release, Id3Regions, [&](QByteArray& head, QByteArray& tail) {
            RemoveId3v1(tail);
            if (anyV1)
                AppendId3v1(tail, Id3v1Of(t.Title1, t.Artist1, t.Album1, t.Year1, t.Comment1, t.Genre1, t.Track1),
                            m_polish);
            if (!touchedV2)
                return true;
            const Id3v2Fields fields = Id3v2Of(t);
            return Take(head, WriteId3v2(head, anyV2 ? &fields : nullptr));
        });
    return VerifyId3Save(touchedV1, touchedV2);
}

// What the file holds now against the fields of the last read, which are from before the save.
int16_t MP3Class::VerifyId3Save(bool touchedV1, bool touchedV2) const
{
    const FileBytes file(m_filename);
    Id3v1Fields v1;
    Id3v2Fields v2;
    const bool hasV1 = file.IsOpen() && ReadId3v1(file.View(), m_polish, v1);
    if (file.IsOpen())
        ReadId3v2(file.View(), v2);
    // The fields of the last read have their trailing blanks cut; so has what the file holds now.
    for (QString* text : {&v1.Title, &v1.Artist, &v1.Album, &v1.Year, &v1.Comment})
        CutSp(*text);
    for (QString* text : {&v2.Title, &v2.Artist, &v2.Album, &v2.Year, &v2.Comment, &v2.Genre, &v2.Composer,
                          &v2.Encoded, &v2.Copyright, &v2.Url, &v2.OriginalArtist})
        CutSp(*text);
    const QString track1 = v1.Track != 0 ? QString::number(v1.Track) : QString();
    const QString oldTrack1 = NumericValue(m_track1) != 0 ? m_track1 : QString();
    const bool v1Differs = track1 != oldTrack1 || v1.Comment != Comment1() || v1.Artist != Artist1()
                           || v1.Year != Year1() || v1.Album != Album1() || v1.Title != Title1()
                           || (hasV1 ? GenreName(v1.Genre) : QString()) != Genre1();
    const bool v2Differs = v2.OriginalArtist != OriginalArtist() || v2.Url != URL() || v2.Copyright != Copyright()
                           || v2.Encoded != Encoded() || v2.Year != Year2() || v2.Composer != Composer()
                           || v2.Track != Track2() || v2.Genre != Genre2() || v2.Comment != Comment2()
                           || v2.Title != Title2() || v2.Album != Album2() || v2.Artist != Artist2();
    if (v1Differs)
        return v2Differs ? 1 : 0;
    if (touchedV1 && touchedV2)
        return -3;
    if (touchedV1)
        return -1;
    if (touchedV2)
        return -2;
    return 0;
}

int16_t MP3Class::SaveAPETag(const ApeTagTexts& t, const PlayingFileRelease& release)
{
    if (!GenreIsNumber(t.Genre))
        return 0;
    const bool empty = AllEmpty(t);
    if (TakesApeTag(FormatOnDisk()))
        Splice(release, EndTagRegions, [&](QByteArray&, QByteArray& tail) {
            const ApeTagFields fields = ApeOf(t);
            return Take(tail, WriteApeTag(tail, empty ? nullptr : &fields));
        });
    const FileBytes file(m_filename);
    ApeTagFields now;
    if (file.IsOpen())
        ReadApeTag(file.View(), now);
    const bool differs = now.Comment != m_comment || now.Genre != m_genre || now.Album != m_album
                         || now.Artist != m_artist || now.Title != m_title || now.Track != m_track
                         || now.Year != m_year;
    return differs ? 1 : -1;
}

int16_t MP3Class::SaveMPCTag(const ApeTagTexts& t, const QString& kind, const PlayingFileRelease& release)
{
    const QString found = TagKindFound(m_filename, m_polish);
    const bool writeV1 = kind == u"Force ID3v1" || kind == u"ID3v1" || kind == u"Auto";
    const bool writeApe = kind == u"APE v2.00" || kind == u"APE v1.00";
    bool touchedV1 = false;
    bool touchedApe = false;
    auto removeApe = [](QByteArray& tail) { return Take(tail, WriteApeTag(tail, nullptr)); };
    if (FormatOnDisk() == u"MPC")
        Splice(release, EndTagRegions, [&](QByteArray&, QByteArray& tail) {
            ApeTagFields ape;
            Id3v1Fields v1;
            const bool hadApe = ReadApeTag(tail, ape);
            const bool hadV1 = ReadId3v1(tail, m_polish, v1);
            if (AllEmpty(t)) {
                touchedApe = hadApe;
                touchedV1 = hadV1;
                return !hadApe || removeApe(tail);
            }
            if (!writeV1 && !writeApe)
                return true;
            if (hadApe && !removeApe(tail))
                return false;
            RemoveId3v1(tail);
            if (writeV1) {
                AppendId3v1(tail, Id3v1Of(t.Title, t.Artist, t.Album, t.Year, t.Comment, t.Genre, t.Track), m_polish);
                touchedV1 = true;
                return true;
            }
            const ApeTagFields fields = ApeOf(t);
            touchedApe = true;
            return Take(tail, WriteApeTag(tail, &fields));
        });
    if (!touchedV1 && !touchedApe)
        return 0;
    const FileBytes file(m_filename);
    Id3v1Fields v1;
    ApeTagFields ape;
    const bool hasV1 = file.IsOpen() && ReadId3v1(file.View(), m_polish, v1);
    const bool hasApe = file.IsOpen() && ReadApeTag(file.View(), ape);
    if (touchedV1) {
        if (hasV1 && found != u"Id3v1")
            return 1;
        const QString track = v1.Track != 0 ? QString::number(v1.Track) : QString();
        if (track != m_track1 || v1.Year != m_year1 || v1.Comment != m_comment1 || v1.Artist != m_artist1
            || v1.Title != m_title1 || v1.Album != m_album1 || GenreName(v1.Genre) != m_genre1)
            return 1;
    }
    // The kind noted above is never "APE v1.00", so a file that holds an APE tag always counts.
    if (touchedApe && hasApe)
        return 1;
    return -1;
}

void MP3Class::RemoveTag(const PlayingFileRelease& release)
{
    const QString format = FormatOnDisk();
    if (format != u"MP3" && format != u"MPC")
        return;
    Splice(release, Id3Regions, [](QByteArray& head, QByteArray& tail) {
        RemoveId3v1(tail);
        head.clear();
        return true;
    });
}

Id3TagTexts MP3Class::TagTexts() const
{
    Id3TagTexts t;
    t.Title1 = Title1();
    t.Artist1 = Artist1();
    t.Album1 = Album1();
    t.Year1 = Year1();
    t.Comment1 = Comment1();
    t.Genre1 = Genre1();
    t.Track1 = NumericValue(m_track1) != 0 ? m_track1 : QString();
    t.Title2 = Title2();
    t.Artist2 = Artist2();
    t.Album2 = Album2();
    t.Year2 = Year2();
    t.Comment2 = Comment2();
    t.Genre2 = Genre2();
    t.Track2 = Track2();
    t.Composer = Composer();
    t.OriginalArtist = OriginalArtist();
    t.Copyright = Copyright();
    t.URL = URL();
    t.Encoded = Encoded();
    return t;
}
