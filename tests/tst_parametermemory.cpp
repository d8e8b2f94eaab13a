// The remembered parameter lines (most recent first, ten offered) and the CD drive box, in the
// window over a real settings file.
#include "TestSupport.h"

#include "launch/ParameterMemory.h"

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

} // namespace

const QStringList Eleven = {"", "b", "", "d", "", "", "", "", "", "j", "k"};

// Parameter0.. before, what the operator launches with, Parameter0.. afterwards and the list
// offered again.
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
    const auto parameter = [](int i) { return QStringLiteral("Parameter%1").arg(i); };
    WindowFixture f([&, &stored = stored](TestPlatform& p) {
        for (int i = 0; i < stored.size(); ++i)
            if (!stored[i].isEmpty())
                p.ini->write("Advanced", parameter(i), stored[i]);
        p.ini->write("Advanced", "CDLine", "old line");
    });
    QComboBox& box = *f.ui().txtCmdParameters;
    box.setEditText(text);
    f.platform.store->writes.clear();
    // As a launch does: the line remembered, then the list offered again over the one shown.
    LaunchSteps& launch = *f.window;
    launch.saveParameterList();
    launch.loadParameterList();

    // "CDLine" holds the text as typed, blanks included, every time.
    QVERIFY(f.platform.store->writes.contains("Advanced/CDLine=" + text));
    const QtSettingsStore file(f.platform.iniPath());
    QStringList parameters;
    for (int i = 0; i < 11; ++i)
        parameters << file.read("Advanced", parameter(i), "");
    QCOMPARE(parameters, afterwards);
    QCOMPARE(entries(box.view()) << box.currentText(), offeredNext + QStringList{text});
}

void ParameterMemoryTest::cdDriveLoading() {
    const auto& [name, checked, broken] = fetchRow(CdDrives);
    WindowFixture f([](TestPlatform& p) { p.ini->write("Advanced", "CDLetter", "E:"); });
    MainForm& ui = f.ui();
    ParameterMemory memory(*ui.txtCmdParameters, *ui.chkSpecifyCD, *ui.txtCDROM, *f.platform.app);
    BrokenStore brokenStore(*f.platform.ini);
    ui.chkSpecifyCD->setChecked(checked);
    ui.txtCDROM->setText("X:");
    ui.txtCDROM->setEnabled(!checked);
    f.platform.messages.clear();
    memory.loadCdDrive(broken ? brokenStore : *f.platform.store);
    QCOMPARE(std::pair(ui.txtCDROM->text(), ui.txtCDROM->isEnabled()),
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
