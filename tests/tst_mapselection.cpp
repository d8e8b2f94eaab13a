// The Maps tab in the real main window: the two lists and their buttons, mapsel.txt, the rule boxes
// and "Use Settings as Default", the map editor, the game-type suggestions, and the map picture:
// which file is shown for a map and how Targa pictures are drawn into the box.
#include "TestSupport.h"

#include "maps/GameFileListing.h"
#include "maps/MapCatalogue.h"
#include "maps/MapDiscovery.h"
#include "maps/MapEditor.h"
#include "maps/MapPreview.h"
#include "maps/MapsController.h"
#include "ui/MainForm.h"
#include "ui_frmMap.h"

#include <QtTest>

using namespace halvane;
using namespace halvane::test;

namespace {
// A main window over a catalogue of these maps and, when given, mapsel.txt.
struct Window : WindowFixture {
    explicit Window(const QStringList& maps, const QByteArray& selection = QByteArray())
        : WindowFixture([&](TestPlatform& p) {
              p.writeFile(p.programFolder() + "/maps.dat", catalogueOf(maps));
              if (!selection.isEmpty())
                  p.writeFile(p.programFolder() + "/mapsel.txt", selection);
          }) {}
    MapsController& maps() { return window->maps(); }
    QString dataPath() const { return platform.programFolder() + "/maps.dat"; }
    MapRecord record(int n) { return maps().catalogue().snapshot().record(n); }
    // SelMap's entries, its frame's title and the map shown.
    QStringList selection() {
        return entries(ui().SelMap) << ui().Frame15->title() << ui().lblMapFilename->text();
    }
    // The operator's steps: "a<row>", "s<row>" click MapList's, SelMap's entry ("a+<row>": with
    // Ctrl), "-" clears SelMap's highlight, "menu" right-clicks MapList, "double" double-clicks it,
    // "type<n>" picks a game type answering Yes, "edit" and "okay" use the map editor; any other
    // word names a button.
    void act(const QString& actions) {
        for (const QString& action : actions.split(' ')) {
            const QChar key = action.size() > 1 ? action[1] : QChar();
            if (action == "-") {
                ui().SelMap->clearSelection();
            } else if (action == "menu") {
                const QString shown = ui().lblMapFilename->text();
                clickEntry(ui().MapList, 2, {}, Qt::RightButton);
                QContextMenuEvent menu(QContextMenuEvent::Mouse, QPoint(2, 2), QPoint(2, 2));
                QApplication::sendEvent(ui().MapList->viewport(), &menu);
                // It acts on the maps highlighted before the click and shows no other map.
                QVERIFY(ui().mnuMapList->isVisible() && !ui().mnuMapEdit->isEnabled() &&
                        !ui().mnuMapDelete->isEnabled());
                QCOMPARE(ui().mnuMapSelect->text(), QStringLiteral("Select these maps"));
                QCOMPARE(ui().lblMapFilename->text(), shown);
                ui().mnuMapList->close();
            } else if (action == "double") {
                emit ui().MapList->doubleClicked(ui().MapList->model()->index(0, 0));
            } else if (action.startsWith("type")) {
                platform.messages.answers = {MsgAnswer::Yes};
                ui().cmbGameType->setCurrentIndex(action.mid(4).toInt());
            } else if (action == "edit") {
                ui().mnuMapEdit->trigger();
            } else if (action == "okay") {
                maps().editor().form().Command2->click();
            } else if (key.isDigit() || key == '+') {
                clickEntry(action[0] == 'a' ? ui().MapList : ui().SelMap,
                           action.mid(key == '+' ? 2 : 1).toInt(),
                           key == '+' ? Qt::ControlModifier : Qt::NoModifier);
            } else {
                auto* button = window->findChild<QAbstractButton*>(action);
                QVERIFY2(button, qPrintable(action));
                button->click();
            }
        }
    }
};

const QByteArray FiveSelected = "m1\r\nm2\r\nm3\r\nm4\r\nm5\r\n";
const QStringList Eight{"m1", "m2", "m3", "m4", "m5", "mctf", "mDM", "mtourney"};

QRgb tgaColour(int x, int y) {
    return qRgb(x % 256, y % 256, 77);
}

// An uncompressed 24-bit Targa picture, first row at the top.
QByteArray targa(int width, int height) {
    QByteArray bytes(18, '\0');
    bytes[2] = 2;
    bytes[12] = char(width & 0xFF);
    bytes[13] = char(width >> 8);
    bytes[14] = char(height & 0xFF);
    bytes[16] = 24;
    bytes[17] = 0x20;
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x)
            bytes.append(char(77)).append(char(y % 256)).append(char(x % 256));
    }
    return bytes;
}
} // namespace

