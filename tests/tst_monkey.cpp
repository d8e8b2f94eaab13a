// Ten thousand random operator actions on the real main window (buttons, menu
// items, typing, selectors, map entries, tabs; message boxes and file dialogs
// answered at random). After each the program must still answer with no modal
// window open; at the end the catalogue holds whole records, mapsel.txt names
// only catalogue maps and a save followed by a load reproduces the settings.
#include "TestSupport.h"

#include "maps/MapDiscovery.h"
#include "maps/MapSelection.h"
#include "maps/MapSelectionFile.h"
#include "maps/MapsController.h"
#include "settings/SettingsController.h"
#include "ui/MainForm.h"
#include "ui/MainWindow.h"
#include "ui/ProfileCommands.h"

#include <QtTest>
#include <random>

using namespace halvane;
using namespace halvane::test;

namespace {

// The enabled widgets of a kind in the windows on screen.
template <class T> QList<T*> reachable() {
    QList<T*> found;
    for (QWidget* top : QApplication::topLevelWidgets()) {
        for (T* widget : top->isVisible() ? top->findChildren<T*>() : QList<T*>()) {
            if (widget->isVisible() && widget->isEnabled())
                found.append(widget);
        }
    }
    return found;
}

struct Monkey {
    std::mt19937 random;
    int below(qsizetype n) { return n <= 0 ? 0 : int(random() % quint32(n)); }
    template <class T> T* any(const QList<T*>& list) {
        return list.isEmpty() ? nullptr : list[below(list.size())];
    }
    // The status panel rolls for a second: one pick in ten keeps the run to minutes.
    bool rolls(const QObject* control) {
        return control->objectName().contains("Status") && below(10) > 0;
    }
    // One action, described; empty when the pick found nothing to act on.
    QString act(MainWindow& window) {
        MainForm& ui = window.form();
        const int kind = below(6);
        if (auto* button = kind == 0 ? any(reachable<QAbstractButton>()) : nullptr) {
            // Add Server… opens a dialog that waits for the operator by design.
            if (rolls(button) || button->objectName() == "cmdAddServer")
                return {};
            button->click();
            return "click " + button->objectName();
        }
        QMenu* menu =
            kind == 1 && window.isEnabled() ? any(window.findChildren<QMenu*>()) : nullptr;
        if (menu == ui.mnuMapList && ui.MapList->isVisible())
            emit ui.MapList->customContextMenuRequested(QPoint(2, 2)); // the right button
        else if (menu == ui.mnuMapList)
            menu = nullptr; // that popup opens over the list only
        QList<QAction*> items;
        for (QAction* item : menu ? menu->actions() : QList<QAction*>()) {
            if (!item->isSeparator() && !item->menu() && item->isEnabled() && !rolls(item))
                items.append(item);
        }
        if (QAction* item = any(items)) {
            item->trigger();
            return "menu " + item->objectName();
        }
        if (auto* box = kind == 2 ? any(reachable<QLineEdit>()) : nullptr) {
            static const QString letters = QStringLiteral("admctfourney019 _-./\\\"%;é€");
            QString typed;
            for (int n = below(12); n > 0; --n)
                typed += letters[below(letters.size())];
            if (below(2))
                box->selectAll();
            for (const QChar c : typed) // QTest spells only ASCII keys itself
                QTest::sendKeyEvent(QTest::Click, box, Qt::Key_unknown, QString(c), {});
            QTest::keyClick(box, below(8) ? Qt::Key_End : Qt::Key_Return);
            return "type '" + typed + "' into " + box->objectName();
        }
        if (auto* selector = kind == 3 ? any(reachable<QComboBox>()) : nullptr) {
            const int entry = below(selector->count());
            selector->setCurrentIndex(entry);
            emit selector->activated(entry);
            return QStringLiteral("choose %1 in %2").arg(entry).arg(selector->objectName());
        }
        QListView* list = kind == 4 ? any(reachable<QListView>()) : nullptr;
        if (list && list->model()->rowCount()) {
            const QModelIndex entry = list->model()->index(below(list->model()->rowCount()), 0);
            if ((entry.flags() & Qt::ItemIsUserCheckable) && below(2)) {
                const bool checked = entry.data(Qt::CheckStateRole).toInt() == Qt::Checked;
                list->model()->setData(entry, checked ? Qt::Unchecked : Qt::Checked,
                                       Qt::CheckStateRole);
            }
            const QString what = entry.data().toString() + " in " + list->objectName(); // it may go
            clickEntry(list, entry.row(), // none, Shift or Control
                       Qt::KeyboardModifiers(below(3) * Qt::ShiftModifier));
            return "click " + what;
        }
        if (auto* tabs = kind == 5 ? any(reachable<QTabWidget>()) : nullptr) {
            const int tab = below(tabs->count());
            QTest::mouseClick(tabs->tabBar(), Qt::LeftButton, // Shift opens a hidden window
                              below(20) ? Qt::NoModifier : Qt::ShiftModifier,
                              tabs->tabBar()->tabRect(tab).center());
            return QStringLiteral("tab %1").arg(tab);
        }
        return {};
    }
};

std::unique_ptr<MainWindow> startWindow(TestPlatform& platform, Prompts& prompts) {
    auto window = std::make_unique<MainWindow>(*platform.app);
    window->profiles().setStore(ProfileStore(platform.root() + "/profiles"));
    window->profiles().setPrompts(prompts);
    QObject::disconnect(&window->maps().selection(), &MapSelection::mapListMenuRequested, nullptr,
                        nullptr); // the menu's items are triggered, not the popup opened
    window->maps().discovery().setPacing({0, 0});
    window->showMainWindow();
    return window;
}

} // namespace

