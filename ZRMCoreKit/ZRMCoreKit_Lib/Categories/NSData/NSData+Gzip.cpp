#include <array>
#include <limits>
#include <memory>
#include <mutex>
#include <utility>

#include <zlib.h>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Categories/NSData/NSData+ZRMCoreKit.h"

namespace {

constexpr const char* kZlibVersion = "1.2.11";
constexpr int kGzipWindowBits = 31;       // 32 KB window, gzip header and trailer
constexpr int kAnyHeaderWindowBits = 47;  // 32 KB window, gzip or zlib header
constexpr int kMemoryLevel = 8;
constexpr std::size_t kGzipGrowth = 16384;

bool fitsZlib(std::span<const std::uint8_t> data) {
    return data.size() <= std::numeric_limits<uInt>::max();
}

void setInput(z_stream& stream, std::span<const std::uint8_t> data) {
    stream.next_in = const_cast<Bytef*>(data.data());  // zlib only reads it
    stream.avail_in = static_cast<uInt>(data.size());
}

// Points the output at what of the buffer is not written yet.
void setOutput(z_stream& stream, ZRMData& buffer) {
    const auto room = buffer.size() - stream.total_out;
    stream.next_out = buffer.data() + stream.total_out;
    stream.avail_out =
        static_cast<uInt>(std::min<std::size_t>(room, std::numeric_limits<uInt>::max()));
}

// A few compressors are kept between uses, so that not every event takes a quarter of a mebibyte
// and gives it back: one, and a second once two threads compress at the same time. A thread prefers
// the place of the one that it used last, whose tables its processor may still hold. They are never
// destroyed, as a thread may compress while the process exits.
class Compressor {
  public:
    // Absent when there is none to be had.
    static std::unique_ptr<Compressor> take() {
        {
            const std::lock_guard lock(idleMutex());
            for (std::size_t tried = 0; tried < kPlaces; ++tried) {
                if (auto*& kept = idle()[preferredPlace ^ tried]; kept != nullptr) {
                    return std::unique_ptr<Compressor>(std::exchange(kept, nullptr));
                }
            }
        }
        auto made = std::unique_ptr<Compressor>(new Compressor);
        return made->isReady_ ? std::move(made) : nullptr;
    }

    static void giveBack(std::unique_ptr<Compressor> compressor) {
        const bool isFit = deflateReset(&compressor->stream_) == Z_OK;
        const std::lock_guard lock(idleMutex());
        for (std::size_t tried = 0; isFit && tried < kPlaces; ++tried) {
            const auto place = preferredPlace ^ tried;
            if (idle()[place] == nullptr) {
                idle()[place] = compressor.release();
                preferredPlace = place;
                return;
            }
        }
    }

    // Everything at once; the compressor can then only be given back.
    ZRMData compressed(std::span<const std::uint8_t> data) {
        ZRMData result;
        setInput(stream_, data);
        do {
            stream_.next_out = output_.data();
            stream_.avail_out = static_cast<uInt>(output_.size());
            deflate(&stream_, Z_FINISH);
            // Queued events live long; the room for growth must not live with them.
            result.reserve(result.size() + output_.size() - stream_.avail_out);
            result.insert(result.end(), output_.begin(), output_.end() - stream_.avail_out);
        } while (stream_.avail_out == 0);
        return result;
    }

    ~Compressor() { deflateEnd(&stream_); }
    Compressor(const Compressor&) = delete;
    Compressor& operator=(const Compressor&) = delete;

  private:
    Compressor()
        : isReady_(deflateInit2_(&stream_, Z_DEFAULT_COMPRESSION, Z_DEFLATED, kGzipWindowBits,
                                 kMemoryLevel, Z_DEFAULT_STRATEGY, kZlibVersion,
                                 sizeof(stream_)) == Z_OK) {}

    static std::mutex& idleMutex() {
        static auto* const mutex = new std::mutex;
        return *mutex;
    }
    static constexpr std::size_t kPlaces = 2;
    static thread_local std::size_t preferredPlace;

    static std::array<Compressor*, kPlaces>& idle() {
        static std::array<Compressor*, kPlaces> compressors{};
        return compressors;
    }

    z_stream stream_{};
    bool isReady_;
    std::array<Bytef, kGzipGrowth> output_{};
};

thread_local std::size_t Compressor::preferredPlace = 0;

}  // namespace

bool zrm_isGzipData(std::span<const std::uint8_t> data) {
    return data.size() >= 2 && data[0] == 0x1F && data[1] == 0x8B;
}

ZRMData zrm_gzipData(std::span<const std::uint8_t> data) {
    if (data.empty() || zrm_isGzipData(data)) {
        return {data.begin(), data.end()};
    }
    auto compressor = fitsZlib(data) ? Compressor::take() : nullptr;
    if (!compressor) {
        return {};
    }
    auto result = compressor->compressed(data);
    Compressor::giveBack(std::move(compressor));
    return result;
}

ZRMData zrm_ungzipData(std::span<const std::uint8_t> data, std::size_t maximumLength) {
    if (!zrm_isGzipData(data)) {
        return {data.begin(), data.end()};
    }
    z_stream stream{};
    if (!fitsZlib(data) ||
        inflateInit2_(&stream, kAnyHeaderWindowBits, kZlibVersion, sizeof(stream)) != Z_OK) {
        return {};
    }
    setInput(stream, data);
    ZRMData buffer;
    int status = Z_OK;
    while (status == Z_OK) {
        if (stream.total_out >= buffer.size()) {
            if (stream.total_out > maximumLength) {
                break;
            }
            buffer.resize(buffer.size() + data.size() / 2);
        }
        setOutput(stream, buffer);
        status = inflate(&stream, Z_SYNC_FLUSH);
    }
    const auto written = stream.total_out;
    const bool isWhole = inflateEnd(&stream) == Z_OK && status == Z_STREAM_END;
    if (isWhole && written <= maximumLength) {
        buffer.resize(written);
    }
    return buffer;
}
