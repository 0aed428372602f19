// A value, or the error that stands in its place.
#pragma once

#include <utility>
#include <variant>

#include "ZRMPlatform/Ports/Values/ZRMError.h"

template <class Value>
class [[nodiscard]] ZRMResult {
  public:
    ZRMResult(Value value) : held_(std::in_place_index<0>, std::move(value)) {}
    ZRMResult(ZRMError error) : held_(std::in_place_index<1>, std::move(error)) {}

    [[nodiscard]] bool hasValue() const { return held_.index() == 0; }
    explicit operator bool() const { return hasValue(); }

    // Only where hasValue() is true.
    [[nodiscard]] const Value& value() const& { return std::get<0>(held_); }
    [[nodiscard]] Value&& value() && { return std::get<0>(std::move(held_)); }

    // Only where hasValue() is false.
    [[nodiscard]] const ZRMError& error() const { return std::get<1>(held_); }

  private:
    std::variant<Value, ZRMError> held_;
};
