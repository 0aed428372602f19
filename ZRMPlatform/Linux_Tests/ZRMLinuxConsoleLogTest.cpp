#include <array>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <unistd.h>

#include "ZRMPlatform/Linux/ZRMLinuxConsoleLog.h"
#include "ZRMPlatform/Linux/ZRMLinuxPosix.h"
#include "ZRMPlatform/Linux_Tests/ZRMTestDirectory.h"

namespace {

struct Pipe {
    Pipe() {
        std::array<int, 2> ends{};
        if (::pipe2(ends.data(), O_CLOEXEC) == 0) {
            reading = ZRMLinuxDescriptor(ends[0]);
            writing = ZRMLinuxDescriptor(ends[1]);
        }
    }
    ZRMLinuxDescriptor reading;
    ZRMLinuxDescriptor writing;
};

}  // namespace

TEST(ZRMLinuxConsoleLog, WritesToStandardErrorAsItStands) {
    testing::internal::CaptureStderr();
    ZRMLinuxConsoleLog().write("one % line\n");
    zrm_writeToConsole("another");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "one % line\nanother");
}

TEST(ZRMLinuxConsoleLog, ThreadsDoNotMixWithinALine) {
    const ZRMTestDirectory directory;
    const auto path = directory.below("log");
    const ZRMLinuxDescriptor file(::open(path.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600));
    ZRMLinuxConsoleLog log(file.number());
    std::vector<std::thread> threads;
    for (char letter = 'a'; letter < 'e'; ++letter) {
        threads.emplace_back([&log, letter] {
            for (int round = 0; round < 50; ++round) {
                log.write(std::string(3000, letter) + "\n");
            }
        });
    }
    for (auto& thread : threads) {
        thread.join();
    }
    std::istringstream lines(zrm_testFileText(path));
    int count = 0;
    for (std::string line; std::getline(lines, line); ++count) {
        ASSERT_EQ(line, std::string(3000, line.empty() ? '?' : line.front()));
    }
    EXPECT_EQ(count, 200);
}

TEST(ZRMLinuxConsoleLog, AClosedReaderNeitherKillsTheProcessNorLeavesASignal) {
    Pipe pipe;
    pipe.reading = ZRMLinuxDescriptor();
    { const ZRMLinuxDescriptor closed = std::move(pipe.reading); }
    ZRMLinuxConsoleLog(pipe.writing.number()).write("nobody reads this");
    sigset_t pending;
    sigpending(&pending);
    EXPECT_EQ(sigismember(&pending, SIGPIPE), 0);
    sigset_t mask;
    pthread_sigmask(SIG_SETMASK, nullptr, &mask);
    EXPECT_EQ(sigismember(&mask, SIGPIPE), 0);
}

TEST(ZRMLinuxConsoleLog, ADescriptorThatIsNotOpenIsSwallowed) {
    ZRMLinuxConsoleLog(-1).write("lost");
}
