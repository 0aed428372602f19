#include "Benchmarks/ZRMBenchmark.h"

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <new>
#include <utility>

#include <malloc.h>

#include "Benchmarks/ZRMQuantiles.h"

namespace {

std::atomic<std::size_t> liveBytes{0};
std::atomic<std::size_t> peakBytes{0};

void* counted(void* memory) {
    if (memory == nullptr) {
        throw std::bad_alloc();
    }
    const auto live = liveBytes += malloc_usable_size(memory);
    auto peak = peakBytes.load();
    while (live > peak && !peakBytes.compare_exchange_weak(peak, live)) {
    }
    return memory;
}

void release(void* memory) {
    if (memory != nullptr) {
        liveBytes -= malloc_usable_size(memory);
        std::free(memory);
    }
}

}  // namespace

// The program's own allocation functions, so that the heap can be measured exactly.
void* operator new(std::size_t size) {
    return counted(std::malloc(size));
}
void operator delete(void* memory) noexcept {
    release(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
    release(memory);
}

double zrm_medianSeconds(int runs, const std::function<void()>& work) {
    std::vector<double> seconds;
    for (int run = 0; run < runs; ++run) {
        const auto begin = std::chrono::steady_clock::now();
        work();
        seconds.push_back(
            std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count());
    }
    return zrm_median(std::move(seconds));
}

std::size_t zrm_peakHeapBytes(const std::function<void()>& work) {
    const auto before = liveBytes.load();
    peakBytes = before;
    work();
    return peakBytes - before;
}
