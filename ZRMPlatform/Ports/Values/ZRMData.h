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

inline ZRMData zrm_dataFromText(std::string_view text) {
    return {text.begin(), text.end()};
}

inline std::string zrm_textFromData(const ZRMData& data) {
    return {data.begin(), data.end()};
}
