#pragma once

#include <QObject>

class QAction;
class QLabel;
class QWidget;

namespace halvane {

// The tip line and the bar under the buttons, shown by making the whole
// window taller and hidden by making it shorter.
class StatusPanel : public QObject {
    Q_OBJECT
public:
    static constexpr int ClosedTwips = 5790;
    static constexpr int OpenLimitTwips = 6456;
    static constexpr int OpenThresholdTwips = 6250;
    static constexpr int TipVisibleTwips = 6000;
    static constexpr int StepTwips = 6;

    StatusPanel(QWidget& window, QLabel& tip, QAction& menuItem, QObject* parent = nullptr);

    void RollOut();
    void Rollin();
    void toggle();
    bool isOpen() const;

    int heightTwips() const;
    void setHeightTwips(int twips);

private:
    QWidget& m_window;
    QLabel& m_tip;
    QAction& m_menuItem;
};

} // namespace halvane
