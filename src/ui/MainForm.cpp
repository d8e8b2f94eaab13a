#include "ui/MainForm.h"

#include "ui/AboutPage.h"
#include "ui/AdvancedPage.h"
#include "ui/BotsPage.h"
#include "ui/GeneralPage.h"
#include "ui/MapsPage.h"
#include "ui/OptionsPage.h"

#include <QMainWindow>

namespace halvane {

void MainForm::setup(QMainWindow* window) {
    Ui::frmMain::setupUi(window);
    static_cast<Ui::frmGeneral&>(*this) = tabGeneral->form();
    static_cast<Ui::frmBots&>(*this) = tabBots->form();
    static_cast<Ui::frmMaps&>(*this) = tabMaps->form();
    static_cast<Ui::frmOptions&>(*this) = tabOptions->form();
    static_cast<Ui::frmAdvanced&>(*this) = tabAdvanced->form();
    static_cast<Ui::frmAbout&>(*this) = tabAbout->form();

    // Tab goes from the tab control through each page in turn, in the order
    // the page's own form gives, and on to the buttons. Controls the forms
    // hide for good take no part.
    QList<QWidget*> chain{SSTab1};
    for (int i = 0; i < SSTab1->count(); ++i) {
        QWidget* page = SSTab1->widget(i);
        for (QWidget* w = window->nextInFocusChain(); w != window; w = w->nextInFocusChain()) {
            const bool hiddenForGood =
                w->isHidden() && w->testAttribute(Qt::WA_WState_ExplicitShowHide);
            if (page->isAncestorOf(w) && (w->focusPolicy() & Qt::TabFocus) && !hiddenForGood &&
                !w->objectName().isEmpty() && !w->objectName().startsWith(QLatin1String("qt_")))
                chain.append(w);
        }
    }
    chain << cmdSetPath << cmdStart << cmdClose;
    for (qsizetype i = 1; i < chain.size(); ++i)
        QWidget::setTabOrder(chain[i - 1], chain[i]);
}

} // namespace halvane
