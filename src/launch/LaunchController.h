#pragma once

#include "platform/Processes.h"

#include <QDateTime>
#include <QObject>
#include <functional>

class QWidget;

namespace Ui {
class frmMain;
}

namespace halvane {

struct AppContext;

// What the launch reaches outside its own subsystem; the main window wires
// them, tests put recording stand-ins in their place.
struct LaunchHooks {
    std::function<void()> saveParameterList;
    std::function<void()> loadParameterList;
    std::function<void()> CommitShownMap;
    std::function<void()> MakeBotScript;
    std::function<bool()> ValidateAll;
    std::function<bool(const QString& path, bool withCommandLine, const QString& commandLine)>
        WriteConfig;
    std::function<QDateTime()> now; // local time for the N-0-P start stamp
    // Starts the game in place of a plain process start, keeping a record
    // and a log of the server.
    std::function<StartResult(const QString& program, const QStringList& arguments,
                              const QString& folder, const QString& commandLine)>
        startServer;
};

// "Launch the Server": turns the options into a running game server.
class LaunchController : public QObject {
    Q_OBJECT
public:
    // window is minimised or closed after a start when the operator asked for it.
    LaunchController(Ui::frmMain& ui, AppContext& app, QWidget& window, LaunchHooks hooks,
                     QObject* parent = nullptr);

    LaunchHooks& hooks() { return m_hooks; }

    // True when the server was started.
    bool cmdStart();
    // True when the server launched last still runs (its window comes forward).
    bool ServerRunning();

    // The task of the server launched most recently; 0 before the first.
    qint64 ServerTaskID = 0;

private:
    void fail(const QString& stepText, int code);
    int configWriteErrorCode() const;

    Ui::frmMain& ui;
    AppContext& m_app;
    QWidget& m_window;
    LaunchHooks m_hooks;
};

} // namespace halvane
