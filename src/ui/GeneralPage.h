#pragma once

#include <QScopedPointer>
#include <QWidget>

namespace Ui {
class frmGeneral;
}

namespace halvane {

// The General tab: server name, message, game and server type, admin and player limits. Its
// controls keep the object names that the option table and the tests find them by.
class GeneralPage : public QWidget {
    Q_OBJECT
public:
    explicit GeneralPage(QWidget* parent = nullptr);
    ~GeneralPage() override;

    Ui::frmGeneral& form() { return *ui; }

private:
    QScopedPointer<Ui::frmGeneral> ui;
};

} // namespace halvane