// Game files, "archive|member" or a file in the game folder; the maps marked in MapList, then in
// SelMap.
const std::tuple<const char*, QString, QString> MarkedRows[] = {
    {"loose and archived maps, names in any letter case",
     "baseq3/maps/q3dm1.bsp baseoa/pak0.pk3|MAPS/Oa_Dm1.Bsp baseq3/z.pk3|maps/q3dm2.bsp",
     "gone gone"},
    {"pictures, other folders and unreadable archives hold no maps",
     "baseq3/z.pk3|levelshots/q3dm1.jpg baseq3/z.pk3|maps/sub/q3dm1.bsp baseq3/z.pk3|q3dm2.bsp "
     "missionpack/maps/oa_dm1.bsp baseq3/bad.pk3",
     "q3dm1 Q3DM2 oa_dm1 gone gone q3dm1"},
};

// Over the eight maps with m1 to m5 selected: what the operator does (see Window::act), SelMap's
// entries, title and the map shown after, SelMap's highlighted row (-1: none), the only message.
const QString Quiet = "0 messages";
const std::tuple<const char*, QString, QString, int, QString> Operations[] = {
    {"up on the first", "s0 cmdMapUp", "m1 m2 m3 m4 m5 5 Maps Selected m1", 0, Quiet},
    {"down on the last", "s4 cmdMapDown", "m1 m2 m3 m4 m5 5 Maps Selected m5", 4, Quiet},
    {"up in the middle", "s2 cmdMapUp", "m1 m3 m2 m4 m5 5 Maps Selected m3", 1, Quiet},
    {"down onto the last", "s3 cmdMapDown", "m1 m2 m3 m5 m4 5 Maps Selected m4", 4, Quiet},
    {"up with nothing highlighted", "- cmdMapUp", "m1 m2 m3 m4 m5 5 Maps Selected m1", -1, Quiet},
    {"<< in the middle", "s2 cmdRemSelMap", "m1 m2 m4 m5 4 Maps Selected m4", 2, Quiet},
    {"<< on the last", "s4 cmdRemSelMap", "m1 m2 m3 m4 4 Maps Selected m4", 3, Quiet},
    {"<< with nothing highlighted", "- cmdRemSelMap", "m1 m2 m3 m4 m5 5 Maps Selected m1", -1,
     Quiet},
    // Inserted after the highlighted selected map; the last one added is highlighted and shown.
    {">> after the highlighted selected map", "a5 a+6 a+7 s1 menu cmdAddSelMap",
     "m1 m2 mtourney mDM mctf m3 m4 m5 8 Maps Selected mtourney", 2, Quiet},
    {"double click appends in list order", "- a7 a+1 double",
     "m1 m2 m3 m4 m5 m2 mtourney 7 Maps Selected mtourney", 6, Quiet},
    {"Select All and >>", "- cmdMapSelectAll cmdAddSelMap",
     "m1 m2 m3 m4 m5 m1 m2 m3 m4 m5 mctf mDM mtourney 13 Maps Selected mtourney", 12, Quiet},
    {"Clear", "cmdMapClearAll", "0 Maps Selected m1", -1, Quiet},
    {"Tourney, CTF and DM append their maps", "cmdMapTourney cmdMapCtf cmdMapDm",
     "m1 m2 m3 m4 m5 mtourney mctf mDM 8 Maps Selected m1", 0, Quiet},
    {"tourney game type", "cmdMapDm type1", "mtourney 1 Maps Selected m1", -1,
     message("Tourney Suggestion", "Would you like to automatically select all tourney maps only?",
             MsgButtons::YesNo, MsgIcon::Question)},
    {"Randomize with one map", "cmdMapClearAll a0 cmdAddSelMap cmdRandomize",
     "m1 1 Maps Selected m1", 0,
     message(
         "Notice",
         "You need to have at least two maps selected for this feature to work (think about it).",
         MsgButtons::Ok, MsgIcon::Information)},
};

