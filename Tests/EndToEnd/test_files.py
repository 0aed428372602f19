"""What the host's files are worth: who may read them, and what becomes of damaged ones."""
import contextlib
import os
import stat
import subprocess

from programs import EndToEndTest, Host, free_port

TAG_LENGTH = 36
DAMAGE = b"\xff\x00 damaged \x00"


class Files(EndToEndTest):
    starts_without_settings = True  # so that every file is of the library's own making

    def _run(self, commands=("activate", "login alice 0")):
        host = self.start_host(free_port(), options=["--log-level", "0"])
        host.run_all(commands)
        tag = host.run("tag")["value"]
        host.quit()
        return tag[:TAG_LENGTH]

    def _files(self, part):
        return [path for path in self.place.home.rglob("*") if path.is_file() and part in path.name]

    def _modes(self):
        modes = {}
        for path in self.place.home.rglob("*"):
            with contextlib.suppress(FileNotFoundError):  # one that was about to replace another
                modes[str(path.relative_to(self.place.home))] = stat.S_IMODE(path.stat().st_mode)
        return modes

    def _expect_private_files_under(self, mask):
        before = os.umask(mask)
        try:
            host = self.start_host(free_port(), options=["--log-level", "0"])
            host.run_all(["activate", "login alice 0"])
            modes = self._modes()  # with the store's log and index, which exist while it is open
            host.quit()
        finally:
            os.umask(before)
        self.assertTrue(any(name.endswith("-wal") for name in modes), modes)
        for name, mode in modes.items():
            expected = 0o700 if (self.place.home / name).is_dir() else 0o600
            self.assertEqual(oct(mode), oct(expected), name)

    def test_files_are_private_under_an_open_umask(self):
        self._expect_private_files_under(0)

    def test_files_are_private_and_usable_under_a_closed_umask(self):
        self._expect_private_files_under(0o777)

    def _damage(self, name):
        (path,) = [path for path in self.place.home.rglob(name) if path.is_file() and path.suffix != ".lock"]
        path.write_bytes(DAMAGE)
        return path

    def _expect_evidence(self, name):
        kept = [path for path in self._files(name + ".damaged-") if not path.name.endswith("-shm")]
        self.assertEqual([path.read_bytes() for path in kept], [DAMAGE])
        self.assertIn(name, (self.place.path / "host.log").read_text(errors="replace"))

    def test_the_device_tag_survives_a_damaged_archive(self):
        tag = self._run()
        self._damage("ZRMCloudKitSettings")
        self.assertEqual(self._run(), tag)
        self._expect_evidence("ZRMCloudKitSettings")

    def test_a_damaged_defaults_file_is_kept_and_replaced(self):
        tag = self._run()
        name = self._damage("*userdefaults*").name
        self.assertEqual(self._run(), tag)
        self._expect_evidence(name)

    def test_a_damaged_keychain_file_is_kept_and_the_archive_gives_the_tag(self):
        tag = self._run()
        name = self._damage("*eychain*").name
        self.assertEqual(self._run(), tag)
        self._expect_evidence(name)

    def test_a_damaged_store_is_kept_and_a_fresh_one_takes_over(self):
        self._run()
        store = self._damage("ZRMStatisticsStorage")
        store.with_name(store.name + "-wal").unlink()  # it alone holds every record
        host = self.start_host(free_port())
        host.run_all(["activate", "session 1"])
        host.quit()
        status, report = self.inspect("store", self.place.home)
        self.assertEqual(status, 0)
        types = [record["eventType"] for record in report["records"]]
        self.assertIn("SessionIdEvent", types)
        self.assertNotIn("UserLoginEvent", types)
        self._expect_evidence("ZRMStatisticsStorage")
        self.assertIn("records carried over: 0", host.log())


class TwoHosts(EndToEndTest):
    """Processes of one application that share a home."""
    EACH = 40

    def test_two_processes_started_at_once_lose_nothing(self):
        port = free_port()
        hosts = [self.start_host(port) for _ in range(2)]
        for host in hosts:
            host.send("activate")
        for host in hosts:
            self.assertIn('"error":null', host.lines.next())
        for number in range(self.EACH):
            for name, host in enumerate(hosts):
                host.send(f"login user-{name}-{number} 0")
        for host in hosts:
            for _ in range(self.EACH):
                self.assertIn('"error":null', host.lines.next())
        for host in hosts:
            host.quit()
        status, report = self.inspect("store", self.place.home)
        self.assertEqual(status, 0)
        self.assertEqual(len(report["records"]), 2 * self.EACH)
        self.assertEqual([path for path in self.place.home.rglob("*.damaged*")], [])


class ProcessExit(EndToEndTest):
    LIMIT_SECONDS = 5  # where a hang would be for ever

    def test_exit_with_uploads_in_flight_and_timers_pending_neither_hangs_nor_crashes(self):
        # The first answers are held back for longer than the test; later connections are refused.
        server = self.start_server(faults=["stat:delay=120s*4", "stat:503*100"])
        host = self.start_host(server.port)
        host.run_all(["activate", *[f"login user-{number} 0" for number in range(12)]])
        host.send("quit")
        host.process.stdin.close()
        try:
            self.assertEqual(host.process.wait(timeout=self.LIMIT_SECONDS), 0)
        except subprocess.TimeoutExpired:
            self.fail("the host hangs at its end")
        status, report = self.inspect("store", self.place.home)
        self.assertEqual(status, 0)
        self.assertEqual(len(report["records"]), 12)
