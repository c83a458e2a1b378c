#include <lumcommon/uri/open/detail/TcpSocket.h>

#include <netdb.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <limits>
#include <optional>

namespace LumCommon::detail {
namespace {

/// Waits until the socket is ready for `events` or has failed. False if the deadline passes.
bool waitFor(int socket, short events, const Deadline& deadline) {
    for (;;) {
        pollfd entry{socket, events, 0};
        const int count = poll(&entry, 1, deadline.remainingMilliseconds());
        if (count > 0) return true;
        if (count == 0 ? deadline.isOver() : errno != EINTR) return false;
    }
}

bool isTransient(int error) { return error == EAGAIN || error == EWOULDBLOCK || error == EINTR; }

/// Blanks and control characters are rejected because a resolver may ignore what follows a blank, and because the name
/// is sent as a line of the request. A colon is left in the host only if there is no name before the port.
bool isHostName(std::string_view host) {
    return !host.empty() &&
           std::ranges::all_of(host, [](unsigned char c) { return c > 0x20 && c != 0x7F && c != ':'; });
}

std::optional<sockaddr_in> findAddress(const std::string& host, unsigned short port) {
    if (!isHostName(host)) return std::nullopt;
    addrinfo hints{};
    hints.ai_family = AF_INET;
    hints.ai_socktype = SOCK_STREAM;
    addrinfo* found = nullptr;
    if (getaddrinfo(host.c_str(), nullptr, &hints, &found) != 0 || !found) return std::nullopt;
    sockaddr_in address{};
    std::memcpy(&address, found->ai_addr, sizeof address);
    freeaddrinfo(found);
    address.sin_port = htons(port);
    return address;
}

}  // namespace

int Deadline::remainingMilliseconds() const {
    using std::chrono::milliseconds;
    const auto rest = std::chrono::ceil<milliseconds>(end_ - std::chrono::steady_clock::now()).count();
    return static_cast<int>(std::clamp<milliseconds::rep>(rest, 0, std::numeric_limits<int>::max()));
}

int makeTcpSocket() noexcept { return socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0); }

bool connectTcp(int socket, const std::string& host, unsigned short port, const Deadline& deadline) {
    const auto address = findAddress(host, port);
    if (!address) return false;
    if (connect(socket, reinterpret_cast<const sockaddr*>(&*address), sizeof *address) == 0) return true;
    // An interrupted connect continues in the background, like one in progress.
    if (errno != EINPROGRESS && errno != EINTR) return false;
    if (!waitFor(socket, POLLOUT, deadline)) return false;
    int error = 0;
    socklen_t sizeBytes = sizeof error;
    return getsockopt(socket, SOL_SOCKET, SO_ERROR, &error, &sizeBytes) == 0 && error == 0;
}

bool sendTcp(int socket, std::string_view bytes, const Deadline& deadline) {
    while (!bytes.empty()) {
        // A server that has gone away must make this call fail, not end the program with a signal.
        const ssize_t sent = send(socket, bytes.data(), bytes.size(), MSG_NOSIGNAL);
        if (sent >= 0) {
            bytes.remove_prefix(static_cast<std::size_t>(sent));
        } else if (!isTransient(errno) || !waitFor(socket, POLLOUT, deadline)) {
            return false;
        }
    }
    return true;
}

std::optional<std::size_t> receiveTcp(int socket, std::span<char> room, const Deadline& deadline) {
    for (;;) {
        const ssize_t received = recv(socket, room.data(), room.size(), 0);
        if (received >= 0) return static_cast<std::size_t>(received);
        if (!isTransient(errno) || !waitFor(socket, POLLIN, deadline)) return std::nullopt;
    }
}

}  // namespace LumCommon::detail
