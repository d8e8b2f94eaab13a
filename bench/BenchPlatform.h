#pragma once

#include "app/AppContext.h"
#include "platform/FakePlatform.h"
#include "platform/QtPlatform.h"

#include <QDir>
#include <QTemporaryDir>
#include <memory>

namespace halvane {

// Fakes over a temporary program folder, game folder, state folder and a
// real settings file, for the timed sections.
struct BenchPlatform {
    QTemporaryDir dir;
    FakeMessageBoxes messages;
    FakeFileDialogs dialogs;
    FakeProcesses processes;
    FakeShell shell;
    FakeDesktop desktop;
    std::unique_ptr<QtSettingsStore> store;
    std::unique_ptr<ProgramFolder> folder;
    std::unique_ptr<AppContext> app;
    BenchPlatform() {
        QDir().mkpath(program());
        QDir().mkpath(game() + QStringLiteral("/baseq3/maps"));
        store = std::make_unique<QtSettingsStore>(dir.filePath(QStringLiteral("Halvane.ini")));
        folder = std::make_unique<ProgramFolder>(program(), dir.filePath(QStringLiteral("state")));
        app.reset(
            new AppContext{{messages, dialogs, processes, shell, desktop, *store, *folder}, {}});
        app->state.GameFolder = game();
        app->state.GameExeName = QStringLiteral("quake3.exe");
    }
    QString program() const { return dir.filePath(QStringLiteral("program")); }
    QString game() const { return dir.filePath(QStringLiteral("game")); }
};

} // namespace halvane
