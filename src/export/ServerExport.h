#pragma once

#include <QObject>
#include <QString>

class QMenu;

namespace halvane {

struct AppContext;
class CurrentProfile;
class LaunchOptionsSource;
class LaunchSteps;
class MapCatalogue;
class RandomSource;
class ServerSettingsSource;

// "Export Server…" and `halvane export`: the window's settings as they stand,
// validated as for a launch, written by the same writers into a new folder
// with what runs them on another host (export/ExportFiles).
class ServerExport : public QObject {
    Q_OBJECT
public:
    // Adds "Export Server…" to serverMenu, when the window has one. steps
    // commits the shown map and validates as before a launch; the two
    // sources read the window's options after that.
    ServerExport(QMenu* serverMenu, LaunchSteps& steps, const ServerSettingsSource& settings,
                 const LaunchOptionsSource& launch, MapCatalogue& catalogue, RandomSource& random,
                 AppContext& app);
    // The window's profile commands, when it has them.
    void setCurrentProfile(const CurrentProfile* profile) { m_profile = profile; }

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

    LaunchSteps& m_steps;
    const ServerSettingsSource& m_settings;
    const LaunchOptionsSource& m_launch;
    MapCatalogue& m_catalogue;
    RandomSource& m_random;
    AppContext& m_app;
    const CurrentProfile* m_profile = nullptr;
};

} // namespace halvane
