#include "maps/MapCatalogue.h"

#include "platform/MessageBoxes.h"
#include "platform/ProgramFolder.h"
#include "platform/WholeFile.h"

#include <QDir>
#include <QFileInfo>

#include <array>
#include <cstring>
#include <optional>

namespace halvane {

namespace {

// File names are compared trimmed and without regard to letter case. They
// are single-byte text, whose letters all lower-case within one byte, so
// the comparison works on the records' bytes and makes no text.
constexpr std::array<unsigned char, 256> LowerCase = [] {
    std::array<unsigned char, 256> table{};
    for (int c = 0; c < 256; ++c) {
        const bool upper = (c >= 'A' && c <= 'Z') || (c >= 0xC0 && c <= 0xDE && c != 0xD7);
        table[size_t(c)] = static_cast<unsigned char>(upper ? c + 0x20 : c);
    }
    return table;
}();

unsigned char lowered(char c) {
    return LowerCase[static_cast<unsigned char>(c)];
}

bool sameName(QByteArrayView a, QByteArrayView b) {
    if (a.size() != b.size())
        return false;
    // Mostly spelt alike: one comparison of the bytes settles it.
    if (std::memcmp(a.data(), b.data(), size_t(a.size())) == 0)
        return true;
    for (qsizetype i = 0; i < a.size(); ++i) {
        if (lowered(a[i]) != lowered(b[i]))
            return false;
    }
    return true;
}

size_t nameHash(QByteArrayView name) {
    size_t hash = 2166136261u;
    for (char c : name)
        hash = (hash ^ lowered(c)) * 16777619u;
    return hash;
}

QByteArrayView fileNameOf(const MapRecord& record) {
    return trimSpaces(record.bytes(MapField::FileName));
}

// A name as the records could hold it: trimmed, lower-cased as text is, in
// single bytes. None when a character has no single byte, as no record
// can then match.
std::optional<QByteArray> lookupName(const QString& name) {
    const QString lower = trimSpaces(name).toLower();
    QByteArray bytes(lower.size(), Qt::Uninitialized);
    for (qsizetype i = 0; i < lower.size(); ++i) {
        if (lower[i].unicode() > 0xFF)
            return std::nullopt;
        bytes[i] = char(lower[i].unicode());
    }
    return bytes;
}

// Writes whole records after the last whole record. When the disk takes
// only part of them, the whole records that arrived stay and a torn one is
// cut off. Answers the number of records stored.
qint64 appendRecords(QFile& file, qint64 whole, const QByteArray& bytes, QString& error) {
    const qint64 before = file.size();
    if (file.seek(whole) && file.write(bytes) == bytes.size())
        return bytes.size() / MapRecord::Size;
    error = file.errorString();
    const qint64 wholeNow = file.size() / MapRecord::Size * MapRecord::Size;
    const qint64 kept = qMax(before, wholeNow); // the file never shrinks
    if (file.size() > kept)
        file.resize(kept);
    return (wholeNow - whole) / MapRecord::Size;
}

// Why a file that is there cannot be opened for reading.
QString unreadableReason(const QString& path) {
    if (QFileInfo(path).isDir())
        return QStringLiteral("It is a folder, not a file.");
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QString() : file.errorString();
}

// A name beside the catalogue that no file has yet.
QString unusedPath(const QString& folder, const QString& stem) {
    QString path = folder + QLatin1Char('/') + stem + QStringLiteral(".dat");
    for (int n = 2; QFileInfo::exists(path); ++n)
        path = folder + QLatin1Char('/') + stem + QStringLiteral("-%1.dat").arg(n);
    return path;
}

} // namespace

MapSnapshot::MapSnapshot(std::vector<MapRecord> records) : m_records(std::move(records)) {}

void MapSnapshot::rebuildIndex() const {
    size_t capacity = 64;
    while (capacity < 2 * m_records.size())
        capacity *= 2;
    m_slots.assign(capacity, 0);
    m_firstDeleted = -1;
    for (size_t i = 0; i < m_records.size(); ++i)
        index(int(i + 1));
}

void MapSnapshot::index(int number) const {
    const QByteArrayView name = fileNameOf(record(number));
    if (name.isEmpty()) {
        if (m_firstDeleted < 0)
            m_firstDeleted = qint16(number);
        return;
    }
    const size_t mask = m_slots.size() - 1;
    for (size_t slot = nameHash(name) & mask;; slot = (slot + 1) & mask) {
        if (m_slots[slot] == 0) {
            m_slots[slot] = number;
            return;
        }
        if (sameName(fileNameOf(record(m_slots[slot])), name))
            return; // the first record of a name is the one found
    }
}

qint16 MapSnapshot::find(const QString& name) const {
    const std::optional<QByteArray> wanted = lookupName(name);
    return wanted ? find(QByteArrayView(*wanted)) : qint16(-1);
}

qint16 MapSnapshot::find(QByteArrayView name) const {
    if (m_slots.empty())
        rebuildIndex();
    const QByteArrayView wanted = trimSpaces(name);
    if (wanted.isEmpty())
        return m_firstDeleted;
    const size_t mask = m_slots.size() - 1;
    for (size_t slot = nameHash(wanted) & mask; m_slots[slot] != 0; slot = (slot + 1) & mask) {
        if (sameName(fileNameOf(record(m_slots[slot])), wanted))
            return qint16(m_slots[slot]);
    }
    return -1;
}

bool MapSnapshot::knows(QByteArrayView name, int& next) const {
    const QByteArrayView wanted = trimSpaces(name);
    if (!wanted.isEmpty() && next >= 1 && next <= count() &&
        sameName(fileNameOf(record(next)), wanted)) {
        ++next;
        return true;
    }
    const qint16 found = find(wanted);
    if (found < 1)
        return false;
    next = found + 1;
    return true;
}

void MapSnapshot::appended(const MapRecord& record) {
    m_records.push_back(record);
    if (m_slots.empty())
        return; // indexed at the first look-up
    if (2 * m_records.size() > m_slots.size())
        rebuildIndex();
    else
        index(int(m_records.size()));
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
    if (m_leftAlone)
        return 0;
    ensureExists();
    QFile file(dataPath());
    if (!file.open(QIODevice::ReadOnly))
        return 0; // nothing can be read from it
    const qint64 records = file.size() / MapRecord::Size;
    return qint16(qMin<qint64>(records, MaxRecords));
}

MapSnapshot MapCatalogue::snapshot() const {
    std::vector<MapRecord> records;
    QFile file(dataPath());
    if (!m_leftAlone && ensureExists() && file.open(QIODevice::ReadOnly)) {
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
    QFile file(dataPath());
    if (m_leftAlone || !ensureExists() || !file.open(QIODevice::ReadOnly))
        return -1;
    const std::optional<QByteArray> wanted = lookupName(name);
    if (!wanted)
        return -1;
    // A block at a time: the map looked for is often near the start.
    constexpr qint64 BlockRecords = 1024;
    qint64 number = 0;
    while (number < MaxRecords) {
        const QByteArray block =
            file.read(qMin<qint64>(BlockRecords, MaxRecords - number) * MapRecord::Size);
        const qint64 records = block.size() / MapRecord::Size;
        for (qint64 i = 0; i < records; ++i) {
            const MapRecord record = MapRecord::fromBytes(block.constData() + i * MapRecord::Size);
            if (sameName(fileNameOf(record), *wanted))
                return qint16(number + i + 1);
        }
        number += records;
        if (block.size() < BlockRecords * MapRecord::Size)
            break;
    }
    return -1;
}

bool MapCatalogue::readRecord(int number) {
    if (number < 1 || m_leftAlone) {
        m_error = QStringLiteral("there is no map %1 to read.").arg(number);
        return false;
    }
    QFile file(dataPath());
    if (!file.open(QIODevice::ReadOnly) || !file.seek(qint64(number - 1) * MapRecord::Size)) {
        m_error = file.errorString();
        return false;
    }
    const QByteArray bytes = file.read(MapRecord::Size);
    if (bytes.size() != MapRecord::Size) {
        m_error = bytes.isEmpty() && file.error() == QFileDevice::NoError
                      ? QStringLiteral("the file holds no map %1.").arg(number)
                      : file.errorString();
        return false;
    }
    RecordBuffer = MapRecord::fromBytes(bytes.constData());
    return true;
}

bool MapCatalogue::writeRecord(int number) {
    return writeRecord(number, RecordBuffer);
}

bool MapCatalogue::writeRecord(int number, const MapRecord& record) {
    QFile file;
    if (number < 1 || number > MaxRecords) {
        m_error = QStringLiteral("there is no place for map %1.").arg(number);
        return false;
    }
    if (!openForWriting(file))
        return false;
    const qint64 offset = qint64(number - 1) * MapRecord::Size;
    const qint64 whole = (file.size() / MapRecord::Size) * MapRecord::Size;
    // Writing past the end would leave a hole of zero bytes.
    if (offset > whole) {
        m_error = QStringLiteral("the file ends before map %1.").arg(number);
        return false;
    }
    const QByteArray bytes(record.bytes(), MapRecord::Size);
    if (offset == whole)
        return appendRecords(file, whole, bytes, m_error) == 1;
    QByteArray old;
    if (file.seek(offset))
        old = file.read(MapRecord::Size);
    if (old.size() == MapRecord::Size && file.seek(offset) && file.write(bytes) == bytes.size())
        return true;
    m_error = file.errorString();
    // Never a record that is half new and half old.
    if (old.size() == MapRecord::Size && file.seek(offset))
        file.write(old);
    return false;
}

bool MapCatalogue::openForWriting(QFile& file) {
    m_error.clear();
    if (m_leftAlone) {
        m_error = QStringLiteral("maps.dat is there but cannot be read, so it is left as it is.");
        return false;
    }
    ensureExists();
    file.setFileName(dataPath());
    // Unbuffered: a write the disk refuses fails at once, where it can still
    // be taken back, instead of at a later flush.
    if (file.open(QIODevice::ReadWrite | QIODevice::Unbuffered))
        return true;
    m_error = file.errorString();
    return false;
}

bool MapCatalogue::append(const std::vector<MapRecord>& records, qsizetype* appended) {
    if (appended)
        *appended = 0;
    if (records.empty())
        return true;
    QFile file;
    if (!openForWriting(file))
        return false;
    const qint64 whole = (file.size() / MapRecord::Size) * MapRecord::Size;
    const qint64 room = qMax<qint64>(0, MaxRecords - whole / MapRecord::Size);
    const qsizetype count = qsizetype(qMin<qint64>(room, qint64(records.size())));
    QByteArray bytes;
    bytes.reserve(count * MapRecord::Size);
    for (qsizetype i = 0; i < count; ++i)
        bytes.append(records[size_t(i)].bytes(), MapRecord::Size);
    const qint64 stored = count > 0 ? appendRecords(file, whole, bytes, m_error) : 0;
    if (appended)
        *appended = qsizetype(stored);
    if (stored == count && count < qsizetype(records.size()))
        m_error = QStringLiteral("maps.dat holds %1 maps, the most it can.").arg(MaxRecords);
    return stored == qint64(records.size());
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
    m_error.clear();
    QFile source(dataPath());
    if (m_leftAlone || !ensureExists() || !source.open(QIODevice::ReadOnly)) {
        m_error = source.errorString();
        return false;
    }
    QByteArray bytes = source.readAll();
    source.close();
    const qint64 count = qMin<qint64>(bytes.size() / MapRecord::Size, MaxRecords);
    for (qint64 i = 0; i < count; ++i) {
        char* at = bytes.data() + i * MapRecord::Size;
        MapRecord record = MapRecord::fromBytes(at);
        setRules(record, rules);
        std::memcpy(at, record.bytes(), MapRecord::Size);
    }
    return saveWholeFile(dataPath(), bytes, &m_error);
}

bool MapCatalogue::backup() {
    m_error.clear();
    if (m_leftAlone || !ensureExists())
        return false;
    return copyWholeFile(dataPath(), backupPath(), &m_error);
}

void MapCatalogue::CheckMapDataFile(MessageBoxes& messages, const QString& contactAddress) {
    if (!FileExists(dataPath())) {
        if (QFileInfo::exists(dataPath())) {
            // There but unreadable (no rights, a folder of that name): it may
            // hold the operator's own maps, so it is neither replaced nor
            // written for the whole run.
            m_leftAlone = true;
            messages.tell(QStringLiteral("Warning!"),
                          QStringLiteral("maps.dat is there but cannot be read:\r\r") +
                              QDir::toNativeSeparators(dataPath()) + QStringLiteral("\r") +
                              unreadableReason(dataPath()) +
                              QStringLiteral("\r\rHalvane leaves it as it is and runs without "
                                             "maps. Make it readable and start Halvane again to "
                                             "use its maps."),
                          MsgIcon::Critical);
            return;
        }
        if (!FileExists(installedPath()) || !copyWholeFile(installedPath(), dataPath())) {
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
    // The damaged file stays at hand under a name of its own: maps.bak holds
    // the operator's backup and is not overwritten.
    QString reason;
    if (!copyWholeFile(dataPath(), unusedPath(m_folder, QStringLiteral("maps-damaged")), &reason) ||
        !copyWholeFile(installedPath(), dataPath(), &reason)) {
        messages.tell(QStringLiteral("Warning!"),
                      QStringLiteral("maps.dat looks damaged, but it could not be replaced by "
                                     "instmaps.dat and is left as it is:\r\r") +
                          reason,
                      MsgIcon::Critical);
        return;
    }
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
