#include "Tools/zrm-risk-server/Tests/ZRMRawClient.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <utility>

#include <openssl/bio.h>
#include <openssl/ssl.h>
#include <sys/socket.h>
#include <sys/time.h>

ZRMRawClient::ZRMRawClient(std::uint16_t port, const std::string& authorityFile, int highestTls) {
    // OpenSSL takes leave of connections that the server may have ended already.
    std::signal(SIGPIPE, SIG_IGN);
    const auto place = "127.0.0.1:" + std::to_string(port);
    if (authorityFile.empty()) {
        bio_.reset(BIO_new_connect(place.c_str()), BIO_free_all);
    } else {
        context_.reset(SSL_CTX_new(TLS_client_method()), SSL_CTX_free);
        SSL_CTX_set_min_proto_version(context_.get(), TLS1_VERSION);
        SSL_CTX_set_max_proto_version(context_.get(), highestTls);
        SSL_CTX_set_security_level(context_.get(), highestTls == 0 ? 1 : 0);
        SSL_CTX_load_verify_file(context_.get(), authorityFile.c_str());
        SSL_CTX_set_verify(context_.get(), SSL_VERIFY_PEER, nullptr);
        bio_.reset(BIO_new_ssl_connect(context_.get()), BIO_free_all);
        BIO_set_conn_hostname(bio_.get(), place.c_str());
        SSL* ssl = nullptr;
        BIO_get_ssl(bio_.get(), &ssl);
        SSL_set1_host(ssl, "localhost");
    }
    connected_ = BIO_do_connect(bio_.get()) == 1;
    if (connected_) {
        // A test that goes wrong ends in a failure instead of waiting for ever.
        const timeval limit{10, 0};
        const int socket = static_cast<int>(BIO_get_fd(bio_.get(), nullptr));
        ::setsockopt(socket, SOL_SOCKET, SO_RCVTIMEO, &limit, sizeof limit);
    }
}

ZRMRawClient::~ZRMRawClient() = default;

void ZRMRawClient::send(const std::string& bytes) {
    BIO_write(bio_.get(), bytes.data(), static_cast<int>(bytes.size()));
}

bool ZRMRawClient::receive() {
    std::array<char, 4096> chunk{};
    errno = 0;
    const int count = BIO_read(bio_.get(), chunk.data(), static_cast<int>(chunk.size()));
    if (count <= 0) {
        reset_ = errno == ECONNRESET;
        return false;
    }
    received_.append(chunk.data(), static_cast<std::size_t>(count));
    return true;
}

std::string ZRMRawClient::readAnswer() {
    std::size_t end = std::string::npos;
    while ((end = received_.find("\r\n\r\n")) == std::string::npos) {
        if (!receive()) {
            return std::exchange(received_, {});
        }
    }
    const auto field = received_.find("Content-Length: ");
    std::size_t length = end + 4;
    if (field < end) {
        length += std::stoul(received_.substr(field + 16));
    }
    while (received_.size() < length && receive()) {
    }
    auto answer = received_.substr(0, length);
    received_.erase(0, length);
    return answer;
}

std::string ZRMRawClient::readToEnd() {
    while (receive()) {
    }
    return std::exchange(received_, {});
}
