#!/usr/bin/env python3
"""Checks that the shared library shows the public interface and nothing else. usage: exports.py LIBRARY"""
import re
import subprocess
import sys

ALLOWED = re.compile(r"^(ZRMDeviceSignals::|ZRMMobileService::|ZRMMobileServiceConfiguration::|ZRMPlatform::(current|install)\(|"
                     r"zrm_(makeLinuxPlatform|stringFromLoginResult)\b|"
                     r"(typeinfo|typeinfo name|vtable) for ZRM(AssertionFailure|InvalidArgument)$)")
NEEDED = ["ZRMDeviceSignals::updateCall(", "ZRMMobileService::createServiceWithConfiguration(", "ZRMMobileServiceConfiguration::configuration(",
          "ZRMPlatform::install(", "zrm_makeLinuxPlatform(", "zrm_stringFromLoginResult",
          "typeinfo for ZRMAssertionFailure"]


def main():
    listing = subprocess.run(["nm", "-DC", "--defined-only", sys.argv[1]], check=True, capture_output=True, text=True)
    names = [line.split(" ", 2)[2] for line in listing.stdout.splitlines()]
    problems = [f"shows {name}" for name in names if not ALLOWED.match(name)]
    problems += [f"does not show {needed}" for needed in NEEDED if not any(name.startswith(needed) for name in names)]
    for problem in problems:
        print(f"{sys.argv[1]} {problem}")
    sys.exit(1 if problems else 0)


if __name__ == "__main__":
    main()
