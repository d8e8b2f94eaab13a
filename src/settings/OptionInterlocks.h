#pragma once

#include <QObject>

namespace Ui {
class frmGeneral;
class frmOptions;
class frmAdvanced;
} // namespace Ui

namespace halvane {

struct AppContext;

// Keeps the options of one tab that depend on an option of another usable or
// unusable to match (the pages keep their own), and asks before demo
// recording. Handlers hang on toggled/currentIndexChanged, so values the
// program sets run the same rules as the operator's clicks.
class OptionInterlocks : public QObject {
    Q_OBJECT
public:
    OptionInterlocks(Ui::frmGeneral& general, Ui::frmOptions& options, Ui::frmAdvanced& advanced,
                     AppContext& app, QObject* parent = nullptr);

    void SetGameType();
    void UpdateServerTypeControls();

signals:
    // The operator chose a game type (not the start-up's own choice): the
    // map selection may suggest maps for it.
    void gameTypeChosen(int gameTypeIndex);

private:
    void gameTypeClicked();
    void demoRecordingClicked(bool checked);

    Ui::frmGeneral& m_general;
    Ui::frmOptions& m_options;
    Ui::frmAdvanced& m_advanced;
    AppContext& m_app;
};

} // namespace halvane
