#include "platform/QtPlatform.h"
#include "platform/PrivateFiles.h"
#include "platform/Supervisor.h"

#include <QApplication>
#include <QCoreApplication>
#include <QDesktopServices>
#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QMessageBox>
#include <QProcess>
#include <QSet>
#include <QStandardPaths>
#include <QUrl>

#include <cerrno>
#include <csignal>
#include <unistd.h>

namespace halvane {

MsgAnswer QtMessageBoxes::show(const QString& title, const QString& text, MsgButtons buttons,
                               MsgIcon icon) {
    QString shown = text;
    shown.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    shown.replace(QLatin1Char('\r'), QLatin1Char('\n'));
    QMessageBox box(QApplication::activeWindow());
    box.setWindowTitle(title);
    box.setText(shown);
    switch (icon) {
    case MsgIcon::None:
        box.setIcon(QMessageBox::NoIcon);
        break;
    case MsgIcon::Information:
        box.setIcon(QMessageBox::Information);
        break;
    case MsgIcon::Question:
        box.setIcon(QMessageBox::Question);
        break;
    case MsgIcon::Critical:
        box.setIcon(QMessageBox::Critical);
        break;
    }
    if (buttons == MsgButtons::YesNo) {
        box.setStandardButtons(QMessageBox::Yes | QMessageBox::No);
        box.setDefaultButton(QMessageBox::Yes);
        return box.exec() == QMessageBox::Yes ? MsgAnswer::Yes : MsgAnswer::No;
    }
    box.setStandardButtons(QMessageBox::Ok);
    box.exec();
    return MsgAnswer::Ok;
}

QString qtFileFilter(const QString& filter) {
    const QStringList parts = filter.split(QLatin1Char('|'));
    QStringList result;
    for (int i = 0; i + 1 < parts.size(); i += 2) {
        QString patterns = parts[i + 1];
        patterns.replace(QLatin1Char(';'), QLatin1Char(' '));
        QString caption = parts[i];
        const int paren = caption.indexOf(QLatin1Char('('));
        if (paren > 0)
            caption = caption.left(paren).trimmed();
        result << QStringLiteral("%1 (%2)").arg(caption, patterns);
    }
    return result.join(QStringLiteral(";;"));
}

static FileChoice choiceOf(const QString& path) {
    FileChoice choice;
    if (path.isEmpty())
        return choice;
    choice.chosen = true;
    choice.path = QDir::toNativeSeparators(path);
    choice.fileTitle = QFileInfo(path).fileName();
    return choice;
}

FileChoice QtFileDialogs::openFile(const QString& title, const QString& filter,
                                   const QString& initialFolder) {
    return choiceOf(QFileDialog::getOpenFileName(QApplication::activeWindow(), title, initialFolder,
                                                 qtFileFilter(filter)));
}

FileChoice QtFileDialogs::saveFile(const QString& title, const QString& filter,
                                   const QString& defaultSuffix, const QString& initialFolder) {
    QFileDialog dialog(QApplication::activeWindow(), title, initialFolder, qtFileFilter(filter));
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    QString suffix = defaultSuffix;
    suffix.remove(QLatin1Char('*')).remove(QLatin1Char('.'));
    dialog.setDefaultSuffix(suffix);
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty())
        return {};
    return choiceOf(dialog.selectedFiles().constFirst());
}

StartResult QtProcesses::start(const QString& program, const QStringList& arguments,
                               const QString& workingFolder, const QString& logFile) {
    return startAs(program, arguments, workingFolder, logFile, QString());
}

StartResult QtProcesses::startSupervised(const QString& program, const QStringList& arguments,
                                         const QString& workingFolder, const QString& logFile,
                                         const QString& statusFile) {
#ifdef Q_OS_UNIX
    // A program moved or replaced since it started cannot supervise: the
    // server still starts, only its ending goes unrecorded.
    const bool supervised = !m_supervisor.isEmpty() && QFileInfo(m_supervisor).isExecutable();
    return startAs(program, arguments, workingFolder, logFile, supervised ? statusFile : QString());
#else
    Q_UNUSED(statusFile);
    return start(program, arguments, workingFolder, logFile);
#endif
}

