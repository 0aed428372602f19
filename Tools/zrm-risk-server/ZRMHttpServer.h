// A small HTTP/1.1 server over TLS or plain TCP.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

#include "Tools/zrm-risk-server/ZRMServerMessages.h"

struct ZRMHttpServerOptions {
    std::string host = "127.0.0.1";
    std::uint16_t port = 0;
    // PEM files of the server's certificate and key; both empty for plain HTTP.
    std::string certificateFile;
    std::string keyFile;
    unsigned threads = 2;
    std::size_t largestHeaderBytes = 16UL * 1024;
    std::size_t largestBodyBytes = 1024UL * 1024;
};

// Keeps connections alive between requests. A header or body over its bound is answered 431 or 413,
// what is no HTTP 400; a connection on which nothing happens for a minute is closed. TLS is 1.2 or
// later.
class ZRMHttpServer {
  public:
    // Listens from now on. Throws std::runtime_error where it cannot.
    ZRMHttpServer(const ZRMHttpServerOptions& options, std::shared_ptr<ZRMRequestHandler> handler);
    // Only once run() has returned or was never called.
    ~ZRMHttpServer();
    ZRMHttpServer(const ZRMHttpServer&) = delete;
    ZRMHttpServer& operator=(const ZRMHttpServer&) = delete;

    [[nodiscard]] std::uint16_t port() const;

    // Serves until stop(), on this thread and the others asked for.
    void run();

    // Takes no more connections, closes the idle ones, lets the requests under way be answered, and
    // ends run() at the latest two seconds from now. From any thread, any number of times.
    void stop();

    // Calls stop() when the process receives SIGINT or SIGTERM. Before run().
    void stopOnSignals();

  private:
    class Impl;
    std::unique_ptr<Impl> impl_;
};
