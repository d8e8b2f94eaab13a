#pragma once

#include <QObject>

class QAbstractButton;
class QAction;
class QComboBox;

namespace halvane {

struct AppContext;
class ConfigSteps;

// The controls the commands answer to and read.
struct ConfigFileControls {
    QAction* mnuFileMakeCfg;
    QAction* mnuFileSaveAs;
    QAbstractButton* cmdEditCfg;
    QComboBox* txtCfg; // the extra script
};

// The File menu commands that write the configuration without launching, and
// the extra script chooser with its "Edit" button.
class ConfigFileCommands : public QObject {
    Q_OBJECT
public:
    ConfigFileCommands(const ConfigFileControls& ui, AppContext& app, ConfigSteps& steps,
                       QObject* parent = nullptr);

    // True when the configuration was written.
    bool mnuFileMakeCfg();
    void mnuFileSaveAs();
    void cmdEditCfg();
    void txtCfgChanged();

private:
    bool write(const QString& path);
    // Why the configuration may not be saved as target (the game, the
    // program's own files, the scripts the configuration runs), or empty.
    QString refusedTarget(const QString& target) const;

    ConfigFileControls ui;
    AppContext& m_app;
    ConfigSteps* m_steps;
};

} // namespace halvane
