// A blocking client that sends exactly the bytes it is given.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

struct bio_st;
struct ssl_ctx_st;

class ZRMRawClient {
  public:
    // Plain TCP where `authorityFile` is empty, else TLS that trusts it and checks for "localhost".
    // `highestTls` is an OpenSSL version number, 0 for no bound.
    explicit ZRMRawClient(std::uint16_t port, const std::string& authorityFile = "",
                          int highestTls = 0);
    ~ZRMRawClient();
    ZRMRawClient(const ZRMRawClient&) = delete;
    ZRMRawClient& operator=(const ZRMRawClient&) = delete;

    [[nodiscard]] bool isConnected() const { return connected_; }

    void send(const std::string& bytes);

    // One answer with its body, as its Content-Length says; what arrived where the connection ends
    // before.
    std::string readAnswer();

    // What arrives until the connection ends.
    std::string readToEnd();

    // Whether the last reading ended by a reset rather than in order.
    [[nodiscard]] bool wasReset() const { return reset_; }

  private:
    bool receive();

    std::shared_ptr<ssl_ctx_st> context_;
    std::shared_ptr<bio_st> bio_;
    std::string received_;
    bool connected_ = false;
    bool reset_ = false;
};
