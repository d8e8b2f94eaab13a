#pragma once

#include "config/ServerSettings.h"
#include "launch/CommandLine.h"

namespace halvane {

struct MainForm;
struct AppState;
class BotTables;

// The options of the main window as they stand now.
ServerSettings readServerSettings(const MainForm& ui, const BotTables& tables,
                                  const AppState& state);
// What the game's command line and the launch are made of, read from the
// main window's controls now.
LaunchOptions launchOptionsFrom(const MainForm& ui);

// The main window's controls as the script writers and the launch see them:
// read afresh at each call, so they never hold a stale copy.
class FormSettings : public ServerSettingsSource, public LaunchOptionsSource {
public:
    FormSettings(const MainForm& ui, const BotTables& tables, const AppState& state)
        : m_ui(ui), m_tables(tables), m_state(state) {}

    ServerSettings serverSettings() const override {
        return readServerSettings(m_ui, m_tables, m_state);
    }
    LaunchOptions launchOptions() const override { return launchOptionsFrom(m_ui); }

private:
    const MainForm& m_ui;
    const BotTables& m_tables;
    const AppState& m_state;
};

} // namespace halvane
