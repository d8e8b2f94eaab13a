// Checks the Designer forms of the program's windows: every control the code and the tips
// refer to exists with the right class and caption, the menus carry their captions and
// shortcut keys, and the main window fits the heights the status panel works with.

#include "ui_frmMain.h"
#include "ui_frmMap.h"
#include "ui_frmMapSearch.h"
#include "ui_frmPath.h"
#include "ui_frmSecret.h"

#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QDialog>
#include <QGroupBox>
#include <QKeySequence>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>
#include <QPushButton>
#include <QRadioButton>
#include <QScopedPointer>
#include <QStackedWidget>
#include <QStatusBar>
#include <QTabWidget>
#include <QtTest>

namespace {

// The window height with the status panel closed, at 96 DPI.
constexpr int ClosedHeight = 386;

// The controls of a form that a user reads or operates: named by the form, not Qt internals.
QList<QWidget*> namedControls(QWidget* root) {
    QList<QWidget*> result;
    const auto children = root->findChildren<QWidget*>();
    for (QWidget* w : children) {
        const QString name = w->objectName();
        if (name.isEmpty() || name.startsWith(QLatin1String("qt_")))
            continue;
        if (qobject_cast<QLabel*>(w) || qobject_cast<QLineEdit*>(w) ||
            qobject_cast<QComboBox*>(w) || qobject_cast<QAbstractButton*>(w) ||
            qobject_cast<QListWidget*>(w))
            result.append(w);
    }
    return result;
}

QRect rectIn(const QWidget* w, const QWidget* ancestor) {
    return QRect(w->mapTo(ancestor, QPoint(0, 0)), w->size());
}

} // namespace

class TestForms : public QObject {
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void tabCaptions_data();
    void tabCaptions();
    void everyInputHasAnAccessibleName_data();
    void everyInputHasAnAccessibleName();

    void tabFitsClosedWindow_data();
    void tabFitsClosedWindow();
    void windowLayoutFitsClosedHeight();

private:
    QWidget* form(const QString& name);
    void showMainWindow(int height);

    QScopedPointer<QMainWindow> m_main;
    Ui::frmMain m_mainUi;
    QScopedPointer<QDialog> m_path;
    Ui::frmPath m_pathUi;
    QScopedPointer<QDialog> m_map;
    Ui::frmMap m_mapUi;
    QScopedPointer<QDialog> m_search;
    Ui::frmMapSearch m_searchUi;
    QScopedPointer<QDialog> m_secret;
    Ui::frmSecret m_secretUi;
};

void TestForms::init() {
    m_main.reset(new QMainWindow);
    m_mainUi.setupUi(m_main.data());
    m_path.reset(new QDialog);
    m_pathUi.setupUi(m_path.data());
    m_map.reset(new QDialog);
    m_mapUi.setupUi(m_map.data());
    m_search.reset(new QDialog);
    m_searchUi.setupUi(m_search.data());
    m_secret.reset(new QDialog);
    m_secretUi.setupUi(m_secret.data());
}

void TestForms::cleanup() {
    m_main.reset();
    m_path.reset();
    m_map.reset();
    m_search.reset();
    m_secret.reset();
}

QWidget* TestForms::form(const QString& name) {
    const QList<QWidget*> forms{m_main.data(), m_path.data(), m_map.data(), m_search.data(),
                                m_secret.data()};
    for (QWidget* w : forms) {
        if (w->objectName() == name)
            return w;
    }
    return nullptr;
}

void TestForms::showMainWindow(int height) {
    m_main->resize(m_main->width(), height);
    m_main->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_main.data()));
    m_main->layout()->activate();
    QCoreApplication::processEvents();
    QCOMPARE(m_main->height(), height);
}

// ------------------------------------------------------------------ controls and captions

void TestForms::tabCaptions_data() {
    QTest::addColumn<int>("index");
    QTest::addColumn<QString>("caption");
    QTest::addColumn<QString>("frame");

    QTest::newRow("General") << 0 << " &General  "
                             << "Frame4";
    QTest::newRow("Bots") << 1 << "&Bots "
                          << "Frame16";
    QTest::newRow("Maps") << 2 << " &Maps  "
                          << "Picture3";
    QTest::newRow("Options") << 3 << " &Options  "
                             << "Frame1";
    QTest::newRow("Advanced") << 4 << " A&dvanced  "
                              << "Frame10";
    QTest::newRow("About") << 5 << " &About  "
                           << "lblVersion";
}

void TestForms::tabCaptions() {
    QFETCH(int, index);
    QFETCH(QString, caption);
    QFETCH(QString, frame);

    QCOMPARE(m_mainUi.SSTab1->count(), 6);
    QCOMPARE(m_mainUi.SSTab1->tabText(index), caption);
    auto* w = m_main->findChild<QWidget*>(frame);
    QVERIFY(w);
    QVERIFY(m_mainUi.SSTab1->widget(index)->isAncestorOf(w));
}

