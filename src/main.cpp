#include "app/AppContext.h"
#include "cli/CommandLineTool.h"
#include "platform/QtPlatform.h"
#include "platform/Supervisor.h"
#include "ui/FirstRun.h"
#include "ui/MainWindow.h"

#include <QApplication>
#include <QCoreApplication>
#include <QIcon>
#include <cstdio>
#include <cstring>

using namespace halvane;

namespace {
void nameApplication() {
    QCoreApplication::setApplicationName(QStringLiteral("Halvane"));
    QCoreApplication::setOrganizationName(QStringLiteral("Halvane"));
}

// Used by the run script before the first start: points a fresh user's
// Halvane at the free game, without a window.
int prepareFirstRunOnly(int argc, char* argv[]) {
    QCoreApplication application(argc, argv);
    nameApplication();
    QtSettingsStore store;
    const ProgramFolder folder =
        locateProgramFolder(QCoreApplication::applicationDirPath(), userProgramFolder());
    const FirstRunResult result =
        prepareFirstRun(store, defaultFreeGameFolder(), {}, folder.path());
    std::fprintf(stderr, "halvane: %s\n", qPrintable(result.message));
    return result.outcome == FirstRunResult::Failed ? 1 : 0;
}

// A command runs the window's own code on Qt's offscreen platform: no display
// is needed, and none is used when there is one.
int runCommand(int argc, char* argv[]) {
    QStringList arguments;
    for (int i = 1; i < argc; ++i)
        arguments.append(QString::fromLocal8Bit(argv[i]));
    char platformOption[] = "-platform";
    char platformName[] = "offscreen";
    char* qtArgv[] = {argv[0], platformOption, platformName, nullptr};
    int qtArgc = 3;
    QApplication application(qtArgc, qtArgv);
    nameApplication();
    return cli::run(arguments);
}
} // namespace

int main(int argc, char* argv[]) {
    // Before any Qt object: it waits for a server as long as the server runs.
    if (isSupervisorCall(argc, argv))
        return runSupervisor(argc, argv);
    if (argc == 2 && std::strcmp(argv[1], "--prepare-first-run") == 0)
        return prepareFirstRunOnly(argc, argv);
    QStringList arguments;
    for (int i = 1; i < argc; ++i)
        arguments.append(QString::fromLocal8Bit(argv[i]));
    if (cli::isCommand(arguments))
        return runCommand(argc, argv);

    QApplication application(argc, argv);
    nameApplication();
    // Whatever Qt did not take for itself is no argument of the window's.
    if (QCoreApplication::arguments().size() > 1) {
        std::fprintf(stderr, "halvane: unknown argument %s\n'halvane --help' lists the commands.\n",
                     qPrintable(QCoreApplication::arguments().at(1)));
        return cli::Usage;
    }
    QApplication::setQuitOnLastWindowClosed(false);
    QGuiApplication::setDesktopFileName(QStringLiteral("halvane"));

    QtMessageBoxes messages;
    QtFileDialogs dialogs;
    QtProcesses processes(QCoreApplication::applicationFilePath());
    QtShell shell;
    QtDesktop desktop;
    QtSettingsStore store;
    ProgramFolder folder =
        locateProgramFolder(QCoreApplication::applicationDirPath(), userProgramFolder());
    QApplication::setWindowIcon(QIcon(folder.installedFile(QStringLiteral("halvane.png"))));
    AppContext app{{messages, dialogs, processes, shell, desktop, store, folder}, {}};

    MainWindow window(app);
    window.start();
    if (window.hasEnded())
        return 0;
    return application.exec();
}
