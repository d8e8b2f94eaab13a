#pragma once

#include "settings/OptionPage.h"

#include <QScopedPointer>
#include <QWidget>

namespace Ui {
class frmOptions;
}

namespace halvane {

// The Options tab: game options, warm-up, master servers, power-ups. Its controls keep
// the object names that the option table and the tests find them by. It keeps the warm-up
// time and the start-state choices usable to match their check boxes.
class OptionsPage : public QWidget, public OptionPage {
    Q_OBJECT
public:
    explicit OptionsPage(QWidget* parent = nullptr);
    ~OptionsPage() override;

    Ui::frmOptions& form() { return *ui; }

    void UpdateWarmUpControls();
    void UpdateStartStateControls();

protected:
    QObject* holder(const OptionKey& option) const override;
    void loaded(const SettingsStore& store, int step, const Refused& refused) override;

private:
    QScopedPointer<Ui::frmOptions> ui;
};

} // namespace halvane
