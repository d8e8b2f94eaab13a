#include "maps/GameFileListing.h"

#include <QThread>
#include <QWidget>
#include <QWindow>

namespace halvane {

struct GameFileListing::Run {
    std::atomic<bool> stop{false};
    GameFiles files;
};

GameFileListing::GameFileListing(QObject* parent) : QObject(parent) {}

GameFileListing::~GameFileListing() {
    drop();
}

void GameFileListing::start(const QString& gameFolder, const QWidget& window) {
    drop();
    m_asked = gameFolder;
    QWindow* shown = window.windowHandle();
    if (shown && !shown->isExposed())
        shown->installEventFilter(this);
    else
        QMetaObject::invokeMethod(this, &GameFileListing::startAsked, Qt::QueuedConnection);
}

// The window paints its frame while it handles the exposure; the listing
// starts after that.
bool GameFileListing::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::Expose && static_cast<QWindow*>(watched)->isExposed()) {
        watched->removeEventFilter(this);
        QMetaObject::invokeMethod(this, &GameFileListing::startAsked, Qt::QueuedConnection);
    }
    return QObject::eventFilter(watched, event);
}

void GameFileListing::startAsked() {
    if (!m_asked)
        return;
    const QString gameFolder = *m_asked;
    m_asked.reset();
    auto run = std::make_shared<Run>();
    m_run = run;
    m_thread.reset(QThread::create(
        [run, gameFolder] { run->files = GameFiles::list(gameFolder, &run->stop); }));
    // Queued to the window thread; a run dropped meanwhile is not taken over.
    connect(m_thread.get(), &QThread::finished, this, [this, run] { takeOver(run); });
    m_thread->start();
}

void GameFileListing::finish() {
    startAsked();
    if (m_run)
        takeOver(m_run);
}

void GameFileListing::drop() {
    m_asked.reset();
    if (m_run)
        m_run->stop = true;
    if (m_thread)
        m_thread->wait();
    m_thread.reset();
    m_run.reset();
}

void GameFileListing::takeOver(std::shared_ptr<Run> run) {
    if (run != m_run)
        return;
    // Finished tells before the thread has quite ended.
    m_thread->wait();
    m_files = std::move(run->files);
    m_thread.reset();
    m_run.reset();
    emit listed();
}

} // namespace halvane
