// Runs exchanges through real sessions against a server of the test's.
#pragma once

#include <memory>
#include <string>

#include <gtest/gtest.h>

#include "ZRMPlatform/Linux/ZRMLinuxExecutor.h"
#include "ZRMPlatform/Linux/ZRMLinuxUrlSession.h"
#include "ZRMPlatform/Linux_Tests/ZRMTestHttpServer.h"
#include "ZRMPlatform/Linux_Tests/ZRMTestWaiting.h"

// Where an exchange ends up; outlives the test's stack, as a late completion may come after it.
struct ZRMTestExchange {
    ZRMAwaited<std::vector<ZRMUrlExchange>> arrived;

    // The first exchange; fails the test when none comes.
    ZRMUrlExchange wait() {
        EXPECT_TRUE(arrived.waitUntil([](const auto& held) { return !held.empty(); }));
        const auto held = arrived.value();
        return held.empty() ? ZRMUrlExchange{} : held.front();
    }
};

class ZRMLinuxUrlSessionFixture : public testing::Test {
  protected:
    std::shared_ptr<ZRMLinuxUrlSessionFactory> factory(
        const std::string& authorities = {}, const std::vector<std::string>& overrides = {}) {
        return std::make_shared<ZRMLinuxUrlSessionFactory>(
            executor_, authorities, zrm_parseResolveOverrides(overrides),
            std::make_shared<ZRMLinuxKernelRoutes>());
    }

    static ZRMUrlRequest get(const std::string& url) {
        ZRMUrlRequest request;
        request.url = url;
        return request;
    }

    static ZRMUrlRequest post(const std::string& url, const std::string& body) {
        auto request = get(url);
        request.method = "POST";
        request.body = std::make_shared<const ZRMData>(zrm_dataFromText(body));
        return request;
    }

    static std::shared_ptr<ZRMTestExchange> start(ZRMUrlSession& session,
                                                  const ZRMUrlRequest& request) {
        auto exchange = std::make_shared<ZRMTestExchange>();
        session.start(request, [exchange](ZRMUrlExchange result) {
            exchange->arrived.change([&](auto& held) { held.push_back(std::move(result)); });
        });
        return exchange;
    }

    // One exchange over a session of its own.
    ZRMUrlExchange load(ZRMUrlSessionFactory& sessions, const ZRMUrlRequest& request,
                        const ZRMUrlSessionConfiguration& configuration = {}) {
        const auto session = sessions.makeSession(configuration);
        return start(*session, request)->wait();
    }

    static std::int64_t codeOf(const ZRMUrlExchange& exchange) {
        if (!exchange.error) {
            return 0;
        }
        EXPECT_EQ(exchange.error->domain(), kZRMUrlErrorDomain);
        return exchange.error->code();
    }

    std::shared_ptr<ZRMLinuxExecutor> executor_ = std::make_shared<ZRMLinuxExecutor>();
};
