#pragma once

#include <QObject>

class QAction;
class QLabel;
class QWidget;

namespace halvane {

// The tip line and the bar under the buttons, shown by making the whole
// window taller and hidden by making it shorter. Heights are twips of the
// window's own height: its menu bar included, the caption and borders that
// the desktop draws around it excluded (their size is the desktop's).
class StatusPanel : public QObject {
    Q_OBJECT
public:
    static constexpr int ClosedTwips = 5790;
    static constexpr int OpenLimitTwips = 6456;
    static constexpr int OpenThresholdTwips = 6250;
    static constexpr int TipVisibleTwips = 6000;
    static constexpr int StepTwips = 6;
    // Where the bar and the tip line sit: the bar's top 920 twips above the
    // window's height, the tip line 5870 twips shorter than the window and
    // ending where the bar begins. Those heights counted a caption and
    // borders above the area below the menu bar, which this window's height
    // does not hold; CaptionTwips puts them back, so the bar keeps its place
    // at the foot of the window.
    static constexpr int BarAboveBottomTwips = 920;
    static constexpr int TipShorterTwips = 5870;
    static constexpr int CaptionTwips = 495;

    // tipArea (holding the label tip) and bar are children of area, the
    // window's central area below its menu bar; widthGuide (the tab control)
    // gives their width.
    StatusPanel(QWidget& window, QWidget& area, QWidget& tipArea, QLabel& tip, QWidget& bar,
                QWidget& widthGuide, QAction& menuItem, QObject* parent = nullptr);

    // The places the rule gives for a window height, in pixels of area.
    int barTopFor(int twips) const;
    int tipHeightFor(int twips) const;

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
    QWidget& m_tipArea;
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
