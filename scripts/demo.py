#!/usr/bin/env python3
"""The main job, shown: a host application reports to a risk server on loopback over TLS.

Runs the scriptable host twice against the reference risk server. The first run goes by the built-in
settings; meanwhile the library fetches the server's, which switch navigation, the code signature and
the applied settings on and calls off, and a device tag. The second run goes by what the first one fetched. Shows what the host was told
beside what arrived, and ends with a status other than 0 when the two do not agree.
"""
import argparse
import json
import pathlib
import plistlib
import re
import shutil
import subprocess
import sys
import tempfile
import time

ROOT = pathlib.Path(__file__).resolve().parents[1]
HOST_NAME = "risk.example.com"  # the library refuses hosts without a dot and numeric addresses
TIMEOUT_SECONDS = 60
FIELD_COLUMN = 100  # characters
SHOWN_ELEMENTS = 3

SETTINGS = {"uiNavigationEventDisabled": "false", "iosCallInfoEventDisabled": "true",
            "iosApplicationSignatureEventDisabled": "false", "configEventDisabled": "false"}
CALL = "7a1c2b3d-0000-4000-8000-00000000c0de"

# Command, what is expected of it (an error code or None), and the events that must arrive because of it.
FIRST_RUN = [
    ("version", None, []),
    ("login alice SUCCESS", 3, []),  # before activation: not ready
    ("activate", None, ["IOSCallInfoEvent"]),
    ("analyze", None, ["ApplicationInfoEvent", "IOSFingerprintEvent", "TouchIdChangedEvent", "DeviceJailbreakEvent",
                       "ScreenRecordingEvent", "VPNEvent"]),
    ('login alice SUCCESS "Alice Example"', None, ["UserLoginEvent"]),
    ("login alice INCORRECT_PASSWORD", None, ["UserLoginEvent"]),
    ("session 3f8a-77c1", None, ["SessionIdEvent"]),
    ("navigate /accounts/overview", 12, []),  # switched off by the built-in settings
    (f"signal call {CALL} connected", None, ["IOSCallInfoEvent"]),
    ("signal location-authorization when-in-use", None, []),
    ("signal location-services on", None, []),
    ("location", None, ["IOSGeoLocationEvent"]),
    ("signal location 48.2082 16.3738 8", None, []),
    ("logout", None, ["UserLogoutEvent"]),
    ("drain 30", None, []),
]
SECOND_RUN = [
    # What has not changed since the first run, the bundle and the biometric state, is not told again.
    ("start", None, ["IOSFingerprintEvent", "DeviceJailbreakEvent", "IOSApplicationSignatureEvent", "ConfigEvent",
                     "ScreenRecordingEvent", "VPNEvent"]),
    ("tag", None, []),
    ("navigate /accounts/overview", None, ["UINavigationEvent"]),  # switched on by the server's
    ("signal screenshot", None, ["iOSScreenshotEvent"]),
    ("signal screen-captured on", None, ["ScreenRecordingEvent"]),
    ("signal vpn on", None, []),
    ("signal foreground", None, ["VPNEvent"]),
    ("logout", None, ["UserLogoutEvent"]),
    ("drain 30", None, []),
]


def fail(text):
    print(f"\ndemo: {text}", file=sys.stderr)
    sys.exit(1)


def prepare(work):
    """The application that the library is embedded in: its bundle, its resources, its home."""
    bundle = work / "Demo.app"
    bundle.mkdir()
    with open(bundle / "Info.plist", "wb") as file:
        plistlib.dump({"CFBundleIdentifier": "com.example.demobank", "CFBundleVersion": "42"}, file)
    resources = work / "resources"
    resources.mkdir()
    shutil.copytree(ROOT / "ZRMStatistics/Resources/ZRMStatisticsResources.bundle",
                    resources / "ZRMStatisticsResources.bundle")
    pinned = resources / "ZRMMobileKitResources.bundle"
    pinned.mkdir()
    shutil.copy(work / "pki/VelorinRootCA.crt", pinned)
    return bundle, resources


def start_server(build, work):
    server = subprocess.Popen(
        [build / "Tools/zrm-risk-server/zrm-risk-server", "--listen", "127.0.0.1:0", "--pki", work / "pki",
         "--events", work / "events.jsonl", "--settings", work / "settings.json", "--tag-interval", "PT2H",
         "--quiet"],
        stdout=subprocess.PIPE, text=True)
    first = server.stdout.readline()
    if "listening on" not in first:
        fail(f"the risk server did not start: {first!r}")
    print(f"risk server  {first.strip()}")
    return server, int(first.strip().rsplit(":", 1)[1])


def is_steered(work):
    """Whether the library has stored the server's settings and tag."""
    state = work / "home"
    tagged = [path.read_bytes() for path in state.rglob("ZRMCloudKitSettings") if path.is_file()]
    return any(state.rglob("zrm.settings")) and any(b"ZRMSecureDeviceTagRefreshDate" in data and b"L!" not in data
                                                    for data in tagged)


