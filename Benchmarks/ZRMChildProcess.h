// A program started by a benchmark: its lines are read, and it does not outlive the benchmark.
#pragma once

#include <cstdio>
#include <string>
#include <vector>

#include <sys/types.h>

// One thread. Failures throw std::runtime_error.
class ZRMChildProcess {
  public:
    // Starts the program, words[0], with what else is in `words`. What it writes to standard error
    // goes to the file `errorPath`.
    ZRMChildProcess(std::vector<std::string> words, const std::string& errorPath);
    // Kills it if it still runs.
    ~ZRMChildProcess();
    ZRMChildProcess(const ZRMChildProcess&) = delete;
    ZRMChildProcess& operator=(const ZRMChildProcess&) = delete;

    // The next line of its standard output without the line break. Throws when there is none.
    std::string readLine();
    // To its standard input.
    void writeLine(const std::string& line);
    // Waits for its end. Throws when that is anything but status 0.
    void waitForSuccess();
    // Asks it to end, and waits.
    void terminate();

  private:
    int waitForEnd();

    std::string name_;
    std::string errorPath_;
    pid_t pid_ = -1;
    std::FILE* output_ = nullptr;
    int input_ = -1;
};
