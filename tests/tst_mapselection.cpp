// The Maps tab in the real main window: the two lists and their buttons,
// mapsel.txt, the rule boxes and "Use Settings as Default", the map editor,
// the game-type suggestions and the write-back at closing.
#include "TestSupport.h"

#include "maps/MapCatalogue.h"
#include "maps/MapDiscovery.h"
#include "maps/MapEditor.h"
#include "maps/MapRulesPanel.h"
#include "maps/MapSelection.h"
#include "maps/MapsController.h"
#include "ui/MainWindow.h"
#include "ui_frmMain.h"
#include "ui_frmMap.h"

#include <QtTest>
#include <zip.h>

using namespace halvane;
using namespace halvane::test;

namespace {
QByteArray catalogueOf(const QStringList& files) {
    QByteArray bytes;
    for (const QString& file : files) {
        const MapRecord record = makeMapRecord(file.isEmpty() ? QString() : "Name of " + file, file,
                                               MapRules::builtIn());
        bytes.append(record.bytes(), MapRecord::Size);
    }
    return bytes;
}

QStringList entries(const QListWidget* list) {
    QStringList texts;
    for (int i = 0; i < list->count(); ++i)
        texts.append(list->item(i)->text());
    return texts;
}

QStringList highlighted(const QListWidget* list) {
    QStringList texts;
    for (int i = 0; i < list->count(); ++i) {
        if (list->item(i)->isSelected())
            texts.append(list->item(i)->text());
    }
    return texts;
}

// A main window over a catalogue of these maps and, when given, mapsel.txt.
struct Window {
    TestPlatform platform;
    std::unique_ptr<MainWindow> window;
    Ui::frmMain* ui = nullptr;

    explicit Window(const QStringList& maps, const QByteArray* selection = nullptr) {
        platform.makeGameFolder();
        platform.writeFile(platform.programFolder() + "/maps.dat", catalogueOf(maps));
        if (selection)
            platform.writeFile(platform.programFolder() + "/mapsel.txt", *selection);
        window = std::make_unique<MainWindow>(*platform.app);
        window->showMainWindow();
        ui = &window->form();
    }
    MapsController& maps() { return window->maps(); }
    MapCatalogue& catalogue() { return maps().catalogue(); }
    QString dataPath() const { return platform.programFolder() + "/maps.dat"; }
    MapRecord record(int n) { return catalogue().snapshot().record(n); }
    void highlightInMapList(const QStringList& names) {
        ui->MapList->clearSelection();
        for (int i = 0; i < ui->MapList->count(); ++i) {
            if (names.contains(ui->MapList->item(i)->text()))
                ui->MapList->item(i)->setSelected(true);
        }
    }
};

const QByteArray FiveSelected = "m1\r\nm2\r\nm3\r\nm4\r\nm5\r\n";
const QStringList Eight{"m1", "m2", "m3", "m4", "m5", "ma", "mb", "mc"};
} // namespace

class MapSelectionTest : public QObject {
    Q_OBJECT
private slots:
    void loadFillsListsAndCaptions();
    void selectionFileAcceptance();
    void selectionFileIsWrittenAtClosing();
    void emptySelectionWritesAnEmptyFile();
    void addInsertsAfterTheHighlightedSelection();
    void addAppendsWithoutAHighlightedSelection();
    void removeHighlightsTheNeighbour();
    void upAndDown_data();
    void upAndDown();
    void randomizeTwoEntries();
    void randomizeNeedsTwo();
    void randomizeKeepsEveryEntry();
    void gameTypeButtons();
    void popupMenuFollowsHighlight_data();
    void popupMenuFollowsHighlight();
    void choosingAnotherMapCommitsTheShownOne();
    void blankNameCommitsNothing();
    void ruleBoxLengths();
    void vanishedMapEndsTheProgram();
    void useSettingsAsDefault();
    void useSettingsAsDefaultAnsweredNo();
    void useSettingsAsDefaultRegistryFailure();
    void useSettingsAsDefaultOnEmptyCatalogue();
    void useSettingsAsDefaultStageFailures();
    void unwritableSelectionFile();
    void deleteWithoutAMap();
    void searchFromTheButtonAndAtStartup();
    void editorChecks_data();
    void editorChecks();
    void addWithOnlyAFileName();
    void addExistingMapIsRefused();
    void addToAnEmptyListWritesRecordOne();
    void newMapDialogDropsUncommittedEdits();
    void editRenamesTheMap();
    void deleteLeavesASlot();
    void deletedMapLeftInTheSelectionEndsTheProgram();
    void tourneySuggestion();
    void noSuggestionWhenTheHighlightFits();
    void closingWritesTheShownMapBack_data();
    void closingWritesTheShownMapBack();
};

