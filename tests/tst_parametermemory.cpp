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

QStringList comboList(const QComboBox& combo) {
    QStringList items;
    for (int i = 0; i < combo.count(); ++i)
        items << combo.itemText(i);
    return items;
}

QStringList lines(int from, int to) {
    QStringList result;
    for (int i = from; i <= to; ++i)
        result << QStringLiteral("+set line %1").arg(i);
    return result;
}

// A store whose every read of one key breaks down.
class BrokenStore : public SettingsStore {
public:
    explicit BrokenStore(SettingsStore& inner, QString brokenKey)
        : m_inner(inner), m_brokenKey(std::move(brokenKey)) {}
    QString read(const QString& section, const QString& key,
                 const QString& defaultText) const override {
        if (key == m_brokenKey)
            throw std::runtime_error("unreadable");
        return m_inner.read(section, key, defaultText);
    }
    bool write(const QString& section, const QString& key, const QString& value) override {
        return m_inner.write(section, key, value);
    }
    bool flush() override { return m_inner.flush(); }
    QString location() const override { return m_inner.location(); }
    QString failureReason() const override { return m_inner.failureReason(); }

private:
    SettingsStore& m_inner;
    QString m_brokenKey;
};

} // namespace

class ParameterMemoryTest : public QObject {
    Q_OBJECT
private slots:
    void init();
    void cleanup();
    void loadingSkipsEmptyLinesAndNeverReadsTheEleventh();
    void saving_data();
    void saving();
    void cdDriveLoading_data();
    void cdDriveLoading();
    void cdDriveFallsBackToC();

private:
    void store(const QStringList& parameters, const QString& cdLine = QString());
    QStringList storedParameters(int count = 11);

    std::unique_ptr<TestPlatform> platform;
    std::unique_ptr<QComboBox> combo;
    std::unique_ptr<QCheckBox> specifyCd;
    std::unique_ptr<QLineEdit> cdDrive;
    std::unique_ptr<ParameterMemory> memory;
};

void ParameterMemoryTest::init() {
    platform = std::make_unique<TestPlatform>();
    combo = std::make_unique<QComboBox>();
    combo->setEditable(true);
    specifyCd = std::make_unique<QCheckBox>();
    cdDrive = std::make_unique<QLineEdit>();
    memory = std::make_unique<ParameterMemory>(*combo, *specifyCd, *cdDrive, *platform->app);
}

void ParameterMemoryTest::cleanup() {
    memory.reset();
    combo.reset();
    specifyCd.reset();
    cdDrive.reset();
    platform.reset();
}

void ParameterMemoryTest::store(const QStringList& parameters, const QString& cdLine) {
    for (int i = 0; i < parameters.size(); ++i) {
        if (!parameters[i].isEmpty())
            platform->ini->write("Advanced", QStringLiteral("Parameter%1").arg(i), parameters[i]);
    }
    if (!cdLine.isNull())
        platform->ini->write("Advanced", "CDLine", cdLine);
    platform->ini->flush();
}

QStringList ParameterMemoryTest::storedParameters(int count) {
    platform->reopenStore();
    QStringList result;
    for (int i = 0; i < count; ++i)
        result << platform->store->read("Advanced", QStringLiteral("Parameter%1").arg(i), "");
    return result;
}

void ParameterMemoryTest::loadingSkipsEmptyLinesAndNeverReadsTheEleventh() {
    store({"", "b", "", "d", "", "", "", "", "", "j", "k"}, "typed last time");
    combo->addItem("left over");
    memory->loadParameterList();
    QCOMPARE(comboList(*combo), (QStringList{"b", "d", "j"}));
    QCOMPARE(combo->currentText(), QStringLiteral("typed last time"));
}

