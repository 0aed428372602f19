#include <array>
#include <cstdio>

#include <gtest/gtest.h>
#include <openssl/x509.h>

#include "ZRMPlatform/Linux/ZRMLinuxUrlLoader.h"
#include "ZRMPlatform/Linux_Tests/ZRMLinuxUrlSessionFixture.h"
#include "ZRMPlatform/Linux_Tests/ZRMTestDirectory.h"

namespace {

class ZRMLinuxUrlSessionTlsTest : public ZRMLinuxUrlSessionFixture {
  protected:
    std::unique_ptr<ZRMTestHttpServer> serve(const ZRMTestHttpServer::Tls& tls) {
        return std::make_unique<ZRMTestHttpServer>(
            [](const ZRMTestHttpRequest& request, ZRMTestConnection& connection) {
                return connection.write(
                    request.path() == "/plain"
                        ? zrm_testHttpAnswer(302, "", "Location: http://127.0.0.1:1/\r\n")
                        : zrm_testHttpAnswer(200, "secret"));
            },
            tls);
    }

    std::shared_ptr<ZRMLinuxUrlSessionFactory> trusting(
        const std::vector<std::string>& overrides = {}) {
        return factory(authorityFile_, overrides);
    }

    // One exchange with a server of that identity.
    ZRMUrlExchange loadTrusting(const ZRMLinuxAuthorities& authorities,
                                const ZRMTestIdentity& identity) {
        const auto server = serve({identity});
        const auto job = std::make_shared<ZRMLinuxUrlJob>();
        job->request = get(server->url("/"));
        job->trust = std::make_shared<ZRMLinuxUrlTrust>(
            ZRMLinuxUrlTrust{authorities,
                             {nullptr, &curl_slist_free_all},
                             std::make_shared<ZRMLinuxKernelRoutes>()});
        job->deliveryQueue = executor_->concurrentQueue(ZRMQualityOfService::Default);
        const auto exchange = std::make_shared<ZRMTestExchange>();
        job->completion = [exchange](ZRMUrlExchange result) {
            exchange->arrived.change([&](auto& held) { held.push_back(std::move(result)); });
        };
        ZRMLinuxUrlLoader::shared().start(job);
        return exchange->wait();
    }

    ZRMTestDirectory directory_;
    ZRMTestIdentity authority_ = zrm_makeTestAuthority("test authority");
    std::string authorityFile_ = directory_.writeFile("ca.pem", authority_.certificatePem());
    ZRMTestIdentity identity_ =
        zrm_makeTestServerIdentity(authority_, {"IP:127.0.0.1", "DNS:risk.example.test"});
};

}  // namespace

TEST_F(ZRMLinuxUrlSessionTlsTest, AServerOfTheGivenAuthorityIsTrusted) {
    const auto server = serve({identity_});
    const auto exchange = load(*trusting(), get(server->url("/")));
    EXPECT_EQ(codeOf(exchange), 0);
    EXPECT_EQ(zrm_textFromData(exchange.data), "secret");
}

TEST_F(ZRMLinuxUrlSessionTlsTest, AServerOfAnotherAuthorityIsNot) {
    const auto other = zrm_makeTestAuthority("other authority");
    const auto server = serve({zrm_makeTestServerIdentity(other, {"IP:127.0.0.1"})});
    const auto exchange = load(*trusting(), get(server->url("/")));
    EXPECT_EQ(codeOf(exchange), ZRMUrlErrorServerCertificateUntrusted);
    EXPECT_TRUE(server->requests().empty());
}

TEST_F(ZRMLinuxUrlSessionTlsTest, TheSystemsAuthoritiesDoNotKnowTheTestsOne) {
    const auto server = serve({identity_});
    EXPECT_EQ(codeOf(load(*factory(), get(server->url("/")))),
              ZRMUrlErrorServerCertificateUntrusted);
}

TEST_F(ZRMLinuxUrlSessionTlsTest, ADirectoryOfHashedNamesIsAskedInsteadOfTheFileOfAll) {
    std::array<char, 16> name{};
    std::snprintf(name.data(), name.size(), "%08lx.0",
                  X509_subject_name_hash(authority_.certificate.get()));
    directory_.writeFile(std::string("certs/") + name.data(), authority_.certificatePem());
    directory_.writeFile("certs/README", "");
    const auto authorities =
        zrm_preferredAuthorities({directory_.below("none.pem"), directory_.below("certs")});
    EXPECT_EQ(authorities.file, "");
    EXPECT_EQ(authorities.directory, directory_.below("certs"));
    const auto other = zrm_makeTestAuthority("other authority");
    EXPECT_EQ(codeOf(loadTrusting(authorities, identity_)), 0);
    EXPECT_EQ(
        codeOf(loadTrusting(authorities, zrm_makeTestServerIdentity(other, {"IP:127.0.0.1"}))),
        ZRMUrlErrorServerCertificateUntrusted);
}