void MapSelectionTest::loadFillsListsAndCaptions() {
    Window w({"a", "", "c"});
    QCOMPARE(entries(w.ui->MapList), QStringList({"a", "c"}));
    QCOMPARE(w.ui->Frame14->title(), QStringLiteral("2 Available Maps"));
    QCOMPARE(w.ui->Frame15->title(), QStringLiteral("0 Maps Selected"));
    QCOMPARE(w.ui->lblMapFilename->text(), QStringLiteral("a"));
    QCOMPARE(w.ui->lblMap->text(), QStringLiteral("Name of a"));
    QCOMPARE(w.ui->txtMapKnockback->text(), QStringLiteral("1000"));
    QCOMPARE(w.catalogue().CurrentMapRecord, qint16(1));
}

void MapSelectionTest::selectionFileAcceptance() {
    const QByteArray selection = "// q3dm2\r\n\r\n   \r\n  Q3DM2 \r\nunknown\r\nq3dm1\nq3dm2";
    Window w({"q3dm1", "q3dm2"}, &selection);
    QCOMPARE(entries(w.ui->SelMap), QStringList({"  Q3DM2 ", "q3dm1", "q3dm2"}));
    QCOMPARE(w.ui->Frame15->title(), QStringLiteral("3 Maps Selected"));
    // The first selected map is the one shown.
    QCOMPARE(w.ui->lblMapFilename->text(), QStringLiteral("q3dm2"));
    QCOMPARE(w.maps().selectedMaps(), entries(w.ui->SelMap));
}

void MapSelectionTest::selectionFileIsWrittenAtClosing() {
    const QByteArray selection = "b\nunknown\n a\n";
    Window w({"a", "b"}, &selection);
    w.ui->cmdMapDm->click(); // no dm maps: nothing added
    w.window->close();
    QCOMPARE(readAll(w.platform.programFolder() + "/mapsel.txt"), QByteArray("b\r\n a\r\n"));
}

void MapSelectionTest::emptySelectionWritesAnEmptyFile() {
    const QByteArray selection = "a\r\n";
    Window w({"a"}, &selection);
    w.ui->cmdMapClearAll->click();
    QCOMPARE(w.ui->Frame15->title(), QStringLiteral("0 Maps Selected"));
    w.maps().SaveMaps();
    QVERIFY(QFile::exists(w.platform.programFolder() + "/mapsel.txt"));
    QCOMPARE(readAll(w.platform.programFolder() + "/mapsel.txt"), QByteArray());
}

void MapSelectionTest::addInsertsAfterTheHighlightedSelection() {
    Window w(Eight, &FiveSelected);
    w.ui->SelMap->setCurrentRow(1);
    w.highlightInMapList({"ma", "mb", "mc"});
    w.ui->cmdAddSelMap->click();
    QCOMPARE(entries(w.ui->SelMap), QStringList({"m1", "m2", "mc", "mb", "ma", "m3", "m4", "m5"}));
    QCOMPARE(w.ui->Frame15->title(), QStringLiteral("8 Maps Selected"));
    QCOMPARE(highlighted(w.ui->MapList), QStringList({"mc"}));
    QCOMPARE(w.ui->MapList->currentItem()->text(), QStringLiteral("mc"));
    QCOMPARE(w.ui->lblMapFilename->text(), QStringLiteral("mc"));
}

void MapSelectionTest::addAppendsWithoutAHighlightedSelection() {
    Window w(Eight, &FiveSelected);
    w.ui->SelMap->clearSelection();
    w.highlightInMapList({"mb", "m1", "mc"});
    w.ui->MapList->itemDoubleClicked(w.ui->MapList->item(0)); // same as ">>"
    QCOMPARE(entries(w.ui->SelMap), QStringList({"m1", "m2", "m3", "m4", "m5", "m1", "mb", "mc"}));
    QCOMPARE(highlighted(w.ui->SelMap), QStringList({"mc"}));
}

void MapSelectionTest::removeHighlightsTheNeighbour() {
    Window w(Eight, &FiveSelected);
    w.ui->SelMap->setCurrentRow(4);
    w.ui->cmdRemSelMap->click();
    QCOMPARE(entries(w.ui->SelMap), QStringList({"m1", "m2", "m3", "m4"}));
    QCOMPARE(w.ui->SelMap->currentRow(), 3);
    QCOMPARE(w.ui->Frame15->title(), QStringLiteral("4 Maps Selected"));
    w.ui->SelMap->setCurrentRow(1);
    w.ui->SelMap->itemDoubleClicked(w.ui->SelMap->item(1));
    QCOMPARE(entries(w.ui->SelMap), QStringList({"m1", "m3", "m4"}));
    QCOMPARE(w.ui->SelMap->currentRow(), 1);
    QCOMPARE(w.ui->lblMapFilename->text(), QStringLiteral("m3"));
}

