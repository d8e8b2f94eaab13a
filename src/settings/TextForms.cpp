#include "settings/TextForms.h"

namespace halvane {

std::optional<qint16> parseWholeNumber(const QString& text) {
    bool ok = false;
    const int value = text.trimmed().toInt(&ok);
    if (!ok || value < -32768 || value > 32767)
        return std::nullopt;
    return qint16(value);
}

std::optional<bool> parseTruth(const QString& text) {
    const QString trimmed = text.trimmed();
    if (trimmed.compare(QLatin1String("True"), Qt::CaseInsensitive) == 0)
        return true;
    if (trimmed.compare(QLatin1String("False"), Qt::CaseInsensitive) == 0)
        return false;
    bool ok = false;
    const double number = trimmed.toDouble(&ok);
    if (!ok)
        return std::nullopt;
    return number != 0.0;
}

double leadingNumber(const QString& typed) {
    // Blanks count nowhere, so "1 6" reads as 16 and "- 5" as -5.
    QString text;
    text.reserve(typed.size());
    for (const QChar c : typed) {
        if (c != QLatin1Char(' ') && c != QLatin1Char('\t'))
            text += c;
    }
    int i = 0;
    const int n = text.size();
    if (i < n && (text[i] == QLatin1Char('+') || text[i] == QLatin1Char('-')))
        ++i;
    bool digits = false;
    bool point = false;
    while (i < n) {
        const QChar c = text[i];
        if (c.isDigit() && c.unicode() < 128) {
            digits = true;
        } else if (c == QLatin1Char('.') && !point) {
            point = true;
        } else {
            break;
        }
        ++i;
    }
    if (!digits)
        return 0.0;
    QString number = text.left(i);
    if (number.endsWith(QLatin1Char('.')))
        number.chop(1);
    return number.toDouble();
}

} // namespace halvane
