#include "maps/MapSelection.h"

#include "app/AppContext.h"
#include "maps/MapCatalogue.h"
#include "maps/MapNameList.h"
#include "maps/MapPreview.h"
#include "maps/MapRulesPanel.h"
#include "maps/MapSelectionFile.h"
#include "ui_frmMaps.h"

#include <QListView>
#include <QMenu>
#include <QMouseEvent>
#include <QScopedValueRollback>
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
QList<int> highlightedRows(const QAbstractItemView& list) {
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

MapSelection::MapSelection(Ui::frmMaps& ui, const MapListMenu& menu, MapCatalogue& catalogue,
                           AppContext& app, MapRulesPanel& rules, MapPreview& preview,
                           const GameFiles& gameFiles, QObject* parent)
    : QObject(parent), ui(ui), m_menu(menu), m_catalogue(catalogue), m_app(app), m_rules(rules),
      m_preview(preview), m_available(new MapNameList(gameFiles, this)),
      m_selected(new MapNameList(gameFiles, this)) {
    for (auto [list, model] : {std::pair{ui.MapList, m_available}, {ui.SelMap, m_selected}}) {
        // Every entry is as large as the last one: a long list lays itself
        // out without measuring each entry.
        list->setUniformItemSizes(true);
        list->setModel(model);
        const auto forget = [this, list = list] {
            if (m_shown.list == list)
                m_shown = {};
        };
        connect(model, &QAbstractItemModel::rowsInserted, this, forget);
        connect(model, &QAbstractItemModel::rowsRemoved, this, forget);
        connect(model, &QAbstractItemModel::rowsMoved, this, forget);
        connect(model, &QAbstractItemModel::modelReset, this, forget);
        connect(list, &QAbstractItemView::clicked, this,
                [this, list = list](const QModelIndex& index) { clicked(*list, index.row()); });
    }
    connect(ui.MapList->selectionModel(), &QItemSelectionModel::currentRowChanged, this,
            [this](const QModelIndex& current) {
                if (!m_quiet)
                    mapListChosen(current.row());
            });
    connect(ui.SelMap->selectionModel(), &QItemSelectionModel::currentRowChanged, this,
            [this](const QModelIndex& current) {
                if (!m_quiet)
                    selMapChosen(current.row());
            });
    connect(ui.MapList, &QAbstractItemView::doubleClicked, this, &MapSelection::cmdAddSelMap);
    connect(ui.SelMap, &QAbstractItemView::doubleClicked, this, &MapSelection::cmdRemSelMap);
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
    connect(&menu.selectMaps, &QAction::triggered, this, &MapSelection::cmdAddSelMap);
    connect(&menu.selectAll, &QAction::triggered, this, &MapSelection::cmdMapSelectAll);

    ui.MapList->viewport()->installEventFilter(this);
    ui.MapList->setContextMenuPolicy(Qt::CustomContextMenu);
    connect(ui.MapList, &QWidget::customContextMenuRequested, this, [this](const QPoint& at) {
        prepareMapListMenu();
        emit mapListMenuRequested(this->ui.MapList->viewport()->mapToGlobal(at));
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
    ui.Frame14->setTitle(QString::number(m_available->count()) + QStringLiteral(" Available Maps"));
}

void MapSelection::updateSelectedCaption() {
    ui.Frame15->setTitle(QString::number(m_selected->count()) + QStringLiteral(" Maps Selected"));
}

int MapSelection::availableCurrentRow() const {
    return ui.MapList->currentIndex().row();
}

void MapSelection::marksChanged() {
    m_available->marksChanged();
    m_selected->marksChanged();
}

void MapSelection::LoadMaps(bool readSelectionFile) {
    const MapSnapshot catalogue = m_catalogue.snapshot();
    {
        const QScopedValueRollback quiet(m_quiet, true);
        Latin1Names listed;
        listed.reserve(catalogue.count(), qsizetype(catalogue.count()) * 12);
        for (int n = 1; n <= catalogue.count(); ++n) {
            const QByteArrayView name = trimSpaces(catalogue.record(n).bytes(MapField::FileName));
            if (!name.isEmpty())
                listed.add(name);
        }
        m_available->setNames(std::move(listed));
    }
    if (m_available->count() > 0)
        highlightMapList(0); // which sets CurrentMapRecord

    const QString path = selectionFilePath();
    if (readSelectionFile && FileExists(path)) {
        {
            const QScopedValueRollback quiet(m_quiet, true);
            m_selected->clear();
        }
        MapSelectionRead read = readMapSelection(path, catalogue);
        if (!read.ok) {
            m_app.platform.messages.tell(QStringLiteral("Warning"),
                                         QStringLiteral("Error opening mapsel.txt"),
                                         MsgIcon::Critical);
        }
        {
            const QScopedValueRollback quiet(m_quiet, true);
            m_selected->setNames(std::move(read.lines));
        }
        if (m_selected->count() > 0)
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
        const QScopedValueRollback quiet(m_quiet, true);
        m_selected->setNames(known);
    }
    if (m_selected->count() > 0)
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
    return m_selected->names();
}

void MapSelection::highlight(QAbstractItemView& list, int row) {
    const QScopedValueRollback quiet(m_quiet, true);
    list.selectionModel()->setCurrentIndex(list.model()->index(row, 0),
                                           QItemSelectionModel::ClearAndSelect);
}

void MapSelection::highlightMapList(int row) {
    highlight(*ui.MapList, row);
    mapListChosen(row);
}

void MapSelection::highlightSelMap(int row) {
    highlight(*ui.SelMap, row);
    selMapChosen(row);
}

void MapSelection::clicked(QAbstractItemView& list, int row) {
    if (m_shown.list == &list && m_shown.row == row &&
        m_shown.record == m_catalogue.CurrentMapRecord)
        return;
    if (&list == ui.MapList)
        mapListChosen(row);
    else
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
    if (row < 0 || row >= m_available->count())
        return;
    const bool shown = showChosen(m_available->name(row));
    m_shown = {ui.MapList, row, m_catalogue.CurrentMapRecord};
    if (shown)
        return;
    m_catalogue.MapDataDamaged = true;
    m_app.platform.messages.tell(QStringLiteral("Note"),
                                 QStringLiteral("Exiting before going the map data becomes "
                                                "corrupted!"),
                                 MsgIcon::Information);
    emit closeRequested();
}

void MapSelection::selMapChosen(int row) {
    if (row < 0 || row >= m_selected->count())
        return;
    const bool shown = showChosen(m_selected->name(row));
    m_shown = {ui.SelMap, row, m_catalogue.CurrentMapRecord};
    if (shown)
        return;
    emit closeRequested();
}

int MapSelection::selHighlighted() const {
    return highlightedRows(*ui.SelMap).value(0, -1);
}

void MapSelection::cmdAddSelMap() {
    const int p = selHighlighted();
    const QList<int> rows = highlightedRows(*ui.MapList);
    if (!rows.isEmpty()) {
        QStringList names;
        names.reserve(rows.size());
        for (int row : rows)
            names.append(m_available->name(row));
        // One insertion for the lot. Inserted one by one right after p, each
        // new map would land before the ones added before it: the lot goes in
        // reversed, and the one highlighted at the end is the last one added.
        int highlighted = p + 1;
        {
            const QScopedValueRollback quiet(m_quiet, true);
            if (p < 0) {
                m_selected->append(names);
                highlighted = m_selected->count() - 1;
            } else {
                std::reverse(names.begin(), names.end());
                m_selected->insert(p + 1, names);
            }
        }
        highlight(*ui.SelMap, highlighted);
    }
    // Each added map loses its highlight, and the last one added is chosen.
    if (!rows.isEmpty())
        highlightMapList(rows.last());
    else if (m_available->count() > 0)
        highlightMapList(0);
    updateSelectedCaption();
}

void MapSelection::cmdRemSelMap() {
    const int i = selHighlighted();
    if (i < 0)
        return;
    {
        const QScopedValueRollback quiet(m_quiet, true);
        m_selected->remove(i);
    }
    updateSelectedCaption();
    if (m_selected->count() > 0)
        highlightSelMap(i < m_selected->count() ? i : i - 1);
}

void MapSelection::moveSelected(int step) {
    if (highlightedRows(*ui.SelMap).size() > 1) {
        m_app.platform.messages.tell(
            ApplicationTitle, QStringLiteral("Only one map can be moved at a time"), MsgIcon::None);
        return;
    }
    const int i = selHighlighted();
    const int to = i + step;
    if (i < 0 || to < 0 || to >= m_selected->count())
        return;
    {
        const QScopedValueRollback quiet(m_quiet, true);
        m_selected->move(i, to);
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
        const QScopedValueRollback quiet(m_quiet, true);
        m_selected->clear();
    }
    updateSelectedCaption();
}

void MapSelection::cmdMapSelectAll() {
    ui.MapList->selectAll();
}

void MapSelection::addByType(const QString& text) {
    QStringList found;
    for (const QString& entry : m_available->names()) {
        if (entry.contains(text, Qt::CaseInsensitive))
            found.append(entry);
    }
    {
        const QScopedValueRollback quiet(m_quiet, true);
        m_selected->append(found);
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
    if (m_selected->count() < 2) {
        m_app.platform.messages.tell(QStringLiteral("Notice"),
                                     QStringLiteral("You need to have at least two maps selected "
                                                    "for this feature to work (think about it)."),
                                     MsgIcon::Information);
        return;
    }
    m_app.platform.desktop.setBusy(true);
    const int n = m_selected->count() - 1;
    {
        const QScopedValueRollback quiet(m_quiet, true);
        std::uniform_real_distribution<double> uniform(0.0, 1.0);
        for (int pass = 0; pass < 100; ++pass) {
            std::mt19937_64 generator = seededFromTimeOfDay();
            const double r1 = uniform(generator);
            const double r2 = uniform(generator);
            // src from 1 to n, dst from 0 to n - 1.
            const int src = qMin(int(r1 * n), n - 1) + 1;
            const int dst = qMin(int(r2 * n), n - 1);
            m_selected->move(src, dst);
        }
    }
    m_app.platform.desktop.setBusy(false);
}

int MapSelection::CountSelectedMaps() const {
    return int(highlightedRows(*ui.MapList).size());
}

void MapSelection::prepareMapListMenu() {
    const int highlighted = CountSelectedMaps();
    m_menu.editMap.setEnabled(highlighted == 1);
    m_menu.deleteMap.setEnabled(highlighted == 1);
    m_menu.selectMaps.setEnabled(highlighted > 0);
    if (highlighted == 1)
        m_menu.selectMaps.setText(QStringLiteral("Select this map"));
    else if (highlighted > 1)
        m_menu.selectMaps.setText(QStringLiteral("Select these maps"));
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
    const QStringList& names = m_available->names();
    std::vector<bool> highlighted(size_t(names.size()), false);
    for (int row : highlightedRows(*ui.MapList))
        highlighted[size_t(row)] = true;
    bool differs = false;
    for (qsizetype i = 0; i < names.size() && !differs; ++i)
        differs = names[i].contains(mark, Qt::CaseSensitive) != highlighted[size_t(i)];
    if (!differs || !m_app.platform.messages.askYesNo(title, text, MsgIcon::Question))
        return;
    cmdMapClearAll();
    if (gameTypeIndex == 1)
        cmdMapTourney();
    else
        cmdMapCtf();
}

} // namespace halvane
