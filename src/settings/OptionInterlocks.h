#pragma once

#include <QObject>

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

signals:
    // The operator chose a game type (not the start-up's own choice): the
    // map selection may suggest maps for it.
    void gameTypeChosen(int gameTypeIndex);

private:
    void gameTypeClicked();
    void demoRecordingClicked(bool checked);

    MainForm& ui;
    AppContext& m_app;
};

} // namespace halvane
