#include "platform/QtPlatform.h"
#include "ui/AppContext.h"
#include "ui/MainWindow.h"

#include <QApplication>

using namespace halvane;

int main(int argc, char* argv[]) {
    QApplication application(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Halvane"));
    QApplication::setOrganizationName(QStringLiteral("Halvane"));
    QApplication::setQuitOnLastWindowClosed(false);

    QtMessageBoxes messages;
    QtFileDialogs dialogs;
    QtProcesses processes;
    QtShell shell;
    QtDesktop desktop;
    QtSettingsStore store;
    ProgramFolder folder(QCoreApplication::applicationDirPath());
    AppContext app{{messages, dialogs, processes, shell, desktop, store, folder}, {}};

    MainWindow window(app);
    window.start();
    if (window.hasEnded())
        return 0;
    return application.exec();
}
