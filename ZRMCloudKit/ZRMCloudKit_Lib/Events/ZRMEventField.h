// A field table: which members a JSON object has, where their values come from and what they mean.
//
// One line a member; the writer below and the documentation read the same lines.
//
//   constexpr std::array kFields{
//       zrm_eventField<&ZRMVpnEvent::isConnected>("transportVpn", "whether a VPN is active"),
//   };
#pragma once

#include <functional>
#include <optional>
#include <span>
#include <type_traits>
#include <utility>

#include "ZRMCloudKit/ZRMCloudKit_Lib/Events/ZRMEventValue.h"

// One member of the JSON object that a `Source` makes.
template <class Source>
struct ZRMEventField {
    const char* key;
    const char* jsonType;  // as the documentation names it
    const char* meaning;   // one phrase for the documentation
    // An absent value leaves the member out.
    std::optional<ZRMJsonValue> (*value)(const Source& source);
};

template <class Getter>
struct ZRMEventGetter;
template <class Source, class Value>
struct ZRMEventGetter<Value (Source::*)() const> {
    using Owner = Source;
    using Result = std::remove_cvref_t<Value>;
};
template <class Source, class Value>
requires std::is_object_v<Value>
struct ZRMEventGetter<Value Source::*> {
    using Owner = Source;
    using Result = Value;
};
template <class Source, class Value>
struct ZRMEventGetter<Value (*)(const Source&)> {
    using Owner = Source;
    using Result = std::remove_cvref_t<Value>;
};

// `Getter` is a data member, a getter or a function of the source; its type decides the JSON type.
template <auto Getter>
constexpr auto zrm_eventField(const char* key, const char* meaning) {
    using Traits = ZRMEventGetter<decltype(Getter)>;
    using Source = typename Traits::Owner;
    return ZRMEventField<Source>{
        key, zrm_eventJsonType<typename Traits::Result>(), meaning,
        [](const Source& source) { return zrm_eventValue(std::invoke(Getter, source)); }};
}

// The members in the order of the table.
template <class Source>
ZRMDictionary zrm_eventBody(const Source& source,
                            std::type_identity_t<std::span<const ZRMEventField<Source>>> fields) {
    ZRMDictionary body;
    body.reserve(fields.size());
    for (const auto& field : fields) {
        if (auto value = field.value(source)) {
            body.insert_or_assign(field.key, std::move(*value));
        }
    }
    return body;
}
