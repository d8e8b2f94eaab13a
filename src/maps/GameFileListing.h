#pragma once

#include "maps/GameFiles.h"

#include <QObject>
#include <memory>

class QThread;

namespace halvane {

// Lists the game's files off the window thread: made when asked, the result
// taken over on the window thread, which is told by listed().
class GameFileListing : public QObject {
    Q_OBJECT
public:
    explicit GameFileListing(QObject* parent = nullptr);
    // Stops a listing under way after the archive it is reading.
    ~GameFileListing() override;

    // Starts a new listing of the game folder; one under way is dropped.
    void start(const QString& gameFolder);
    // Waits for the listing under way and takes it over at once.
    void finish();
    // The last listing taken over; not listed before the first.
    const GameFiles& files() const { return m_files; }

signals:
    void listed();

private:
    struct Run;
    void drop();
    void takeOver(std::shared_ptr<Run> run);

    std::shared_ptr<Run> m_run;
    std::unique_ptr<QThread> m_thread;
    GameFiles m_files;
};

} // namespace halvane