// What else the operator did before "Close"; the record written for the edit
// as number|display name|file name.
const std::tuple<const char*, QString, QString> Edits[] = {
    {"first available map", "", "1|Name of a|a"},
    {"first selected map after a start", "selected", "3|Name of c|c"},
    {"a renamed map", "rename", "2|Bee|bb"},
    {"a blank name box", "blank", "1||a"},
    // Choosing the vanished map writes the shown one back (its name cut to
    // 30) and ends the run; the close then writes nothing over the file.
    {"a damaged catalogue", "damage", "1|A new name that is much longer|a"},
};

// A file name the game's console would split in a rotation line: the message.
QString splits(const QString& what) {
    return "Warning|File Name cannot hold " + what +
           ": the game would read the rest as another command.";
}

// The file name typed, the message's "title|text", the part of the name selected after.
const std::tuple<const char*, QString, QString, QString> EditorChecks[] = {
    {"no file name", "",
     "Incomplete Information|You must specify at least a file name for the new map.", ""},
    {"two dots", "my.map.bsp", "Warning|The file name should not include a file extension!",
     ".map.bsp"},
    {"two words", "my map", "Warning|Spaces are not allowed in map file names!", "my map"},
    {"existing map", "A", "Get some rest!|That map already exists!", ""},
    {"a semicolon", "q;quit", splits("a semicolon (;)"), "q;quit"},
    {"a quote", "q\"x", splits("a double quote (\")"), "q\"x"},
    {"a tab", "q\tquit", splits("a control character (code 9)"), "q\tquit"},
    {"a comment mark", "q//x",
     "Warning|File Name cannot hold a comment mark (//): the game would not read the rest.",
     "q//x"},
};

// What the operator does (see Window::act), the map shown after, and the one "Delete Map" then
// asks about and deletes (none when SelMap chose last: the menu is MapList's).
const std::tuple<const char*, QString, QString, QString> Choices[] = {
    {"the current available map after the selection showed another", "a0", "m1", "m1"},
    {"the current selected map after the available list showed another", "a1 s0", "m3", ""},
    {"the edited map", "a1 edit okay", "m2", "m2"},
    {"another map chosen while the editor is open", "a1 edit a3 okay", "m4", "m4"},
};

