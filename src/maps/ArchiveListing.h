#pragma once

#include <QByteArray>
#include <QString>
#include <functional>
#include <optional>

namespace halvane {

// Lists the member names of a zip archive (.pk3) in central-directory order,
// reading nothing but the central directory. False when the archive cannot
// be opened or read.
bool listArchive(const QString& path, const std::function<void(const QByteArray& name)>& onMember);

// The bytes of one member of a zip archive, found by its name as the archive
// spells it; nothing when the archive or the member cannot be read or the
// member is larger than limit.
std::optional<QByteArray> readArchiveMember(const QString& path, const QByteArray& member,
                                            qint64 limit);

// The map file a member stands for: the name cut to 50 characters, taken only
// when it ends in exactly "bsp", then the part after its last '/'.
std::optional<QString> bspMemberName(const QByteArray& member);

} // namespace halvane
