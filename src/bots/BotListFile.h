#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

namespace halvane {

// botlist.txt: one bot name a line. Lines starting with "//" (before any
// trimming) are comments, lines blank after trimming spaces are skipped, the
// rest are names trimmed of spaces.
QStringList parseBotList(const QByteArray& content);

struct BotListRead {
    bool ok = false; // false: missing, unreadable or empty file
    QStringList names;
};
BotListRead readBotList(const QString& path);

// The caption of lblBotCount for a number of selected bots.
QString botCountCaption(int selected);

} // namespace halvane
