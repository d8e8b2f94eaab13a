#pragma once

#include <QObject>
#include <functional>

namespace Ui {
class frmMain;
}

namespace halvane {

struct AppContext;

// Writes the server configuration to a path; withCommandLine adds the
// closing comment with the game's command line. False when the write failed.
using WriteConfigFunction =
    std::function<bool(const QString& path, bool withCommandLine, const QString& commandLine)>;

// The File menu commands that write the configuration without launching, and
// the extra script chooser with its "Edit" button.
class ConfigFileCommands : public QObject {
    Q_OBJECT
public:
    ConfigFileCommands(Ui::frmMain& ui, AppContext& app, std::function<bool()> validateAll,
                       WriteConfigFunction writeConfig, QObject* parent = nullptr);

    void setWriteConfig(WriteConfigFunction writeConfig) { m_writeConfig = std::move(writeConfig); }

    // Refuses (with its own message) script values the game would split into
    // another command; "Save config file As" validates nothing else.
    std::function<bool()> consoleTextIsSafe;

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

    Ui::frmMain& ui;
    AppContext& m_app;
    std::function<bool()> m_validateAll;
    WriteConfigFunction m_writeConfig;
};

} // namespace halvane