void MapSelectionTest::upAndDown_data() {
    QTest::addColumn<int>("row");
    QTest::addColumn<bool>("up");
    QTest::addColumn<QStringList>("order");
    QTest::addColumn<int>("highlight");
    QTest::newRow("up on the first") << 0 << true << QStringList{"m1", "m2", "m3", "m4", "m5"} << 0;
    QTest::newRow("down on the last")
        << 4 << false << QStringList{"m1", "m2", "m3", "m4", "m5"} << 4;
    QTest::newRow("up in the middle")
        << 2 << true << QStringList{"m1", "m3", "m2", "m4", "m5"} << 1;
    QTest::newRow("down in the middle")
        << 2 << false << QStringList{"m1", "m2", "m4", "m3", "m5"} << 3;
    QTest::newRow("down onto the last")
        << 3 << false << QStringList{"m1", "m2", "m3", "m5", "m4"} << 4;
    QTest::newRow("nothing highlighted")
        << -1 << true << QStringList{"m1", "m2", "m3", "m4", "m5"} << -1;
}

void MapSelectionTest::upAndDown() {
    QFETCH(int, row);
    QFETCH(bool, up);
    QFETCH(QStringList, order);
    QFETCH(int, highlight);
    Window w(Eight, &FiveSelected);
    if (row < 0)
        w.ui->SelMap->clearSelection();
    else
        w.ui->SelMap->setCurrentRow(row);
    (up ? w.ui->cmdMapUp : w.ui->cmdMapDown)->click();
    QCOMPARE(entries(w.ui->SelMap), order);
    if (highlight >= 0)
        QCOMPARE(w.ui->SelMap->row(w.ui->SelMap->selectedItems().value(0)), highlight);
    else
        QVERIFY(w.ui->SelMap->selectedItems().isEmpty());
    QVERIFY(w.platform.messages.shown.isEmpty());
}

void MapSelectionTest::randomizeTwoEntries() {
    const QByteArray two = "a\r\nb\r\n";
    for (int run = 0; run < 20; ++run) {
        Window w({"a", "b"}, &two);
        w.ui->cmdRandomize->click();
        const QStringList order = entries(w.ui->SelMap);
        QVERIFY(order == QStringList({"a", "b"}) || order == QStringList({"b", "a"}));
        QCOMPARE(w.platform.desktop.busyDepth, 0);
    }
}

void MapSelectionTest::randomizeNeedsTwo() {
    const QByteArray one = "a\r\n";
    Window w({"a", "b"}, &one);
    w.ui->cmdRandomize->click();
    QCOMPARE(entries(w.ui->SelMap), QStringList({"a"}));
    QCOMPARE(w.platform.messages.shown.size(), 1);
    const ShownMessage& shown = w.platform.messages.shown.first();
    QCOMPARE(shown.title, QStringLiteral("Notice"));
    QCOMPARE(shown.text, QStringLiteral("You need to have at least two maps selected for this "
                                        "feature to work (think about it)."));
    QCOMPARE(shown.buttons, MsgButtons::Ok);
    QCOMPARE(shown.icon, MsgIcon::Information);
}

void MapSelectionTest::randomizeKeepsEveryEntry() {
    Window w(Eight, &FiveSelected);
    w.ui->cmdMapDm->click(); // no dm maps here: nothing changes
    w.ui->SelMap->addItems({"ma", "mb", "mc", "ma"});
    const QStringList before = entries(w.ui->SelMap);
    bool moved = false;
    for (int run = 0; run < 5 && !moved; ++run) {
        w.ui->cmdRandomize->click();
        QStringList after = entries(w.ui->SelMap);
        moved = after != before;
        QStringList sortedAfter = after, sortedBefore = before;
        sortedAfter.sort();
        sortedBefore.sort();
        QCOMPARE(sortedAfter, sortedBefore);
    }
    QVERIFY2(moved, "five shuffles of nine maps never changed the order");
}

void MapSelectionTest::gameTypeButtons() {
    Window w({"q3dm1", "q3ctf1", "MYCTF", "q3tourney2", "DMx", "other"});
    w.ui->cmdMapCtf->click();
    w.ui->cmdMapCtf->click();
    QCOMPARE(entries(w.ui->SelMap), QStringList({"q3ctf1", "MYCTF", "q3ctf1", "MYCTF"}));
    w.ui->cmdMapClearAll->click();
    w.ui->cmdMapDm->click();
    w.ui->cmdMapTourney->click();
    QCOMPARE(entries(w.ui->SelMap), QStringList({"q3dm1", "DMx", "q3tourney2"}));
    QCOMPARE(w.ui->Frame15->title(), QStringLiteral("3 Maps Selected"));
    w.ui->cmdMapSelectAll->click();
    QCOMPARE(highlighted(w.ui->MapList).size(), 6);
    QCOMPARE(w.ui->SelMap->count(), 3);
}

void MapSelectionTest::popupMenuFollowsHighlight_data() {
    QTest::addColumn<QStringList>("highlight");
    QTest::addColumn<bool>("single");
    QTest::addColumn<bool>("select");
    QTest::addColumn<QString>("caption");
    QTest::newRow("none") << QStringList() << false << false << "Select map";
    QTest::newRow("one") << QStringList{"a"} << true << true << "Select this map";
    QTest::newRow("two") << QStringList{"a", "c"} << false << true << "Select these maps";
}

