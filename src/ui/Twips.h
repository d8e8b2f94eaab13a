#pragma once

#include <QWidget>

namespace halvane {

// Window heights are reckoned in twips (1440 to the inch) of the screen's
// logical resolution; this is the one place they turn into pixels.
inline int twipsToPixels(int twips, const QWidget& widget) {
    return qRound(double(twips) * widget.logicalDpiY() / 1440.0);
}
inline int pixelsToTwips(int pixels, const QWidget& widget) {
    return qRound(double(pixels) * 1440.0 / widget.logicalDpiY());
}

} // namespace halvane
