#include <cstdlib>
#include <thread>

#include <gtest/gtest.h>
#include <sys/socket.h>
#include <zlib.h>

#include "ZRMPlatform/Linux_Tests/ZRMLinuxUrlSessionFixture.h"

namespace {

using ZRMLinuxUrlSessionTest = ZRMLinuxUrlSessionFixture;
using Headers = std::vector<std::string>;

ZRMTestHttpServer::Handler answering(std::string answer) {
    return [answer = std::move(answer)](const ZRMTestHttpRequest&, ZRMTestConnection& connection) {
        return connection.write(answer);
    };
}

// Says nothing and waits until the client has gone.
bool neverAnswer(const ZRMTestHttpRequest&, ZRMTestConnection& connection) {
    connection.waitForClose();
    return false;
}

std::string deflated(const std::string& text, int windowBits) {
    z_stream stream{};
    deflateInit2(&stream, 9, Z_DEFLATED, windowBits, 8, Z_DEFAULT_STRATEGY);
    std::string out(deflateBound(&stream, text.size()) + 64, '\0');
    stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(text.data()));
    stream.avail_in = static_cast<uInt>(text.size());
    stream.next_out = reinterpret_cast<Bytef*>(out.data());
    stream.avail_out = static_cast<uInt>(out.size());
    deflate(&stream, Z_FINISH);
    out.resize(stream.total_out);
    deflateEnd(&stream);
    return out;
}

constexpr int kGzip = 15 + 16;
constexpr int kZlib = 15;

// A port on which nobody listens.
int closedPort() {
    return ZRMTestHttpServer(&neverAnswer).port();
}

}  // namespace

TEST_F(ZRMLinuxUrlSessionTest, AnAnswerBringsStatusHeadersAndBody) {
    const ZRMTestHttpServer server(answering(zrm_testHttpAnswer(
        200, "hello", "Date: now\r\nX-Twice: a\r\nX-Empty:\r\nx-twice:  b \r\n")));
    const auto exchange = load(*factory(), get(server.url("/some/path?q=1")));
    ASSERT_EQ(codeOf(exchange), 0);
    EXPECT_EQ(zrm_textFromData(exchange.data), "hello");
    ASSERT_TRUE(exchange.response);
    EXPECT_EQ(exchange.response->statusCode, 200);
    const auto& headers = exchange.response->headers;
    EXPECT_EQ(*headers.find("date"), "now");
    EXPECT_EQ(*headers.find("X-Twice"), "a, b");
    EXPECT_EQ(*headers.find("X-Empty"), "");
    EXPECT_EQ(headers.find("X-Other"), nullptr);
    EXPECT_EQ(server.requests().front().path(), "/some/path?q=1");
}

TEST_F(ZRMLinuxUrlSessionTest, AnErrorStatusIsAnAnswer) {
    const ZRMTestHttpServer server(answering(zrm_testHttpAnswer(503, "busy")));
    const auto exchange = load(*factory(), get(server.url("/")));
    EXPECT_EQ(codeOf(exchange), 0);
    EXPECT_EQ(exchange.response->statusCode, 503);
    EXPECT_EQ(zrm_textFromData(exchange.data), "busy");
}

TEST_F(ZRMLinuxUrlSessionTest, AGetSendsTheHostAndNothingElse) {
    const ZRMTestHttpServer server(answering(zrm_testHttpAnswer(200, "")));
    load(*factory(), get(server.url("/")));
    EXPECT_EQ(server.requests().front().headerLines(),
              (Headers{"Host: 127.0.0.1:" + std::to_string(server.port())}));
}

TEST_F(ZRMLinuxUrlSessionTest, HeadersGoOutAsTheyWereGivenAndInTheirOrder) {
    const ZRMTestHttpServer server(answering(zrm_testHttpAnswer(200, "")));
    auto request = post(server.url("/stat"), "12345");
    request.headers.set("mObile-UUID", "one");
    request.headers.set("Content-Type", "application/jose+json");
    request.headers.set("Content-Encoding", "gzip");
    request.headers.set("X-Empty", "");
    request.headers.set("Accept", "text/plain");
    load(*factory(), request);
    EXPECT_EQ(server.requests().front().headerLines(),
              (Headers{"Host: 127.0.0.1:" + std::to_string(server.port()), "mObile-UUID: one",
                       "Content-Type: application/jose+json", "Content-Encoding: gzip",
                       "X-Empty:", "Accept: text/plain", "Content-Length: 5"}));
    EXPECT_EQ(server.requests().front().body, "12345");
}

