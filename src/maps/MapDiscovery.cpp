#include "maps/MapDiscovery.h"

#include "app/AppContext.h"
#include "config/ConsoleText.h"
#include "maps/ArchiveListing.h"
#include "maps/MapCatalogue.h"
#include "maps/MapDefaults.h"
#include "maps/MapSelectionFile.h"
#include "ui_frmMapSearch.h"

#include <QCoreApplication>
#include <QDir>
#include <QEventLoop>
#include <QFile>
#include <QTimer>

namespace halvane {

namespace {
// Maps named in the import list get these rules, whatever the defaults are.
MapRules importedRules() {
    MapRules rules = MapRules::builtIn();
    rules.captureLimit = QStringLiteral("0");
    return rules;
}

QStringList filesMatching(const QString& folder, const QString& pattern) {
    if (folder.isEmpty())
        return {};
    // Patterns match without regard to letter case, as the game's own
    // platform does; a name that begins with a dot is no hidden file there.
    return QDir(folder).entryList({pattern}, QDir::Files | QDir::Hidden,
                                  QDir::Name | QDir::IgnoreCase);
}
} // namespace

MapSearchWindow::MapSearchWindow(QWidget* owner)
    : QDialog(owner), ui(std::make_unique<Ui::frmMapSearch>()) {
    ui->setupUi(this);
    setModal(false);
    connect(ui->cmdCancel, &QAbstractButton::clicked, this, &MapSearchWindow::cancelRequested);
    connect(this, &QDialog::rejected, this, &MapSearchWindow::cancelRequested);
}

MapSearchWindow::~MapSearchWindow() = default;

void MapSearchWindow::setHeader(const QString& text) {
    ui->lblHeader->setText(text);
}
void MapSearchWindow::setStatus(const QString& text) {
    ui->lblStatus->setText(text);
}
QString MapSearchWindow::header() const {
    return ui->lblHeader->text();
}
QString MapSearchWindow::status() const {
    return ui->lblStatus->text();
}
void MapSearchWindow::setCancelEnabled(bool enabled) {
    ui->cmdCancel->setEnabled(enabled);
}

QStringList looseMapNames(const QString& folder) {
    QStringList names;
    // ".bsp" alone names the empty map, which a deleted slot answers for.
    for (const QString& file : filesMatching(folder, QStringLiteral("*.bsp")))
        names.append(file.chopped(4));
    return names;
}

QStringList archiveNames(const QString& folder) {
    return filesMatching(folder, QStringLiteral("*.pk3"));
}

bool isMapListEntry(const QString& line) {
    return !line.startsWith(QLatin1String("//")) && !line.startsWith(QLatin1String("  "));
}

MapDiscovery::MapDiscovery(MapCatalogue& catalogue, AppContext& app, QWidget* owner)
    : m_catalogue(catalogue), m_app(app), m_window(std::make_unique<MapSearchWindow>(owner)) {
    connect(m_window.get(), &MapSearchWindow::cancelRequested, this,
            [this] { m_cancelled = true; });
}

MapDiscovery::~MapDiscovery() = default;

// Each line stays up for an equal share of the search's pacing budget, at
// most its line hold, so that a few lines can be read and thousands still end
// within the budget. The time goes idle in an event loop: the window repaints
// and Cancel answers meanwhile, and no processor is kept busy.
void MapDiscovery::pause() {
    repaint();
    emit lineShown();
    if (m_lines <= 0) {
        m_lines = int(pakMaps.size()) + 2; // "Getting Map Names...", the entries, "Done"
        m_linesShown = 0;
        m_paceClock.start();
    }
    ++m_linesShown;
    const double hold = qMin<double>(m_pace.lineHoldMs, double(m_pace.budgetMs) / m_lines);
    const qint64 remaining = qint64(hold * m_linesShown) - m_paceClock.elapsed();
    if (remaining <= 0)
        return;
    QEventLoop idle;
    QTimer::singleShot(int(remaining), &idle, &QEventLoop::quit);
    idle.exec();
}

void MapDiscovery::repaint() {
    QCoreApplication::processEvents();
}

void MapDiscovery::GetMapsFromBaseDir(bool searchArchivesToo) {
    m_catalogue.DefaultRules = readDefaultRules(m_app.platform.store);
    m_atStartup = true;
    if (searchArchivesToo)
        searchArchives();
    if (!findLooseMaps() || !importMapList())
        m_catalogue.CurrentMapRecord = -1;
    m_atStartup = false;
    reportCutNames();
    reportLeftOut();
}

std::optional<MapRecord> MapDiscovery::newMap(const QString& name, const MapSnapshot& known,
                                              const MapRules& rules) const {
    const MapRecord record = makeMapRecord(name, name, rules);
    if (known.find(record.get(MapField::FileName)) >= 0)
        return std::nullopt;
    return record;
}

bool MapDiscovery::store(const std::vector<MapRecord>& records, const QStringList& names,
                         const QString& source) {
    qsizetype stored = 0;
    const bool all = m_catalogue.append(records, &stored);
    for (qsizetype i = 0; i < stored; ++i)
        noteIfCut(names[i]);
    if (!all) {
        m_app.platform.messages.tell(
            QStringLiteral("Warning"),
            QStringLiteral("%1 of the %2 new maps found in %3 could not be added to "
                           "maps.dat:\r\r%4\r\rThey are looked for again at the next start.")
                .arg(qsizetype(records.size()) - stored)
                .arg(records.size())
                .arg(source, m_catalogue.errorString()),
            MsgIcon::Critical);
    }
    return all;
}

void MapDiscovery::noteIfCut(const QString& name) {
    const int width = MapRecord::Fields[size_t(MapField::FileName)].width;
    if (trimSpaces(name.left(width)) != trimSpaces(name))
        m_cutNames.append(name);
}

bool MapDiscovery::leftOut(const MapRecord& record, const QString& found) {
    const QString name = record.get(MapField::FileName);
    // The empty name is a deleted slot's, which is never written.
    if (name.isEmpty() || isConsoleSafeMapName(name))
        return false;
    m_leftOut.append(found);
    return true;
}

void MapDiscovery::reportLeftOut() {
    if (m_leftOut.isEmpty())
        return;
    QStringList shown;
    for (const QString& name : m_leftOut.mid(0, 5)) {
        QString visible;
        for (const QChar c : name)
            visible += c.unicode() < 0x20 || c.unicode() == 0x7f
                           ? QStringLiteral("[code %1]").arg(c.unicode())
                           : QString(c);
        shown.append(visible);
    }
    if (m_leftOut.size() > shown.size())
        shown.append(QStringLiteral("and %1 more").arg(m_leftOut.size() - shown.size()));
    const qsizetype count = m_leftOut.size();
    m_leftOut.clear();
    m_app.platform.messages.tell(
        QStringLiteral("Map Names Left Out"),
        QStringLiteral("%1 %2 not added: the game's console cannot take a map name that holds a "
                       "control character, a double quote, a semicolon, a blank or a comment "
                       "mark, and would read the rest as another command:\r\r")
                .arg(count)
                .arg(count == 1 ? QStringLiteral("map was") : QStringLiteral("maps were")) +
            shown.join(QLatin1Char('\r')) +
            QStringLiteral("\r\rTo play one of them, give its .bsp file a name of letters, "
                           "digits and signs such as - and _."),
        MsgIcon::Information);
}

void MapDiscovery::reportCutNames() {
    if (m_cutNames.isEmpty())
        return;
    QStringList shown = m_cutNames.mid(0, 10);
    if (m_cutNames.size() > shown.size())
        shown.append(QStringLiteral("and %1 more").arg(m_cutNames.size() - shown.size()));
    m_cutNames.clear();
    m_app.platform.messages.tell(
        QStringLiteral("Map Names Cut"),
        QStringLiteral("maps.dat keeps 20 characters of a map's file name, so these maps were "
                       "added under their first 20:\r\r") +
            shown.join(QLatin1Char('\r')) +
            QStringLiteral("\r\rThe game loads a map by its whole name: to play one of them, "
                           "give its .bsp file a name of at most 20 characters."),
        MsgIcon::Information);
}

bool MapDiscovery::findLooseMaps() {
    if (m_app.state.GameFolder.isEmpty())
        return true;
    const QStringList names = looseMapNames(m_app.state.gameFile(QStringLiteral("baseq3/maps")));
    if (names.isEmpty())
        return true;
    MapSnapshot known = m_catalogue.snapshot();
    std::vector<MapRecord> added;
    QStringList addedNames;
    for (const QString& name : names) {
        if (const auto record = newMap(name, known, m_catalogue.DefaultRules)) {
            if (leftOut(*record, name))
                continue;
            known.appended(*record);
            added.push_back(*record);
            addedNames.append(name);
        }
    }
    return store(added, addedNames, QStringLiteral("baseq3\\maps"));
}

bool MapDiscovery::importMapList() {
    const QString path = m_app.platform.folder.file(QStringLiteral("maplist.txt"));
    if (!FileExists(path))
        return true;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return false;
    const QStringList lines = splitTextLines(file.readAll());
    if (file.error() != QFileDevice::NoError)
        return false;
    file.close();
    MapSnapshot known = m_catalogue.snapshot();
    std::vector<MapRecord> added;
    QStringList addedNames;
    for (const QString& line : lines) {
        if (!isMapListEntry(line))
            continue;
        if (const auto record = newMap(line, known, importedRules())) {
            if (leftOut(*record, line))
                continue;
            known.appended(*record);
            added.push_back(*record);
            addedNames.append(line);
        }
    }
    // Read once and gone, whether or not it added anything; but while some
    // of its maps could not be stored it stays for the next start (those
    // stored are found then and not added twice).
    if (!store(added, addedNames, QStringLiteral("maplist.txt")))
        return false;
    QFile::remove(path);
    return true;
}

void MapDiscovery::listArchives() {
    pakMaps.clear();
    const QString baseq3 = m_app.state.GameFolder.isEmpty()
                               ? QString()
                               : m_app.state.gameFile(QStringLiteral("baseq3"));
    pakList = archiveNames(baseq3);
    for (const QString& name : std::as_const(pakList)) {
        // The game's own archive holds only the maps the catalogue ships with.
        if (name == QLatin1String("pak0.pk3"))
            continue;
        m_window->setStatus(QStringLiteral("baseq3\\") + name);
        repaint();
        const QString path = QDir(baseq3).filePath(name);
        const bool listed = listArchive(path, [this](const QByteArray& member) {
            if (const auto map = bspMemberName(member))
                pakMaps.append(*map);
        });
        if (!listed) {
            m_app.platform.messages.tell(QStringLiteral("Error"),
                                         QStringLiteral("Error: ") + QDir::toNativeSeparators(path),
                                         MsgIcon::Critical);
        }
    }
    m_window->setHeader(QStringLiteral("Getting Map Names..."));
    pause();
}

void MapDiscovery::searchArchives() {
    if (m_searching)
        return;
    m_searching = true;
    m_cancelled = false;
    m_lines = 0;
    m_window->setCancelEnabled(true);
    m_app.platform.desktop.setBusy(true);
    listArchives();

    m_window->show();
    m_window->setHeader(QStringLiteral("Searching for PK3 files..."));
    m_window->setStatus(QString());
    repaint();

    MapSnapshot known = m_catalogue.snapshot();
    for (const QString& entry : std::as_const(pakMaps)) {
        if (entry.size() < 4)
            continue; // a member named "bsp" alone has no name to take
        // "xbsp" names the empty map, which a deleted slot answers for.
        const QString name = entry.chopped(4);
        const auto record = newMap(name, known, m_catalogue.DefaultRules);
        if (record && leftOut(*record, name)) {
            m_window->setStatus(QStringLiteral("Skipping: ") +
                                record->get(MapField::FileName).simplified());
        } else if (record) {
            if (m_catalogue.append({*record})) {
                known.appended(*record);
                noteIfCut(name);
            }
            m_window->setStatus(QStringLiteral("Adding: ") + name);
        } else {
            m_window->setStatus(QStringLiteral("Skipping: ") + name);
        }
        pause();
        // Cancel stops after the entry under way; what was added stays.
        if (m_cancelled)
            break;
    }

    m_window->setCancelEnabled(false);
    m_window->setHeader(QStringLiteral("Done"));
    m_window->setStatus(QStringLiteral("Finished loading maps"));
    pause();
    m_window->close();

    emit searchEnded();
    m_app.platform.desktop.setBusy(false);
    m_searching = false;
    if (!m_atStartup) {
        reportCutNames();
        reportLeftOut();
    }
}

} // namespace halvane
