#include "ZRMPlatform/Linux/ZRMLinuxUrlErrors.h"

#include <cerrno>

#include <curl/curl.h>

namespace {

ZRMUrlErrorCode codeOfFailedConnection(long systemError) {
    switch (systemError) {
        case ENETUNREACH:
        case ENETDOWN:
            return ZRMUrlErrorNotConnectedToInternet;
        case ETIMEDOUT:
            return ZRMUrlErrorTimedOut;
        default:
            return ZRMUrlErrorCannotConnectToHost;
    }
}

const char* textOf(ZRMUrlErrorCode code) {
    switch (code) {
        case ZRMUrlErrorCancelled:
            return "The request was cancelled.";
        case ZRMUrlErrorBadUrl:
            return "The URL is malformed.";
        case ZRMUrlErrorTimedOut:
            return "The request timed out.";
        case ZRMUrlErrorUnsupportedUrl:
            return "The URL's scheme is not supported.";
        case ZRMUrlErrorCannotFindHost:
            return "The host name could not be resolved.";
        case ZRMUrlErrorCannotConnectToHost:
            return "The host could not be connected to.";
        case ZRMUrlErrorNetworkConnectionLost:
            return "The network connection was lost.";
        case ZRMUrlErrorHttpTooManyRedirects:
            return "There were too many redirects.";
        case ZRMUrlErrorNotConnectedToInternet:
            return "There is no connection to the Internet.";
        case ZRMUrlErrorBadServerResponse:
            return "The server's response is malformed.";
        case ZRMUrlErrorDataLengthExceedsMaximum:
            return "The response is too long.";
        case ZRMUrlErrorSecureConnectionFailed:
            return "A secure connection could not be made.";
        case ZRMUrlErrorServerCertificateUntrusted:
            return "The server's certificate is not trusted.";
        case ZRMUrlErrorUnknown:
            break;
    }
    return "The request failed.";
}

}  // namespace

ZRMUrlErrorCode zrm_urlErrorCode(const ZRMLinuxUrlFailure& failure) {
    switch (failure.curlCode) {
        case CURLE_URL_MALFORMAT:
            return ZRMUrlErrorBadUrl;
        case CURLE_UNSUPPORTED_PROTOCOL:
            // The request's own scheme was checked before, so that this is either a redirect to
            // another scheme or an answer that is no HTTP.
            return failure.isRedirect ? ZRMUrlErrorUnsupportedUrl : ZRMUrlErrorBadServerResponse;
        case CURLE_COULDNT_RESOLVE_HOST:
        case CURLE_COULDNT_RESOLVE_PROXY:
            return failure.isOnline() ? ZRMUrlErrorCannotFindHost
                                      : ZRMUrlErrorNotConnectedToInternet;
        case CURLE_COULDNT_CONNECT:
            return codeOfFailedConnection(failure.systemError);
        case CURLE_OPERATION_TIMEDOUT:
            return ZRMUrlErrorTimedOut;
        case CURLE_SEND_ERROR:
        case CURLE_RECV_ERROR:
        case CURLE_GOT_NOTHING:
        case CURLE_PARTIAL_FILE:
            return ZRMUrlErrorNetworkConnectionLost;
        case CURLE_TOO_MANY_REDIRECTS:
            return ZRMUrlErrorHttpTooManyRedirects;
        case CURLE_WEIRD_SERVER_REPLY:
        case CURLE_BAD_CONTENT_ENCODING:
        case CURLE_BAD_FUNCTION_ARGUMENT:  // a header line that libcurl cannot take
            return ZRMUrlErrorBadServerResponse;
        case CURLE_FILESIZE_EXCEEDED:
            return ZRMUrlErrorDataLengthExceedsMaximum;
        case CURLE_PEER_FAILED_VERIFICATION:
        case CURLE_SSL_ISSUER_ERROR:
            return ZRMUrlErrorServerCertificateUntrusted;
        case CURLE_SSL_CONNECT_ERROR:
        case CURLE_SSL_CERTPROBLEM:
        case CURLE_SSL_CIPHER:
        case CURLE_SSL_CACERT_BADFILE:
        case CURLE_SSL_ENGINE_INITFAILED:
        case CURLE_SSL_INVALIDCERTSTATUS:
            return ZRMUrlErrorSecureConnectionFailed;
        default:
            return ZRMUrlErrorUnknown;
    }
}

ZRMError zrm_urlError(ZRMUrlErrorCode code) {
    return ZRMError::withDescription(kZRMUrlErrorDomain, code, textOf(code));
}

ZRMError zrm_urlError(const ZRMLinuxUrlFailure& failure) {
    const auto code = zrm_urlErrorCode(failure);
    if (code != ZRMUrlErrorUnknown || failure.curlText.empty()) {
        return zrm_urlError(code);
    }
    return ZRMError::withDescription(kZRMUrlErrorDomain, code, failure.curlText);
}
