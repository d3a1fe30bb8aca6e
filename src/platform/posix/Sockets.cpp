// Stream sockets on POSIX: loopback pairs, gathered sends through sendmsg with an iovec vector.
#include "platform/Platform.h"

#include <algorithm>
#include <arpa/inet.h>
#include <cerrno>
#include <climits>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

namespace velora::platform {

namespace {

int ToFd(SocketHandle socket) noexcept {
    return static_cast<int>(socket);
}

SocketHandle ToHandle(int fd) noexcept {
    return fd < 0 ? kInvalidSocket : static_cast<SocketHandle>(fd);
}

// Largest vector one sendmsg accepts; longer gather lists go out in several calls.
#ifdef IOV_MAX
constexpr unsigned kMaxVector = IOV_MAX;
#else
constexpr unsigned kMaxVector = 1024;
#endif

} // namespace

bool OpenLoopbackPair(SocketHandle& a, SocketHandle& b) noexcept {
    a = b = kInvalidSocket;
    const int listener = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (listener < 0) return false;
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = 0;
    socklen_t size = sizeof address;
    int client = -1;
    int server = -1;
    if (::bind(listener, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0 &&
        ::listen(listener, 1) == 0 &&
        ::getsockname(listener, reinterpret_cast<sockaddr*>(&address), &size) == 0) {
        client = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
        if (client >= 0) {
            int rc;
            do {
                rc = ::connect(client, reinterpret_cast<const sockaddr*>(&address), sizeof address);
            } while (rc != 0 && errno == EINTR);
            if (rc == 0) {
                do {
                    server = ::accept4(listener, nullptr, nullptr, SOCK_CLOEXEC);
                } while (server < 0 && errno == EINTR);
            }
        }
    }
    ::close(listener);
    if (server < 0) {
        if (client >= 0) ::close(client);
        return false;
    }
    a = ToHandle(client);
    b = ToHandle(server);
    return true;
}

long long GatherSend(SocketHandle socket, const WSABUF* slots, unsigned count) noexcept {
    iovec vector[kMaxVector];
    long long total = 0;
    unsigned next = 0;      // first slot not completely sent
    std::size_t offset = 0; // bytes of slots[next] already sent
    while (next < count) {
        const unsigned n = std::min(count - next, kMaxVector);
        velora::FillIovecs(slots + next, n, vector);
        vector[0].iov_base = static_cast<char*>(vector[0].iov_base) + offset;
        vector[0].iov_len -= offset;
        msghdr message{};
        message.msg_iov = vector;
        message.msg_iovlen = n;
        // sendmsg is writev with flags: MSG_NOSIGNAL turns a closed peer into EPIPE, not SIGPIPE.
        const ssize_t sent = ::sendmsg(ToFd(socket), &message, MSG_NOSIGNAL);
        if (sent < 0) {
            if (errno == EINTR) continue;
            return -1;
        }
        total += sent;
        auto left = static_cast<std::size_t>(sent);
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
    for (;;) {
        const ssize_t received = ::recv(ToFd(socket), buffer, size, 0);
        if (received >= 0) return received;
        if (errno != EINTR) return -1;
    }
}

void CloseSocket(SocketHandle socket) noexcept {
    if (socket != kInvalidSocket) ::close(ToFd(socket));
}

} // namespace velora::platform
