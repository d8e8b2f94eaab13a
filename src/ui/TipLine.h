#pragma once

#include <QHash>
#include <QObject>
#include <QSet>

class QLabel;
class QLineEdit;
class QWidget;

namespace halvane {

// The tip line of the main window: mouse movement over a control of the tip
// tables puts that control's tip on it, and the listed text boxes select
// their whole text when they receive the focus. The controls are found in
// the window's widget tree by their object names.
class TipLine : public QObject {
    Q_OBJECT
public:
    TipLine(QWidget& window, QLabel& tipLine, QObject* parent = nullptr);

    // Sets the tip line: the web site line for an empty text, the trademark
    // notice for "tm", otherwise t itself.
    void ShowTip(const QString& t);
    static void SelectText(QLineEdit& box);

    // The text the tip line shows for a control now (built tips included);
    // a null string for a control the tables do not name.
    QString tipOf(const QWidget& control) const;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void watch(QWidget& control);
    QString tipForKey(const QString& key) const;

    QWidget& m_window;
    QLabel& m_tipLine;
    QHash<QObject*, QWidget*> m_owner; // watched object -> the control whose tip it shows
    QSet<QObject*> m_selectAll;
    QSet<QObject*> m_selectNothing;
};

} // namespace halvane
