#include "Tools/zrm-risk-server/ZRMHttpServer.h"

#include <csignal>
#include <ctime>
#include <list>
#include <stdexcept>
#include <thread>
#include <vector>

#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/ip/v6_only.hpp>
#include <boost/asio/signal_set.hpp>
#include <boost/asio/strand.hpp>

#include "Tools/zrm-risk-server/ZRMHttpConnection.h"

namespace {

namespace asio = boost::asio;
namespace beast = boost::beast;
using asio::ip::tcp;

constexpr std::chrono::seconds kStoppingLimit{2};
constexpr std::chrono::milliseconds kPauseAfterFailedAccept{50};

tcp::endpoint resolve(asio::io_context& context, const std::string& host, std::uint16_t port) {
    boost::system::error_code failure;
    const auto found = tcp::resolver(context).resolve(host, std::to_string(port), failure);
    if (failure || found.empty()) {
        throw std::runtime_error("cannot resolve " + host + ": " + failure.message());
    }
    return found.begin()->endpoint();
}

asio::ssl::context makeTlsContext(const ZRMHttpServerOptions& options) {
    asio::ssl::context context(asio::ssl::context::tls_server);
    SSL_CTX_set_min_proto_version(context.native_handle(), TLS1_2_VERSION);
    if (!options.certificateFile.empty()) {
        context.use_certificate_chain_file(options.certificateFile);
        context.use_private_key_file(options.keyFile, asio::ssl::context::pem);
    }
    return context;
}

}  // namespace

std::string zrm_httpDateNow() {
    const auto now = std::time(nullptr);
    std::tm parts{};
    gmtime_r(&now, &parts);
    std::array<char, 64> text{};
    // No locale is set in this program, so the names of days and months are the English ones.
    const auto length =
        std::strftime(text.data(), text.size(), "%a, %d %b %Y %H:%M:%S GMT", &parts);
    return {text.data(), length};
}

class ZRMHttpServer::Impl {
  public:
    Impl(const ZRMHttpServerOptions& options, std::shared_ptr<ZRMRequestHandler> handler)
        : options_(options),
          handler_(std::move(handler)),
          context_(static_cast<int>(options.threads)),
          tlsContext_(makeTlsContext(options)),
          acceptor_(asio::make_strand(context_)),
          pause_(acceptor_.get_executor()),
          deadline_(std::make_shared<asio::steady_timer>(acceptor_.get_executor())),
          token_(makeToken()),
          signals_(acceptor_.get_executor()) {
        const auto endpoint = resolve(context_, options.host, options.port);
        acceptor_.open(endpoint.protocol());
        acceptor_.set_option(asio::socket_base::reuse_address(true));
        acceptor_.bind(endpoint);
        acceptor_.listen();
        port_ = acceptor_.local_endpoint().port();
        asio::post(acceptor_.get_executor(), [this] { accept(); });
    }

    [[nodiscard]] std::uint16_t port() const { return port_; }

    void run() {
        std::vector<std::jthread> helpers;
        for (unsigned i = 1; i < options_.threads; ++i) {
            helpers.emplace_back([this] { context_.run(); });
        }
        context_.run();
    }

    void stop() {
        asio::post(acceptor_.get_executor(), [this] { stopOnStrand(); });
    }

    void stopOnSignals() {
        signals_.add(SIGINT);
        signals_.add(SIGTERM);
        signals_.async_wait([this](boost::system::error_code failure, int) {
            if (!failure) {
                stopOnStrand();
            }
        });
    }

  private:
    void accept() {
        acceptor_.async_accept(asio::make_strand(context_),
                               [this](boost::system::error_code failure, tcp::socket socket) {
                                   onAccepted(failure, std::move(socket));
                               });
    }

    void onAccepted(boost::system::error_code failure, tcp::socket socket) {
        if (stopping_) {
            return;
        }
        if (failure) {
            // Out of descriptors, as a rule: some will be free again soon.
            pause_.expires_after(kPauseAfterFailedAccept);
            pause_.async_wait([this](boost::system::error_code aborted) {
                if (!aborted && !stopping_) {
                    accept();
                }
            });
            return;
        }
        boost::system::error_code ignored;
        socket.set_option(tcp::no_delay(true), ignored);
        auto connection = makeConnection(std::move(socket));
        connections_.remove_if([](const auto& known) { return known.expired(); });
        connections_.push_back(connection);
        connection->start();
        accept();
    }

    std::shared_ptr<ZRMLiveConnection> makeConnection(tcp::socket socket) {
        const ZRMHttpLimits limits{options_.largestHeaderBytes, options_.largestBodyBytes};
        beast::tcp_stream stream(std::move(socket));
        if (options_.certificateFile.empty()) {
            return std::make_shared<ZRMHttpConnection<beast::tcp_stream>>(std::move(stream),
                                                                          handler_, limits, token_);
        }
        using TlsStream = beast::ssl_stream<beast::tcp_stream>;
        return std::make_shared<ZRMHttpConnection<TlsStream>>(
            TlsStream(std::move(stream), tlsContext_), handler_, limits, token_);
    }

    void stopOnStrand() {
        if (stopping_) {
            return;
        }
        stopping_ = true;
        boost::system::error_code ignored;
        acceptor_.close(ignored);
        pause_.cancel();
        signals_.cancel(ignored);
        for (const auto& known : connections_) {
            if (const auto connection = known.lock()) {
                connection->finishSoon();
            }
        }
        deadline_->expires_after(kStoppingLimit);
        deadline_->async_wait([this](boost::system::error_code aborted) {
            if (!aborted) {
                context_.stop();
            }
        });
        token_.reset();
    }

    // Shared by all connections and this object: ends the deadline once the last of them is gone.
    [[nodiscard]] std::shared_ptr<void> makeToken() const {
        return {nullptr, [watched = std::weak_ptr(deadline_)](void*) {
                    if (const auto deadline = watched.lock()) {
                        asio::post(deadline->get_executor(), [deadline] { deadline->cancel(); });
                    }
                }};
    }

    const ZRMHttpServerOptions options_;
    const std::shared_ptr<ZRMRequestHandler> handler_;
    asio::io_context context_;
    asio::ssl::context tlsContext_;
    tcp::acceptor acceptor_;
    asio::steady_timer pause_;
    const std::shared_ptr<asio::steady_timer> deadline_;  // of stopping
    std::shared_ptr<void> token_;
    asio::signal_set signals_;
    std::list<std::weak_ptr<ZRMLiveConnection>> connections_;
    std::uint16_t port_ = 0;
    bool stopping_ = false;
};

ZRMHttpServer::ZRMHttpServer(const ZRMHttpServerOptions& options,
                             std::shared_ptr<ZRMRequestHandler> handler)
    : impl_(std::make_unique<Impl>(options, std::move(handler))) {}

ZRMHttpServer::~ZRMHttpServer() = default;

std::uint16_t ZRMHttpServer::port() const {
    return impl_->port();
}

void ZRMHttpServer::run() {
    impl_->run();
}

void ZRMHttpServer::stop() {
    impl_->stop();
}

void ZRMHttpServer::stopOnSignals() {
    impl_->stopOnSignals();
}
