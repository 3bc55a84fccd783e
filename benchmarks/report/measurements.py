"""Measurements as Google Benchmark writes them, one for each <work>/<who>/<n>."""

import json
from dataclasses import dataclass
from pathlib import Path

LIBRARY = "qel"
LIMITS = ("copy", "read")


@dataclass(frozen=True)
class Measurement:
    group: str  # the program: tensor, arrays, nearest, curve
    work: str
    who: str
    n: int
    ns: float  # median, per item
    variant: str = ""  # further arguments, such as "probes:1000"

    @property
    def is_library(self):
        """Also true of the library with other settings, such as qel_default_limits."""
        return self.who == LIBRARY or self.who.startswith(LIBRARY + "_")

    @property
    def is_limit(self):
        return self.who in LIMITS

    @property
    def is_peer(self):
        return not self.is_library and not self.is_limit


# What Google Benchmark appends to a name about how it measured.
SETTINGS = ("min_time:", "min_warmup_time:", "iterations:", "repeats:", "threads:")


def split_name(name):
    """(work, who, n, variant) of a benchmark's name; None for a name of another form."""
    parts = [part for part in name.split("/") if not part.startswith(SETTINGS)]
    variant = [part for part in parts[3:] if ":" in part]
    if len(parts) != 3 + len(variant) or not parts[2].isdigit():
        return None
    return parts[0], parts[1], int(parts[2]), ", ".join(variant)


def nanoseconds_per_item(entry):
    """None where the benchmark failed or counted no items."""
    rate = entry.get("items_per_second", 0.0)
    if entry.get("error_occurred") or not rate > 0.0:
        return None
    return 1e9 / rate


def is_result(entry):
    """True for medians, and for single runs that have no aggregates."""
    if entry.get("run_type") == "aggregate":
        return entry.get("aggregate_name") == "median"
    return entry.get("repetitions", 1) <= 1


def parse(group, document):
    """Measurements of one program's output. Also names what could not be used."""
    measurements, unused = [], []
    for entry in document["benchmarks"]:
        if not is_result(entry):
            continue
        name = entry.get("run_name", entry["name"])
        parts, ns = split_name(name), nanoseconds_per_item(entry)
        if parts is None or ns is None:
            unused.append(name)
        else:
            work, who, n, variant = parts
            measurements.append(Measurement(group, work, who, n, ns, variant))
    return measurements, unused


def read_folder(folder):
    """Measurements of every <group>.json in a folder. A run that was stopped leaves a torn file."""
    measurements, unused = [], []
    for path in sorted(Path(folder).glob("*.json")):
        try:
            document = json.loads(path.read_text(encoding="utf-8"))
        except json.JSONDecodeError:
            unused.append(f"all of {path.stem}")
            continue
        found, left = parse(path.stem, document)
        measurements += found
        unused += left
    return measurements, unused
