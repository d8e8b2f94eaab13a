#pragma once

#include <QScopedPointer>
#include <QWidget>

namespace Ui {
class frmMaps;
}

namespace halvane {

// The Maps tab: the available and selected map lists with their buttons, and
// the shown map's picture, names and rules. The maps controllers are handed
// its form; the popup menu of the available list stays in the frame's menu bar.
class MapsPage : public QWidget {
    Q_OBJECT
public:
    explicit MapsPage(QWidget* parent = nullptr);
    ~MapsPage() override;

    Ui::frmMaps& form() { return *ui; }

private:
    QScopedPointer<Ui::frmMaps> ui;
};

} // namespace halvane
