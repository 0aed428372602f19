// The bytes of an HTTP answer, read off a real connection: the exchange ends once, its headers are
// text that can be told apart, and a date among them is understood or left.
#include <condition_variable>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include "Fuzz/ZRMFuzz.h"
#include "ZRMCoreKit/ZRMCoreKit_Lib/Categories/NSDateFormatter/NSDateFormatter+ZRMCoreKit.h"
#include "ZRMPlatform/Linux/ZRMLinuxPlatform.h"

namespace {

constexpr std::size_t kMaximumBody = 4096;
constexpr double kTimeoutSeconds = 2;

// Reads a request's head from each connection, writes the same bytes to it and closes it.
class RawServer {
  public:
    RawServer() : listener_(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
        sockaddr_in address = {};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t length = sizeof(address);
        auto* const generic = reinterpret_cast<sockaddr*>(&address);
        ZRM_FUZZ_ASSERT(bind(listener_, generic, length) == 0 && listen(listener_, 16) == 0);
        ZRM_FUZZ_ASSERT(getsockname(listener_, generic, &length) == 0);
        url_ = "http://127.0.0.1:" + std::to_string(ntohs(address.sin_port)) + "/stat";
        std::thread([this] { serve(); }).detach();  // until the process ends
    }

    [[nodiscard]] const std::string& url() const { return url_; }

    void setAnswer(std::string answer) {
        const std::lock_guard lock(mutex_);
        answer_ = std::move(answer);
    }

  private:
    void serve() {
        for (;;) {
            const int connection = accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC);
            std::string head;
            char letter = 0;
            while (!head.ends_with("\r\n\r\n") && recv(connection, &letter, 1, 0) == 1) {
                head += letter;
            }
            std::string answer;
            {
                const std::lock_guard lock(mutex_);
                answer = answer_;
            }
            static_cast<void>(send(connection, answer.data(), answer.size(), MSG_NOSIGNAL));
            close(connection);
        }
    }

    const int listener_;
    std::string url_;
    std::mutex mutex_;
    std::string answer_;
};

class Exchanges {
  public:
    Exchanges() : platform_(zrm_makeLinuxPlatform({})) { ZRMPlatform::install(platform_); }

    ZRMUrlExchange exchange(std::string answer) {
        server_.setAnswer(std::move(answer));
        {
            const std::lock_guard lock(mutex_);
            result_.reset();
        }
        ZRMUrlRequest request;
        request.url = server_.url();
        request.headers.set("Accept-Encoding", "gzip");
        request.maximumResponseBytes = kMaximumBody;
        const auto session = platform_->urlSessions->makeSession(
            {.requestTimeoutSeconds = kTimeoutSeconds, .resourceTimeoutSeconds = kTimeoutSeconds});
        session->start(request, [this](const ZRMUrlExchange& result) {
            const std::lock_guard lock(mutex_);
            ZRM_FUZZ_ASSERT(!result_);  // it ends once
            result_ = result;
            ended_.notify_all();
        });
        std::unique_lock lock(mutex_);
        ended_.wait(lock, [this] { return result_.has_value(); });
        return *result_;
    }

  private:
    RawServer server_;
    std::shared_ptr<const ZRMPlatform> platform_;
    std::mutex mutex_;
    std::condition_variable ended_;
    std::optional<ZRMUrlExchange> result_;
};

bool isBlank(char letter) {
    return letter == ' ' || letter == '\t' || letter == '\r' || letter == '\n';
}

void checkHeader(const ZRMHttpHeaders& headers, const ZRMHttpHeaders::Field& field) {
    const auto& [name, value] = field;
    ZRM_FUZZ_ASSERT(name.empty() || (!isBlank(name.front()) && !isBlank(name.back())));
    ZRM_FUZZ_ASSERT(value.empty() || (!isBlank(value.front()) && !isBlank(value.back())));
    ZRM_FUZZ_ASSERT(name.find(':') == std::string::npos);
    ZRM_FUZZ_ASSERT(headers.find(name) != nullptr && *headers.find(name) == value);
}

}  // namespace

void zrm_fuzz(std::span<const std::uint8_t> input) {
    static Exchanges exchanges;
    const auto result = exchanges.exchange(std::string(zrm_textOfInput(input)));
    ZRM_FUZZ_ASSERT(result.error || result.response);
    ZRM_FUZZ_ASSERT(result.data.size() <= kMaximumBody);
    if (!result.response) {
        return;
    }
    ZRM_FUZZ_ASSERT(result.response->statusCode >= 200 && result.response->statusCode <= 999);
    for (const auto& field : result.response->headers.fields()) {
        checkHeader(result.response->headers, field);
    }
    if (const auto* date = result.response->headers.find("Date")) {
        static_cast<void>(zrm_serverTimeFormatter()->dateFromString(*date));
    }
}
