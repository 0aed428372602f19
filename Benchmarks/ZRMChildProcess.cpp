#include "Benchmarks/ZRMChildProcess.h"

#include <array>
#include <csignal>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <utility>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

std::array<int, 2> makePipe() {
    std::array<int, 2> ends{};
    if (::pipe2(ends.data(), O_CLOEXEC) != 0) {
        throw std::runtime_error("no pipe");
    }
    return ends;
}

std::string lastOf(const std::string& path) {
    constexpr std::size_t kMost = 500;
    std::ifstream file(path, std::ios::binary);
    const std::string text{std::istreambuf_iterator<char>(file), {}};
    return text.size() > kMost ? text.substr(text.size() - kMost) : text;
}

}  // namespace

ZRMChildProcess::ZRMChildProcess(std::vector<std::string> words, const std::string& errorPath)
    : name_(words.at(0)), errorPath_(errorPath) {
    const auto in = makePipe();
    const auto out = makePipe();
    posix_spawn_file_actions_t actions;
    ::posix_spawn_file_actions_init(&actions);
    ::posix_spawn_file_actions_adddup2(&actions, in[0], STDIN_FILENO);
    ::posix_spawn_file_actions_adddup2(&actions, out[1], STDOUT_FILENO);
    ::posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, errorPath.c_str(),
                                       O_WRONLY | O_CREAT | O_APPEND, 0600);
    std::vector<char*> arguments;
    for (auto& word : words) {
        arguments.push_back(word.data());
    }
    arguments.push_back(nullptr);
    const int failure =
        ::posix_spawn(&pid_, name_.c_str(), &actions, nullptr, arguments.data(), environ);
    ::posix_spawn_file_actions_destroy(&actions);
    ::close(in[0]);
    ::close(out[1]);
    input_ = in[1];
    output_ = ::fdopen(out[0], "r");
    if (failure != 0) {
        pid_ = -1;
        std::fclose(output_);
        ::close(input_);
        throw std::runtime_error("cannot start " + name_);
    }
}

ZRMChildProcess::~ZRMChildProcess() {
    if (pid_ > 0) {
        ::kill(pid_, SIGKILL);
        waitForEnd();
    }
    std::fclose(output_);
    ::close(input_);
}

std::string ZRMChildProcess::readLine() {
    std::string line;
    for (int character = std::getc(output_); character != '\n'; character = std::getc(output_)) {
        if (character == EOF) {
            throw std::runtime_error(name_ +
                                     " ended before it said anything: " + lastOf(errorPath_));
        }
        line += static_cast<char>(character);
    }
    return line;
}

void ZRMChildProcess::writeLine(const std::string& line) {
    const auto text = line + "\n";
    if (::write(input_, text.data(), text.size()) != std::ssize(text)) {
        throw std::runtime_error(name_ + " does not listen");
    }
}

void ZRMChildProcess::waitForSuccess() {
    if (waitForEnd() != 0) {
        throw std::runtime_error(name_ + " failed: " + lastOf(errorPath_));
    }
}

void ZRMChildProcess::terminate() {
    ::kill(pid_, SIGTERM);
    waitForEnd();
}

int ZRMChildProcess::waitForEnd() {
    int status = -1;
    ::waitpid(std::exchange(pid_, -1), &status, 0);
    return status;
}
