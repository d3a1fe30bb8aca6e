// Stream sockets on Windows: loopback pairs, gathered sends through WSASend with the slots as
// its buffer array. Windows Sockets is started once, on first use, and left running.
#include "platform/Platform.h"

#include <algorithm>
#include <vector>
#include <winsock2.h>
#include <ws2tcpip.h>

namespace velora::platform {

namespace {

bool StartSocketsOnce() noexcept {
    static const bool started = [] {
        WSADATA data;
        return ::WSAStartup(MAKEWORD(2, 2), &data) == 0;
    }();
    return started;
}

// Buffers per WSASend call. Windows documents no limit, but Wine passes the array to sendmsg and
// fails above the POSIX vector limit, so longer gather lists go out in several calls.
constexpr unsigned kMaxVector = 1024;

SOCKET ToSocket(SocketHandle socket) noexcept {
    return static_cast<SOCKET>(socket);
}

} // namespace

bool OpenLoopbackPair(SocketHandle& a, SocketHandle& b) noexcept {
    a = b = kInvalidSocket;
    if (!StartSocketsOnce()) return false;
    const SOCKET listener = ::socket(AF_INET, SOCK_STREAM, IPPROTO_TCP);
    if (listener == INVALID_SOCKET) return false;
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = 0;
    int size = sizeof address;
    SOCKET client = INVALID_SOCKET;
    SOCKET server = INVALID_SOCKET;
    if (::bind(listener, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0 &&
        ::listen(listener, 1) == 0 &&
        ::getsockname(listener, reinterpret_cast<sockaddr*>(&address), &size) == 0) {
        client = ::socket(AF_INET, SOCK_STREAM, IPPROTO_TCP);
        if (client != INVALID_SOCKET &&
            ::connect(client, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0) {
            server = ::accept(listener, nullptr, nullptr);
        }
    }
    ::closesocket(listener);
    if (server == INVALID_SOCKET) {
        if (client != INVALID_SOCKET) ::closesocket(client);
        return false;
    }
    a = static_cast<SocketHandle>(client);
    b = static_cast<SocketHandle>(server);
    return true;
}

long long GatherSend(SocketHandle socket, const WSABUF* slots, unsigned count) noexcept {
    long long total = 0;
    unsigned next = 0;        // first slot not completely sent
    ULONG offset = 0;         // bytes of slots[next] already sent
    std::vector<WSABUF> rest; // used only after a partial send
    while (next < count) {
        // WSASend takes a non-const array; it only reads it. After a partial send the rest
        // goes from a copy whose first slot starts past the bytes already sent.
        WSABUF* vector = const_cast<WSABUF*>(slots + next);
        if (offset != 0) {
            try {
                rest.assign(slots + next, slots + next + std::min(count - next, kMaxVector));
            } catch (...) {
                return -1;
            }
            rest[0].buf += offset;
            rest[0].len -= offset;
            vector = rest.data();
        }
        const auto n = static_cast<DWORD>(std::min(count - next, kMaxVector));
        DWORD sent = 0;
        if (::WSASend(ToSocket(socket), vector, n, &sent, 0, nullptr, nullptr) != 0) return -1;
        total += sent;
        DWORD left = sent;
        while (next < count && left >= slots[next].len - offset) {
            left -= slots[next].len - offset;
            offset = 0;
            ++next;
        }
        offset += left;
    }
    return total;
}

long long Receive(SocketHandle socket, char* buffer, std::size_t size) noexcept {
    const int wanted = static_cast<int>(std::min<std::size_t>(size, 0x7FFFFFFF));
    const int received = ::recv(ToSocket(socket), buffer, wanted, 0);
    return received == SOCKET_ERROR ? -1 : received;
}

void CloseSocket(SocketHandle socket) noexcept {
    if (socket != kInvalidSocket) ::closesocket(ToSocket(socket));
}

} // namespace velora::platform
