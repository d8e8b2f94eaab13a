#include "FakePlatform.h"

namespace halvane {

MsgAnswer FakeMessageBoxes::show(const QString& title, const QString& text, MsgButtons buttons,
                                 MsgIcon icon) {
    const ShownMessage message{title, text, buttons, icon};
    shown.append(message);
    if (onShow)
        onShow(message);
    if (buttons == MsgButtons::Ok)
        return MsgAnswer::Ok;
    return answers.isEmpty() ? MsgAnswer::No : answers.takeFirst();
}

FileChoice FakeFileDialogs::openFile(const QString& title, const QString& filter,
                                     const QString& initialFolder) {
    calls.append({false, title, filter, QString(), initialFolder});
    return choices.isEmpty() ? FileChoice{} : choices.takeFirst();
}

FileChoice FakeFileDialogs::saveFile(const QString& title, const QString& filter,
                                     const QString& defaultSuffix, const QString& initialFolder) {
    calls.append({true, title, filter, defaultSuffix, initialFolder});
    return choices.isEmpty() ? FileChoice{} : choices.takeFirst();
}

StartResult FakeProcesses::start(const QString& program, const QStringList& arguments,
                                 const QString& workingFolder, const QString& logFile) {
    if (failWithCode != 0)
        return {false, 0, failWithCode};
    started.append({program, arguments, workingFolder, logFile});
    const qint64 id = nextTaskId++;
    alive.append(id);
    return {true, id, 0, id * 7};
}

qint64 FakeProcesses::startTimeOf(qint64 taskId) {
    return alive.contains(taskId) ? taskId * 7 : 0;
}

bool FakeProcesses::end(qint64 taskId, bool force) {
    ended.append(force ? -taskId : taskId);
    return alive.removeAll(taskId) > 0;
}

bool FakeProcesses::activate(qint64 taskId) {
    activated.append(taskId);
    return alive.contains(taskId);
}

bool FakeShell::openDocument(const QString& target) {
    opened.append(target);
    return succeed;
}

bool FakeShell::editTextFile(const QString& path) {
    edited.append(path);
    return succeed;
}

void FakeDesktop::setBusy(bool busy) {
    ++busyCalls;
    busyDepth += busy ? 1 : -1;
}

} // namespace halvane
