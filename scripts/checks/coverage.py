#!/usr/bin/env python3
"""Measures the library's coverage after a test run in the coverage preset and fails below the bounds.

usage: coverage.py --build build/coverage   (or --summary FILE, a summary that gcovr wrote earlier)

The bounds: of the whole library 95 % of the lines and 85 % of the branches; of each parser every line. Branches that
only an exception takes do not count.
"""
import argparse
import json
import pathlib
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parents[2]
LINE_PERCENT = 95.0
BRANCH_PERCENT = 85.0
NAMES = {"line": "lines", "branch": "branches"}

# What reads bytes or text that come from outside the process: a server, a file, the kernel, the environment.
PARSERS = """
ZRMCloudKit/ZRMCloudKit_Lib/CloudKit/ZRMCloudKitSettingsValues.cpp
ZRMCloudKit/ZRMCloudKit_Lib/Network/ZRMIpAddress.cpp
ZRMCloudKit/ZRMCloudKit_Lib/SecureDeviceTagProvider/ZRMSecureDeviceTagPayload.cpp
ZRMCoreKit/ZRMCoreKit_Lib/Categories/NSData/NSData+Base64.cpp
ZRMCoreKit/ZRMCoreKit_Lib/Categories/NSData/NSData+Gzip.cpp
ZRMCoreKit/ZRMCoreKit_Lib/Categories/NSDate/NSDate+ZRMCoreKit.cpp
ZRMCoreKit/ZRMCoreKit_Lib/Categories/NSDateComponents/NSDateComponents+ZRMCoreKit.cpp
ZRMCoreKit/ZRMCoreKit_Lib/Categories/NSDateFormatter/NSDateFormatter+ZRMCoreKit.cpp
ZRMCoreKit/ZRMCoreKit_Lib/Categories/NSRegularExpression/NSRegularExpression+ZRMCoreKit.cpp
ZRMCoreKit/ZRMCoreKit_Lib/Categories/NSString/NSString+Json.cpp
ZRMCoreKit/ZRMCoreKit_Lib/Categories/NSString/NSString+ZRMCoreKit.cpp
ZRMCoreKit/ZRMCoreKit_Lib/Categories/NSURL/NSURL+ZRMCoreKit.cpp
ZRMCoreKit/ZRMCoreKit_Lib/DateTime/ZRMDateFormatter.cpp
ZRMCoreKit/ZRMCoreKit_Lib/DateTime/ZRMNumericDatePattern.cpp
ZRMCoreKit/ZRMCoreKit_Lib/Json/ZRMJsonReader.cpp
ZRMCoreKit/ZRMCoreKit_Lib/Text/ZRMCodePoint.cpp
ZRMCoreKit/ZRMCoreKit_Lib/Text/ZRMScanner.cpp
ZRMCoreKit/ZRMCoreKit_Lib/Text/ZRMText.cpp
ZRMCoreKit/ZRMCoreKit_Lib/Url/ZRMUrl.cpp
ZRMJWS/ZRMJWS_Lib/Json/ZRMJwsObject.cpp
ZRMJWS/ZRMJWS_Lib/Json/ZRMJwsPayload.cpp
ZRMJWS/ZRMJWS_Lib/Json/ZRMJwsSignature.cpp
ZRMJWS/ZRMJWS_Lib/Verifier/ZRMPemCertificate.cpp
ZRMMobileKit/ZRMMobileKit_Lib/Settings/Json/ZRMCallInfoEventPolicy+Json.cpp
ZRMMobileKit/ZRMMobileKit_Lib/Settings/Json/ZRMJwsObject+Settings.cpp
ZRMMobileKit/ZRMMobileKit_Lib/Settings/Json/ZRMMobileServiceSettings+Json.cpp
ZRMMobileKit/ZRMMobileKit_Lib/Settings/Json/ZRMScreenRecordingEventPolicy+Json.cpp
ZRMMobileKit/ZRMMobileKit_Lib/Settings/Json/ZRMSettingsJsonValidator.cpp
ZRMMobileKit/ZRMMobileKit_Lib/Settings/Json/ZRMSettingsTexts.cpp
ZRMMobileKit/ZRMMobileKit_Lib/Settings/ZRMSettingsTable.cpp
ZRMPlatform/Linux/ZRMLinuxCrl.cpp
ZRMPlatform/Linux/ZRMLinuxGenericNetlink.cpp
ZRMPlatform/Linux/ZRMLinuxIpAddress.cpp
ZRMPlatform/Linux/ZRMLinuxKeychainItems.cpp
ZRMPlatform/Linux/ZRMLinuxKeyedArchiver.cpp
ZRMPlatform/Linux/ZRMLinuxLanguageTag.cpp
ZRMPlatform/Linux/ZRMLinuxOcsp.cpp
ZRMPlatform/Linux/ZRMLinuxPropertyList.cpp
ZRMPlatform/Linux/ZRMLinuxPropertyListBounds.cpp
ZRMPlatform/Linux/ZRMLinuxResolveOverrides.cpp
ZRMPlatform/Linux/ZRMLinuxSystemText.cpp
ZRMPlatform/Linux/ZRMLinuxX509.cpp
ZRMPlatform/Ports/Values/ZRMUrlRequest.cpp
ZRMStatistics/ZRMStatistics_Lib/Storage/ZRMManagedObjectModel.cpp
ZRMSystemWatcher/ZRMSystemWatcher_Lib/CodeSignatureWatcher/ZRMCodeSignatureBlob.cpp
ZRMSystemWatcher/ZRMSystemWatcher_Lib/CodeSignatureWatcher/ZRMCodeSignatureWatcher.cpp
ZRMSystemWatcher/ZRMSystemWatcher_Lib/Image/ZRMExecutableHeader.cpp
ZRMSystemWatcher/ZRMSystemWatcher_Lib/Image/ZRMImageView.cpp
ZRMSystemWatcher/ZRMSystemWatcher_Lib/Image/ZRMUniversalFile.cpp
""".split()


