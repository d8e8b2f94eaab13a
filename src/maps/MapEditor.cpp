#include "maps/MapEditor.h"

#include "app/AppContext.h"
#include "config/ConsoleText.h"
#include "maps/MapCatalogue.h"
#include "maps/MapNameList.h"
#include "maps/MapSelection.h"
#include "ui_frmMap.h"
#include "ui_frmMaps.h"

namespace halvane {

namespace {
const QString AddCaption = QStringLiteral("Add a Map");
const QString EditCaption = QStringLiteral("Edit Map");
} // namespace

MapEditor::MapEditor(QWidget* owner, Ui::frmMaps& page, MapCatalogue& catalogue, AppContext& app,
                     MapSelection& selection)
    : QDialog(owner), ui(std::make_unique<Ui::frmMap>()), page(page), m_catalogue(catalogue),
      m_app(app), m_selection(selection) {
    ui->setupUi(this);
    setModal(false);
    ui->lblIndexNum->setVisible(false);
    // No longer than the record keeps: a longer name would be listed whole
    // but found nowhere in the catalogue.
    ui->txtMapName->setMaxLength(MapRecord::Fields[size_t(MapField::DisplayName)].width);
    ui->txtFileName->setMaxLength(MapRecord::Fields[size_t(MapField::FileName)].width);
    connect(ui->Command2, &QAbstractButton::clicked, this, &MapEditor::okay);
    connect(ui->Command1, &QAbstractButton::clicked, this, &QDialog::close);
}

MapEditor::~MapEditor() = default;

void MapEditor::openForAdding() {
    m_catalogue.CurrentMapRecord = -1;
    setWindowTitle(AddCaption);
    ui->txtMapName->clear();
    ui->txtFileName->clear();
    ui->lblIndexNum->clear();
    show();
    raise();
    ui->txtMapName->setFocus();
}

void MapEditor::openForEditing() {
    const int focused = m_selection.availableCurrentRow();
    if (focused < 0)
        return;
    const qint16 n = m_catalogue.FindMap(m_selection.available().name(focused));
    if (n == -1 || !m_catalogue.readRecord(n))
        return;
    m_editRecord = n;
    ui->lblIndexNum->setText(QString::number(focused));
    setWindowTitle(EditCaption);
    ui->txtMapName->setText(m_catalogue.RecordBuffer.get(MapField::DisplayName));
    ui->txtFileName->setText(m_catalogue.RecordBuffer.get(MapField::FileName));
    show();
    raise();
}

void MapEditor::okay() {
    if (!CheckValidMap())
        return;
    if (windowTitle() != AddCaption)
        UpdateMap();
    else
        AddNewMap();
}

bool MapEditor::CheckValidMap() {
    MessageBoxes& messages = m_app.platform.messages;
    const QString file = ui->txtFileName->text();
    if (file.isEmpty()) {
        messages.tell(QStringLiteral("Incomplete Information"),
                      QStringLiteral("You must specify at least a file name for the new map."),
                      MsgIcon::Information);
        ui->txtFileName->setFocus();
        return false;
    }
    if (ui->txtMapName->text().isEmpty())
        ui->txtMapName->setText(file);
    const qsizetype dot = file.indexOf(QLatin1Char('.'));
    if (dot >= 0) {
        messages.tell(QStringLiteral("Warning"),
                      QStringLiteral("The file name should not include a file extension!"),
                      MsgIcon::Information);
        ui->txtFileName->setSelection(int(dot), int(file.size() - dot));
        ui->txtFileName->setFocus();
        return false;
    }
    if (file.contains(QLatin1Char(' '))) {
        messages.tell(QStringLiteral("Warning"),
                      QStringLiteral("Spaces are not allowed in map file names!"),
                      MsgIcon::Information);
        ui->txtFileName->selectAll();
        ui->txtFileName->setFocus();
        return false;
    }
    // The name goes into the map command of halvane.cfg and the rotation lines.
    if (const QString refused = mapNameRefusal(QStringLiteral("File Name"), file);
        !refused.isEmpty()) {
        messages.tell(QStringLiteral("Warning"), refused, MsgIcon::Information);
        ui->txtFileName->selectAll();
        ui->txtFileName->setFocus();
        return false;
    }
    return true;
}

void MapEditor::AddNewMap() {
    const QString file = trimSpaces(ui->txtFileName->text());
    if (m_catalogue.FindMap(file) != -1) {
        m_app.platform.messages.tell(QStringLiteral("Get some rest!"),
                                     QStringLiteral("That map already exists!"),
                                     MsgIcon::Information);
        return;
    }
    const int number = m_selection.available().count() > 0 ? m_catalogue.CountMaps() + 1 : 1;
    m_catalogue.RecordBuffer =
        makeMapRecord(trimSpaces(ui->txtMapName->text()), file, m_catalogue.DefaultRules);
    if (!m_catalogue.writeRecord(number)) {
        m_app.platform.messages.tell(
            QStringLiteral("Warning"),
            QStringLiteral("The map could not be written to maps.dat:\r\r") +
                m_catalogue.errorString(),
            MsgIcon::Critical);
        return;
    }
    m_selection.available().append({file});
    m_selection.highlightMapList(m_selection.available().count() - 1);
    page.MapList->setFocus();
    close();
}

void MapEditor::UpdateMap() {
    const QString name = trimSpaces(ui->txtMapName->text());
    const QString file = trimSpaces(ui->txtFileName->text());
    if (!m_catalogue.readRecord(m_editRecord)) {
        m_app.platform.messages.tell(
            QStringLiteral("Warning"),
            QStringLiteral("The map could not be read from maps.dat:\r\r") +
                m_catalogue.errorString(),
            MsgIcon::Critical);
        return;
    }
    m_catalogue.RecordBuffer.set(MapField::DisplayName, name);
    m_catalogue.RecordBuffer.set(MapField::FileName, file);
    if (!m_catalogue.writeRecord(m_editRecord)) {
        m_app.platform.messages.tell(
            QStringLiteral("Warning"),
            QStringLiteral("The map could not be written to maps.dat:\r\r") +
                m_catalogue.errorString(),
            MsgIcon::Critical);
        return;
    }
    if (m_editRecord == m_catalogue.CurrentMapRecord) {
        page.lblMap->setText(name);
        page.lblMapFilename->setText(file);
    }
    // The entry takes its new name where it stands. The highlight, the
    // current entry and the shown map stay where the operator left them
    // while the editor was open, so they still name the same map.
    m_selection.available().rename(ui->lblIndexNum->text().toInt(), file);
    page.MapList->setFocus();
    close();
}

void MapEditor::deleteMap() {
    MessageBoxes& messages = m_app.platform.messages;
    if (!messages.askYesNo(QStringLiteral("Confirm Delete"),
                           QStringLiteral("Maps should only be deleted if they no longer are "
                                          "installed on your system.\r\rAre you sure you want to "
                                          "delete the map \"") +
                               page.lblMap->text() + QStringLiteral("\"?"),
                           MsgIcon::Question))
        return;
    const int focused = m_selection.availableCurrentRow();
    const qint16 n =
        focused >= 0 ? m_catalogue.FindMap(m_selection.available().name(focused)) : qint16(-1);
    if (n == -1) {
        messages.tell(QStringLiteral("Halvane"), QStringLiteral("No map selected"), MsgIcon::None);
    } else if (m_catalogue.deleteRecord(n)) {
        page.lblMap->clear();
        page.lblMapFilename->clear();
        m_catalogue.CurrentMapRecord = -1;
    } else {
        messages.tell(QStringLiteral("Warning"),
                      QStringLiteral("The map could not be deleted from maps.dat."),
                      MsgIcon::Critical);
    }
    m_selection.LoadMaps();
}

} // namespace halvane
