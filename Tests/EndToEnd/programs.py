"""The programs under test as objects, and a place for each test to run them in."""
import json
import os
import pathlib
import plistlib
import select
import shutil
import signal
import socket
import subprocess
import tempfile
import time
import unittest

ROOT = pathlib.Path(__file__).resolve().parents[2]
TOOLS = pathlib.Path(os.environ["ZRM_TOOLS_DIR"])
HOST_NAME = "risk.example.com"  # the library refuses hosts without a dot and numeric addresses
LIMIT_SECONDS = 60 * int(os.environ.get("ZRM_TIME_FACTOR", "1"))  # a sanitizer slows the programs down
# Every activation reports the calls under way, unless the settings say otherwise. The tests count
# what they report themselves, so their hosts find such settings stored.
WITHOUT_CALLS = {"iosCallInfoEventDisabled": "true"}


class Lines:
    """Lines of a pipe, each waited for at most LIMIT_SECONDS."""

    def __init__(self, pipe):
        self._descriptor = pipe.fileno()
        self._held = b""

    def next(self):
        """The next line without its end, or None where the pipe has ended."""
        end = time.monotonic() + LIMIT_SECONDS
        while b"\n" not in self._held:
            ready, _, _ = select.select([self._descriptor], [], [], max(0, end - time.monotonic()))
            if not ready:
                raise TimeoutError(f"no line within {LIMIT_SECONDS} s; so far {self._held!r}")
            chunk = os.read(self._descriptor, 65536)
            if not chunk:
                return None
            self._held += chunk
        line, self._held = self._held.split(b"\n", 1)
        return line.decode()


class Program:
    """A running program; what it writes on standard error goes to a file."""

    def __init__(self, name, arguments, log):
        self._log_path = log
        self._log = open(log, "ab")
        self.process = subprocess.Popen([TOOLS / name / name, *map(str, arguments)], stdin=subprocess.PIPE,
                                        stdout=subprocess.PIPE, stderr=self._log)
        self.lines = Lines(self.process.stdout)

    def log(self):
        return self._log_path.read_text(errors="replace")

    def end(self, number=None):
        """Sends the signal, if any, waits for the end and returns the exit status."""
        if number is not None and self.process.poll() is None:
            self.process.send_signal(number)
        if not self.process.stdin.closed:
            self.process.stdin.close()
        try:
            status = self.process.wait(timeout=LIMIT_SECONDS)
        except subprocess.TimeoutExpired:
            self.process.kill()
            raise
        finally:
            self.process.stdout.close()
            self._log.close()
        return status


class Server(Program):
    def __init__(self, place, port=0, faults=(), options=()):
        self.events_path = place.path / "events.jsonl"
        arguments = ["--listen", f"127.0.0.1:{port}", "--pki", place.pki, "--events", self.events_path]
        for fault in faults:
            arguments += ["--fault", fault]
        super().__init__("zrm-risk-server", [*arguments, *options], place.path / "server.log")
        self.first_line = self.lines.next()
        if self.first_line is None or not self.first_line.startswith("listening on "):
            raise RuntimeError(f"the server did not start: {self.log()}")
        self.port = int(self.first_line.rsplit(":", 1)[1])

    def events(self):
        """What has arrived so far, without a line that is still being written."""
        return [json.loads(line) for line in self.events_path.read_text().split("\n")[:-1]]

    def stop(self):
        return self.end(signal.SIGTERM)


class Host(Program):
    def __init__(self, place, port, url=None, authority="tls-ca.pem", options=()):
        super().__init__("zrm-host", [
            "--home", place.home, "--resources", place.resources, "--bundle", place.bundle,
            "--statistics-url", url or f"https://{HOST_NAME}:{port}/stat", "--ca", place.pki / authority,
            "--resolve", f"{HOST_NAME}:{port}:127.0.0.1", *options], place.path / "host.log")

    def send(self, command):
        self.process.stdin.write(command.encode() + b"\n")
        self.process.stdin.flush()

    def run(self, command):
        """The answer to one command."""
        self.send(command)
        line = self.lines.next()
        if line is None:
            raise RuntimeError(f"the host ended at {command!r}: {self.log()}")
        return json.loads(line)

    def run_all(self, commands):
        """Runs commands that must succeed."""
        for command in commands:
            answer = self.run(command)
            if answer["error"] is not None:
                raise AssertionError(f"{command!r}: {answer['error']}")

    def drain(self):
        """How many events are still queued once the time is over."""
        return self.run(f"drain {LIMIT_SECONDS / 2}")["value"]

    def quit(self):
        self.send("quit")
        return self.end()


