#include "platform/UdpSocket.h"

#include <QSocketNotifier>
#include <arpa/inet.h>
#include <cerrno>
#include <fcntl.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

namespace halvane {

std::optional<quint32> parseIpv4(const QString& text) {
    const QByteArray ascii = text.trimmed().toLatin1();
    in_addr address{};
    if (ascii.contains('\0') || inet_pton(AF_INET, ascii.constData(), &address) != 1)
        return std::nullopt;
    return ntohl(address.s_addr);
}

UdpSocket::UdpSocket(QObject* parent) : QObject(parent) {}

UdpSocket::~UdpSocket() {
    delete m_notifier;
    if (m_handle != Invalid)
        ::close(int(m_handle));
}

bool UdpSocket::bind() {
    if (m_handle != Invalid)
        return true;
    // Not inherited by the servers we start.
    const int handle = ::socket(AF_INET, SOCK_DGRAM | SOCK_NONBLOCK | SOCK_CLOEXEC, IPPROTO_UDP);
    if (handle < 0)
        return false;
    sockaddr_in any{};
    any.sin_family = AF_INET;
    any.sin_addr.s_addr = htonl(INADDR_ANY);
    any.sin_port = 0;
    if (::bind(handle, reinterpret_cast<const sockaddr*>(&any), sizeof any) != 0) {
        ::close(handle);
        return false;
    }
    m_handle = handle;
    m_notifier = new QSocketNotifier(m_handle, QSocketNotifier::Read, this);
    connect(m_notifier, &QSocketNotifier::activated, this, &UdpSocket::readyRead);
    return true;
}

bool UdpSocket::send(const QByteArray& datagram, quint32 address, quint16 port) {
    if (m_handle == Invalid)
        return false;
    sockaddr_in to{};
    to.sin_family = AF_INET;
    to.sin_addr.s_addr = htonl(address);
    to.sin_port = htons(port);
    // A refusal still waiting from an earlier datagram may be reported here
    // instead of this one being sent: then it is sent again.
    for (int attempt = 0; attempt < 3; ++attempt) {
        const ssize_t sent = ::sendto(int(m_handle), datagram.constData(), size_t(datagram.size()),
                                      0, reinterpret_cast<const sockaddr*>(&to), sizeof to);
        if (sent >= 0 && qsizetype(sent) == datagram.size())
            return true;
        if (errno != ECONNREFUSED && errno != EINTR)
            return false;
    }
    return false;
}

std::optional<UdpSocket::Datagram> UdpSocket::receive() {
    if (m_handle == Invalid)
        return std::nullopt;
    QByteArray buffer(65536, Qt::Uninitialized);
    // Refusals for earlier datagrams (ICMP port unreachable) and other errors
    // are each reported once; they are skipped so that later answers are
    // still read. The bound keeps an error that stays from spinning.
    for (int attempt = 0; attempt < 64; ++attempt) {
        sockaddr_in from{};
        socklen_t fromSize = sizeof from;
        const ssize_t size = ::recvfrom(int(m_handle), buffer.data(), size_t(buffer.size()), 0,
                                        reinterpret_cast<sockaddr*>(&from), &fromSize);
        if (size >= 0) {
            buffer.truncate(qsizetype(size));
            return Datagram{buffer, ntohl(from.sin_addr.s_addr), ntohs(from.sin_port)};
        }
        if (errno == EWOULDBLOCK || errno == EAGAIN)
            return std::nullopt;
    }
    return std::nullopt;
}

} // namespace halvane
