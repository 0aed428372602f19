"""Signed settings and device tags, from a server that keeps the rules and from one that does not."""
import json
import re
import unittest
import urllib.request

from programs import EndToEndTest, free_port, steered

PLACEHOLDER = r"^[0-9A-F-]{36}_L![0-9A-F-]{36}$"
SERVER_TAG = r"^[0-9A-F-]{36}_[0-9A-F-]{36}$"
SETTINGS = {"uiNavigationEventDisabled": "false", "iosCallInfoEventDisabled": "true"}
UNKNOWN = "Unknown error."
NOT_VERIFIED = [f"Received settings data verify error: {UNKNOWN}", f"Recieved data verify error: {UNKNOWN}"]
UPDATE_REFUSED = f"Settings update complete. Error: {UNKNOWN}"

# What the server does wrong, and the lines that the library's log then holds.
REFUSED = {
    "wrong-key": [*NOT_VERIFIED, UPDATE_REFUSED],
    "expired-leaf": ["Untrusted certificate.", *NOT_VERIFIED, UPDATE_REFUSED],
    "revoked-leaf": ["Untrusted certificate.", *NOT_VERIFIED, UPDATE_REFUSED],
    "foreign-root": ["Untrusted certificate.", *NOT_VERIFIED, UPDATE_REFUSED],
    "missing-signatures": [
        "Can't create JWS object from data: Data has invalid format.",
        "Can't create JWS object from data: The operation could not be completed. "
        "(ZRMJwsObjectErrorDomain error 0.)",
        "Settings update complete. Error: Data has invalid format."],
    "bad-second-signature": [*NOT_VERIFIED, UPDATE_REFUSED],
    "corrupted-payload": [*NOT_VERIFIED, UPDATE_REFUSED],
    "unpadded-header": ["Corrupted protected header.", *NOT_VERIFIED, UPDATE_REFUSED],
    "alg-hs256": ["Algorithm for JWS Signature not found", *NOT_VERIFIED, UPDATE_REFUSED],
    "alg-none": ["Algorithm for JWS Signature not found", *NOT_VERIFIED, UPDATE_REFUSED],
}