void MapSelectionTest::popupMenuFollowsHighlight() {
    QFETCH(QStringList, highlight);
    QFETCH(bool, single);
    QFETCH(bool, select);
    QFETCH(QString, caption);
    Window w({"a", "b", "c"});
    QPoint opened(-1, -1);
    w.maps().selection().openPopup = [&](const QPoint& at) { opened = at; };
    w.highlightInMapList(highlight);
    emit w.ui->MapList->customContextMenuRequested(QPoint(5, 5));
    QVERIFY(opened != QPoint(-1, -1));
    QCOMPARE(w.ui->mnuMapEdit->isEnabled(), single);
    QCOMPARE(w.ui->mnuMapDelete->isEnabled(), single);
    QCOMPARE(w.ui->mnuMapSelect->isEnabled(), select);
    QCOMPARE(w.ui->mnuMapSelect->text(), caption);
    if (select) {
        w.ui->mnuMapSelect->trigger();
        QCOMPARE(entries(w.ui->SelMap), highlight);
    }
}

void MapSelectionTest::choosingAnotherMapCommitsTheShownOne() {
    Window w({"a", "b"});
    w.ui->txtMapFragLimit->setText("5");
    w.ui->txtMapGravity->setText("");
    w.ui->lblMap->setText("A new name that is much longer than thirty");
    w.ui->MapList->setCurrentRow(1);
    QCOMPARE(w.ui->lblMapFilename->text(), QStringLiteral("b"));
    const MapRecord a = w.record(1);
    QCOMPARE(a.get(MapField::FragLimit), QStringLiteral("5"));
    QCOMPARE(a.get(MapField::Gravity), QString());
    QCOMPARE(a.get(MapField::DisplayName), QStringLiteral("A new name that is much longer"));
    QCOMPARE(a.get(MapField::FileName), QStringLiteral("a"));
    w.ui->MapList->setCurrentRow(0);
    QCOMPARE(w.ui->lblMap->text(), QStringLiteral("A new name that is much longer"));
    QCOMPARE(w.ui->txtMapGravity->text(), QString());
}

void MapSelectionTest::blankNameCommitsNothing() {
    Window w({"a", "b"});
    const QByteArray before = readAll(w.dataPath());
    w.ui->lblMap->setText("   ");
    w.ui->txtMapFragLimit->setText("5");
    w.ui->MapList->setCurrentRow(1);
    QCOMPARE(readAll(w.dataPath()), before);
    w.maps().CommitShownMap(); // b is shown and unchanged
    QCOMPARE(readAll(w.dataPath()), before);
}

void MapSelectionTest::ruleBoxLengths() {
    Window w({"a"});
    QCOMPARE(w.ui->txtMapTimeLimit->maxLength(), 3);
    QCOMPARE(w.ui->txtMapFragLimit->maxLength(), 3);
    QCOMPARE(w.ui->txtMapCapturelimit->maxLength(), 3);
    QCOMPARE(w.ui->txtMapSpeed->maxLength(), 4);
    QCOMPARE(w.ui->txtMapGravity->maxLength(), 4);
    QCOMPARE(w.ui->txtMapKnockback->maxLength(), 4);
}

void MapSelectionTest::vanishedMapEndsTheProgram() {
    Window w({"a", "b"});
    // Another program deletes b behind our back.
    w.platform.writeFile(w.dataPath(), catalogueOf({"a", ""}));
    w.ui->MapList->setCurrentRow(1);
    QCOMPARE(w.platform.messages.shown.size(), 1);
    const ShownMessage& shown = w.platform.messages.shown.first();
    QCOMPARE(shown.title, QStringLiteral("Note"));
    QCOMPARE(shown.text, QStringLiteral("Exiting before going the map data becomes corrupted!"));
    QCOMPARE(shown.icon, MsgIcon::Information);
    QVERIFY(w.catalogue().MapDataDamaged);
    QVERIFY(w.window->hasEnded());
    // Closing wrote nothing back.
    QCOMPARE(readAll(w.dataPath()), catalogueOf({"a", ""}));
}

void MapSelectionTest::useSettingsAsDefault() {
    Window w({"a", "", "b"});
    const QByteArray before = readAll(w.dataPath());
    w.ui->txtMapTimeLimit->setText("15");
    w.ui->txtMapFragLimit->setText("30");
    w.ui->txtMapCapturelimit->setText("5");
    w.ui->txtMapSpeed->setText("400");
    w.ui->txtMapGravity->setText("600");
    w.ui->txtMapKnockback->setText("900");
    w.platform.messages.answers = {MsgAnswer::Yes};
    w.ui->cmdDefault->click();
    QCOMPARE(w.platform.messages.shown.size(), 1);
    const ShownMessage& shown = w.platform.messages.shown.first();
    QCOMPARE(shown.title, QStringLiteral("Confirm Default Settings"));
    QCOMPARE(shown.text, QStringLiteral("This will set the current settings for Time Limit, Frag "
                                        "Limit,\rCapture Limit, Speed, Gravity, and Knock Back for "
                                        "all maps,\rand use these settings for any maps you add in "
                                        "the future.\r\rAre you sure you want to do this?"));
    QCOMPARE(shown.buttons, MsgButtons::YesNo);
    QCOMPARE(shown.icon, MsgIcon::Question);
    QCOMPARE(readAll(w.platform.programFolder() + "/maps.bak"), before);
    for (int n = 1; n <= 3; ++n)
        QCOMPARE(QByteArray(w.record(n).bytes() + 50, 21), QByteArray("30 15 5  600 400 900 "));
    QCOMPARE(w.record(1).get(MapField::DisplayName), QStringLiteral("Name of a"));
    QVERIFY(w.record(2).isDeleted());
    w.platform.reopenStore();
    QCOMPARE(w.platform.store->read("Defaults", "KnockBack", "x"), QStringLiteral("900"));
    QCOMPARE(w.platform.store->read("Defaults", "CaptureLimit", "x"), QStringLiteral("5"));
    // New maps get the new defaults.
    QCOMPARE(w.catalogue().DefaultRules.speed, QStringLiteral("400"));
    QCOMPARE(w.platform.desktop.busyDepth, 0);
}

