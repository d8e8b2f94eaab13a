#pragma once

#include <QDateTime>
#include <QHash>
#include <QString>
#include <QStringList>

namespace halvane::Tips {

// What the tip line shows for each control, by object name. Two texts are
// markers that ShowTip turns into lines of their own: the empty text stands
// for the web site line, "tm" for the trademark notice. Controls whose tip is
// built at the moment of the mouse movement are listed by builtNames().
const QHash<QString, QString>& table();

// Controls whose tip is built when the mouse moves over them.
const QStringList& builtNames();

// The name a control is found under in the tables: its object name, without
// the index of a control array ("txtMaster_3" is "txtMaster").
QString keyOf(const QString& objectName);

// The built tips.
QString dateLogTip(const QDateTime& now);
QString masterServersTip();
QString versionTip(const QString& versionCaption);
QString botCountTip(int selectedBots);
QString mailLinkTip();

// The web site line that stands for the empty tip.
QString siteLine();

// The text the tip line shows for tip t.
QString tipLineText(const QString& t);

// The text boxes that select their whole text when they receive the focus,
// and the two that must not.
const QStringList& selectOnFocusNames();
const QStringList& selectNothingNames();

} // namespace halvane::Tips
