#include "ui/ImagePlugins.h"

#include <QApplication>
#include <QIconEngine>
#include <QPixmap>
#include <QPointer>
#include <QProxyStyle>

namespace halvane {

namespace {

// Stands for a standard icon of a style and asks the style for it on first use.
class DeferredIconEngine : public QIconEngine {
public:
    DeferredIconEngine(QStyle* style, QStyle::StandardPixmap which)
        : m_style(style), m_which(which) {}

    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode,
               QIcon::State state) override {
        icon().paint(painter, rect, Qt::AlignCenter, mode, state);
    }
    QSize actualSize(const QSize& size, QIcon::Mode mode, QIcon::State state) override {
        return icon().actualSize(size, mode, state);
    }
    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override {
        return icon().pixmap(size, mode, state);
    }
    QPixmap scaledPixmap(const QSize& size, QIcon::Mode mode, QIcon::State state,
                         qreal scale) override {
        return icon().pixmap(size, scale, mode, state);
    }
    QList<QSize> availableSizes(QIcon::Mode mode, QIcon::State state) override {
        return icon().availableSizes(mode, state);
    }
    bool isNull() override { return icon().isNull(); }
    QIconEngine* clone() const override { return new DeferredIconEngine(*this); }

private:
    const QIcon& icon() {
        if (!m_fetched && m_style) {
            m_icon = m_style->standardIcon(m_which);
            m_fetched = true;
        }
        return m_icon;
    }

    QPointer<QStyle> m_style;
    QStyle::StandardPixmap m_which;
    QIcon m_icon;
    bool m_fetched = false;
};

class DeferredIconStyle : public QProxyStyle {
public:
    using QProxyStyle::QProxyStyle;

    QIcon standardIcon(StandardPixmap which, const QStyleOption* option,
                       const QWidget* widget) const override {
        if (which == SP_ToolBarHorizontalExtensionButton ||
            which == SP_ToolBarVerticalExtensionButton)
            return QIcon(new DeferredIconEngine(baseStyle(), which));
        return QProxyStyle::standardIcon(which, option, widget);
    }
};

} // namespace

void leaveImagePluginsUnloaded() {
    if (dynamic_cast<DeferredIconStyle*>(QApplication::style()))
        return;
    QApplication::setStyle(new DeferredIconStyle(QApplication::style())); // keeps -style
    // The style reads its group box frame through the picture cache, which
    // is keyed by the file alone. Read here while no plugin folder is known,
    // the built-in PNG reader reads it, as it would after asking them all.
    const QStringList pluginFolders = QCoreApplication::libraryPaths();
    QCoreApplication::setLibraryPaths({});
    QPixmap frame(QStringLiteral(":/qt-project.org/styles/commonstyle/images/fusion_groupbox.png"));
    QCoreApplication::setLibraryPaths(pluginFolders);
}

} // namespace halvane