class Place:
    """A directory with what the programs need: keys, the application's bundle, resources, a home."""

    def __init__(self, path):
        self.path = pathlib.Path(path)
        self.pki = self.path / "pki"
        self.home = self.path / "home"
        self.bundle = self.path / "Example.app"
        self.resources = self.path / "resources"
        self.settings = self.path / "settings.json"
        self.bundle.mkdir()
        with open(self.bundle / "Info.plist", "wb") as file:
            plistlib.dump({"CFBundleIdentifier": "com.example.bank", "CFBundleVersion": "7"}, file)
        shutil.copytree(ROOT / "ZRMStatistics/Resources/ZRMStatisticsResources.bundle",
                        self.resources / "ZRMStatisticsResources.bundle")

    def pin_root(self):
        pinned = self.resources / "ZRMMobileKitResources.bundle"
        pinned.mkdir(exist_ok=True)
        shutil.copy(self.pki / "VelorinRootCA.crt", pinned)


def steered(port):
    """Options of a host whose settings and tag come from the server on that port."""
    return ["--resolve", f"localhost:8443:127.0.0.1:{port}", "--log-level", "0"]


def free_port():
    with socket.socket() as listener:
        listener.bind(("127.0.0.1", 0))
        return listener.getsockname()[1]


class EndToEndTest(unittest.TestCase):
    """Each test has a place of its own, and leaves no program behind. Keys are made once a suite."""

    starts_without_settings = False

    @classmethod
    def setUpClass(cls):
        cls._shared = tempfile.TemporaryDirectory(prefix="zrm-e2e-pki-")
        cls._pki = pathlib.Path(cls._shared.name) / "pki"
        maker = Program("zrm-risk-server", ["--listen", "127.0.0.1:0", "--pki", cls._pki],
                        pathlib.Path(cls._shared.name) / "log")
        maker.lines.next()
        maker.end(signal.SIGTERM)
        if not cls.starts_without_settings:
            cls._settings = cls._settings_without_calls(pathlib.Path(cls._shared.name) / "place")

    @classmethod
    def _settings_without_calls(cls, directory):
        """Where below its home a host stores a server's settings, and what it stores."""
        directory.mkdir()
        place = Place(directory)
        shutil.copytree(cls._pki, place.pki)
        place.pin_root()
        place.settings.write_text(json.dumps(WITHOUT_CALLS))
        server = Server(place, options=["--settings", place.settings])
        host = Host(place, server.port, options=steered(server.port))
        try:
            host.run_all(["activate"])
            end = time.monotonic() + LIMIT_SECONDS
            while "Settings update complete" not in host.log():
                if time.monotonic() > end:
                    raise TimeoutError(f"no settings arrived: {host.log()}")
                host.run("wait 0.02")
        finally:
            host.quit()
            server.stop()
        (stored,) = place.home.rglob("zrm.settings")
        return stored.relative_to(place.home), stored.read_bytes()

    @classmethod
    def tearDownClass(cls):
        cls._shared.cleanup()

    def setUp(self):
        directory = tempfile.TemporaryDirectory(prefix="zrm-e2e-")
        self.addCleanup(directory.cleanup)
        self.place = Place(directory.name)
        shutil.copytree(self._pki, self.place.pki)
        self.place.pin_root()
        if not self.starts_without_settings:
            path, document = self._settings
            (self.place.home / path).parent.mkdir(parents=True)
            (self.place.home / path).write_bytes(document)

    def _watch(self, program):
        self.addCleanup(lambda: program.process.poll() is None and program.end(signal.SIGKILL))
        return program

    def start_server(self, **keywords):
        return self._watch(Server(self.place, **keywords))

    def start_host(self, port, **keywords):
        return self._watch(Host(self.place, port, **keywords))

    def wait_until(self, condition, host):
        """Looks at the condition again and again, the host waiting in between."""
        end = time.monotonic() + LIMIT_SECONDS
        while not condition():
            self.assertLess(time.monotonic(), end, "the condition did not come true")
            host.run("wait 0.02")

    def inspect(self, *arguments):
        """The inspector's exit status and report."""
        run = subprocess.run([TOOLS / "zrm-inspect/zrm-inspect", *map(str, arguments)], capture_output=True,
                             timeout=LIMIT_SECONDS, check=False)
        return run.returncode, json.loads(run.stdout)
