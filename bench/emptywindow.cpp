// The yardstick for start-up: an empty Qt main window with six tabs, ending
// once it is shown.
#include <QApplication>
#include <QMainWindow>
#include <QTabWidget>
#include <QTest>

int main(int argc, char* argv[]) {
    QApplication application(argc, argv);
    QMainWindow window;
    auto* tabs = new QTabWidget(&window);
    for (const char* name : {"General", "Bots", "Maps", "Options", "Advanced", "About"})
        tabs->addTab(new QWidget, QString::fromLatin1(name));
    window.setCentralWidget(tabs);
    window.resize(720, 430);
    window.show();
    return QTest::qWaitForWindowExposed(&window) ? 0 : 1;
}
