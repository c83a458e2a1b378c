#pragma once

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <unistd.h>

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

    explicit LoopbackServer(Answerer answerer)
        : answerer_(std::move(answerer)), listener_(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
        address_.sin_family = AF_INET;
        address_.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t sizeBytes = sizeof address_;
        auto* const generic = reinterpret_cast<sockaddr*>(&address_);
        EXPECT_EQ(bind(listener_, generic, sizeof address_), 0);
        EXPECT_EQ(getsockname(listener_, generic, &sizeBytes), 0);
        EXPECT_EQ(listen(listener_, 64), 0);
        thread_ = std::thread([this] { serve(); });
    }
    LoopbackServer(const LoopbackServer&) = delete;
    LoopbackServer& operator=(const LoopbackServer&) = delete;
    ~LoopbackServer() {
        shutdown(listener_, SHUT_RDWR);  // ends the wait for a client
        thread_.join();
        close(listener_);
    }

    int getPort() const { return ntohs(address_.sin_port); }
    std::string authority() const { return "127.0.0.1:" + std::to_string(getPort()); }
    std::string url(const std::string& path) const { return "http://" + authority() + path; }
    /// The requests that were answered so far.
    std::vector<std::string> getRequests() const {
        const std::lock_guard guard(mutex_);
        return requests_;
    }

private:
    void serve() {
        std::vector<int> keptOpen;
        const auto accept = [this] { return accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC); };
        for (int client; (client = static_cast<int>(TEMP_FAILURE_RETRY(accept()))) != -1;) {
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
        const timeval limit{10, 0};
        setsockopt(client, SOL_SOCKET, SO_RCVTIMEO, &limit, sizeof limit);
        std::string request;
        char room[4096];
        const auto receive = [&] { return recv(client, room, sizeof room, 0); };
        for (ssize_t size; !request.ends_with("\r\n\r\n") && (size = TEMP_FAILURE_RETRY(receive())) > 0;) {
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
    int listener_;
    sockaddr_in address_{};
    mutable std::mutex mutex_;
    std::vector<std::string> requests_;
    std::thread thread_;
};

/// A port of 127.0.0.1 that nobody listens on.
inline const std::string closedPort = "127.0.0.1:1";

}  // namespace LumTest