void MapSelectionTest::useSettingsAsDefaultAnsweredNo() {
    Window w({"a"});
    const QByteArray before = readAll(w.dataPath());
    w.ui->txtMapTimeLimit->setText("15");
    w.ui->cmdDefault->click();
    QCOMPARE(readAll(w.dataPath()), before);
    QVERIFY(!QFile::exists(w.platform.programFolder() + "/maps.bak"));
    QVERIFY(w.platform.store->writes.filter("Defaults/").isEmpty());
}

void MapSelectionTest::useSettingsAsDefaultRegistryFailure() {
    Window w({"a"});
    const QByteArray before = readAll(w.dataPath());
    w.platform.store->failAtKey = "TimeLimit";
    w.platform.messages.answers = {MsgAnswer::Yes};
    w.ui->txtMapTimeLimit->setText("15");
    w.ui->cmdDefault->click();
    QCOMPARE(w.platform.messages.shown.size(), 2);
    const ShownMessage& shown = w.platform.messages.shown.last();
    QCOMPARE(shown.text, QStringLiteral("Error writing default values to the registry"));
    QCOMPARE(shown.buttons, MsgButtons::Ok);
    QCOMPARE(shown.icon, MsgIcon::Critical);
    QVERIFY(!shown.title.isEmpty());
    QCOMPARE(readAll(w.dataPath()), before);
    QCOMPARE(w.platform.desktop.busyDepth, 0);
}

void MapSelectionTest::useSettingsAsDefaultOnEmptyCatalogue() {
    Window w({});
    w.platform.messages.answers = {MsgAnswer::Yes};
    w.ui->cmdDefault->click();
    QCOMPARE(w.platform.messages.shown.size(), 1);
    QVERIFY(QFile::exists(w.platform.programFolder() + "/maps.bak"));
    QCOMPARE(readAll(w.platform.programFolder() + "/maps.bak"), QByteArray());
    QCOMPARE(w.platform.store->writes.filter("Defaults/").size(), 6);
}

void MapSelectionTest::useSettingsAsDefaultStageFailures() {
    {
        Window w({"a"});
        const QByteArray before = readAll(w.dataPath());
        w.ui->txtMapSpeed->setText(QString(QChar(0x20AC))); // no single byte for it
        w.platform.messages.answers = {MsgAnswer::Yes};
        w.ui->cmdDefault->click();
        QCOMPARE(w.platform.messages.shown.size(), 2);
        QCOMPARE(w.platform.messages.shown.last().text,
                 QStringLiteral("Error defining default values"));
        QCOMPARE(w.platform.messages.shown.last().icon, MsgIcon::Critical);
        QVERIFY(w.platform.store->writes.filter("Defaults/").isEmpty());
        QCOMPARE(readAll(w.dataPath()), before);
    }
    Window w({"a"});
    // The data file cannot be replaced: a folder stands in its place.
    QFile::remove(w.dataPath());
    QDir().mkpath(w.dataPath());
    w.ui->txtMapSpeed->setText("300");
    w.platform.messages.answers = {MsgAnswer::Yes};
    w.ui->cmdDefault->click();
    QCOMPARE(w.platform.messages.shown.size(), 2);
    const ShownMessage& shown = w.platform.messages.shown.last();
    QCOMPARE(shown.text, QStringLiteral("Error applying default values to the map data file, no "
                                        "changes were made. \r\rHowever, the default values have "
                                        "been stored, and will be used for any maps you add in "
                                        "the future."));
    QCOMPARE(shown.buttons, MsgButtons::Ok);
    QCOMPARE(shown.icon, MsgIcon::Critical);
    QCOMPARE(shown.title, QStringLiteral("Default Settings Not Applied"));
    w.platform.reopenStore();
    QCOMPARE(w.platform.store->read("Defaults", "Speed", "x"), QStringLiteral("300"));
    QCOMPARE(w.platform.desktop.busyDepth, 0);
}