TEST_F(ZRMLinuxUrlSessionTest, AContentLengthOfTheCallersIsNotDoubled) {
    const ZRMTestHttpServer server(answering(zrm_testHttpAnswer(200, "")));
    auto request = post(server.url("/"), "12345");
    request.headers.set("Content-Length", "5");
    request.headers.set("X-Last", "z");
    load(*factory(), request);
    EXPECT_EQ(server.requests().front().headerLines(),
              (Headers{"Host: 127.0.0.1:" + std::to_string(server.port()), "Content-Length: 5",
                       "X-Last: z"}));
}

TEST_F(ZRMLinuxUrlSessionTest, AWrongContentLengthOfTheCallersGivesWayToTheTrueOne) {
    const ZRMTestHttpServer server(answering(zrm_testHttpAnswer(200, "")));
    auto request = post(server.url("/"), "12345");
    request.headers.set("content-length", "50");
    load(*factory(), request);
    EXPECT_EQ(server.requests().front().headerLines(),
              (Headers{"Host: 127.0.0.1:" + std::to_string(server.port()), "Content-Length: 5"}));
}

TEST_F(ZRMLinuxUrlSessionTest, ABigBodyArrivesWholeWithoutAskingFirst) {
    const ZRMTestHttpServer server(answering(zrm_testHttpAnswer(200, "")));
    std::string body(3'000'000, 'b');
    body[1'234'567] = '\0';
    EXPECT_EQ(codeOf(load(*factory(), post(server.url("/"), body))), 0);
    const auto request = server.requests().front();
    EXPECT_TRUE(request.body == body);
    EXPECT_EQ(request.head.find("Expect"), std::string::npos);
}

TEST_F(ZRMLinuxUrlSessionTest, APostWithoutABodyAndOtherMethodsAreSentAsTheyAre) {
    const ZRMTestHttpServer server(
        [](const ZRMTestHttpRequest& request, ZRMTestConnection& connection) {
            return connection.write(request.head.starts_with("HEAD")
                                        ? "HTTP/1.1 200 OK\r\nContent-Length: 5\r\n\r\n"
                                        : zrm_testHttpAnswer(200, "x"));
        });
    const auto sessions = factory();
    auto request = get(server.url("/"));
    for (const char* method : {"POST", "HEAD", "DELETE"}) {
        request.method = method;
        EXPECT_EQ(codeOf(load(*sessions, request)), 0) << method;
    }
    auto put = post(server.url("/"), "body");
    put.method = "PUT";
    EXPECT_EQ(codeOf(load(*sessions, put)), 0);
    const auto requests = server.requests();
    ASSERT_EQ(requests.size(), 4U);
    EXPECT_TRUE(requests[0].head.starts_with("POST / HTTP/1.1\r\n"));
    EXPECT_NE(requests[0].head.find("\r\nContent-Length: 0\r\n"), std::string::npos);
    EXPECT_TRUE(requests[1].head.starts_with("HEAD / HTTP/1.1\r\n"));
    EXPECT_TRUE(requests[2].head.starts_with("DELETE / HTTP/1.1\r\n"));
    EXPECT_TRUE(requests[3].head.starts_with("PUT / HTTP/1.1\r\n"));
    EXPECT_EQ(requests[3].body, "body");
}

