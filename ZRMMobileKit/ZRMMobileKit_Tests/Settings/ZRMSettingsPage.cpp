#include "ZRMMobileKit/ZRMMobileKit_Tests/Settings/ZRMSettingsPage.h"

#include "ZRMMobileKit/ZRMMobileKit_Lib/Settings/ZRMSettingsTable.h"

namespace {

constexpr const char* kBeginning =
    R"(# The settings document

The document steers the library: endpoints, intervals, which events are switched off, how two
detectors retry, and the trace file. It is a flat JSON object whose values are all texts. In the
signed envelope in which a server delivers it, it stands under the key "config".

This page is made from the table in `ZRMMobileKit/ZRMMobileKit_Lib/Settings/ZRMSettingsTable.cpp`,
which also drives reading, writing, the defaults and the validation. After a change of the table run
`zrm_settings_page > docs/formats/settings.md`; a test fails until it is done.

## Entries

In the order in which they are read.

| Key | Holds | Default | Taken over from a server's document | Meaning |
|---|---|---|---|---|
)";

constexpr const char* kEnd = R"(
## What the texts hold

- A URL is kept as it is written. The defaults are build settings of the library.
- A duration is an ISO 8601 text such as "PT30M" or "P1D". Days, hours, minutes and seconds count;
  years, months and weeks are read and count nothing. Fractions of a second are not written.
- A boolean is false exactly when it is "false" or "0", in any letter case; every other text is true.
  For an event switch true means that the event is off.
- A count is the whole number that the text begins with; a negative one, and a text without one,
  is 0.
- The two entries of a detector's policy stand and fall together: when one of them is missing or
  empty there is no policy, and the detector keeps its own default.

Any other missing or empty text, and a URL text that is no URL, is an error of whoever made the
document: reading it throws "Parameter is nil: " with the key. A server's document can only bring
about the last of these; activation then fails with error 1 and that text.

## From the server to its effect

The library asks with a POST to "configUpdateUrl", at each activation after which "configUpdateInterval"
has passed since the last success. The body describes the application ("appId", "appVersion", "os",
"osVersion", "clientId", "version", "deviceTag"; what is absent is left out). The answer is a JWS object
in the general JSON serialization whose payload, base64url without padding, is

```json
{"config": {"uiNavigationEventDisabled": "false", "configUpdateInterval": "PT12H"}}
```

It is stored, byte by byte, in `ZRM/zrm.settings` below the application-support directory once every
signature has verified against the pinned root; then the time is noted. A failure on the way changes
neither file nor time. The settings in force never change: the next activation takes the document over.

| What the next activation finds | What it does |
|---|---|
| no file, or bytes that are no JWS object | starts with the defaults |
| no signature at all | fails: "Signature not found." |
| a payload that is no base64url, no JSON object, or repeats a name | fails with error 1 |
| no "config", or one that is no object | fails with error 1, which names it |
| an entry that breaks its rule, or is no text | starts; the entry keeps its default |
| an entry that is not in the table | starts; passes it over |

What lies on the device was verified when it came and is not held against the certificates again: they
may have expired since.

## Reading what was written

Writing the settings and reading the result yields equal settings, but for two entries: a host's own
statistics URL is written as "statisticsUrl" and comes back as the document's, and
"customizedClientId" is written but never read.

## Example

The defaults of a bank's build, whose host names its own statistics URL ending in "?cid=mybank",
written by the library (only entries that differ from the table are shown):

```json
{
  "clientId": "demosite",
  "customizedClientId": "mybank",
  "statisticsUrl": "https://risk.example.com/stat?cid=mybank"
}
```
)";

std::string kindText(ZRMSettingsKind kind) {
    switch (kind) {
        case ZRMSettingsKind::Identifier:
        case ZRMSettingsKind::DerivedIdentifier:
            return "identifier";
        case ZRMSettingsKind::Url:
            return "URL";
        case ZRMSettingsKind::Duration:
            return "duration";
        case ZRMSettingsKind::EventSwitch:
            return "event switch";
        case ZRMSettingsKind::Count:
            return "count";
        case ZRMSettingsKind::Boolean:
            return "boolean";
    }
    return {};
}

std::string ruleText(ZRMSettingsRule rule) {
    switch (rule) {
        case ZRMSettingsRule::NeverTaken:
            return "never";
        case ZRMSettingsRule::HttpUrl:
            return "unless it is a URL without a scheme that begins with \"http\"";
        case ZRMSettingsRule::ISO8601Duration:
            return "when it is a duration";
        case ZRMSettingsRule::NonEmptyText:
            return "when it is not empty";
    }
    return {};
}

std::string defaultText(const ZRMSettingsField& field) {
    if (field.defaultText == nullptr) {
        return "derived";
    }
    const bool isBuildSetting =
        field.kind == ZRMSettingsKind::Url || field.kind == ZRMSettingsKind::Identifier;
    return isBuildSetting ? "build setting" : "\"" + std::string(field.defaultText) + "\"";
}

}  // namespace

std::string zrm_settingsPage() {
    std::string page = kBeginning;
    for (const auto& field : zrm_settingsTable()) {
        page += "| \"" + std::string(field.key) + "\" | " + kindText(field.kind) + " | " +
                defaultText(field) + " | " + ruleText(field.rule) + " | " + field.meaning + " |\n";
    }
    return page + kEnd;
}