// Picture files, "p:" in the program folder, "g:" in the game folder and "archive|member" a member
// of an archive; the file chosen for q3dm1, read as a Targa picture when named so.
const std::tuple<const char*, QString, QString> Pictures[] = {
    {"thumbnail jpeg first", "p:Maps/q3dm1.tga p:Maps/q3dm1.jpg g:baseq3/levelshots/q3dm1.jpg",
     "p:Maps/q3dm1.jpg"},
    {"level shot in other letter case", "g:baseq3/LevelShots/Q3DM1.TGA p:Maps/DEFAULT.jpg",
     "g:baseq3/LevelShots/Q3DM1.TGA"},
    {"default picture in maps beside Maps", "p:maps/DEFAULT.jpg p:Maps/other.jpg",
     "p:maps/DEFAULT.jpg"},
    // The game finds archive members whatever the letter case.
    {"archived jpeg before the default picture",
     "g:baseq3/pak0.pk3|LevelShots/Q3DM1.JPG p:Maps/DEFAULT.jpg",
     "g:baseq3/pak0.pk3|LevelShots/Q3DM1.JPG"},
    {"loose level shot before the archives",
     "g:baseq3/levelshots/q3dm1.tga g:baseq3/pak0.pk3|levelshots/q3dm1.jpg",
     "g:baseq3/levelshots/q3dm1.tga"},
    // Letters compare as capitals, so "_" sorts after them; baseq3 before baseoa.
    {"the archive the game searches first",
     "g:baseq3/pak_x.pk3|levelshots/q3dm1.jpg g:baseq3/PAKZ.pk3|levelshots/q3dm1.jpg "
     "g:baseq3/paka.pk3|levelshots/q3dm1.jpg g:baseoa/zz.pk3|levelshots/q3dm1.jpg",
     "g:baseq3/pak_x.pk3|levelshots/q3dm1.jpg"},
};

class MapSelectionTest : public QObject {
    Q_OBJECT
private slots:
    void selectionFileRoundTrip();
    void missingMapsMarked_data() { addRows(MarkedRows); }
    void missingMapsMarked();
    void operations_data() { addRows(Operations); }
    void operations();
    void randomize();
    void closeRightAfterAnEdit_data() { addRows(Edits); }
    void closeRightAfterAnEdit();
    void useSettingsAsDefault();
    void editorChecks_data() { addRows(EditorChecks); }
    void editorChecks();
    void chooseEditAndDelete_data() { addRows(Choices); }
    void chooseEditAndDelete();
    void pictureChoice_data() { addRows(Pictures); }
    void pictureChoice();
    void picturesInTheWindow();
};

void MapSelectionTest::selectionFileRoundTrip() {
    const QString wide = QString(200, ' ') + "q3dm1";
    Window w({"q3dm1", "q3dm2"},
             "// q3dm2\r\n\r\n   \r\n  Q3DM2 \r\nunknown\r\n" + wide.toLatin1() + "\nq3dm2");
    // The first one is shown.
    QCOMPARE(w.selection(), QStringList({"  Q3DM2 ", wide, "q3dm2", "3 Maps Selected", "q3dm2"}));
    w.window->close();
    QCOMPARE(readAll(w.platform.programFolder() + "/mapsel.txt"),
             "  Q3DM2 \r\n" + wide.toLatin1() + "\r\nq3dm2\r\n");
}

// The lists are made after "Search" too; the marks are what the lists
// paint: a grey foreground and a tool tip.
void MapSelectionTest::missingMapsMarked() {
    const auto& [name, gameFiles, marked] = fetchRow(MarkedRows);
    Window w({"q3dm1", "Q3DM2", "oa_dm1", "gone"}, " gone\r\nq3dm1\r\n");
    w.maps().gameFiles().finish(); // the lists made when the window showed
    for (const QString& file : gameFiles.split(' ')) {
        const QString path = w.platform.gameFolder() + '/' + file.section('|', 0, 0);
        if (file.contains('|'))
            QVERIFY(makeArchive(path, {file.section('|', 1)}));
        else
            w.platform.writeFile(path, "IBSP");
    }
    w.maps().discovery().setPacing({0, 0});
    w.ui().cmdSearchMaps->click();
    w.maps().gameFiles().finish();
    QStringList found;
    for (QListView* list : {w.ui().MapList, w.ui().SelMap}) {
        for (int row = 0; row < list->model()->rowCount(); ++row) {
            const QModelIndex index = list->model()->index(row, 0);
            const QString tip = index.data(Qt::ToolTipRole).toString();
            if (index.data(Qt::ForegroundRole).isValid() || !tip.isEmpty())
                found << index.data().toString().trimmed() + (tip.isEmpty() ? "(no tip)" : "");
        }
    }
    QCOMPARE(found.join(' '), marked);
}

