#pragma once

#include "ui_frmAbout.h"
#include "ui_frmAdvanced.h"
#include "ui_frmBots.h"
#include "ui_frmGeneral.h"
#include "ui_frmMain.h"
#include "ui_frmMaps.h"
#include "ui_frmOptions.h"

class QMainWindow;

namespace halvane {

// Every control of the main window by its object name: the frame's form
// (menu, tab control, tip line, status panel, buttons) joined with the form
// of each page. The window and the tests reach controls through it; a
// controller is handed only the form of its own page.
struct MainForm : Ui::frmMain,
                  Ui::frmGeneral,
                  Ui::frmBots,
                  Ui::frmMaps,
                  Ui::frmOptions,
                  Ui::frmAdvanced,
                  Ui::frmAbout {
    // Builds the frame, which builds each page with its own form, and takes
    // in the pages' controls.
    void setup(QMainWindow* window);
};

} // namespace halvane
