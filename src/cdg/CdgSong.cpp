#include "cdg/CdgSong.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <zip.h>

namespace {

const std::initializer_list<const char*> kAudioSuffixes = {"mp3", "ogg", "wav", "mpc", "ape"};

bool HasSuffix(const QString& name, std::initializer_list<const char*> suffixes)
{
    const QString suffix = QFileInfo(name).suffix();
    for (const char* s : suffixes)
        if (suffix.compare(QLatin1String(s), Qt::CaseInsensitive) == 0)
            return true;
    return false;
}

// The file of `folder` named `baseName` with one of the suffixes, in any letter case.
QString FileNamed(const QDir& folder, const QString& baseName, std::initializer_list<const char*> suffixes)
{
    for (const QFileInfo& file : folder.entryInfoList(QDir::Files))
        if (file.completeBaseName().compare(baseName, Qt::CaseInsensitive) == 0 && HasSuffix(file.fileName(), suffixes))
            return file.filePath();
    return {};
}

struct ZipCloser {
    void operator()(zip_t* archive) const { zip_discard(archive); }
};
using ZipHandle = std::unique_ptr<zip_t, ZipCloser>;

struct ZipMember {
    zip_uint64_t index = 0;
    QString name;  // without the folders it sits in
    qint64 size = 0;
};

// Copies a member into `target` in pieces; false when it cannot be read whole (a bad checksum,
// a cut stream) or is larger than it said.
bool TakeOut(zip_t* archive, const ZipMember& member, const QString& target)
{
    zip_file_t* in = zip_fopen_index(archive, member.index, 0);
    if (!in)
        return false;
    QFile out(target);
    bool whole = out.open(QIODevice::WriteOnly);
    QByteArray buffer(1 << 16, Qt::Uninitialized);
    qint64 total = 0;
    while (whole) {
        const zip_int64_t read = zip_fread(in, buffer.data(), zip_uint64_t(buffer.size()));
        if (read <= 0) {
            whole = read == 0 && total == member.size;
            break;
        }
        total += read;
        whole = total <= member.size && out.write(buffer.constData(), read) == read;
    }
    zip_fclose(in);
    return whole;
}

} // namespace

QString CdgFileOf(const QString& songPath)
{
    const QFileInfo song(songPath);
    return FileNamed(song.absoluteDir(), song.completeBaseName(), {"cdg"});
}

QString AudioOfCdgFile(const QString& cdgPath)
{
    const QFileInfo cdg(cdgPath);
    return FileNamed(cdg.absoluteDir(), cdg.completeBaseName(), kAudioSuffixes);
}

std::shared_ptr<CdgDecoder> ReadCdgFile(const QString& cdgPath)
{
    QFile file(cdgPath);
    if (cdgPath.isEmpty() || !file.open(QIODevice::ReadOnly) || file.size() > kLargestCdgFile)
        return nullptr;
    auto decoder = std::make_shared<CdgDecoder>(file.readAll());
    return decoder->PacketCount() > 0 ? decoder : nullptr;
}

bool IsCdgName(const QString& path)
{
    return HasSuffix(path, {"cdg"});
}

bool IsZipName(const QString& path)
{
    return HasSuffix(path, {"zip"});
}

QString AudioOfKaraokeFile(const QString& path, std::unique_ptr<ZipSong>& zip)
{
    zip.reset();
    if (IsCdgName(path))
        return AudioOfCdgFile(path);
    if (!IsZipName(path))
        return path;
    zip = ZipSong::Open(path);
    return zip->Audio();
}

std::unique_ptr<ZipSong> ZipSong::Open(const QString& zipPath)
{
    auto song = std::make_unique<ZipSong>();
    song->m_source = zipPath;
    int error = 0;
    const ZipHandle archive(zip_open(QFile::encodeName(zipPath).constData(), ZIP_RDONLY, &error));
    if (!archive || !song->m_folder.isValid()) {
        song->m_fault = Problem::Unreadable;
        return song;
    }
    std::vector<ZipMember> audio, graphics;
    const zip_int64_t count = zip_get_num_entries(archive.get(), 0);
    for (zip_int64_t i = 0; i < count; ++i) {
        zip_stat_t stat;
        if (zip_stat_index(archive.get(), zip_uint64_t(i), 0, &stat) != 0 || !(stat.valid & ZIP_STAT_NAME) ||
            !(stat.valid & ZIP_STAT_SIZE))
            continue;
        const QString name = QFileInfo(QString::fromUtf8(stat.name)).fileName();
        if (name.isEmpty() || name.startsWith(u'.'))
            continue;
        const ZipMember member{zip_uint64_t(i), name, qint64(std::min<zip_uint64_t>(stat.size, INT64_MAX))};
        if (HasSuffix(name, {"cdg"}))
            graphics.push_back(member);
        else if (HasSuffix(name, kAudioSuffixes))
            audio.push_back(member);
    }
    const auto sameBase = [](const ZipMember& a, const ZipMember& b) {
        return QFileInfo(a.name).completeBaseName().compare(QFileInfo(b.name).completeBaseName(), Qt::CaseInsensitive) == 0;
    };
    if (audio.size() != 1 || graphics.size() != 1 || !sameBase(audio[0], graphics[0]) ||
        audio[0].size > kLargestAudio || graphics[0].size > kLargestCdgFile) {
        song->m_fault = Problem::NoPair;
        return song;
    }
    const QDir folder(song->m_folder.path());
    for (const ZipMember* member : {&audio[0], &graphics[0]}) {
        if (!TakeOut(archive.get(), *member, folder.filePath(member->name))) {
            song->m_fault = Problem::BrokenMember;
            song->m_broken = member->name;
            return song;
        }
    }
    song->m_audio = folder.filePath(audio[0].name);
    song->m_graphics = folder.filePath(graphics[0].name);
    return song;
}
