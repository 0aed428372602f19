#include <filesystem>
#include <sstream>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Tools/zrm-host/ZRMHostOptions.h"

namespace {

struct Reading {
    std::variant<ZRMHostOptions, int> result;
    std::string out;
    std::string err;

    [[nodiscard]] const ZRMHostOptions& options() const { return std::get<ZRMHostOptions>(result); }
};

Reading read(std::vector<const char*> words) {
    words.insert(words.begin(), "zrm-host");
    std::ostringstream out;
    std::ostringstream err;
    auto result = zrm_readHostOptions(static_cast<int>(words.size()), words.data(), out, err);
    return {std::move(result), out.str(), err.str()};
}

TEST(ZRMHostOptions, LeavesEverythingToTheSystemByDefault) {
    const auto reading = read({});
    const auto& options = reading.options();
    EXPECT_EQ(options.platform.homeDirectory, "");
    EXPECT_EQ(options.platform.resourcesDirectory, "");
    EXPECT_EQ(options.platform.bundleDirectory, "");
    EXPECT_EQ(options.platform.certificateAuthorityFile, "");
    EXPECT_TRUE(options.platform.resolveOverrides.empty());
    EXPECT_EQ(options.statisticsUrl, std::nullopt);
    EXPECT_EQ(options.logLevel, 1U);
    EXPECT_FALSE(options.interactive);
}

TEST(ZRMHostOptions, ReadsEveryOption) {
    const auto reading =
        read({"--home", "/h", "--resources", "/tmp", "--bundle", "/", "--statistics-url", "u",
              "--log-level", "0", "--ca", "/dev/null", "--resolve", "a.b:1:127.0.0.1", "--resolve",
              "c.d:2:::1", "--interactive"});
    const auto& options = reading.options();
    EXPECT_EQ(options.platform.homeDirectory, "/h");
    EXPECT_EQ(options.platform.resourcesDirectory, "/tmp");
    EXPECT_EQ(options.platform.bundleDirectory, "/");
    EXPECT_EQ(options.platform.certificateAuthorityFile, "/dev/null");
    EXPECT_THAT(options.platform.resolveOverrides,
                testing::ElementsAre("a.b:1:127.0.0.1", "c.d:2:::1"));
    EXPECT_EQ(options.statisticsUrl, "u");
    EXPECT_EQ(options.logLevel, 0U);
    EXPECT_TRUE(options.interactive);
}

TEST(ZRMHostOptions, MakesPathsAbsolute) {
    const auto reading = read({"--home", "a/../b"});
    EXPECT_EQ(reading.options().platform.homeDirectory, std::filesystem::current_path() / "b");
}

TEST(ZRMHostOptions, HelpNamesOptionsAndCommandsAndExitsZero) {
    const auto reading = read({"--help"});
    EXPECT_EQ(std::get<int>(reading.result), 0);
    for (const auto* text : {"--home", "--resources", "--bundle", "--statistics-url", "--log-level",
                             "--ca", "--resolve", "--interactive", "login USER RESULT [NAME]",
                             "drain SECONDS", "signal NAME [ARGS]"}) {
        EXPECT_THAT(reading.out, testing::HasSubstr(text));
    }
}

TEST(ZRMHostOptions, WrongUsageExitsTwoAndSaysWhy) {
    const std::vector<std::vector<const char*>> wrong{
        {"--unknown"},
        {"stray"},
        {"--log-level", "2"},
        {"--log-level", "verbose"},
        {"--ca", "/nowhere"},
        {"--resources", "/nowhere"},
        {"--bundle", "/dev/null"},
        {"--resolve", "a.b"},
        {"--resolve", "a.b:1"},
        {"--resolve", "a.b:1:"},
        {"--resolve", ":1:127.0.0.1"},
        {"--resolve", "a.b::127.0.0.1"},
        {"--resolve", "a.b:x:127.0.0.1"},
        {"--home"},
    };
    for (const auto& words : wrong) {
        const auto reading = read(words);
        ASSERT_TRUE(std::holds_alternative<int>(reading.result)) << words.back();
        EXPECT_EQ(std::get<int>(reading.result), 2);
        EXPECT_FALSE(reading.err.empty());
    }
}

}  // namespace