TEST_F(ZRMLinuxUrlSessionTest, EncodedBodiesAreDecodedWhenTheCallerAcceptsThem) {
    const std::string text(5000, 't');
    for (const auto& [name, bits] : {std::pair{"gzip", kGzip}, std::pair{"deflate", kZlib}}) {
        const auto encoding = std::string("Content-Encoding: ") + name + "\r\n";
        const ZRMTestHttpServer server(
            answering(zrm_testHttpAnswer(200, deflated(text, bits), encoding)));
        auto request = get(server.url("/"));
        request.headers.set("Accept-Encoding", name);
        EXPECT_EQ(zrm_textFromData(load(*factory(), request).data), text) << name;
        EXPECT_EQ(server.requests().front().headerLines().back(),
                  std::string("Accept-Encoding: ") + name);
        // Without the header the bytes come as they are.
        EXPECT_EQ(zrm_textFromData(load(*factory(), get(server.url("/"))).data),
                  deflated(text, bits));
    }
}

TEST_F(ZRMLinuxUrlSessionTest, ABodyThatDoesNotDecodeIsABadResponse) {
    const ZRMTestHttpServer server(
        answering(zrm_testHttpAnswer(200, "no gzip at all", "Content-Encoding: gzip\r\n")));
    auto request = get(server.url("/"));
    request.headers.set("Accept-Encoding", "gzip");
    EXPECT_EQ(codeOf(load(*factory(), request)), ZRMUrlErrorBadServerResponse);
}

TEST_F(ZRMLinuxUrlSessionTest, ABodyOfSixteenMebibytesPassesAndOneByteMoreDoesNot) {
    constexpr std::size_t kMaximum = 16U * 1024 * 1024;
    const ZRMTestHttpServer server(
        [](const ZRMTestHttpRequest& request, ZRMTestConnection& connection) {
            return connection.write(zrm_testHttpAnswer(
                200, std::string(kMaximum + (request.path() == "/more" ? 1 : 0), 'x')));
        });
    const auto sessions = factory();
    EXPECT_EQ(load(*sessions, get(server.url("/just"))).data.size(), kMaximum);
    const auto exchange = load(*sessions, get(server.url("/more")));
    EXPECT_EQ(codeOf(exchange), ZRMUrlErrorDataLengthExceedsMaximum);
    EXPECT_LE(exchange.data.size(), kMaximum);
    EXPECT_EQ(exchange.response->statusCode, 200);
}

TEST_F(ZRMLinuxUrlSessionTest, ABodyThatGrowsInDecodingIsBoundedAsWell) {
    const auto bomb = deflated(std::string(64U * 1024 * 1024, '\0'), kGzip);
    const ZRMTestHttpServer server(
        answering(zrm_testHttpAnswer(200, bomb, "Content-Encoding: gzip\r\n")));
    auto request = get(server.url("/"));
    request.headers.set("Accept-Encoding", "gzip");
    EXPECT_EQ(codeOf(load(*factory(), request)), ZRMUrlErrorDataLengthExceedsMaximum);
}

TEST_F(ZRMLinuxUrlSessionTest, AHeadWithoutEndIsABadResponse) {
    const ZRMTestHttpServer server([](const ZRMTestHttpRequest&, ZRMTestConnection& connection) {
        connection.write("HTTP/1.1 200 OK\r\n");
        while (connection.write("X-More: " + std::string(1000, 'm') + "\r\n")) {
        }
        return false;
    });
    EXPECT_EQ(codeOf(load(*factory(), get(server.url("/")))), ZRMUrlErrorBadServerResponse);
}

TEST_F(ZRMLinuxUrlSessionTest, AnAnswerThatIsNoHttpIsABadResponse) {
    const ZRMTestHttpServer server([](const ZRMTestHttpRequest&, ZRMTestConnection& connection) {
        connection.write("garbage garbage garbage\r\n\r\n");
        return false;
    });
    EXPECT_EQ(codeOf(load(*factory(), get(server.url("/")))), ZRMUrlErrorBadServerResponse);
}

TEST_F(ZRMLinuxUrlSessionTest, ARefusedConnectionCannotConnect) {
    const auto url = "http://127.0.0.1:" + std::to_string(closedPort()) + "/";
    const auto exchange = load(*factory(), get(url));
    EXPECT_EQ(codeOf(exchange), ZRMUrlErrorCannotConnectToHost);
    EXPECT_FALSE(exchange.response);
    EXPECT_TRUE(exchange.data.empty());
}

