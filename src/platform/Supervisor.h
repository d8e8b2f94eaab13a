#pragma once

#include <QString>

namespace halvane {

// A server is started detached so that it outlives the window and the
// command line, which therefore can never wait for it. The executable itself,
// started as "halvane --supervise STATUSFILE -- PROGRAM ARGUMENTS...", waits
// in its place: it starts the program as its child, passes the requests to
// end on to it, and when it has ended writes how (its exit code or the
// signal that ended it) to the status file, then ends itself. It lives
// exactly as long as the program, so its process id stands for the server.
inline constexpr char SuperviseOption[] = "--supervise";

// True when the arguments ask for a supervisor. Looks at them alone, so
// that main() can decide before any Qt object exists.
bool isSupervisorCall(int argc, char* argv[]);
// Runs the supervisor; its exit code. No Qt object is made.
int runSupervisor(int argc, char* argv[]);

// The arguments that start program under a supervisor.
QStringList supervisedArguments(const QString& statusFile, const QString& program,
                                const QStringList& arguments);

// How the supervised program ended, as the supervisor wrote it ("exit 1",
// "signal SIGSEGV"); empty when the file is missing or is not one it wrote.
QString supervisedEnd(const QString& statusFile);

} // namespace halvane
