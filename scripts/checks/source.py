#!/usr/bin/env python3
"""Checks of the source tree that need no compiler. usage: source.py CHECK [--modules FILE]

CHECK is one of: includes, module-list, platform-calls, file-size, source-tree.
The module table of docs/architecture.md and the folder list of docs/source-tree.md are the rules.
"""
import argparse
import pathlib
import re
import statistics
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parents[2]
MAX_LINES = 600
RARE_LINES = 400
RARE_SHARE = 0.05
MAX_MEDIAN = 200

# Tests, tools and fuzz targets may use any module; what they test is their business.
FREE_FOLDERS = re.compile(r"(^|/)(\w+_Tests|Tests|Tools|Fuzz|Benchmarks|cmake)/")
# The root, and for the public headers the directory that a host puts on its include path.
INCLUDE_BASES = ("", "ZRMMobileKit/include/")
INCLUDE = re.compile(r'^\s*#\s*include\s+([<"])([^">]+)[">]')

PLATFORM_CALLS = [
    (re.compile(r"^\s*#\s*(if|ifdef|ifndef|elif)\b.*\b(__linux__|__APPLE__|_WIN32|__ANDROID__|__unix__)\b"),
     "operating-system #if"),
    (re.compile(r"\b(system_clock|steady_clock|high_resolution_clock)\b"), "direct clock"),
    (re.compile(r"\b(clock_gettime|gettimeofday|localtime|gmtime|mktime)\s*\(|\btime\s*\(\s*(nullptr|NULL|0)\s*\)"),
     "direct clock"),
    (re.compile(r"\b(sleep_for|sleep_until|usleep|nanosleep)\b"), "sleep"),
    (re.compile(r"(?<![\w.>])::\s*(socket|connect|open|read|write|close|stat|unlink|mkdir|getenv)\s*\("),
     "system call"),
    (re.compile(r"\bstd::(ifstream|ofstream|fstream|filesystem|thread|jthread|async|getenv|random_device)\b"),
     "direct file, thread, environment or random source"),
    (re.compile(r"\b(fopen|getenv|arc4random\w*|curl_\w+|EVP_\w+)\s*\("), "direct platform service"),
]


def tracked(*patterns):
    listed = subprocess.run(["git", "ls-files", "-z", "--", *patterns], cwd=ROOT, check=True,
                            capture_output=True, text=True).stdout
    return [pathlib.PurePosixPath(name) for name in listed.split("\0") if name]


def sources():
    return tracked("*.h", "*.cpp")


def lines_of(path):
    return (ROOT / path).read_text(encoding="utf-8").splitlines()


def module_table():
    rows = {}
    for line in lines_of("docs/architecture.md"):
        match = re.match(r"^\| `([^`]+/)` \| `(\w+)` \|([^|]*)\|$", line)
        if match:
            rows[match[2]] = (match[1], set(re.findall(r"`(\w+)`", match[3])))
    if not rows:
        sys.exit("docs/architecture.md holds no module table")
    return rows


def module_of(path, table):
    text = str(path)
    for name, (folder, _) in table.items():
        if text.startswith(folder):
            return name
    return None


