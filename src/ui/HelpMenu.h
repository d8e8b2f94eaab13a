#pragma once

#include <QHash>
#include <QObject>
#include <QPointer>
#include <functional>

class QMainWindow;
class QWidget;

namespace halvane {

struct MainForm;
struct AppContext;

// The View and Help menus, the help pages, the About tab's links, the N-0-P
// link and the hidden window on the tab strip. Everything that leaves the
// program goes through OpenDocument.
class HelpMenu : public QObject {
    Q_OBJECT
public:
    HelpMenu(QMainWindow& window, MainForm& ui, AppContext& app, QObject* parent = nullptr);
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
    MainForm& ui;
    AppContext& m_app;
    QHash<QObject*, std::function<QString()>> m_links;
    QPointer<QWidget> m_secret;
};

} // namespace halvane
