"""What a host reports arrives, once and as laid down."""
import pathlib
import plistlib
import time

from programs import EndToEndTest, Program


class Reports(EndToEndTest):
    def test_each_report_arrives_once_with_its_fields(self):
        server = self.start_server()
        host = self.start_host(server.port)
        self.assertEqual(host.run("login early SUCCESS")["error"]["code"], 3)
        self.assertEqual(host.run("activate"), {"op": "activate", "error": None})
        host.run_all(["login alice SUCCESS 'Alice Example'", "login bob 2", "session 3f8a-77c1", "logout"])
        disabled = host.run("navigate /accounts")
        self.assertEqual(disabled["error"], {"domain": "com.velorin.zrm.mobilekit", "code": 12,
                                             "message": "Event is disabled"})
        self.assertEqual(host.drain(), 0)
        self.assertEqual(host.quit(), 0)

        events = server.events()
        self.assertEqual(sorted(event["eventType"] for event in events),
                         ["SessionIdEvent", "UserLoginEvent", "UserLoginEvent", "UserLogoutEvent"])
        logins = {entry["event"]["UserLoginEvent"]["userId"]: entry["event"]["UserLoginEvent"]
                  for entry in events if entry["eventType"] == "UserLoginEvent"}
        self.assertEqual(set(logins), {"alice", "bob"})
        self.assertEqual(logins["alice"]["userName"], "Alice Example")
        self.assertEqual(logins["alice"]["result"], "SUCCESS")
        self.assertNotIn("userName", logins["bob"])
        self.assertEqual(logins["bob"]["result"], "INCORRECT_PASSWORD")
        sessions = [entry["event"]["SessionIdEvent"]["sessionId"] for entry in events
                    if entry["eventType"] == "SessionIdEvent"]
        self.assertEqual(sessions, ["3f8a-77c1"])
        for entry in events:
            body = entry["event"][entry["eventType"]]
            self.assertIn("environmentData", body)
            self.assertRegex(body["eventDateTime"], r"^\d{4}-\d\d-\d\d \d\d:\d\d:\d\d\.\d{6}$")
        self.assertEqual(server.stop(), 0)

    def test_uploads_carry_the_required_headers(self):
        server = self.start_server()
        host = self.start_host(server.port)
        before = int(time.time())
        host.run_all(["activate", "login alice 0"])
        self.assertEqual(host.drain(), 0)
        host.run_all(["logout"])
        self.assertEqual(host.drain(), 0)
        server_tag = host.run("tag")["value"].partition("_")[2]
        host.quit()
        first, second = server.events()
        for entry in (first, second):
            headers = entry["headers"]
            self.assertEqual(entry["path"], "/stat")
            self.assertEqual(headers["Content-Type"], "application/jose+json")
            self.assertEqual(headers["Content-Encoding"], "gzip")
            self.assertEqual(int(headers["Content-Length"]), entry["bytes"])
            self.assertEqual(headers["Mobile-UUID"], server_tag)
            self.assertTrue(before <= int(headers["Request-Send-Timestamp"]) <= int(time.time()))
        # The server's clock is known from its first answer on.
        self.assertNotIn("Request-Server-Timestamp", first["headers"])
        self.assertTrue(abs(int(second["headers"]["Request-Server-Timestamp"]) / 1000 - before) < 120)

    def test_the_device_tag_outlives_the_process(self):
        server = self.start_server()
        tags = set()
        for _ in range(2):
            host = self.start_host(server.port)
            host.run_all(["activate", "logout"])
            tags.add(host.run("tag")["value"].partition("_")[0])
            self.assertEqual(host.drain(), 0)
            host.quit()
        (tag,) = tags
        self.assertTrue(tag)
        self.assertEqual([entry["event"]["UserLogoutEvent"]["environmentData"]["deviceTag"]
                          for entry in server.events()], [tag, tag])

    def test_the_execution_session_outlives_a_process_that_exits_at_once(self):
        defaults = self.place.home / "Library/Preferences/com.velorin.zrm.mobilekit.userdefaults.plist"
        server = self.start_server()
        first = self.start_host(server.port)
        first.run_all(["activate"])
        first.quit()
        session = plistlib.loads(defaults.read_bytes())["ZRMExecSessionId"]
        second = self.start_host(server.port)
        second.run_all(["activate", "logout"])
        self.assertEqual(second.drain(), 0)
        second.quit()
        self.assertEqual([entry["event"]["UserLogoutEvent"]["environmentData"]["execSessionId"]
                          for entry in server.events()], [session])

    def test_only_the_fingerprint_opens_icu(self):
        server = self.start_server()
        host = self.start_host(server.port)
        maps = pathlib.Path(f"/proc/{host.process.pid}/maps")
        host.run_all(["activate", "login alice SUCCESS", "logout"])
        self.assertEqual(host.drain(), 0)
        self.assertNotIn("libicu", maps.read_text())
        host.run_all(["analyze"])
        self.assertEqual(host.drain(), 0)
        self.assertIn("libicui18n", maps.read_text())
        host.quit()

    def test_a_tag_is_known_after_activation_only(self):
        server = self.start_server()
        host = self.start_host(server.port)
        self.assertIsNone(host.run("tag")["value"])
        host.run_all(["activate"])
        self.assertRegex(host.run("tag")["value"], r"^[^_]+_")
        self.assertEqual(host.run("version")["value"], "3.28.0.12")

    def test_many_reports_all_arrive(self):
        server = self.start_server(options=["--quiet"])
        host = self.start_host(server.port)
        host.run_all(["activate"])
        host.run_all([f"session {number}" for number in range(300)])
        self.assertEqual(host.drain(), 0)
        host.quit()
        arrived = [entry["event"]["SessionIdEvent"]["sessionId"] for entry in server.events()]
        self.assertEqual(sorted(arrived, key=int), [str(number) for number in range(300)])

    def test_wrong_commands_are_answered_and_the_host_goes_on(self):
        server = self.start_server()
        host = self.start_host(server.port)
        for command, code in (("dance", 1), ("login alice", 2), ("login 'alice", 3), ("signal call", 2)):
            answer = host.run(command)
            self.assertEqual((answer["error"]["domain"], answer["error"]["code"]), ("ZRMHostErrorDomain", code))
        self.assertEqual(host.run("wait 0"), {"op": "wait", "error": None})
        self.assertEqual(host.end(), 0)  # the end of the input is as good as quit

    def test_signals_are_taken_before_and_after_activation(self):
        server = self.start_server()
        host = self.start_host(server.port)
        signals = ["signal call 6F9619FF-8B86-D011-B42D-00C04FC964FF connected", "signal screen-captured on",
                   "signal foreground", "signal wifi 'Café Central' a4:5e:60:01:02:03"]
        for command in (*signals, "activate", *signals):
            self.assertIsNone(host.run(command)["error"], command)
        self.assertEqual(host.run("signal battery 2 full")["error"]["code"], 2)
        self.assertEqual(host.end(), 0)

    def test_a_url_that_is_none_fails_activation(self):
        server = self.start_server()
        host = self.start_host(server.port, url="https://127.0.0.1/stat")
        self.assertEqual(host.run("activate")["error"]["code"], 8)

    def test_wrong_usage_exits_two(self):
        for name in ("zrm-host", "zrm-risk-server", "zrm-inspect"):
            self.assertEqual(Program(name, ["--unknown"], self.place.path / "log").end(), 2)
            self.assertEqual(Program(name, ["--help"], self.place.path / "log").end(), 0)
