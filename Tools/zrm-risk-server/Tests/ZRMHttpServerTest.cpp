#include <atomic>
#include <filesystem>
#include <thread>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <openssl/ssl.h>

#include "Tools/zrm-risk-server/Tests/ZRMRawClient.h"
#include "Tools/zrm-risk-server/ZRMHttpServer.h"
#include "Tools/zrm-risk-server/ZRMPki.h"

namespace {

using Manner = ZRMServerReply::Manner;
using testing::HasSubstr;
using testing::StartsWith;

// Answers with what it was asked; the target's first word picks the manner.
class EchoingHandler : public ZRMRequestHandler {
  public:
    ZRMServerReply handle(const ZRMServerRequest& request) override {
        ZRMServerReply reply;
        reply.answer.body =
            request.method + " " + request.target + " " + std::to_string(request.body.size());
        for (const auto& [name, value] : request.headers) {
            reply.answer.body += "|" + name + "=" + value;
        }
        if (request.target == "/close") {
            reply.manner = Manner::Close;
        } else if (request.target == "/reset") {
            reply.manner = Manner::Reset;
        } else if (request.target == "/garbage") {
            reply.manner = Manner::Garbage;
        } else if (request.target == "/slow") {
            reply.delay = std::chrono::milliseconds(50);
        } else if (request.target == "/nothing") {
            reply.answer.status = 204;
        }
        arrived_.test_and_set();
        arrived_.notify_all();
        return reply;
    }

    void waitForFirstRequest() const { arrived_.wait(false); }

  private:
    std::atomic_flag arrived_;
};

class RunningServer {
  public:
    explicit RunningServer(ZRMHttpServerOptions options = {})
        : handler_(std::make_shared<EchoingHandler>()),
          server_(options, handler_),
          thread_([this] { server_.run(); }) {}
    ~RunningServer() { server_.stop(); }

    EchoingHandler& handler() { return *handler_; }
    ZRMHttpServer& server() { return server_; }
    [[nodiscard]] std::uint16_t port() const { return server_.port(); }
    void waitForEnd() { thread_.join(); }

