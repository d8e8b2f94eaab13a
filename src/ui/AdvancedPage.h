#pragma once

#include "settings/OptionPage.h"

#include <QScopedPointer>
#include <QWidget>

namespace Ui {
class frmAdvanced;
}

namespace halvane {

class ParameterMemory;

// The Advanced tab: start-up, passwords, memory, network, log file, extra scripts. Its controls
// keep the object names that the option table and the tests find them by. It keeps the log
// file, password and CD drive boxes usable to match their check boxes.
class AdvancedPage : public QWidget, public OptionPage {
    Q_OBJECT
public:
    explicit AdvancedPage(QWidget* parent = nullptr);
    ~AdvancedPage() override;

    Ui::frmAdvanced& form() { return *ui; }
    // The remembered parameter lines and the CD drive box, which the load
    // fills from the store being loaded.
    void useParameterMemory(ParameterMemory& parameters) { m_parameters = &parameters; }

    void UpdateLogFileControls();
    void UpdatePasswordControls();
    void UpdateCdControls();

protected:
    QObject* holder(const OptionKey& option) const override;
    void loaded(const SettingsStore& store, int step, const Refused& refused) override;

private:
    QScopedPointer<Ui::frmAdvanced> ui;
    ParameterMemory* m_parameters = nullptr;
};

} // namespace halvane
