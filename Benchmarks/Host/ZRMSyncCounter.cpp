#include "Benchmarks/Host/ZRMSyncCounter.h"

#include <atomic>

#include <sys/syscall.h>
#include <unistd.h>

namespace {

thread_local std::uint64_t syncsOfThisThread = 0;
std::atomic<std::uint64_t> syncsOfTheProcess{0};

int counted(long call, int file) {
    ++syncsOfThisThread;
    ++syncsOfTheProcess;
    return static_cast<int>(::syscall(call, file));
}

}  // namespace

std::uint64_t zrm_syncsOfThisThread() {
    return syncsOfThisThread;
}

std::uint64_t zrm_syncsOfTheProcess() {
    return syncsOfTheProcess;
}

extern "C" {

__attribute__((visibility("default"))) int fsync(int file) {
    return counted(SYS_fsync, file);
}

__attribute__((visibility("default"))) int fdatasync(int file) {
    return counted(SYS_fdatasync, file);
}
}
