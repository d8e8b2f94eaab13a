#include "profiles/Profile.h"

#include "config/ConsoleText.h"

#include <QStringDecoder>

namespace halvane {

namespace {
const QString FormatSection = QStringLiteral("Profile");
const QString MapsSection = QStringLiteral("Maps");
const QByteArray Header = QByteArrayLiteral("; Halvane profile");
const QByteArray Footer = QByteArrayLiteral("; end of profile");
const QString FormatVersion = QStringLiteral("1");

QString escaped(const QString& text) {
    QString out;
    out.reserve(text.size());
    for (const QChar c : text) {
        if (c == QLatin1Char('\\'))
            out += QStringLiteral("\\\\");
        else if (c == QLatin1Char('\r'))
            out += QStringLiteral("\\r");
        else if (c == QLatin1Char('\n'))
            out += QStringLiteral("\\n");
        else if (c.unicode() < 0x20 || c == QLatin1Char('=') || c == QLatin1Char('['))
            out += QStringLiteral("\\x%1").arg(c.unicode(), 2, 16, QLatin1Char('0'));
        else
            out += c;
    }
    return out;
}

bool unescaped(const QString& text, QString& out) {
    out.clear();
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar c = text[i];
        if (c != QLatin1Char('\\')) {
            out += c;
            continue;
        }
        if (++i >= text.size())
            return false;
        const QChar e = text[i];
        if (e == QLatin1Char('\\')) {
            out += e;
        } else if (e == QLatin1Char('r')) {
            out += QLatin1Char('\r');
        } else if (e == QLatin1Char('n')) {
            out += QLatin1Char('\n');
        } else if (e == QLatin1Char('x') && i + 2 < text.size()) {
            bool ok = false;
            const uint code = text.mid(i + 1, 2).toUInt(&ok, 16);
            if (!ok)
                return false;
            out += QChar(char16_t(code));
            i += 2;
        } else {
            return false;
        }
    }
    return true;
}

const char* deviceNames[] = {"con", "prn", "aux", "nul"};

QString nameOfCharacter(QChar c) {
    switch (c.unicode()) {
    case '/':
        return QStringLiteral("a slash (/)");
    case '\\':
        return QStringLiteral("a backslash (\\)");
    case ':':
        return QStringLiteral("a colon (:)");
    default:
        break;
    }
    if (c == QLatin1Char('"') || c == QLatin1Char(';') || c == QLatin1Char('+') ||
        c.unicode() < 0x20)
        return consoleCharacterName(c);
    return QStringLiteral("the character ") + c;
}
} // namespace

QString profileNameProblem(const QString& name) {
    if (name.isEmpty())
        return QStringLiteral("it is empty");
    if (name.size() > ProfileNameMax)
        return QStringLiteral("it has %1 characters, more than %2")
            .arg(name.size())
            .arg(ProfileNameMax);
    for (const QChar c : name) {
        const bool plain = c.isLetterOrNumber() || c == QLatin1Char(' ') || c == QLatin1Char('-') ||
                           c == QLatin1Char('_') || c == QLatin1Char('.') ||
                           c == QLatin1Char('(') || c == QLatin1Char(')') || c == QLatin1Char(',');
        if (!plain)
            return QStringLiteral("it holds ") + nameOfCharacter(c);
    }
    const QChar first = name.front(), last = name.back();
    if (first == QLatin1Char('.') || first == QLatin1Char('-') || first == QLatin1Char(' '))
        return QStringLiteral("it starts with ") +
               (first == QLatin1Char(' ') ? QStringLiteral("a blank")
                                          : QStringLiteral("\"") + first + QLatin1Char('"'));
    if (last == QLatin1Char('.') || last == QLatin1Char(' '))
        return QStringLiteral("it ends with ") +
               (last == QLatin1Char(' ') ? QStringLiteral("a blank")
                                         : QStringLiteral("\"") + last + QLatin1Char('"'));
    // Windows keeps these for devices, with or without an extension.
    const QString stem = name.section(QLatin1Char('.'), 0, 0).trimmed().toLower();
    bool device = false;
    for (const char* reserved : deviceNames)
        device = device || stem == QLatin1String(reserved);
    if (stem.size() == 4 &&
        (stem.startsWith(QLatin1String("com")) || stem.startsWith(QLatin1String("lpt"))) &&
        stem[3].isDigit())
        device = true;
    if (device)
        return QStringLiteral("Windows keeps the name ") + stem.toUpper() +
               QStringLiteral(" for a device");
    return {};
}

