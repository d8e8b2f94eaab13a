#pragma once

#include "ui/FirstRun.h"

#include <QDialog>
#include <memory>

namespace Ui {
class frmPath;
}

namespace halvane {

struct AppContext;
struct AppState;
class SettingsStore;

// What the path dialog needs of the window it returns to.
class PathDialogHost {
public:
    virtual ~PathDialogHost() = default;
    // Shows the main window (loading it the first time), enabled, on its
    // first tab, with the focus in the message of the day.
    virtual void showMainWindow() = 0;
    virtual void endProgram() = 0;
};

// The game location dialog: the first window of every run, and the one the
// main window opens to change the location.
class PathDialog : public QDialog {
    Q_OBJECT
public:
    PathDialog(AppContext& app, PathDialogHost& host, QWidget* owner = nullptr);
    ~PathDialog() override;

    // Reads the stored location; closes unseen when it is valid at start-up,
    // otherwise shows itself.
    void load();
    // Reads the stored game location into the program's state as a start
    // does; false (and the state cleared) when none is stored or it holds no
    // quake3.exe.
    static bool readStoredLocation(AppState& state, const SettingsStore& store);

    bool PathChosen = false;
    Ui::frmPath& form();

    // Where the free game is looked for, and the folder it is set up in;
    // game folders for other server programs are made beside that one.
    FreeGameSources freeGame;
    QString freeGameFolder = defaultFreeGameFolder();

protected:
    void closeEvent(QCloseEvent* event) override;
    void reject() override;

private:
    void cmdBrowse();
    void cmdOkay();
    void cmdFreeGame();
    // A location whose folder lacks quake3.exe is forgotten at the next
    // start: offers a game folder whose quake3.exe runs the chosen program.
    void keepOtherProgram();
    void cmdCancel();
    void unload();

    std::unique_ptr<Ui::frmPath> ui;
    AppContext& m_app;
    PathDialogHost& m_host;
    bool m_unloading = false;
};

} // namespace halvane
