#pragma once

#include <QString>

namespace halvane {

struct FileChoice {
    bool chosen = false;
    QString path;      // full path of the chosen file
    QString fileTitle; // bare file name
};

// Open and save file dialogs. Filters use the "Caption|*.a;*.b" form.
class FileDialogs {
public:
    virtual ~FileDialogs() = default;
    virtual FileChoice openFile(const QString& title, const QString& filter,
                                const QString& initialFolder) = 0;
    virtual FileChoice saveFile(const QString& title, const QString& filter,
                                const QString& defaultSuffix, const QString& initialFolder) = 0;
};

} // namespace halvane
