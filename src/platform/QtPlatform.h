#pragma once

#include "platform/Platform.h"

#include <QLockFile>
#include <QSettings>
#include <memory>

class QWidget;

namespace halvane {

class QtMessageBoxes : public MessageBoxes {
public:
    MsgAnswer show(const QString& title, const QString& text, MsgButtons buttons,
                   MsgIcon icon) override;
};

class QtFileDialogs : public FileDialogs {
public:
    FileChoice openFile(const QString& title, const QString& filter,
                        const QString& initialFolder) override;
    FileChoice saveFile(const QString& title, const QString& filter, const QString& defaultSuffix,
                        const QString& initialFolder) override;
};

class QtProcesses : public Processes {
public:
    // supervisor: the executable that runs "--supervise" (this program's
    // own); none: programs start unsupervised.
    explicit QtProcesses(QString supervisor = QString()) : m_supervisor(std::move(supervisor)) {}
    StartResult start(const QString& program, const QStringList& arguments,
                      const QString& workingFolder, const QString& logFile) override;
    StartResult startSupervised(const QString& program, const QStringList& arguments,
                                const QString& workingFolder, const QString& logFile,
                                const QString& statusFile) override;
    bool activate(qint64 taskId) override;
    qint64 startTimeOf(qint64 taskId) override;
    bool end(qint64 taskId, bool force) override;
    QList<quint16> udpPortsOf(qint64 taskId) override;

private:
    StartResult startAs(const QString& program, const QStringList& arguments,
                        const QString& workingFolder, const QString& logFile,
                        const QString& statusFile);
    QString m_supervisor;
};

class QtShell : public Shell {
public:
    bool openDocument(const QString& target) override;
    bool editTextFile(const QString& path) override;
};

class QtDesktop : public Desktop {
public:
    bool anotherCopyRunning() override;
    void beep() override;
    void setBusy(bool busy) override;

private:
    std::unique_ptr<QLockFile> m_lock;
    int m_busyDepth = 0;
};

// QSettings-backed store: INI in the user's configuration folder on Linux,
// the registry on Windows; tests pass an INI file of their own. The file holds
// passwords: it is kept readable by the user alone (tightened when the store
// opens it and after every write to disk), and the default file's folder is
// the user's alone, so that not even a file just made is open to others.
class QtSettingsStore : public SettingsStore {
public:
    QtSettingsStore();
    explicit QtSettingsStore(const QString& iniFile);
    QString read(const QString& section, const QString& key,
                 const QString& defaultText) const override;
    bool write(const QString& section, const QString& key, const QString& value) override;
    bool flush() override;
    QString location() const override;
    QString failureReason() const override;

private:
    // Closing writes what is pending, then keeps the file private.
    struct Closer {
        void operator()(QSettings* settings) const;
    };
    std::unique_ptr<QSettings, Closer> m_settings;
};

// Converts the "Caption|*.a;*.b" filter form to Qt's "Caption (*.a *.b)".
QString qtFileFilter(const QString& filter);

} // namespace halvane
