"""No event is lost when the server is away or the application is killed."""
import signal

from programs import EndToEndTest, free_port

REPORTS = ["login alice 0", "session 1", "logout"]
TYPES = ["SessionIdEvent", "UserLoginEvent", "UserLogoutEvent"]


class Survival(EndToEndTest):
    def _expect_each_once(self, server):
        self.assertEqual(sorted(entry["eventType"] for entry in server.events()), TYPES)

    def _deliver_at_next_start(self, port):
        server = self.start_server(port=port)
        host = self.start_host(port)
        host.run_all(["activate"])
        self.assertEqual(host.drain(), 0)
        host.quit()
        self._expect_each_once(server)

    def test_events_wait_for_a_server_that_is_down(self):
        port = free_port()
        host = self.start_host(port)
        host.run_all(["activate", *REPORTS])
        self.assertEqual(host.run("drain 0")["value"], 3)
        host.quit()
        status, report = self.inspect("store", self.place.home)
        self.assertEqual(status, 0)
        self.assertEqual([record["eventType"] for record in report["records"]],
                         ["UserLoginEvent", "SessionIdEvent", "UserLogoutEvent"])
        self._deliver_at_next_start(port)
        self.assertEqual(self.inspect("store", self.place.home)[1]["records"], [])

    def test_events_wait_within_one_run_too(self):
        port = free_port()
        host = self.start_host(port)
        host.run_all(["activate", *REPORTS])
        self.assertEqual(host.run("drain 0")["value"], 3)
        server = self.start_server(port=port)
        self.assertEqual(host.drain(), 0)
        host.quit()
        self._expect_each_once(server)

    def test_events_outlive_a_killed_application(self):
        port = free_port()
        host = self.start_host(port)
        host.run_all(["activate", *REPORTS])
        self.assertEqual(host.end(signal.SIGKILL), -signal.SIGKILL)
        self._deliver_at_next_start(port)

    def test_answered_events_are_not_sent_again_after_a_kill(self):
        server = self.start_server()
        host = self.start_host(server.port)
        host.run_all(["activate", *REPORTS])
        self.assertEqual(host.drain(), 0)
        host.end(signal.SIGKILL)
        host = self.start_host(server.port)
        host.run_all(["activate"])
        self.assertEqual(host.drain(), 0)
        host.quit()
        self._expect_each_once(server)
