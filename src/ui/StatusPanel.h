#pragma once

#include <QObject>

class QAction;
class QLabel;
class QWidget;

namespace halvane {

// The tip line and the bar under the buttons, shown by making the whole
// window taller and hidden by making it shorter. Heights are twips of the
// window's outer height.
class StatusPanel : public QObject {
    Q_OBJECT
public:
    static constexpr int ClosedTwips = 5790;
    static constexpr int OpenLimitTwips = 6456;
    static constexpr int OpenThresholdTwips = 6250;
    static constexpr int TipVisibleTwips = 6000;
    static constexpr int StepTwips = 6;
    // Where the bar and the tip line sit, from the window's height.
    static constexpr int BarAboveBottomTwips = 920;
    static constexpr int TipShorterTwips = 5870;
    // The tip line keeps its top and ends where the bar begins.
    static constexpr int TipTopTwips = TipShorterTwips - BarAboveBottomTwips;

    // tip and bar are children of area, which lies below the menu bar of
    // window; widthGuide (the tab control) gives their left edge and width.
    StatusPanel(QWidget& window, QWidget& area, QLabel& tip, QWidget& bar, QWidget& widthGuide,
                QAction& menuItem, QObject* parent = nullptr);

    void RollOut();
    void Rollin();
    void toggle();
    // Open when tall enough; while rolling, the state it rolls towards.
    bool isOpen() const;
    bool isRolling() const { return m_rolling; }

    int heightTwips() const;
    void setHeightTwips(int twips);

    // Places the bar and the tip line for the window's present height.
    void place();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    bool step(int twips);

    QWidget& m_window;
    QWidget& m_area;
    QLabel& m_tip;
    QWidget& m_bar;
    QWidget& m_widthGuide;
    QAction& m_menuItem;
    // The height last set in twips: a pixel holds several twips, so the
    // window's pixel height alone cannot tell 6249 from 6250.
    int m_setTwips = -1;
    bool m_rolling = false;
    bool m_rollingOpen = false;
};

} // namespace halvane
