// One exchange on its way through libcurl.
#pragma once

#include <array>
#include <atomic>
#include <chrono>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include <curl/curl.h>

#include "ZRMPlatform/Linux/ZRMLinuxAuthorities.h"
#include "ZRMPlatform/Linux/ZRMLinuxRoutes.h"
#include "ZRMPlatform/Ports/ZRMQueue.h"
#include "ZRMPlatform/Ports/ZRMUrlSession.h"

using ZRMLinuxCurlList = std::unique_ptr<curl_slist, decltype(&curl_slist_free_all)>;

// What every exchange of one factory goes by. Immutable.
struct ZRMLinuxUrlTrust {
    ZRMLinuxAuthorities authorities;
    ZRMLinuxCurlList connectTo{nullptr, &curl_slist_free_all};
    std::shared_ptr<const ZRMLinuxRoutes> routes;
};

// A request as its session handed it over.
struct ZRMLinuxUrlJob {
    ZRMUrlRequest request;
    ZRMUrlSessionConfiguration configuration;
    std::shared_ptr<const ZRMLinuxUrlTrust> trust;
    std::shared_ptr<ZRMQueue> deliveryQueue;
    ZRMUrlSession::Completion completion;
    std::atomic<bool> isCancelled = false;
    std::atomic<bool> isEnded = false;

    // Posts the completion; called once, on whichever thread ends the job.
    void end(ZRMUrlExchange exchange);
};

// Owned and used by the network thread alone; does not move, as libcurl keeps its address.
class ZRMLinuxUrlTransfer {
  public:
    using Clock = std::chrono::steady_clock;

    // Bytes of a response's head.
    static constexpr std::size_t kMaximumHeadBytes = std::size_t{256} * 1024;

    // Sets up the handle, which has to be fresh and has to outlive the transfer's callbacks.
    ZRMLinuxUrlTransfer(std::shared_ptr<ZRMLinuxUrlJob> job, CURL* handle);
    ZRMLinuxUrlTransfer(const ZRMLinuxUrlTransfer&) = delete;
    ZRMLinuxUrlTransfer& operator=(const ZRMLinuxUrlTransfer&) = delete;

    [[nodiscard]] CURL* handle() const { return handle_; }
    // When the exchange has to be given up unless something arrives or leaves before.
    [[nodiscard]] Clock::time_point deadline() const;

    // How it ended: by libcurl's verdict, or by ours. The transfer is of no use afterwards.
    void endWithVerdict(CURLcode verdict);
    void endWithError(ZRMUrlErrorCode code);

  private:
    static std::size_t headCallback(char* bytes, std::size_t size, std::size_t count, void* self);
    static std::size_t bodyCallback(char* bytes, std::size_t size, std::size_t count, void* self);
    static int progressCallback(void* self, curl_off_t, curl_off_t, curl_off_t,
                                curl_off_t uploaded);

    void setUpRequest();
    void setUpHeaders();
    void setUpTrust();
    bool takeHeadLine(std::string_view line);
    void takeField(std::string_view line);
    bool takeBody(std::string_view bytes);
    [[nodiscard]] ZRMError errorOf(CURLcode verdict) const;
    void end(std::optional<ZRMError> error);

    const std::shared_ptr<ZRMLinuxUrlJob> job_;
    CURL* const handle_;
    ZRMLinuxCurlList headers_{nullptr, &curl_slist_free_all};
    std::array<char, CURL_ERROR_SIZE> curlText_{};
    const Clock::time_point start_ = Clock::now();
    Clock::time_point lastProgress_ = start_;
    curl_off_t uploaded_ = 0;

    ZRMUrlResponse head_;   // being received
    std::string lastName_;  // of its fields
    std::size_t headBytes_ = 0;
    bool isHeadOpen_ = false;
    ZRMUrlExchange exchange_;
    std::optional<ZRMUrlErrorCode> refusal_;  // why a callback ended the transfer
};

// Absent when the request can be made as it stands, else what is wrong with it.
std::optional<ZRMError> zrm_checkUrlRequest(const ZRMUrlRequest& request);