StartResult QtProcesses::startAs(const QString& program, const QStringList& arguments,
                                 const QString& workingFolder, const QString& logFile,
                                 const QString& statusFile) {
    StartResult result;
    QString resolved = program;
    // A bare name is looked up in the working folder first, as a command
    // typed in that folder would be.
    if (!program.contains(QLatin1Char('/')) && !program.contains(QLatin1Char('\\')) &&
        !workingFolder.isEmpty()) {
        const QString local = QDir(workingFolder).filePath(program);
        if (QFileInfo::exists(local))
            resolved = local;
    }
    if (!workingFolder.isEmpty() && !QFileInfo(workingFolder).isDir()) {
        result.errorCode = ENOENT;
        return result;
    }
    const QFileInfo info(resolved);
    if (resolved != program || info.isAbsolute()) {
        if (!info.exists()) {
            result.errorCode = ENOENT;
            return result;
        }
        if (!info.isExecutable() || info.isDir()) {
            result.errorCode = EACCES;
            return result;
        }
    }
    QProcess process;
    if (statusFile.isEmpty()) {
        process.setProgram(resolved);
        process.setArguments(arguments);
    } else {
        // The supervisor starts it as is, looked up on the path when bare.
        QFile::remove(statusFile); // a status left from before is not this run's
        process.setProgram(m_supervisor);
        process.setArguments(supervisedArguments(statusFile, resolved, arguments));
    }
    process.setWorkingDirectory(workingFolder);
    // Nothing to read: a server left on our input would wait on it.
    process.setStandardInputFile(QProcess::nullDevice());
    if (!logFile.isEmpty()) {
        process.setStandardOutputFile(logFile, QIODevice::Append);
        process.setStandardErrorFile(logFile, QIODevice::Append);
    }
    qint64 pid = 0;
    if (!process.startDetached(&pid)) {
        result.errorCode = QStandardPaths::findExecutable(resolved).isEmpty() ? ENOENT : EIO;
        return result;
    }
    result.started = true;
    result.taskId = pid;
    result.startTime = startTimeOf(pid);
    return result;
}

bool QtProcesses::activate(qint64 taskId) {
    if (taskId <= 0)
        return false;
    // A detached server is not our child, so it never lingers as our zombie:
    // signal 0 tells whether it still lives. Where the system's reaper is
    // slow (a container's first process), an ended server can stay a zombie
    // for a while; /proc tells that apart from a live one.
    if (!(::kill(pid_t(taskId), 0) == 0 || errno == EPERM))
        return false;
    QFile stat(QStringLiteral("/proc/%1/stat").arg(taskId));
    if (stat.open(QIODevice::ReadOnly)) {
        const QByteArray line = stat.readAll();
        const qsizetype close = line.lastIndexOf(')'); // the name may hold blanks
        if (close >= 0 && close + 2 < line.size() && line.at(close + 2) == 'Z')
            return false;
    }
    return true;
}

qint64 QtProcesses::startTimeOf(qint64 taskId) {
    if (taskId <= 0)
        return 0;
    // Field 22 of the process's stat line: its start in clock ticks after
    // boot. A zombie has ended.
    QFile stat(QStringLiteral("/proc/%1/stat").arg(taskId));
    if (!stat.open(QIODevice::ReadOnly))
        return 0;
    const QByteArray line = stat.readAll();
    const qsizetype close = line.lastIndexOf(')'); // the name may hold blanks
    if (close < 0)
        return 0;
    const QList<QByteArray> fields = line.mid(close + 2).split(' ');
    if (fields.size() < 20 || fields[0] == "Z" || fields[0] == "X")
        return 0;
    bool ok = false;
    const qint64 start = fields[19].toLongLong(&ok);
    return ok ? qMax<qint64>(start, 1) : 0;
}

QList<quint16> QtProcesses::udpPortsOf(qint64 taskId) {
    QList<quint16> ports;
#ifdef Q_OS_LINUX
    // The socket inodes among the task's open files, then their lines in the
    // UDP table of the task's network: "sl local rem st tx:rx tr tm retr uid
    // timeout inode ...", the local address as hex "0100007F:6D38".
    if (taskId <= 0)
        return ports;
    const QString proc = QStringLiteral("/proc/%1").arg(taskId);
    // A supervisor's sockets are its child's: the task and its children.
    QStringList tasks{proc};
    QFile children(proc + QStringLiteral("/task/%1/children").arg(taskId));
    if (children.open(QIODevice::ReadOnly)) {
        for (const QByteArray& child : children.read(4096).simplified().split(' ')) {
            if (!child.isEmpty())
                tasks << QStringLiteral("/proc/") + QString::fromLatin1(child);
        }
    }
    QSet<QByteArray> inodes;
    for (const QString& task : std::as_const(tasks)) {
        const QStringList fds = QDir(task + QStringLiteral("/fd")).entryList(QDir::System);
        for (const QString& fd : fds) {
            char target[64] = {};
            const QByteArray link = QFile::encodeName(task + QStringLiteral("/fd/") + fd);
            const ssize_t size = ::readlink(link.constData(), target, sizeof target - 1);
            const QByteArray text(target, size > 0 ? size : 0);
            if (text.startsWith("socket:[") && text.endsWith(']'))
                inodes.insert(text.mid(8, text.size() - 9));
        }
    }
    QFile table(proc + QStringLiteral("/net/udp"));
    if (inodes.isEmpty() || !table.open(QIODevice::ReadOnly))
        return ports;
    const QList<QByteArray> lines = table.read(1024 * 1024).split('\n');
    for (qsizetype i = 1; i < lines.size(); ++i) {
        const QList<QByteArray> fields = lines[i].simplified().split(' ');
        if (fields.size() < 10 || !inodes.contains(fields[9]))
            continue;
        bool ok = false;
        const uint port = fields[1].mid(fields[1].indexOf(':') + 1).toUInt(&ok, 16);
        if (ok && port > 0 && port <= 65535)
            ports.append(quint16(port));
    }
#else
    Q_UNUSED(taskId);
#endif
    return ports;
}

