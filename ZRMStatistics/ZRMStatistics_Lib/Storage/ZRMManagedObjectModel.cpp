#include "ZRMStatistics/ZRMStatistics_Lib/Storage/ZRMManagedObjectModel.h"

#include <algorithm>
#include <array>
#include <limits>
#include <optional>
#include <utility>

#include "ZRMCoreKit/ZRMCoreKit_Lib/Json/ZRMJsonText.h"

namespace {

constexpr std::array<std::pair<std::string_view, ZRMAttributeType>, 3> kTypeNames = {{
    {"binary", ZRMAttributeType::Binary},
    {"double", ZRMAttributeType::Double},
    {"integer16", ZRMAttributeType::Integer16},
}};

ZRMError malformed(const std::string& what) {
    return ZRMError::withDescription(kZRMModelErrorDomain, ZRMModelErrorMalformed, what);
}

// Names become SQL, so nothing but identifiers may pass.
bool isIdentifier(std::string_view name) {
    constexpr std::string_view letters = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz_";
    constexpr std::string_view digits = "0123456789";
    return !name.empty() && letters.find(name.front()) != letters.npos &&
           std::ranges::all_of(name, [&](char character) {
               return letters.find(character) != letters.npos ||
                      digits.find(character) != digits.npos;
           });
}

std::optional<std::string> identifierIn(const ZRMDictionary& object) {
    const auto* name = object.if_contains("name");
    if (name == nullptr || !name->is_string() || !isIdentifier(name->get_string())) {
        return std::nullopt;
    }
    return std::string(name->get_string());
}

std::optional<ZRMAttributeType> typeIn(const ZRMDictionary& object) {
    const auto* type = object.if_contains("type");
    if (type == nullptr || !type->is_string()) {
        return std::nullopt;
    }
    const std::string_view text = type->get_string();
    const auto found =
        std::ranges::find(kTypeNames, text, &decltype(kTypeNames)::value_type::first);
    return found == kTypeNames.end() ? std::nullopt : std::optional(found->second);
}

const ZRMJsonArray* arrayIn(const ZRMDictionary& object, std::string_view key) {
    const auto* value = object.if_contains(key);
    return value == nullptr ? nullptr : value->if_array();
}

std::optional<ZRMError> addAttribute(ZRMEntityDescription& entity,
                                     const ZRMAttributeDescription& attribute) {
    const auto* known = entity.attributeNamed(attribute.name);
    if (known == nullptr) {
        entity.attributes.push_back(attribute);
    } else if (known->type != attribute.type) {
        return ZRMError::withDescription(
            kZRMModelErrorDomain, ZRMModelErrorConflicting,
            "two types for the attribute '" + entity.name + "." + attribute.name + "'");
    }
    return std::nullopt;
}

ZRMResult<ZRMEntityDescription> entityFromJson(const ZRMJsonValue& value) {
    const auto* object = value.if_object();
    const auto name = object == nullptr ? std::nullopt : identifierIn(*object);
    const auto* attributes = object == nullptr ? nullptr : arrayIn(*object, "attributes");
    if (!name || attributes == nullptr) {
        return malformed("an entity needs a name and attributes");
    }
    ZRMEntityDescription entity{*name, {}};
    for (const auto& element : *attributes) {
        const auto* attribute = element.if_object();
        const auto attributeName = attribute == nullptr ? std::nullopt : identifierIn(*attribute);
        const auto type = attribute == nullptr ? std::nullopt : typeIn(*attribute);
        if (!attributeName || !type) {
            return malformed("an attribute of '" + *name + "' needs a name and a known type");
        }
        if (auto error = addAttribute(entity, {*attributeName, *type})) {
            return *std::move(error);
        }
    }
    return entity;
}

std::optional<ZRMError> mergeEntity(ZRMManagedObjectModel& model,
                                    const ZRMEntityDescription& entity) {
    auto known = std::ranges::find(model.entities, entity.name, &ZRMEntityDescription::name);
    if (known == model.entities.end()) {
        model.entities.push_back(entity);
        return std::nullopt;
    }
    for (const auto& attribute : entity.attributes) {
        if (auto error = addAttribute(*known, attribute)) {
            return error;
        }
    }
    return std::nullopt;
}

}  // namespace

const ZRMAttributeDescription* ZRMEntityDescription::attributeNamed(
    std::string_view attribute) const {
    const auto found = std::ranges::find(attributes, attribute, &ZRMAttributeDescription::name);
    return found == attributes.end() ? nullptr : &*found;
}

const ZRMEntityDescription* ZRMManagedObjectModel::entityNamed(std::string_view entity) const {
    const auto found = std::ranges::find(entities, entity, &ZRMEntityDescription::name);
    return found == entities.end() ? nullptr : &*found;
}

ZRMResult<ZRMManagedObjectModel> zrm_managedObjectModelFromJson(
    std::span<const std::uint8_t> json) {
    const auto document = zrm_jsonFromData(json, {.refusesDuplicateNames = true});
    if (!document) {
        return document.error();
    }
    const auto* object = document.value().if_object();
    const auto* version = object == nullptr ? nullptr : object->if_contains("version");
    const auto* entities = object == nullptr ? nullptr : arrayIn(*object, "entities");
    if (version == nullptr || entities == nullptr || !version->is_int64() ||
        version->get_int64() < 1 ||
        version->get_int64() > std::numeric_limits<std::int32_t>::max()) {
        return malformed("a model needs a version from 1 and entities");
    }
    ZRMManagedObjectModel model{static_cast<std::int32_t>(version->get_int64()), {}};
    for (const auto& element : *entities) {
        const auto entity = entityFromJson(element);
        if (!entity) {
            return entity.error();
        }
        if (auto error = mergeEntity(model, entity.value())) {
            return *std::move(error);
        }
    }
    return model;
}

ZRMResult<ZRMManagedObjectModel> zrm_modelByMergingModels(
    std::span<const ZRMManagedObjectModel> models) {
    ZRMManagedObjectModel merged;
    for (const auto& model : models) {
        merged.version = std::max(merged.version, model.version);
        for (const auto& entity : model.entities) {
            if (auto error = mergeEntity(merged, entity)) {
                return *std::move(error);
            }
        }
    }
    return merged;
}
