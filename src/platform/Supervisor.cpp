#include "platform/Supervisor.h"

#include <QFile>
#include <QStringList>
#include <cctype>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>

#ifdef Q_OS_UNIX
#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>
#endif
#ifdef Q_OS_LINUX
#include <sys/prctl.h>
#endif

namespace halvane {

namespace {
constexpr qint64 MaxStatus = 64; // one short line

#ifdef Q_OS_UNIX
volatile sig_atomic_t g_child = 0;

void passOn(int signal) {
    if (g_child > 0)
        ::kill(pid_t(g_child), signal);
}

const char* signalName(int number) {
    static const struct {
        int number;
        const char* name;
    } names[] = {{SIGHUP, "SIGHUP"},   {SIGINT, "SIGINT"},   {SIGQUIT, "SIGQUIT"},
                 {SIGILL, "SIGILL"},   {SIGTRAP, "SIGTRAP"}, {SIGABRT, "SIGABRT"},
                 {SIGBUS, "SIGBUS"},   {SIGFPE, "SIGFPE"},   {SIGKILL, "SIGKILL"},
                 {SIGUSR1, "SIGUSR1"}, {SIGSEGV, "SIGSEGV"}, {SIGUSR2, "SIGUSR2"},
                 {SIGPIPE, "SIGPIPE"}, {SIGALRM, "SIGALRM"}, {SIGTERM, "SIGTERM"},
                 {SIGXCPU, "SIGXCPU"}, {SIGXFSZ, "SIGXFSZ"}, {SIGSYS, "SIGSYS"}};
    for (const auto& entry : names) {
        if (entry.number == number)
            return entry.name;
    }
    return nullptr;
}

// Written beside and renamed over, so that a reader never sees half a line.
void writeStatus(const char* path, const char* line) {
    char temporary[4096];
    if (std::snprintf(temporary, sizeof temporary, "%s.new", path) >= int(sizeof temporary))
        return;
    const int fd = ::open(temporary, O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
    if (fd < 0)
        return;
    const size_t size = std::strlen(line);
    const bool written = ::write(fd, line, size) == ssize_t(size);
    if (::close(fd) == 0 && written)
        ::rename(temporary, path);
    else
        ::unlink(temporary);
}
#endif
} // namespace

bool isSupervisorCall(int argc, char* argv[]) {
    return argc >= 2 && std::strcmp(argv[1], SuperviseOption) == 0;
}

int runSupervisor(int argc, char* argv[]) {
    // halvane --supervise STATUSFILE -- PROGRAM [ARGUMENTS...]
    if (argc < 5 || std::strcmp(argv[3], "--") != 0) {
        std::fprintf(stderr, "halvane: usage: %s STATUSFILE -- PROGRAM [ARGUMENTS...]\n",
                     SuperviseOption);
        return 2;
    }
#ifdef Q_OS_UNIX
    const char* statusPath = argv[2];
    char** program = argv + 4;
    // Held back until the child's id is known, so that none is lost.
    sigset_t passed, previous;
    sigemptyset(&passed);
    for (int signal : {SIGTERM, SIGINT, SIGHUP})
        sigaddset(&passed, signal);
    sigprocmask(SIG_BLOCK, &passed, &previous);
    const pid_t parent = ::getpid();
    const pid_t child = ::fork();
    if (child < 0) {
        std::fprintf(stderr, "halvane: cannot start %s: %s\n", program[0], std::strerror(errno));
        return 126;
    }
    if (child == 0) {
#ifdef Q_OS_LINUX
        // A supervisor killed outright takes the game with it, so that no
        // server runs on that nobody can stop by its recorded id.
        ::prctl(PR_SET_PDEATHSIG, SIGKILL);
        if (::getppid() != parent)
            ::_exit(127);
#endif
        sigprocmask(SIG_SETMASK, &previous, nullptr);
        ::execvp(program[0], program);
        std::fprintf(stderr, "halvane: cannot start %s: %s\n", program[0], std::strerror(errno));
        ::_exit(127);
    }
    g_child = child;
    struct sigaction action {};
    action.sa_handler = passOn;
    sigemptyset(&action.sa_mask);
    for (int signal : {SIGTERM, SIGINT, SIGHUP})
        sigaction(signal, &action, nullptr);
    sigprocmask(SIG_SETMASK, &previous, nullptr);

    int status = 0;
    pid_t waited;
    do
        waited = ::waitpid(child, &status, 0);
    while (waited < 0 && errno == EINTR);
    char line[64] = "unknown\n";
    int code = 0;
    if (waited == child && WIFEXITED(status)) {
        code = WEXITSTATUS(status);
        std::snprintf(line, sizeof line, "exit %d\n", code);
    } else if (waited == child && WIFSIGNALED(status)) {
        const int number = WTERMSIG(status);
        const char* name = signalName(number);
        if (name)
            std::snprintf(line, sizeof line, "signal %s\n", name);
        else
            std::snprintf(line, sizeof line, "signal %d\n", number);
        code = 128 + number;
    }
    writeStatus(statusPath, line);
    return code;
#else
    std::fprintf(stderr, "halvane: %s is not available on this system\n", SuperviseOption);
    return 2;
#endif
}

QStringList supervisedArguments(const QString& statusFile, const QString& program,
                                const QStringList& arguments) {
    return QStringList{QString::fromLatin1(SuperviseOption), statusFile, QStringLiteral("--"),
                       program} +
           arguments;
}

QString supervisedEnd(const QString& statusFile) {
    if (statusFile.isEmpty())
        return QString();
    QFile file(statusFile);
    if (!file.open(QIODevice::ReadOnly))
        return QString();
    const QByteArray line = file.read(MaxStatus).trimmed();
    const QList<QByteArray> words = line.split(' ');
    if (words.size() != 2 || (words[0] != "exit" && words[0] != "signal"))
        return QString();
    for (const char c : words[1]) {
        if (!(std::isalnum(uchar(c)) || c == '-'))
            return QString();
    }
    return QString::fromLatin1(line);
}

} // namespace halvane
