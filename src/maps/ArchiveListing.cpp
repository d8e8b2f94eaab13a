#include "maps/ArchiveListing.h"

#include <QFile>
#include <zip.h>

namespace halvane {

bool listArchive(const QString& path, const std::function<void(const QByteArray& name)>& onMember) {
    int error = 0;
    zip_t* archive = zip_open(QFile::encodeName(path).constData(), ZIP_RDONLY, &error);
    if (!archive)
        return false;
    const zip_int64_t count = zip_get_num_entries(archive, 0);
    bool ok = count >= 0;
    for (zip_int64_t i = 0; ok && i < count; ++i) {
        const char* name = zip_get_name(archive, zip_uint64_t(i), ZIP_FL_ENC_RAW);
        if (!name) {
            ok = false;
            break;
        }
        onMember(QByteArray(name));
    }
    zip_discard(archive);
    return ok;
}

std::optional<QByteArray> readArchiveMember(const QString& path, const QByteArray& member,
                                            qint64 limit) {
    int error = 0;
    zip_t* archive = zip_open(QFile::encodeName(path).constData(), ZIP_RDONLY, &error);
    if (!archive)
        return std::nullopt;
    std::optional<QByteArray> bytes;
    zip_stat_t stat;
    zip_stat_init(&stat);
    const zip_int64_t index = zip_name_locate(archive, member.constData(), ZIP_FL_ENC_RAW);
    if (index >= 0 && zip_stat_index(archive, zip_uint64_t(index), 0, &stat) == 0 &&
        (stat.valid & ZIP_STAT_SIZE) && stat.size <= zip_uint64_t(limit)) {
        if (zip_file_t* file = zip_fopen_index(archive, zip_uint64_t(index), 0)) {
            QByteArray content(qsizetype(stat.size), Qt::Uninitialized);
            if (zip_fread(file, content.data(), stat.size) == zip_int64_t(stat.size))
                bytes = content;
            zip_fclose(file);
        }
    }
    zip_discard(archive);
    return bytes;
}

std::optional<QString> bspMemberName(const QByteArray& member) {
    const QString name = QString::fromLatin1(member.left(50));
    if (!name.endsWith(QLatin1String("bsp"), Qt::CaseSensitive))
        return std::nullopt;
    return name.mid(name.lastIndexOf(QLatin1Char('/')) + 1);
}

} // namespace halvane
