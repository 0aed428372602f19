#include "Tools/zrm-risk-server/ZRMUpload.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cstdint>
#include <memory>

#include <boost/json/parse.hpp>
#include <zlib.h>

namespace {

constexpr std::size_t kLargestDocument = 16UL * 1024 * 1024;
constexpr int kGzipOnlyWindowBits = 31;

void checkHeaders(const ZRMServerRequest& request) {
    const auto expect = [&request](std::string_view name, std::string_view value) {
        const auto found = request.header(name);
        if (!found || !zrm_equalIgnoringCase(*found, value)) {
            throw ZRMMalformedUpload("header " + std::string(name) + " is not " +
                                     std::string(value));
        }
    };
    expect("Content-Type", "application/jose+json");
    expect("Content-Encoding", "gzip");
    const auto sent = request.header("Request-Send-Timestamp");
    const auto isDigit = [](char letter) { return letter >= '0' && letter <= '9'; };
    if (!sent || sent->empty() || !std::all_of(sent->begin(), sent->end(), isDigit)) {
        throw ZRMMalformedUpload("header Request-Send-Timestamp is not a decimal number");
    }
    if (!request.header("Mobile-UUID")) {
        throw ZRMMalformedUpload("header Mobile-UUID is missing");
    }
}

boost::json::object parseObject(std::string_view text, const std::string& what) {
    boost::system::error_code failure;
    auto value = boost::json::parse(text, failure);
    if (failure) {
        throw ZRMMalformedUpload(what + " is not JSON: " + failure.message());
    }
    if (!value.is_object()) {
        throw ZRMMalformedUpload(what + " is not a JSON object");
    }
    return std::move(value.as_object());
}

// The payload text of an unsigned JWS object.
std::string_view unsignedPayload(const boost::json::object& jws) {
    const auto* payload = jws.if_contains("payload");
    if (payload == nullptr || !payload->is_string()) {
        throw ZRMMalformedUpload("the JWS object has no payload text");
    }
    const auto* signatures = jws.if_contains("signatures");
    if (signatures == nullptr || !signatures->is_array()) {
        throw ZRMMalformedUpload("the JWS object has no signatures array");
    }
    if (!signatures->as_array().empty()) {
        throw ZRMMalformedUpload("the JWS object of an event carries signatures");
    }
    return payload->as_string();
}

ZRMUpload onlyEvent(boost::json::object payload) {
    const auto* array = payload.if_contains("array");
    if (array == nullptr || !array->is_array()) {
        throw ZRMMalformedUpload("the payload has no array");
    }
    if (payload.size() != 1 || array->as_array().size() != 1) {
        throw ZRMMalformedUpload("the payload does not hold exactly one event");
    }
    const auto& event = array->as_array().front();
    if (!event.is_object() || event.as_object().size() != 1) {
        throw ZRMMalformedUpload("the event is not an object with one member");
    }
    const auto& member = *event.as_object().begin();
    if (member.key().empty() || !member.value().is_object()) {
        throw ZRMMalformedUpload("the event's member is not a named object");
    }
    return {std::string(member.key()), event.as_object()};
}

constexpr std::array<std::int16_t, 256> makeBase64UrlValues() {
    constexpr std::string_view alphabet =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-_";
    std::array<std::int16_t, 256> values{};
    values.fill(-1);
    for (std::size_t i = 0; i < alphabet.size(); ++i) {
        values[static_cast<unsigned char>(alphabet[i])] = static_cast<std::int16_t>(i);
    }
    return values;
}

constexpr auto kBase64UrlValues = makeBase64UrlValues();

}  // namespace

std::string zrm_decodeBase64Url(std::string_view text) {
    const auto stray = text.size() % 4;
    if (stray == 1) {
        throw ZRMMalformedUpload("the payload is cut base64url");
    }
    std::string bytes((text.size() / 4 + 1) * 3, '\0');
    char* out = bytes.data();
    int signs = 0;  // negative once a letter was none of the alphabet's
    const auto valueOf = [&signs](char letter) {
        const int value = kBase64UrlValues[static_cast<unsigned char>(letter)];
        signs |= value;
        return static_cast<unsigned>(value);
    };
    // Three bytes of which the last ones may be of letters that are not there.
    const auto write = [&out](unsigned held) {
        *out++ = static_cast<char>((held >> 16U) & 0xFFU);
        *out++ = static_cast<char>((held >> 8U) & 0xFFU);
        *out++ = static_cast<char>(held & 0xFFU);
    };
    const auto* letter = text.data();
    for (const auto* const end = letter + text.size() - stray; letter != end; letter += 4) {
        write(valueOf(letter[0]) << 18U | valueOf(letter[1]) << 12U | valueOf(letter[2]) << 6U |
              valueOf(letter[3]));
    }
    unsigned held = 0;
    if (stray != 0) {
        held = valueOf(letter[0]) << 18U | valueOf(letter[1]) << 12U |
               (stray == 3 ? valueOf(letter[2]) << 6U : 0);
        write(held);
    }
    if (signs < 0) {
        throw ZRMMalformedUpload("the payload is not base64url");
    }
    bytes.resize(text.size() * 3 / 4);
    if ((held & (stray == 3 ? 0xFFU : 0xFFFFU)) != 0) {
        throw ZRMMalformedUpload("the payload's base64url ends in stray bits");
    }
    return bytes;
}

std::string zrm_inflateGzip(std::string_view bytes, std::size_t limit) {
    z_stream stream{};
    if (inflateInit2(&stream, kGzipOnlyWindowBits) != Z_OK) {
        throw ZRMMalformedUpload("the body could not be decompressed");
    }
    const std::unique_ptr<z_stream, int (*)(z_stream*)> ending(&stream, inflateEnd);
    // zlib reads through this pointer only; its type predates const.
    stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(bytes.data()));
    stream.avail_in = static_cast<uInt>(bytes.size());
    std::string content;
    std::array<char, 16384> chunk;
    int status = Z_OK;
    while (status == Z_OK) {
        stream.next_out = reinterpret_cast<Bytef*>(chunk.data());
        stream.avail_out = static_cast<uInt>(chunk.size());
        status = inflate(&stream, Z_NO_FLUSH);
        const std::size_t produced = chunk.size() - stream.avail_out;
        if (produced > limit - content.size()) {
            throw ZRMMalformedUpload("the body decompresses to more than is allowed");
        }
        content.append(chunk.data(), produced);
    }
    if (status != Z_STREAM_END) {
        throw ZRMMalformedUpload("the body is not whole gzip data");
    }
    if (stream.avail_in != 0) {
        throw ZRMMalformedUpload("the body goes on after its gzip data");
    }
    return content;
}

ZRMUpload zrm_readUpload(const ZRMServerRequest& request) {
    checkHeaders(request);
    const auto document = zrm_inflateGzip(request.body, kLargestDocument);
    const auto jws = parseObject(document, "the decompressed body");
    const auto payload = zrm_decodeBase64Url(unsignedPayload(jws));
    return onlyEvent(parseObject(payload, "the payload"));
}
