#pragma once

#include <chrono>
#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace LumCommon::detail {

/// The moment at which waiting ends.
class Deadline {
public:
    explicit Deadline(std::chrono::steady_clock::duration wait) : end_(std::chrono::steady_clock::now() + wait) {}

    bool isOver() const { return std::chrono::steady_clock::now() >= end_; }
    /// What is left in milliseconds, rounded up, so that a wait of that length does not end before the deadline.
    int remainingMilliseconds() const;

private:
    std::chrono::steady_clock::time_point end_;
};

/// Creates a non-blocking TCP socket for IPv4 that other programs do not inherit; -1 on failure.
int makeTcpSocket() noexcept;
/// Connects to the first address of a host name or dotted address. False if the name is not known, the connection is
/// refused, or the deadline passes; the socket can then only be closed.
bool connectTcp(int socket, const std::string& host, unsigned short port, const Deadline& deadline);
/// Sends all bytes. False if the connection breaks or the deadline passes.
bool sendTcp(int socket, std::string_view bytes, const Deadline& deadline);
/// Waits for bytes and takes those available, up to the size of `room`. Returns their number, 0 at the end; nullopt if
/// the connection breaks or the deadline passes.
std::optional<std::size_t> receiveTcp(int socket, std::span<char> room, const Deadline& deadline);

}  // namespace LumCommon::detail
