#include "bots/BotListFile.h"

#include "maps/MapRecord.h"

#include <QFile>

namespace halvane {

QStringList parseBotList(const QByteArray& content) {
    QStringList names;
    const QList<QByteArray> lines = content.split('\n');
    for (QByteArray line : lines) {
        if (line.endsWith('\r'))
            line.chop(1);
        if (line.startsWith("//"))
            continue;
        const QString name = trimSpaces(QString::fromLatin1(line));
        if (!name.isEmpty())
            names.append(name);
    }
    return names;
}

BotListRead readBotList(const QString& path) {
    BotListRead result;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return result;
    const QByteArray content = file.readAll();
    // An empty file fails like a missing one: there is not even a first line.
    result.ok = !content.isEmpty() && file.error() == QFileDevice::NoError;
    result.names = parseBotList(content);
    return result;
}

QString botCountCaption(int selected) {
    if (selected == 0)
        return QStringLiteral("No bots selected");
    if (selected == 1)
        return QStringLiteral("1 bot selected");
    return QString::number(selected) + QStringLiteral(" bots selected");
}

} // namespace halvane
