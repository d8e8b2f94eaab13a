#include "maps/MapRulesPanel.h"

#include "app/AppContext.h"
#include "maps/MapDefaults.h"
#include "ui_frmMaps.h"

namespace halvane {

namespace {
const QString FailureTitle = QStringLiteral("Default Settings Not Applied");
}

MapRulesPanel::MapRulesPanel(Ui::frmMaps& ui, MapCatalogue& catalogue, AppContext& app)
    : ui(ui), m_catalogue(catalogue), m_app(app) {
    ui.txtMapTimeLimit->setMaxLength(3);
    ui.txtMapFragLimit->setMaxLength(3);
    ui.txtMapCapturelimit->setMaxLength(3);
    ui.txtMapSpeed->setMaxLength(4);
    ui.txtMapGravity->setMaxLength(4);
    ui.txtMapKnockback->setMaxLength(4);
}

void MapRulesPanel::ShowMap() {
    const MapRecord& record = m_catalogue.RecordBuffer;
    ui.lblMapFilename->setText(record.get(MapField::FileName));
    ui.lblMap->setText(record.get(MapField::DisplayName));
    ui.txtMapCapturelimit->setText(record.get(MapField::CaptureLimit));
    ui.txtMapFragLimit->setText(record.get(MapField::FragLimit));
    ui.txtMapGravity->setText(record.get(MapField::Gravity));
    ui.txtMapKnockback->setText(record.get(MapField::KnockBack));
    ui.txtMapSpeed->setText(record.get(MapField::Speed));
    ui.txtMapTimeLimit->setText(record.get(MapField::TimeLimit));
}

MapRules MapRulesPanel::shownRules() const {
    MapRules rules;
    rules.captureLimit = ui.txtMapCapturelimit->text();
    rules.fragLimit = ui.txtMapFragLimit->text();
    rules.gravity = ui.txtMapGravity->text();
    rules.knockBack = ui.txtMapKnockback->text();
    rules.speed = ui.txtMapSpeed->text();
    rules.timeLimit = ui.txtMapTimeLimit->text();
    return rules;
}

void MapRulesPanel::CommitShownMap() {
    if (m_catalogue.CurrentMapRecord <= 0 || trimSpaces(ui.lblMap->text()).isEmpty())
        return;
    writeShownMap();
}

void MapRulesPanel::writeShownMap() {
    const QString file = trimSpaces(ui.lblMapFilename->text());
    m_catalogue.RecordBuffer = makeMapRecord(ui.lblMap->text(), file, shownRules());
    if (!m_catalogue.writeRecord(m_catalogue.CurrentMapRecord)) {
        m_app.platform.messages.tell(QStringLiteral("Warning"),
                                     QStringLiteral("The rules shown for ") + file +
                                         QStringLiteral(" could not be written to maps.dat:\r\r") +
                                         m_catalogue.errorString(),
                                     MsgIcon::Critical);
    }
}

void MapRulesPanel::cmdDefault() {
    MessageBoxes& messages = m_app.platform.messages;
    if (!messages.askYesNo(
            QStringLiteral("Confirm Default Settings"),
            QStringLiteral("This will set the current settings for Time Limit, Frag "
                           "Limit,\rCapture Limit, Speed, Gravity, and Knock Back "
                           "for all maps,\rand use these settings for any maps you "
                           "add in the future.\r\rAre you sure you want to do this?"),
            MsgIcon::Question))
        return;
    Desktop& desktop = m_app.platform.desktop;
    desktop.setBusy(true);

    // Defining stage.
    MapRules rules = shownRules();
    bool storable = true;
    for (QString* value : {&rules.captureLimit, &rules.fragLimit, &rules.gravity, &rules.knockBack,
                           &rules.speed, &rules.timeLimit}) {
        *value = trimSpaces(*value);
        // The record keeps one byte per character.
        for (QChar c : std::as_const(*value))
            storable = storable && c.unicode() <= 0xFF;
    }
    if (!storable) {
        desktop.setBusy(false);
        messages.tell(FailureTitle, QStringLiteral("Error defining default values"),
                      MsgIcon::Critical);
        return;
    }
    m_catalogue.DefaultRules = rules;

    // Registry stage.
    if (!writeDefaultRules(m_app.platform.store, rules)) {
        desktop.setBusy(false);
        messages.tell(FailureTitle, QStringLiteral("Error writing default values to the registry"),
                      MsgIcon::Critical);
        return;
    }

    // Map data file stage: the file as it was stays at hand as maps.bak.
    if (!m_catalogue.backup() || !m_catalogue.applyRulesToAll(rules)) {
        desktop.setBusy(false);
        messages.tell(FailureTitle,
                      QStringLiteral("Error applying default values to the map data file, no "
                                     "changes were made. \r\rHowever, the default values have "
                                     "been stored, and will be used for any maps you add in the "
                                     "future."),
                      MsgIcon::Critical);
        return;
    }
    desktop.setBusy(false);
}

} // namespace halvane
