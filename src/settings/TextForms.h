#pragma once

#include <QString>
#include <optional>

namespace halvane {

// The text forms values take in the settings store, and the number rules the
// generators and checks share.

// A 16-bit signed whole number, blanks around it ignored.
std::optional<qint16> parseWholeNumber(const QString& text);

// "True"/"False" in any letter case, or a number (0 false, anything else true).
std::optional<bool> parseTruth(const QString& text);

inline QString truthText(bool value) {
    return value ? QStringLiteral("True") : QStringLiteral("False");
}

// A number as text with a sign position: a blank before numbers not negative.
inline QString signedText(long long value) {
    return value < 0 ? QString::number(value) : QLatin1Char(' ') + QString::number(value);
}

// The number a text starts with (blanks anywhere ignored, an optional sign,
// digits and one decimal point); 0 when the text does not start with one.
double leadingNumber(const QString& text);

} // namespace halvane
