#include "ZRMPlatform/Linux/ZRMLinuxKeyedArchiver.h"

#include <cerrno>
#include <optional>

#include "ZRMPlatform/Linux/ZRMLinuxPropertyList.h"

namespace {

constexpr int kDeepest = 32;
constexpr std::int64_t kVersion = 1;

ZRMError archiveError(const char* description) {
    return ZRMError::withDescription(kZRMPosixErrorDomain, EINVAL, description);
}

ZRMLinuxPropertyList encodedObject(const ZRMArchiveObject& object, int depth);

// A value's type name and node; the node is null when it cannot be archived.
struct Encoded {
    const char* type;
    ZRMLinuxPropertyList node;
};

struct ValueEncoder {
    int depth;

    Encoded operator()(const std::string& value) const {
        return {"string", ZRMLinuxPropertyList(zrm_newPropertyListText(value))};
    }
    Encoded operator()(ZRMDate value) const {
        return {"date", ZRMLinuxPropertyList(plist_new_real(value.secondsSince1970))};
    }
    Encoded operator()(double value) const {
        return {"double", ZRMLinuxPropertyList(plist_new_real(value))};
    }
    Encoded operator()(std::int64_t value) const {
        return {"integer", ZRMLinuxPropertyList(plist_new_uint(static_cast<std::uint64_t>(value)))};
    }
    Encoded operator()(bool value) const {
        return {"bool", ZRMLinuxPropertyList(plist_new_bool(value ? 1 : 0))};
    }
    Encoded operator()(const ZRMData& value) const {
        return {"data", ZRMLinuxPropertyList(zrm_newPropertyListData(value))};
    }
    Encoded operator()(const std::shared_ptr<const ZRMArchiveObject>& value) const {
        return {"object", value ? encodedObject(*value, depth + 1) : nullptr};
    }
};

ZRMLinuxPropertyList encodedObject(const ZRMArchiveObject& object, int depth) {
    if (depth > kDeepest) {
        return nullptr;
    }
    ZRMLinuxPropertyList fields(plist_new_array());
    for (const auto& [key, value] : object.fields) {
        auto encoded = std::visit(ValueEncoder{depth}, value);
        if (!encoded.node) {
            return nullptr;
        }
        plist_t field = plist_new_dict();
        plist_dict_set_item(field, "key", zrm_newPropertyListText(key));
        plist_dict_set_item(field, "type", plist_new_string(encoded.type));
        plist_dict_set_item(field, "value", encoded.node.release());
        plist_array_append_item(fields.get(), field);
    }
    ZRMLinuxPropertyList node(plist_new_dict());
    plist_dict_set_item(node.get(), "$class", zrm_newPropertyListText(object.className));
    plist_dict_set_item(node.get(), "$version", plist_new_uint(kVersion));
    plist_dict_set_item(node.get(), "fields", fields.release());
    return node;
}

std::optional<ZRMArchiveObject> decodedObject(plist_t node, int depth);

template <class Value>
std::optional<ZRMArchiveValue> asValue(std::optional<Value> value) {
    return value ? std::optional<ZRMArchiveValue>(std::move(*value)) : std::nullopt;
}

std::optional<ZRMArchiveValue> decodedValue(const std::string& type, plist_t node, int depth) {
    if (type == "string") {
        return asValue(zrm_propertyListText(node));
    }
    if (type == "date") {
        const auto seconds = zrm_propertyListReal(node);
        return seconds ? std::optional<ZRMArchiveValue>(ZRMDate{*seconds}) : std::nullopt;
    }
    if (type == "double") {
        return asValue(zrm_propertyListReal(node));
    }
    if (type == "integer") {
        return asValue(zrm_propertyListInteger(node));
    }
    if (type == "bool") {
        return asValue(zrm_propertyListBoolean(node));
    }
    if (type == "data") {
        return asValue(zrm_propertyListData(node));
    }
    if (type == "object") {
        if (auto object = decodedObject(node, depth + 1)) {
            return std::make_shared<const ZRMArchiveObject>(std::move(*object));
        }
    }
    return std::nullopt;
}

bool decodeField(plist_t field, int depth, ZRMArchiveFields& fields) {
    const auto key = zrm_propertyListText(zrm_propertyListEntry(field, "key"));
    const auto type = zrm_propertyListString(zrm_propertyListEntry(field, "type"));
    if (!key || !type) {
        return false;
    }
    auto value = decodedValue(*type, zrm_propertyListEntry(field, "value"), depth);
    return value && fields.emplace(*key, std::move(*value)).second;
}

std::optional<ZRMArchiveObject> decodedObject(plist_t node, int depth) {
    const auto className = zrm_propertyListText(zrm_propertyListEntry(node, "$class"));
    const auto version = zrm_propertyListInteger(zrm_propertyListEntry(node, "$version"));
    const plist_t fields = zrm_propertyListEntry(node, "fields");
    if (depth > kDeepest || !className || version != kVersion || !PLIST_IS_ARRAY(fields)) {
        return std::nullopt;
    }
    ZRMArchiveObject object{*className, {}};
    for (std::uint32_t index = 0; index < plist_array_get_size(fields); ++index) {
        if (!decodeField(plist_array_get_item(fields, index), depth, object.fields)) {
            return std::nullopt;
        }
    }
    return object;
}

}  // namespace

ZRMResult<ZRMData> ZRMLinuxKeyedArchiver::encode(const ZRMArchiveObject& object) const {
    const auto node = encodedObject(object, 1);
    if (!node) {
        return archiveError("The object cannot be archived");
    }
    auto bytes = zrm_writeBinaryPropertyList(node.get());
    if (!zrm_isBoundedPropertyList(bytes) || bytes.empty()) {
        return archiveError("The object is too large for an archive");
    }
    return bytes;
}

ZRMResult<ZRMArchiveObject> ZRMLinuxKeyedArchiver::decode(const ZRMData& bytes) const {
    const auto list = zrm_readPropertyList(bytes);
    if (!list) {
        return archiveError("The bytes are no archive");
    }
    auto object = decodedObject(list.get(), 1);
    if (!object) {
        return archiveError("The archive is damaged");
    }
    return std::move(*object);
}
