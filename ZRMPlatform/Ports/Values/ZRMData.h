// Bytes, as they cross ports and modules.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

using ZRMData = std::vector<std::uint8_t>;

// Bytes that several owners read and nobody changes, such as a queued event on its way out.
using ZRMSharedData = std::shared_ptr<const ZRMData>;

// Both between pointers to one type, which a compiler copies in one go also where it saves room.
inline ZRMData zrm_dataFromText(std::string_view text) {
    const auto* const bytes = reinterpret_cast<const std::uint8_t*>(text.data());
    return {bytes, bytes + text.size()};
}

inline std::string zrm_textFromData(const ZRMData& data) {
    return {reinterpret_cast<const char*>(data.data()), data.size()};
}
