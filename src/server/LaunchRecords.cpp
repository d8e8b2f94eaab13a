#include "server/LaunchRecords.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSaveFile>

namespace halvane {

namespace {
// Far beyond any real list of servers; a larger file is not ours.
constexpr qint64 MaxFileSize = 4 * 1024 * 1024;

QString timeText(const QDateTime& time) {
    return time.isValid() ? time.toString(Qt::ISODateWithMs) : QString();
}

QDateTime timeOf(const QJsonValue& value) {
    return QDateTime::fromString(value.toString(), Qt::ISODateWithMs);
}

QJsonObject toJson(const LaunchRecord& r) {
    QJsonObject o;
    o.insert(QStringLiteral("id"), r.id);
    o.insert(QStringLiteral("pid"), QString::number(r.pid));
    o.insert(QStringLiteral("processStart"), QString::number(r.processStart));
    o.insert(QStringLiteral("program"), r.program);
    o.insert(QStringLiteral("arguments"), QJsonArray::fromStringList(r.arguments));
    o.insert(QStringLiteral("commandLine"), r.commandLine);
    o.insert(QStringLiteral("gameFolder"), r.gameFolder);
    o.insert(QStringLiteral("address"), r.address);
    o.insert(QStringLiteral("port"), int(r.port));
    o.insert(QStringLiteral("rconPassword"), r.rconPassword);
    o.insert(QStringLiteral("started"), timeText(r.started));
    o.insert(QStringLiteral("logFile"), r.logFile);
    o.insert(QStringLiteral("monitor"), r.monitor);
    o.insert(QStringLiteral("monitorRestarts"), r.monitorRestarts);
    o.insert(QStringLiteral("lastMonitorRestart"), timeText(r.lastMonitorRestart));
    o.insert(QStringLiteral("ended"), timeText(r.ended));
    o.insert(QStringLiteral("endReason"), r.endReason);
    o.insert(QStringLiteral("exitStatus"), r.exitStatus);
    o.insert(QStringLiteral("portAsked"), int(r.portAsked));
    o.insert(QStringLiteral("scripts"), r.scripts);
    o.insert(QStringLiteral("profile"), r.profile);
    o.insert(QStringLiteral("hostName"), r.hostName);
    QJsonArray runs;
    for (const ServerRun& run : r.runs)
        runs.append(QJsonObject{{QStringLiteral("logFile"), run.logFile},
                                {QStringLiteral("started"), timeText(run.started)},
                                {QStringLiteral("ended"), timeText(run.ended)},
                                {QStringLiteral("endReason"), run.endReason},
                                {QStringLiteral("exitStatus"), run.exitStatus}});
    o.insert(QStringLiteral("runs"), runs);
    if (r.added)
        o.insert(QStringLiteral("added"), true);
    return o;
}

// Empty when the line holds a usable record.
QString fromJson(const QByteArray& line, LaunchRecord& r) {
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(line, &error);
    if (error.error != QJsonParseError::NoError)
        return error.errorString();
    if (!document.isObject())
        return QStringLiteral("not a record");
    const QJsonObject o = document.object();
    bool pidOk = false, startOk = false;
    r.id = o.value(QStringLiteral("id")).toString();
    r.pid = o.value(QStringLiteral("pid")).toString().toLongLong(&pidOk);
    r.processStart = o.value(QStringLiteral("processStart")).toString().toLongLong(&startOk);
    r.program = o.value(QStringLiteral("program")).toString();
    for (const QJsonValue& argument : o.value(QStringLiteral("arguments")).toArray())
        r.arguments.append(argument.toString());
    r.commandLine = o.value(QStringLiteral("commandLine")).toString();
    r.gameFolder = o.value(QStringLiteral("gameFolder")).toString();
    r.address = o.value(QStringLiteral("address")).toString();
    const int port = o.value(QStringLiteral("port")).toInt(-1);
    r.rconPassword = o.value(QStringLiteral("rconPassword")).toString();
    r.started = timeOf(o.value(QStringLiteral("started")));
    r.logFile = o.value(QStringLiteral("logFile")).toString();
    r.monitor = o.value(QStringLiteral("monitor")).toBool();
    r.monitorRestarts = qMax(0, o.value(QStringLiteral("monitorRestarts")).toInt());
    r.lastMonitorRestart = timeOf(o.value(QStringLiteral("lastMonitorRestart")));
    r.ended = timeOf(o.value(QStringLiteral("ended")));
    r.endReason = o.value(QStringLiteral("endReason")).toString();
    r.exitStatus = o.value(QStringLiteral("exitStatus")).toString();
    // Lines written before these were kept read as servers without them.
    r.portAsked = quint16(qBound(0, o.value(QStringLiteral("portAsked")).toInt(), 65535));
    r.scripts = o.value(QStringLiteral("scripts")).toString();
    r.profile = o.value(QStringLiteral("profile")).toString();
    r.hostName = o.value(QStringLiteral("hostName")).toString();
    for (const QJsonValue& value : o.value(QStringLiteral("runs")).toArray()) {
        const QJsonObject run = value.toObject();
        r.runs.append({run.value(QStringLiteral("logFile")).toString(),
                       timeOf(run.value(QStringLiteral("started"))),
                       timeOf(run.value(QStringLiteral("ended"))),
                       run.value(QStringLiteral("endReason")).toString(),
                       run.value(QStringLiteral("exitStatus")).toString()});
    }
    r.added = o.value(QStringLiteral("added")).toBool();
    if (r.id.isEmpty())
        return QStringLiteral("no id");
    if (r.added) {
        // Nothing of ours runs for it.
        r.pid = r.processStart = 0;
        r.program.clear();
        r.arguments.clear();
        r.logFile.clear();
        r.monitor = false;
        r.ended = QDateTime();
        if (r.address.isEmpty())
            return QStringLiteral("no address");
    } else if (!pidOk || r.pid <= 0 || !startOk) {
        return QStringLiteral("no process id");
    } else if (r.program.isEmpty()) {
        return QStringLiteral("no program");
    }
    if (port < 0 || port > 65535 || (r.added && port == 0)) // 0: not known yet
        return QStringLiteral("no port");
    if (!r.started.isValid())
        return QStringLiteral("no start time");
    r.port = quint16(port);
    return QString();
}
} // namespace

LoadedRecords parseLaunchRecords(const QByteArray& bytes) {
    // The first few say what is wrong; a line for each of a million would
    // only bury that.
    constexpr qsizetype Listed = 5;
    qsizetype unlisted = 0;
    LoadedRecords loaded;
    const QList<QByteArray> lines = bytes.split('\n');
    for (qsizetype i = 0; i < lines.size(); ++i) {
        const QByteArray line = lines[i].trimmed();
        if (line.isEmpty())
            continue;
        LaunchRecord record;
        const QString problem = fromJson(line, record);
        if (problem.isEmpty())
            loaded.records.append(record);
        else if (loaded.problems.size() < Listed)
            loaded.problems.append(QStringLiteral("line %1: %2").arg(i + 1).arg(problem));
        else
            ++unlisted;
    }
    if (unlisted > 0)
        loaded.problems.append(QStringLiteral("%1 more lines cannot be read").arg(unlisted));
    return loaded;
}

QByteArray launchRecordBytes(const QList<LaunchRecord>& records) {
    QByteArray bytes;
    for (const LaunchRecord& record : records)
        bytes += QJsonDocument(toJson(record)).toJson(QJsonDocument::Compact) + '\n';
    return bytes;
}

LoadedRecords LaunchRecordFile::load() const {
    LoadedRecords loaded;
    QFile file(m_path);
    if (!file.exists())
        return loaded;
    if (file.size() > MaxFileSize) {
        loaded.problems.append(QStringLiteral("%1 bytes, too large").arg(file.size()));
    } else if (!file.open(QIODevice::ReadOnly)) {
        loaded.problems.append(file.errorString());
        return loaded; // it may be readable later: leave it as it is
    } else {
        loaded = parseLaunchRecords(file.readAll());
        file.close();
    }
    if (!loaded.problems.isEmpty()) {
        // The older copy goes only once the new one is written.
        const QString aside = m_path + QStringLiteral(".damaged");
        const QString fresh = aside + QStringLiteral(".new");
        QFile::remove(fresh);
        if (!QFile::copy(m_path, fresh) || (QFile::exists(aside) && !QFile::remove(aside)) ||
            !QFile::rename(fresh, aside))
            loaded.problems.append(QStringLiteral("could not keep a copy as ") + aside);
        else
            loaded.problems.append(QStringLiteral("the file as it was is kept as ") + aside);
    }
    return loaded;
}

QList<LaunchRecord> LaunchRecordFile::peek() const {
    QFile file(m_path);
    if (file.size() > MaxFileSize || !file.open(QIODevice::ReadOnly))
        return {};
    QByteArray bytes = file.readAll();
    // A line still being written is read at the next look.
    bytes.truncate(bytes.lastIndexOf('\n') + 1);
    return parseLaunchRecords(bytes).records;
}

QString LaunchRecordFile::save(const QList<LaunchRecord>& records) const {
    const QString folder = QFileInfo(m_path).absolutePath();
    if (!QDir().mkpath(folder))
        return QStringLiteral("cannot make the folder ") + folder;
    // It holds console passwords: for the user alone.
    QFile::setPermissions(folder,
                          QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner);
    QSaveFile file(m_path);
    const QByteArray bytes = launchRecordBytes(records);
    if (!file.open(QIODevice::WriteOnly))
        return file.errorString();
    file.setPermissions(QFileDevice::ReadOwner | QFileDevice::WriteOwner);
    if (file.write(bytes) != bytes.size() || !file.flush() || !file.commit())
        return file.errorString();
    return QString();
}

} // namespace halvane