TEST_F(ZRMLinuxUrlSessionTest, AConnectionClosedWithoutAnAnswerIsLost) {
    const ZRMTestHttpServer server(
        [](const ZRMTestHttpRequest&, ZRMTestConnection&) { return false; });
    EXPECT_EQ(codeOf(load(*factory(), get(server.url("/")))), ZRMUrlErrorNetworkConnectionLost);
}

TEST_F(ZRMLinuxUrlSessionTest, AConnectionThatIsResetIsLost) {
    const ZRMTestHttpServer server([](const ZRMTestHttpRequest&, ZRMTestConnection& connection) {
        connection.reset();
        return false;
    });
    EXPECT_EQ(codeOf(load(*factory(), post(server.url("/"), "x"))),
              ZRMUrlErrorNetworkConnectionLost);
}

TEST_F(ZRMLinuxUrlSessionTest, AHeadCutShortIsNoAnswerButALostConnection) {
    for (const auto* start :
         {"HTTP/1.1 200 OK\r\n", "HTTP/1.1 200 OK\r\nDate: now\r\nContent-Len",
          "HTTP/1.1 100 Continue\r\n\r\n", "HTTP/1.1 100 Continue\r\n\r\nHTTP/1.1 200 OK\r\n"}) {
        const ZRMTestHttpServer server(
            [start](const ZRMTestHttpRequest&, ZRMTestConnection& connection) {
                connection.write(start);
                return false;
            });
        const auto exchange = load(*factory(), get(server.url("/")));
        EXPECT_EQ(codeOf(exchange), ZRMUrlErrorNetworkConnectionLost) << start;
        EXPECT_FALSE(exchange.response) << start;
    }
}

TEST_F(ZRMLinuxUrlSessionTest, ABodyCutShortIsLostAndLeavesWhatHadArrived) {
    const ZRMTestHttpServer server([](const ZRMTestHttpRequest&, ZRMTestConnection& connection) {
        connection.write("HTTP/1.1 201 Created\r\nContent-Length: 100\r\n\r\nthe start");
        return false;
    });
    const auto exchange = load(*factory(), get(server.url("/")));
    EXPECT_EQ(codeOf(exchange), ZRMUrlErrorNetworkConnectionLost);
    EXPECT_EQ(zrm_textFromData(exchange.data), "the start");
    EXPECT_EQ(exchange.response->statusCode, 201);
}

TEST_F(ZRMLinuxUrlSessionTest, NoProgressForTheRequestTimeoutTimesOut) {
    const ZRMTestHttpServer server(&neverAnswer);
    EXPECT_EQ(codeOf(load(*factory(), get(server.url("/")),
                          {.requestTimeoutSeconds = 0.1, .resourceTimeoutSeconds = 60})),
              ZRMUrlErrorTimedOut);
}

TEST_F(ZRMLinuxUrlSessionTest, ProgressInTimeKeepsTheRequestTimeoutFromStriking) {
    const ZRMTestHttpServer server([](const ZRMTestHttpRequest&, ZRMTestConnection& connection) {
        connection.write("HTTP/1.1 200 OK\r\nContent-Length: 20\r\n\r\n");
        for (int part = 0; part < 20; ++part) {
            if (connection.closesWithin(20)) {
                return false;
            }
            connection.write("x");
        }
        return true;
    });
    const auto exchange = load(*factory(), get(server.url("/")),
                               {.requestTimeoutSeconds = 0.3, .resourceTimeoutSeconds = 60});
    EXPECT_EQ(codeOf(exchange), 0);  // although it took longer than 0.3 s as a whole
    EXPECT_EQ(exchange.data.size(), 20U);
}

TEST_F(ZRMLinuxUrlSessionTest, ProgressDoesNotHelpAgainstTheResourceTimeout) {
    const ZRMTestHttpServer server([](const ZRMTestHttpRequest&, ZRMTestConnection& connection) {
        connection.write("HTTP/1.1 200 OK\r\nContent-Length: 1000000\r\n\r\n");
        while (!connection.closesWithin(10)) {
            connection.write("x");
        }
        return false;
    });
    const auto exchange = load(*factory(), get(server.url("/")),
                               {.requestTimeoutSeconds = 60, .resourceTimeoutSeconds = 0.2});
    EXPECT_EQ(codeOf(exchange), ZRMUrlErrorTimedOut);
    EXPECT_FALSE(exchange.data.empty());
    EXPECT_EQ(exchange.response->statusCode, 200);
}