void MapSelectionTest::unwritableSelectionFile() {
    Window w({"a"});
    w.ui->cmdMapSelectAll->click();
    w.ui->cmdAddSelMap->click();
    QDir().mkpath(w.platform.programFolder() + "/mapsel.txt");
    w.window->close();
    QCOMPARE(w.platform.messages.shown.size(), 1);
    const ShownMessage& shown = w.platform.messages.shown.first();
    QCOMPARE(shown.title, QStringLiteral("Warning"));
    QCOMPARE(shown.text, QStringLiteral("Error writing mapsel.txt"));
    QCOMPARE(shown.icon, MsgIcon::Critical);
    // The rest of the shut-down still ran.
    QVERIFY(w.window->hasEnded());
}

void MapSelectionTest::deleteWithoutAMap() {
    Window w({});
    w.platform.messages.answers = {MsgAnswer::Yes};
    w.ui->mnuMapDelete->trigger();
    QCOMPARE(w.platform.messages.shown.size(), 2);
    const ShownMessage& shown = w.platform.messages.shown.last();
    QCOMPARE(shown.title, QStringLiteral("Halvane"));
    QCOMPARE(shown.text, QStringLiteral("No map selected"));
    QCOMPARE(shown.icon, MsgIcon::None);
    QCOMPARE(w.ui->Frame14->title(), QStringLiteral("0 Available Maps"));
}

void MapSelectionTest::searchFromTheButtonAndAtStartup() {
    TestPlatform platform;
    platform.makeGameFolder();
    platform.ini->write("Settings", "CheckNewMaps", "True");
    platform.writeFile(platform.gameFolder() + "/baseq3/maps/loose.bsp", "IBSP");
    // Not a real archive: the start-up search says so and goes on.
    const QString bad = platform.writeFile(platform.gameFolder() + "/baseq3/bad.pk3", "junk");
    MainWindow window(*platform.app);
    window.maps().discovery().pause = [] {};
    window.showMainWindow();
    Ui::frmMain& ui = window.form();
    QVERIFY(ui.mnuSettingsMapCheck->isChecked());
    QCOMPARE(platform.messages.shown.size(), 1);
    QCOMPARE(platform.messages.shown.first().text, "Error: " + QDir::toNativeSeparators(bad));
    QCOMPARE(entries(ui.MapList), QStringList({"loose"}));
    QCOMPARE(ui.Frame14->title(), QStringLiteral("1 Available Maps"));

    QFile::remove(bad);
    platform.writeFile(platform.gameFolder() + "/baseq3/maps/later.bsp", "IBSP"); // start-up only
    int error = 0;
    zip_t* archive =
        zip_open(QFile::encodeName(platform.gameFolder() + "/baseq3/extra.pk3").constData(),
                 ZIP_CREATE, &error);
    QVERIFY(archive);
    zip_file_add(archive, "maps/later.bsp", zip_source_buffer(archive, "IBSP", 4, 0), 0);
    QCOMPARE(zip_close(archive), 0);
    ui.cmdSearchMaps->click();
    QCOMPARE(entries(ui.MapList), QStringList({"loose", "later"}));
    QCOMPARE(ui.Frame14->title(), QStringLiteral("2 Available Maps"));
}

void MapSelectionTest::editorChecks_data() {
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("file");
    QTest::addColumn<QString>("title");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("selected");
    QTest::newRow("no file name") << "Nice"
                                  << ""
                                  << "Incomplete Information"
                                  << "You must specify at least a file name for the new map."
                                  << "";
    QTest::newRow("extension") << ""
                               << "mymap.bsp"
                               << "Warning"
                               << "The file name should not include a file extension!"
                               << ".bsp";
    QTest::newRow("two dots") << ""
                              << "my.map.bsp"
                              << "Warning"
                              << "The file name should not include a file extension!"
                              << ".map.bsp";
    QTest::newRow("two words") << ""
                               << "my map"
                               << "Warning"
                               << "Spaces are not allowed in map file names!"
                               << "my map";
    QTest::newRow("dot and space") << ""
                                   << "my map.bsp"
                                   << "Warning"
                                   << "The file name should not include a file extension!"
                                   << ".bsp";
}

void MapSelectionTest::editorChecks() {
    QFETCH(QString, name);
    QFETCH(QString, file);
    QFETCH(QString, title);
    QFETCH(QString, text);
    QFETCH(QString, selected);
    Window w({"a"});
    const QByteArray before = readAll(w.dataPath());
    MapEditor& editor = w.maps().editor();
    w.ui->cmdAddMaps->click();
    QCOMPARE(editor.windowTitle(), QStringLiteral("Add a Map"));
    editor.form().txtMapName->setText(name);
    editor.form().txtFileName->setText(file);
    editor.form().Command2->click();
    QCOMPARE(w.platform.messages.shown.size(), 1);
    const ShownMessage& shown = w.platform.messages.shown.first();
    QCOMPARE(shown.title, title);
    QCOMPARE(shown.text, text);
    QCOMPARE(shown.buttons, MsgButtons::Ok);
    QCOMPARE(shown.icon, MsgIcon::Information);
    QCOMPARE(editor.form().txtFileName->selectedText(), selected);
    QVERIFY(editor.isVisible());
    QCOMPARE(readAll(w.dataPath()), before);
    if (!file.isEmpty())
        QCOMPARE(editor.form().txtMapName->text(), file); // filled before the checks that failed
}

