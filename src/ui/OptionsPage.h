#pragma once

#include <QScopedPointer>
#include <QWidget>

namespace Ui {
class frmOptions;
}

namespace halvane {

// The Options tab: game options, warm-up, master servers, power-ups. Its controls keep
// the object names that the option table and the tests find them by.
class OptionsPage : public QWidget {
    Q_OBJECT
public:
    explicit OptionsPage(QWidget* parent = nullptr);
    ~OptionsPage() override;

    Ui::frmOptions& form() { return *ui; }

private:
    QScopedPointer<Ui::frmOptions> ui;
};

} // namespace halvane
