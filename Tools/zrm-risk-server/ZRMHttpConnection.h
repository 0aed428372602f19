// One connection of the server. Included by ZRMHttpServer.cpp alone, since Beast is slow to
// compile.
#pragma once

#include <array>
#include <chrono>
#include <memory>
#include <optional>
#include <string_view>
#include <type_traits>

#include <boost/asio/post.hpp>
#include <boost/asio/ssl/stream.hpp>
#include <boost/asio/steady_timer.hpp>
#include <boost/asio/write.hpp>
#include <boost/beast/core.hpp>
#include <boost/beast/http.hpp>
#include <boost/beast/ssl.hpp>

#include "Tools/zrm-risk-server/ZRMServerMessages.h"

struct ZRMHttpLimits {
    std::size_t headerBytes;
    std::size_t bodyBytes;
};

// The value of a Date header for now.
std::string zrm_httpDateNow();

// What the server knows of a connection, whatever it runs over.
class ZRMLiveConnection {
  public:
    virtual ~ZRMLiveConnection() = default;
    virtual void start() = 0;
    // Closes an idle connection at once and any other after its answer.
    virtual void finishSoon() = 0;
};

// Stream is boost::beast::tcp_stream or a TLS stream over one. All work happens on the socket's
// strand; the operations under way keep the object alive.
template <class Stream>
class ZRMHttpConnection : public ZRMLiveConnection,
                          public std::enable_shared_from_this<ZRMHttpConnection<Stream>> {
    using Self = ZRMHttpConnection;
    using Error = boost::system::error_code;
    static constexpr bool kIsTls = !std::is_same_v<Stream, boost::beast::tcp_stream>;
    static constexpr std::chrono::seconds kIdleLimit{60};
    static constexpr std::chrono::seconds kHandshakeLimit{10};
    static constexpr std::chrono::seconds kClosingLimit{2};
    static constexpr std::string_view kGarbage = "garbage, not HTTP\r\n\r\n";
    static constexpr std::string_view kContinue = "HTTP/1.1 100 Continue\r\n\r\n";

  public:
    // The token lives as long as the connection does.
    ZRMHttpConnection(Stream stream, std::shared_ptr<ZRMRequestHandler> handler,
                      ZRMHttpLimits limits, std::shared_ptr<void> token)
        : token_(std::move(token)),
          stream_(std::move(stream)),
          delay_(stream_.get_executor()),
          handler_(std::move(handler)),
          limits_(limits) {}

    void start() override {
        boost::asio::post(stream_.get_executor(), [self = this->shared_from_this()] {
            if constexpr (kIsTls) {
                self->tcp().expires_after(kHandshakeLimit);
                self->stream_.async_handshake(boost::asio::ssl::stream_base::server,
                                              [self](Error failure) {
                                                  if (!failure) {
                                                      self->readHeader();
                                                  }
                                              });
            } else {
                self->readHeader();
            }
        });
    }

    void finishSoon() override {
        boost::asio::post(stream_.get_executor(), [self = this->shared_from_this()] {
            self->finishing_ = true;
            if (self->waitsForRequest()) {
                self->tcp().cancel();
            }
        });
    }

  private:
    [[nodiscard]] bool waitsForRequest() const {
        return readsHeader_ && !parser_->got_some() && buffer_.size() == 0;
    }

    boost::beast::tcp_stream& tcp() { return boost::beast::get_lowest_layer(stream_); }

    auto then(void (Self::*next)(Error, std::size_t)) {
        return [self = this->shared_from_this(), next](Error failure, std::size_t count) {
            ((*self).*next)(failure, count);
        };
    }

    void readHeader() {
        if (finishing_) {
            return close();
        }
        parser_.emplace();
        parser_->header_limit(static_cast<std::uint32_t>(limits_.headerBytes));
        parser_->body_limit(limits_.bodyBytes);
        readsHeader_ = true;
        tcp().expires_after(kIdleLimit);
        boost::beast::http::async_read_header(stream_, buffer_, *parser_, then(&Self::onHeader));
    }

    void onHeader(Error failure, std::size_t) {
        readsHeader_ = false;
        if (failure) {
            return onBadRead(failure);
        }
        const auto expectation = parser_->get()[boost::beast::http::field::expect];
        if (!zrm_equalIgnoringCase({expectation.data(), expectation.size()}, "100-continue")) {
            return readBody({}, 0);
        }
        boost::asio::async_write(stream_, boost::asio::buffer(kContinue), then(&Self::readBody));
    }

    void readBody(Error failure, std::size_t) {
        if (!failure) {
            boost::beast::http::async_read(stream_, buffer_, *parser_, then(&Self::onRequest));
        }
    }

    void onRequest(Error failure, std::size_t) {
        if (failure) {
            return onBadRead(failure);
        }
        auto message = parser_->release();
        ZRMServerRequest request;
        request.method = std::string(message.method_string());
        request.target = std::string(message.target());
        for (const auto& field : message) {
            request.headers.emplace_back(field.name_string(), field.value());
        }
        request.body = std::move(message.body());
        keepsAlive_ = message.keep_alive();
        version_ = message.version();
        wantsNoBody_ = message.method() == boost::beast::http::verb::head;
        reply_ = handler_->handle(request);
        if (reply_.delay.count() == 0) {
            return carryOut();
        }
        tcp().expires_never();
        delay_.expires_after(reply_.delay);
        delay_.async_wait([self = this->shared_from_this()](Error) { self->carryOut(); });
    }

    void onBadRead(Error failure) {
        using HttpError = boost::beast::http::error;
        if (failure == HttpError::end_of_stream) {
            return close();
        }
        if (failure == boost::asio::error::operation_aborted && finishing_) {
            return close();
        }
        // Beast tells its parser's errors by the category of any of them.
        if (failure.category() != make_error_code(HttpError::bad_method).category() ||
            failure == HttpError::partial_message) {
            return;
        }
        reply_ = {};
        reply_.answer.status = failure == HttpError::body_limit     ? 413
                               : failure == HttpError::header_limit ? 431
                                                                    : 400;
        reply_.answer.body = R"({"error":")" + failure.message() + R"("})";
        keepsAlive_ = false;
        carryOut();
    }

    void carryOut() {
        tcp().expires_after(kIdleLimit);
        switch (reply_.manner) {
            case ZRMServerReply::Manner::Answer:
                return write();
            case ZRMServerReply::Manner::Close:
                return close();
            case ZRMServerReply::Manner::Reset:
                return reset();
            case ZRMServerReply::Manner::Garbage:
                keepsAlive_ = false;
                boost::asio::async_write(stream_, boost::asio::buffer(kGarbage),
                                         then(&Self::onWritten));
        }
    }

    void write() {
        keepsAlive_ = keepsAlive_ && !finishing_;
        response_ = {};
        response_.version(version_);
        response_.result(static_cast<unsigned>(reply_.answer.status));
        response_.set(boost::beast::http::field::date, zrm_httpDateNow());
        response_.set(boost::beast::http::field::server, "zrm-risk-server");
        response_.set(boost::beast::http::field::content_type, reply_.answer.contentType);
        response_.keep_alive(keepsAlive_);
        const bool hasBody = reply_.answer.status != 204 && reply_.answer.status != 304;
        response_.body() = hasBody ? std::move(reply_.answer.body) : std::string();
        if (hasBody) {
            response_.prepare_payload();
        }
        if (wantsNoBody_) {
            response_.body().clear();
        }
        boost::beast::http::async_write(stream_, response_, then(&Self::onWritten));
    }

    void onWritten(Error failure, std::size_t) {
        if (failure) {
            return;
        }
        if (keepsAlive_) {
            readHeader();
        } else {
            close();
        }
    }

    void reset() {
        Error ignored;
        tcp().socket().set_option(boost::asio::socket_base::linger(true, 0), ignored);
        tcp().close();
    }

    // Takes leave in order: what was written reaches the client even where it still sends.
    void close() {
        tcp().expires_after(kClosingLimit);
        if constexpr (kIsTls) {
            if (!finishing_) {
                return stream_.async_shutdown(
                    [self = this->shared_from_this()](Error) { self->lingerUntilClientCloses(); });
            }
        }
        lingerUntilClientCloses();
    }

    void lingerUntilClientCloses() {
        Error ignored;
        tcp().socket().shutdown(boost::asio::ip::tcp::socket::shutdown_send, ignored);
        tcp().expires_after(kClosingLimit);
        discard({}, 0);
    }

    void discard(Error failure, std::size_t) {
        if (!failure && !finishing_) {
            tcp().async_read_some(boost::asio::buffer(discarded_), then(&Self::discard));
        }
    }

    const std::shared_ptr<void> token_;
    Stream stream_;
    boost::asio::steady_timer delay_;
    const std::shared_ptr<ZRMRequestHandler> handler_;
    const ZRMHttpLimits limits_;
    boost::beast::flat_buffer buffer_;
    std::optional<boost::beast::http::request_parser<boost::beast::http::string_body>> parser_;
    boost::beast::http::response<boost::beast::http::string_body> response_;
    ZRMServerReply reply_;
    std::array<char, 4096> discarded_{};
    unsigned version_ = 11;
    bool readsHeader_ = false;
    bool keepsAlive_ = true;
    bool wantsNoBody_ = false;
    bool finishing_ = false;
};