class SteeringTest(EndToEndTest):
    starts_without_settings = True

    def setUp(self):
        super().setUp()
        self.place.settings.write_text(json.dumps(SETTINGS))

    def start_steering_server(self, *options, **keywords):
        return self.start_server(options=["--settings", self.place.settings, *options], **keywords)

    def start_steered_host(self, server):
        return self.start_host(server.port, options=steered(server.port))

    def stored(self):
        found = list(self.place.home.rglob("zrm.settings"))
        return found[0].read_bytes() if found else None

    def texts(self, host):
        """The log lines without the parts that differ from run to run."""
        return [re.sub(r"^.*?\)> ", "", line) for line in host.log().splitlines()]

    def wait_for_lines(self, host, lines):
        for line in lines:
            self.wait_until(lambda wanted=line: wanted in self.texts(host), host)

    def secure_tag(self, host):
        return host.run("tag")["value"]

    def wait_for_tag(self, host):
        self.wait_until(lambda: re.match(SERVER_TAG, self.secure_tag(host)), host)

    def run_until_updated(self, server, line="Settings update complete"):
        host = self.start_steered_host(server)
        host.run_all(["activate"])
        self.wait_for_lines(host, [line])
        self.assertEqual(host.quit(), 0)

    def test_settings_take_effect_at_the_next_activation(self):
        server = self.start_steering_server()
        host = self.start_steered_host(server)
        host.run_all(["activate"])
        self.wait_for_lines(host, ["Received settings data verified succesfully",
                                   "Received settings data saved succesfully", "Settings update complete"])
        self.assertEqual(host.run("navigate /accounts")["error"]["code"], 12)
        self.assertEqual(host.drain(), 0)
        host.quit()

        host = self.start_steered_host(server)
        host.run_all(["activate", "navigate /accounts"])
        self.wait_for_lines(host, ["No need to update settings"])
        self.assertEqual(host.drain(), 0)
        host.quit()
        # The first activation reported the calls under way, the second one may not.
        self.assertEqual([entry["eventType"] for entry in server.events()],
                         ["IOSCallInfoEvent", "UINavigationEvent"])

    def test_the_tag_is_issued_kept_and_sent(self):
        server = self.start_steering_server()
        host = self.start_steered_host(server)
        host.run_all(["activate"])
        self.wait_for_tag(host)
        tag = self.secure_tag(host)
        host.run_all(["logout"])
        self.assertEqual(host.drain(), 0)
        host.quit()
        (logout,) = [entry for entry in server.events() if entry["eventType"] == "UserLogoutEvent"]
        self.assertEqual(logout["headers"]["Mobile-UUID"], tag.partition("_")[2])

        host = self.start_steered_host(server)
        host.run_all(["activate"])
        self.assertEqual(self.secure_tag(host), tag)
        host.quit()

    def test_the_tag_is_renewed_after_the_servers_interval(self):
        server = self.start_steering_server("--tag-interval", "PT1S")
        host = self.start_steered_host(server)
        host.run_all(["activate"])
        self.wait_until(lambda: server.log().count("POST /zwjsqd 200") >= 3, host)
        host.quit()

    def test_a_chain_that_is_only_named_is_fetched(self):
        server = self.start_steering_server("--x5u")
        host = self.start_steered_host(server)
        host.run_all(["activate"])
        self.wait_for_lines(host, ["Received settings data saved succesfully"])
        self.wait_for_tag(host)
        host.quit()
        self.assertIn("POST /certificates/signing.crt 200", server.log())

    def test_revocation_is_asked_for_and_a_silent_responder_does_not_matter(self):
        server = self.start_steering_server(faults=["ocsp:503*100", "crl:503*100"])
        host = self.start_steered_host(server)
        host.run_all(["activate"])
        self.wait_for_lines(host, ["Received settings data saved succesfully"])
        host.quit()
        self.assertIn("POST /ocsp fault: 503", server.log())
        self.assertIn("GET /crl/intermediate.crl fault: 503", server.log())

    def test_a_revoked_leaf_is_found_by_the_list_alone(self):
        server = self.start_steering_server("--misbehave", "revoked-leaf", faults=["ocsp:503*100"])
        host = self.start_steered_host(server)
        host.run_all(["activate"])
        self.wait_for_lines(host, REFUSED["revoked-leaf"])
        self.assertIsNone(self.stored())
        host.quit()

    def test_every_misbehaviour_is_refused_and_changes_nothing(self):
        server = self.start_steering_server()
        self.run_until_updated(server)
        good = self.stored()
        self.assertIsNotNone(good)
        server.stop()
        for kind, lines in REFUSED.items():
            with self.subTest(kind=kind):
                self.forget_the_tag_and_the_time()
                server = self.start_steering_server("--misbehave", kind)
                host = self.start_steered_host(server)
                begin = len(self.texts(host))
                host.run_all(["activate"])
                for line in lines:
                    self.wait_until(lambda wanted=line: wanted in self.texts(host)[begin:], host)
                self.assertEqual(self.stored(), good)
                self.assertRegex(self.secure_tag(host), PLACEHOLDER)
                # What was stored before still holds.
                self.assertIsNone(host.run("navigate /accounts")["error"])
                host.quit()
                server.stop()
                self.assertNotIn("Received settings data saved succesfully", self.texts(host)[begin:])

    def forget_the_tag_and_the_time(self):
        """As on a new installation that yet has a settings document."""
        for name in ("ZRMCloudKitSettings", "com.velorin.zrm.mobilekit.userdefaults.plist"):
            found = list(self.place.home.rglob(name))
            self.assertTrue(found, name)
            found[0].unlink()

    def test_settings_without_config_are_stored_and_fail_the_next_activation(self):
        server = self.start_steering_server("--misbehave", "missing-config")
        host = self.start_steered_host(server)
        host.run_all(["activate"])
        self.wait_for_lines(host, ["Settings update complete",
                                   'Recieved data parse error: The payload has no usable "uuid".'])
        self.assertRegex(self.secure_tag(host), PLACEHOLDER)
        host.quit()

        host = self.start_steered_host(server)
        self.assertEqual(host.run("activate")["error"], {
            "domain": "com.velorin.zrm.mobilekit", "code": 1,
            "message": "Settings data has invalid format for field config: '(null)' (nil)"})
        host.quit()

    def test_settings_out_of_range_keep_their_defaults(self):
        server = self.start_steering_server("--misbehave", "out-of-range")
        host = self.start_steered_host(server)
        host.run_all(["activate"])
        self.wait_for_lines(host, ["Settings update complete",
                                   'Recieved data parse error: The payload has no usable "i".'])
        host.quit()

        host = self.start_steered_host(server)
        host.run_all(["activate", "navigate /accounts"])
        self.assertEqual(host.drain(), 0)
        host.quit()

    def test_a_stored_document_without_signatures_fails_activation(self):
        server = self.start_steering_server()
        self.run_until_updated(server)
        document = json.loads(self.stored())
        document["signatures"] = []
        path = next(self.place.home.rglob("zrm.settings"))
        path.write_text(json.dumps(document))
        host = self.start_steered_host(server)
        self.assertEqual(host.run("activate")["error"], {
            "domain": "ZRMJWSErrorDomain", "code": 1, "message": "Signature not found."})
        host.quit()
        path.write_text("no document")
        host = self.start_steered_host(server)
        self.assertIsNone(host.run("activate")["error"])
        host.quit()

    def document(self, *options):
        """A file with what a server started so serves at once, fetched past the library."""
        server = self.start_steering_server("--plain", *options)
        request = urllib.request.Request(f"http://localhost:{server.port}/config/v1", data=b"{}")
        path = self.place.path / "document.json"
        with urllib.request.urlopen(request, timeout=30) as answer:
            path.write_bytes(answer.read())
        return server, path

    def test_the_inspector_gives_the_verifiers_verdict(self):
        root = ["--root", self.place.pki / "VelorinRootCA.crt"]
        unknown = {"domain": "ZRMJWSErrorDomain", "code": 0, "message": UNKNOWN}
        rows = [
            ([], [], [6]), ([], root, [6]), ([], [*root, "--pinned-anchors-only"], [6]),
            ([], ["--pinned-anchors-only"], [2]),
            ([], [*root, "--at", "4102444800"], [2]),  # the year 2100
            (["wrong-key"], root, [4]), (["expired-leaf"], root, [2]), (["foreign-root"], root, [2]),
            (["revoked-leaf"], root, [2]), (["revoked-leaf"], [*root, "--no-revocation"], [6]),
            (["bad-second-signature"], root, [6, 4]), (["corrupted-payload"], root, [4]),
            (["unpadded-header"], root, [None]), (["alg-hs256"], root, [None]), (["alg-none"], root, [None]),
        ]
        for kinds, options, results in rows:
            with self.subTest(kinds=kinds, options=options):
                server, path = self.document(*(word for kind in kinds for word in ("--misbehave", kind)))
                verified = all(result == 6 for result in results)
                self.assertEqual(self.inspect("jws", path, *options), (0 if verified else 1, {
                    "validity": 2, "results": results, "error": None if verified else unknown}))
                server.stop()
        server, path = self.document("--misbehave", "missing-signatures")
        status, report = self.inspect("jws", path, *root)
        self.assertEqual((status, report["validity"], report["error"]["code"]), (1, 0, 0))

    def test_the_inspector_gives_the_validators_verdict(self):
        root = ["--root", self.place.pki / "VelorinRootCA.crt"]
        server, path = self.document()
        status, report = self.inspect("settings", path, *root)
        self.assertEqual((status, report["rejected"], report["error"]), (0, [], None))
        self.assertEqual(report["settings"] | SETTINGS, report["settings"])
        server.stop()

        server, path = self.document("--misbehave", "out-of-range")
        status, report = self.inspect("settings", path, *root)
        self.assertEqual(status, 1)
        self.assertEqual(report["rejected"], ["configUpdateInterval", "execSessionTimeout", "statisticsUrl",
                                              "vpnEventDisabled", "iosCallActiveStateCheckCount"])
        self.assertEqual(report["settings"]["configUpdateInterval"], "P1D")
        server.stop()

        server, path = self.document("--misbehave", "wrong-key")
        self.assertEqual(self.inspect("settings", path)[0], 0)
        self.assertEqual(self.inspect("settings", path, *root)[1]["error"]["message"], UNKNOWN)

    def test_without_a_server_the_defaults_and_the_placeholder_stay(self):
        host = self.start_host(free_port(), options=steered(free_port()))
        host.run_all(["activate"])
        self.assertRegex(self.secure_tag(host), PLACEHOLDER)
        self.assertIsNone(self.stored())
        host.quit()

    def test_without_the_resource_bundle_nothing_is_taken_over(self):
        for path in (self.place.resources / "ZRMMobileKitResources.bundle").iterdir():
            path.unlink()
        (self.place.resources / "ZRMMobileKitResources.bundle").rmdir()
        server = self.start_steering_server()
        host = self.start_steered_host(server)
        host.run_all(["activate"])
        self.wait_for_lines(host, ["Error: Bundle 'ZRMMobileKitResources.bundle' not found",
                                   "Invalid certificate in pem data of pinned chain.",
                                   *NOT_VERIFIED, UPDATE_REFUSED])
        self.assertIsNone(self.stored())
        host.quit()


if __name__ == "__main__":
    unittest.main()
