#pragma once

#include "platform/Desktop.h"
#include "platform/FileDialogs.h"
#include "platform/MessageBoxes.h"
#include "platform/Shell.h"

#include <cstdio>

namespace halvane {

// The platform of the command line, where nobody sits at a screen: a message
// is printed to standard error, title and text, and a question takes the
// answer of the window's default button (Yes), as if Enter were pressed.
class ConsoleMessageBoxes : public MessageBoxes {
public:
    explicit ConsoleMessageBoxes(std::FILE* out = stderr) : m_out(out) {}
    MsgAnswer show(const QString& title, const QString& text, MsgButtons buttons,
                   MsgIcon icon) override;
    // True once a message with the critical icon was printed.
    bool failureShown = false;

private:
    std::FILE* m_out;
};

// No dialog can be answered: every one counts as cancelled.
class ConsoleFileDialogs : public FileDialogs {
public:
    FileChoice openFile(const QString&, const QString&, const QString&) override { return {}; }
    FileChoice saveFile(const QString&, const QString&, const QString&, const QString&) override {
        return {};
    }
};

// No desktop to hand documents to.
class ConsoleShell : public Shell {
public:
    bool openDocument(const QString&) override { return false; }
    bool editTextFile(const QString&) override { return false; }
};

// The command line never takes the window's single-copy lock: it runs beside
// an open window as well as alone.
class ConsoleDesktop : public Desktop {
public:
    bool anotherCopyRunning() override { return false; }
    void beep() override {}
    void setBusy(bool) override {}
};

} // namespace halvane