def run_host(build, work, port, application, steps, goes_on=lambda: False):
    """The answers to the steps; the host then stays as long as it goes on."""
    bundle, resources = application
    command = [build / "Tools/zrm-host/zrm-host", "--home", work / "home", "--resources", resources,
               "--bundle", bundle, "--statistics-url", f"https://{HOST_NAME}:{port}/stat", "--log-level", "1",
               "--ca", work / "pki/tls-ca.pem", "--resolve", f"{HOST_NAME}:{port}:127.0.0.1",
               "--resolve", f"localhost:8443:127.0.0.1:{port}"]  # the built-in endpoints of settings and tag
    with subprocess.Popen(command, stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True) as host:
        try:
            def ask(step):
                print(step, file=host.stdin, flush=True)
                return json.loads(host.stdout.readline() or fail(f"the host ended at '{step}'"))

            answers = [ask(step) for step, _, _ in steps]
            end = time.monotonic() + TIMEOUT_SECONDS
            while goes_on() and time.monotonic() < end:
                ask("wait 0.05")
            ask("quit")
            host.wait(timeout=TIMEOUT_SECONDS)
        finally:
            host.kill()
    if host.returncode != 0:
        fail(f"the host ended with status {host.returncode}")
    return answers


def table(title, header, rows):
    widths = [max(len(str(row[column])) for row in [header, *rows]) for column in range(len(header))]
    print(f"\n{title}\n")
    for index, row in enumerate([header, *rows]):
        print("  " + "  ".join(str(cell).ljust(width) for cell, width in zip(row, widths)).rstrip())
        if index == 0:
            print("  " + "  ".join("-" * width for width in widths))


def own_fields(event):
    """An event's own members, without the envelope that all events share."""
    shared = {"environmentData", "eventDateTime", "structVersion", "serverEventDateTime", "permissions"}
    body = next(iter(event.values()))
    return {key: value for key, value in body.items() if key not in shared}


def show_answers(title, steps, answers):
    rows = []
    for (step, _, _), answer in zip(steps, answers):
        error = answer["error"]
        told = f"error {error['code']}: {error['message']}" if error else "ok"
        if "value" in answer:
            told += f", {json.dumps(answer['value'])}"
        rows.append((step, told))
    table(title, ("command", "answer"), rows)


def shortened(text):
    return text if len(text) <= FIELD_COLUMN else text[:FIELD_COLUMN - 1] + "…"


def without_long_lists(value):
    """The value with every list of more than a few elements cut, so that a page can be read."""
    if isinstance(value, dict):
        return {key: without_long_lists(member) for key, member in value.items()}
    if isinstance(value, list):
        shown = [without_long_lists(element) for element in value[:SHOWN_ELEMENTS]]
        return shown + [f"… and {len(value) - SHOWN_ELEMENTS} more"] if len(value) > SHOWN_ELEMENTS else shown
    return value


def show_events(events):
    rows = [(entry["time"], entry["eventType"], entry["bytes"], entry["headers"].get("Mobile-UUID", ""),
             shortened(json.dumps(own_fields(entry["event"]), ensure_ascii=False))) for entry in events]
    table("What arrived at the risk server", ("time", "event", "bytes", "Mobile-UUID", "own fields"), rows)

    print("\nThe same, decoded, as JSON\n")
    for entry in events:
        print(json.dumps(without_long_lists(entry["event"]), indent=2, ensure_ascii=False))


def verify(runs, events):
    for steps, answers in runs:
        for (step, code, _), answer in zip(steps, answers):
            told = answer["error"]["code"] if answer["error"] else None
            if told != code:
                fail(f"'{step}' ended with {answer['error']}, expected code {code}")
    expected = sorted(event for steps, _ in runs for _, _, awaited in steps for event in awaited)
    arrived = sorted(entry["eventType"] for entry in events)
    if arrived != expected:
        fail(f"expected to arrive: {expected}; arrived: {arrived}")
    tag = events[-1]["headers"]["Mobile-UUID"]
    if not re.fullmatch("[0-9A-F]{8}(-[0-9A-F]{4}){3}-[0-9A-F]{12}", tag):
        fail(f"the second run did not send the server's tag, but {tag!r}")


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--build", required=True)
    build = ROOT / parser.parse_args().build
    with tempfile.TemporaryDirectory(prefix="zrm-demo-") as folder:
        work = pathlib.Path(folder)
        (work / "settings.json").write_text(json.dumps(SETTINGS))
        server, port = start_server(build, work)
        try:
            application = prepare(work)
            first = run_host(build, work, port, application, FIRST_RUN, goes_on=lambda: not is_steered(work))
            second = run_host(build, work, port, application, SECOND_RUN)
        finally:
            server.terminate()
            server.wait(timeout=TIMEOUT_SECONDS)
        events = [json.loads(line) for line in (work / "events.jsonl").read_text().splitlines()]
    show_answers("First run, by the built-in settings: what the host asked, and what it was told", FIRST_RUN, first)
    print(f"\nMeanwhile the library fetched the server's signed settings, {json.dumps(SETTINGS)}, and a device tag.")
    show_answers("Second run, by the server's settings", SECOND_RUN, second)
    show_events(events)
    verify([(FIRST_RUN, first), (SECOND_RUN, second)], events)
    print(f"\nAll {len(events)} events that the host was promised arrived, each once.")


if __name__ == "__main__":
    main()
