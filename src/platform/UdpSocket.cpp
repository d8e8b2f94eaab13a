#include "platform/UdpSocket.h"

#include <QSocketNotifier>
#include <cerrno>

#ifdef Q_OS_WIN
#include <mutex>
#include <winsock2.h>
#include <ws2tcpip.h>
#else
#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>
#endif

namespace halvane {

namespace {

// One part of an address: decimal, octal after a 0, hexadecimal after 0x.
// Returns where it stopped, or nullptr when no number starts here.
const char* parsePart(const char* p, const char* end, quint64& value) {
    while (p < end && *p == ' ')
        ++p;
    if (p < end && *p == '+')
        ++p;
    if (p == end || *p < '0' || *p > '9')
        return nullptr;
    int base = 10;
    if (*p == '0') {
        base = 8;
        if (p + 1 < end && (p[1] == 'x' || p[1] == 'X')) {
            base = 16;
            p += 2;
        }
    }
    const char* start = p;
    value = 0;
    for (; p < end; ++p) {
        int digit = 0;
        if (*p >= '0' && *p <= '9')
            digit = *p - '0';
        else if (*p >= 'a' && *p <= 'f')
            digit = *p - 'a' + 10;
        else if (*p >= 'A' && *p <= 'F')
            digit = *p - 'A' + 10;
        else
            break;
        if (digit >= base)
            break;
        value = value * quint64(base) + quint64(digit);
        if (value > 0xffffffffu)
            return nullptr;
    }
    return p == start ? nullptr : p;
}

#ifdef Q_OS_WIN
using Handle = SOCKET;
constexpr int Refused = WSAECONNRESET; // Windows' word for an ICMP port-unreachable
constexpr int WouldBlock = WSAEWOULDBLOCK;
int lastError() {
    return WSAGetLastError();
}
void closeHandle(Handle handle) {
    closesocket(handle);
}
bool startSockets() {
    static const bool started = [] {
        WSADATA data;
        return WSAStartup(MAKEWORD(2, 2), &data) == 0;
    }();
    return started;
}
#else
using Handle = int;
constexpr int Refused = ECONNREFUSED;
constexpr int WouldBlock = EWOULDBLOCK;
int lastError() {
    return errno;
}
void closeHandle(Handle handle) {
    ::close(handle);
}
bool startSockets() {
    return true;
}
#endif

Handle handleOf(qintptr handle) {
    return Handle(handle);
}

} // namespace

std::optional<quint32> parseIpv4(const QString& text) {
    const QString simple = text.simplified();
    QByteArray ascii;
    for (const QChar c : simple) {
        if (c.unicode() >= 0x80)
            return std::nullopt;
        ascii += char(c.unicode());
    }
    // a.b.c.d; with fewer parts the last one fills the remaining bytes.
    const char* p = ascii.constData();
    const char* const end = p + ascii.size();
    quint32 address = 0;
    for (int part = 0; part < 4; ++part) {
        quint64 value = 0;
        p = parsePart(p, end, value);
        if (!p)
            return std::nullopt;
        const bool last = p == end || part == 3;
        const int bits = last ? 8 * (4 - part) : 8;
        if (bits < 32 && value >> bits)
            return std::nullopt;
        address = bits == 32 ? quint32(value) : address << bits | quint32(value);
        if (last)
            return p == end ? std::optional<quint32>(address) : std::nullopt;
        if (*p != '.')
            return std::nullopt;
        ++p;
    }
    return std::nullopt;
}

UdpSocket::UdpSocket(QObject* parent) : QObject(parent) {}

UdpSocket::~UdpSocket() {
    delete m_notifier;
    if (m_handle != Invalid)
        closeHandle(handleOf(m_handle));
}

bool UdpSocket::bind() {
    if (m_handle != Invalid)
        return true;
    if (!startSockets())
        return false;
    const Handle handle = ::socket(AF_INET, SOCK_DGRAM, IPPROTO_UDP);
#ifdef Q_OS_WIN
    if (handle == INVALID_SOCKET)
        return false;
    u_long nonBlocking = 1;
    // Not inherited by the servers we start.
    bool ready = ioctlsocket(handle, FIONBIO, &nonBlocking) == 0 &&
                 SetHandleInformation(reinterpret_cast<HANDLE>(handle), HANDLE_FLAG_INHERIT, 0);
#else
    if (handle < 0)
        return false;
    const int flags = fcntl(handle, F_GETFL);
    // Not inherited by the servers we start.
    bool ready = flags >= 0 && fcntl(handle, F_SETFL, flags | O_NONBLOCK) == 0 &&
                 fcntl(handle, F_SETFD, FD_CLOEXEC) == 0;
#endif
    sockaddr_in any{};
    any.sin_family = AF_INET;
    any.sin_addr.s_addr = htonl(INADDR_ANY);
    any.sin_port = 0;
    ready = ready && ::bind(handle, reinterpret_cast<const sockaddr*>(&any), sizeof any) == 0;
    if (!ready) {
        closeHandle(handle);
        return false;
    }
    m_handle = qintptr(handle);
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
        const auto sent = ::sendto(handleOf(m_handle), datagram.constData(), int(datagram.size()),
                                   0, reinterpret_cast<const sockaddr*>(&to), sizeof to);
        if (sent >= 0 && qsizetype(sent) == datagram.size())
            return true;
        const int error = lastError();
        if (error != Refused && error != EINTR)
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
#ifdef Q_OS_WIN
        int fromSize = sizeof from;
#else
        socklen_t fromSize = sizeof from;
#endif
        const auto size = ::recvfrom(handleOf(m_handle), buffer.data(), int(buffer.size()), 0,
                                     reinterpret_cast<sockaddr*>(&from), &fromSize);
        if (size >= 0) {
            buffer.truncate(qsizetype(size));
            return Datagram{buffer, ntohl(from.sin_addr.s_addr), ntohs(from.sin_port)};
        }
        const int error = lastError();
        if (error == WouldBlock || error == EAGAIN)
            return std::nullopt;
    }
    return std::nullopt;
}

} // namespace halvane
