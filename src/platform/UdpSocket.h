#pragma once

#include <QByteArray>
#include <QObject>
#include <QString>
#include <optional>

class QSocketNotifier;

namespace halvane {

// "127.0.0.1" as a number in host order, as the system's parser reads four
// decimal parts; blanks around it do not count. Nothing for names, shorter
// forms ("127.1") or anything else.
std::optional<quint32> parseIpv4(const QString& text);

// A non-blocking IPv4 UDP socket for the game's queries. Written on the
// system's sockets so that the program needs no network library at start-up.
class UdpSocket : public QObject {
    Q_OBJECT
public:
    struct Datagram {
        QByteArray data;
        quint32 address = 0; // the sender's, host order
        quint16 port = 0;
    };

    explicit UdpSocket(QObject* parent = nullptr);
    ~UdpSocket() override;
    UdpSocket(const UdpSocket&) = delete;
    UdpSocket& operator=(const UdpSocket&) = delete;

    // Every IPv4 address, a port the system chooses. True when bound, also
    // when it was before.
    bool bind();
    bool isBound() const { return m_handle != Invalid; }
    bool send(const QByteArray& datagram, quint32 address, quint16 port);
    // The next datagram waiting, nothing when none is left.
    std::optional<Datagram> receive();

signals:
    void readyRead();

private:
    static constexpr qintptr Invalid = -1;
    qintptr m_handle = Invalid;
    QSocketNotifier* m_notifier = nullptr;
};

} // namespace halvane
