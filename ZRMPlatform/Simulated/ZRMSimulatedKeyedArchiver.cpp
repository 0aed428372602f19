#include "ZRMPlatform/Simulated/ZRMSimulatedKeyedArchiver.h"

#include <bit>
#include <cerrno>
#include <cstddef>
#include <optional>
#include <span>
#include <string_view>

namespace {

constexpr std::string_view kMagic = "ZRMA";
constexpr int kDeepest = 32;
// The letters of the types, in the order of ZRMArchiveValue's alternatives.
constexpr std::string_view kTypes = "stfibdo";

ZRMError archiveError(const char* description) {
    return ZRMError::withDescription(kZRMPosixErrorDomain, EINVAL, description);
}

class Writer {
  public:
    bool object(const ZRMArchiveObject& object, int depth) {
        if (depth > kDeepest) {
            return false;
        }
        text(object.className);
        number(object.fields.size());
        for (const auto& [key, value] : object.fields) {
            text(key);
            bytes_.push_back(static_cast<std::uint8_t>(kTypes[value.index()]));
            const bool written =
                std::visit([&](const auto& held) { return put(held, depth); }, value);
            if (!written) {
                return false;
            }
        }
        return true;
    }

    void raw(std::string_view characters) {
        bytes_.insert(bytes_.end(), characters.begin(), characters.end());
    }
    [[nodiscard]] ZRMData take() { return std::move(bytes_); }

  private:
    void number(std::uint64_t value) {
        for (int shift = 0; shift < 64; shift += 8) {
            bytes_.push_back(static_cast<std::uint8_t>(value >> shift));
        }
    }
    void text(std::string_view value) {
        number(value.size());
        raw(value);
    }

    bool put(const std::string& value, int) {
        text(value);
        return true;
    }
    bool put(ZRMDate value, int depth) { return put(value.secondsSince1970, depth); }
    bool put(double value, int) {
        number(std::bit_cast<std::uint64_t>(value));
        return true;
    }
    bool put(std::int64_t value, int) {
        number(static_cast<std::uint64_t>(value));
        return true;
    }
    bool put(bool value, int) {
        bytes_.push_back(value ? 1 : 0);
        return true;
    }
    bool put(const ZRMData& value, int) {
        number(value.size());
        bytes_.insert(bytes_.end(), value.begin(), value.end());
        return true;
    }
    bool put(const std::shared_ptr<const ZRMArchiveObject>& value, int depth) {
        return value && object(*value, depth + 1);
    }

    ZRMData bytes_;
};

class Reader {
  public:
    explicit Reader(const ZRMData& bytes) : bytes_(bytes) {}

    [[nodiscard]] bool atEnd() const { return offset_ == bytes_.size(); }

    std::optional<std::string> raw(std::uint64_t length) {
        const auto found = take(length);
        return found ? std::optional(std::string(found->begin(), found->end())) : std::nullopt;
    }

    std::optional<ZRMArchiveObject> object(int depth) {
        const auto className = text();
        const auto count = number();
        if (depth > kDeepest || !className || !count) {
            return std::nullopt;
        }
        ZRMArchiveObject result{*className, {}};
        for (std::uint64_t index = 0; index < *count; ++index) {
            const auto key = text();
            const auto type = take(1);
            if (!key || !type) {
                return std::nullopt;
            }
            auto held = value(static_cast<char>(type->front()), depth);
            if (!held || !result.fields.emplace(*key, std::move(*held)).second) {
                return std::nullopt;
            }
        }
        return result;
    }

  private:
    std::optional<std::span<const std::uint8_t>> take(std::uint64_t length) {
        if (length > bytes_.size() - offset_) {
            return std::nullopt;
        }
        const auto found = std::span(bytes_).subspan(offset_, length);
        offset_ += length;
        return found;
    }

    std::optional<std::uint64_t> number() {
        const auto found = take(8);
        if (!found) {
            return std::nullopt;
        }
        std::uint64_t value = 0;
        for (std::size_t index = 8; index-- > 0;) {
            value = value << 8 | (*found)[index];
        }
        return value;
    }

    std::optional<std::string> text() {
        const auto length = number();
        return length ? raw(*length) : std::nullopt;
    }

    template <class T, class From>
    static std::optional<ZRMArchiveValue> as(std::optional<From> from) {
        return from ? std::optional<ZRMArchiveValue>(T{*from}) : std::nullopt;
    }

    std::optional<double> real() {
        const auto bits = number();
        return bits ? std::optional(std::bit_cast<double>(*bits)) : std::nullopt;
    }

    std::optional<ZRMArchiveValue> value(char type, int depth) {
        switch (type) {
            case 's':
                return as<std::string>(text());
            case 't':
                return as<ZRMDate>(real());
            case 'f':
                return as<double>(real());
            case 'i':
                if (const auto found = number()) {
                    return static_cast<std::int64_t>(*found);
                }
                return std::nullopt;
            case 'b':
                if (const auto found = take(1); found && found->front() <= 1) {
                    return found->front() == 1;
                }
                return std::nullopt;
            case 'd':
                if (const auto length = number()) {
                    const auto found = take(*length);
                    return found ? std::optional<ZRMArchiveValue>(
                                       ZRMData(found->begin(), found->end()))
                                 : std::nullopt;
                }
                return std::nullopt;
            case 'o':
                if (auto found = object(depth + 1)) {
                    return std::make_shared<const ZRMArchiveObject>(std::move(*found));
                }
                return std::nullopt;
            default:
                return std::nullopt;
        }
    }

    const ZRMData& bytes_;
    std::size_t offset_ = 0;
};

}  // namespace

ZRMResult<ZRMData> ZRMSimulatedKeyedArchiver::encode(const ZRMArchiveObject& object) const {
    Writer writer;
    writer.raw(kMagic);
    if (encodingFails_ || !writer.object(object, 1)) {
        return archiveError("The object cannot be archived");
    }
    return writer.take();
}

ZRMResult<ZRMArchiveObject> ZRMSimulatedKeyedArchiver::decode(const ZRMData& bytes) const {
    Reader reader(bytes);
    const auto magic = reader.raw(kMagic.size());
    if (!magic || *magic != kMagic) {
        return archiveError("The bytes are no archive");
    }
    auto object = reader.object(1);
    if (!object || !reader.atEnd()) {
        return archiveError("The archive is damaged");
    }
    return std::move(*object);
}
