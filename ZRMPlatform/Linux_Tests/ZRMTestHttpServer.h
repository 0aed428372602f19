// An HTTP server on the loopback, plain or with TLS, whose every answer a test writes byte by byte.
#pragma once

#include <atomic>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include <openssl/ossl_typ.h>

#include "ZRMPlatform/Linux/ZRMLinuxPosix.h"
#include "ZRMPlatform/Linux_Tests/ZRMTestCertificates.h"

// One accepted connection; used by the thread that serves it.
class ZRMTestConnection {
  public:
    ZRMTestConnection(int socket, SSL_CTX* tls);
    ~ZRMTestConnection();
    ZRMTestConnection(const ZRMTestConnection&) = delete;
    ZRMTestConnection& operator=(const ZRMTestConnection&) = delete;

    [[nodiscard]] bool isOpen() const { return isOpen_; }
    // False when the peer is gone.
    bool write(std::string_view bytes);
    // Some bytes; empty when the peer is gone.
    std::string read();
    // Returns once the peer has closed.
    void waitForClose();
    // Whether the peer closes within that time.
    bool closesWithin(int milliseconds);
    // Ends the connection with a reset instead of a farewell.
    void reset();

  private:
    int socket_;
    SSL* tls_ = nullptr;
    bool isOpen_ = true;
};

struct ZRMTestHttpRequest {
    std::string head;  // as it arrived, the empty line included
    std::string body;

    [[nodiscard]] std::string path() const;
    // The header lines, without the request line.
    [[nodiscard]] std::vector<std::string> headerLines() const;
};

class ZRMTestHttpServer {
  public:
    // Answers a request; false closes the connection afterwards.
    using Handler = std::function<bool(const ZRMTestHttpRequest&, ZRMTestConnection&)>;

    struct Tls {
        ZRMTestIdentity identity;
        bool isOnlyVersion11 = false;
    };

    explicit ZRMTestHttpServer(Handler handler, const std::optional<Tls>& tls = std::nullopt);
    // Shuts every connection and waits for the threads.
    ~ZRMTestHttpServer();
    ZRMTestHttpServer(const ZRMTestHttpServer&) = delete;
    ZRMTestHttpServer& operator=(const ZRMTestHttpServer&) = delete;

    [[nodiscard]] int port() const { return port_; }
    [[nodiscard]] int connections() const { return connections_; }
    [[nodiscard]] std::vector<ZRMTestHttpRequest> requests() const;
    // "http://127.0.0.1:PORT" with the path, or https.
    [[nodiscard]] std::string url(const std::string& path) const;

  private:
    void acceptAll();
    void serve(int socket);
    bool serveOne(ZRMTestConnection& connection, std::string& buffered);

    Handler handler_;
    std::shared_ptr<SSL_CTX> tls_;
    ZRMLinuxDescriptor listener_;
    int port_ = 0;
    std::atomic<int> connections_ = 0;
    mutable std::mutex mutex_;
    std::vector<ZRMTestHttpRequest> requests_;
    std::vector<int> sockets_;
    std::vector<std::thread> threads_;
    std::thread acceptor_;
};

// A complete answer with a Content-Length.
std::string zrm_testHttpAnswer(int status, const std::string& body,
                               const std::string& headers = {});
