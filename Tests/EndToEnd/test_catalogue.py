"""Every event of the catalogue, from real programs: what arrives has the shape of the golden documents."""
import json
import os
import time
import unittest

from programs import LIMIT_SECONDS, ROOT, EndToEndTest, steered

GOLDEN = ROOT / "ZRMCloudKit/ZRMCloudKit_Tests/Golden"
EVERYTHING_ON = {
    "uiNavigationEventDisabled": "false",
    "iosApplicationSignatureEventDisabled": "false",
    "configEventDisabled": "false",
    "logDataEventDisabled": "false",
}
ANALYSIS = ["ApplicationInfoEvent", "IOSFingerprintEvent", "TouchIdChangedEvent", "DeviceJailbreakEvent",
            "IOSApplicationSignatureEvent", "ConfigEvent", "ScreenRecordingEvent", "VPNEvent"]
CALL = "7A1C2B3D-0000-4000-8000-00000000C0DE"
# Members that are there only when there is something to say.
OPTIONAL = {"serverEventDateTime", "permissions", "applicationId", "applicationVersion", "changedCall", "latitude",
            "longitude", "precision", "userName"}


def shape(value):
    """The names and JSON types of a document; of a list, the shapes that its elements have."""
    if isinstance(value, dict):
        return {name: shape(member) for name, member in value.items()}
    if isinstance(value, list):
        return [shape(value[0])] if value else []
    if isinstance(value, bool):
        return "bool"
    return "number" if isinstance(value, (int, float)) else type(value).__name__


def differences(golden, real, path=""):
    """Where the real document's shape is not the golden one's."""
    if isinstance(golden, dict) and isinstance(real, dict):
        for name in (golden.keys() ^ real.keys()) - OPTIONAL:
            yield f"{path}/{name} is {'missing' if name in golden else 'not known'}"
        for name in golden.keys() & real.keys():
            yield from differences(golden[name], real[name], f"{path}/{name}")
    elif isinstance(golden, list) and isinstance(real, list):
        if golden and real:
            yield from differences(golden[0], real[0], f"{path}[]")
    elif golden != real:
        yield f"{path} is {real}, not {golden}"


class CatalogueTest(EndToEndTest):
    starts_without_settings = True

    def setUp(self):
        super().setUp()
        self.golden = {path.stem: json.loads(path.read_text()) for path in GOLDEN.glob("*.json")}
        self.place.settings.write_text(json.dumps(EVERYTHING_ON))
        self.server = self.start_server(options=["--settings", self.place.settings])
        # The period after which the library's log is sent; read by the host that is started below.
        os.environ["kZRMMemoryLoggerTimeInterval"] = "0.5"
        self.addCleanup(os.environ.pop, "kZRMMemoryLoggerTimeInterval")

    def start_steered_host(self):
        return self.start_host(self.server.port, options=steered(self.server.port))

    def fetch_settings(self):
        """A first run that ends once the server's settings are stored; their events then count for nothing."""
        host = self.start_steered_host()
        host.run_all(["activate"])
        self.wait_until(lambda: list(self.place.home.rglob("zrm.settings")), host)
        host.drain()
        host.quit()
        self.seen = len(self.server.events())

    def arrived(self, event_type):
        """The events of that type since the settings took effect, without their type."""
        return [entry["event"][event_type] for entry in self.server.events()[self.seen:]
                if entry["eventType"] == event_type]

    def wait_for(self, host, event_type, fits=lambda event: True):
        self.wait_until(lambda: any(fits(event) for event in self.arrived(event_type)), host)

    def test_every_event_of_the_catalogue_arrives_with_the_golden_names_and_types(self):
        self.fetch_settings()
        host = self.start_steered_host()
        host.run_all(["start"])
        for event_type in [*ANALYSIS, "IOSCallInfoEvent", "LogDataEvent"]:
            self.wait_for(host, event_type)
        host.drain()  # every signal is observed from here on

        host.run_all([f"signal call {CALL} connected"])
        self.wait_for(host, "IOSCallInfoEvent", lambda event: event["stage"] == 1)
        host.run_all(["signal screenshot"])
        self.wait_for(host, "iOSScreenshotEvent")
        host.run_all(["signal screen-captured on"])
        self.wait_for(host, "ScreenRecordingEvent", lambda event: event["isRecording"])
        host.run_all(["signal vpn on", "signal foreground"])
        self.wait_for(host, "VPNEvent", lambda event: event["transportVpn"])
        host.run_all(["signal location-services on", "signal location-authorization 4",
                      "location", "signal location 48.2082 16.3738 8"])
        self.wait_for(host, "IOSGeoLocationEvent")
        host.run_all(["login alice SUCCESS Alice", "logout", "navigate /home", "session s-1"])
        for event_type in ["UserLoginEvent", "UserLogoutEvent", "UINavigationEvent", "SessionIdEvent"]:
            self.wait_for(host, event_type)

        for event_type, golden in self.golden.items():
            arrived = self.arrived(event_type)
            self.assertTrue(arrived, f"no {event_type} arrived")
            for event in arrived:
                found = list(differences(shape(golden[event_type]), shape(event), event_type))
                self.assertEqual(found, [], json.dumps(event, indent=1))

    def test_a_location_tells_where_the_host_said_the_device_is(self):
        self.seen = 0
        host = self.start_steered_host()
        host.run_all(["signal location-services on", "signal location-authorization 4",
                      "activate", "location", "signal location 48.2082 16.3738 8"])
        self.wait_for(host, "IOSGeoLocationEvent")
        event = self.arrived("IOSGeoLocationEvent")[0]
        self.assertEqual({name: event["location"][name] for name in ("latitude", "longitude", "precision")},
                         {"latitude": 48.2082, "longitude": 16.3738, "precision": 8})
        self.assertIs(event["location"]["gpsEnabled"], True)
        self.assertEqual(event["permissions"], {"location": True})

    def test_a_denied_location_is_reported_without_coordinates(self):
        self.seen = 0
        host = self.start_steered_host()
        host.run_all(["signal location-authorization 2", "activate", "location"])
        self.wait_for(host, "IOSGeoLocationEvent")
        event = self.arrived("IOSGeoLocationEvent")[0]
        self.assertEqual(set(event["location"]), {"gprsEnabled", "gpsEnabled", "wifiEnabled"})
        self.assertEqual(event["permissions"], {"location": False})

    def test_a_call_that_ends_is_told_with_its_last_state(self):
        self.seen = 0
        host = self.start_steered_host()
        host.run_all(["activate"])
        self.wait_for(host, "IOSCallInfoEvent")  # calls are observed from here on
        host.run_all([f"signal call {CALL} connected", f"signal call {CALL} connected ended"])
        self.wait_for(host, "IOSCallInfoEvent",
                      lambda event: event["stage"] == 1 and event["changedCall"]["hasEnded"])

    def test_drain_waits_for_the_signals_that_are_still_being_looked_at(self):
        self.seen = 0
        host = self.start_steered_host()
        host.run_all(["start"])
        began = time.monotonic()
        self.assertEqual(host.drain(), 0)
        self.assertLess(time.monotonic() - began, LIMIT_SECONDS)
        self.assertTrue(self.arrived("IOSFingerprintEvent"))
        self.assertTrue(self.arrived("DeviceJailbreakEvent"))


if __name__ == "__main__":
    unittest.main()
