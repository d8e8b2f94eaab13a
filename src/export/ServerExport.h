#pragma once

#include <QObject>
#include <QString>

namespace halvane {

struct AppContext;
class MainWindow;

// "Export Server…" and `halvane export`: the window's settings as they stand,
// validated as for a launch, written by the same writers into a new folder
// with what runs them on another host (export/ExportFiles).
class ServerExport : public QObject {
    Q_OBJECT
public:
    // Adds "Export Server…" to the window's Server menu.
    ServerExport(MainWindow& window, AppContext& app);

    // Writes the new folder; name names the server's unit, user and objects.
    // Every failure is told through the message boxes, and leaves nothing:
    // the folder appears whole or not at all.
    bool exportTo(const QString& folder, const QString& name);
    // What an export of the window's settings is named after: the profile
    // they were last opened from or saved as, otherwise the host name.
    QString serverName() const;
    // The menu command: asks for the new folder's name first.
    void mnuServerExport();

private:
    bool fail(const QString& text);

    MainWindow& m_window;
    AppContext& m_app;
};

} // namespace halvane
