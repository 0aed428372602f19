#include <chrono>
#include <sstream>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Tools/zrm-host/ZRMHostRunner.h"
#include "ZRMPlatform/Simulated/ZRMSimulatedDevice.h"

namespace {

// A service that was never activated answers every report at once, which is all that these need.
class ZRMHostRunnerTest : public testing::Test {
  protected:
    ZRMHostRunnerTest()
        : service_(ZRMMobileService::createServiceWithConfiguration(
              ZRMMobileServiceConfiguration::configuration())) {}

    std::string run(const std::string& commands, bool interactive = false) {
        std::istringstream in(commands);
        std::ostringstream out;
        ZRMHostContext context{*service_, dialogue_};
        zrm_runHost(context, in, out, interactive);
        return out.str();
    }

    ZRMSimulatedDevice device_;
    ZRMScopedPlatform installed_{device_};
    std::shared_ptr<ZRMMobileService> service_;
    std::ostringstream dialogue_;
};

TEST_F(ZRMHostRunnerTest, PrintsNothingForNoCommands) {
    EXPECT_EQ(run(""), "");
    EXPECT_EQ(run("\n   \n"), "");
    EXPECT_EQ(dialogue_.str(), "");
}

TEST_F(ZRMHostRunnerTest, AnswersInTheOrderOfTheCommands) {
    EXPECT_EQ(run("version\nwait 0\ndrain 0\ntag"),
              "{\"op\":\"version\",\"error\":null,\"value\":\"3.28.0.12\"}\n"
              "{\"op\":\"wait\",\"error\":null}\n"
              "{\"op\":\"drain\",\"error\":null,\"value\":0}\n"
              "{\"op\":\"tag\",\"error\":null,\"value\":null}\n");
}

TEST_F(ZRMHostRunnerTest, EndsAtQuit) {
    EXPECT_EQ(run("quit\nversion\n"), "{\"op\":\"quit\",\"error\":null}\n");
}

TEST_F(ZRMHostRunnerTest, QuitWithArgumentsIsRefusedAndDoesNotEnd) {
    const auto out = run("quit now\nwait 0\n");
    EXPECT_THAT(out, testing::HasSubstr("usage: quit"));
    EXPECT_THAT(out, testing::EndsWith("{\"op\":\"wait\",\"error\":null}\n"));
}

TEST_F(ZRMHostRunnerTest, PassesTheLibrarysErrorsOn) {
    for (const auto* command : {"login alice SUCCESS", "login alice 0 \"Alice Example\"", "logout",
                                "navigate /a", "session 1", "location", "analyze"}) {
        const auto out = run(command);
        EXPECT_THAT(out, testing::HasSubstr("\"domain\":\"com.velorin.zrm.mobilekit\",\"code\":3,"))
            << command;
    }
}

TEST_F(ZRMHostRunnerTest, ChecksOfArgumentsComeBeforeActivation) {
    EXPECT_THAT(run("login '' SUCCESS"), testing::HasSubstr("\"code\":9,"));
    EXPECT_THAT(run("navigate " + std::string(2049, 'a')), testing::HasSubstr("\"code\":10,"));
    EXPECT_THAT(run("session " + std::string(1025, 'a')), testing::HasSubstr("\"code\":11,"));
}

struct Refused {
    const char* line;
    const char* op;
    int code;
};

void PrintTo(const Refused& refused, std::ostream* out) {
    *out << refused.line;
}

class ZRMHostRunnerRefusal : public ZRMHostRunnerTest,
                             public testing::WithParamInterface<Refused> {};

TEST_P(ZRMHostRunnerRefusal, AnswersWithTheHostsOwnErrorAndGoesOn) {
    const auto out = run(std::string(GetParam().line) + "\nwait 0\n");
    EXPECT_THAT(out,
                testing::StartsWith("{\"op\":\"" + std::string(GetParam().op) +
                                    "\",\"error\":{\"domain\":\"ZRMHostErrorDomain\",\"code\":" +
                                    std::to_string(GetParam().code) + ","));
    EXPECT_THAT(out, testing::EndsWith("}\n{\"op\":\"wait\",\"error\":null}\n"));
}

INSTANTIATE_TEST_SUITE_P(
    Rows, ZRMHostRunnerRefusal,
    testing::Values(Refused{"dance", "dance", ZRMHostErrorUnknownCommand},
                    Refused{"Login alice 0", "Login", ZRMHostErrorUnknownCommand},
                    Refused{"''", "", ZRMHostErrorUnknownCommand},
                    Refused{"login alice", "login", ZRMHostErrorWrongArguments},
                    Refused{"login a 0 b c", "login", ZRMHostErrorWrongArguments},
                    Refused{"login alice 7", "login", ZRMHostErrorWrongArguments},
                    Refused{"login alice MAYBE", "login", ZRMHostErrorWrongArguments},
                    Refused{"logout now", "logout", ZRMHostErrorWrongArguments},
                    Refused{"navigate", "navigate", ZRMHostErrorWrongArguments},
                    Refused{"session a b", "session", ZRMHostErrorWrongArguments},
                    Refused{"wait", "wait", ZRMHostErrorWrongArguments},
                    Refused{"wait soon", "wait", ZRMHostErrorWrongArguments},
                    Refused{"drain -1", "drain", ZRMHostErrorWrongArguments},
                    Refused{"signal", "signal", ZRMHostErrorWrongArguments},
                    Refused{"signal dance", "signal", ZRMHostErrorWrongArguments},
                    Refused{"signal call", "signal", ZRMHostErrorWrongArguments},
                    Refused{"  login 'alice", "login", ZRMHostErrorUnbalancedQuotes},
                    Refused{"'", "", ZRMHostErrorUnbalancedQuotes},
                    Refused{"quit\\", "quit", ZRMHostErrorUnbalancedQuotes}));

TEST_F(ZRMHostRunnerTest, WaitsAsLongAsTold) {
    const auto before = std::chrono::steady_clock::now();
    run("wait 0.05");
    EXPECT_GE(std::chrono::steady_clock::now() - before, std::chrono::milliseconds(50));
}

TEST_F(ZRMHostRunnerTest, HelpGoesToTheDialogue) {
    EXPECT_EQ(run("help"), "{\"op\":\"help\",\"error\":null}\n");
    EXPECT_THAT(dialogue_.str(), testing::HasSubstr("drain SECONDS"));
}

TEST_F(ZRMHostRunnerTest, PromptsOnlyWhenInteractive) {
    EXPECT_EQ(run("wait 0\nquit\n", true),
              "{\"op\":\"wait\",\"error\":null}\n{\"op\":\"quit\",\"error\":null}\n");
    EXPECT_THAT(dialogue_.str(), testing::HasSubstr("login USER RESULT [NAME]"));
    EXPECT_THAT(dialogue_.str(), testing::EndsWith("zrm> zrm> "));
}

}  // namespace
