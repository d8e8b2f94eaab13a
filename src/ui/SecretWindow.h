#pragma once

#include <QDialog>
#include <memory>

namespace Ui {
class frmSecret;
}

namespace halvane {

// The hidden window behind a Shift+click on the tab strip: a picture and a
// few fixed lines. Not modal; owned by the main window.
class SecretWindow : public QDialog {
    Q_OBJECT
public:
    explicit SecretWindow(QWidget& owner);
    ~SecretWindow() override;

signals:
    void closed();

protected:
    void done(int result) override;

private:
    std::unique_ptr<Ui::frmSecret> ui;
};

} // namespace halvane
