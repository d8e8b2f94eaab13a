#pragma once

#include "FakePlatform.h"
#include "app/AppContext.h"
#include "platform/QtPlatform.h"
#include "ui/FirstRun.h"
#include "ui/MainForm.h"
#include "ui/MainWindow.h"

#include <QAbstractItemView>
#include <QByteArray>
#include <QFile>
#include <QHash>
#include <QStringList>
#include <QTemporaryDir>
#include <QTest>
#include <functional>
#include <memory>
#include <tuple>

namespace halvane::test {

// A settings store that records every write, and can be told to refuse one.
class RecordingStore : public SettingsStore {
public:
    explicit RecordingStore(SettingsStore& inner) : m_inner(inner) {}
    QString read(const QString& section, const QString& key,
                 const QString& defaultText) const override {
        return m_inner.read(section, key, defaultText);
    }
    bool write(const QString& section, const QString& key, const QString& value) override {
        writes.append(section + QLatin1Char('/') + key + QLatin1Char('=') + value);
        if (!failAtKey.isEmpty() && key == failAtKey)
            return false;
        return m_inner.write(section, key, value);
    }
    bool flush() override { return m_inner.flush(); }
    QString location() const override { return m_inner.location(); }
    QString failureReason() const override { return m_inner.failureReason(); }
    QStringList writes;
    QString failAtKey;

private:
    SettingsStore& m_inner;
};

// Everything a window needs from the platform, as fakes over real folders:
// a temporary program folder, a temporary game folder and a real INI file.
class TestPlatform {
public:
    TestPlatform();
    QString root() const { return m_dir.path(); }
    QString programFolder() const { return m_dir.path() + QStringLiteral("/program"); }
    QString gameFolder() const { return m_dir.path() + QStringLiteral("/game"); }
    QString iniPath() const { return m_dir.path() + QStringLiteral("/Halvane.ini"); }

    // Makes game/quake3.exe and game/baseq3 and stores them as the location.
    void makeGameFolder();
    // Writes a file (creating folders); returns its path.
    QString writeFile(const QString& path, const QByteArray& content);
    // A fresh store over the same INI file, as the next run would see it.
    void reopenStore();

    FakeMessageBoxes messages;
    FakeFileDialogs dialogs;
    FakeProcesses processes;
    FakeShell shell;
    FakeDesktop desktop;
    std::unique_ptr<QtSettingsStore> ini;
    std::unique_ptr<RecordingStore> store;
    std::unique_ptr<ProgramFolder> folder;
    std::unique_ptr<AppContext> app;

private:
    void wire(const AppState& state = {});
    QTemporaryDir m_dir;
};

// The main window over a game folder, as most window tests begin; prepare
// writes what the window reads (files, stored values) before it is made.
struct WindowFixture {
    explicit WindowFixture(const std::function<void(TestPlatform&)>& prepare = {});
    // A new window over the same files and stored values, as the next run sees them.
    void reopen();
    MainForm& ui() const { return window->form(); }
    TestPlatform platform;
    std::unique_ptr<MainWindow> window;
};

// A data-driven test over a static table of tuples: one row per entry, named
// by its first member; the test function takes its entry back with fetchRow().
template <typename Row, std::size_t N> void addRows(const Row (&rows)[N]) {
    QTest::addColumn<int>("row");
    for (std::size_t i = 0; i < N; ++i)
        QTest::newRow(std::get<0>(rows[i])) << int(i);
}
template <typename Row, std::size_t N> const Row& fetchRow(const Row (&rows)[N]) {
    QFETCH(int, row);
    return rows[row];
}

inline QByteArray readAll(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

// The free game as Debian installs it, below the test's folder.
FreeGameSources fakeFreeGame(TestPlatform& platform);

// Compares two byte strings line by line and says where they first differ.
QString firstDifference(const QByteArray& actual, const QByteArray& expected);

// Builds a real zip archive holding these members, in this order, each with
// its content in contents or else a few bytes. False when libzip refused.
bool makeArchive(const QString& path, const QStringList& members,
                 const QHash<QString, QByteArray>& contents = {});

// A message as "title|text|buttons|icon", so one QCOMPARE checks all four.
inline QString message(const QString& title, const QString& text, MsgButtons buttons,
                       MsgIcon icon) {
    return QStringLiteral("%1|%2|%3|%4").arg(title, text).arg(int(buttons)).arg(int(icon));
}
// Every message shown, described as above.
QStringList described(const FakeMessageBoxes& messages);
// The only message shown, described as above; says how many when not one.
QString onlyMessage(const FakeMessageBoxes& messages);
// The path of a golden file in tests/golden.
inline QString golden(const QString& name) {
    return HALVANE_TEST_DIR "/golden/" + name;
}
// A map catalogue file of records with these file names ("" for a deleted
// slot), display names "Name of <file>" and the built-in rules.
QByteArray catalogueOf(const QStringList& files);

// The texts of a list's entries, in order.
QStringList entries(const QAbstractItemView* list);
// A click on a list's entry as the operator makes it: scrolled into view,
// pressed and released on the viewport at the entry.
void clickEntry(QAbstractItemView* list, int row, Qt::KeyboardModifiers modifiers = {},
                Qt::MouseButton button = Qt::LeftButton);

} // namespace halvane::test
