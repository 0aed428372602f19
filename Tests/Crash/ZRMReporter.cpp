// A host that reports logins until it is killed, and keeps a book that outlives it.
//
// usage: zrm-reporter HOME RESOURCES STATISTICS-PORT BOOK PER-SECOND
//
// PER-SECOND 0 reports flat out. Nothing listens at the port. The book is a file of
// ZRMReporterBook; numbers of logins go on where an earlier life left off. Without BOOK and
// PER-SECOND it activates, prints how many events are pending, and ends.
#include <atomic>
#include <cstdint>
#include <cstdlib>
#include <ctime>
#include <future>
#include <iostream>
#include <string>
#include <thread>

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include "ZRMMobileKit/ZRMMobileService.h"
#include "ZRMPlatform/Linux/ZRMLinuxPlatform.h"
#include "ZRMPlatform/Ports/ZRMPlatform.h"

namespace {

constexpr std::uint64_t kLogins = 100'000;

// Shared memory of a file: what is written there stays when the process is killed.
struct Book {
    std::atomic<std::uint64_t> reported;              // logins whose call has returned
    std::atomic<std::uint64_t> stored;                // logins that the library called stored
    std::atomic<std::uint64_t> nanoseconds[kLogins];  // on the monotonic clock, as a call begins
};

std::uint64_t monotonicNanoseconds() {
    timespec now = {};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<std::uint64_t>(now.tv_sec) * 1'000'000'000 +
           static_cast<std::uint64_t>(now.tv_nsec);
}

Book* openBook(const char* path) {
    const int file = open(path, O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    if (file < 0 || ftruncate(file, sizeof(Book)) != 0) {
        return nullptr;
    }
    void* memory = mmap(nullptr, sizeof(Book), PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
    close(file);
    return memory == MAP_FAILED ? nullptr : static_cast<Book*>(memory);
}

std::shared_ptr<ZRMMobileService> activatedService(const std::string& home,
                                                   const std::string& resources,
                                                   const std::string& port) {
    ZRMLinuxPlatformOptions options;
    options.homeDirectory = home;
    options.resourcesDirectory = resources;
    options.resolveOverrides = {"risk.example.com:" + port + ":127.0.0.1"};
    ZRMPlatform::install(zrm_makeLinuxPlatform(options));
    auto configuration = ZRMMobileServiceConfiguration::configuration();
    configuration.setStatisticsUrl("http://risk.example.com:" + port + "/stat");
    auto service = ZRMMobileService::createServiceWithConfiguration(configuration);
    std::promise<bool> activated;
    service->activateWithCompletionHandler(
        [&activated](const auto& error) { activated.set_value(!error); });
    return activated.get_future().get() ? service : nullptr;
}

void report(ZRMMobileService& service, Book& book, std::uint64_t perSecond) {
    auto next = monotonicNanoseconds();
    for (auto number = book.reported.load(); number < kLogins; ++number) {
        book.nanoseconds[number] = monotonicNanoseconds();
        service.sendLogin("user-" + std::to_string(number), ZRMLoginResult::Success);
        book.reported = number + 1;
        if (service.unstoredEventCount() == 0) {
            book.stored = number + 1;
        }
        if (perSecond > 0) {
            next += 1'000'000'000 / perSecond;
            while (monotonicNanoseconds() < next) {
                std::this_thread::yield();
                if (service.unstoredEventCount() == 0) {
                    book.stored = number + 1;
                }
            }
        }
    }
}

}  // namespace

int main(int count, char** arguments) {
    if (count != 4 && count != 6) {
        std::cerr << "usage: zrm-reporter HOME RESOURCES PORT [BOOK PER-SECOND]\n";
        return 2;
    }
    const auto service = activatedService(arguments[1], arguments[2], arguments[3]);
    if (service == nullptr) {
        std::cerr << "the activation failed\n";
        return 1;
    }
    if (count == 4) {
        // The activation reports by itself, too, right after its answer and on the same queue.
        std::promise<void> reported;
        ZRMPlatform::current()->executor->mainQueue()->post([&reported] { reported.set_value(); });
        reported.get_future().wait();
        while (service->unstoredEventCount() > 0) {
            std::this_thread::yield();
        }
        std::cout << service->pendingEventCount() << std::endl;
        return 0;
    }
    auto* book = openBook(arguments[4]);
    if (book == nullptr) {
        std::cerr << "cannot open the book\n";
        return 1;
    }
    report(*service, *book, std::stoull(arguments[5]));
    return 0;
}
