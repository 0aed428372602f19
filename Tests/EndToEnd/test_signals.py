"""What a host tells of the device becomes events."""
from programs import EndToEndTest

CALL = "6F9619FF-8B86-D011-B42D-00C04FC964FF"


class Signals(EndToEndTest):
    starts_without_settings = True  # the defaults report calls

    def arrived(self, host, server, event_type, holds=lambda body: True):
        """The first such event whose body holds; drains until it came."""
        for _ in range(20):
            host.drain()
            for entry in server.events():
                if entry["eventType"] == event_type and holds(entry["event"][event_type]):
                    return entry["event"][event_type]
            host.run("wait 0.1")
        self.fail(f"no {event_type} in {[entry['eventType'] for entry in server.events()]}: {host.log()}")

    def test_what_the_host_tells_of_the_device_arrives(self):
        server = self.start_server()
        host = self.start_host(server.port)
        host.run_all(["signal screen-captured off", "start"])

        host.run_all(["signal vpn ipsec7", "signal foreground"])
        self.arrived(host, server, "VPNEvent", lambda body: body["transportVpn"] is True)
        host.run_all(["signal screenshot"])
        self.arrived(host, server, "iOSScreenshotEvent")
        host.run_all(["signal screen-captured on"])
        self.arrived(host, server, "ScreenRecordingEvent", lambda body: body["isRecording"] is True)
        host.run_all([f"signal call {CALL} connected outgoing"])
        call = self.arrived(host, server, "IOSCallInfoEvent", lambda body: body["stage"] == 1)
        self.assertEqual(call["changedCall"], {"uuid": CALL, "hasConnected": True, "hasEnded": False,
                                               "isOutgoing": True, "isOnHold": False})
        self.assertEqual(call["calls"], [call["changedCall"]])
        self.assertEqual(host.quit(), 0)
