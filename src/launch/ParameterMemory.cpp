#include "launch/ParameterMemory.h"

#include "app/AppContext.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>

namespace halvane {

namespace {
const QString Section = QStringLiteral("Advanced");
QString parameterKey(int i) {
    return QStringLiteral("Parameter") + QString::number(i);
}
} // namespace

ParameterMemory::ParameterMemory(QComboBox& parameters, QCheckBox& specifyCd, QLineEdit& cdDrive,
                                 AppContext& app)
    : m_parameters(parameters), m_specifyCd(specifyCd), m_cdDrive(cdDrive), m_app(app) {
    // The list holds the remembered lines only: Enter must not add the typed
    // text to it, or the next save would shift a line that was never stored.
    m_parameters.setInsertPolicy(QComboBox::NoInsert);
}

void ParameterMemory::loadParameterList() {
    loadParameterList(m_app.platform.store);
}

void ParameterMemory::loadParameterList(const SettingsStore& store) {
    m_parameters.clear();
    for (int i = 0; i < Offered; ++i) {
        const QString line = store.read(Section, parameterKey(i), QString());
        if (!line.isEmpty())
            m_parameters.addItem(line);
    }
    m_parameters.setEditText(store.read(Section, QStringLiteral("CDLine"), QString()));
}

void ParameterMemory::saveParameterList() {
    saveParameterList(m_app.platform.store);
}

void ParameterMemory::saveParameterList(SettingsStore& store) {
    const QString text = m_parameters.currentText();
    if (text.trimmed().isEmpty()) {
        store.write(Section, QStringLiteral("CDLine"), text);
        store.flush();
        return;
    }
    bool known = false;
    for (int i = 0; i < Offered && !known; ++i)
        known = store.read(Section, parameterKey(i), QString()) == text;
    store.write(Section, QStringLiteral("CDLine"), text);
    if (!known) {
        // Shift what the list shows one place down; the tenth falls out of
        // reach under "Parameter10".
        for (int i = m_parameters.count() - 1; i >= 0; --i)
            store.write(Section, parameterKey(i + 1), m_parameters.itemText(i));
        store.write(Section, parameterKey(0), text);
    }
    store.flush();
}

bool ParameterMemory::storeOfferedLines(SettingsStore& store) const {
    bool ok = true;
    for (int i = 0; i < m_parameters.count() && i < Offered; ++i)
        ok = store.write(Section, parameterKey(i), m_parameters.itemText(i)) && ok;
    return ok;
}

void ParameterMemory::loadCdDrive() {
    loadCdDrive(m_app.platform.store);
}

void ParameterMemory::loadCdDrive(const SettingsStore& store) {
    try {
        m_cdDrive.setEnabled(true);
        m_cdDrive.clear();
        const QString letter = store.read(Section, QStringLiteral("CDLetter"), QString());
        if (!letter.isEmpty())
            m_cdDrive.setText(letter);
    } catch (...) {
        m_cdDrive.setText(QStringLiteral("C:"));
        m_app.platform.messages.tell(QStringLiteral("Warning!"),
                                     QStringLiteral("Halvane was unable to locate a valid CD Rom "
                                                    "drive.\r\rThe C: Drive has been selected by "
                                                    "default."),
                                     MsgIcon::Critical);
    }
    m_cdDrive.setEnabled(m_specifyCd.isChecked());
}

} // namespace halvane
