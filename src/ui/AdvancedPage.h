#pragma once

#include <QScopedPointer>
#include <QWidget>

namespace Ui {
class frmAdvanced;
}

namespace halvane {

// The Advanced tab: start-up, passwords, memory, network, log file, extra scripts. Its controls
// keep the object names that the option table and the tests find them by.
class AdvancedPage : public QWidget {
    Q_OBJECT
public:
    explicit AdvancedPage(QWidget* parent = nullptr);
    ~AdvancedPage() override;

    Ui::frmAdvanced& form() { return *ui; }

private:
    QScopedPointer<Ui::frmAdvanced> ui;
};

} // namespace halvane