TEST_F(ZRMLinuxUrlSessionTest, UrlsAndRequestsThatCannotBeSentAreRefused) {
    const auto sessions = factory();
    for (const char* url :
         {"", "http://", "http:// space/", "nothing", "http://[::1/", "http://a:99999/"}) {
        EXPECT_EQ(codeOf(load(*sessions, get(url))), ZRMUrlErrorBadUrl) << url;
    }
    EXPECT_EQ(codeOf(load(*sessions, get(std::string("http://a\0b/", 11)))), ZRMUrlErrorBadUrl);
    for (const char* url : {"ftp://127.0.0.1/", "file:///etc/passwd", "gopher://x/", "myapp://x"}) {
        EXPECT_EQ(codeOf(load(*sessions, get(url))), ZRMUrlErrorUnsupportedUrl) << url;
    }
    auto request = get("http://127.0.0.1/");
    request.headers.set("X-Name", "value\r\nX-Smuggled: yes");
    EXPECT_EQ(codeOf(load(*sessions, request)), ZRMUrlErrorUnknown);
    request = get("http://127.0.0.1/");
    request.headers.set("X Name", "value");
    EXPECT_EQ(codeOf(load(*sessions, request)), ZRMUrlErrorUnknown);
    request = get("http://127.0.0.1/");
    request.method = "GET / HTTP/1.1\r\nX: y";
    EXPECT_EQ(codeOf(load(*sessions, request)), ZRMUrlErrorUnknown);
}

TEST_F(ZRMLinuxUrlSessionTest, RedirectsAreFollowedFiveTimesAtMost) {
    const ZRMTestHttpServer server([](const ZRMTestHttpRequest& request,
                                      ZRMTestConnection& connection) {
        const int left = std::stoi(request.path().substr(1));
        return connection.write(left == 0
                                    ? zrm_testHttpAnswer(200, "there")
                                    : zrm_testHttpAnswer(302, "on the way",
                                                         "X-Way: yes\r\nLocation: /" +
                                                             std::to_string(left - 1) + "\r\n"));
    });
    const auto sessions = factory();
    const auto reached = load(*sessions, get(server.url("/5")));
    EXPECT_EQ(codeOf(reached), 0);
    EXPECT_EQ(zrm_textFromData(reached.data), "there");
    EXPECT_EQ(reached.response->headers.find("X-Way"), nullptr);
    const auto lost = load(*sessions, get(server.url("/6")));
    EXPECT_EQ(codeOf(lost), ZRMUrlErrorHttpTooManyRedirects);
    EXPECT_EQ(lost.response->statusCode, 302);
}

TEST_F(ZRMLinuxUrlSessionTest, ARedirectToAFileOrAnotherSchemeIsRefused) {
    for (const char* target :
         {"file:///etc/passwd", "ftp://127.0.0.1/x", "gopher://127.0.0.1:1/x"}) {
        const ZRMTestHttpServer server(
            answering(zrm_testHttpAnswer(302, "", std::string("Location: ") + target + "\r\n")));
        const auto exchange = load(*factory(), get(server.url("/")));
        EXPECT_EQ(codeOf(exchange), ZRMUrlErrorUnsupportedUrl) << target;
        EXPECT_TRUE(exchange.data.empty());
    }
}

TEST_F(ZRMLinuxUrlSessionTest, APostIsRepeatedWholeWhereTheRedirectSaysSo) {
    const ZRMTestHttpServer server(
        [](const ZRMTestHttpRequest& request, ZRMTestConnection& connection) {
            return connection.write(request.path() == "/old"
                                        ? zrm_testHttpAnswer(307, "", "Location: /new\r\n")
                                        : zrm_testHttpAnswer(200, ""));
        });
    EXPECT_EQ(codeOf(load(*factory(), post(server.url("/old"), "payload"))), 0);
    EXPECT_EQ(server.requests().at(1).path(), "/new");
    EXPECT_EQ(server.requests().at(1).body, "payload");
}

