#pragma once

class QWidget;

namespace halvane {

// Gives every input control below root a name a screen reader can speak
// where the form left it without one: the text of the label that has it as
// its buddy, else the caption of the frame around it (with its position for
// a control array, "Additional Master Servers 2"). The list and edit box of a
// selector take the selector's name, a tab control is "Tabs". Names set in
// the form stay.
void nameControls(QWidget& root);

// From now on selectors are spoken by their name, their entry being their
// value. Called before the first form is built: Qt keeps the interface it
// made for a control, and a form that names a selector already makes one.
void speakSelectorsByName();

// True for the controls an operator types into, chooses from or clicks.
bool isInputControl(const QWidget& widget);

} // namespace halvane
