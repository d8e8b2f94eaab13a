// The yardstick for start-up: the main form alone, every tab's controls
// built by the form's own setupUi on a QMainWindow and shown, with none of
// the program's logic, ending once it is shown. With --cpu it prints the
// processor time used, in milliseconds. When the form is split into a frame
// and one form per page, this builds the frame and puts every page in it.
#include "ui_frmMain.h"

#include <QApplication>
#include <QMainWindow>
#include <QTest>
#include <cstdio>
#include <cstring>
#include <ctime>

int main(int argc, char* argv[]) {
    QApplication application(argc, argv);
    QMainWindow window;
    Ui::frmMain form;
    form.setupUi(&window);
    window.show();
    if (!QTest::qWaitForWindowExposed(&window))
        return 1;
    if (argc == 2 && std::strcmp(argv[1], "--cpu") == 0)
        std::printf("%.1f\n", std::clock() * 1000.0 / CLOCKS_PER_SEC);
    std::fflush(stdout);
    return 0;
}
