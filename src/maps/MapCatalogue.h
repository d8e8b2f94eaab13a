#pragma once

#include "maps/MapRecord.h"

#include <QString>
#include <vector>

class QFile;

namespace halvane {

class MessageBoxes;

// The six rules a map carries, as the texts stored in its record.
struct MapRules {
    QString fragLimit, timeLimit, captureLimit, gravity, speed, knockBack;
    // The rules new maps get when nothing else is stored.
    static MapRules builtIn();
    bool operator==(const MapRules&) const = default;
};

// The records of the data file as they were at one moment: one read serves
// every look-up of an operation that looks up many maps.
class MapSnapshot {
public:
    explicit MapSnapshot(std::vector<MapRecord> records);
    qint16 count() const { return qint16(m_records.size()); }
    // Record number (from 1) of the first record with this file name, -1 when none.
    qint16 find(const QString& name) const;
    // The same for a name in single-byte text, as the program's files hold it.
    qint16 find(QByteArrayView name) const;
    // Whether find(name) finds a record. Names are often asked in record
    // order (a selection picked from the list top down): record next is
    // tried before the index, and next becomes the one after the record
    // that has the name.
    bool knows(QByteArrayView name, int& next) const;
    const MapRecord& record(int number) const { return m_records[size_t(number - 1)]; }
    // Notes a record appended after the snapshot was taken.
    void appended(const MapRecord& record);

private:
    void index(int number) const;
    void rebuildIndex() const;
    std::vector<MapRecord> m_records;
    // Record numbers by file name (lower-cased, trimmed), open addressing
    // over the records' own bytes; 0 marks a free slot. Made at the first
    // look-up: a snapshot that only lists the maps needs none.
    mutable std::vector<int> m_slots;
    mutable qint16 m_firstDeleted = -1;
};

// The map catalogue: the file maps.dat beside the program, never cached, and
// the little state every map operation shares.
class MapCatalogue {
public:
    static constexpr int MaxRecords = 32766;

    // The installed catalogue instmaps.dat lies in installedFolder, by
    // default the program's folder.
    explicit MapCatalogue(QString programFolder, QString installedFolder = {});

    MapRecord RecordBuffer;
    qint16 CurrentMapRecord = 0;
    bool MapDataDamaged = false;
    // The rules every map-adding path gives a new map; read at start-up and
    // replaced by "Use Settings as Default".
    MapRules DefaultRules = MapRules::builtIn();

    QString dataPath() const;
    QString installedPath() const;
    QString backupPath() const;

    qint16 CountMaps() const;
    qint16 FindMap(const QString& name) const;
    // Reads record n into RecordBuffer.
    bool readRecord(int number);
    // Stores RecordBuffer as record n; one past the last appends. A record
    // the disk takes only in part is put back as it was (or cut off).
    bool writeRecord(int number);
    bool writeRecord(int number, const MapRecord& record);
    // Appends records in order; false when not all of them could be stored.
    // The whole records that reached the file stay (their count in appended),
    // a torn one is cut off.
    bool append(const std::vector<MapRecord>& records, qsizetype* appended = nullptr);
    // The whole file read once.
    MapSnapshot snapshot() const;
    // Copies maps.dat to maps.bak, replacing an older backup.
    bool backup();
    // Blanks both names of record n; the slot keeps its place.
    bool deleteRecord(int number);
    // Gives every record, deleted slots included, these rules; names stay.
    // The file is replaced as a whole, so a failure changes nothing.
    bool applyRulesToAll(const MapRules& rules);

    // Start-up check: creates maps.dat from the installed catalogue when it is
    // missing, and repairs it when its first record is blank.
    void CheckMapDataFile(MessageBoxes& messages, const QString& contactAddress);

    // True when the start-up check found maps.dat there but unreadable: for
    // the rest of the run the catalogue is empty and the file is never
    // written, so nothing the operator keeps in it is lost.
    bool leftAlone() const { return m_leftAlone; }
    // Why the last write, append, backup or rewrite failed.
    QString errorString() const { return m_error; }

private:
    bool ensureExists() const;
    bool openForWriting(QFile& file);
    QString m_folder;
    bool m_leftAlone = false;
    QString m_error;
    QString m_installedFolder;
};

// A new record with the given names and rules.
MapRecord makeMapRecord(const QString& displayName, const QString& fileName, const MapRules& rules);

} // namespace halvane