TEST_F(ZRMLinuxUrlSessionTest, AnInterimAnswerIsPassedOver) {
    const ZRMTestHttpServer server(answering("HTTP/1.1 103 Early Hints\r\nX-Early: yes\r\n\r\n" +
                                             zrm_testHttpAnswer(200, "late")));
    const auto exchange = load(*factory(), get(server.url("/")));
    EXPECT_EQ(exchange.response->statusCode, 200);
    EXPECT_EQ(exchange.response->headers.find("X-Early"), nullptr);
    EXPECT_EQ(zrm_textFromData(exchange.data), "late");
}

TEST_F(ZRMLinuxUrlSessionTest, AFoldedLineGoesOnWithTheValueBeforeIt) {
    const ZRMTestHttpServer server(answering(zrm_testHttpAnswer(
        200, "hello", "X-Folded: one\r\n two\r\n\tthree: 3\r\n \r\nX-Late:\r\n value\r\n")));
    const auto exchange = load(*factory(), get(server.url("/")));
    ASSERT_EQ(codeOf(exchange), 0);
    const auto& headers = exchange.response->headers;
    EXPECT_EQ(*headers.find("X-Folded"), "one two three: 3");
    EXPECT_EQ(*headers.find("X-Late"), "value");
    EXPECT_EQ(headers.find("three"), nullptr);
}

TEST_F(ZRMLinuxUrlSessionTest, ARedirectMayBeFolded) {
    const ZRMTestHttpServer server(
        [](const ZRMTestHttpRequest& request, ZRMTestConnection& connection) {
            return connection.write(
                request.path() == "/old"
                    ? zrm_testHttpAnswer(302, "", "X-Way: on\r\n the way\r\nLocation: /new\r\n")
                    : zrm_testHttpAnswer(200, "there", "X-There: yes\r\n and no\r\n"));
        });
    const auto sessions = factory();
    for (int time = 0; time < 2; ++time) {
        const auto exchange = load(*sessions, get(server.url("/old")));
        ASSERT_EQ(codeOf(exchange), 0);
        EXPECT_EQ(*exchange.response->headers.find("X-There"), "yes and no");
    }
}

// libcurl would put the line behind the last header of the exchange before, where its memory was.
TEST_F(ZRMLinuxUrlSessionTest, AFirstHeaderThatIsFoldedIsABadResponseAfterAnyOtherExchange) {
    const ZRMTestHttpServer server(
        [](const ZRMTestHttpRequest& request, ZRMTestConnection& connection) {
            return connection.write(zrm_testHttpAnswer(
                200, "", request.path() == "/folded" ? " folded: first\r\n" : "X-Sound: yes\r\n"));
        });
    const auto sessions = factory();
    for (int time = 0; time < 3; ++time) {
        EXPECT_EQ(codeOf(load(*sessions, get(server.url("/sound")))), 0);
        EXPECT_EQ(codeOf(load(*sessions, get(server.url("/folded")))),
                  ZRMUrlErrorBadServerResponse);
    }
}

TEST_F(ZRMLinuxUrlSessionTest, CancellingAnExchangeUnderWayEndsItOnce) {
    const ZRMTestHttpServer server(&neverAnswer);
    const auto sessions = factory();
    const auto session = sessions->makeSession({});
    const auto exchange = start(*session, get(server.url("/")));
    session->invalidateAndCancel();
    session->invalidateAndCancel();
    EXPECT_EQ(codeOf(exchange->wait()), ZRMUrlErrorCancelled);
    session->invalidateAndCancel();
    load(*sessions, get("nothing"));  // whatever was under way on the network thread is through
    EXPECT_EQ(exchange->arrived.value().size(), 1U);
}

