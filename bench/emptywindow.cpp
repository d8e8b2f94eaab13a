// The yardstick for start-up: an empty Qt main window with six tabs, ending
// once it is shown. With --cpu it prints the processor time used, in
// milliseconds.
#include <QApplication>
#include <QMainWindow>
#include <QTabWidget>
#include <QTest>
#include <cstdio>
#include <cstring>
#include <ctime>

int main(int argc, char* argv[]) {
    QApplication application(argc, argv);
    QMainWindow window;
    auto* tabs = new QTabWidget(&window);
    for (const char* name : {"General", "Bots", "Maps", "Options", "Advanced", "About"})
        tabs->addTab(new QWidget, QString::fromLatin1(name));
    window.setCentralWidget(tabs);
    window.resize(720, 430);
    window.show();
    if (!QTest::qWaitForWindowExposed(&window))
        return 1;
    if (argc == 2 && std::strcmp(argv[1], "--cpu") == 0)
        std::printf("%.1f\n", std::clock() * 1000.0 / CLOCKS_PER_SEC);
    std::fflush(stdout);
    return 0;
}
