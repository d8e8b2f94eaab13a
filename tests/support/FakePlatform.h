#pragma once

#include "platform/Platform.h"

#include <QList>
#include <QStringList>
#include <functional>

namespace halvane {

// Recording fakes: tests script the answers and read back what was asked.

struct ShownMessage {
    QString title;
    QString text;
    MsgButtons buttons;
    MsgIcon icon;
};

class FakeMessageBoxes : public MessageBoxes {
public:
    MsgAnswer show(const QString& title, const QString& text, MsgButtons buttons,
                   MsgIcon icon) override {
        shown.append({title, text, buttons, icon});
        if (onShow)
            onShow(shown.last());
        if (buttons == MsgButtons::Ok)
            return MsgAnswer::Ok;
        return answers.isEmpty() ? MsgAnswer::No : answers.takeFirst();
    }
    QList<ShownMessage> shown;
    QList<MsgAnswer> answers; // Yes/No answers in order; No when none is left
    std::function<void(const ShownMessage&)> onShow; // runs before the answer is given
    void clear() {
        shown.clear();
        answers.clear();
    }
};

struct FileDialogCall {
    bool save = false;
    QString title, filter, defaultSuffix, initialFolder;
};

class FakeFileDialogs : public FileDialogs {
public:
    FileChoice openFile(const QString& title, const QString& filter,
                        const QString& initialFolder) override {
        calls.append({false, title, filter, QString(), initialFolder});
        return choices.isEmpty() ? FileChoice{} : choices.takeFirst();
    }
    FileChoice saveFile(const QString& title, const QString& filter, const QString& defaultSuffix,
                        const QString& initialFolder) override {
        calls.append({true, title, filter, defaultSuffix, initialFolder});
        return choices.isEmpty() ? FileChoice{} : choices.takeFirst();
    }
    QList<FileDialogCall> calls;
    QList<FileChoice> choices; // cancelled when none is left
};

struct StartedProcess {
    QString program;
    QStringList arguments;
    QString workingFolder;
    QString logFile;
};

class FakeProcesses : public Processes {
public:
    StartResult start(const QString& program, const QStringList& arguments,
                      const QString& workingFolder, const QString& logFile) override {
        if (failWithCode != 0)
            return {false, 0, failWithCode};
        started.append({program, arguments, workingFolder, logFile});
        const qint64 id = nextTaskId++;
        alive.append(id);
        return {true, id, 0, id * 7};
    }
    bool activate(qint64 taskId) override {
        activated.append(taskId);
        return alive.contains(taskId);
    }
    qint64 startTimeOf(qint64 taskId) override { return alive.contains(taskId) ? taskId * 7 : 0; }
    bool end(qint64 taskId, bool) override { return alive.removeAll(taskId) > 0; }
    QList<StartedProcess> started;
    QList<qint64> activated;
    QList<qint64> alive;  // task ids that count as running
    int failWithCode = 0; // non-zero: the next starts fail with this code
    qint64 nextTaskId = 1000;
};

class FakeShell : public Shell {
public:
    bool openDocument(const QString& target) override { return opened.append(target), succeed; }
    bool editTextFile(const QString& path) override { return edited.append(path), succeed; }
    QStringList opened, edited;
    bool succeed = true;
};

class FakeDesktop : public Desktop {
public:
    bool anotherCopyRunning() override { return otherCopy; }
    void beep() override { ++beeps; }
    void setBusy(bool busy) override { ++busyCalls, busyDepth += busy ? 1 : -1; }
    bool otherCopy = false;
    int beeps = 0, busyDepth = 0, busyCalls = 0;
};

} // namespace halvane
