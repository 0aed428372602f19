"""What becomes of an event when the server misbehaves. Retries wait for two real seconds."""
import time

from programs import EndToEndTest

FIRST_RETRY_SECONDS = 2


class Faults(EndToEndTest):
    def _report_one(self, *faults):
        server = self.start_server(faults=faults)
        host = self.start_host(server.port)
        host.run_all(["activate"])
        began = time.monotonic()
        host.run_all(["login alice 0"])
        pending = host.drain()
        return server, host, pending, time.monotonic() - began

    def _requests(self, server):
        return [line for line in server.log().splitlines() if line.startswith("POST /stat")]

    def _expect_retry_after(self, fault, note):
        server, host, pending, seconds = self._report_one(fault)
        host.quit()
        self.assertEqual(pending, 0)
        self.assertGreaterEqual(seconds, FIRST_RETRY_SECONDS)
        self.assertEqual(len(server.events()), 1)
        self.assertEqual(self._requests(server), [f"POST /stat fault: {note}", "POST /stat 200"])

    def test_a_server_error_is_retried_after_two_seconds(self):
        self._expect_retry_after("stat:503*1", "503")

    def test_a_closed_connection_is_retried(self):
        self._expect_retry_after("stat:close", "closed")

    def test_a_reset_connection_is_retried(self):
        self._expect_retry_after("stat:reset", "reset")

    def test_a_client_error_is_an_answer_and_ends_the_event(self):
        server, host, pending, _ = self._report_one("stat:404")
        host.quit()
        self.assertEqual(pending, 0)
        self.assertEqual(server.events(), [])
        self.assertEqual(self._requests(server), ["POST /stat fault: 404"])

    def test_a_late_answer_is_waited_for(self):
        server, host, pending, seconds = self._report_one("stat:delay=300ms")
        host.quit()
        self.assertEqual(pending, 0)
        self.assertGreaterEqual(seconds, 0.3)
        self.assertEqual(len(self._requests(server)), 1)

    def test_garbage_keeps_the_event_for_the_next_start(self):
        server = self.start_server(faults=["stat:garbage"])
        host = self.start_host(server.port)
        host.run_all(["activate", "login alice 0"])
        self.wait_until(lambda: "fault: garbage" in server.log(), host)
        self.assertEqual(host.run("drain 0.5")["value"], 1)
        host.quit()
        self.assertEqual(server.events(), [])
        host = self.start_host(server.port)
        host.run_all(["activate"])
        self.assertEqual(host.drain(), 0)
        host.quit()
        self.assertEqual(len(server.events()), 1)

    def test_a_server_that_is_not_trusted_gets_nothing(self):
        server = self.start_server()
        host = self.start_host(server.port, authority="VelorinRootCA.crt")
        host.run_all(["activate", "login alice 0"])
        self.assertEqual(host.run("drain 1")["value"], 1)
        host.quit()
        self.assertEqual(server.events(), [])