TEST_F(ZRMLinuxUrlSessionTest, CancellingLeavesWhatHadArrived) {
    ZRMAwaited<bool> written;
    const ZRMTestHttpServer server([&](const ZRMTestHttpRequest&, ZRMTestConnection& connection) {
        connection.write("HTTP/1.1 200 OK\r\nContent-Length: 9000000\r\n\r\n" +
                         std::string(8000000, 'x'));
        written.set(true);
        connection.waitForClose();
        return false;
    });
    const auto session = factory()->makeSession({});
    const auto exchange = start(*session, get(server.url("/")));
    ASSERT_TRUE(written.waitUntil([](bool held) { return held; }));
    session->invalidateAndCancel();
    const auto result = exchange->wait();
    EXPECT_EQ(codeOf(result), ZRMUrlErrorCancelled);
    EXPECT_EQ(result.response->statusCode, 200);
    EXPECT_FALSE(result.data.empty());
}

TEST_F(ZRMLinuxUrlSessionTest, DestructionCancels) {
    const ZRMTestHttpServer server(&neverAnswer);
    auto session = factory()->makeSession({});
    const auto exchange = start(*session, get(server.url("/")));
    session.reset();
    EXPECT_EQ(codeOf(exchange->wait()), ZRMUrlErrorCancelled);
}

TEST_F(ZRMLinuxUrlSessionTest, AnInvalidatedSessionCancelsWhatItIsGiven) {
    const auto session = factory()->makeSession({});
    session->invalidateAndCancel();
    const auto exchange = start(*session, get("http://127.0.0.1:1/"));
    EXPECT_EQ(codeOf(exchange->wait()), ZRMUrlErrorCancelled);
}

TEST_F(ZRMLinuxUrlSessionTest, CancellingAfterTheAnswerChangesNothing) {
    const ZRMTestHttpServer server(answering(zrm_testHttpAnswer(200, "done")));
    const auto sessions = factory();
    const auto session = sessions->makeSession({});
    const auto exchange = start(*session, get(server.url("/")));
    EXPECT_EQ(codeOf(exchange->wait()), 0);
    session->invalidateAndCancel();
    load(*sessions, get("nothing"));
    EXPECT_EQ(exchange->arrived.value().size(), 1U);
}

TEST_F(ZRMLinuxUrlSessionTest, TheCompletionRunsOnTheConcurrentQueueAndMayStartAndDropSessions) {
    const ZRMTestHttpServer server(answering(zrm_testHttpAnswer(200, "x")));
    const auto sessions = factory();
    const auto queue = executor_->concurrentQueue(ZRMQualityOfService::Default);
    const auto url = server.url("/");
    ZRMAwaited<int> ended;
    auto first = std::make_shared<std::shared_ptr<ZRMUrlSession>>(sessions->makeSession({}));
    auto second = std::make_shared<std::shared_ptr<ZRMUrlSession>>(sessions->makeSession({}));
    (*first)->start(get(url), [&, first, second](const ZRMUrlExchange&) {
        EXPECT_TRUE(queue->isCurrent());
        first->reset();
        (*second)->start(get(url), [&, second](const ZRMUrlExchange& exchange) {
            second->reset();
            EXPECT_FALSE(exchange.error);
            ended.set(2);
        });
    });
    EXPECT_TRUE(ended.waitUntil([](int held) { return held == 2; }));
}

TEST_F(ZRMLinuxUrlSessionTest, ACompletionThatBlocksHoldsUpNoOtherExchange) {
    const ZRMTestHttpServer server(answering(zrm_testHttpAnswer(200, "x")));
    const auto sessions = factory();
    ZRMAwaited<bool> release;
    ZRMAwaited<bool> released;
    const auto slow = sessions->makeSession({});
    slow->start(get(server.url("/slow")), [&](const ZRMUrlExchange&) {
        released.set(release.waitUntil([](bool held) { return held; }));
    });
    EXPECT_EQ(codeOf(load(*sessions, get(server.url("/quick")))), 0);
    release.set(true);
    EXPECT_TRUE(released.waitUntil([](bool held) { return held; }));
}

TEST_F(ZRMLinuxUrlSessionTest, SessionsShareConnections) {
    const ZRMTestHttpServer server(answering(zrm_testHttpAnswer(200, "x")));
    for (int round = 0; round < 20; ++round) {
        EXPECT_EQ(codeOf(load(*factory(), post(server.url("/"), "body"))), 0);
    }
    EXPECT_EQ(server.connections(), 1);
    EXPECT_EQ(server.requests().size(), 20U);
}

