#include <gtest/gtest.h>
#include <lumcommon/uri/LumUri.h>
#include <lumcommon/uri/open/LumUriStream.h>

#include <chrono>
#include <cstdlib>
#include <iterator>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "support/LoopbackServer.h"
#include "support/Recipe.h"
#include "support/Utf8.h"

namespace {

using namespace LumCommon;
using LumTest::ClosedPort;
using LumTest::LoopbackServer;
using LumTest::utf8;
using Answer = LoopbackServer::Answer;

const std::string product = " HTTP/1.0\r\nUser-Agent: Lumset V3.9 R1 for Linux (3,9,2006,0901)\r\n";

UnicodeString text(const std::string& bytes) { return UnicodeString::fromUTF8(bytes); }

/// Answers every request with the same bytes.
LoopbackServer::Answerer always(std::string bytes) {
    return [bytes = std::move(bytes)](const std::string&) { return Answer{{bytes}}; };
}

struct Opened {
    std::string message, contentType, body;
    bool operator==(const Opened&) const = default;
};

/// What opening gives; without success the body is "(null)" and nothing may be said of the type.
Opened open(const std::string& url) {
    UnicodeString contentType(u"untouched"), message;
    const std::unique_ptr<std::istream> in(LumUri(text(url)).getStream(&contentType, &message));
    return {utf8(message), utf8(contentType), in ? std::string(std::istreambuf_iterator<char>(*in), {}) : "(null)"};
}

std::ostream& operator<<(std::ostream& out, const Opened& o) {
    return out << o.message << " | " << o.contentType << " | " << o.body.substr(0, 200);
}

/// Waits are short, and no proxy is set unless a test sets one.
class LumUriStreamTest : public testing::Test {
protected:
    void SetUp() override {
        if (const char* const proxy = std::getenv("HTTP_PROXY")) proxy_ = proxy;
        unsetenv("HTTP_PROXY");
        LumUriStreamBuf::setTimeout(10000);
    }
    void TearDown() override {
        LumUriStreamBuf::setTimeout(LumUriStreamBuf::defaultTimeoutMilliseconds);
        unsetenv("HTTP_PROXY");
        if (proxy_) setenv("HTTP_PROXY", proxy_->c_str(), 1);
    }

private:
    std::optional<std::string> proxy_;
};

TEST_F(LumUriStreamTest, readsResponses) {
    const LoopbackServer target(always("HTTP/1.0 200 OK\r\nContent-Type: t/t\r\n\r\nfound"));
    std::size_t followed = 0;
    for (const auto& row : LumTest::readRows("uri/http.txt")) {
        SCOPED_TRACE(utf8(row[0]));
        const std::string recipe = LumTest::fillIn(utf8(row[1]), {{"target", target.url("")}});
        const LoopbackServer server(always(LumTest::recipeBytes(text(recipe))));
        Opened expected{utf8(row[2]), "untouched", "(null)"};
        if (row.size() > 3) expected = {utf8(row[2]), utf8(row[3]), row.size() > 4 ? LumTest::textOf(row[4]) : ""};
        EXPECT_EQ(open(server.url("/a")), expected);
        if (expected.body == "found") ++followed;
        EXPECT_EQ(target.getRequests().size(), followed);
    }
    for (const std::string& request : target.getRequests()) EXPECT_TRUE(request.starts_with("GET /new?x HTT"));
    std::string self;
    const LoopbackServer loop(
        [&self](const std::string&) { return Answer{{"HTTP/1.0 302 Again\r\nLocation: " + self + "\r\n\r\n"}}; });
    self = loop.url("/");
    EXPECT_EQ(open(self).message, "HTTP status is 302 Again");
    EXPECT_EQ(loop.getRequests().size(), 100u);
}

TEST_F(LumUriStreamTest, sendsTheRequest) {
    const LoopbackServer server(always("HTTP/1.0 204 No\r\n\r\n"));
    const struct {
        const char *fault, *url, *path;
    } cases[] = {
        {"no path", "", "/"},
        {"query left out", "/a/b?c=d", "/a/b?c=d"},
        {"line ends make headers", "/a\r\nX: y", "/a%0D%0AX:%20y"},
        {"characters beyond ASCII lost", "/\xC3\xA9", "/\xC3\xA9"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.fault);
        LumUriStream in(text("hTTp://" + server.authority() + c.url));
        EXPECT_TRUE(in.is_open());
        EXPECT_EQ(in.rdbuf()->getStatus(), 204);
        EXPECT_EQ(server.getRequests().back(),
                  std::string("GET ") + c.path + product + "Host: 127.0.0.1\r\nAccept: */*\r\n\r\n");
    }
    const std::string path = "/" + std::string(8000000, 'x');
    open(server.url(path));
    EXPECT_TRUE(server.getRequests().back().starts_with("GET " + path + " HTTP/1.0\r\n")) << "sent in one piece only";
    const int wrapped = 65536 + server.getPort();
    EXPECT_EQ(open("http://127.0.0.1:" + std::to_string(wrapped) + "/").body, "") << "a port has 16 bits";
    const std::size_t count = server.getRequests().size();
    for (const std::string& host : {std::string("127.0.0.1\r\nX"), std::string("127.0.0.1 X"), std::string()}) {
        EXPECT_EQ(open("http://" + host + ":" + std::to_string(server.getPort()) + "/").body, "(null)");
    }
    EXPECT_EQ(server.getRequests().size(), count) << "a host that is no name was asked";
    for (const char* const url : {"https://127.0.0.1/", "http:/127.0.0.1/", "data:,a"}) {
        EXPECT_EQ(open(url), (Opened{"No http scheme", "untouched", "(null)"}));
    }
    const LumUriStreamBuf none(static_cast<const char*>(nullptr));
    EXPECT_FALSE(none.is_open());
    EXPECT_EQ(utf8(none.getErrorMessage()), "No http scheme");
}

TEST_F(LumUriStreamTest, readsHeadsThatArriveInPieces) {
    const std::string response = "HTTP/1.0 200 OK\r\nContent-Type: a/b\r\n\r\n\nbody";
    std::size_t cut = 0;
    const LoopbackServer server([&](const std::string&) {
        return Answer{{response.substr(0, cut), response.substr(cut)}, 5};
    });
    for (cut = 1; cut < response.size(); ++cut) {
        EXPECT_EQ(open(server.url("/")), (Opened{"HTTP status is 200 OK", "a/b", "\nbody"})) << "cut at " << cut;
    }
}

TEST_F(LumUriStreamTest, readsLongBodiesAndPutsBack) {
    std::string body;
    for (int i = 0; i < 200000; ++i) body += static_cast<char>(i % 251);
    const LoopbackServer server(always("HTTP/1.0 200 OK\r\n\r\n" + body));
    LumUriStream in(text(server.url("/")));
    EXPECT_FALSE(in.unget()) << "the head was put back";
    in.clear();
    std::string read(5000, '\0');
    in.read(read.data(), 5000);  // over the border between two reads
    for (int i = 0; i < 16; ++i) in.unget();
    ASSERT_TRUE(in) << "16 bytes cannot be put back";
    read.resize(5000 - 16);
    read.append(std::istreambuf_iterator<char>(in), {});
    EXPECT_TRUE(read == body);
}

TEST_F(LumUriStreamTest, goesThroughTheProxy) {
    const ClosedPort closed;
    const std::string url = "http://" + closed.authority() + "/a?b c";
    EXPECT_EQ(open(url).message, "Cannot connect or no proxy");
    setenv("HTTP_PROXY", "", 1);
    EXPECT_EQ(open(url).message, "Cannot connect or no proxy") << "an empty proxy was taken for one";
    setenv("HTTP_PROXY", closed.authority().c_str(), 1);
    EXPECT_EQ(open(url).message, "Cannot connect via proxy");

    const LoopbackServer proxy(always("HTTP/1.0 200 OK\r\n\r\nby proxy"));
    const LoopbackServer direct(always("HTTP/1.0 200 OK\r\n\r\ndirect"));
    setenv("HTTP_PROXY", proxy.authority().c_str(), 1);
    EXPECT_EQ(open(url).body, "by proxy");
    const std::string request = "GET http://" + closed.authority() + "/a?b%20c" + product + "Accept: */*\r\n\r\n";
    EXPECT_EQ(proxy.getRequests(), std::vector<std::string>{request});
    EXPECT_EQ(open(direct.url("/")).body, "direct") << "the proxy was asked for a host that can be reached";
}

TEST_F(LumUriStreamTest, waitsNoLongerThanAllowed) {
    const Opened tooLong{"HTTP status is unknown: the response takes too long", "untouched", "(null)"};
    const struct {
        const char* fault;
        std::vector<std::string> pieces;
        Opened opened;
    } cases[] = {
        {"waits for an answer for ever", {}, tooLong},
        {"every byte of the head gives it more time", std::vector<std::string>(60, "x"), tooLong},
        {"waits for the body for ever", {"HTTP/1.0 200 OK\r\n\r\n", "abc"}, {"HTTP status is 200 OK", "", "abc"}},
    };
    EXPECT_EQ(LumUriStreamBuf::setTimeout(300), 10000);
    for (const auto& c : cases) {
        SCOPED_TRACE(c.fault);
        const LoopbackServer server([&](const std::string&) { return Answer{c.pieces, 50, true}; });
        const auto start = std::chrono::steady_clock::now();
        EXPECT_EQ(open(server.url("/")), c.opened);
        EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(2500));
    }
    LumUriStreamBuf::setTimeout(0);
    EXPECT_EQ(LumUriStreamBuf::getTimeout(), LumUriStreamBuf::defaultTimeoutMilliseconds);
}

