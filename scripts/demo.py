#!/usr/bin/env python3
"""The main job, shown: a host application reports to a risk server on loopback over TLS.

Starts the reference risk server, runs the scriptable host against it, waits until every event was
answered, and shows what the host was told beside what arrived. Ends with a status other than 0 when
the two do not agree.
"""
import argparse
import json
import pathlib
import plistlib
import shutil
import subprocess
import sys
import tempfile

ROOT = pathlib.Path(__file__).resolve().parents[1]
HOST_NAME = "risk.example.com"  # the library refuses hosts without a dot and numeric addresses
TIMEOUT_SECONDS = 60

# Command, and what is expected of it: an error code or None, and the event that must arrive.
STEPS = [
    ("version", None, None),
    ("login alice SUCCESS", 3, None),  # before activation: not ready
    ("activate", None, None),
    ("tag", None, None),
    ('login alice SUCCESS "Alice Example"', None, "UserLoginEvent"),
    ("login alice INCORRECT_PASSWORD", None, "UserLoginEvent"),
    ("session 3f8a-77c1", None, "SessionIdEvent"),
    ("navigate /accounts/overview", 12, None),  # switched off by the default settings
    ("logout", None, "UserLogoutEvent"),
    ("drain 30", None, None),
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
         "--events", work / "events.jsonl", "--quiet"],
        stdout=subprocess.PIPE, text=True)
    first = server.stdout.readline()
    if "listening on" not in first:
        fail(f"the risk server did not start: {first!r}")
    print(f"risk server  {first.strip()}")
    return server, int(first.strip().rsplit(":", 1)[1])


def run_host(build, work, port):
    bundle, resources = prepare(work)
    command = [build / "Tools/zrm-host/zrm-host", "--home", work / "home", "--resources", resources,
               "--bundle", bundle, "--statistics-url", f"https://{HOST_NAME}:{port}/stat", "--log-level", "1",
               "--ca", work / "pki/tls-ca.pem", "--resolve", f"{HOST_NAME}:{port}:127.0.0.1"]
    script = "\n".join(step for step, _, _ in STEPS) + "\nquit\n"
    host = subprocess.run(command, input=script, stdout=subprocess.PIPE, text=True, timeout=TIMEOUT_SECONDS)
    if host.returncode != 0:
        fail(f"the host ended with status {host.returncode}")
    return [json.loads(line) for line in host.stdout.splitlines()]


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


def show(answers, events):
    rows = []
    for (step, _, _), answer in zip(STEPS, answers):
        error = answer["error"]
        told = f"error {error['code']}: {error['message']}" if error else "ok"
        if "value" in answer:
            told += f", {json.dumps(answer['value'])}"
        rows.append((step, told))
    table("What the host asked, and what it was told", ("command", "answer"), rows)

    rows = [(entry["time"], entry["eventType"], entry["bytes"], entry["headers"].get("Mobile-UUID", ""),
             json.dumps(own_fields(entry["event"]))) for entry in events]
    table("What arrived at the risk server", ("time", "event", "bytes", "Mobile-UUID", "own fields"), rows)

    print("\nThe same, decoded, as JSON\n")
    for entry in events:
        print(json.dumps(entry["event"], indent=2, ensure_ascii=False))


def verify(answers, events):
    if len(answers) < len(STEPS):
        fail(f"{len(STEPS)} commands were given, {len(answers)} answered")
    for (step, code, _), answer in zip(STEPS, answers):
        told = answer["error"]["code"] if answer["error"] else None
        if told != code:
            fail(f"'{step}' ended with {answer['error']}, expected code {code}")
    expected = sorted(event for _, _, event in STEPS if event)
    arrived = sorted(entry["eventType"] for entry in events)
    if arrived != expected:
        fail(f"expected to arrive: {expected}; arrived: {arrived}")


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--build", required=True)
    build = ROOT / parser.parse_args().build
    with tempfile.TemporaryDirectory(prefix="zrm-demo-") as folder:
        work = pathlib.Path(folder)
        server, port = start_server(build, work)
        try:
            answers = run_host(build, work, port)
        finally:
            server.terminate()
            server.wait(timeout=TIMEOUT_SECONDS)
        events = [json.loads(line) for line in (work / "events.jsonl").read_text().splitlines()]
    show(answers, events)
    verify(answers, events)
    print(f"\nAll {len(events)} events that the host was promised arrived, each once.")


if __name__ == "__main__":
    main()
