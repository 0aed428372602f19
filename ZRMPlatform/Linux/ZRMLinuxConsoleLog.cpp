#include "ZRMPlatform/Linux/ZRMLinuxConsoleLog.h"

#include <cerrno>

#include <signal.h>
#include <time.h>
#include <unistd.h>

#include "ZRMPlatform/Ports/ZRMMutex.h"

namespace {

// Keeps SIGPIPE from the process while one thread writes: blocked, and taken back when it was ours.
class NoPipeSignal {
  public:
    NoPipeSignal() {
        sigemptyset(&pipe_);
        sigaddset(&pipe_, SIGPIPE);
        sigset_t pending;
        sigpending(&pending);
        wasPending_ = sigismember(&pending, SIGPIPE) == 1;
        pthread_sigmask(SIG_BLOCK, &pipe_, &previous_);
    }
    ~NoPipeSignal() {
        if (!wasPending_) {
            const timespec noWait{};
            while (sigtimedwait(&pipe_, nullptr, &noWait) < 0 && errno == EINTR) {
            }
        }
        pthread_sigmask(SIG_SETMASK, &previous_, nullptr);
    }
    NoPipeSignal(const NoPipeSignal&) = delete;
    NoPipeSignal& operator=(const NoPipeSignal&) = delete;

  private:
    sigset_t pipe_{};
    sigset_t previous_{};
    bool wasPending_ = false;
};

// One lock for all console logs: they may share the descriptor.
ZRMMutex& writing() {
    static auto* const mutex = new ZRMMutex;
    return *mutex;
}

}  // namespace

ZRMLinuxConsoleLog::ZRMLinuxConsoleLog() : descriptor_(STDERR_FILENO) {}

void ZRMLinuxConsoleLog::write(std::string_view text) {
    const NoPipeSignal noPipeSignal;
    const ZRMLockGuard lock(writing());
    while (!text.empty()) {
        const auto count = ::write(descriptor_, text.data(), text.size());
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count <= 0) {
            return;
        }
        text.remove_prefix(static_cast<std::size_t>(count));
    }
}

void zrm_writeToConsole(std::string_view text) {
    ZRMLinuxConsoleLog().write(text);
}
