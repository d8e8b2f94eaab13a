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

// The map file a member stands for: the name cut to 50 characters, taken only
// when it ends in exactly "bsp", then the part after its last '/'.
std::optional<QString> bspMemberName(const QByteArray& member);

} // namespace halvane
