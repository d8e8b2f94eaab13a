#include "platform/UserFiles.h"

#include <QStandardPaths>

namespace halvane {

QString userProfileFolder() {
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
           QStringLiteral("/Halvane/profiles");
}

} // namespace halvane