void MapSelectionTest::operations() {
    const auto& [name, actions, selection, highlight, told] = fetchRow(Operations);
    Window w(Eight, FiveSelected);
    w.act(actions);
    QCOMPARE(w.selection().join(' '), selection);
    QCOMPARE(w.ui().SelMap->selectionModel()->selectedRows().value(0).row(), highlight);
    QCOMPARE(onlyMessage(w.platform.messages), told);
}

// The same maps in some order, and the busy pointer ends.
void MapSelectionTest::randomize() {
    Window w(Eight, FiveSelected);
    w.ui().cmdRandomize->click();
    QStringList maps = entries(w.ui().SelMap);
    maps.sort();
    QCOMPARE(maps, QStringList({"m1", "m2", "m3", "m4", "m5"}));
    QCOMPARE(w.platform.desktop.busyDepth, 0);
}

void MapSelectionTest::closeRightAfterAnEdit() {
    const auto& [name, edit, written] = fetchRow(Edits);
    QStringList maps{"a", "b", "c"};
    Window w(maps, edit == "selected" ? "c\r\n" : "");
    if (edit == "rename") {
        w.act("a1 edit");
        w.maps().editor().form().txtMapName->setText("Bee");
        w.maps().editor().form().txtFileName->setText("bb");
        w.act("okay");
        QCOMPARE(w.ui().MapList->currentIndex().data().toString(), QStringLiteral("bb"));
    }
    w.ui().txtMapFragLimit->setText("5");
    w.ui().txtMapGravity->clear(); // stored as spaces
    if (edit == "blank")
        w.ui().lblMap->clear();
    if (edit == "damage") {
        w.ui().lblMap->setText("A new name that is much longer than thirty");
        maps[1] = "x";
        w.platform.writeFile(w.dataPath(), catalogueOf(maps));
        clickEntry(w.ui().MapList, 1);
        QVERIFY(w.window->hasEnded());
    }
    w.window->close();
    QByteArray expected = catalogueOf(maps);
    const MapRecord edited = makeMapRecord(written.section('|', 1, 1), written.section('|', 2),
                                           {"5", "20", "10", "", "320", "1000"});
    expected.replace((written.section('|', 0, 0).toInt() - 1) * 71, 71, edited.bytes(), 71);
    QCOMPARE(readAll(w.dataPath()), expected);
}

void MapSelectionTest::useSettingsAsDefault() {
    Window w({"a", "", "b"});
    const QByteArray before = readAll(w.dataPath());
    w.ui().txtMapTimeLimit->setText("15");
    w.ui().txtMapFragLimit->setText("30");
    w.ui().txtMapKnockback->setText("900");
    w.platform.messages.answers = {MsgAnswer::Yes};
    w.ui().cmdDefault->click();
    QCOMPARE(onlyMessage(w.platform.messages),
             message("Confirm Default Settings",
                     "This will set the current settings for Time Limit, Frag Limit,\rCapture "
                     "Limit, Speed, Gravity, and Knock Back for all maps,\rand use these settings "
                     "for any maps you add in the future.\r\rAre you sure you want to do this?",
                     MsgButtons::YesNo, MsgIcon::Question));
    QCOMPARE(readAll(w.platform.programFolder() + "/maps.bak"), before);
    for (int n = 1; n <= 3; ++n)
        QCOMPARE(QByteArray(w.record(n).bytes() + 50, 21), QByteArray("30 15 10 800 320 900 "));
    QVERIFY(w.record(2).isDeleted());
    w.platform.reopenStore();
    QCOMPARE(w.platform.store->read("Defaults", "KnockBack", "x"), QStringLiteral("900"));
}

