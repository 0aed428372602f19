#include "Benchmarks/Host/ZRMBareEvent.h"

#include <stdexcept>
#include <utility>
#include <vector>

#include <boost/json/object.hpp>
#include <boost/json/parse.hpp>
#include <boost/json/serialize.hpp>
#include <zlib.h>

namespace {

constexpr int kGzipWindowBits = 31;
constexpr int kMemoryLevel = 8;

std::size_t gzippedSize(const std::string& text) {
    z_stream stream{};
    if (deflateInit2(&stream, Z_DEFAULT_COMPRESSION, Z_DEFLATED, kGzipWindowBits, kMemoryLevel,
                     Z_DEFAULT_STRATEGY) != Z_OK) {
        throw std::runtime_error("no compressor");
    }
    std::vector<Bytef> output(deflateBound(&stream, text.size()));
    stream.next_in = const_cast<Bytef*>(reinterpret_cast<const Bytef*>(text.data()));
    stream.avail_in = static_cast<uInt>(text.size());
    stream.next_out = output.data();
    stream.avail_out = static_cast<uInt>(output.size());
    const bool isWhole = deflate(&stream, Z_FINISH) == Z_STREAM_END;
    const auto size = stream.total_out;
    deflateEnd(&stream);
    if (!isWhole) {
        throw std::runtime_error("the compressor stopped");
    }
    return size;
}

}  // namespace

ZRMBareEvent::ZRMBareEvent(std::string_view payload, std::string encodedPayload)
    : payload_(boost::json::parse({payload.data(), payload.size()})),
      encodedPayload_(std::move(encodedPayload)) {}

std::size_t ZRMBareEvent::make() const {
    const auto text = boost::json::serialize(payload_);
    const boost::json::object document{{"payload", encodedPayload_},
                                       {"signatures", boost::json::array()}};
    // The text of the event is made for its cost alone; its encoded form is the one that came in.
    return text.empty() ? 0 : gzippedSize(boost::json::serialize(document));
}
