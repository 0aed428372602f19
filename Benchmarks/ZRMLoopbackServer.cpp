#include "Benchmarks/ZRMLoopbackServer.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <charconv>
#include <chrono>
#include <optional>
#include <stdexcept>
#include <string_view>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace {

constexpr int kTickMilliseconds = 1;
constexpr std::string_view kHeadEnd = "\r\n\r\n";
constexpr std::string_view kAnswer = "HTTP/1.1 200 OK\r\nContent-Length: 2\r\n\r\n{}";

std::optional<std::size_t> bodyLength(std::string_view head) {
    std::string lower(head);
    std::ranges::transform(lower, lower.begin(), [](unsigned char character) {
        return static_cast<char>(std::tolower(character));
    });
    constexpr std::string_view kName = "\r\ncontent-length: ";
    const auto found = lower.find(kName);
    std::size_t length = 0;
    if (found == std::string::npos) {
        return std::nullopt;
    }
    const auto* begin = lower.data() + found + kName.size();
    std::from_chars(begin, lower.data() + lower.size(), length);
    return length;
}

}  // namespace

ZRMLoopbackSocket::ZRMLoopbackSocket(Kind kind)
    : file_(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof(address);
    auto* const generic = reinterpret_cast<sockaddr*>(&address);
    if (file_ < 0 || ::bind(file_, generic, size) != 0 ||
        (kind == Kind::Listens && ::listen(file_, SOMAXCONN) != 0) ||
        ::getsockname(file_, generic, &size) != 0) {
        throw std::runtime_error("no socket");
    }
    port_ = ntohs(address.sin_port);
}

ZRMLoopbackSocket::~ZRMLoopbackSocket() {
    ::close(file_);
}

ZRMLoopbackServer::ZRMLoopbackServer(Manner manner)
    : manner_(manner), thread_([this] { serve(); }) {}

ZRMLoopbackServer::~ZRMLoopbackServer() {
    {
        const std::lock_guard lock(mutex_);
        isOver_ = true;
    }
    thread_.join();
    for (const auto& [file, connection] : connections_) {
        ::close(file);
    }
}

ZRMLoopbackServer::Seen ZRMLoopbackServer::seen() const {
    const std::lock_guard lock(mutex_);
    return seen_;
}

void ZRMLoopbackServer::awaitRequests(std::size_t count) const {
    using Clock = std::chrono::steady_clock;
    const auto end = Clock::now() + std::chrono::seconds(20);
    while (seen().requestBytes.size() < count) {
        if (Clock::now() > end) {
            throw std::runtime_error("the requests did not come");
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
}

void ZRMLoopbackServer::serve() {
    for (;;) {
        {
            const std::lock_guard lock(mutex_);
            if (isOver_) {
                return;
            }
        }
        std::vector<pollfd> polled{{socket_.file(), POLLIN, 0}};
        for (const auto& [file, connection] : connections_) {
            polled.push_back({file, POLLIN, 0});
        }
        // Without anything to read for a tick, whoever was going to ask has asked.
        const int ready = ::poll(polled.data(), polled.size(), kTickMilliseconds);
        if (ready == 0) {
            answerAll();
        }
        for (const auto& [file, events, happened] : polled) {
            if (happened == 0) {
                continue;
            }
            if (file == socket_.file()) {
                accept();
            } else if (!read(file, connections_[file])) {
                waiting_ -= connections_[file].isWaiting ? 1 : 0;
                connections_.erase(file);
                ::close(file);
            }
        }
    }
}

void ZRMLoopbackServer::accept() {
    const int file = ::accept4(socket_.file(), nullptr, nullptr, SOCK_CLOEXEC);
    if (file >= 0) {
        connections_[file];
    }
}

bool ZRMLoopbackServer::read(int file, Connection& connection) {
    std::array<char, 16384> buffer{};
    const auto count = ::recv(file, buffer.data(), buffer.size(), 0);
    if (count <= 0) {
        return false;
    }
    connection.input.append(buffer.data(), static_cast<std::size_t>(count));
    take(connection);
    return true;
}

void ZRMLoopbackServer::take(Connection& connection) {
    const auto headEnd = connection.input.find(kHeadEnd);
    if (headEnd == std::string::npos) {
        return;
    }
    const auto length = bodyLength(connection.input.substr(0, headEnd + 2)).value_or(0);
    const auto whole = headEnd + kHeadEnd.size() + length;
    if (connection.input.size() < whole) {
        return;
    }
    connection.isWaiting = true;
    ++waiting_;
    const std::lock_guard lock(mutex_);
    seen_.requestBytes.push_back(whole);
    seen_.bodies.push_back(connection.input.substr(whole - length, length));
    seen_.repeatedBodies += bodies_.insert(seen_.bodies.back()).second ? 0 : 1;
    seen_.mostAtOnce = std::max(seen_.mostAtOnce, waiting_);
    connection.input.erase(0, whole);
}

void ZRMLoopbackServer::answerAll() {
    if (manner_ == Manner::KeepsSilent) {
        return;
    }
    for (auto& [file, connection] : connections_) {
        if (connection.isWaiting) {
            static_cast<void>(::send(file, kAnswer.data(), kAnswer.size(), MSG_NOSIGNAL));
            connection.isWaiting = false;
            --waiting_;
        }
    }
}
