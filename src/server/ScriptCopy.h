#pragma once

#include <QString>
#include <QStringList>

namespace halvane {

// The folder inside a search path entry where the scripts lie.
inline const QString ScriptGameFolder = QStringLiteral("baseq3");

// Copies the scripts a server executes into target/baseq3, so that a
// restart pointed at target (the engine's fs_homepath, searched before the
// game folder) runs what the server was launched with, whatever the game
// folder holds by then. The scripts are the ones the engine runs itself
// (default.cfg, autoexec.cfg), those the command line executes and, one
// after another, those they execute. Each is taken from the first of
// sources (folders holding baseq3/) that has it, as the engine would; one
// found nowhere is left to the game folder. What was copied is listed in
// the copy, and so is the reason when it was cut short. Empty on success,
// otherwise the file and the reason.
QString copyServerScripts(const QStringList& sources, const QStringList& arguments,
                          const QString& target);

// Why a start from the copy at target would not run what the server was
// launched with (the copy was cut short, or a file of it is gone or
// changed), naming the file; empty when it is whole.
QString scriptCopyProblem(const QString& target);

// The arguments for a start from such a copy.
QStringList argumentsWithScripts(const QStringList& arguments, const QString& target);

} // namespace halvane
