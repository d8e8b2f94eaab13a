// The program's windows as an operator meets them: each tab's caption, a screen reader
// names and reaches every control, and the main window fits the heights the status panel
// works with.

#include "TestSupport.h"
#include "server/ServerControl.h"
#include "server/ServerWindow.h"
#include "ui/SecretWindow.h"

#include <QAccessible>
#include <QDialog>
#include <QFormLayout>
#include <QtTest>

namespace {

// The window height with the status panel closed, at 96 DPI.
constexpr int ClosedHeight = 386;

// The controls of a tab or window that take the focus, as a screen reader meets them: not
// the parts of Qt's own widgets, nor the lists the program keeps hidden. A window is met
// itself too: its title is spoken when it opens.
QList<QWidget*> focusable(QWidget* root) {
    QList<QWidget*> result;
    if (root->isWindow())
        result.append(root);
    for (QWidget* w : root->findChildren<QWidget*>()) {
        bool skip = w->window() != root->window() || w->focusProxy() ||
                    !(w->focusPolicy() & Qt::TabFocus) ||
                    (w->isHidden() && w->testAttribute(Qt::WA_WState_ExplicitShowHide));
        for (QWidget* up = w; up != root && !skip; up = up->parentWidget())
            skip =
                up->objectName().startsWith(QLatin1String("qt_")) || qobject_cast<QTabWidget*>(up);
        if (!skip)
            result.append(w);
    }
    return result;
}

// Widgets in the order their layouts place them: box layouts item by item, grids and
// forms row by row.
void readingOrder(QWidget* w, QList<QWidget*>& order);
void readingOrder(QLayout* layout, QList<QWidget*>& order) {
    std::vector<std::tuple<int, int, int, QLayoutItem*>> items; // row, column, layout order
    for (int i = 0; i < layout->count(); ++i) {
        int row = i, column = 0, span = 0;
        QFormLayout::ItemRole role = QFormLayout::LabelRole;
        if (auto* grid = qobject_cast<QGridLayout*>(layout))
            grid->getItemPosition(i, &row, &column, &span, &span);
        else if (auto* form = qobject_cast<QFormLayout*>(layout))
            form->getItemPosition(i, &row, &role), column = role;
        items.emplace_back(row, column, i, layout->itemAt(i));
    }
    std::sort(items.begin(), items.end());
    for (const auto& [row, column, index, item] : items) {
        if (item->widget())
            readingOrder(item->widget(), order);
        else if (item->layout())
            readingOrder(item->layout(), order);
    }
}
void readingOrder(QWidget* w, QList<QWidget*>& order) {
    order.append(w);
    if (w->layout())
        return readingOrder(w->layout(), order);
    for (QWidget* child : w->findChildren<QWidget*>(Qt::FindDirectChildrenOnly))
        readingOrder(child, order);
}

QRect rectIn(const QWidget* w, const QWidget* ancestor) {
    return QRect(w->mapTo(ancestor, QPoint(0, 0)), w->size());
}

} // namespace

class TestForms : public QObject {
    Q_OBJECT
public:
    // The heights are defined for 96 DPI and the platform's default font.
    static void initMain() {
        qputenv("QT_FONT_DPI", "96");
        if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
            qputenv("QT_QPA_PLATFORM", "offscreen");
    }

private slots:
    void initTestCase();
    void screenReaderMeetsEveryControl_data();
    void screenReaderMeetsEveryControl();
    void accessibleTreeNamesEveryFocusable();
    void windowFitsClosedHeight();

private:
    // The real windows, named as the program names them at start-up.
    std::unique_ptr<halvane::test::TestPlatform> m_platform;
    std::unique_ptr<halvane::MainWindow> m_window;
    QList<QWidget*> m_readerRoots;
};

void TestForms::initTestCase() {
    m_platform = std::make_unique<halvane::test::TestPlatform>();
    m_platform->makeGameFolder();
    m_window = std::make_unique<halvane::MainWindow>(*m_platform->app);
    m_window->start();
    new halvane::SecretWindow(*m_window); // made on demand by the program
    m_window->pathDialog().form();        // built when first shown
    m_readerRoots = {m_window.get(), &m_window->pathDialog()};
    for (int i = 0; i < m_window->form().SSTab1->count(); ++i)
        m_readerRoots.append(m_window->form().SSTab1->widget(i));
    for (QDialog* dialog : m_window->findChildren<QDialog*>())
        m_readerRoots.append(dialog);
    m_readerRoots.append(&m_window->servers().serverWindow());
}

// A screen reader names every control that takes the focus, and never two controls of a
// tab or window alike; Tab moves on to the control the eye reads next.
void TestForms::screenReaderMeetsEveryControl_data() {
    QTest::addColumn<QWidget*>("root");
    QTest::addColumn<QWidget*>("control");
    for (QWidget* root : std::as_const(m_readerRoots))
        for (QWidget* w : focusable(root))
            QTest::addRow("%s/%s", qPrintable(root->objectName()), qPrintable(w->objectName()))
                << root << w;
}