QString profileNameRefusal(const QString& name) {
    const QString shown = name.size() > 40 ? name.left(40) + QStringLiteral("...") : name;
    QString printable;
    for (const QChar c : shown)
        printable += c.unicode() < 0x20 ? QChar(u'?') : c;
    return QStringLiteral("A profile cannot be named \"") + printable + QStringLiteral("\": ") +
           profileNameProblem(name) + QLatin1Char('.');
}

QByteArray profileBytes(const Profile& profile) {
    QString text;
    const auto line = [&text](const QString& l) { text += l + QStringLiteral("\r\n"); };
    line(QString::fromLatin1(Header));
    line(QLatin1Char('[') + FormatSection + QLatin1Char(']'));
    line(QStringLiteral("Format=") + FormatVersion);
    const MemorySettingsStore& store = profile.settings;
    for (const QString& section : store.sections()) {
        if (section == FormatSection || section == MapsSection)
            continue;
        line(QLatin1Char('[') + escaped(section) + QLatin1Char(']'));
        for (const QString& key : store.keys(section))
            line(escaped(key) + QLatin1Char('=') + escaped(store.read(section, key, {})));
    }
    line(QLatin1Char('[') + MapsSection + QLatin1Char(']'));
    for (qsizetype i = 0; i < profile.maps.size(); ++i)
        line(QStringLiteral("Map%1=").arg(i + 1) + escaped(profile.maps[i]));
    line(QString::fromLatin1(Footer));
    return text.toUtf8();
}

QString parseProfile(const QByteArray& bytes, Profile& profile) {
    profile = Profile();
    if (bytes.isEmpty())
        return QStringLiteral("the file is empty");
    if (bytes.size() > ProfileFileMax)
        return QStringLiteral("the file is far larger than a profile");
    QStringDecoder decode(QStringDecoder::Utf8);
    const QString text = decode(bytes);
    if (decode.hasError() || bytes.contains('\0'))
        return QStringLiteral("the file is not text");
    QStringList lines = text.split(QLatin1Char('\n'));
    for (QString& l : lines) {
        if (l.endsWith(QLatin1Char('\r')))
            l.chop(1);
    }
    while (!lines.isEmpty() && lines.back().isEmpty())
        lines.removeLast();

    QString section;
    bool formatSeen = false;
    bool footerSeen = false;
    QStringList maps;
    for (qsizetype n = 0; n < lines.size(); ++n) {
        const QString& l = lines[n];
        const QString where = QStringLiteral("line %1").arg(n + 1);
        if (footerSeen)
            return where + QStringLiteral(" follows the end of the profile");
        if (l == QLatin1String(Footer)) {
            footerSeen = true;
            continue;
        }
        if (l.isEmpty() || l.startsWith(QLatin1Char(';')))
            continue;
        if (l.startsWith(QLatin1Char('['))) {
            if (!l.endsWith(QLatin1Char(']')) || !unescaped(l.mid(1, l.size() - 2), section) ||
                section.isEmpty())
                return where + QStringLiteral(" is damaged");
            if (!formatSeen && section != FormatSection)
                return QStringLiteral("it is not a Halvane profile");
            continue;
        }
        const qsizetype equals = l.indexOf(QLatin1Char('='));
        QString key, value;
        if (section.isEmpty() || equals <= 0 || !unescaped(l.left(equals), key) ||
            !unescaped(l.mid(equals + 1), value))
            return formatSeen ? where + QStringLiteral(" is damaged")
                              : QStringLiteral("it is not a Halvane profile");
        if (section == FormatSection) {
            if (key == QLatin1String("Format")) {
                if (value != FormatVersion)
                    return QStringLiteral("it is in a profile format this Halvane does not know "
                                          "(") +
                           value.left(20) + QLatin1Char(')');
                formatSeen = true;
            }
        } else if (!formatSeen) {
            return QStringLiteral("it is not a Halvane profile");
        } else if (section == MapsSection) {
            if (key != QStringLiteral("Map%1").arg(maps.size() + 1))
                return where + QStringLiteral(" breaks the order of the maps");
            maps.append(value);
        } else {
            profile.settings.write(section, key, value);
        }
    }
    if (!formatSeen)
        return QStringLiteral("it is not a Halvane profile");
    if (!footerSeen)
        return QStringLiteral("it ends early: the file was cut short");
    profile.maps = maps;
    return {};
}

} // namespace halvane
