#include "TestSupport.h"

#include "maps/MapCatalogue.h"

#include <zip.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTabWidget>

namespace halvane::test {

TestPlatform::TestPlatform() {
    QDir().mkpath(programFolder());
    // An empty map catalogue, as if the program had run before: windows come
    // up without the missing-catalogue warning and with no maps listed.
    QFile(programFolder() + QStringLiteral("/maps.dat")).open(QIODevice::WriteOnly);
    // The program folder holds the delivered bot list, as an installed one does.
    QFile::copy(QStringLiteral(HALVANE_DATA_DIR "/delivered/botlist.txt"),
                programFolder() + QStringLiteral("/botlist.txt"));
    folder = std::make_unique<ProgramFolder>(programFolder(), root() + QStringLiteral("/state"));
    ini = std::make_unique<QtSettingsStore>(iniPath());
    store = std::make_unique<RecordingStore>(*ini);
    wire();
}

void TestPlatform::wire(const AppState& state) {
    app.reset(
        new AppContext{{messages, dialogs, processes, shell, desktop, *store, *folder}, state});
}

void TestPlatform::reopenStore() {
    ini->flush();
    ini = std::make_unique<QtSettingsStore>(iniPath());
    store = std::make_unique<RecordingStore>(*ini);
    wire(app->state);
}

void TestPlatform::makeGameFolder() {
    QDir().mkpath(gameFolder() + QStringLiteral("/baseq3"));
    writeFile(gameFolder() + QStringLiteral("/quake3.exe"), "#!/bin/sh\n");
    QFile::setPermissions(gameFolder() + QStringLiteral("/quake3.exe"),
                          QFileDevice::Permissions(0x7000));
    ini->write(QStringLiteral("Settings"), QStringLiteral("Path"), gameFolder());
    ini->write(QStringLiteral("Settings"), QStringLiteral("Exe"), QStringLiteral("quake3.exe"));
    ini->flush();
    app->state.GameFolder = gameFolder();
    app->state.GameExeName = QStringLiteral("quake3.exe");
}

WindowFixture::WindowFixture(const std::function<void(TestPlatform&)>& prepare) {
    platform.makeGameFolder();
    if (prepare)
        prepare(platform);
    window = std::make_unique<MainWindow>(*platform.app);
    window->showMainWindow();
}

void WindowFixture::reopen() {
    window.reset();
    platform.reopenStore();
    window = std::make_unique<MainWindow>(*platform.app);
    window->showMainWindow();
}

QString TestPlatform::writeFile(const QString& path, const QByteArray& content) {
    QDir().mkpath(QFileInfo(path).absolutePath());
    QFile file(path);
    if (file.open(QIODevice::WriteOnly | QIODevice::Truncate))
        file.write(content);
    return path;
}

FreeGameSources fakeFreeGame(TestPlatform& platform) {
    FreeGameSources paths;
    const QString usr = platform.root() + "/usr";
    paths.engine = platform.writeFile(usr + "/lib/ioquake3/ioq3ded", "#!/bin/sh\n");
    QFile::setPermissions(paths.engine, QFile::ReadOwner | QFile::ExeOwner);
    paths.dataFolder = usr + "/share/baseoa";
    makeArchive(paths.dataFolder + "/pak0.pk3",
                {"maps/oa_dm10.bsp", "levelshots/oa_dm10.jpg", "maps/oa_dm2.bsp"});
    makeArchive(paths.dataFolder + "/pak1-maps.pk3",
                {"maps/oa_ctf4ish.bsp", "maps/oa_dm1.bsp", "maps/oa_dm2.bsp", "maps/oa_dm3.BSP"});
    paths.gameLibrary = platform.writeFile(usr + "/lib/openarena-server/qagamex86_64.so", "ELF");
    return paths;
}

QString firstDifference(const QByteArray& actual, const QByteArray& expected) {
    const QList<QByteArray> a = actual.split('\n'), e = expected.split('\n');
    // Line i of lines, shown with its unprintable bytes escaped.
    const auto line = [](const QList<QByteArray>& lines, int i) {
        return QString::fromLatin1(i < lines.size()
                                       ? lines[i].toPercentEncoding(" /\\\"';:.,=+-_()[]*?<>|!#")
                                       : QByteArray("<missing>"));
    };
    for (int i = 0; i < qMax(a.size(), e.size()); ++i) {
        if (line(a, i) != line(e, i))
            return QStringLiteral("line %1:\n  actual:   %2\n  expected: %3")
                .arg(i + 1)
                .arg(line(a, i), line(e, i));
    }
    return actual == expected ? QString() : QStringLiteral("files differ");
}

bool makeArchive(const QString& path, const QStringList& members,
                 const QHash<QString, QByteArray>& contents) {
    QDir().mkpath(QFileInfo(path).absolutePath());
    int error = 0;
    zip_t* archive =
        zip_open(QFile::encodeName(path).constData(), ZIP_CREATE | ZIP_TRUNCATE, &error);
    if (!archive)
        return false;
    QByteArrayList kept; // read only when the archive is closed
    for (const QString& member : members) {
        kept.append(contents.value(member, "IBSP"));
        zip_source_t* source = zip_source_buffer(archive, kept.last().constData(),
                                                 zip_uint64_t(kept.last().size()), 0);
        if (!source || zip_file_add(archive, member.toLatin1().constData(), source, 0) < 0) {
            zip_source_free(source);
            zip_discard(archive);
            return false;
        }
    }
    return zip_close(archive) == 0;
}

QStringList described(const FakeMessageBoxes& messages) {
    QStringList result;
    for (const ShownMessage& m : messages.shown)
        result << message(m.title, m.text, m.buttons, m.icon);
    return result;
}

QString onlyMessage(const FakeMessageBoxes& messages) {
    return messages.shown.size() == 1 ? described(messages)[0]
                                      : QStringLiteral("%1 messages").arg(messages.shown.size());
}

QByteArray catalogueOf(const QStringList& files) {
    QByteArray bytes;
    for (const QString& file : files) {
        const QString display = file.isEmpty() ? QString() : QStringLiteral("Name of ") + file;
        bytes.append(makeMapRecord(display, file, MapRules::builtIn()).bytes(), MapRecord::Size);
    }
    return bytes;
}

QStringList entries(const QAbstractItemView* list) {
    QStringList texts;
    for (int row = 0; row < list->model()->rowCount(); ++row)
        texts.append(list->model()->index(row, 0).data().toString());
    return texts;
}

void clickEntry(QAbstractItemView* list, int row, Qt::KeyboardModifiers modifiers,
                Qt::MouseButton button) {
    // The tab pages that hold the list come to the front, as the operator
    // turns to them before a click.
    for (QWidget* page = list; page->parentWidget(); page = page->parentWidget()) {
        auto* tabs = qobject_cast<QTabWidget*>(page->parentWidget()->parentWidget());
        if (tabs && tabs->indexOf(page) >= 0)
            tabs->setCurrentWidget(page);
    }
    const QModelIndex index = list->model()->index(row, 0);
    list->scrollTo(index);
    QTest::mouseClick(list->viewport(), button, modifiers, list->visualRect(index).center());
}

} // namespace halvane::test
