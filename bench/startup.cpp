// Start-up to the main window shown, timed from outside as a whole process.
//
//   halvane_startup --prepare DIR delivered|largest|selected [tab]
//                                      makes a fixture in DIR
//   halvane_startup DIR [--cpu]        starts on it and ends once the window
//                                      is shown; --cpu prints the processor
//                                      time used until then, in milliseconds,
//                                      before the window is torn down
//
// "delivered": the files delivered beside the executable. "largest": the
// same with a catalogue of 32,766 maps and 300 archives in baseq3, with the
// search for new maps at start-up off. "selected": the largest, with every
// map selected in mapsel.txt and the tab last shown stored as "LastTab"
// (default 2, the Maps tab).
#include "app/AppContext.h"
#include "maps/MapCatalogue.h"
#include "maps/MapRecord.h"
#include "platform/QtPlatform.h"
#include "ui/MainWindow.h"

#include "ShownWindow.h"

#include <QApplication>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <cstdio>
#include <zlib.h>

using namespace halvane;

namespace {

bool copyDelivered(const QString& from, const QString& to) {
    QDirIterator it(from, QDir::Files, QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QString source = it.next();
        const QFileInfo info(source);
        if (info.isExecutable() && info.suffix().isEmpty())
            continue; // the programs themselves
        const QString target = to + source.mid(from.size());
        QDir().mkpath(QFileInfo(target).absolutePath());
        QFile::remove(target);
        if (!QFile::copy(source, target))
            return false;
    }
    return true;
}

bool writeCatalogue(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate))
        return false;
    const MapRules rules{"20", "15", "8", "800", "320", "1000"};
    for (int n = 1; n <= MapCatalogue::MaxRecords; ++n) {
        const QString name = QStringLiteral("bench%1").arg(n, 5, 10, QLatin1Char('0'));
        const MapRecord record = makeMapRecord(name, name, rules);
        file.write(record.bytes(), MapRecord::Size);
    }
    return file.error() == QFile::NoError;
}

// One stored member, written by hand: a zip library linked in here would be
// loaded into every start-up this program times.
bool writeArchive(const QString& path, int n) {
    const QByteArray name = QStringLiteral("maps/pak%1map.bsp").arg(n).toLatin1();
    const QByteArray content("IBSP");
    const quint32 crc = quint32(
        crc32(0L, reinterpret_cast<const Bytef*>(content.constData()), uInt(content.size())));
    QByteArray zip;
    const auto put = [&zip](quint64 value, int bytes) {
        for (int i = 0; i < bytes; ++i)
            zip.append(char(value >> (8 * i)));
    };
    // local header, then the member, then the central directory and its end
    const auto common = [&] {
        put(20, 2), put(0, 2), put(0, 2), put(0, 4); // version, flags, stored, time
        put(crc, 4), put(content.size(), 4), put(content.size(), 4), put(name.size(), 2);
        put(0, 2); // extra field
    };
    put(0x04034b50, 4), common();
    zip += name + content;
    const qsizetype directory = zip.size();
    put(0x02014b50, 4), put(20, 2), common();
    put(0, 2), put(0, 2), put(0, 2), put(0, 4), put(0, 4); // comment, disk, attributes, offset
    zip += name;
    const qsizetype directorySize = zip.size() - directory;
    put(0x06054b50, 4), put(0, 2), put(0, 2), put(1, 2), put(1, 2);
    put(directorySize, 4), put(directory, 4), put(0, 2);
    QFile file(path);
    return file.open(QIODevice::WriteOnly | QIODevice::Truncate) && file.write(zip) == zip.size();
}

bool writeSelection(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate))
        return false;
    QByteArray lines;
    for (int n = 1; n <= MapCatalogue::MaxRecords; ++n)
        lines += QStringLiteral("bench%1\r\n").arg(n, 5, 10, QLatin1Char('0')).toLatin1();
    return file.write(lines) == lines.size();
}

int prepare(const QString& dir, const QString& kind, const QString& lastTab) {
    const QString program = dir + QStringLiteral("/program");
    const QString game = dir + QStringLiteral("/game");
    QDir(dir).removeRecursively();
    QDir().mkpath(program);
    QDir().mkpath(game + QStringLiteral("/baseq3"));
    if (!copyDelivered(QCoreApplication::applicationDirPath(), program))
        return 1;
    QFile exe(game + QStringLiteral("/quake3.exe"));
    if (!exe.open(QIODevice::WriteOnly) || exe.write("#!/bin/sh\n") < 0)
        return 1;
    exe.close();
    exe.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    const bool selected = kind == QLatin1String("selected");
    if (selected && !writeSelection(program + QStringLiteral("/mapsel.txt")))
        return 1;
    if (kind == QLatin1String("largest") || selected) {
        if (!writeCatalogue(program + QStringLiteral("/maps.dat")))
            return 1;
        for (int n = 1; n <= 300; ++n) {
            if (!writeArchive(
                    game + QStringLiteral("/baseq3/pak%1.pk3").arg(n, 3, 10, QLatin1Char('0')), n))
                return 1;
        }
    }
    QtSettingsStore store(dir + QStringLiteral("/Halvane.ini"));
    store.write(QStringLiteral("Settings"), QStringLiteral("Path"), game);
    store.write(QStringLiteral("Settings"), QStringLiteral("Exe"), QStringLiteral("quake3.exe"));
    store.write(QStringLiteral("Settings"), QStringLiteral("CheckNewMaps"),
                QStringLiteral("False"));
    if (selected)
        store.write(QStringLiteral("Settings"), QStringLiteral("LastTab"), lastTab);
    return store.flush() ? 0 : 1;
}

} // namespace

int main(int argc, char* argv[]) {
    QApplication application(argc, argv);
    const QStringList args = application.arguments();
    if (args.size() >= 4 && args[1] == QLatin1String("--prepare"))
        return prepare(args[2], args[3], args.value(4, QStringLiteral("2")));
    const bool reportCpu = args.size() == 3 && args[2] == QLatin1String("--cpu");
    if (args.size() != 2 && !reportCpu) {
        std::fprintf(stderr, "usage: halvane_startup --prepare DIR delivered|largest|selected "
                             "[tab] | DIR [--cpu]\n");
        return 2;
    }
    const QString dir = args[1];
    QApplication::setQuitOnLastWindowClosed(false);
    QtMessageBoxes messages;
    QtFileDialogs dialogs;
    QtProcesses processes;
    QtShell shell;
    QtDesktop desktop;
    QtSettingsStore store(dir + QStringLiteral("/Halvane.ini"));
    ProgramFolder folder(dir + QStringLiteral("/program"), dir + QStringLiteral("/state"));
    AppContext app{{messages, dialogs, processes, shell, desktop, store, folder}, {}};
    MainWindow window(app);
    window.start();
    return endOnceShown(window, reportCpu);
}
