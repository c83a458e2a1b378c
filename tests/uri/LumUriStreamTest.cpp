#include <gtest/gtest.h>
#include <lumcommon/uri/LumUri.h>
#include <lumcommon/uri/open/LumUriStream.h>
#include <support/LoopbackServer.h>
#include <support/Utf8.h>

#include <chrono>
#include <cstdlib>
#include <iterator>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <vector>

namespace {

using namespace LumCommon;
using LumTest::ClosedPort;
using LumTest::LoopbackServer;
using LumTest::utf8;
using Answer = LoopbackServer::Answer;

constexpr std::size_t headLimitBytes = 64 * 1024;

UnicodeString text(const std::string& bytes) { return UnicodeString::fromUTF8(bytes); }

/// Answers every request with the same bytes.
LoopbackServer::Answerer always(std::string bytes) {
    return [bytes = std::move(bytes)](const std::string&) { return Answer{{bytes}}; };
}

struct Opened {
    bool isOpen;
    std::string message, contentType, body;
};

Opened open(const std::string& url) {
    UnicodeString contentType(u"untouched"), message;
    const std::unique_ptr<std::istream> in(LumUri(text(url)).getStream(&contentType, &message));
    return {in != nullptr, utf8(message), utf8(contentType),
            in ? std::string(std::istreambuf_iterator<char>(*in), {}) : ""};
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
        if (proxy_) {
            setenv("HTTP_PROXY", proxy_->c_str(), 1);
        } else {
            unsetenv("HTTP_PROXY");
        }
    }

private:
    std::optional<std::string> proxy_;
};

TEST_F(LumUriStreamTest, readsResponses) {
    struct Case {
        const char *fault, *response;
        bool isOpen;
        const char *message, *contentType, *body;
    };
    static constexpr Case cases[] = {
        {"plain success", "HTTP/1.0 200 OK\r\nContent-Type: text/xml\r\n\r\n<a/>", true, "HTTP status is 200 OK",
         "text/xml", "<a/>"},
        {"name of a header in another case", "http/1.1 200 OK\r\nX: y\r\n CONTENT-type :\t a/b ; c=d \r\n\r\n", true,
         "HTTP status is 200 OK", "a/b ; c=d", ""},
        {"lines that end with CR", "HTTP/1.0 200 OK\rcontent-type:a\r\r\rb", true, "HTTP status is 200 OK", "a", "\rb"},
        {"a body that begins like a line end", "HTTP/1.0 200 OK\r\n\r\n\r\nb", true, "HTTP status is 200 OK", "",
         "\r\nb"},
        {"first one behind them", "HTTP/1.0 300 x\r\nLocation: http://127.0.0.1:1/\r\n\r\n", false,
         "HTTP status is 300 x", "untouched", ""},
        {"missing resource", "HTTP/1.0 404 Not Found\r\nContent-Type: a\r\n\r\nbody", false,
         "HTTP status is 404 Not Found", "untouched", ""},
        {"success without an empty line", "HTTP/1.0 200 OK\r\nContent-Type: a\r\n", false,
         "HTTP status is unknown: the response ends early", "untouched", ""},
        {"redirection whose location may be cut", "HTTP/1.0 302 x\r\nLocation: http://127.0.0.1:1/a", false,
         "HTTP status is unknown: the response ends early", "untouched", ""},
        {"redirection without a location", "HTTP/1.0 302 Found\r\n\r\n", false, "HTTP status is 302 Found", "untouched",
         ""},
        {"redirection to another scheme", "HTTP/1.0 302 Found\r\nLocation: https://127.0.0.1/\r\n\r\n", false,
         "No http scheme", "untouched", ""},
        {"status that overflows", "HTTP/1.0 99999999999999999999200 x\r\n\r\n", false,
         "HTTP status is 99999999999999999999200 x", "untouched", ""},
        {"another protocol", "220 ftp ready\r\n\r\n", false, "HTTP status is unknown: the response is not HTTP",
         "untouched", ""},
        {"empty response", "", false, "HTTP status is unknown: the response ends early", "untouched", ""},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.fault);
        const LoopbackServer server(always(c.response));
        const Opened opened = open(server.url("/a"));
        EXPECT_EQ(opened.isOpen, c.isOpen);
        EXPECT_EQ(opened.message, c.message);
        EXPECT_EQ(opened.contentType, c.contentType);
        EXPECT_EQ(opened.body, c.body);
    }
}

