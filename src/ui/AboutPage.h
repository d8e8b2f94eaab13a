#pragma once

#include <QScopedPointer>
#include <QWidget>

namespace Ui {
class frmAbout;
}

namespace halvane {

// The About tab: version, links and credits. Its controls keep
// the object names that the option table and the tests find them by.
class AboutPage : public QWidget {
    Q_OBJECT
public:
    explicit AboutPage(QWidget* parent = nullptr);
    ~AboutPage() override;

    Ui::frmAbout& form() { return *ui; }

private:
    QScopedPointer<Ui::frmAbout> ui;
};

} // namespace halvane
