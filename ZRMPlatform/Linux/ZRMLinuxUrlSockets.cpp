#include "ZRMPlatform/Linux/ZRMLinuxUrlSockets.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <limits>

#include <sys/epoll.h>
#include <sys/eventfd.h>
#include <unistd.h>

namespace {

constexpr std::size_t kEventsAtOnce = 16;

int curlReadiness(std::uint32_t events) {
    const int ready = ((events & EPOLLIN) != 0 ? CURL_CSELECT_IN : 0) |
                      ((events & EPOLLOUT) != 0 ? CURL_CSELECT_OUT : 0);
    // An error alone: libcurl learns of it as it reads or writes.
    return ready != 0 ? ready : CURL_CSELECT_IN | CURL_CSELECT_OUT;
}

}  // namespace

ZRMLinuxUrlSockets::ZRMLinuxUrlSockets(CURLM* multi) : multi_(multi) {
    curl_multi_setopt(multi_, CURLMOPT_SOCKETFUNCTION, &watchCallback);
    curl_multi_setopt(multi_, CURLMOPT_SOCKETDATA, this);
    curl_multi_setopt(multi_, CURLMOPT_TIMERFUNCTION, &timerCallback);
    curl_multi_setopt(multi_, CURLMOPT_TIMERDATA, this);
}

bool ZRMLinuxUrlSockets::open() {
    if (wake_.isOpen()) {
        return true;
    }
    ZRMLinuxDescriptor sockets(::epoll_create1(EPOLL_CLOEXEC));
    ZRMLinuxDescriptor wake(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK));
    epoll_event event{};
    event.events = EPOLLIN;
    event.data.fd = wake.number();
    if (!sockets.isOpen() || !wake.isOpen() ||
        ::epoll_ctl(sockets.number(), EPOLL_CTL_ADD, wake.number(), &event) != 0) {
        return false;
    }
    sockets_ = std::move(sockets);
    wake_ = std::move(wake);
    return true;
}

void ZRMLinuxUrlSockets::wake() {
    static_cast<void>(::eventfd_write(wake_.number(), 1));
}

void ZRMLinuxUrlSockets::wait(std::chrono::milliseconds longest) {
    std::array<epoll_event, kEventsAtOnce> events{};
    const int count =
        ::epoll_wait(sockets_.number(), events.data(), kEventsAtOnce, millisecondsToWait(longest));
    for (int index = 0; index < count; ++index) {
        const auto& event = events[static_cast<std::size_t>(index)];
        if (event.data.fd == wake_.number()) {
            eventfd_t ignored = 0;
            static_cast<void>(::eventfd_read(wake_.number(), &ignored));
        } else {
            goOn(event.data.fd, curlReadiness(event.events));
        }
    }
    if (due_ && *due_ <= Clock::now()) {
        due_.reset();
        goOn(CURL_SOCKET_TIMEOUT, 0);
    }
}

void ZRMLinuxUrlSockets::goOn(curl_socket_t socket, int ready) {
    int running = 0;
    curl_multi_socket_action(multi_, socket, ready, &running);
}

int ZRMLinuxUrlSockets::watchCallback(CURL*, curl_socket_t socket, int what, void* self, void*) {
    static_cast<ZRMLinuxUrlSockets*>(self)->watch(socket, what);
    return 0;
}

int ZRMLinuxUrlSockets::timerCallback(CURLM*, long milliseconds, void* self) {
    auto& due = static_cast<ZRMLinuxUrlSockets*>(self)->due_;
    if (milliseconds < 0) {
        due.reset();
    } else {
        due = Clock::now() + std::chrono::milliseconds(milliseconds);
    }
    return 0;
}

void ZRMLinuxUrlSockets::watch(curl_socket_t socket, int what) {
    epoll_event event{};
    event.data.fd = socket;
    event.events =
        ((what & CURL_POLL_IN) != 0 ? EPOLLIN : 0U) | ((what & CURL_POLL_OUT) != 0 ? EPOLLOUT : 0U);
    if (what == CURL_POLL_REMOVE) {
        ::epoll_ctl(sockets_.number(), EPOLL_CTL_DEL, socket, &event);
    } else if (::epoll_ctl(sockets_.number(), EPOLL_CTL_ADD, socket, &event) != 0 &&
               errno == EEXIST) {
        ::epoll_ctl(sockets_.number(), EPOLL_CTL_MOD, socket, &event);
    }
}

int ZRMLinuxUrlSockets::millisecondsToWait(std::chrono::milliseconds longest) const {
    using std::chrono::milliseconds;
    auto wait = longest;
    if (due_) {
        wait = std::min(wait, std::chrono::ceil<milliseconds>(*due_ - Clock::now()));
    }
    constexpr milliseconds kMost(std::numeric_limits<int>::max());
    return static_cast<int>(std::clamp(wait, milliseconds(0), kMost).count());
}
