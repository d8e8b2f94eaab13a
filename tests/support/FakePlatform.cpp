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

} // namespace halvane
