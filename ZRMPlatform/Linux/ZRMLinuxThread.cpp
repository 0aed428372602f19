#include "ZRMPlatform/Linux/ZRMLinuxThread.h"

#include <system_error>
#include <thread>

#include <pthread.h>
#include <sched.h>
#include <signal.h>

namespace {

// The new thread inherits the mask, so no signal finds it open for a moment.
class AllSignalsBlocked {
  public:
    AllSignalsBlocked() {
        sigset_t every;
        sigfillset(&every);
        pthread_sigmask(SIG_SETMASK, &every, &previous_);
    }
    ~AllSignalsBlocked() { pthread_sigmask(SIG_SETMASK, &previous_, nullptr); }
    AllSignalsBlocked(const AllSignalsBlocked&) = delete;
    AllSignalsBlocked& operator=(const AllSignalsBlocked&) = delete;

  private:
    sigset_t previous_{};
};

}  // namespace

bool zrm_startThread(const char* name, std::function<void()> body) {
    const AllSignalsBlocked blocked;
    try {
        std::thread([name, body = std::move(body)] {
            const sched_param noPriority{};
            pthread_setname_np(pthread_self(), name);
            pthread_setschedparam(pthread_self(), SCHED_BATCH, &noPriority);
            body();
        }).detach();
        return true;
    } catch (const std::system_error&) {
        return false;
    }
}
