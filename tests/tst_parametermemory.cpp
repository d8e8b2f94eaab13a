// The remembered parameter lines (most recent first, ten offered) and the CD
// drive box, against a real settings file.
#include "TestSupport.h"

#include "launch/ParameterMemory.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QtTest>
#include <stdexcept>

using namespace halvane;
using namespace halvane::test;

namespace {

QStringList lines(int from, int to) {
    QStringList result;
    for (int i = from; i <= to; ++i)
        result << QStringLiteral("+set line %1").arg(i);
    return result;
}

// A store whose every read of the CD letter breaks down.
struct BrokenStore : RecordingStore {
    using RecordingStore::RecordingStore;
    QString read(const QString& section, const QString& key,
                 const QString& fallback) const override {
        if (key == "CDLetter")
            throw std::runtime_error("unreadable");
        return RecordingStore::read(section, key, fallback);
    }
};

// The parameter box, the CD boxes and the memory over a real settings file.
struct Fixture {
    TestPlatform platform;
    QComboBox combo;
    QCheckBox specifyCd;
    QLineEdit cdDrive;
    std::unique_ptr<ParameterMemory> memory = remake();
    Fixture() { combo.setEditable(true); }
    // The memory over the store as it is now: reopening the store makes a new one.
    std::unique_ptr<ParameterMemory> remake() {
        return std::make_unique<ParameterMemory>(combo, specifyCd, cdDrive, *platform.app);
    }
    void store(const QStringList& parameters, const QString& cdLine) {
        for (int i = 0; i < parameters.size(); ++i) {
            if (!parameters[i].isEmpty())
                platform.ini->write("Advanced", QStringLiteral("Parameter%1").arg(i),
                                    parameters[i]);
        }
        platform.ini->write("Advanced", "CDLine", cdLine);
        platform.ini->flush();
    }
    // The lines offered, then the box's text.
    QStringList offered() { return entries(combo.view()) << combo.currentText(); }
    QStringList storedParameters() {
        platform.reopenStore();
        QStringList result;
        for (int i = 0; i < 11; ++i)
            result << platform.store->read("Advanced", QStringLiteral("Parameter%1").arg(i), "");
        return result;
    }
};

} // namespace

const QStringList Eleven = {"", "b", "", "d", "", "", "", "", "", "j", "k"};

// Parameter0.. before, what the operator launches with, Parameter0.. afterwards and the list
// offered after reloading.
const std::tuple<const char*, QStringList, QString, QStringList, QStringList> Savings[] = {
    {"equal to Parameter4: nothing moves", lines(0, 9), "+set line 4", lines(0, 9), lines(0, 9)},
    {"letter case counts", {"abc"}, "ABC", {"ABC", "abc"}, {"ABC", "abc"}},
    {"ten lines and a new one: the oldest goes to Parameter10", lines(0, 9), "newest",
     QStringList{"newest"} + lines(0, 9), QStringList{"newest"} + lines(0, 8)},
    {"gaps close up when shifting", {"a", "", "c"}, "new", {"new", "a", "c"}, {"new", "a", "c"}},
    {"blanks change nothing; no gaps or eleventh offered", Eleven, "   ", Eleven, {"b", "d", "j"}},
};

// Whether the CD box is checked, and whether the stored letter cannot be read.
const std::tuple<const char*, bool, bool> CdDrives[] = {
    {"checked", true, false},
    {"unchecked keeps the letter", false, false},
    {"unreadable, checked", true, true},
    {"unreadable, unchecked", false, true},
};

class ParameterMemoryTest : public QObject {
    Q_OBJECT
private slots:
    void saving_data() { addRows(Savings); }
    void saving();
    void cdDriveLoading_data() { addRows(CdDrives); }
    void cdDriveLoading();
};

void ParameterMemoryTest::saving() {
    const auto& [name, stored, text, after, offeredNext] = fetchRow(Savings);
    QStringList afterwards = after; // Parameter0..10, "" when empty
    afterwards.resize(11);

    Fixture f;
    f.store(stored, "old line");
    f.memory->loadParameterList();
    f.combo.setEditText(text);
    f.platform.store->writes.clear();
    f.memory->saveParameterList();

    // "CDLine" holds the text as typed, blanks included, every time.
    QVERIFY(f.platform.store->writes.contains("Advanced/CDLine=" + text));
    QCOMPARE(f.storedParameters(), afterwards);
    QCOMPARE(f.platform.store->read("Advanced", "CDLine", "<none>"), text);

    // What the launch shows right after saving.
    f.memory = f.remake();
    f.memory->loadParameterList();
    QCOMPARE(f.offered(), offeredNext + QStringList{text});
}

void ParameterMemoryTest::cdDriveLoading() {
    const auto& [name, checked, broken] = fetchRow(CdDrives);
    Fixture f;
    f.platform.ini->write("Advanced", "CDLetter", "E:");
    BrokenStore brokenStore(*f.platform.ini);
    f.cdDrive.setText("X:");
    f.cdDrive.setEnabled(!checked);
    f.specifyCd.setChecked(checked);
    f.memory->loadCdDrive(broken ? brokenStore : *f.platform.store);
    QCOMPARE(std::pair(f.cdDrive.text(), f.cdDrive.isEnabled()),
             std::pair(QString(broken ? "C:" : "E:"), checked));
    QCOMPARE(onlyMessage(f.platform.messages),
             broken ? message("Warning!",
                              "Halvane was unable to locate a valid CD Rom drive.\r\rThe C: Drive "
                              "has been selected by default.",
                              MsgButtons::Ok, MsgIcon::Critical)
                    : "0 messages");
}

QTEST_MAIN(ParameterMemoryTest)
#include "tst_parametermemory.moc"
