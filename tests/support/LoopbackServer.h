#pragma once

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace LumTest {

/// A server on a free port of 127.0.0.1 that answers one request after another, each on a connection of its own, on one
/// thread, until it is destroyed.
class LoopbackServer {
public:
    /// What is sent, piece by piece with a pause between them, before the connection is closed.
    struct Answer {
        std::vector<std::string> pieces;
        int pauseMilliseconds = 20;  // long enough for the reader to see the pieces apart
        bool isKeptOpen = false;     // the connection stays as it is until the server goes
        bool isReset = false;        // it breaks instead of closing
    };
    /// @param request  all that the client sent, up to the empty line.
    using Answerer = std::function<Answer(const std::string& request)>;

    /// @param requestLimitBytes  after so many bytes the server answers without waiting for the rest of the request.
    explicit LoopbackServer(Answerer answerer, std::size_t requestLimitBytes = std::string::npos)
        : answerer_(std::move(answerer)), requestLimitBytes_(requestLimitBytes) {
        listener_ = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
        port_ = bindToFreePort(listener_);
        EXPECT_EQ(listen(listener_, 64), 0);
        EXPECT_EQ(pipe(stop_), 0);
        thread_ = std::thread([this] { serve(); });
    }
    LoopbackServer(const LoopbackServer&) = delete;
    LoopbackServer& operator=(const LoopbackServer&) = delete;
    ~LoopbackServer() {
        close(stop_[1]);  // the thread sees the end of the pipe
        thread_.join();
        close(stop_[0]);
        close(listener_);
    }

    int getPort() const { return port_; }
    std::string authority() const { return "127.0.0.1:" + std::to_string(port_); }
    std::string url(const std::string& path) const { return "http://" + authority() + path; }
    /// The requests that were answered so far.
    std::vector<std::string> getRequests() const {
        const std::lock_guard guard(mutex_);
        return requests_;
    }

    static sockaddr_in loopback(int port) {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        address.sin_port = htons(static_cast<unsigned short>(port));
        return address;
    }
    static int bindToFreePort(int socket) {
        sockaddr_in address = loopback(0);
        socklen_t sizeBytes = sizeof address;
        auto* const generic = reinterpret_cast<sockaddr*>(&address);
        EXPECT_EQ(bind(socket, generic, sizeof address), 0);
        EXPECT_EQ(getsockname(socket, generic, &sizeBytes), 0);
        return ntohs(address.sin_port);
    }

private:
    /// Waits for the socket, with -1 without a limit; false when the server is to stop or the time is over.
    bool waitFor(int socket, int milliseconds = 10000) const {
        pollfd entries[2] = {{socket, POLLIN, 0}, {stop_[0], POLLIN, 0}};
        int count;
        do {
            count = poll(entries, 2, milliseconds);
        } while (count < 0 && errno == EINTR);
        return count > 0 && entries[1].revents == 0;
    }

    void serve() {
        std::vector<int> keptOpen;
        while (waitFor(listener_, -1)) {
            const int client = accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC);
            if (client == -1) continue;
            if (answer(client)) {
                keptOpen.push_back(client);
            } else {
                close(client);
            }
        }
        for (const int client : keptOpen) close(client);
    }

    /// True when the connection is to be kept open.
    bool answer(int client) {
        std::string request;
        std::size_t searched = 0;
        while (request.size() < requestLimitBytes_ && request.find("\r\n\r\n", searched) == std::string::npos &&
               waitFor(client)) {
            searched = request.size() < 3 ? 0 : request.size() - 3;
            char room[4096];
            const ssize_t size = recv(client, room, sizeof room, 0);
            if (size <= 0) break;
            request.append(room, static_cast<std::size_t>(size));
        }
        {
            const std::lock_guard guard(mutex_);
            requests_.push_back(request);
        }
        const Answer answer = answerer_(request);
        for (std::size_t i = 0; i < answer.pieces.size(); ++i) {
            if (i > 0) std::this_thread::sleep_for(std::chrono::milliseconds(answer.pauseMilliseconds));
            send(client, answer.pieces[i].data(), answer.pieces[i].size(), MSG_NOSIGNAL);
        }
        if (answer.isReset) {
            const linger now{1, 0};
            setsockopt(client, SOL_SOCKET, SO_LINGER, &now, sizeof now);
        }
        return answer.isKeptOpen;
    }

    Answerer answerer_;
    std::size_t requestLimitBytes_;
    int listener_ = -1;
    int stop_[2] = {-1, -1};
    int port_ = 0;
    mutable std::mutex mutex_;
    std::vector<std::string> requests_;
    std::thread thread_;
};

/// A port of 127.0.0.1 that nobody listens on, held for as long as this lives.
class ClosedPort {
public:
    ClosedPort()
        : socket_(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)), port_(LoopbackServer::bindToFreePort(socket_)) {}
    ClosedPort(const ClosedPort&) = delete;
    ClosedPort& operator=(const ClosedPort&) = delete;
    ~ClosedPort() { close(socket_); }

    std::string authority() const { return "127.0.0.1:" + std::to_string(port_); }

private:
    int socket_;
    int port_;
};

}  // namespace LumTest