TEST_F(ZRMLinuxUrlSessionTest, AConnectionThatTheServerClosedMeanwhileIsMadeAnew) {
    const ZRMTestHttpServer server([](const ZRMTestHttpRequest&, ZRMTestConnection& connection) {
        connection.write(zrm_testHttpAnswer(200, "x"));  // keeps quiet about closing
        return false;
    });
    for (int round = 0; round < 5; ++round) {
        EXPECT_EQ(codeOf(load(*factory(), post(server.url("/"), "body"))), 0);
    }
}

TEST_F(ZRMLinuxUrlSessionTest, ManyExchangesAtOnceAllEndOnce) {
    const ZRMTestHttpServer server(
        [](const ZRMTestHttpRequest& request, ZRMTestConnection& connection) {
            return connection.write(zrm_testHttpAnswer(200, request.body));
        });
    const auto sessions = factory();
    std::vector<std::shared_ptr<ZRMUrlSession>> kept;
    std::vector<std::shared_ptr<ZRMTestExchange>> exchanges;
    for (int number = 0; number < 100; ++number) {
        kept.push_back(sessions->makeSession({}));
        exchanges.push_back(start(*kept.back(), post(server.url("/"), std::to_string(number))));
    }
    for (int number = 0; number < 100; ++number) {
        const auto result = exchanges[static_cast<std::size_t>(number)]->wait();
        EXPECT_EQ(codeOf(result), 0);
        EXPECT_EQ(zrm_textFromData(result.data), std::to_string(number));
    }
    kept.clear();
    load(*sessions, get("nothing"));
    for (const auto& exchange : exchanges) {
        EXPECT_EQ(exchange->arrived.value().size(), 1U);
    }
}

TEST_F(ZRMLinuxUrlSessionTest, AnOverrideLeadsTheNameToTheAddressAndKeepsTheHostHeader) {
    const ZRMTestHttpServer server(answering(zrm_testHttpAnswer(200, "x")));
    const auto port = std::to_string(server.port());
    const auto sessions = factory({}, {"Risk.example.test:" + port + ":127.0.0.1"});
    EXPECT_EQ(codeOf(load(*sessions, get("http://risk.EXAMPLE.test:" + port + "/"))), 0);
    EXPECT_EQ(zrm_lowerHostName(server.requests().front().headerLines().front()),
              "host: risk.example.test:" + port);
}

TEST_F(ZRMLinuxUrlSessionTest, AnOverrideOfOneFactoryDoesNotLeadAnother) {
    const ZRMTestHttpServer one(answering(zrm_testHttpAnswer(200, "one")));
    const auto port = std::to_string(one.port());
    const auto url = "http://risk.example.test:" + port + "/";
    EXPECT_EQ(codeOf(load(*factory({}, {"risk.example.test:" + port + ":127.0.0.1"}), get(url))),
              0);
    // Nobody listens at the other address.
    EXPECT_EQ(codeOf(load(*factory({}, {"risk.example.test:" + port + ":127.0.0.2"}), get(url))),
              ZRMUrlErrorCannotConnectToHost);
}

namespace {

[[noreturn]] void exitWhileExchangesRun() {
    ZRMTestHttpServer server(&neverAnswer);
    const auto executor = std::make_shared<ZRMLinuxExecutor>();
    ZRMLinuxUrlSessionFactory sessions(executor, {}, {}, std::make_shared<ZRMLinuxKernelRoutes>());
    std::vector<std::shared_ptr<ZRMUrlSession>> kept;
    for (int number = 0; number < 8; ++number) {
        kept.push_back(sessions.makeSession({}));
        ZRMUrlRequest request;
        request.url = server.url("/");
        kept.back()->start(request, [](const ZRMUrlExchange&) {});
    }
    std::exit(0);
}

}  // namespace

TEST(ZRMLinuxUrlSessionDeathTest, ProcessExitDoesNotWaitForExchanges) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(exitWhileExchangesRun(), testing::ExitedWithCode(0), "");
}