  private:
    std::shared_ptr<EchoingHandler> handler_;
    ZRMHttpServer server_;
    std::jthread thread_;
};

std::string get(const std::string& target) {
    return "GET " + target + " HTTP/1.1\r\nHost: a\r\n\r\n";
}

TEST(ZRMHttpServer, AnswersOneRequestAfterAnotherOnOneConnection) {
    RunningServer running;
    ZRMRawClient client(running.port());
    for (int i = 0; i < 3; ++i) {
        client.send("POST /a?b HTTP/1.1\r\nhost: x\r\nx-ODD: y\r\nContent-Length: 2\r\n\r\nhi");
        const auto answer = client.readAnswer();
        EXPECT_THAT(answer, StartsWith("HTTP/1.1 200 OK\r\n"));
        EXPECT_THAT(answer, HasSubstr("POST /a?b 2|host=x|x-ODD=y|Content-Length=2"));
    }
}

TEST(ZRMHttpServer, DatesItsAnswers) {
    RunningServer running;
    ZRMRawClient client(running.port());
    client.send(get("/"));
    EXPECT_THAT(client.readAnswer(),
                testing::ContainsRegex("\r\nDate: [A-Z][a-z][a-z], [0-9][0-9] [A-Z][a-z][a-z] "
                                       "20[0-9][0-9] [0-9][0-9]:[0-9][0-9]:[0-9][0-9] GMT\r\n"));
}

TEST(ZRMHttpServer, AnswersRequestsSentAtOnceInTheirOrder) {
    RunningServer running;
    ZRMRawClient client(running.port());
    client.send(get("/1") + get("/2"));
    EXPECT_THAT(client.readAnswer(), HasSubstr("GET /1 0"));
    EXPECT_THAT(client.readAnswer(), HasSubstr("GET /2 0"));
}

TEST(ZRMHttpServer, TakesChunkedBodies) {
    RunningServer running;
    ZRMRawClient client(running.port());
    client.send("POST /a HTTP/1.1\r\nTransfer-Encoding: chunked\r\n\r\n3\r\nabc\r\n0\r\n\r\n");
    EXPECT_THAT(client.readAnswer(), HasSubstr("POST /a 3"));
}

TEST(ZRMHttpServer, InvitesABodyThatIsHeldBack) {
    RunningServer running;
    ZRMRawClient client(running.port());
    client.send("POST /a HTTP/1.1\r\nExpect: 100-continue\r\nContent-Length: 2\r\n\r\n");
    EXPECT_EQ(client.readAnswer(), "HTTP/1.1 100 Continue\r\n\r\n");
    client.send("hi");
    EXPECT_THAT(client.readAnswer(), HasSubstr("POST /a 2"));
}

TEST(ZRMHttpServer, ClosesWhenTheClientWantsIt) {
    RunningServer running;
    ZRMRawClient client(running.port());
    client.send("GET / HTTP/1.1\r\nConnection: close\r\n\r\n");
    EXPECT_THAT(client.readToEnd(), HasSubstr("Connection: close"));
    EXPECT_FALSE(client.wasReset());
}

TEST(ZRMHttpServer, AnswersWithoutABodyWhereTheStatusAllowsNone) {
    RunningServer running;
    ZRMRawClient client(running.port());
    client.send(get("/nothing"));
    const auto answer = client.readAnswer();
    EXPECT_THAT(answer, StartsWith("HTTP/1.1 204"));
    EXPECT_THAT(answer, testing::Not(HasSubstr("Content-Length")));
}

TEST(ZRMHttpServer, RefusesWhatIsNoHttp) {
    RunningServer running;
    ZRMRawClient client(running.port());
    client.send("nonsense\r\n\r\n");
    EXPECT_THAT(client.readToEnd(), StartsWith("HTTP/1.1 400"));
}

TEST(ZRMHttpServer, RefusesAHeaderOverItsBound) {
    RunningServer running;
    ZRMRawClient client(running.port());
    client.send("GET / HTTP/1.1\r\nA: " + std::string(20000, 'a') + "\r\n\r\n");
    EXPECT_THAT(client.readToEnd(), StartsWith("HTTP/1.1 431"));
}

TEST(ZRMHttpServer, RefusesABodyOverItsBoundWhetherAnnouncedOrNot) {
    ZRMHttpServerOptions options;
    options.largestBodyBytes = 4;
    RunningServer running(options);
    ZRMRawClient announced(running.port());
    announced.send("POST / HTTP/1.1\r\nContent-Length: 5\r\n\r\n12345");
    EXPECT_THAT(announced.readToEnd(), StartsWith("HTTP/1.1 413"));
    ZRMRawClient chunked(running.port());
    chunked.send("POST / HTTP/1.1\r\nTransfer-Encoding: chunked\r\n\r\n5\r\n12345\r\n0\r\n\r\n");
    EXPECT_THAT(chunked.readToEnd(), StartsWith("HTTP/1.1 413"));
    ZRMRawClient fitting(running.port());
    fitting.send("POST / HTTP/1.1\r\nContent-Length: 4\r\n\r\n1234");
    EXPECT_THAT(fitting.readAnswer(), StartsWith("HTTP/1.1 200"));
}

TEST(ZRMHttpServer, ClosesWithoutAnAnswer) {
    RunningServer running;
    ZRMRawClient client(running.port());
    client.send(get("/close"));
    EXPECT_EQ(client.readToEnd(), "");
    EXPECT_FALSE(client.wasReset());
}

TEST(ZRMHttpServer, ResetsTheConnection) {
    RunningServer running;
    ZRMRawClient client(running.port());
    client.send(get("/reset"));
    EXPECT_EQ(client.readToEnd(), "");
    EXPECT_TRUE(client.wasReset());
}

TEST(ZRMHttpServer, AnswersWithGarbage) {
    RunningServer running;
    ZRMRawClient client(running.port());
    client.send(get("/garbage"));
    const auto answer = client.readToEnd();
    EXPECT_FALSE(answer.empty());
    EXPECT_THAT(answer, testing::Not(StartsWith("HTTP")));
}

TEST(ZRMHttpServer, HoldsADelayedAnswerBack) {
    RunningServer running;
    ZRMRawClient client(running.port());
    const auto before = std::chrono::steady_clock::now();
    client.send(get("/slow"));
    EXPECT_THAT(client.readAnswer(), HasSubstr("GET /slow"));
    EXPECT_GE(std::chrono::steady_clock::now() - before, std::chrono::milliseconds(50));
}

TEST(ZRMHttpServer, StopEndsRunAndClosesIdleConnections) {
    RunningServer running;
    ZRMRawClient idle(running.port());
    idle.send(get("/"));
    idle.readAnswer();
    running.server().stop();
    running.waitForEnd();
    EXPECT_EQ(idle.readToEnd(), "");
    EXPECT_FALSE(idle.wasReset());
    EXPECT_FALSE(ZRMRawClient(running.port()).isConnected());
}

TEST(ZRMHttpServer, StopLetsARequestUnderWayBeAnswered) {
    RunningServer running;
    ZRMRawClient client(running.port());
    client.send(get("/slow"));
    running.handler().waitForFirstRequest();
    running.server().stop();
    EXPECT_THAT(client.readToEnd(), HasSubstr("GET /slow"));
    running.waitForEnd();
}

TEST(ZRMHttpServer, RefusesAPlaceItCannotListenAt) {
    RunningServer running;
    ZRMHttpServerOptions taken;
    taken.port = running.port();
    EXPECT_THROW(ZRMHttpServer(taken, std::make_shared<EchoingHandler>()), std::runtime_error);
    ZRMHttpServerOptions unknown;
    unknown.host = "no.such.host.invalid";
    EXPECT_THROW(ZRMHttpServer(unknown, std::make_shared<EchoingHandler>()), std::runtime_error);
}

class ZRMHttpServerOverTls : public testing::Test {
  protected:
    static void SetUpTestSuite() {
        directory() = testing::TempDir() + "zrm-tls-" + std::to_string(::getpid());
        ZRMPki::openOrMake(directory());
    }
    static void TearDownTestSuite() { std::filesystem::remove_all(directory()); }
    static std::string& directory() {
        static std::string path;
        return path;
    }
    static ZRMHttpServerOptions options() {
        const auto pki = ZRMPki::openOrMake(directory());
        ZRMHttpServerOptions options;
        options.certificateFile = pki.tlsCertificateFile();
        options.keyFile = pki.tlsKeyFile();
        return options;
    }
    static std::string authority() { return directory() + "/tls-ca.pem"; }
};

TEST_F(ZRMHttpServerOverTls, ServesClientsThatTrustItsAuthority) {
    RunningServer running(options());
    ZRMRawClient client(running.port(), authority());
    ASSERT_TRUE(client.isConnected());
    for (int i = 0; i < 3; ++i) {
        client.send(get("/a"));
        EXPECT_THAT(client.readAnswer(), HasSubstr("GET /a 0"));
    }
}

TEST_F(ZRMHttpServerOverTls, IsNotTrustedOnTheSigningRoot) {
    RunningServer running(options());
    EXPECT_FALSE(ZRMRawClient(running.port(), directory() + "/VelorinRootCA.crt").isConnected());
}

TEST_F(ZRMHttpServerOverTls, SpeaksTls12AndNothingOlder) {
    RunningServer running(options());
    EXPECT_TRUE(ZRMRawClient(running.port(), authority(), TLS1_2_VERSION).isConnected());
    EXPECT_FALSE(ZRMRawClient(running.port(), authority(), TLS1_1_VERSION).isConnected());
}

TEST_F(ZRMHttpServerOverTls, CommitsFaultsToo) {
    RunningServer running(options());
    ZRMRawClient closed(running.port(), authority());
    closed.send(get("/close"));
    EXPECT_EQ(closed.readToEnd(), "");
    EXPECT_FALSE(closed.wasReset());
    ZRMRawClient reset(running.port(), authority());
    reset.send(get("/reset"));
    EXPECT_EQ(reset.readToEnd(), "");
    EXPECT_TRUE(reset.wasReset());
}

TEST_F(ZRMHttpServerOverTls, StopEndsRunInSpiteOfIdleConnections) {
    RunningServer running(options());
    ZRMRawClient idle(running.port(), authority());
    idle.send(get("/"));
    idle.readAnswer();
    running.server().stop();
    running.waitForEnd();
    EXPECT_EQ(idle.readToEnd(), "");
}

TEST_F(ZRMHttpServerOverTls, SurvivesAClientThatSpeaksNoTls) {
    RunningServer running(options());
    ZRMRawClient plain(running.port());
    plain.send(get("/"));
    plain.readToEnd();
    EXPECT_TRUE(ZRMRawClient(running.port(), authority()).isConnected());
}

}  // namespace
