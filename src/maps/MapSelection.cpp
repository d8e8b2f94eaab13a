#include "maps/MapSelection.h"

#include "app/AppContext.h"
#include "maps/MapCatalogue.h"
#include "maps/MapEntryDelegate.h"
#include "maps/MapPreview.h"
#include "maps/MapRulesPanel.h"
#include "maps/MapSelectionFile.h"
#include "ui_frmMain.h"

#include <QMenu>
#include <QMouseEvent>
#include <algorithm>
#include <chrono>
#include <random>
#include <vector>

namespace halvane {

namespace {
const QString ApplicationTitle = QStringLiteral("Halvane");

// Seconds since midnight with their fraction, as a seed: every pass of the
// shuffle starts its generator afresh from the time of day.
std::mt19937_64 seededFromTimeOfDay() {
    using namespace std::chrono;
    const auto now = system_clock::now().time_since_epoch();
    const auto sinceMidnight = duration_cast<nanoseconds>(now % hours(24)).count();
    std::seed_seq seed{quint32(sinceMidnight), quint32(quint64(sinceMidnight) >> 32)};
    return std::mt19937_64(seed);
}

// The highlighted rows of a list in ascending order, read from the selection
// ranges rather than asked of every entry.
QList<int> highlightedRows(const QListWidget& list) {
    QList<int> rows;
    const QItemSelection selection = list.selectionModel()->selection();
    for (const QItemSelectionRange& range : selection) {
        for (int row = range.top(); row <= range.bottom(); ++row)
            rows.append(row);
    }
    std::sort(rows.begin(), rows.end());
    rows.erase(std::unique(rows.begin(), rows.end()), rows.end());
    return rows;
}
} // namespace

MapSelection::MapSelection(Ui::frmMain& ui, MapCatalogue& catalogue, AppContext& app,
                           MapRulesPanel& rules, MapPreview& preview, const GameFiles& gameFiles,
                           QObject* parent)
    : QObject(parent), ui(ui), m_catalogue(catalogue), m_app(app), m_rules(rules),
      m_preview(preview) {
    connect(ui.MapList, &QListWidget::currentRowChanged, this, &MapSelection::mapListChosen);
    connect(ui.SelMap, &QListWidget::currentRowChanged, this, &MapSelection::selMapChosen);
    connect(ui.MapList, &QListWidget::itemDoubleClicked, this, &MapSelection::cmdAddSelMap);
    connect(ui.SelMap, &QListWidget::itemDoubleClicked, this, &MapSelection::cmdRemSelMap);
    connect(ui.cmdAddSelMap, &QAbstractButton::clicked, this, &MapSelection::cmdAddSelMap);
    connect(ui.cmdRemSelMap, &QAbstractButton::clicked, this, &MapSelection::cmdRemSelMap);
    connect(ui.cmdMapUp, &QAbstractButton::clicked, this, &MapSelection::cmdMapUp);
    connect(ui.cmdMapDown, &QAbstractButton::clicked, this, &MapSelection::cmdMapDown);
    connect(ui.cmdMapClearAll, &QAbstractButton::clicked, this, &MapSelection::cmdMapClearAll);
    connect(ui.cmdMapSelectAll, &QAbstractButton::clicked, this, &MapSelection::cmdMapSelectAll);
    connect(ui.cmdMapDm, &QAbstractButton::clicked, this, &MapSelection::cmdMapDm);
    connect(ui.cmdMapCtf, &QAbstractButton::clicked, this, &MapSelection::cmdMapCtf);
    connect(ui.cmdMapTourney, &QAbstractButton::clicked, this, &MapSelection::cmdMapTourney);
    connect(ui.cmdRandomize, &QAbstractButton::clicked, this, &MapSelection::cmdRandomize);
    connect(ui.mnuMapSelect, &QAction::triggered, this, &MapSelection::cmdAddSelMap);
    connect(ui.mnuMapsSelectAll, &QAction::triggered, this, &MapSelection::cmdMapSelectAll);

    // Long lists lay themselves out without measuring every entry.
    new MapEntryDelegate(*ui.MapList, gameFiles);
    new MapEntryDelegate(*ui.SelMap, gameFiles);

    openPopup = [this](const QPoint& at) { this->ui.mnuMapList->popup(at); };
    ui.MapList->viewport()->installEventFilter(this);
    ui.MapList->setContextMenuPolicy(Qt::CustomContextMenu);
    connect(ui.MapList, &QWidget::customContextMenuRequested, this, [this](const QPoint& at) {
        prepareMapListMenu();
        openPopup(this->ui.MapList->viewport()->mapToGlobal(at));
    });
}

bool MapSelection::eventFilter(QObject* watched, QEvent* event) {
    // The list would highlight the entry under a right click and make it
    // current, which shows that map; the menu acts on the maps highlighted
    // before the click, so the button only opens the menu.
    if (watched == ui.MapList->viewport()) {
        switch (event->type()) {
        case QEvent::MouseButtonPress:
        case QEvent::MouseButtonRelease:
        case QEvent::MouseButtonDblClick:
            if (static_cast<QMouseEvent*>(event)->button() == Qt::RightButton)
                return true;
            break;
        case QEvent::MouseMove:
            if (static_cast<QMouseEvent*>(event)->buttons() == Qt::RightButton)
                return true;
            break;
        default:
            break;
        }
    }
    return QObject::eventFilter(watched, event);
}

QString MapSelection::selectionFilePath() const {
    return m_app.platform.folder.file(QStringLiteral("mapsel.txt"));
}

void MapSelection::updateAvailableCaption() {
    ui.Frame14->setTitle(QString::number(ui.MapList->count()) + QStringLiteral(" Available Maps"));
}

void MapSelection::updateSelectedCaption() {
    ui.Frame15->setTitle(QString::number(ui.SelMap->count()) + QStringLiteral(" Maps Selected"));
}

void MapSelection::LoadMaps(bool readSelectionFile) {
    const MapSnapshot catalogue = m_catalogue.snapshot();
    // The names by record number: entries of mapsel.txt share their text.
    std::vector<QString> names(size_t(catalogue.count()) + 1);
    {
        const QSignalBlocker blocker(ui.MapList);
        ui.MapList->clear();
        QStringList listed;
        listed.reserve(catalogue.count());
        for (int n = 1; n <= catalogue.count(); ++n) {
            names[size_t(n)] = catalogue.record(n).get(MapField::FileName);
            if (!names[size_t(n)].isEmpty())
                listed.append(names[size_t(n)]);
        }
        ui.MapList->addItems(listed);
    }
    if (ui.MapList->count() > 0)
        highlightMapList(0); // which sets CurrentMapRecord

    const QString path = selectionFilePath();
    if (readSelectionFile && FileExists(path)) {
        {
            const QSignalBlocker blocker(ui.SelMap);
            ui.SelMap->clear();
        }
        const MapSelectionRead read = readMapSelection(path, catalogue, names);
        if (!read.ok) {
            m_app.platform.messages.tell(QStringLiteral("Warning"),
                                         QStringLiteral("Error opening mapsel.txt"),
                                         MsgIcon::Critical);
        }
        {
            const QSignalBlocker blocker(ui.SelMap);
            ui.SelMap->addItems(read.entries);
        }
        if (ui.SelMap->count() > 0)
            highlightSelMap(0);
    }
    updateAvailableCaption();
    updateSelectedCaption();
}

QStringList MapSelection::setSelectedMaps(const QStringList& maps) {
    const MapSnapshot catalogue = m_catalogue.snapshot();
    QStringList known, unknown;
    for (const QString& map : maps) {
        if (catalogue.find(map) >= 1)
            known.append(map);
        else
            unknown.append(map);
    }
    {
        const QSignalBlocker blocker(ui.SelMap);
        ui.SelMap->clear();
        ui.SelMap->addItems(known);
    }
    if (ui.SelMap->count() > 0)
        highlightSelMap(0);
    updateSelectedCaption();
    return unknown;
}

void MapSelection::SaveMaps() {
    if (!writeMapSelection(selectionFilePath(), selectedMaps())) {
        m_app.platform.messages.tell(QStringLiteral("Warning"),
                                     QStringLiteral("Error writing mapsel.txt"), MsgIcon::Critical);
    }
}

QStringList MapSelection::selectedMaps() const {
    QStringList entries;
    entries.reserve(ui.SelMap->count());
    for (int i = 0; i < ui.SelMap->count(); ++i)
        entries.append(ui.SelMap->item(i)->text());
    return entries;
}

void MapSelection::highlightMapList(int row) {
    {
        const QSignalBlocker blocker(ui.MapList);
        ui.MapList->setCurrentRow(row, QItemSelectionModel::ClearAndSelect);
    }
    mapListChosen(row);
}

void MapSelection::highlightSelMap(int row) {
    {
        const QSignalBlocker blocker(ui.SelMap);
        ui.SelMap->setCurrentRow(row, QItemSelectionModel::ClearAndSelect);
    }
    selMapChosen(row);
}

bool MapSelection::showChosen(const QString& entry) {
    m_rules.CommitShownMap();
    m_catalogue.CurrentMapRecord = m_catalogue.FindMap(entry);
    if (m_catalogue.CurrentMapRecord < 1 || !m_catalogue.readRecord(m_catalogue.CurrentMapRecord))
        return false;
    m_rules.ShowMap();
    m_preview.showPreview(entry);
    return true;
}

void MapSelection::mapListChosen(int row) {
    QListWidgetItem* item = ui.MapList->item(row);
    if (!item || showChosen(item->text()))
        return;
    m_catalogue.MapDataDamaged = true;
    m_app.platform.messages.tell(QStringLiteral("Note"),
                                 QStringLiteral("Exiting before going the map data becomes "
                                                "corrupted!"),
                                 MsgIcon::Information);
    if (closeMainWindow)
        closeMainWindow();
}

void MapSelection::selMapChosen(int row) {
    QListWidgetItem* item = ui.SelMap->item(row);
    if (!item || showChosen(item->text()))
        return;
    if (closeMainWindow)
        closeMainWindow();
}

int MapSelection::selHighlighted() const {
    const QList<QListWidgetItem*> highlighted = ui.SelMap->selectedItems();
    return highlighted.isEmpty() ? -1 : ui.SelMap->row(highlighted.first());
}

void MapSelection::cmdAddSelMap() {
    const int p = selHighlighted();
    const QList<int> rows = highlightedRows(*ui.MapList);
    if (!rows.isEmpty()) {
        QStringList names;
        names.reserve(rows.size());
        for (int row : rows)
            names.append(ui.MapList->item(row)->text());
        // One insertion for the lot. Inserted one by one right after p, each
        // new map would land before the ones added before it: the lot goes in
        // reversed, and the one highlighted at the end is the last one added.
        const QSignalBlocker blocker(ui.SelMap);
        int highlighted = p + 1;
        if (p < 0) {
            ui.SelMap->addItems(names);
            highlighted = ui.SelMap->count() - 1;
        } else {
            std::reverse(names.begin(), names.end());
            ui.SelMap->insertItems(p + 1, names);
        }
        ui.SelMap->setCurrentRow(highlighted, QItemSelectionModel::ClearAndSelect);
    }
    // Each added map loses its highlight, and the last one added is chosen.
    if (!rows.isEmpty())
        highlightMapList(rows.last());
    else if (ui.MapList->count() > 0)
        highlightMapList(0);
    updateSelectedCaption();
}

void MapSelection::cmdRemSelMap() {
    const int i = selHighlighted();
    if (i < 0)
        return;
    {
        const QSignalBlocker blocker(ui.SelMap);
        delete ui.SelMap->takeItem(i);
    }
    updateSelectedCaption();
    if (ui.SelMap->count() > 0)
        highlightSelMap(i < ui.SelMap->count() ? i : i - 1);
}

void MapSelection::moveSelected(int step) {
    if (ui.SelMap->selectedItems().size() > 1) {
        m_app.platform.messages.tell(
            ApplicationTitle, QStringLiteral("Only one map can be moved at a time"), MsgIcon::None);
        return;
    }
    const int i = selHighlighted();
    const int to = i + step;
    if (i < 0 || to < 0 || to >= ui.SelMap->count())
        return;
    {
        const QSignalBlocker blocker(ui.SelMap);
        QListWidgetItem* item = ui.SelMap->takeItem(i);
        ui.SelMap->insertItem(to, item);
    }
    highlightSelMap(to);
    ui.SelMap->setFocus();
}

void MapSelection::cmdMapUp() {
    moveSelected(-1);
}

void MapSelection::cmdMapDown() {
    moveSelected(+1);
}

void MapSelection::cmdMapClearAll() {
    {
        const QSignalBlocker blocker(ui.SelMap);
        ui.SelMap->clear();
    }
    updateSelectedCaption();
}

void MapSelection::cmdMapSelectAll() {
    ui.MapList->selectAll();
}

void MapSelection::addByType(const QString& text) {
    QStringList found;
    for (int i = 0; i < ui.MapList->count(); ++i) {
        const QString entry = ui.MapList->item(i)->text();
        if (entry.contains(text, Qt::CaseInsensitive))
            found.append(entry);
    }
    {
        const QSignalBlocker blocker(ui.SelMap);
        ui.SelMap->addItems(found);
    }
    updateSelectedCaption();
}

void MapSelection::cmdMapDm() {
    addByType(QStringLiteral("dm"));
}

void MapSelection::cmdMapCtf() {
    addByType(QStringLiteral("ctf"));
}

void MapSelection::cmdMapTourney() {
    addByType(QStringLiteral("tourney"));
}

void MapSelection::cmdRandomize() {
    if (ui.SelMap->count() < 2) {
        m_app.platform.messages.tell(QStringLiteral("Notice"),
                                     QStringLiteral("You need to have at least two maps selected "
                                                    "for this feature to work (think about it)."),
                                     MsgIcon::Information);
        return;
    }
    m_app.platform.desktop.setBusy(true);
    const int n = ui.SelMap->count() - 1;
    {
        const QSignalBlocker blocker(ui.SelMap);
        std::uniform_real_distribution<double> uniform(0.0, 1.0);
        for (int pass = 0; pass < 100; ++pass) {
            std::mt19937_64 generator = seededFromTimeOfDay();
            const double r1 = uniform(generator);
            const double r2 = uniform(generator);
            // src from 1 to n, dst from 0 to n - 1.
            const int src = qMin(int(r1 * n), n - 1) + 1;
            const int dst = qMin(int(r2 * n), n - 1);
            ui.SelMap->insertItem(dst, ui.SelMap->takeItem(src));
        }
    }
    m_app.platform.desktop.setBusy(false);
}

int MapSelection::CountSelectedMaps() const {
    return int(ui.MapList->selectedItems().size());
}

void MapSelection::prepareMapListMenu() {
    const int highlighted = CountSelectedMaps();
    ui.mnuMapEdit->setEnabled(highlighted == 1);
    ui.mnuMapDelete->setEnabled(highlighted == 1);
    ui.mnuMapSelect->setEnabled(highlighted > 0);
    if (highlighted == 1)
        ui.mnuMapSelect->setText(QStringLiteral("Select this map"));
    else if (highlighted > 1)
        ui.mnuMapSelect->setText(QStringLiteral("Select these maps"));
}

void MapSelection::suggestMaps(int gameTypeIndex) {
    QString mark, title, text;
    if (gameTypeIndex == 1) {
        mark = QStringLiteral("tour");
        title = QStringLiteral("Tourney Suggestion");
        text = QStringLiteral("Would you like to automatically select all tourney maps only?");
    } else if (gameTypeIndex == 3) {
        mark = QStringLiteral("ctf");
        title = QStringLiteral("CTF Suggestion");
        text = QStringLiteral("Would you like to automatically select all CTF maps only?");
    } else {
        return;
    }
    std::vector<bool> highlighted(size_t(ui.MapList->count()), false);
    for (int row : highlightedRows(*ui.MapList))
        highlighted[size_t(row)] = true;
    bool differs = false;
    for (int i = 0; i < ui.MapList->count() && !differs; ++i) {
        differs =
            ui.MapList->item(i)->text().contains(mark, Qt::CaseSensitive) != highlighted[size_t(i)];
    }
    if (!differs || !m_app.platform.messages.askYesNo(title, text, MsgIcon::Question))
        return;
    cmdMapClearAll();
    if (gameTypeIndex == 1)
        cmdMapTourney();
    else
        cmdMapCtf();
}

} // namespace halvane