void MapSelectionTest::addWithOnlyAFileName() {
    Window w({"a", "b"});
    MapEditor& editor = w.maps().editor();
    w.ui->mnuMapNew->trigger();
    QCOMPARE(w.catalogue().CurrentMapRecord, qint16(-1));
    editor.form().txtFileName->setText("newmap");
    editor.form().Command2->click();
    QVERIFY(w.platform.messages.shown.isEmpty());
    QVERIFY(!editor.isVisible());
    QCOMPARE(w.catalogue().CountMaps(), qint16(3));
    const MapRecord added = w.record(3);
    QCOMPARE(added.get(MapField::DisplayName), QStringLiteral("newmap"));
    QCOMPARE(added.get(MapField::FileName), QStringLiteral("newmap"));
    QCOMPARE(added.get(MapField::CaptureLimit), QStringLiteral("10"));
    QCOMPARE(entries(w.ui->MapList), QStringList({"a", "b", "newmap"}));
    QCOMPARE(w.ui->lblMapFilename->text(), QStringLiteral("newmap"));
    // The caption waits for the next full reload.
    QCOMPARE(w.ui->Frame14->title(), QStringLiteral("2 Available Maps"));
}

void MapSelectionTest::addExistingMapIsRefused() {
    Window w({"q3dm1"});
    MapEditor& editor = w.maps().editor();
    editor.openForAdding();
    editor.form().txtFileName->setText("Q3DM1");
    editor.form().Command2->click();
    QCOMPARE(w.platform.messages.shown.size(), 1);
    QCOMPARE(w.platform.messages.shown.first().title, QStringLiteral("Get some rest!"));
    QCOMPARE(w.platform.messages.shown.first().text, QStringLiteral("That map already exists!"));
    QVERIFY(editor.isVisible());
    QCOMPARE(w.catalogue().CountMaps(), qint16(1));
}

void MapSelectionTest::addToAnEmptyListWritesRecordOne() {
    Window w({"", ""});
    QCOMPARE(w.ui->MapList->count(), 0);
    MapEditor& editor = w.maps().editor();
    editor.openForAdding();
    editor.form().txtMapName->setText("First");
    editor.form().txtFileName->setText("first");
    editor.form().Command2->click();
    QCOMPARE(w.catalogue().CountMaps(), qint16(2));
    QCOMPARE(w.catalogue().FindMap("first"), qint16(1));
}

void MapSelectionTest::newMapDialogDropsUncommittedEdits() {
    Window w({"a"});
    const QByteArray before = readAll(w.dataPath());
    w.ui->txtMapFragLimit->setText("7");
    w.ui->cmdAddMaps->click();
    w.maps().editor().form().txtFileName->setText("b");
    w.maps().editor().form().Command2->click();
    QCOMPARE(readAll(w.dataPath()).left(71), before.left(71));
}

void MapSelectionTest::editRenamesTheMap() {
    Window w({"a", "b", "c"});
    w.ui->MapList->setCurrentRow(1);
    MapEditor& editor = w.maps().editor();
    w.ui->mnuMapEdit->trigger();
    QCOMPARE(editor.windowTitle(), QStringLiteral("Edit Map"));
    QCOMPARE(editor.form().lblIndexNum->text(), QStringLiteral("1"));
    QCOMPARE(editor.form().txtFileName->text(), QStringLiteral("b"));
    QCOMPARE(editor.form().txtMapName->text(), QStringLiteral("Name of b"));
    w.ui->txtMapFragLimit->setText("3"); // still shown, committed later
    editor.form().txtMapName->setText("Renamed");
    editor.form().txtFileName->setText("c");
    editor.form().Command2->click();
    QVERIFY(!editor.isVisible());
    QCOMPARE(entries(w.ui->MapList), QStringList({"a", "c", "c"}));
    QCOMPARE(w.ui->lblMap->text(), QStringLiteral("Renamed"));
    QCOMPARE(w.ui->lblMapFilename->text(), QStringLiteral("c"));
    QCOMPARE(w.record(2).get(MapField::FileName), QStringLiteral("c"));
    QCOMPARE(w.record(2).get(MapField::FragLimit), QStringLiteral("20"));
    QCOMPARE(w.catalogue().FindMap("c"), qint16(2)); // the lower of the two
    w.maps().CommitShownMap();
    QCOMPARE(w.record(2).get(MapField::DisplayName), QStringLiteral("Renamed"));
    QCOMPARE(w.record(2).get(MapField::FragLimit), QStringLiteral("3"));
}

