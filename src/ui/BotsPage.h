#pragma once

#include <QScopedPointer>
#include <QWidget>

namespace Ui {
class frmBots;
}

namespace halvane {

// The Bots tab: bot type, the bot list with team and skill, automatic bots. Its controls keep
// the object names that the option table and the tests find them by.
class BotsPage : public QWidget {
    Q_OBJECT
public:
    explicit BotsPage(QWidget* parent = nullptr);
    ~BotsPage() override;

    Ui::frmBots& form() { return *ui; }

private:
    QScopedPointer<Ui::frmBots> ui;
};

} // namespace halvane
