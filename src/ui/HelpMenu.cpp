#include "ui/HelpMenu.h"

#include "app/AppContext.h"
#include "app/AppInfo.h"
#include "ui/SecretWindow.h"
#include "ui_frmAbout.h"
#include "ui_frmMain.h"

#include <QKeyEvent>
#include <QMainWindow>
#include <QMouseEvent>
#include <QTabBar>

namespace halvane {

HelpMenu::HelpMenu(QMainWindow& window, Ui::frmMain& frame, Ui::frmAbout& about, QLabel& nopLink,
                   AppContext& app, QObject* parent)
    : QObject(parent), m_window(window), m_frame(frame), m_about(about), m_app(app) {
    const auto site = [] { return AppInfo::productSiteAddress(); };
    connect(m_frame.mnuViewNews, &QAction::triggered, this,
            [this, site] { OpenDocument(site() + QStringLiteral("/news.shtml")); });
    connect(m_frame.mnuHelpHalvane, &QAction::triggered, this, [this] {
        OpenDocument(m_app.platform.folder.installed() + QStringLiteral("/help/help.htm"));
    });
    connect(m_frame.mnuHelpContext, &QAction::triggered, this,
            [this] { OpenDocument(helpTarget(m_frame.SSTab1->currentIndex())); });
    connect(m_frame.mnuHelpOnline, &QAction::triggered, this,
            [this, site] { OpenDocument(site()); });
    connect(m_frame.mnuHelpFAQ, &QAction::triggered, this,
            [this, site] { OpenDocument(site() + QStringLiteral("/FAQ.shtml")); });

    makeLink(*m_about.Label20, site);
    makeLink(*m_about.Label23, [this] { return mailLink(); });
    makeLink(*m_about.Label27, [site] { return site() + QStringLiteral("/bugreport.shtml"); });
    makeLink(nopLink, [] { return AppInfo::nopSiteAddress(); });

    m_frame.SSTab1->tabBar()->installEventFilter(this);
}

HelpMenu::~HelpMenu() {
    delete m_secret.data();
}

void HelpMenu::OpenDocument(const QString& target) {
    // Nothing is reported: a missing page or an absent mail program leaves
    // the window as it was.
    m_app.platform.shell.openDocument(target);
}

QString HelpMenu::helpPage(int tab) {
    static const char* const Pages[] = {"general.htm", "bots.htm",     "maps.htm",
                                        "options.htm", "advanced.htm", "about.htm"};
    if (tab < 0 || tab >= int(std::size(Pages)))
        return QString();
    return QString::fromLatin1(Pages[tab]);
}

QString HelpMenu::helpTarget(int tab) const {
    return m_app.platform.folder.installed() + QStringLiteral("/help/") + helpPage(tab);
}

QString HelpMenu::mailLink() const {
    return QStringLiteral("mailto:") + AppInfo::authorMailAddress() +
           QStringLiteral("?subject=Halvane ") + m_about.lblVersion->text() +
           QStringLiteral(" Feedback");
}

void HelpMenu::makeLink(QWidget& label, std::function<QString()> target) {
    m_links.insert(&label, std::move(target));
    label.setCursor(Qt::PointingHandCursor);
    // Reachable from the keyboard too: Tab to it, then Enter or Space.
    label.setFocusPolicy(Qt::StrongFocus);
    QFont font = label.font();
    font.setUnderline(true);
    label.setFont(font);
    QPalette palette = label.palette();
    palette.setColor(QPalette::WindowText, palette.color(QPalette::Link));
    label.setPalette(palette);
    label.installEventFilter(this);
}

void HelpMenu::showSecret() {
    if (!m_secret) {
        auto* secret = new SecretWindow(m_window);
        connect(secret, &SecretWindow::closed, this, [this] {
            // Closing it brings the main window forward again.
            m_window.show();
            m_window.raise();
            m_window.activateWindow();
        });
        m_secret = secret;
    }
    m_secret->show();
    m_secret->raise();
    m_secret->activateWindow();
}

bool HelpMenu::eventFilter(QObject* watched, QEvent* event) {
    if (watched == m_frame.SSTab1->tabBar()) {
        if (event->type() == QEvent::MouseButtonPress &&
            static_cast<QMouseEvent*>(event)->modifiers() == Qt::ShiftModifier)
            showSecret();
        return QObject::eventFilter(watched, event);
    }
    const auto link = m_links.constFind(watched);
    if (link == m_links.constEnd())
        return QObject::eventFilter(watched, event);
    if (event->type() == QEvent::MouseButtonRelease &&
        static_cast<QMouseEvent*>(event)->button() == Qt::LeftButton &&
        static_cast<QWidget*>(watched)->rect().contains(
            static_cast<QMouseEvent*>(event)->position().toPoint())) {
        OpenDocument((*link)());
        return true;
    }
    if (event->type() == QEvent::KeyPress) {
        const int key = static_cast<QKeyEvent*>(event)->key();
        if (key == Qt::Key_Return || key == Qt::Key_Enter || key == Qt::Key_Space) {
            OpenDocument((*link)());
            return true;
        }
    }
    return QObject::eventFilter(watched, event);
}

} // namespace halvane