def check_includes():
    table = module_table()
    problems = []
    for path in sources():
        if FREE_FOLDERS.search(str(path)):
            continue
        module = module_of(path, table)
        if module is None:
            problems.append(f"{path}: belongs to no module of docs/architecture.md")
            continue
        for number, line in enumerate(lines_of(path), 1):
            match = INCLUDE.match(line)
            if not match:
                continue
            if match[1] == "<":
                if match[2].startswith(("ZRM", "Jailbreak")):
                    problems.append(f"{path}:{number}: our own headers are included with quotes")
                continue
            included = next((base + match[2] for base in INCLUDE_BASES if (ROOT / (base + match[2])).is_file()),
                            match[2] if match[2].startswith("ZRMGenerated/") else None)
            if included is None:
                problems.append(f"{path}:{number}: '{match[2]}' is not a path from the root")
                continue
            other = module_of(included, table)
            if other not in (module, None) and other not in table[module][1]:
                problems.append(f"{path}:{number}: {module} may not include {other}")
    for path in tracked("Tools/zrm-host/*.h", "Tools/zrm-host/*.cpp"):
        for number, line in enumerate(lines_of(path), 1):
            match = INCLUDE.match(line)
            if match and re.search(r"_Lib/", match[2]):
                problems.append(f"{path}:{number}: the host sees public headers only")
    for path in tracked("Tools/zrm-risk-server/*.h", "Tools/zrm-risk-server/*.cpp"):
        for number, line in enumerate(lines_of(path), 1):
            match = INCLUDE.match(line)
            if match and match[1] == '"' and not match[2].startswith("Tools/zrm-risk-server/"):
                problems.append(f"{path}:{number}: the risk server uses its own code only")
    return problems


def check_module_list(modules_file):
    built = set(pathlib.Path(modules_file).read_text(encoding="utf-8").split())
    named = set(module_table())
    return ([f"docs/architecture.md names '{name}', which no CMake target builds" for name in sorted(named - built)] +
            [f"CMake builds '{name}', which docs/architecture.md does not name" for name in sorted(built - named)])


def check_platform_calls():
    problems = []
    for path in sources():
        text = str(path)
        if text.startswith("ZRMPlatform/") or FREE_FOLDERS.search(text):
            continue
        for number, line in enumerate(lines_of(path), 1):
            code = line.split("//")[0]
            for pattern, what in PLATFORM_CALLS:
                if pattern.search(code):
                    problems.append(f"{path}:{number}: {what} outside ZRMPlatform/")
    return problems


def check_file_size():
    sizes = {path: len(lines_of(path)) for path in sources()}
    problems = [f"{path}: {size} lines, more than {MAX_LINES}" for path, size in sizes.items() if size > MAX_LINES]
    own = {path: size for path, size in sizes.items() if not FREE_FOLDERS.search(str(path))}
    long = [path for path, size in own.items() if size > RARE_LINES]
    if own and len(long) > RARE_SHARE * len(own):
        problems.append(f"{len(long)} of {len(own)} files exceed {RARE_LINES} lines: {', '.join(map(str, long))}")
    if own and statistics.median(own.values()) > MAX_MEDIAN:
        problems.append(f"the median file has {statistics.median(own.values())} lines, more than {MAX_MEDIAN}")
    return problems


def check_source_tree():
    named = set(re.findall(r"^- `([^`]+)/`", (ROOT / "docs/source-tree.md").read_text(encoding="utf-8"), re.M))
    folders = set()
    for path in tracked():
        folders.update(str(parent) for parent in path.parents if str(parent) != ".")
    # Below these, one line stands for the whole branch.
    branches = [name for name in named if any(other != name and other.startswith(name + "/") for other in folders)
                and not any(other.startswith(name + "/") for other in named)]
    covered = {folder for folder in folders if any(folder.startswith(branch + "/") for branch in branches)}
    return ([f"docs/source-tree.md does not tell what {name}/ holds" for name in sorted(folders - named - covered)] +
            [f"docs/source-tree.md names {name}/, which is not there" for name in sorted(named - folders)])


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("check")
    parser.add_argument("--modules")
    arguments = parser.parse_args()
    checks = {
        "includes": check_includes,
        "module-list": lambda: check_module_list(arguments.modules),
        "platform-calls": check_platform_calls,
        "file-size": check_file_size,
        "source-tree": check_source_tree,
    }
    if arguments.check not in checks:
        parser.error(f"CHECK is one of {', '.join(checks)}")
    problems = checks[arguments.check]()
    for problem in problems:
        print(problem)
    sys.exit(1 if problems else 0)


if __name__ == "__main__":
    main()
