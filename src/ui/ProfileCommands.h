#pragma once

#include "platform/Prompts.h"
#include "profiles/ProfileStore.h"
#include "server/ProfileLauncher.h"

#include <QObject>
#include <functional>

class QAction;

namespace halvane {

struct AppContext;
class MainWindow;
class ServerControl;

// The profile items of the "Server" menu: save the window's settings as a
// profile, open one into the window, launch one as a server of its own,
// rename and delete them.
class ProfileCommands : public QObject, public ProfileLauncher, public CurrentProfile {
    Q_OBJECT
public:
    ProfileCommands(MainWindow& window, AppContext& app, ServerControl& servers);

    ProfileStore& store() { return m_store; }
    void setStore(const ProfileStore& store) { m_store = store; }
    QString currentName() const override { return m_lastName; }
    // Tests put a recording stand-in here.
    void setPrompts(Prompts& prompts) { m_prompts = &prompts; }

    void saveAsProfile();
    void openProfile();
    void launchProfile();
    void renameProfile();
    void deleteProfile();

    // Launches the profile as a server that reads its scripts from a folder
    // of its own; true when it started. Asks first when a running server of
    // ours has its port. The window's settings are not touched.
    bool launchProfile(const QString& name) override;
    QStringList profileNames() const override { return m_store.names(); }

    QAction *saveAction = nullptr, *openAction = nullptr, *launchAction = nullptr,
            *renameAction = nullptr, *deleteAction = nullptr;

private:
    std::optional<QString> chooseProfile(const QString& title);
    void tell(const QString& title, const QString& text, bool failure = true);

    MainWindow& m_window;
    AppContext& m_app;
    ServerControl& m_servers;
    ProfileStore m_store;
    QtPrompts m_qtPrompts;
    Prompts* m_prompts = &m_qtPrompts;
    QString m_lastName;
};

} // namespace halvane
