#pragma once

#include <QObject>
#include <functional>

namespace halvane {

struct MainForm;
struct AppContext;

// Keeps dependent options usable or unusable to match the options they depend
// on. Handlers hang on toggled/currentIndexChanged, so values the program sets
// run the same rules as the operator's clicks.
class OptionInterlocks : public QObject {
    Q_OBJECT
public:
    OptionInterlocks(MainForm& ui, AppContext& app, QObject* parent = nullptr);

    void SetGameType();
    void UpdateWarmUpControls();
    void UpdateLogFileControls();
    void UpdateStartStateControls();
    void UpdatePasswordControls();
    void UpdateBotSkillControls();
    void UpdateRandomBotControls();
    void UpdateBotTypeControls();
    void UpdateServerTypeControls();
    void UpdateCdControls();

    // The map suggestion that follows a game-type change to Tournament or
    // Capture the Flag; installed by the map selection.
    std::function<void(int gameTypeIndex)> suggestMaps;

private:
    void gameTypeClicked();
    void demoRecordingClicked(bool checked);

    MainForm& ui;
    AppContext& m_app;
};

} // namespace halvane