TEST_F(LumUriStreamTest, opensAgain) {
    const LoopbackServer server([](const std::string& request) {
        return Answer{{request.starts_with("GET /no") ? "HTTP/1.0 404 No\r\n\r\n"
                                                      : "HTTP/1.0 200 OK\r\nContent-Type: a/b\r\n\r\nbody"}};
    });
    LumUriStreamBuf buffer(text(server.url("/")));
    EXPECT_EQ(buffer.sgetc(), 'b');
    EXPECT_FALSE(buffer.open(text(server.url("/no"))));
    EXPECT_FALSE(buffer.is_open());
    EXPECT_EQ(buffer.sgetc(), EOF) << "bytes of the resource before are still there";
    EXPECT_EQ(utf8(buffer.getContentType()), "");
    EXPECT_EQ(buffer.getStatus(), 404);
    EXPECT_TRUE(buffer.open(text(server.url("/"))));
    EXPECT_EQ(buffer.sbumpc(), 'b');
}

TEST_F(LumUriStreamTest, opensFromSeveralThreads) {
    const ClosedPort closed;
    const LoopbackServer server([](const std::string& request) {
        return Answer{{"HTTP/1.0 200 OK\r\n\r\n" + request.substr(request.find('/'), 100)}};
    });
    setenv("HTTP_PROXY", server.authority().c_str(), 1);
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([&, t] {
            for (int i = 0; i < 20; ++i) {
                const std::string path = "/" + std::to_string(t) + "/" + std::to_string(i);
                EXPECT_EQ(open(server.url(path)).body.substr(0, path.size() + 1), path + " ");
                const std::string remote = "//" + closed.authority() + path;
                EXPECT_EQ(open("http:" + remote).body.substr(0, remote.size()), remote);
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(server.getRequests().size(), 160u);
}

}  // namespace