void MapSelectionTest::editorChecks() {
    const auto& [name, file, told, selected] = fetchRow(EditorChecks);
    Window w({"a"});
    const QByteArray before = readAll(w.dataPath());
    MapEditor& editor = w.maps().editor();
    w.ui().cmdAddMaps->click();
    editor.form().txtFileName->setText(file);
    editor.form().Command2->click();
    QCOMPARE(onlyMessage(w.platform.messages),
             message(told.section('|', 0, 0), told.section('|', 1), MsgButtons::Ok,
                     MsgIcon::Information));
    QCOMPARE(editor.form().txtFileName->selectedText(), selected);
    QVERIFY(editor.isVisible());
    QCOMPARE(readAll(w.dataPath()), before);
}

// Starts with m1 highlighted in MapList and m3, the selected map, shown.
void MapSelectionTest::chooseEditAndDelete() {
    const auto& [name, actions, shown, deleted] = fetchRow(Choices);
    Window w({"m1", "m2", "m3", "m4"}, "m3\r\n");
    w.act(actions);
    QCOMPARE(w.ui().lblMapFilename->text(), shown);
    if (deleted.isEmpty())
        return;
    const QModelIndexList highlighted = w.ui().MapList->selectionModel()->selectedRows();
    QCOMPARE(highlighted, QModelIndexList{w.ui().MapList->currentIndex()});
    w.platform.messages.answers = {MsgAnswer::Yes};
    w.ui().mnuMapDelete->trigger();
    QCOMPARE(onlyMessage(w.platform.messages),
             message("Confirm Delete",
                     "Maps should only be deleted if they no longer are installed on your "
                     "system.\r\rAre you sure you want to delete the map \"Name of " +
                         deleted + "\"?",
                     MsgButtons::YesNo, MsgIcon::Question));
    QVERIFY(w.record(deleted.mid(1).toInt()).isDeleted()); // the slot stays
    QVERIFY(!entries(w.ui().MapList).contains(deleted));
    // A map added after it goes to the end, named after its file, and is shown; the box keeps no
    // more than the record: a longer name once ended the program.
    w.platform.messages.shown.clear();
    MapEditor& editor = w.maps().editor();
    QTest::mouseClick(w.ui().cmdAddMaps, Qt::LeftButton);
    QTest::keyClicks(editor.form().txtFileName, "newmap_with_a_long_name");
    QTest::mouseClick(editor.form().Command2, Qt::LeftButton);
    QVERIFY(!editor.isVisible() && w.window->isVisible() && w.platform.messages.shown.isEmpty());
    QCOMPARE(std::tuple(w.record(5).get(MapField::DisplayName), w.ui().lblMapFilename->text(),
                        entries(w.ui().MapList).size()),
             std::tuple(QStringLiteral("newmap_with_a_long_n"),
                        QStringLiteral("newmap_with_a_long_n"), qsizetype(4)));
}

void MapSelectionTest::pictureChoice() {
    const auto& [name, files, chosen] = fetchRow(Pictures);
    TestPlatform platform;
    platform.makeGameFolder();
    auto place = [&](const QString& file) {
        return (file.startsWith("p:") ? platform.programFolder() : platform.gameFolder()) + '/' +
               file.mid(2);
    };
    for (const QString& file : files.split(' ')) {
        if (file.contains('|'))
            QVERIFY(makeArchive(place(file.section('|', 0, 0)), {file.section('|', 1)}));
        else
            platform.writeFile(place(file), "picture");
    }
    const GameFiles listed = GameFiles::list(platform.gameFolder());
    const PreviewSource source =
        findPreview(platform.programFolder(), platform.gameFolder(), " q3dm1 ", &listed);
    QCOMPARE(std::tuple(source.kind, source.path, QString(source.member), source.content),
             std::tuple(chosen.endsWith("tga", Qt::CaseInsensitive) ? PreviewSource::Targa
                                                                    : PreviewSource::Jpeg,
                        place(chosen.section('|', 0, 0)), chosen.section('|', 1),
                        QByteArray(chosen.contains('|') ? "IBSP" : "")));
}

