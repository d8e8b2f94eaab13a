// The yardstick for start-up: the main form alone, every tab's controls
// built by the form's own setupUi on a QMainWindow and shown, with none of
// the program's logic, ending once it is shown. With --cpu it prints the
// processor time used, in milliseconds. The frame's form builds each tab's
// page with that page's own form.
#include "ui/MainForm.h"

#include "ShownWindow.h"

#include <QApplication>
#include <QMainWindow>
#include <cstring>

int main(int argc, char* argv[]) {
    QApplication application(argc, argv);
    QMainWindow window;
    halvane::MainForm form;
    form.setup(&window);
    window.show();
    return endOnceShown(window, argc == 2 && std::strcmp(argv[1], "--cpu") == 0);
}