class MonkeyTest : public QObject {
    Q_OBJECT
private slots:
    void randomOperatorLeavesEverythingWhole();
};

void MonkeyTest::randomOperatorLeavesEverythingWhole() {
    const uint seed = qEnvironmentVariable("HALVANE_MONKEY_SEED", "20240611").toUInt();
    qInfo("monkey seed %u (HALVANE_MONKEY_SEED replays another)", seed);
    Monkey monkey{std::mt19937(seed)};
    TestPlatform platform;
    platform.makeGameFolder();
    const QString program = platform.programFolder(), baseq3 = platform.gameFolder() + "/baseq3";
    for (const char* file : {"/maps.dat", "/instmaps.dat"})
        platform.writeFile(program + file, readAll(HALVANE_BIN_DIR "/instmaps.dat"));
    platform.writeFile(program + "/Maps/DEFAULT.jpg", readAll(HALVANE_BIN_DIR "/maps/default.jpg"));
    platform.writeFile(baseq3 + "/maps/mk_dm1.bsp", "IBSP");
    platform.writeFile(baseq3 + "/extra.cfg", "set x 1\r\n");
    QVERIFY(makeArchive(baseq3 + "/extra.pk3", {"maps/ex_ctf1.bsp", "maps/ex_tourney2.bsp"}));
    platform.messages.onShow = [&](const ShownMessage&) {
        platform.messages.answers = {monkey.below(2) ? MsgAnswer::Yes : MsgAnswer::No};
    };

    FakePrompts prompts; // profile names, a device name among them, drawn apart
    std::mt19937 naming(seed);
    std::unique_ptr<MainWindow> window = startWindow(platform, prompts);
    for (int n = 1; n <= 10000; ++n) {
        const std::optional<QString> names[] = {{}, "Alpha", "Beta", "con"};
        prompts.answers = {names[naming() % 4], names[naming() % 4]};
        const FileChoice choices[] = {{},
                                      {true, platform.gameFolder() + "/quake3.exe", "quake3.exe"},
                                      {true, platform.root() + "/saved.cfg", "saved.cfg"}};
        platform.dialogs.choices = {choices[monkey.below(3)]};
        // Runs once the program answers, finding any modal window left open.
        QString answered;
        QTimer::singleShot(0, qApp, [&] {
            answered = "answered";
            for (QWidget* open : {qApp->activeModalWidget(), qApp->activePopupWidget()}) {
                // A dialog opened to wait for the operator (Add Server) blocks
                // nothing: closed as a Cancel would.
                const bool waits = open && open->windowModality() == Qt::WindowModal;
                if (open && open->close() && !waits) // closed, so that the run can go on
                    answered = QString("left open: ") + open->metaObject()->className();
            }
        });
        QString action;
        while (action.isEmpty())
            action = monkey.act(*window);
        QCoreApplication::processEvents();
        QVERIFY2(
            answered == "answered",
            qPrintable(QStringLiteral("%1 at action %2, %3").arg(answered).arg(n).arg(action)));
        if (window->hasEnded()) // closed by the operator or the program: the next run
            window = startWindow(platform, prompts);
    }

    if (window->pathDialog().isVisible())
        window->pathDialog().close(); // as Cancel, back to the main window
    platform.store->writes.clear();
    QVERIFY(window->settings().SaveSettings());
    const QStringList saved = platform.store->writes;
    window->close();
    QVERIFY(window->hasEnded());
    QCOMPARE(readAll(program + "/maps.dat").size() % MapRecord::Size, 0);
    for (const QString& line : splitTextLines(readAll(program + "/mapsel.txt")))
        QVERIFY2(window->mapCatalogue().FindMap(line) >= 1, qPrintable(line));

    window.reset();
    platform.reopenStore();
    platform.messages.onShow = nullptr;
    platform.messages.answers = QList<MsgAnswer>(10, MsgAnswer::Yes);
    window = startWindow(platform, prompts);
    window->settings().LoadSettings(); // the stored tab, which the start leaves for the first
    platform.store->writes.clear();
    QVERIFY(window->settings().SaveSettings());
    QCOMPARE(platform.store->writes, saved);
}

QTEST_MAIN(MonkeyTest)
#include "tst_monkey.moc"
