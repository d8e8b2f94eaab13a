#pragma once

#include <QObject>
#include <QStringList>
#include <functional>

class QLineEdit;

namespace Ui {
class frmMain;
}

namespace halvane {

struct AppContext;

// The checks before the options are used: ValidateAll before a launch or a
// configuration write, and the guards that act while the operator types
// (digits-only boxes, the log file name and private clients checks).
class Validation : public QObject {
    Q_OBJECT
public:
    // saveSettings stores every option; false when the store refused.
    Validation(Ui::frmMain& ui, AppContext& app, std::function<bool()> saveSettings,
               QObject* parent = nullptr);

    // True when every check passed and the settings were stored.
    bool ValidateAll();

    // Watches the numeric boxes' key presses and the two focus checks.
    void installGuards();

    void txtLogFileLostFocus();
    void txtPrivateClientsLostFocus();

    // The boxes that accept only digits and Backspace when typed into.
    static const QStringList& numericBoxes();

    // Refuses a value that the game would split into another command where
    // it is written (halvane.cfg, the rotation lines, the command line): the
    // message names the box and the character, and the box gets the focus.
    // True when every value written now is safe. Without the command line
    // only what goes into the scripts is checked (a configuration saved
    // under another name).
    bool consoleTextIsSafe(bool commandLineToo = true);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    bool checkAll(QString& failure);
    // Shows the "Advanced" tab with the box's whole text selected and focused.
    void focusAdvancedBox(QLineEdit* box);
    // Shows the box's tab and puts the focus into the box with its text selected.
    void focusBox(QWidget* box);
    // The first box whose text would break out of its place; message says why.
    QWidget* unsafeBox(QString& message, bool commandLineToo = true) const;
    // Text placed into a numeric box by pasting or the context menu keeps its digits.
    void keepDigits(QLineEdit* box);
    bool refuseKey(QObject* watched, QEvent* event);

    Ui::frmMain& ui;
    AppContext& m_app;
    std::function<bool()> m_saveSettings;
    QList<QObject*> m_numeric;
};

} // namespace halvane