TEST_F(ZRMLinuxUrlSessionTlsTest, ADirectoryWithoutHashedNamesLeavesTheFileOfAll) {
    directory_.writeFile("certs/authority.pem", authority_.certificatePem());
    directory_.writeFile("certs/1d3472bg.0", "");
    directory_.writeFile("certs/1d3472b9.r0", "");
    for (const char* directory : {"certs", "missing"}) {
        const auto authorities =
            zrm_preferredAuthorities({authorityFile_, directory_.below(directory)});
        EXPECT_EQ(authorities.file, authorityFile_);
        EXPECT_EQ(authorities.directory, directory_.below(directory));
        EXPECT_EQ(codeOf(loadTrusting(authorities, identity_)), 0);
    }
    EXPECT_EQ(zrm_preferredAuthorities({authorityFile_, {}}).file, authorityFile_);
}

TEST_F(ZRMLinuxUrlSessionTlsTest, TrustOfOneFactoryDoesNotReachAnotherOverASharedConnection) {
    const auto server = serve({identity_});
    EXPECT_EQ(codeOf(load(*trusting(), get(server->url("/")))), 0);
    const auto other =
        directory_.writeFile("other.pem", zrm_makeTestAuthority("other").certificatePem());
    EXPECT_EQ(codeOf(load(*factory(other), get(server->url("/")))),
              ZRMUrlErrorServerCertificateUntrusted);
}

TEST_F(ZRMLinuxUrlSessionTlsTest, ACertificateForAnotherNameIsNotTrusted) {
    const auto server = serve({zrm_makeTestServerIdentity(authority_, {"DNS:elsewhere.test"})});
    EXPECT_EQ(codeOf(load(*trusting(), get(server->url("/")))),
              ZRMUrlErrorServerCertificateUntrusted);
}

TEST_F(ZRMLinuxUrlSessionTlsTest, AnExpiredCertificateIsNotTrusted) {
    const auto server = serve({zrm_makeTestServerIdentity(authority_, {"IP:127.0.0.1"}, -60)});
    EXPECT_EQ(codeOf(load(*trusting(), get(server->url("/")))),
              ZRMUrlErrorServerCertificateUntrusted);
}

TEST_F(ZRMLinuxUrlSessionTlsTest, TheNameThatCountsIsThatOfTheUrlNotOfTheOverride) {
    const auto server = serve({identity_});
    const auto port = std::to_string(server->port());
    const auto sessions = trusting(
        {"risk.example.test:" + port + ":127.0.0.1", "wrong.example.test:" + port + ":127.0.0.1"});
    EXPECT_EQ(codeOf(load(*sessions, get("https://risk.example.test:" + port + "/"))), 0);
    EXPECT_EQ(codeOf(load(*sessions, get("https://wrong.example.test:" + port + "/"))),
              ZRMUrlErrorServerCertificateUntrusted);
}

TEST_F(ZRMLinuxUrlSessionTlsTest, AServerBelowTls12IsRefused) {
    const auto server = serve({identity_, true});
    EXPECT_EQ(codeOf(load(*trusting(), get(server->url("/")))), ZRMUrlErrorSecureConnectionFailed);
}

TEST_F(ZRMLinuxUrlSessionTlsTest, AHandshakeThatTheServerNeverAnswersTimesOut) {
    // A plain server waits for the end of a head that never comes.
    const ZRMTestHttpServer plain(
        [](const ZRMTestHttpRequest&, ZRMTestConnection&) { return false; });
    const auto url = "https://127.0.0.1:" + std::to_string(plain.port()) + "/";
    EXPECT_EQ(codeOf(load(*factory(), get(url), {.requestTimeoutSeconds = 0.2})),
              ZRMUrlErrorTimedOut);
}

TEST_F(ZRMLinuxUrlSessionTlsTest, AnAuthorityFileThatIsNoneIsNoSecureConnection) {
    const auto server = serve({identity_});
    EXPECT_EQ(codeOf(load(*factory(directory_.below("none.pem")), get(server->url("/")))),
              ZRMUrlErrorSecureConnectionFailed);
}

TEST_F(ZRMLinuxUrlSessionTlsTest, AConnectionLostInTheMiddleIsLost) {
    const ZRMTestHttpServer server(
        [](const ZRMTestHttpRequest&, ZRMTestConnection& connection) {
            connection.write("HTTP/1.1 200 OK\r\nContent-Length: 100\r\n\r\nstart");
            connection.reset();
            return false;
        },
        ZRMTestHttpServer::Tls{identity_});
    EXPECT_EQ(codeOf(load(*trusting(), get(server.url("/")))), ZRMUrlErrorNetworkConnectionLost);
}

TEST_F(ZRMLinuxUrlSessionTlsTest, ARedirectOutOfTlsIsRefused) {
    const auto server = serve({identity_});
    EXPECT_EQ(codeOf(load(*trusting(), get(server->url("/plain")))), ZRMUrlErrorUnsupportedUrl);
}

TEST_F(ZRMLinuxUrlSessionTlsTest, SessionsShareTlsConnections) {
    const auto server = serve({identity_});
    for (int round = 0; round < 20; ++round) {
        EXPECT_EQ(codeOf(load(*trusting(), post(server->url("/"), "body"))), 0);
    }
    EXPECT_EQ(server->connections(), 1);
}
