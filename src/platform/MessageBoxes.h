#pragma once

#include <QString>

namespace halvane {

enum class MsgButtons { Ok, YesNo };
enum class MsgIcon { None, Information, Question, Critical };
enum class MsgAnswer { Ok, Yes, No };

// Modal message boxes. Texts keep their carriage returns; only the on-screen
// implementation turns them into line breaks.
class MessageBoxes {
public:
    virtual ~MessageBoxes() = default;
    virtual MsgAnswer show(const QString& title, const QString& text, MsgButtons buttons,
                           MsgIcon icon) = 0;

    bool askYesNo(const QString& title, const QString& text, MsgIcon icon) {
        return show(title, text, MsgButtons::YesNo, icon) == MsgAnswer::Yes;
    }
    void tell(const QString& title, const QString& text, MsgIcon icon) {
        show(title, text, MsgButtons::Ok, icon);
    }
};

} // namespace halvane