void MapSelectionTest::picturesInTheWindow() {
    WindowFixture w([](TestPlatform& p) {
        p.writeFile(p.gameFolder() + "/baseq3/levelshots/big.tga", targa(300, 200));
        p.writeFile(p.programFolder() + "/Maps/bad.tga", QByteArray(50, 'x'));
        QDir().mkpath(p.programFolder() + "/maps"); // beside Maps, which holds the picture
        QVERIFY(QFile::copy(HALVANE_BIN_DIR "/maps/default.jpg",
                            p.programFolder() + "/Maps/default.jpg"));
        QByteArray tall;
        QBuffer buffer(&tall);
        QVERIFY(buffer.open(QIODevice::WriteOnly) &&
                QImage(2, 4097, QImage::Format_RGB32).save(&buffer, "jpeg"));
        QVERIFY(makeArchive(
            p.gameFolder() + "/baseoa/pak0.pk3",
            {"levelshots/x.jpg", "LEVELSHOTS/Y.TGA", "levelshots/tall.jpg", "levelshots/wide.tga"},
            {{"levelshots/x.jpg", readAll(HALVANE_BIN_DIR "/maps/default.jpg")},
             {"LEVELSHOTS/Y.TGA", targa(40, 30)},
             {"levelshots/tall.jpg", tall},
             {"levelshots/wide.tga", targa(4097, 1)}}));
    });
    MainWindow& window = *w.window;
    MainForm& ui = w.ui();
    const auto show = [&](const char* map) {
        window.maps().preview().showPreview(map);
        window.maps().preview().finish(); // read on a thread of its own
    };
    // The Maps tab shows the delivered default picture after start-up.
    ui.SSTab1->setCurrentIndex(2);
    QCOMPARE(ui.stkMapPicture->currentWidget(), ui.imgMap1);
    QVERIFY(!ui.imgMap1->pixmap().isNull());

    // A large picture is cut at the box, not scaled.
    show("big");
    QCOMPARE(ui.stkMapPicture->currentWidget(), ui.imgMap);
    QImage shown = ui.imgMap->pixmap().toImage();
    QCOMPARE(shown.size(), ui.imgMap->size());
    const QPoint corner(shown.width() - 1, shown.height() - 1);
    QCOMPARE(shown.pixel(corner) & 0xFFFFFF, tgaColour(corner.x(), corner.y()) & 0xFFFFFF);

    // A map without a picture empties the box; a damaged Targa reads as none.
    QFile::remove(w.platform.programFolder() + "/Maps/default.jpg");
    show("none");
    QCOMPARE(ui.stkMapPicture->currentWidget(), ui.imgMap);
    QVERIFY(ui.imgMap->pixmap().isNull());
    // Level shots in the free game's archives, listed once the window showed.
    window.maps().gameFiles().finish();
    show("x");
    QCOMPARE(ui.imgMap1->pixmap().size(), QSize(160, 120));
    window.maps().preview().showPreview("y");
    QCOMPARE(ui.stkMapPicture->currentWidget(), ui.imgMap1); // not decoded on the window's thread
    window.maps().preview().finish();
    QCOMPARE(ui.imgMap->pixmap().toImage().pixel(39, 29) & 0xFFFFFF, tgaColour(39, 29) & 0xFFFFFF);
    // Over 4,096 pixels a side a picture is refused by its header's size.
    show("tall");
    QVERIFY(ui.imgMap1->pixmap().isNull());
    show("wide");
    QCOMPARE(ui.imgMap->pixmap().toImage().pixel(0, 0),
             ui.imgMap->palette().color(QPalette::Window).rgb());
    QVERIFY(readTarga(w.platform.programFolder() + "/Maps/bad.tga").isNull());
}

QTEST_MAIN(MapSelectionTest)
#include "tst_mapselection.moc"
