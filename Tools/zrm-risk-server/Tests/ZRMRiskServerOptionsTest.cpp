#include <sstream>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Tools/zrm-risk-server/ZRMRiskServerOptions.h"

namespace {

struct Reading {
    std::variant<ZRMRiskServerOptions, int> result;
    std::string out;
    std::string err;

    [[nodiscard]] const ZRMRiskServerOptions& options() const {
        return std::get<ZRMRiskServerOptions>(result);
    }
};

Reading read(std::vector<const char*> words) {
    words.insert(words.begin(), "zrm-risk-server");
    std::ostringstream out;
    std::ostringstream err;
    auto result = zrm_readRiskServerOptions(static_cast<int>(words.size()), words.data(), out, err);
    return {std::move(result), out.str(), err.str()};
}

TEST(ZRMRiskServerOptions, HasTheDocumentedDefaults) {
    const auto reading = read({"--plain"});
    const auto& options = reading.options();
    EXPECT_EQ(options.listen.host, "127.0.0.1");
    EXPECT_EQ(options.listen.port, 8443);
    EXPECT_TRUE(options.plain);
    EXPECT_EQ(options.eventsFile, "");
    EXPECT_TRUE(options.faults.empty());
    EXPECT_FALSE(options.quiet);
    EXPECT_EQ(options.settingsFile, "");
    EXPECT_EQ(options.tagInterval, "P1D");
    EXPECT_FALSE(options.namesChain);
    EXPECT_TRUE(options.misbehaviours.empty());
}

TEST(ZRMRiskServerOptions, ReadsWhatToSignAndHowBadly) {
    const auto reading = read({"--pki", "/p", "--settings", "/s", "--tag-interval", "90s", "--x5u",
                               "--misbehave", "wrong-key", "--misbehave", "alg-none"});
    const auto& options = reading.options();
    EXPECT_EQ(options.settingsFile, "/s");
    EXPECT_EQ(options.tagInterval, "PT90S");
    EXPECT_TRUE(options.namesChain);
    EXPECT_EQ(options.misbehaviours,
              (ZRMMisbehaviours{ZRMMisbehaviour::WrongKey, ZRMMisbehaviour::AlgNone}));
}

TEST(ZRMRiskServerOptions, RefusesWhatItCannotSign) {
    EXPECT_EQ(std::get<int>(read({"--pki", "/p", "--misbehave", "badly"}).result), 2);
    EXPECT_EQ(std::get<int>(read({"--pki", "/p", "--tag-interval", "soon"}).result), 2);
    EXPECT_EQ(std::get<int>(read({"--plain", "--settings", "/s"}).result), 2);
}

TEST(ZRMRiskServerOptions, ReadsEveryOption) {
    const auto reading = read({"--listen", "localhost:0", "--pki", "/p", "--events", "/e",
                               "--fault", "stat:503*3", "--fault", "config:reset", "--quiet"});
    const auto& options = reading.options();
    EXPECT_EQ(options.listen.host, "localhost");
    EXPECT_EQ(options.listen.port, 0);
    EXPECT_FALSE(options.plain);
    EXPECT_EQ(options.pkiDirectory, "/p");
    EXPECT_EQ(options.eventsFile, "/e");
    ASSERT_EQ(options.faults.size(), 2U);
    EXPECT_EQ(options.faults[0].count, 3UL);
    EXPECT_EQ(options.faults[1].endpoint, "config");
    EXPECT_TRUE(options.quiet);
}

TEST(ZRMRiskServerOptions, HelpNamesEveryOptionAndExitsZero) {
    const auto reading = read({"--help"});
    EXPECT_EQ(std::get<int>(reading.result), 0);
    for (const auto* option :
         {"--listen", "--plain", "--pki", "--events", "--fault", "--quiet", "--settings",
          "--tag-interval", "--x5u", "--misbehave", "wrong-key"}) {
        EXPECT_THAT(reading.out, testing::HasSubstr(option));
    }
}

TEST(ZRMRiskServerOptions, WrongUsageExitsTwoAndSaysWhy) {
    const std::vector<std::vector<const char*>> wrong{
        {},
        {"--plain", "--unknown"},
        {"--plain", "stray"},
        {"--plain", "--listen"},
        {"--plain", "--listen", "8443"},
        {"--plain", "--listen", "127.0.0.1:70000"},
        {"--plain", "--fault", "stat:oops"},
        {"--plain", "--fault", "stat:503", "stat:404"},
    };
    for (const auto& words : wrong) {
        const auto reading = read(words);
        ASSERT_TRUE(std::holds_alternative<int>(reading.result));
        EXPECT_EQ(std::get<int>(reading.result), 2);
        EXPECT_FALSE(reading.err.empty());
    }
}

TEST(ZRMListenAddress, ReadsNamesAddressesAndBracketedIpv6) {
    EXPECT_EQ(ZRMListenAddress::parse("localhost:80")->host, "localhost");
    EXPECT_EQ(ZRMListenAddress::parse("[::1]:80")->host, "::1");
    EXPECT_EQ(ZRMListenAddress::parse("0.0.0.0:65535")->port, 65535);
}

TEST(ZRMListenAddress, RefusesEverythingElse) {
    for (const auto* text : {"", ":", "a:", ":80", "[]:80", "::1:80", "a:65536", "a:-1", "a:1x"}) {
        EXPECT_EQ(ZRMListenAddress::parse(text), std::nullopt) << text;
    }
}

}  // namespace