def measure(build):
    """Leaves the lines that no test reaches in coverage.txt, and returns the summary."""
    summary = build / "coverage.json"
    subprocess.run(["gcovr", "--root", ROOT, "--object-directory", build, "-j", "2", "--exclude-throw-branches",
                    "--filter", "(ZRM|JailbreakDetection).*", "--exclude", ".*_Tests/.*", "--exclude", ".*Simulated.*",
                    "--txt", build / "coverage.txt", "--json-summary", summary, build], cwd=ROOT, check=True)
    return summary


def problems_of(summary, parsers):
    """What keeps the summary from its bounds, one text each."""
    files = {entry["filename"]: entry for entry in summary["files"]}
    problems = []
    if not summary["line_total"] or not summary["branch_total"]:
        return ["nothing was measured"]
    for what, bound in (("line", LINE_PERCENT), ("branch", BRANCH_PERCENT)):
        covered, total = summary[f"{what}_covered"], summary[f"{what}_total"]
        if covered / total * 100 < bound:
            problems.append(f"{covered} of {total} {NAMES[what]} are covered, {covered / total:.1%}; at least {bound:g}% must be")
    for parser in parsers:
        entry = files.get(parser)
        if entry is None or not entry["line_total"]:
            problems.append(f"{parser}: a parser of which nothing was measured")
        elif entry["line_covered"] < entry["line_total"]:
            problems.append(f"{parser}: a parser with {entry['line_total'] - entry['line_covered']} lines not covered")
    return problems


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    source = parser.add_mutually_exclusive_group(required=True)
    source.add_argument("--build", type=pathlib.Path, help="the coverage preset's build directory")
    source.add_argument("--summary", type=pathlib.Path, help="gcovr's JSON summary")
    arguments = parser.parse_args()
    path = arguments.summary or measure(arguments.build.resolve())
    summary = json.loads(path.read_text(encoding="utf-8"))
    problems = problems_of(summary, PARSERS)
    for problem in problems:
        print(problem)
    for what in ("line", "branch"):
        print(f"{what} coverage: {summary[f'{what}_covered']} of {summary[f'{what}_total']}, {summary[f'{what}_percent']}%")
    sys.exit(1 if problems else 0)


if __name__ == "__main__":
    main()
