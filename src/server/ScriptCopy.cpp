#include "server/ScriptCopy.h"

#include "platform/WholeFile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QSet>

namespace halvane {

namespace {
constexpr int MaxScripts = 4096;           // far more than a launch writes
constexpr qint64 MaxScanned = 1024 * 1024; // a script larger than this is not ours to follow
// Beside baseq3/ in the copy: "file SIZE NAME" per script, "incomplete
// REASON" when the copy was cut short.
const QString CopyList = QStringLiteral("copied.txt");
constexpr qint64 MaxListSize = 4 * 1024 * 1024;

QString copyScripts(const QStringList& sources, const QStringList& arguments, const QString& target,
                    QByteArray& list);

// The name as the engine takes it after "exec": forward slashes, ".cfg"
// when it has no extension; empty for one that leaves the game folder.
QString scriptName(QString name) {
    name.replace(QLatin1Char('\\'), QLatin1Char('/'));
    if (name.isEmpty() || name.startsWith(QLatin1Char('/')) || name.contains(QLatin1String("..")) ||
        name.contains(QLatin1Char(':')))
        return QString();
    if (!name.section(QLatin1Char('/'), -1).contains(QLatin1Char('.')))
        name += QStringLiteral(".cfg");
    return name;
}
} // namespace

QString copyServerScripts(const QStringList& sources, const QStringList& arguments,
                          const QString& target) {
    QByteArray list;
    const QString problem = copyScripts(sources, arguments, target, list);
    if (!problem.isEmpty())
        list += "incomplete " + problem.toUtf8() + '\n';
    QString reason;
    if (!saveWholeFile(target + QLatin1Char('/') + CopyList, list, &reason) && problem.isEmpty())
        return QStringLiteral("%1: %2").arg(
            QDir::toNativeSeparators(target + QLatin1Char('/') + CopyList), reason);
    return problem;
}

QString scriptCopyProblem(const QString& target) {
    const QString listPath = target + QLatin1Char('/') + CopyList;
    QFile file(listPath);
    // A copy made before copies listed their files has only its folder: it
    // is taken as it is, as it was before.
    if (!QFileInfo::exists(listPath) &&
        QFileInfo(target + QLatin1Char('/') + ScriptGameFolder).isDir())
        return QString();
    if (!QFileInfo(listPath).isFile() || !file.open(QIODevice::ReadOnly))
        return QStringLiteral("%1 cannot be read").arg(QDir::toNativeSeparators(listPath));
    const QByteArray bytes = file.read(MaxListSize);
    for (const QByteArray& line : bytes.split('\n')) {
        if (line.startsWith("incomplete "))
            return QString::fromUtf8(line.mid(11));
        if (!line.startsWith("file "))
            continue;
        bool ok = false;
        const qint64 size = line.split(' ').value(1).toLongLong(&ok);
        const QString name = QString::fromUtf8(line.mid(line.indexOf(' ', 5) + 1));
        const QString path = target + QLatin1Char('/') + ScriptGameFolder + QLatin1Char('/') + name;
        const QFileInfo info(path);
        if (!ok || name.contains(QLatin1String("..")))
            return QStringLiteral("%1 is damaged").arg(QDir::toNativeSeparators(listPath));
        if (!info.isFile())
            return QStringLiteral("%1 is missing").arg(QDir::toNativeSeparators(path));
        if (info.size() != size)
            return QStringLiteral("%1 has changed").arg(QDir::toNativeSeparators(path));
    }
    return QString();
}

namespace {
QString copyScripts(const QStringList& sources, const QStringList& arguments, const QString& target,
                    QByteArray& list) {
    QStringList queue{QStringLiteral("default.cfg"), QStringLiteral("autoexec.cfg")};
    for (qsizetype i = 0; i + 1 < arguments.size(); ++i) {
        if (arguments[i].compare(QLatin1String("+exec"), Qt::CaseInsensitive) == 0)
            queue.append(arguments[i + 1]);
    }
    // "exec name" anywhere: on a line, after a ";" or inside a quoted value.
    static const QRegularExpression exec(QStringLiteral("(?:^|[\\s;\"])exec\\s+\"?([^\\s;\"]+)"),
                                         QRegularExpression::CaseInsensitiveOption |
                                             QRegularExpression::MultilineOption);
    const QDir into(target + QLatin1Char('/') + ScriptGameFolder);
    if (!into.mkpath(QStringLiteral(".")))
        return QStringLiteral("%1: cannot make the folder")
            .arg(QDir::toNativeSeparators(into.path()));
    QSet<QString> seen;
    for (qsizetype next = 0; next < queue.size() && seen.size() < MaxScripts; ++next) {
        const QString name = scriptName(queue[next]);
        if (name.isEmpty() || seen.contains(name))
            continue;
        seen.insert(name);
        QString from;
        for (const QString& source : sources) {
            const QString candidate =
                source + QLatin1Char('/') + ScriptGameFolder + QLatin1Char('/') + name;
            if (QFileInfo(candidate).isFile()) {
                from = candidate;
                break;
            }
        }
        if (from.isEmpty())
            continue;
        QFile file(from);
        if (!file.open(QIODevice::ReadOnly))
            return QStringLiteral("%1: %2").arg(QDir::toNativeSeparators(from), file.errorString());
        const QByteArray bytes = file.read(MaxScanned + 1);
        const QString to = into.filePath(name);
        QString reason;
        if (!QDir().mkpath(QFileInfo(to).absolutePath()) || !copyWholeFile(from, to, &reason))
            return QStringLiteral("%1: %2").arg(
                QDir::toNativeSeparators(to),
                reason.isEmpty() ? QStringLiteral("cannot make its folder") : reason);
        list += "file " + QByteArray::number(QFileInfo(to).size()) + ' ' + name.toUtf8() + '\n';
        if (bytes.size() > MaxScanned)
            continue;
        auto found = exec.globalMatch(QString::fromLatin1(bytes));
        while (found.hasNext())
            queue.append(found.next().captured(1));
    }
    return QString();
}
} // namespace

QStringList argumentsWithScripts(const QStringList& arguments, const QString& target) {
    // A later "+set" of the same variable wins, also over one the game's
    // own start script puts before ours.
    return arguments + QStringList{QStringLiteral("+set"), QStringLiteral("fs_homepath"),
                                   QDir::toNativeSeparators(target)};
}

} // namespace halvane