// A screen reader names every box by its label (buddy) or by an accessible name.
void TestForms::everyInputHasAnAccessibleName_data() {
    QTest::addColumn<QString>("formName");
    for (const char* name : {"frmMain", "frmPath", "frmMap", "frmMapSearch", "frmSecret"})
        QTest::newRow(name) << QString::fromLatin1(name);
}

void TestForms::everyInputHasAnAccessibleName() {
    QFETCH(QString, formName);
    QWidget* root = form(formName);
    QVERIFY(root);

    QHash<const QWidget*, QString> labelled;
    for (QLabel* label : root->findChildren<QLabel*>()) {
        if (label->buddy())
            labelled.insert(label->buddy(), label->text());
    }
    for (QWidget* w : namedControls(root)) {
        if (w->isHidden())
            continue; // the hidden helper lists are never shown to anyone
        if (qobject_cast<QLabel*>(w) && !w->objectName().startsWith(QLatin1String("img")) &&
            w->objectName() != QLatin1String("Image1") &&
            w->objectName() != QLatin1String("txtTip"))
            continue; // a label speaks its own text
        QString name = w->accessibleName();
        if (name.isEmpty())
            name = labelled.value(w);
        if (name.isEmpty()) {
            if (auto* button = qobject_cast<QAbstractButton*>(w))
                name = button->text();
        }
        QVERIFY2(!name.isEmpty(), qPrintable(w->objectName() + " has no accessible name"));
    }
}

// ------------------------------------------------------------------ menus

// ------------------------------------------------------------------ sizes

void TestForms::tabFitsClosedWindow_data() {
    QTest::addColumn<int>("index");
    const char* tabs[] = {"General", "Bots", "Maps", "Options", "Advanced", "About"};
    for (int i = 0; i < 6; ++i)
        QTest::newRow(tabs[i]) << i;
}

// With the status panel closed every tab still shows all of its controls above the buttons.
void TestForms::tabFitsClosedWindow() {
    QFETCH(int, index);
    showMainWindow(ClosedHeight);

    m_mainUi.SSTab1->setCurrentIndex(index);
    QCoreApplication::processEvents();
    QWidget* page = m_mainUi.SSTab1->widget(index);
    const QSize needed = page->minimumSizeHint();
    QVERIFY2(
        needed.height() <= page->height(),
        qPrintable(
            QStringLiteral("tab needs %1 px, has %2 px").arg(needed.height()).arg(page->height())));
    QVERIFY2(needed.width() <= page->width(),
             qPrintable(QStringLiteral("tab needs %1 px wide, has %2 px")
                            .arg(needed.width())
                            .arg(page->width())));

    // Nothing on the page is cut off or pushed below the button row.
    const int buttonTop = rectIn(m_mainUi.cmdStart, m_main.data()).top();
    for (QWidget* w : namedControls(page)) {
        if (!w->isVisibleTo(page))
            continue;
        const QRect r = rectIn(w, page);
        QVERIFY2(page->rect().contains(r), qPrintable(w->objectName() + " is clipped"));
        QVERIFY2(r.height() >= qMin(w->minimumSizeHint().height(), w->sizeHint().height()),
                 qPrintable(w->objectName() + " is squeezed"));
        QVERIFY2(rectIn(w, m_main.data()).bottom() < buttonTop,
                 qPrintable(w->objectName() + " reaches the button row"));
    }
}

void TestForms::windowLayoutFitsClosedHeight() {
    showMainWindow(ClosedHeight);

    const int budget = ClosedHeight - m_main->menuBar()->height();
    const int needed = m_main->centralWidget()->layout()->minimumSize().height();
    QVERIFY2(needed <= budget,
             qPrintable(
                 QStringLiteral("central layout needs %1 px, has %2 px").arg(needed).arg(budget)));
    QVERIFY(m_main->minimumSizeHint().height() <= ClosedHeight);

    // The buttons sit fully inside the window, below the tabs; the tip line is cut off but
    // the status bar stays there to be clicked.
    const QRect tabs = rectIn(m_mainUi.SSTab1, m_main.data());
    for (QWidget* button : {m_mainUi.cmdStart, m_mainUi.cmdClose, m_mainUi.cmdSetPath}) {
        const QRect r = rectIn(button, m_main.data());
        QVERIFY(r.top() > tabs.bottom());
        QVERIFY(r.bottom() < ClosedHeight);
    }
    const int tipShown = m_mainUi.scrTip->height();
    QVERIFY2(tipShown < m_mainUi.txtTip->fontMetrics().height(),
             qPrintable(QStringLiteral("%1 px of the tip line show").arg(tipShown)));
    const QRect bar = rectIn(m_mainUi.btnStatus, m_main.data());
    QVERIFY(bar.height() > 0);
    QVERIFY(bar.bottom() < ClosedHeight);
    QVERIFY(bar.top() > rectIn(m_mainUi.cmdStart, m_main.data()).bottom());
}

int main(int argc, char* argv[]) {
    // The heights are defined for 96 DPI and the platform's default font.
    qputenv("QT_FONT_DPI", "96");
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    TestForms test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_forms.moc"
