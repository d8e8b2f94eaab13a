#pragma once

#include <QString>

namespace halvane {

// Hands documents, web addresses and mail links to the desktop.
class Shell {
public:
    virtual ~Shell() = default;
    virtual bool openDocument(const QString& target) = 0;
    // Opens a plain-text file in the desktop's text editor.
    virtual bool editTextFile(const QString& path) = 0;
};

} // namespace halvane
