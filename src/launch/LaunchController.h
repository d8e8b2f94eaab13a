#pragma once

#include "launch/LaunchSteps.h"

#include <QObject>

class QAbstractButton;
class QWidget;

namespace halvane {

struct AppContext;
class LaunchOptionsSource;

// "Launch the Server": turns the options into a running game server.
class LaunchController : public QObject {
    Q_OBJECT
public:
    // window is minimised or closed after a start when the operator asked for it.
    // startButton starts the server when clicked.
    LaunchController(const LaunchOptionsSource& form, QAbstractButton& startButton, AppContext& app,
                     QWidget& window, LaunchSteps& steps, QObject* parent = nullptr);

    LaunchSteps& steps() { return *m_steps; }
    void setSteps(LaunchSteps& steps) { m_steps = &steps; }
    // Without a starter the game is a plain process.
    void setServerStarter(ServerStarter* starter) { m_starter = starter; }
    ServerStarter* serverStarter() const { return m_starter; }

    // True when the server was started.
    bool cmdStart();
    // True when the server launched last still runs (its window comes forward).
    bool ServerRunning();

    // The task of the server launched most recently; 0 before the first.
    qint64 ServerTaskID = 0;

private:
    void fail(const QString& stepText, int code);
    int configWriteErrorCode() const;

    const LaunchOptionsSource& m_form;
    AppContext& m_app;
    QWidget& m_window;
    LaunchSteps* m_steps;
    ServerStarter* m_starter = nullptr;
};

} // namespace halvane
