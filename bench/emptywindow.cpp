// The yardstick for start-up: an empty Qt main window with six tabs, ending
// once it is shown. With --cpu it prints the processor time used, in
// milliseconds.
#include "ShownWindow.h"

#include <QApplication>
#include <QMainWindow>
#include <QTabWidget>
#include <cstring>

int main(int argc, char* argv[]) {
    QApplication application(argc, argv);
    QMainWindow window;
    auto* tabs = new QTabWidget(&window);
    for (const char* name : {"General", "Bots", "Maps", "Options", "Advanced", "About"})
        tabs->addTab(new QWidget, QString::fromLatin1(name));
    window.setCentralWidget(tabs);
    window.resize(720, 430);
    window.show();
    return endOnceShown(window, argc == 2 && std::strcmp(argv[1], "--cpu") == 0);
}