bool QtProcesses::end(qint64 taskId, bool force) {
    if (taskId <= 0)
        return false;
#ifdef Q_OS_LINUX
    // A supervisor passes SIGTERM on by itself. Killed outright it could not
    // write how its program ended, so the program is killed in its place and
    // the supervisor follows by itself.
    if (force) {
        QFile command(QStringLiteral("/proc/%1/cmdline").arg(taskId));
        const bool supervisor =
            command.open(QIODevice::ReadOnly) &&
            command.read(4096).split('\0').value(1) == QByteArray(SuperviseOption);
        QFile children(QStringLiteral("/proc/%1/task/%1/children").arg(taskId));
        if (supervisor && children.open(QIODevice::ReadOnly)) {
            bool killed = false;
            for (const QByteArray& child : children.read(4096).simplified().split(' ')) {
                const qint64 id = child.toLongLong();
                if (id > 0)
                    killed |= ::kill(pid_t(id), SIGKILL) == 0;
            }
            if (killed)
                return true;
        }
    }
#endif
    return ::kill(pid_t(taskId), force ? SIGKILL : SIGTERM) == 0;
}

bool QtShell::openDocument(const QString& target) {
    const bool isUrl = target.contains(QStringLiteral("://")) ||
                       target.startsWith(QStringLiteral("mailto:"), Qt::CaseInsensitive);
    return QDesktopServices::openUrl(isUrl ? QUrl(target) : QUrl::fromLocalFile(target));
}

bool QtShell::editTextFile(const QString& path) {
    return QDesktopServices::openUrl(QUrl::fromLocalFile(path));
}

bool QtDesktop::anotherCopyRunning() {
    if (!m_lock) {
        QString folder = QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation);
        if (folder.isEmpty())
            folder = QDir::tempPath();
        m_lock = std::make_unique<QLockFile>(folder + QStringLiteral("/halvane.lock"));
        m_lock->setStaleLockTime(0);
        if (!m_lock->tryLock(0)) {
            m_lock.reset();
            return true;
        }
    }
    return false;
}

void QtDesktop::beep() {
    QApplication::beep();
}

void QtDesktop::setBusy(bool busy) {
    if (busy) {
        QApplication::setOverrideCursor(Qt::WaitCursor);
        ++m_busyDepth;
    } else if (m_busyDepth > 0) {
        QApplication::restoreOverrideCursor();
        --m_busyDepth;
    }
}

namespace {
void keepPrivate(const QSettings& settings) {
    if (settings.format() == QSettings::IniFormat && QFileInfo::exists(settings.fileName()))
        makeFilePrivate(settings.fileName());
}
} // namespace

void QtSettingsStore::Closer::operator()(QSettings* settings) const {
    settings->sync();
    keepPrivate(*settings);
    delete settings;
}

QtSettingsStore::QtSettingsStore()
    : m_settings(new QSettings(QSettings::IniFormat, QSettings::UserScope,
                               QStringLiteral("Halvane"), QStringLiteral("Halvane"))) {
    makePrivateFolder(QFileInfo(m_settings->fileName()).absolutePath());
    keepPrivate(*m_settings);
}

QtSettingsStore::QtSettingsStore(const QString& iniFile)
    : m_settings(new QSettings(iniFile, QSettings::IniFormat)) {
    keepPrivate(*m_settings);
}

QString QtSettingsStore::read(const QString& section, const QString& key,
                              const QString& defaultText) const {
    const QVariant value = m_settings->value(section + QLatin1Char('/') + key);
    if (!value.isValid())
        return defaultText;
    // A hand-edited file may hold a list ("a, b"); keep it as the text it was.
    if (value.userType() == QMetaType::QStringList)
        return value.toStringList().join(QStringLiteral(", "));
    return value.toString();
}

bool QtSettingsStore::write(const QString& section, const QString& key, const QString& value) {
    m_settings->setValue(section + QLatin1Char('/') + key, value);
    return m_settings->isWritable();
}

bool QtSettingsStore::flush() {
    m_settings->sync();
    keepPrivate(*m_settings);
    // A format error comes from reading a damaged file, not from this write.
    return m_settings->status() != QSettings::AccessError;
}

QString QtSettingsStore::location() const {
    return QDir::toNativeSeparators(m_settings->fileName());
}

// The store does not say why it failed; what stands in the way is read off
// the file and its folder as they are now.
QString QtSettingsStore::failureReason() const {
    if (m_settings->format() == QSettings::NativeFormat)
        return QStringLiteral("the registry refused the change");
    const QFileInfo file(m_settings->fileName());
    if (file.isDir())
        return QStringLiteral("a folder of that name stands in its place");
    if (file.exists() && !file.isWritable())
        return QStringLiteral("the file is read-only");
    const QFileInfo folder(file.absolutePath());
    if (!folder.isDir())
        return QStringLiteral("its folder is missing and cannot be made");
    if (!folder.isWritable())
        return QStringLiteral("its folder cannot be written to");
    return QStringLiteral("the file could not be written; the disk may be full");
}

} // namespace halvane