TEST_F(LumUriStreamTest, sendsTheRequest) {
    struct Case {
        const char *fault, *url, *path;
    };
    static constexpr Case cases[] = {
        {"no path", "", "/"},
        {"query left out", "/a/b?c=d", "/a/b?c=d"},
        {"line ends make headers", "/a\r\nX: y", "/a%0D%0AX:%20y"},
        {"characters beyond ASCII lost", "/\xC3\xA9", "/\xC3\xA9"},
    };
    const LoopbackServer server(always("HTTP/1.0 204 No\r\n\r\n"));
    for (const Case& c : cases) {
        SCOPED_TRACE(c.fault);
        LumUriStream in(text("hTTp://" + server.authority() + c.url));
        EXPECT_TRUE(in.is_open());
        EXPECT_EQ(in.rdbuf()->getStatus(), 204);
        EXPECT_EQ(server.getRequests().back(), "GET " + std::string(c.path) +
                                                   " HTTP/1.0\r\nUser-Agent: Lumset V3.9 R1 for Linux "
                                                   "(3,9,2006,0901)\r\nHost: 127.0.0.1\r\nAccept: */*\r\n\r\n");
    }
    const int wrapped = 65536 + server.getPort();
    EXPECT_TRUE(open("http://127.0.0.1:" + std::to_string(wrapped) + "/").isOpen) << "a port has 16 bits";
    const std::size_t count = server.getRequests().size();
    for (const std::string& host : {std::string("127.0.0.1\r\nX"), std::string("127.0.0.1 X"), std::string()}) {
        EXPECT_FALSE(LumUriStream(text("http://" + host + ":" + std::to_string(server.getPort()) + "/")).is_open());
    }
    EXPECT_EQ(server.getRequests().size(), count) << "a host that is no name was asked";
}

TEST_F(LumUriStreamTest, sendsLongRequestsInPieces) {
    const std::string path = "/" + std::string(8000000, 'x');
    const LoopbackServer server(always("HTTP/1.0 200 OK\r\n\r\nbody"));
    EXPECT_EQ(open(server.url(path)).body, "body");
    EXPECT_TRUE(server.getRequests().front().starts_with("GET " + path + " HTTP/1.0\r\n"));
}

TEST_F(LumUriStreamTest, refusesOtherSchemes) {
    for (const char* const url : {"https://127.0.0.1/", "http:/127.0.0.1/", "data:,a"}) {
        const Opened opened = open(url);
        EXPECT_FALSE(opened.isOpen) << url;
        EXPECT_EQ(opened.message, "No http scheme") << url;
    }
    const LumUriStreamBuf none(static_cast<const char*>(nullptr));
    EXPECT_FALSE(none.is_open());
    EXPECT_EQ(utf8(none.getErrorMessage()), "No http scheme");
}

TEST_F(LumUriStreamTest, followsRedirections) {
    struct Case {
        const char* fault;
        int status;
        bool isFollowed;
    };
    static constexpr Case cases[] = {
        {"not followed", 301, true},           {"not followed", 302, true}, {"not followed", 303, true},
        {"304 is no redirection", 304, false}, {"not followed", 305, true}, {"307 is not followed", 307, false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << c.fault << ": " << c.status);
        const LoopbackServer target(always("HTTP/1.0 200 OK\r\nContent-Type: t/t\r\n\r\nfound"));
        const LoopbackServer server(always("HTTP/1.0 " + std::to_string(c.status) +
                                           " Moved\r\nContent-Type: w/w\r\nlOCATION:  " + target.url("/new?x") +
                                           " \r\n\r\nbody"));
        const Opened opened = open(server.url("/old"));
        EXPECT_EQ(opened.isOpen, c.isFollowed);
        EXPECT_EQ(opened.contentType, c.isFollowed ? "t/t" : "untouched");
        EXPECT_EQ(opened.body, c.isFollowed ? "found" : "");
        EXPECT_EQ(target.getRequests().size(), c.isFollowed ? 1u : 0u);
        if (c.isFollowed) {
            EXPECT_EQ(target.getRequests().front().substr(0, 14), "GET /new?x HTT");
        }
    }
    std::string self;
    const LoopbackServer loop(
        [&self](const std::string&) { return Answer{{"HTTP/1.0 302 Again\r\nLocation: " + self + "\r\n\r\n"}}; });
    self = loop.url("/");
    EXPECT_EQ(open(self).message, "HTTP status is 302 Again");
    EXPECT_EQ(loop.getRequests().size(), 100u);
}

