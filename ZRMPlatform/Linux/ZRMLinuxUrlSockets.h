// Waits for what libcurl waits for: sockets and times.
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>

#include <curl/curl.h>

#include "ZRMPlatform/Linux/ZRMLinuxPosix.h"

// libcurl looks after the transfer whose socket is ready and no other one. Used by the network
// thread, but for wake(); does not move, as libcurl keeps its address.
class ZRMLinuxUrlSockets {
  public:
    using Clock = std::chrono::steady_clock;

    explicit ZRMLinuxUrlSockets(CURLM* multi);
    ZRMLinuxUrlSockets(const ZRMLinuxUrlSockets&) = delete;
    ZRMLinuxUrlSockets& operator=(const ZRMLinuxUrlSockets&) = delete;

    // Before anything else; false when the system has no descriptors to give. Has an effect once.
    bool open();
    // Ends a wait, or the next one. From any thread.
    void wake();
    // Waits until a socket is ready, wake() is called, libcurl's time has come or that time has
    // passed; then lets libcurl go on.
    void wait(std::chrono::milliseconds longest);

  private:
    static int watchCallback(CURL* handle, curl_socket_t socket, int what, void* self, void* known);
    static int timerCallback(CURLM* multi, long milliseconds, void* self);

    void watch(curl_socket_t socket, int what);
    void goOn(curl_socket_t socket, int ready);
    [[nodiscard]] int millisecondsToWait(std::chrono::milliseconds longest) const;

    CURLM* const multi_;
    ZRMLinuxDescriptor sockets_;
    ZRMLinuxDescriptor wake_;
    std::optional<Clock::time_point> due_;  // libcurl's
};