void MapSelectionTest::deleteLeavesASlot() {
    Window w({"a", "b", "c"});
    w.ui->MapList->setCurrentRow(1);
    w.platform.messages.answers = {MsgAnswer::Yes};
    w.ui->mnuMapDelete->trigger();
    const ShownMessage& shown = w.platform.messages.shown.first();
    QCOMPARE(shown.title, QStringLiteral("Confirm Delete"));
    QCOMPARE(shown.text, QStringLiteral("Maps should only be deleted if they no longer are "
                                        "installed on your system.\r\rAre you sure you want to "
                                        "delete the map \"Name of b\"?"));
    QCOMPARE(shown.buttons, MsgButtons::YesNo);
    QCOMPARE(shown.icon, MsgIcon::Question);
    QCOMPARE(w.catalogue().CountMaps(), qint16(3));
    QVERIFY(w.record(2).isDeleted());
    QCOMPARE(entries(w.ui->MapList), QStringList({"a", "c"}));
    QCOMPARE(w.ui->Frame14->title(), QStringLiteral("2 Available Maps"));
    QCOMPARE(w.ui->lblMapFilename->text(), QStringLiteral("a"));

    // Answering No deletes nothing.
    w.platform.messages.clear();
    w.ui->mnuMapDelete->trigger();
    QCOMPARE(w.platform.messages.shown.size(), 1);
    QCOMPARE(entries(w.ui->MapList), QStringList({"a", "c"}));
}

void MapSelectionTest::deletedMapLeftInTheSelectionEndsTheProgram() {
    Window w({"a", "b"});
    w.ui->cmdMapSelectAll->click();
    w.ui->cmdAddSelMap->click();
    w.ui->MapList->setCurrentRow(1);
    w.platform.messages.answers = {MsgAnswer::Yes};
    w.ui->mnuMapDelete->trigger();
    // No mapsel.txt: the selection keeps the deleted map.
    QCOMPARE(entries(w.ui->SelMap), QStringList({"a", "b"}));
    w.ui->SelMap->setCurrentRow(0);
    QVERIFY(!w.window->hasEnded());
    w.ui->SelMap->setCurrentRow(1);
    QVERIFY(w.window->hasEnded());
    QCOMPARE(w.platform.messages.shown.size(), 1); // only the delete question
    QVERIFY(!w.catalogue().MapDataDamaged);
    QCOMPARE(w.catalogue().CurrentMapRecord, qint16(-1));
}

void MapSelectionTest::tourneySuggestion() {
    Window w({"q3dm1", "q3tourney1", "q3ctf1", "q3tourney2"});
    w.ui->cmdMapDm->click();
    w.platform.messages.answers = {MsgAnswer::Yes};
    w.ui->cmbGameType->setCurrentIndex(1);
    QCOMPARE(w.platform.messages.shown.size(), 1);
    const ShownMessage& shown = w.platform.messages.shown.first();
    QCOMPARE(shown.title, QStringLiteral("Tourney Suggestion"));
    QCOMPARE(shown.text,
             QStringLiteral("Would you like to automatically select all tourney maps only?"));
    QCOMPARE(shown.buttons, MsgButtons::YesNo);
    QCOMPARE(shown.icon, MsgIcon::Question);
    QCOMPARE(entries(w.ui->SelMap), QStringList({"q3tourney1", "q3tourney2"}));

    w.platform.messages.clear(); // No changes nothing
    w.ui->cmbGameType->setCurrentIndex(3);
    QCOMPARE(w.platform.messages.shown.size(), 1);
    QCOMPARE(w.platform.messages.shown.first().title, QStringLiteral("CTF Suggestion"));
    QCOMPARE(w.platform.messages.shown.first().text,
             QStringLiteral("Would you like to automatically select all CTF maps only?"));
    QCOMPARE(entries(w.ui->SelMap), QStringList({"q3tourney1", "q3tourney2"}));
}

void MapSelectionTest::noSuggestionWhenTheHighlightFits() {
    Window w({"q3dm1", "q3tourney1", "Q3TOURNEY2", "q3tourney3"});
    w.highlightInMapList({"q3tourney1", "q3tourney3"}); // "tour" is matched with letter case
    w.ui->cmbGameType->setCurrentIndex(1);
    QVERIFY(w.platform.messages.shown.isEmpty());
    w.ui->cmbGameType->setCurrentIndex(2);
    QVERIFY(w.platform.messages.shown.isEmpty());
}

void MapSelectionTest::closingWritesTheShownMapBack_data() {
    QTest::addColumn<int>("row");
    QTest::addColumn<bool>("written");
    QTest::newRow("second entry current") << 1 << true;
    QTest::newRow("first entry current") << 0 << false;
}

void MapSelectionTest::closingWritesTheShownMapBack() {
    QFETCH(int, row);
    QFETCH(bool, written);
    Window w({"a", "b"});
    w.ui->MapList->setCurrentRow(row);
    w.ui->txtMapSpeed->setText("999");
    w.window->close();
    QCOMPARE(w.record(row + 1).get(MapField::Speed), written ? "999" : "320");
}

QTEST_MAIN(MapSelectionTest)
#include "tst_mapselection.moc"
