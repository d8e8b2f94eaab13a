#pragma once

#include <QString>

namespace halvane {

// Files that hold passwords (the settings file, halvane.cfg, a profile) are
// the user's alone: read and write for the owner only (0600), their folders
// open to the owner only (0700). On a file system without such modes (FAT)
// the change fails and the calls answer false.

// Makes an existing file the owner's alone; false when that failed or the
// file does not exist.
bool makeFilePrivate(const QString& path);

// Makes the folder (with any missing parents; the parents keep the usual
// modes) and makes it the owner's alone; an existing folder is tightened.
// False when it could not be made or tightened.
bool makePrivateFolder(const QString& path);

// True when no one but the owner may read, write or enter path.
bool isPrivate(const QString& path);

} // namespace halvane
