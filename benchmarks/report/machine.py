"""What the measurements were taken on, and with."""

import datetime
import os
import platform
import re
import subprocess
from pathlib import Path

PEER_PACKAGES = {
    "Eigen": "libeigen3-dev",
    "GSL": "libgsl-dev",
    "VTK": "libvtk9-dev",
    "nanoflann": "libnanoflann-dev",
    "CGAL": "libcgal-dev",
    "Boost": "libboost-dev",
    "GEOS": "libgeos-dev",
}


def output_of(*command):
    """First line of a command's output; empty if it fails."""
    try:
        result = subprocess.run(command, capture_output=True, text=True, check=True)
    except (OSError, subprocess.CalledProcessError):
        return ""
    return result.stdout.strip().split("\n")[0]


def processor():
    try:
        text = Path("/proc/cpuinfo").read_text(encoding="utf-8")
    except OSError:
        return platform.processor() or platform.machine()
    name = re.search(r"^model name\s*:\s*(.+)$", text, re.MULTILINE)
    return name.group(1).strip() if name else platform.machine()


def caches():
    """Such as "L1d 48K, L2 2048K, L3 ..."; empty where the system does not say."""
    found = []
    for index in sorted(Path("/sys/devices/system/cpu/cpu0/cache").glob("index*")):
        kind = (index / "type").read_text().strip()
        if kind != "Instruction":
            level = (index / "level").read_text().strip()
            found.append(f"L{level} {(index / 'size').read_text().strip()}")
    return ", ".join(found)


def system():
    try:
        text = Path("/etc/os-release").read_text(encoding="utf-8")
    except OSError:
        return platform.platform()
    name = re.search(r'^PRETTY_NAME="?([^"\n]+)', text, re.MULTILINE)
    return name.group(1) if name else platform.platform()


def compiler(build):
    """First line of what the compiler of a build folder says about itself."""
    try:
        cache = (Path(build) / "CMakeCache.txt").read_text(encoding="utf-8")
    except OSError:
        return "unknown"
    path = re.search(r"^CMAKE_CXX_COMPILER:\w+=(.+)$", cache, re.MULTILINE)
    return output_of(path.group(1), "--version") if path else "unknown"


def peers():
    versions = []
    for name, package in PEER_PACKAGES.items():
        version = output_of("dpkg-query", "--showformat=${Version}", "--show", package)
        if version:
            versions.append(f"{name} {re.split('[-+]', version)[0]}")
    return ", ".join(versions)


def load():
    return f"{os.getloadavg()[0]:.1f}" if hasattr(os, "getloadavg") else "unknown"


def describe(build):
    """(name, value) pairs for the head of the report."""
    pairs = [
        ("Date", datetime.date.today().isoformat()),
        ("Revision", output_of("git", "describe", "--always", "--dirty")),
        ("Processor", f"{processor()}, {os.cpu_count()} processors; one thread used"),
        ("Caches", caches()),
        ("System", system()),
        ("Compiler", compiler(build)),
        ("Peers", peers()),
        ("Load", f"{load()} at the end of the run, which itself adds 1"),
    ]
    return [(name, value) for name, value in pairs if value]
