// Values of an event as JSON. What comes out can always be written: text that is not UTF-8 is
// repaired, and a number that JSON cannot express counts as absent.
#pragma once

#include <concepts>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <type_traits>
#include <vector>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Json/ZRMJson.h"
#include "ZRMPlatform/Ports/Values/ZRMDate.h"

std::optional<ZRMJsonValue> zrm_eventValue(const std::string& text);
std::optional<ZRMJsonValue> zrm_eventValue(double number);
// In the event date format.
std::optional<ZRMJsonValue> zrm_eventValue(const ZRMDate& date);
// The same with every text and every name inside repaired.
ZRMDictionary zrm_repairedJson(const ZRMDictionary& dictionary);
std::optional<ZRMJsonValue> zrm_eventValue(const ZRMDictionary& dictionary);

template <class Value>
requires std::same_as<Value, bool> || std::integral<Value> std::optional<ZRMJsonValue>
zrm_eventValue(Value value) {
    return ZRMJsonValue(value);
}

template <class Value>
std::optional<ZRMJsonValue> zrm_eventValue(const std::optional<Value>& value) {
    return value ? zrm_eventValue(*value) : std::nullopt;
}

// Elements without a value are left out.
template <class Value>
std::optional<ZRMJsonValue> zrm_eventValue(const std::vector<Value>& values) {
    ZRMJsonArray array;
    for (const auto& value : values) {
        if (auto element = zrm_eventValue(value)) {
            array.push_back(std::move(*element));
        }
    }
    return array;
}

// A record that is an object of values like these, which need no second repair. Absent where null.
template <class Record>
requires requires(const Record& record) {
    { record.dictionary() } -> std::same_as<ZRMDictionary>;
}
std::optional<ZRMJsonValue> zrm_eventValue(const std::shared_ptr<const Record>& record) {
    return record ? std::optional<ZRMJsonValue>(record->dictionary()) : std::nullopt;
}

template <class Value>
struct ZRMEventElement;
template <class Record>
struct ZRMEventElement<std::shared_ptr<const Record>> {
    using Type = ZRMDictionary;
};
template <class Value>
struct ZRMEventElement<std::optional<Value>> {
    using Type = Value;
};
template <class Value>
struct ZRMEventElement<std::vector<Value>> {
    using Type = Value;
};

// How the documentation names the JSON type that a value of that type becomes.
template <class Value>
constexpr const char* zrm_eventJsonType() {
    if constexpr (std::same_as<Value, bool>) {
        return "bool";
    } else if constexpr (std::integral<Value> || std::floating_point<Value>) {
        return "number";
    } else if constexpr (std::same_as<Value, std::string>) {
        return "string";
    } else if constexpr (std::same_as<Value, ZRMDate>) {
        return "string (date)";
    } else if constexpr (std::same_as<Value, ZRMDictionary>) {
        return "object";
    } else if constexpr (std::same_as<Value, std::vector<std::string>>) {
        return "array of strings";
    } else if constexpr (std::same_as<Value, std::vector<ZRMDictionary>>) {
        return "array of objects";
    } else {
        return zrm_eventJsonType<typename ZRMEventElement<Value>::Type>();
    }
}
