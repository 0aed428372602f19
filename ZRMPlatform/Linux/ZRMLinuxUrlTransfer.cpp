#include "ZRMPlatform/Linux/ZRMLinuxUrlTransfer.h"

#include <algorithm>
#include <cmath>
#include <exception>

#include "ZRMPlatform/Linux/ZRMLinuxIpAddress.h"
#include "ZRMPlatform/Linux/ZRMLinuxUrlErrors.h"

namespace {

constexpr long kMaximumRedirects = 5;
constexpr double kUsualTimeoutSeconds = 60;
constexpr double kLongestTimeoutSeconds = 366.0 * 86400;

std::chrono::nanoseconds timeout(double seconds) {
    if (!(seconds > 0)) {
        seconds = kUsualTimeoutSeconds;
    }
    const std::chrono::duration<double> bounded(std::min(seconds, kLongestTimeoutSeconds));
    return std::chrono::duration_cast<std::chrono::nanoseconds>(bounded);
}

std::string_view trimmedField(std::string_view text) {
    constexpr std::string_view kBlanks = " \t\r\n";
    const auto first = text.find_first_not_of(kBlanks);
    if (first == std::string_view::npos) {
        return {};
    }
    return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

bool isRedirectStatus(int status) {
    return status >= 300 && status < 400;
}

// What libcurl reads as "send this header with this value", also when the value is empty.
std::string headerLine(const ZRMHttpHeaders::Field& field) {
    return field.second.empty() ? field.first + ";" : field.first + ": " + field.second;
}

}  // namespace

void ZRMLinuxUrlJob::end(ZRMUrlExchange exchange) {
    isEnded = true;
    if (!completion) {
        return;
    }
    auto result = std::make_shared<ZRMUrlExchange>(std::move(exchange));
    deliveryQueue->post([result, completion = std::exchange(completion, nullptr)] {
        completion(std::move(*result));
    });
}

ZRMLinuxUrlTransfer::ZRMLinuxUrlTransfer(std::shared_ptr<ZRMLinuxUrlJob> job, CURL* handle)
    : job_(std::move(job)), handle_(handle) {
    curl_easy_setopt(handle_, CURLOPT_NOSIGNAL, 1L);
    curl_easy_setopt(handle_, CURLOPT_ERRORBUFFER, curlText_.data());
    curl_easy_setopt(handle_, CURLOPT_HTTP_VERSION, static_cast<long>(CURL_HTTP_VERSION_1_1));
    curl_easy_setopt(handle_, CURLOPT_HEADERFUNCTION, &headCallback);
    curl_easy_setopt(handle_, CURLOPT_HEADERDATA, this);
    curl_easy_setopt(handle_, CURLOPT_WRITEFUNCTION, &bodyCallback);
    curl_easy_setopt(handle_, CURLOPT_WRITEDATA, this);
    curl_easy_setopt(handle_, CURLOPT_NOPROGRESS, 0L);
    curl_easy_setopt(handle_, CURLOPT_XFERINFOFUNCTION, &progressCallback);
    curl_easy_setopt(handle_, CURLOPT_XFERINFODATA, this);
    setUpRequest();
    setUpHeaders();
    setUpTrust();
}

void ZRMLinuxUrlTransfer::setUpRequest() {
    const auto& request = job_->request;
    curl_easy_setopt(handle_, CURLOPT_URL, request.url.c_str());
    curl_easy_setopt(handle_, CURLOPT_FOLLOWLOCATION, 1L);
    curl_easy_setopt(handle_, CURLOPT_MAXREDIRS, kMaximumRedirects);
    curl_easy_setopt(handle_, CURLOPT_PROTOCOLS_STR, "http,https");
    const bool isSecure = zrm_lowerHostName(request.url.substr(0, 6)) == "https:";
    curl_easy_setopt(handle_, CURLOPT_REDIR_PROTOCOLS_STR, isSecure ? "https" : "http,https");
    if (request.method == "HEAD") {
        curl_easy_setopt(handle_, CURLOPT_NOBODY, 1L);
    } else if (request.body || request.method == "POST") {
        curl_easy_setopt(handle_, CURLOPT_POST, 1L);
        const bool hasBytes = request.body && !request.body->empty();
        curl_easy_setopt(handle_, CURLOPT_POSTFIELDS,
                         hasBytes ? reinterpret_cast<const char*>(request.body->data()) : "");
        curl_easy_setopt(handle_, CURLOPT_POSTFIELDSIZE_LARGE,
                         static_cast<curl_off_t>(hasBytes ? request.body->size() : 0));
    }
    if (request.method != "HEAD" && request.method != "POST" &&
        (request.body || request.method != "GET")) {
        curl_easy_setopt(handle_, CURLOPT_CUSTOMREQUEST, request.method.c_str());
    }
    if (request.headers.find("Accept-Encoding") != nullptr) {
        curl_easy_setopt(handle_, CURLOPT_ACCEPT_ENCODING, "deflate, gzip");
    }
}

// A line without a value keeps libcurl from adding the header on its own. A length that is not the
// body's gives way to the one that libcurl states.
void ZRMLinuxUrlTransfer::setUpHeaders() {
    const auto append = [this](const std::string& line) {
        if (auto* const list = curl_slist_append(headers_.get(), line.c_str())) {
            static_cast<void>(headers_.release());
            headers_.reset(list);
        }
    };
    const auto& request = job_->request;
    const auto bodySize = std::to_string(request.body ? request.body->size() : 0);
    for (const auto& field : request.headers.fields()) {
        const bool isLength = zrm_lowerHostName(field.first) == "content-length";
        if (!isLength || (request.body && field.second == bodySize)) {
            append(headerLine(field));
        }
    }
    for (const char* name : {"Expect", "Accept", "Content-Type", "User-Agent"}) {
        if (request.headers.find(name) == nullptr) {
            append(std::string(name) + ":");
        }
    }
    curl_easy_setopt(handle_, CURLOPT_HTTPHEADER, headers_.get());
}

void ZRMLinuxUrlTransfer::setUpTrust() {
    curl_easy_setopt(handle_, CURLOPT_SSLVERSION, static_cast<long>(CURL_SSLVERSION_TLSv1_2));
    curl_easy_setopt(handle_, CURLOPT_SSL_VERIFYPEER, 1L);
    curl_easy_setopt(handle_, CURLOPT_SSL_VERIFYHOST, 2L);
    const auto& trust = *job_->trust;
    // Both, else what libcurl was built with stays trusted as well.
    const auto orNone = [](const std::string& text) {
        return text.empty() ? nullptr : text.c_str();
    };
    curl_easy_setopt(handle_, CURLOPT_CAINFO, orNone(trust.authorities.file));
    curl_easy_setopt(handle_, CURLOPT_CAPATH, orNone(trust.authorities.directory));
    if (trust.connectTo) {
        curl_easy_setopt(handle_, CURLOPT_CONNECT_TO, trust.connectTo.get());
    }
}

ZRMLinuxUrlTransfer::Clock::time_point ZRMLinuxUrlTransfer::deadline() const {
    return std::min(start_ + timeout(job_->configuration.resourceTimeoutSeconds),
                    lastProgress_ + timeout(job_->configuration.requestTimeoutSeconds));
}

std::size_t ZRMLinuxUrlTransfer::headCallback(char* bytes, std::size_t size, std::size_t count,
                                              void* self) {
    try {
        auto& transfer = *static_cast<ZRMLinuxUrlTransfer*>(self);
        return transfer.takeHeadLine({bytes, size * count}) ? size * count : 0;
    } catch (const std::exception&) {
        return 0;
    }
}

std::size_t ZRMLinuxUrlTransfer::bodyCallback(char* bytes, std::size_t size, std::size_t count,
                                              void* self) {
    try {
        auto& transfer = *static_cast<ZRMLinuxUrlTransfer*>(self);
        return transfer.takeBody({bytes, size * count}) ? size * count : CURL_WRITEFUNC_ERROR;
    } catch (const std::exception&) {
        return CURL_WRITEFUNC_ERROR;
    }
}

int ZRMLinuxUrlTransfer::progressCallback(void* self, curl_off_t, curl_off_t, curl_off_t,
                                          curl_off_t uploaded) {
    auto& transfer = *static_cast<ZRMLinuxUrlTransfer*>(self);
    if (uploaded != transfer.uploaded_) {
        transfer.uploaded_ = uploaded;
        transfer.lastProgress_ = Clock::now();
    }
    return 0;
}

// Lines of every response pass: interim ones, those of redirects, the last one, then its trailers,
// which are left out.
bool ZRMLinuxUrlTransfer::takeHeadLine(std::string_view line) {
    lastProgress_ = Clock::now();
    if (line.starts_with("HTTP/")) {
        head_ = {};
        lastName_.clear();
        headBytes_ = 0;
        isHeadOpen_ = true;
    }
    headBytes_ += line.size();
    if (headBytes_ > kMaximumHeadBytes) {
        refusal_ = ZRMUrlErrorBadServerResponse;
        return false;
    }
    if (!isHeadOpen_) {
        return true;
    }
    if (line.starts_with('\r') || line.starts_with('\n')) {
        isHeadOpen_ = false;
        long status = 0;
        curl_easy_getinfo(handle_, CURLINFO_RESPONSE_CODE, &status);
        head_.statusCode = static_cast<int>(status);
        if (status >= 200) {
            exchange_.response = head_;
        }
        return true;
    }
    if (!line.starts_with("HTTP/")) {
        takeField(line);
    }
    return true;
}

// A line that begins with a blank goes on with the value before it (RFC 9112, section 5.2).
void ZRMLinuxUrlTransfer::takeField(std::string_view line) {
    const auto append = [this](std::string_view separator, std::string_view more) {
        const auto* const earlier = head_.headers.find(lastName_);
        const bool isFirst = earlier == nullptr || (earlier->empty() && separator == " ");
        head_.headers.set(lastName_, isFirst
                                         ? std::string(more)
                                         : *earlier + std::string(separator) + std::string(more));
    };
    const bool isFolded = line.starts_with(' ') || line.starts_with('\t');
    const auto colon = line.find(':');
    if (isFolded) {
        const auto more = trimmedField(line);
        if (!lastName_.empty() && !more.empty()) {
            append(" ", more);
        }
    } else if (colon != std::string_view::npos) {
        lastName_ = trimmedField(line.substr(0, colon));
        append(", ", trimmedField(line.substr(colon + 1)));
    }
}

bool ZRMLinuxUrlTransfer::takeBody(std::string_view bytes) {
    lastProgress_ = Clock::now();
    if (bytes.size() > job_->request.maximumResponseBytes - exchange_.data.size()) {
        refusal_ = ZRMUrlErrorDataLengthExceedsMaximum;
        return false;
    }
    exchange_.data.insert(exchange_.data.end(), bytes.begin(), bytes.end());
    return true;
}

void ZRMLinuxUrlTransfer::endWithVerdict(CURLcode verdict) {
    // libcurl takes a connection that ends within a head, or after interim answers, for the end of
    // an answer.
    if (verdict == CURLE_OK && (isHeadOpen_ || !exchange_.response)) {
        endWithError(ZRMUrlErrorNetworkConnectionLost);
    } else if (verdict == CURLE_OK) {
        end(std::nullopt);
    } else {
        end(errorOf(verdict));
    }
}

void ZRMLinuxUrlTransfer::endWithError(ZRMUrlErrorCode code) {
    end(zrm_urlError(code));
}

ZRMError ZRMLinuxUrlTransfer::errorOf(CURLcode verdict) const {
    if (refusal_) {
        return zrm_urlError(*refusal_);
    }
    ZRMLinuxUrlFailure failure;
    failure.curlCode = verdict;
    curl_easy_getinfo(handle_, CURLINFO_OS_ERRNO, &failure.systemError);
    failure.isRedirect = exchange_.response && isRedirectStatus(exchange_.response->statusCode);
    failure.curlText = curlText_[0] != '\0' ? curlText_.data() : curl_easy_strerror(verdict);
    failure.isOnline = [this] {
        return job_->trust->routes->interfaceOfDefaultRoute().value_or(1) != 0;
    };
    return zrm_urlError(failure);
}

void ZRMLinuxUrlTransfer::end(std::optional<ZRMError> error) {
    exchange_.error = std::move(error);
    job_->end(std::move(exchange_));
}
