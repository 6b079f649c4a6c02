#!/usr/bin/env python3
"""Compares the plans of a built `zento` with the reference on random sessions.

    compare_plans.py build/dev/zento --count 500 --seed 1 [--batch] [--keep FOLDER]

Session i is made from seed + i alone, so a failure is repeated with `--seed N --count 1`. Exit code
1 means that at least one plan differed.
"""
import argparse
import json
import multiprocessing
import os
import shutil
import subprocess
import sys
import tempfile

from plan_reference import NoPlan, load_bundle, make_plan, read_json
from random_sessions import random_session, write_session

PARTS = ["output", "timeRemap", "camera", "cursor", "clicks", "sfx", "music", "focusMoments",
         "keystrokes", "captions", "chapters"]
TOLERANCE = 1e-6


def difference(expected, actual, path):
    """The first difference in words, or None. Numbers may differ by the tolerance."""
    numbers = (int, float)
    other = "%s: %r expected, %r found" % (path, expected, actual)
    if isinstance(expected, bool) or not isinstance(expected, (dict, list) + numbers):
        return None if expected == actual else other
    if isinstance(expected, numbers):
        close = (isinstance(actual, numbers) and not isinstance(actual, bool)
                 and abs(expected - actual) <= TOLERANCE)
        return None if close else other
    if isinstance(expected, dict):
        if not isinstance(actual, dict) or sorted(expected) != sorted(actual):
            found = sorted(actual) if isinstance(actual, dict) else actual
            return "%s: keys %s expected, %s found" % (path, sorted(expected), found)
        pairs = [(expected[k], actual[k], "%s.%s" % (path, k)) for k in sorted(expected)]
    else:
        if not isinstance(actual, list):
            return "%s: a list expected, %r found" % (path, actual)
        pairs = [(e, a, "%s[%d]" % (path, i)) for i, (e, a) in enumerate(zip(expected, actual))]
    for e, a, where in pairs:
        found = difference(e, a, where)
        if found:
            return found
    if len(expected) != len(actual):
        return "%s: %d entries expected, %d found" % (path, len(expected), len(actual))
    return None


def plan_difference(expected, actual):
    for part in PARTS:
        if (part in expected) != (part in actual):
            return "%s: %s" % (part, "missing" if part in expected else "not expected")
        found = part in expected and difference(expected[part], actual[part], part)
        if found:
            return found
    return None


def reference_plan(paths, session):
    """The reference's plan, read from the written files, or None where there is none."""
    width, height = session["size"]
    try:
        return make_plan(load_bundle(paths["bundle"]), read_json(paths["config"]),
                         read_json(paths["overrides"]),
                         read_json(paths["music"]) if "music" in paths else None,
                         {"width": width, "height": height, "fps": session["fps"]})
    except NoPlan:
        return None


def compare(binary, session, folder):
    """What the binary's plan does otherwise than the reference's, or None."""
    paths = write_session(session, folder)
    settings = os.path.join(folder, "settings.json")
    with open(settings, "w", encoding="utf-8") as file:
        file.write("{}")  # the defaults, whatever the user who runs this has set
    command = [binary, "plan", paths["bundle"], "--settings", settings,
               "--size", "%dx%d" % session["size"], "--fps", str(session["fps"])]
    for name in ("config", "overrides", "music"):
        if name in paths:
            command += ["--" + name, paths[name]]
    expected = reference_plan(paths, session)
    try:
        ran = subprocess.run(command, capture_output=True, text=True, encoding="utf-8", timeout=120)
    except subprocess.TimeoutExpired:
        return "no answer within two minutes"
    complaint = ran.stderr.strip()
    if expected is None:
        if ran.returncode == 1 and complaint:
            return None
        return "no plan exists: exit 1 and a sentence expected, exit %d %r found" % (
            ran.returncode, complaint)
    if ran.returncode != 0:
        return "exit %d: %s" % (ran.returncode, complaint)
    try:
        return plan_difference(expected, json.loads(ran.stdout))
    except ValueError as problem:
        return "the output is not JSON: %s" % problem


def run_one(job):
    binary, seed, keep = job
    folder = tempfile.mkdtemp(prefix="plan-%d-" % seed)
    try:
        found = compare(binary, random_session(seed), folder)
        if found and keep:
            shutil.copytree(folder, os.path.join(keep, str(seed)), dirs_exist_ok=True)
        return seed, found
    finally:
        shutil.rmtree(folder)


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n", maxsplit=1)[0])
    parser.add_argument("binary")
    parser.add_argument("--count", type=int, default=200)
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--batch", action="store_true", help="two sessions at a time")
    parser.add_argument("--keep", metavar="FOLDER", help="copy the sessions that differ here")
    options = parser.parse_args()
    if not os.access(options.binary, os.X_OK):
        parser.error("%s cannot be run" % options.binary)
    jobs = [(options.binary, options.seed + i, options.keep) for i in range(options.count)]
    failed = 0
    with multiprocessing.Pool(2 if options.batch else 1) as pool:
        for seed, found in pool.imap(run_one, jobs):
            if found:
                failed += 1
                print("seed %d: %s" % (seed, found), flush=True)
    print("%d passed, %d failed" % (len(jobs) - failed, failed))
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
