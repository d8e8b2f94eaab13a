#include "platform/ConsolePlatform.h"

namespace halvane {

MsgAnswer ConsoleMessageBoxes::show(const QString& title, const QString& text, MsgButtons buttons,
                                    MsgIcon icon) {
    QString shown = text;
    shown.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    shown.replace(QLatin1Char('\r'), QLatin1Char('\n'));
    if (buttons == MsgButtons::YesNo)
        shown += QStringLiteral("\n(answered Yes)");
    std::fprintf(m_out, "%s: %s\n", qPrintable(title), qPrintable(shown));
    std::fflush(m_out);
    if (icon == MsgIcon::Critical)
        failureShown = true;
    return buttons == MsgButtons::YesNo ? MsgAnswer::Yes : MsgAnswer::Ok;
}

} // namespace halvane
