#include "maps/MapCatalogue.h"

#include "platform/MessageBoxes.h"
#include "platform/ProgramFolder.h"

#include <QDir>
#include <QFile>
#include <QSaveFile>

#include <cstring>

namespace halvane {

namespace {

QString key(const QString& name) {
    return trimSpaces(name).toLower();
}

bool replaceFile(const QString& from, const QString& to) {
    QFile source(from);
    if (!source.open(QIODevice::ReadOnly))
        return false;
    const QByteArray bytes = source.readAll();
    QSaveFile target(to);
    if (!target.open(QIODevice::WriteOnly))
        return false;
    target.write(bytes);
    return target.commit();
}

} // namespace

MapSnapshot::MapSnapshot(std::vector<MapRecord> records) : m_records(std::move(records)) {
    m_first.reserve(qsizetype(m_records.size()));
    for (size_t i = 0; i < m_records.size(); ++i) {
        const QString name = key(m_records[i].get(MapField::FileName));
        if (name.isEmpty()) {
            if (m_firstDeleted < 0)
                m_firstDeleted = qint16(i + 1);
        } else if (!m_first.contains(name)) {
            m_first.insert(name, qint16(i + 1));
        }
    }
}

qint16 MapSnapshot::find(const QString& name) const {
    const QString wanted = key(name);
    if (wanted.isEmpty())
        return m_firstDeleted;
    return m_first.value(wanted, -1);
}

void MapSnapshot::appended(const MapRecord& record) {
    m_records.push_back(record);
    const QString name = key(record.get(MapField::FileName));
    const qint16 number = qint16(m_records.size());
    if (name.isEmpty()) {
        if (m_firstDeleted < 0)
            m_firstDeleted = number;
    } else if (!m_first.contains(name)) {
        m_first.insert(name, number);
    }
}

MapRules MapRules::builtIn() {
    MapRules rules;
    rules.timeLimit = QStringLiteral("20");
    rules.fragLimit = QStringLiteral("20");
    rules.captureLimit = QStringLiteral("10");
    rules.speed = QStringLiteral("320");
    rules.gravity = QStringLiteral("800");
    rules.knockBack = QStringLiteral("1000");
    return rules;
}

namespace {
void setRules(MapRecord& record, const MapRules& rules) {
    record.set(MapField::FragLimit, rules.fragLimit);
    record.set(MapField::TimeLimit, rules.timeLimit);
    record.set(MapField::CaptureLimit, rules.captureLimit);
    record.set(MapField::Gravity, rules.gravity);
    record.set(MapField::Speed, rules.speed);
    record.set(MapField::KnockBack, rules.knockBack);
}

bool hasNoRules(const MapRecord& record) {
    for (MapField field : {MapField::FragLimit, MapField::TimeLimit, MapField::CaptureLimit,
                           MapField::Gravity, MapField::Speed, MapField::KnockBack}) {
        if (!record.get(field).isEmpty())
            return false;
    }
    return true;
}

// What the old damage left in first place: nothing but blanks or zero bytes.
bool looksWiped(const MapRecord& record) {
    for (int i = 0; i < MapRecord::Size; ++i) {
        if (record.bytes()[i] != ' ' && record.bytes()[i] != '\0')
            return false;
    }
    return true;
}
} // namespace

MapCatalogue::MapCatalogue(QString programFolder, QString installedFolder)
    : m_folder(std::move(programFolder)), m_installedFolder(std::move(installedFolder)) {
    if (m_installedFolder.isEmpty())
        m_installedFolder = m_folder;
}

QString MapCatalogue::dataPath() const {
    return m_folder + QStringLiteral("/maps.dat");
}
QString MapCatalogue::installedPath() const {
    return m_installedFolder + QStringLiteral("/instmaps.dat");
}
QString MapCatalogue::backupPath() const {
    return m_folder + QStringLiteral("/maps.bak");
}

bool MapCatalogue::ensureExists() const {
    if (QFile::exists(dataPath()))
        return true;
    QFile file(dataPath());
    return file.open(QIODevice::WriteOnly);
}

qint16 MapCatalogue::CountMaps() const {
    ensureExists();
    QFile file(dataPath());
    if (!file.open(QIODevice::ReadOnly))
        return 0; // nothing can be read from it
    const qint64 records = file.size() / MapRecord::Size;
    return qint16(qMin<qint64>(records, MaxRecords));
}

MapSnapshot MapCatalogue::snapshot() const {
    ensureExists();
    std::vector<MapRecord> records;
    QFile file(dataPath());
    if (file.open(QIODevice::ReadOnly)) {
        const QByteArray bytes = file.readAll();
        const qint64 count = qMin<qint64>(bytes.size() / MapRecord::Size, MaxRecords);
        records.reserve(size_t(count));
        for (qint64 i = 0; i < count; ++i)
            records.push_back(MapRecord::fromBytes(bytes.constData() + i * MapRecord::Size));
    }
    return MapSnapshot(std::move(records));
}

qint16 MapCatalogue::FindMap(const QString& name) const {
    // One look-up: scan the records in file order and stop at the first
    // match, rather than indexing the whole file as a snapshot does. The
    // answer is the same as MapSnapshot::find's.
    ensureExists();
    QFile file(dataPath());
    if (!file.open(QIODevice::ReadOnly))
        return -1;
    const QByteArray bytes = file.readAll();
    const qint64 count = qMin<qint64>(bytes.size() / MapRecord::Size, MaxRecords);
    const QString wanted = key(name);
    for (qint64 i = 0; i < count; ++i) {
        const MapRecord record = MapRecord::fromBytes(bytes.constData() + i * MapRecord::Size);
        if (key(record.get(MapField::FileName)) == wanted)
            return qint16(i + 1);
    }
    return -1;
}

bool MapCatalogue::readRecord(int number) {
    if (number < 1)
        return false;
    QFile file(dataPath());
    if (!file.open(QIODevice::ReadOnly) || !file.seek(qint64(number - 1) * MapRecord::Size))
        return false;
    const QByteArray bytes = file.read(MapRecord::Size);
    if (bytes.size() != MapRecord::Size)
        return false;
    RecordBuffer = MapRecord::fromBytes(bytes.constData());
    return true;
}

bool MapCatalogue::writeRecord(int number) {
    return writeRecord(number, RecordBuffer);
}

bool MapCatalogue::writeRecord(int number, const MapRecord& record) {
    if (number < 1 || number > MaxRecords)
        return false;
    ensureExists();
    QFile file(dataPath());
    if (!file.open(QIODevice::ReadWrite))
        return false;
    const qint64 offset = qint64(number - 1) * MapRecord::Size;
    // Writing past the end would leave a hole of zero bytes.
    if (offset > (file.size() / MapRecord::Size) * MapRecord::Size)
        return false;
    if (!file.seek(offset))
        return false;
    return file.write(record.bytes(), MapRecord::Size) == MapRecord::Size && file.flush();
}

bool MapCatalogue::append(const std::vector<MapRecord>& records) {
    if (records.empty())
        return true;
    ensureExists();
    QFile file(dataPath());
    if (!file.open(QIODevice::ReadWrite))
        return false;
    const qint64 whole = (file.size() / MapRecord::Size) * MapRecord::Size;
    if (whole / MapRecord::Size + qint64(records.size()) > MaxRecords || !file.seek(whole))
        return false;
    QByteArray bytes;
    bytes.reserve(qsizetype(records.size()) * MapRecord::Size);
    for (const MapRecord& record : records)
        bytes.append(record.bytes(), MapRecord::Size);
    return file.write(bytes) == bytes.size() && file.flush();
}

bool MapCatalogue::deleteRecord(int number) {
    if (!readRecord(number))
        return false;
    RecordBuffer.set(MapField::DisplayName, QString());
    RecordBuffer.set(MapField::FileName, QString());
    // A deleted slot keeps rules, so that a deleted first map is never taken
    // for a wiped file at the next start.
    if (hasNoRules(RecordBuffer))
        setRules(RecordBuffer, DefaultRules);
    if (hasNoRules(RecordBuffer))
        setRules(RecordBuffer, MapRules::builtIn());
    return writeRecord(number);
}

bool MapCatalogue::applyRulesToAll(const MapRules& rules) {
    ensureExists();
    QFile source(dataPath());
    if (!source.open(QIODevice::ReadOnly))
        return false;
    QByteArray bytes = source.readAll();
    source.close();
    const qint64 count = qMin<qint64>(bytes.size() / MapRecord::Size, MaxRecords);
    for (qint64 i = 0; i < count; ++i) {
        char* at = bytes.data() + i * MapRecord::Size;
        MapRecord record = MapRecord::fromBytes(at);
        setRules(record, rules);
        std::memcpy(at, record.bytes(), MapRecord::Size);
    }
    QSaveFile target(dataPath());
    if (!target.open(QIODevice::WriteOnly))
        return false;
    if (target.write(bytes) != bytes.size()) {
        target.cancelWriting();
        return false;
    }
    return target.commit();
}

bool MapCatalogue::backup() const {
    ensureExists();
    return replaceFile(dataPath(), backupPath());
}

void MapCatalogue::CheckMapDataFile(MessageBoxes& messages, const QString& contactAddress) {
    if (!FileExists(dataPath())) {
        // A catalogue that is there but cannot be read (locked, no rights) is
        // never replaced: it may hold the operator's own maps.
        if (FileExists(installedPath()) && !QFileInfo::exists(dataPath())) {
            replaceFile(installedPath(), dataPath());
        } else {
            messages.tell(QStringLiteral("Warning!"),
                          QStringLiteral("Unable to find maps.dat!\r\rThis file contains all of "
                                         "the pre-installed maps, their names,\r\rand default "
                                         "environment settings.  Contact ") +
                              contactAddress + QStringLiteral(" for assistance."),
                          MsgIcon::Critical);
            ensureExists();
        }
    }

    // A record whose names were deleted keeps its rules; one blank through and
    // through in first place is what the old damage left behind.
    if (!readRecord(1) || !looksWiped(RecordBuffer) || !FileExists(installedPath()))
        return;
    backup(); // the damaged file stays at hand as maps.bak
    replaceFile(installedPath(), dataPath());
    messages.tell(QStringLiteral("Notice"),
                  QStringLiteral("A bug was found in previous versions of Halvane that has caused "
                                 "\rsome of the maps in your maps in your maps.dat (map data file) "
                                 "to be erased.  \r\rThis has been corrected.\r\rHowever, any "
                                 "custom maps that you had specified will need to be re-entered."),
                  MsgIcon::Information);
}

MapRecord makeMapRecord(const QString& displayName, const QString& fileName,
                        const MapRules& rules) {
    MapRecord record;
    record.set(MapField::DisplayName, displayName);
    record.set(MapField::FileName, fileName);
    setRules(record, rules);
    return record;
}

} // namespace halvane
