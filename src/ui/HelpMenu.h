#pragma once

#include <QHash>
#include <QObject>
#include <QPointer>
#include <functional>

class QLabel;
class QMainWindow;
class QWidget;

namespace Ui {
class frmMain;
class frmAbout;
} // namespace Ui

namespace halvane {

struct AppContext;

// The View and Help menus, the help pages, the About tab's links, the N-0-P
// link and the hidden window on the tab strip. Everything that leaves the
// program goes through OpenDocument.
class HelpMenu : public QObject {
    Q_OBJECT
public:
    // frame: the menus and the tab control; about: the About tab's links;
    // nopLink: the Advanced tab's N-0-P label.
    HelpMenu(QMainWindow& window, Ui::frmMain& frame, Ui::frmAbout& about, QLabel& nopLink,
             AppContext& app, QObject* parent = nullptr);
    ~HelpMenu() override;

    // Hands a help page, web address or mail link to the desktop; a failure
    // leaves everything as it was.
    void OpenDocument(const QString& target);

    // The help page of a tab ("bots.htm"); empty outside the six tabs.
    static QString helpPage(int tab);
    // The help page of a tab in the program's help folder; the folder itself
    // outside the six tabs.
    QString helpTarget(int tab) const;
    QString mailLink() const;

    // The hidden window, once it has been opened.
    QWidget* secretWindow() const { return m_secret; }
    void showSecret();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void makeLink(QWidget& label, std::function<QString()> target);

    QMainWindow& m_window;
    Ui::frmMain& m_frame;
    Ui::frmAbout& m_about;
    AppContext& m_app;
    QHash<QObject*, std::function<QString()>> m_links;
    QPointer<QWidget> m_secret;
};

} // namespace halvane
