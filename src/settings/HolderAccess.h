#pragma once

#include "settings/OptionCatalogue.h"

class QObject;

namespace halvane {

// Reads a control's live value in the text form its key is stored in.
QString holderValue(const QObject* holder, TextForm form);

// Puts a stored text into a control; false when the text does not convert or
// the control refuses it (the control then keeps its value). Setting a value
// runs the control's change handling, as a click would.
bool setHolderValue(QObject* holder, TextForm form, const QString& text);

} // namespace halvane
