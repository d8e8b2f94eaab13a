#pragma once

#include <QObject>
#include <QStringList>

class QLineEdit;
class QTabWidget;

namespace Ui {
class frmGeneral;
class frmBots;
class frmMaps;
class frmOptions;
class frmAdvanced;
} // namespace Ui

namespace halvane {

struct AppContext;
class SettingsController;

// The checks before the options are used: ValidateAll before a launch or a
// configuration write, and the guards that act while the operator types
// (digits-only boxes, the log file name and private clients checks).
class Validation : public QObject {
    Q_OBJECT
public:
    // The pages whose boxes are checked, and the tab control that shows the
    // page of a refused box; settings stores every option once the checks pass.
    Validation(Ui::frmGeneral& general, Ui::frmBots& bots, Ui::frmMaps& maps,
               Ui::frmOptions& options, Ui::frmAdvanced& advanced, QTabWidget& tabs,
               AppContext& app, SettingsController& settings, QObject* parent = nullptr);

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

    Ui::frmGeneral& m_general;
    Ui::frmBots& m_bots;
    Ui::frmMaps& m_maps;
    Ui::frmOptions& m_options;
    Ui::frmAdvanced& m_advanced;
    QTabWidget& m_tabs;
    AppContext& m_app;
    SettingsController& m_settings;
    QList<QObject*> m_numeric;
};

} // namespace halvane
