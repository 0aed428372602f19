// One HTTP exchange over a session of its own.
#pragma once

#include <functional>
#include <memory>
#include <optional>

#include "ZRMPlatform/Ports/Values/ZRMError.h"
#include "ZRMPlatform/Ports/Values/ZRMUrlRequest.h"

// The domain of transport failures and the codes within it that callers tell apart.
inline constexpr const char* kZRMUrlErrorDomain = "NSURLErrorDomain";

enum ZRMUrlErrorCode : int {
    ZRMUrlErrorUnknown = -1,
    ZRMUrlErrorCancelled = -999,
    ZRMUrlErrorBadUrl = -1000,
    ZRMUrlErrorTimedOut = -1001,
    ZRMUrlErrorUnsupportedUrl = -1002,
    ZRMUrlErrorCannotFindHost = -1003,
    ZRMUrlErrorCannotConnectToHost = -1004,
    ZRMUrlErrorNetworkConnectionLost = -1005,
    ZRMUrlErrorHttpTooManyRedirects = -1007,
    ZRMUrlErrorNotConnectedToInternet = -1009,
    ZRMUrlErrorBadServerResponse = -1011,
    ZRMUrlErrorDataLengthExceedsMaximum = -1103,
    ZRMUrlErrorSecureConnectionFailed = -1200,
    ZRMUrlErrorServerCertificateUntrusted = -1202,
};

struct ZRMUrlSessionConfiguration {
    ZRMUrlRequestCachePolicy cachePolicy = ZRMUrlRequestCachePolicy::UseProtocolCachePolicy;
    double requestTimeoutSeconds = 60;   // without any progress
    double resourceTimeoutSeconds = 60;  // for the whole exchange
};

// What an exchange came to. A response without an error is an answer, whatever its status. After an
// error `data` and `response` hold what had arrived.
struct ZRMUrlExchange {
    ZRMData data;
    std::optional<ZRMUrlResponse> response;
    std::optional<ZRMError> error;  // in kZRMUrlErrorDomain
};

// Serves one exchange. TLS is 1.2 or later and the server's certificate and name are checked.
class ZRMUrlSession {
  public:
    using Completion = std::function<void(ZRMUrlExchange)>;

    virtual ~ZRMUrlSession() = default;

    // Once. The completion is called exactly once, on a thread of the port's choosing, never before
    // this call returns. It may start other sessions and may drop this one.
    virtual void start(const ZRMUrlRequest& request, Completion completion) = 0;

    // Ends an exchange under way, or one started later, with ZRMUrlErrorCancelled; after an
    // exchange it only lets go of the session. From any thread, any number of times. Destruction
    // without it cancels as well.
    virtual void invalidateAndCancel() = 0;
};

class ZRMUrlSessionFactory {
  public:
    virtual ~ZRMUrlSessionFactory() = default;
    // From any thread; never absent.
    virtual std::shared_ptr<ZRMUrlSession> makeSession(
        const ZRMUrlSessionConfiguration& configuration) = 0;
};
