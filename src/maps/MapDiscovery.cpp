#include "maps/MapDiscovery.h"

#include "app/AppContext.h"
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
    // platform does.
    return QDir(folder).entryList({pattern}, QDir::Files, QDir::Name | QDir::IgnoreCase);
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
    for (const QString& file : filesMatching(folder, QStringLiteral("*.bsp"))) {
        if (file.size() > 4)
            names.append(file.left(file.size() - 4));
    }
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
    pause = [this] { holdLine(); };
    QObject::connect(m_window.get(), &MapSearchWindow::cancelRequested,
                     [this] { m_cancelled = true; });
}

MapDiscovery::~MapDiscovery() = default;

// Each line stays up for an equal share of the search's pacing budget, at
// most LineHoldMs, so that a few lines can be read and thousands still end
// within the budget. The time goes idle in an event loop: the window repaints
// and Cancel answers meanwhile, and no processor is kept busy.
void MapDiscovery::holdLine() {
    repaint();
    if (m_lines <= 0) {
        m_lines = int(pakMaps.size()) + 2; // "Getting Map Names...", the entries, "Done"
        m_linesShown = 0;
        m_pacing.start();
    }
    ++m_linesShown;
    const double hold = qMin<double>(LineHoldMs, double(PacingBudgetMs) / m_lines);
    const qint64 remaining = qint64(hold * m_linesShown) - m_pacing.elapsed();
    if (remaining <= 0)
        return;
    QEventLoop idle;
    QTimer::singleShot(int(remaining), &idle, &QEventLoop::quit);
    idle.exec();
}

void MapDiscovery::repaint() {
    QCoreApplication::processEvents();
}

void MapDiscovery::GetMapsFromBaseDir() {
    m_catalogue.DefaultRules = readDefaultRules(m_app.platform.store);
    if (searchAtStartup && searchAtStartup())
        searchArchives();
    if (!findLooseMaps() || !importMapList())
        m_catalogue.CurrentMapRecord = -1;
}

bool MapDiscovery::findLooseMaps() {
    if (m_app.state.GameFolder.isEmpty())
        return true;
    const QStringList names = looseMapNames(m_app.state.gameFile(QStringLiteral("baseq3/maps")));
    if (names.isEmpty())
        return true;
    MapSnapshot known = m_catalogue.snapshot();
    std::vector<MapRecord> added;
    for (const QString& name : names) {
        if (known.find(name) >= 0)
            continue;
        const MapRecord record = makeMapRecord(name, name, m_catalogue.DefaultRules);
        known.appended(record);
        added.push_back(record);
    }
    return m_catalogue.append(added);
}

bool MapDiscovery::importMapList() {
    const QString path = m_app.platform.folder.file(QStringLiteral("maplist.txt"));
    if (!FileExists(path))
        return true;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return false;
    const QStringList lines = splitTextLines(file.readAll());
    file.close();
    MapSnapshot known = m_catalogue.snapshot();
    std::vector<MapRecord> added;
    for (const QString& line : lines) {
        if (!isMapListEntry(line) || known.find(line) >= 0)
            continue;
        const MapRecord record = makeMapRecord(line, line, importedRules());
        known.appended(record);
        added.push_back(record);
    }
    const bool stored = m_catalogue.append(added);
    // Read once: the list goes whether or not it added anything.
    QFile::remove(path);
    return stored;
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
        const QString name = entry.left(qMax<qsizetype>(0, entry.size() - 4));
        if (name.isEmpty())
            continue; // a member named "bsp" alone names no map
        if (known.find(name) >= 0) {
            m_window->setStatus(QStringLiteral("Skipping: ") + name);
        } else {
            const MapRecord record = makeMapRecord(name, name, m_catalogue.DefaultRules);
            if (m_catalogue.append({record}))
                known.appended(record);
            m_window->setStatus(QStringLiteral("Adding: ") + name);
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

    if (LoadMaps)
        LoadMaps();
    m_app.platform.desktop.setBusy(false);
    m_searching = false;
}

} // namespace halvane