TEST_F(LumUriStreamTest, readsHeadsThatArriveInPieces) {
    const std::string head = "HTTP/1.0 200 OK\r\nContent-Type: a/b\r\n\r\n";
    const std::string response = head + "\nbody";
    std::size_t cut = 0;
    const LoopbackServer server([&](const std::string&) {
        return Answer{{response.substr(0, cut), response.substr(cut)}, 5};
    });
    for (cut = 1; cut < response.size(); ++cut) {
        SCOPED_TRACE(testing::Message() << "cut at " << cut);
        const Opened opened = open(server.url("/"));
        EXPECT_EQ(opened.contentType, "a/b");
        EXPECT_EQ(opened.body, "\nbody");
    }
}

TEST_F(LumUriStreamTest, limitsTheHead) {
    const std::string begin = "HTTP/1.0 200 OK\r\nX: ";
    const std::string end = "\r\nContent-Type: a/b\r\n\r\n";
    struct Case {
        const char* fault;
        std::size_t headBytes;
        bool isOpen;
    };
    static constexpr Case cases[] = {
        {"the empty line is split by the buffer", 4095, true},
        {"the head fills the buffer", 4096, true},
        {"the limit fires one byte early", headLimitBytes, true},
        {"the limit never fires", headLimitBytes + 2, false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << c.fault << ": " << c.headBytes);
        const std::string filler(c.headBytes - begin.size() - end.size(), 'x');
        const LoopbackServer server(always(begin + filler + end + "body"));
        const Opened opened = open(server.url("/"));
        EXPECT_EQ(opened.isOpen, c.isOpen);
        EXPECT_EQ(opened.body, c.isOpen ? "body" : "");
        EXPECT_EQ(opened.contentType, c.isOpen ? "a/b" : "untouched");
        if (!c.isOpen) {
            EXPECT_EQ(opened.message, "HTTP status is unknown: the head of the response is too long");
        }
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
    ASSERT_EQ(proxy.getRequests().size(), 1u);
    EXPECT_EQ(proxy.getRequests().front(), "GET http://" + closed.authority() +
                                               "/a?b%20c HTTP/1.0\r\nUser-Agent: Lumset V3.9 R1 for Linux "
                                               "(3,9,2006,0901)\r\nAccept: */*\r\n\r\n");
    EXPECT_EQ(open(direct.url("/")).body, "direct") << "the proxy was asked for a host that can be reached";
}

TEST_F(LumUriStreamTest, waitsNoLongerThanAllowed) {
    struct Case {
        const char* fault;
        std::vector<std::string> pieces;
        bool isOpen;
        const char *message, *body;
    };
    const Case cases[] = {
        {"waits for an answer for ever", {}, false, "HTTP status is unknown: the response takes too long", ""},
        {"every byte of the head gives it more time", std::vector<std::string>(60, "x"), false,
         "HTTP status is unknown: the response takes too long", ""},
        {"waits for the body for ever", {"HTTP/1.0 200 OK\r\n\r\n", "abc"}, true, "HTTP status is 200 OK", "abc"},
    };
    EXPECT_EQ(LumUriStreamBuf::setTimeout(300), 10000);
    for (const Case& c : cases) {
        SCOPED_TRACE(c.fault);
        const LoopbackServer server([&](const std::string&) { return Answer{c.pieces, 50, true}; });
        const auto start = std::chrono::steady_clock::now();
        const Opened opened = open(server.url("/"));
        EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(2500));
        EXPECT_EQ(opened.isOpen, c.isOpen);
        EXPECT_EQ(opened.message, c.message);
        EXPECT_EQ(opened.body, c.body);
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