void TestForms::screenReaderMeetsEveryControl() {
    QFETCH(QWidget*, root);
    QFETCH(QWidget*, control);
    const QList<QWidget*> controls = focusable(root);
    QStringList names;
    for (QWidget* w : controls)
        names.append(QAccessible::queryAccessibleInterface(w)->text(QAccessible::Name).trimmed());
    const QString name = names.at(controls.indexOf(control));
    QVERIFY2(!name.isEmpty(), "no accessible name");
    QVERIFY2(names.count(name) == 1, qPrintable(name + " names another control here too"));

    QList<QWidget*> reading;
    readingOrder(root, reading);
    reading.removeIf([&](QWidget* w) { return !controls.contains(w); });
    QVERIFY2(reading.contains(control), "not in its window's layout");
    QList<QWidget*> tabbing;
    QWidget* w = root->window();
    do {
        if (controls.contains(w) && !tabbing.contains(w))
            tabbing.append(w);
        w = w->nextInFocusChain();
    } while (w != root->window());
    const auto before = [&](const QList<QWidget*>& order) {
        const qsizetype i = order.indexOf(control);
        return i > 0 ? order[i - 1]->objectName() : QStringLiteral("(first)");
    };
    QCOMPARE(before(tabbing), before(reading));
}

// What a screen reader walks: the accessible objects of each window, the parts of composite
// controls included (the edit box of an editable selector is announced by itself); not the
// lists the program keeps hidden, but every page of a stack, which shows when chosen.
void TestForms::accessibleTreeNamesEveryFocusable() {
    QStringList unnamed;
    const std::function<void(QAccessibleInterface*, const QString&)> walk =
        [&](QAccessibleInterface* node, const QString& path) {
            const auto* w = qobject_cast<const QWidget*>(node->object());
            if (w && w->isHidden() && w->testAttribute(Qt::WA_WState_ExplicitShowHide) &&
                !qobject_cast<const QStackedWidget*>(w->parentWidget()))
                return;
            if (node->state().focusable && node->text(QAccessible::Name).trimmed().isEmpty())
                unnamed << path;
            for (int i = 0; i < node->childCount(); ++i)
                if (QAccessibleInterface* child = node->child(i))
                    walk(child, path + '/' +
                                    (child->object() ? child->object()->metaObject()->className()
                                                     : "item"));
        };
    for (QWidget* root : std::as_const(m_readerRoots))
        walk(QAccessible::queryAccessibleInterface(root), root->objectName());
    QVERIFY2(unnamed.isEmpty(), qPrintable(unnamed.join(' ')));
}

// The tabs' captions; with the status panel closed every tab still shows all of its controls
// above the buttons, which sit inside the window; the tip line is cut off but the status bar
// stays to be clicked.
void TestForms::windowFitsClosedHeight() {
    // A fresh window from the form alone, so nothing the program does sizes it.
    const auto window = std::make_unique<QMainWindow>();
    Ui::frmMain form;
    form.setupUi(window.get());
    window->resize(window->width(), ClosedHeight);
    window->show();
    QVERIFY(QTest::qWaitForWindowExposed(window.get()));
    window->layout()->activate();
    QCoreApplication::processEvents();
    QCOMPARE(window->height(), ClosedHeight); // else the layouts need more than it
    const int buttonTop = rectIn(form.cmdStart, window.get()).top();
    // Each tab's caption, with a control that must sit on its page.
    const std::pair<const char*, const char*> tabs[] = {
        {" &General  ", "Frame4"}, {"&Bots ", "Frame16"},       {" &Maps  ", "Picture3"},
        {" &Options  ", "Frame1"}, {" A&dvanced  ", "Frame10"}, {" &About  ", "lblVersion"}};
    QCOMPARE(form.SSTab1->count(), 6);
    for (int index = 0; index < form.SSTab1->count(); ++index) {
        form.SSTab1->setCurrentIndex(index);
        QCoreApplication::processEvents();
        QWidget* page = form.SSTab1->widget(index);
        QCOMPARE(form.SSTab1->tabText(index), tabs[index].first);
        QVERIFY(page->isAncestorOf(window->findChild<QWidget*>(tabs[index].second)));
        // The page's size where its needs exceed it, shown with both sizes.
        QCOMPARE(page->minimumSizeHint().boundedTo(page->size()), page->minimumSizeHint());
        // The controls an operator reads or operates, named by the form: not Qt's internals.
        for (QWidget* w : page->findChildren<QWidget*>()) {
            if (w->objectName().isEmpty() || w->objectName().startsWith(QLatin1String("qt_")) ||
                !(qobject_cast<QLabel*>(w) || qobject_cast<QLineEdit*>(w) ||
                  qobject_cast<QComboBox*>(w) || qobject_cast<QAbstractButton*>(w) ||
                  qobject_cast<QListView*>(w)))
                continue;
            const QRect r = rectIn(w, page);
            QVERIFY2(
                !w->isVisibleTo(page) ||
                    (page->rect().contains(r) && rectIn(w, window.get()).bottom() < buttonTop &&
                     r.height() >= qMin(w->minimumSizeHint().height(), w->sizeHint().height())),
                qPrintable(w->objectName() + " is clipped, squeezed or reaches the buttons"));
        }
    }
    const int tabsBottom = rectIn(form.SSTab1, window.get()).bottom();
    for (QWidget* button : {form.cmdStart, form.cmdClose, form.cmdSetPath}) {
        const QRect r = rectIn(button, window.get());
        QVERIFY(r.top() > tabsBottom && r.bottom() < ClosedHeight);
    }
    const int tipShown = form.scrTip->height();
    QVERIFY2(tipShown < form.txtTip->fontMetrics().height(),
             qPrintable(QStringLiteral("%1 px of the tip line show").arg(tipShown)));
    const QRect bar = rectIn(form.btnStatus, window.get());
    QVERIFY(bar.height() > 0 && bar.bottom() < ClosedHeight &&
            bar.top() > rectIn(form.cmdStart, window.get()).bottom());
}

QTEST_MAIN(TestForms)
#include "tst_forms.moc"
