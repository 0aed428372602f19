// An event that is a field table.
#pragma once

#include <cstdint>
#include <span>

#include "ZRMCloudKit/ZRMCloudKit_Lib/Events/ZRMBaseEvent.h"
#include "ZRMCloudKit/ZRMCloudKit_Lib/Events/ZRMCloudKitEvent.h"
#include "ZRMCloudKit/ZRMCloudKit_Lib/Events/ZRMEventField.h"

// All there is to know of an event type.
template <class Event>
struct ZRMEventTable {
    const char* eventType;
    std::uint64_t structVersion;
    ZRMEventPermissions permissions;
    std::span<const ZRMEventField<Event>> fields;
};

// The event type's name mapped to the body merged over the provider's common parameters.
ZRMDictionary zrm_eventParameters(const ZRMCommonParametersProvider& provider,
                                  const char* eventType, std::uint64_t structVersion,
                                  ZRMEventPermissions permissions, const ZRMDictionary& body);

// `Event` derives from it and has a static table().
template <class Event>
class ZRMTableEvent : public ZRMBaseEvent, public ZRMCloudKitEvent {
  public:
    explicit ZRMTableEvent(std::shared_ptr<const ZRMCommonParametersProvider> provider)
        : ZRMBaseEvent(std::move(provider)) {}

    [[nodiscard]] std::uint64_t structVersion() const override {
        return Event::table().structVersion;
    }
    [[nodiscard]] ZRMEventPermissions permissions() const override {
        return Event::table().permissions;
    }
    [[nodiscard]] ZRMDictionary parameters() const override {
        const ZRMEventTable<Event> table = Event::table();
        return zrm_eventParameters(*provider(), table.eventType, table.structVersion,
                                   table.permissions,
                                   zrm_eventBody(static_cast<const Event&>(*this), table.fields));
    }
};
