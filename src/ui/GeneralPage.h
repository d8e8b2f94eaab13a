#pragma once

#include "settings/OptionPage.h"

#include <QScopedPointer>
#include <QWidget>

namespace Ui {
class frmGeneral;
}

namespace halvane {

// The General tab: server name, message, game and server type, admin and player limits. Its
// controls keep the object names that the option table and the tests find them by.
class GeneralPage : public QWidget, public OptionPage {
    Q_OBJECT
public:
    explicit GeneralPage(QWidget* parent = nullptr);
    ~GeneralPage() override;

    Ui::frmGeneral& form() { return *ui; }

protected:
    QObject* holder(const OptionKey& option) const override;
    void loadOption(const SettingsStore& store, const OptionKey& option,
                    const Refused& refused) override;
    void loaded(const SettingsStore& store, int step, const Refused& refused) override;

private:
    QScopedPointer<Ui::frmGeneral> ui;
    // The stored game type, read one step before it is applied.
    qint16 m_gameType = 0;
};

} // namespace halvane