void ParameterMemoryTest::saving_data() {
    QTest::addColumn<QStringList>("stored");      // Parameter0.. before
    QTest::addColumn<QString>("text");            // what the operator launches with
    QTest::addColumn<QStringList>("afterwards");  // Parameter0..10 afterwards
    QTest::addColumn<QStringList>("offeredNext"); // the list after reloading

    QTest::newRow("new line goes first")
        << QStringList{"a", "b", "c"} << "new"
        << QStringList{"new", "a", "b", "c"} + QStringList(7, QString())
        << QStringList{"new", "a", "b", "c"};
    QTest::newRow("known line does not move")
        << QStringList{"a", "b", "c"} << "b" << QStringList{"a", "b", "c"} + QStringList(8, "")
        << QStringList{"a", "b", "c"};
    QTest::newRow("equal to Parameter4")
        << lines(0, 9) << "+set line 4" << lines(0, 9) + QStringList{""} << lines(0, 9);
    QTest::newRow("letter case counts")
        << QStringList{"abc"} << "ABC" << QStringList{"ABC", "abc"} + QStringList(9, "")
        << QStringList{"ABC", "abc"};
    QTest::newRow("ten lines and a new one: the oldest goes to Parameter10")
        << lines(0, 9) << "newest" << QStringList{"newest"} + lines(0, 9)
        << QStringList{"newest"} + lines(0, 8);
    QTest::newRow("gaps close up when shifting")
        << QStringList{"a", "", "c"} << "new" << QStringList{"new", "a", "c"} + QStringList(8, "")
        << QStringList{"new", "a", "c"};
    QTest::newRow("blanks only change nothing")
        << QStringList{"a", "b"} << "   " << QStringList{"a", "b"} + QStringList(9, "")
        << QStringList{"a", "b"};
}

void ParameterMemoryTest::saving() {
    QFETCH(QStringList, stored);
    QFETCH(QString, text);
    QFETCH(QStringList, afterwards);
    QFETCH(QStringList, offeredNext);

    store(stored, "old line");
    memory->loadParameterList();
    combo->setEditText(text);
    platform->store->writes.clear();
    memory->saveParameterList();

    // "CDLine" holds the text as typed, blanks included, every time.
    QVERIFY(platform->store->writes.contains("Advanced/CDLine=" + text));
    QCOMPARE(storedParameters(), afterwards);
    QCOMPARE(platform->store->read("Advanced", "CDLine", "<none>"), text);

    // What the launch shows right after saving.
    memory = std::make_unique<ParameterMemory>(*combo, *specifyCd, *cdDrive, *platform->app);
    memory->loadParameterList();
    QCOMPARE(comboList(*combo), offeredNext);
    QCOMPARE(combo->currentText(), text);
}

void ParameterMemoryTest::cdDriveLoading_data() {
    QTest::addColumn<QString>("stored");
    QTest::addColumn<bool>("checked");
    QTest::addColumn<QString>("shown");
    QTest::newRow("E:, checked") << "E:" << true << "E:";
    QTest::newRow("E:, unchecked keeps the letter") << "E:" << false << "E:";
}

void ParameterMemoryTest::cdDriveLoading() {
    QFETCH(QString, stored);
    QFETCH(bool, checked);
    QFETCH(QString, shown);
    if (!stored.isNull()) {
        platform->ini->write("Advanced", "CDLetter", stored);
        platform->ini->flush();
    }
    cdDrive->setText("old");
    cdDrive->setEnabled(!checked);
    specifyCd->setChecked(checked);
    memory->loadCdDrive();
    QCOMPARE(cdDrive->text(), shown);
    QCOMPARE(cdDrive->isEnabled(), checked);
    QCOMPARE(platform->messages.shown.size(), 0);
}

void ParameterMemoryTest::cdDriveFallsBackToC() {
    for (const bool checked : {true, false}) {
        platform->messages.clear();
        BrokenStore broken(*platform->ini, "CDLetter");
        AppContext app{{platform->messages, platform->dialogs, platform->processes, platform->shell,
                        platform->desktop, broken, *platform->folder},
                       AppState{}};
        ParameterMemory failing(*combo, *specifyCd, *cdDrive, app);
        specifyCd->setChecked(checked);
        cdDrive->setText("X:");
        failing.loadCdDrive();
        QCOMPARE(cdDrive->text(), QStringLiteral("C:"));
        QCOMPARE(cdDrive->isEnabled(), checked);
        QCOMPARE(onlyMessage(platform->messages),
                 message("Warning!",
                         "Halvane was unable to locate a valid CD Rom drive.\r\rThe C: Drive has "
                         "been selected by default.",
                         MsgButtons::Ok, MsgIcon::Critical));
    }
}

QTEST_MAIN(ParameterMemoryTest)
#include "tst_parametermemory.moc"
