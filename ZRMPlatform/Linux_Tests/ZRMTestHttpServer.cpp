#include "ZRMPlatform/Linux_Tests/ZRMTestHttpServer.h"

#include <array>
#include <cstdlib>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <openssl/ssl.h>
#include <poll.h>
#include <signal.h>
#include <sys/socket.h>
#include <unistd.h>

namespace {

std::shared_ptr<SSL_CTX> makeTlsContext(const ZRMTestHttpServer::Tls& tls) {
    std::shared_ptr<SSL_CTX> context(SSL_CTX_new(TLS_server_method()), &SSL_CTX_free);
    SSL_CTX_use_certificate(context.get(), tls.identity.certificate.get());
    SSL_CTX_use_PrivateKey(context.get(), tls.identity.key.get());
    if (tls.isOnlyVersion11) {
        SSL_CTX_set_security_level(context.get(), 0);
        SSL_CTX_set_min_proto_version(context.get(), TLS1_1_VERSION);
        SSL_CTX_set_max_proto_version(context.get(), TLS1_1_VERSION);
    }
    return context;
}

std::size_t contentLength(const std::string& head) {
    constexpr std::string_view kName = "\r\nContent-Length: ";
    const auto found = head.find(kName);
    return found == std::string::npos ? 0 : std::stoul(head.substr(found + kName.size()));
}

}  // namespace

ZRMTestConnection::ZRMTestConnection(int socket, SSL_CTX* tls) : socket_(socket) {
    if (tls != nullptr) {
        tls_ = SSL_new(tls);
        SSL_set_fd(tls_, socket_);
        isOpen_ = SSL_accept(tls_) == 1;
    }
}

ZRMTestConnection::~ZRMTestConnection() {
    if (tls_ != nullptr) {
        if (isOpen_) {
            SSL_shutdown(tls_);
        }
        SSL_free(tls_);
    }
}

bool ZRMTestConnection::write(std::string_view bytes) {
    while (isOpen_ && !bytes.empty()) {
        const auto count = tls_ != nullptr
                               ? SSL_write(tls_, bytes.data(), static_cast<int>(bytes.size()))
                               : ::send(socket_, bytes.data(), bytes.size(), MSG_NOSIGNAL);
        isOpen_ = count > 0;
        bytes.remove_prefix(isOpen_ ? static_cast<std::size_t>(count) : 0);
    }
    return isOpen_;
}

std::string ZRMTestConnection::read() {
    std::array<char, 65536> chunk{};
    const auto count = tls_ != nullptr
                           ? SSL_read(tls_, chunk.data(), static_cast<int>(chunk.size()))
                           : ::recv(socket_, chunk.data(), chunk.size(), 0);
    if (count <= 0) {
        isOpen_ = false;
        return {};
    }
    return {chunk.data(), static_cast<std::size_t>(count)};
}

void ZRMTestConnection::waitForClose() {
    while (!read().empty()) {
    }
}

bool ZRMTestConnection::closesWithin(int milliseconds) {
    pollfd waiting{socket_, POLLIN, 0};
    if (::poll(&waiting, 1, milliseconds) == 0) {
        return false;
    }
    return read().empty();
}

void ZRMTestConnection::reset() {
    const linger abrupt{1, 0};
    ::setsockopt(socket_, SOL_SOCKET, SO_LINGER, &abrupt, sizeof abrupt);
    isOpen_ = false;
}

std::string ZRMTestHttpRequest::path() const {
    const auto start = head.find(' ') + 1;
    return head.substr(start, head.find(' ', start) - start);
}

std::vector<std::string> ZRMTestHttpRequest::headerLines() const {
    std::vector<std::string> lines;
    auto start = head.find("\r\n") + 2;
    for (auto end = head.find("\r\n", start); end != start; end = head.find("\r\n", start)) {
        lines.push_back(head.substr(start, end - start));
        start = end + 2;
    }
    return lines;
}

ZRMTestHttpServer::ZRMTestHttpServer(Handler handler, const std::optional<Tls>& tls)
    : handler_(std::move(handler)),
      tls_(tls ? makeTlsContext(*tls) : nullptr),
      listener_(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t length = sizeof address;
    if (::bind(listener_.number(), reinterpret_cast<const sockaddr*>(&address), length) != 0 ||
        ::listen(listener_.number(), 64) != 0 ||
        ::getsockname(listener_.number(), reinterpret_cast<sockaddr*>(&address), &length) != 0) {
        std::abort();
    }
    port_ = ntohs(address.sin_port);
    acceptor_ = std::thread([this] { acceptAll(); });
}

ZRMTestHttpServer::~ZRMTestHttpServer() {
    ::shutdown(listener_.number(), SHUT_RDWR);
    acceptor_.join();
    std::vector<std::thread> threads;
    {
        const std::lock_guard lock(mutex_);
        for (const int socket : sockets_) {
            ::shutdown(socket, SHUT_RDWR);
        }
        threads.swap(threads_);
    }
    for (auto& thread : threads) {
        thread.join();
    }
}

std::vector<ZRMTestHttpRequest> ZRMTestHttpServer::requests() const {
    const std::lock_guard lock(mutex_);
    return requests_;
}

std::string ZRMTestHttpServer::url(const std::string& path) const {
    return (tls_ ? "https" : "http") + std::string("://127.0.0.1:") + std::to_string(port_) + path;
}

void ZRMTestHttpServer::acceptAll() {
    for (;;) {
        const int socket = ::accept4(listener_.number(), nullptr, nullptr, SOCK_CLOEXEC);
        if (socket < 0) {
            return;
        }
        ++connections_;
        const std::lock_guard lock(mutex_);
        sockets_.push_back(socket);
        threads_.emplace_back([this, socket] { serve(socket); });
    }
}

void ZRMTestHttpServer::serve(int socket) {
    sigset_t pipe;  // OpenSSL writes to sockets whose peer may have gone
    sigemptyset(&pipe);
    sigaddset(&pipe, SIGPIPE);
    pthread_sigmask(SIG_BLOCK, &pipe, nullptr);
    {
        ZRMTestConnection connection(socket, tls_.get());
        std::string buffered;
        while (connection.isOpen() && serveOne(connection, buffered)) {
        }
    }
    const std::lock_guard lock(mutex_);
    std::erase(sockets_, socket);
    ::close(socket);
}

bool ZRMTestHttpServer::serveOne(ZRMTestConnection& connection, std::string& buffered) {
    std::size_t headEnd = 0;
    while ((headEnd = buffered.find("\r\n\r\n")) == std::string::npos) {
        const auto more = connection.read();
        if (more.empty()) {
            return false;
        }
        buffered += more;
    }
    ZRMTestHttpRequest request;
    request.head = buffered.substr(0, headEnd + 4);
    buffered.erase(0, headEnd + 4);
    const auto length = contentLength(request.head);
    while (buffered.size() < length) {
        const auto more = connection.read();
        if (more.empty()) {
            return false;
        }
        buffered += more;
    }
    request.body = buffered.substr(0, length);
    buffered.erase(0, length);
    {
        const std::lock_guard lock(mutex_);
        requests_.push_back(request);
    }
    return handler_(request, connection);
}

std::string zrm_testHttpAnswer(int status, const std::string& body, const std::string& headers) {
    return "HTTP/1.1 " + std::to_string(status) + " Some Reason\r\n" + headers +
           "Content-Length: " + std::to_string(body.size()) + "\r\n\r\n" + body;
}
