#pragma once

#include "maps/GameFiles.h"

#include <QObject>
#include <memory>
#include <optional>

class QThread;
class QWidget;

namespace halvane {

// Lists the game's files off the window thread, once the window is on
// screen: the listing never competes with the window's first frame. The
// result is taken over on the window thread, which is told by listed().
class GameFileListing : public QObject {
    Q_OBJECT
public:
    explicit GameFileListing(QObject* parent = nullptr);
    // Stops a listing under way after the archive it is reading.
    ~GameFileListing() override;

    // Lists the game folder anew as soon as window is on screen (at once
    // when it is); a listing asked for or under way before is dropped.
    void start(const QString& gameFolder, const QWidget& window);
    // Makes the listing asked for now, or waits for the one under way, and
    // takes it over at once.
    void finish();
    // The last listing taken over; not listed before the first.
    const GameFiles& files() const { return m_files; }

signals:
    void listed();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    struct Run;
    void startAsked();
    void drop();
    void takeOver(std::shared_ptr<Run> run);

    std::optional<QString> m_asked; // the game folder to list once the window shows
    std::shared_ptr<Run> m_run;
    std::unique_ptr<QThread> m_thread;
    GameFiles m_files;
};

} // namespace halvane
