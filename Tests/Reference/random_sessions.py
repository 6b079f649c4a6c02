"""Small random sessions for the planner, the same for the same seed.

The values are chosen to sit on the planner's limits rather than to look like real recordings: gaps
exactly at a threshold, equal times, frames a hair too wide, edits just in and just out of reach.
"""
import json
import os
import random

from plan_reference import DEFAULT_CONFIG, detect_moments

GAPS = [0, 1e-10, 1e-7, 0.01, 0.04, 0.045, 0.05, 0.08, 0.09, 0.1, 0.15, 0.2, 0.25, 0.3, 0.35, 0.4,
        0.41, 0.5, 0.55, 0.56, 0.6, 0.61, 0.8]
ROLES = ["AXButton", "AXTextField", "AXTextArea", "MyTextFieldCell", "textfield", "AXUnknown"]
KEYS = ["a", "b", "W", ".", " ", "ab", "Tab", "Ctrl+S", "Shift+/", "", "é", "e\u0301", "\u0301",
        "👍", "👍🏽", "\u200d", "👩\u200d💻", "🇩", "🇪", "❤\ufe0f", "1\ufe0f\u20e3", "\u1112",
        "\u1161", "\u11ab", "한", "\r", "\n", "…"]
WORDS = ["a", "to", "menu", "window,", "naïve", "nai\u0308ve", "👩\u200d👩\u200d👧\u200d👦", "🇩🇪🇫🇷🇯",
         "👍🏽👍🏿", "❤\ufe0f\u200d🔥", "한국어", "\u1112\u1161\u11ab", "tab\there", "line\r\nbreak",
         "no\u00a0break", "z\u0335\u0321\u0347", "\u0301mark", "n" * 39, "m" * 40, "w" * 80,
         "v" * 81, "l" * 100]
MARGINS = ["", "", " ", "\n", "\t ", "\r\n", "\u00a0", "\u3000", "\u2028"]


def some(r, chance, value):
    """Calls `value` with the given chance, otherwise None."""
    return value() if r.random() < chance else None


def present(record):
    """The record without its absent values."""
    return {key: value for key, value in record.items() if value is not None}


def near_one_of(r, times, offsets):
    """A time at one of the offsets from a time that matters, before or after it."""
    return r.choice(times) + r.choice(offsets) * r.choice([-1, 1])


def random_config(r):
    choices = {
        "idleThreshold": [0.0, 0.3, 0.55, 1.0, 3.0, 1e9], "preHandle": [0.0, 0.1, 1.0],
        "postHandle": [0.0, 0.25, 1.0], "typingSpeed": [1.0, 1.6, 1.9, 1.91, 4.0, 0.5],
        "scrollSpeed": [1.0, 2.4, 1.9, 2.0, 8.0],
        "zoomLevels": [[], [1.0], [2.0], [1.0, 1.4], [1.0, 1.25, 1.4, 1.6], [1.0, 1.5, 1.8, 2.1],
                       [1.0, 2.0, 1.5, 1.5, 1.25], [1.0, 1.03, 1.05, 1.06], [1.0, 1.0, 1.3],
                       [1.0, 1.05], [1.0, 1.06], [1.0, 1.3, 1.305, 1.31]],
        "focusFraction": [0.0, 0.05, 0.1, 0.3, 1.0], "cameraLead": [0.0, 0.1, 1.0],
        "minKeyframeSpacing": [0.0, 0.25, 0.5, 2.0], "wideAfter": [0.0, 0.5, 1.0, 5.0],
        "clickSFX": [False], "whooshSFX": [False], "showKeystrokes": [True, True],
        "pointerOnClick": [False]}
    config = dict(DEFAULT_CONFIG)
    chance = r.choice([0.0, 0.15, 0.5])
    for name, values in choices.items():
        if r.random() < (0.5 if name == "showKeystrokes" else chance):
            config[name] = r.choice(values)
    if r.random() < 0.2:  # choppy: many short stretches between cuts
        config.update(idleThreshold=r.choice([0.0, 0.3]), preHandle=0.0,
                      postHandle=r.choice([0.0, 0.1]))
    if r.random() < 0.15:  # a width of 200 ties; of 100 meets the cap; of 60 the narrowest
        config["focusFraction"], config["zoomLevels"] = r.choice([
            (0.15625, [1.0, 1.75, 1.25]), (0.15625, [1.0, 1.8, 2.03]), (0.3, [1.0, 1.6, 1.69])])
    return config


def random_rect(r, meta, smallest, share):
    """A rectangle on or near the limits of a usable region."""
    width, height = meta["pixelWidth"], meta["pixelHeight"]

    def span(size):
        length = r.choice([smallest, smallest - 0.1, smallest + 0.1, 59.9, 60, 61, 100, 200, 333.3,
                           share * size, share * size + 1e-6, share * size + 1, 0.3 * size])
        start = r.choice([0, -length, -length - 1e-6, -length - 1, 1.05 * size - length,
                          1.05 * size - length + 1, r.uniform(0, size), 0.12 * size - length / 2,
                          0.5 * size, r.uniform(0, 0.5) * size, r.uniform(0, 0.5) * size])
        return start, length

    (x, w), (y, h) = span(width), span(height)
    return {"x": x, "y": y, "w": w, "h": h}


def random_events(r, meta, config):
    """Bursts of pointer moves, clicks, keys and scrolls with pauses, up to some 400 events."""
    limit = r.choice([0, 1, 2, 5, 20, 60, 60, 150, 390])
    grid = r.choice([None, None, 0.25, 0.05, 0.01])
    width, height = meta["pixelWidth"], meta["pixelHeight"]
    t = r.choice([0.0, 0.0, 0.1, 0.9, 1.0, 2.5, -0.5, r.uniform(0, 5)])
    need = config["idleThreshold"] + config["preHandle"] + config["postHandle"]
    idle = min(need, 4.0)
    pos = {"x": width / 2, "y": height / 2}
    events = []

    def log(kind, after=0, **extra):
        at = (round(t / grid) * grid if grid else t) + after
        events.append(dict(present(extra), t=at, kind=kind, pos=dict(pos)))

    def click(after=0):
        ax = some(r, 0.7, lambda: present({
            "role": r.choice(ROLES), "frame": random_rect(r, meta, 8, 0.6),
            "title": some(r, 0.6, lambda: r.choice(["Save", "", "a/b", "Näme 👍🏽"]))}))
        log("click", after, button=r.choice([0, 0, 1]), ax=ax)

    while len(events) < limit:
        if r.random() < 0.5:
            pos = {"x": r.choice([r.uniform(-50, width + 50), 0, width / 2] + [
                       share * width for share in (0.26, 0.64, 0.36, 0.645, 0.88)]),
                   "y": r.choice([r.uniform(-50, height + 50), 0, height / 2, height / 2,
                                  0.26 * height, 0.64 * height, 0.642 * height])}
        kind = r.choice(["move", "move", "click", "click", "keyDown", "scroll", "idle", "other"])
        gap = r.choice(GAPS)
        if kind == "keyDown" and r.random() < 0.3:
            click(r.choice([-1.0, 0, 0.04, 0.05, 0.06]))
        if kind == "keyDown" and r.random() < 0.3:  # fast stretches that overlap or just miss
            start = 0.15 + r.choice([0, 5e-7, 2e-6, 0.05])
            log("scroll", start, scroll={"x": 0, "y": 4})
            log("scroll", start + 0.3, scroll={"x": 0, "y": 4})
        for _ in range(r.choice([1, 1, 2, 3, 8, 30])):
            if kind == "click":
                click()
            elif kind == "keyDown":
                log("keyDown", key=some(r, 0.95, lambda: r.choice(KEYS)))
            elif kind == "scroll":
                log("scroll", scroll={"x": 0, "y": r.choice([-3.5, 10])})
            elif kind == "move":
                pos = {"x": pos["x"] + r.uniform(-20, 20), "y": pos["y"] + r.uniform(-20, 20)}
                log("move")
            elif kind == "other":
                log(r.choice(["mouseUp", "dragStart", "dragEnd"]))
            t += gap if r.random() < 0.8 else r.choice(GAPS)
            if kind in ("idle", "click", "other") and r.random() < 0.6:
                break
        if kind == "idle" and events and r.random() < 0.6:  # a gap exactly as long as needed
            end = max(e["t"] for e in events) + r.choice([0.12, 0.12, 0.1, 0.2])
            t = end + r.choice([idle, idle, idle + 0.01, 0.6, 0.6 + config["postHandle"]])
        elif kind == "idle":
            t += r.choice([idle, idle + 0.12, idle + 0.5, 2.65, 3.8, 5.0, r.uniform(0, 8)])
    events.sort(key=lambda e: e["t"])
    disorder = r.random()
    if disorder < 0.1:
        r.shuffle(events)
    elif disorder < 0.25 and events:
        for _ in range(3):
            events.insert(r.randrange(len(events)), events.pop(r.randrange(len(events))))
    return events


def random_text(r):
    if r.random() < 0.25:
        return r.choice(["", " ", "\n \t", "\u00a0\u3000", "x" * 39 + " " + "y" * 40,
                         "x" * 39 + "  " + "y" * 39, "x" * 39 + "  " + "y" * 40,
                         "x" * 40 + " " + "y" * 40, "👍🏽" * 80, "e\u0301" * 40 + " " + "ö" * 40])
    words = [r.choice(WORDS) for _ in range(r.choice([1, 3, 10, 30]))]
    text = "".join(word + r.choice([" ", " ", "  "]) for word in words)
    # A mark at the very start would decide whether the margin before it is white space at all.
    return r.choice(MARGINS) + text.lstrip("\u0301") + r.choice(MARGINS)


def random_transcript(r, times):
    segments = []
    for _ in range(r.choice([0, 1, 3, 8])):
        start = max(near_one_of(r, times, [0, 0.25, 0.5, 0.9, 1.0, r.uniform(0, 3)]), 0)
        length = r.choice([0, 0.1, 0.3, 0.5, 1.0, 2.0, r.uniform(0, 6)])
        if r.random() < 0.02:
            length = -length
        segments.append({"start": start, "end": start + length, "text": random_text(r)})
    return segments if r.random() < 0.2 else sorted(segments, key=lambda s: s["start"])


def random_overrides(r, times):
    reach = [0, 0, 0.1, 0.2, 0.34, 0.35, 0.36, 0.5]
    holds = [0.4, 1.6, 0.3, -0.05, -0.045, r.uniform(0, 9)]

    def near_times():
        return [near_one_of(r, times, reach) for _ in range(r.choice([0, 0, 1, 3]))]

    def edit():
        at = near_one_of(r, times, reach)
        moved = r.choice([0, 0.05, 0.35, 1.0, 3.0, r.uniform(0, 9)])
        return present({"sourceTime": at,
                        "newSourceTime": some(r, 0.5, lambda: near_one_of(r, [at], [moved])),
                        "hold": some(r, 0.5, lambda: r.choice(holds)),
                        "level": some(r, 0.5, lambda: r.choice([1.0, 1.05, 1.3, 1.9, 3.0]))})

    def added():
        at = near_one_of(r, times, reach + [1.0, r.uniform(0, 9)])
        return {"id": at, "sourceTime": at + r.choice([0, 0, 0.4, -1.0]),
                "hold": r.choice(holds), "level": r.choice([1.35, 1.5, 2.2])}

    def removed():
        a = near_one_of(r, times, [0, 0.04, 0.05, 0.06, 0.9, r.uniform(0, 5)])
        return {"start": a, "end": a + r.choice([0, 1e-10, 1e-8, 0.05, 0.5, 2.0, 1000.0, -1.0])}

    if r.random() < 0.25:
        return {}
    return {"disabledZoomSourceTimes": near_times(), "deletedZoomSourceTimes": near_times(),
            "zoomEdits": [edit() for _ in range(r.choice([0, 1, 2, 5]))],
            "addedZooms": [added() for _ in range(r.choice([0, 0, 1, 3]))],
            "removedRanges": [removed() for _ in range(r.choice([0, 0, 0, 1, 1, 2, 4]))]}


def random_framing(r, meta, times):
    if r.random() < 0.5:  # several hints for the same few moments, so that distances tie
        times = r.sample(times, min(len(times), 2))
    return [{"sourceTime": near_one_of(r, times, [0, 0.05, 0.0625, 0.0625, 0.079, 0.08, 0.081]),
             "rect": random_rect(r, meta, 24, 0.8)} for _ in range(r.choice([0, 2, 10, 40]))]


def random_semantics(r, times):
    at = [near_one_of(r, times, [0, 0, 0.4, 3.2, r.uniform(0, 5)]) for _ in range(6)]
    chapters = [{"sourceTime": s, "title": r.choice(["Start", "", "Näxt/👍🏽"])}
                for s in at[:r.choice([0, 1, 3, 6])]]
    if r.random() < 0.7:
        chapters.sort(key=lambda c: c["sourceTime"])
    hero = some(r, 0.7, lambda: near_one_of(r, times, [0, 0.05, 0.079, 0.08, 0.081]))
    return present({"heroSourceTime": hero, "chapters": chapters})


def random_music(r):
    period = r.choice([0.5, 0.5, 0.25, 0.4, 0.46875, 0.6, 1.7, 0.2, 0.2000001, 0.0])
    phase = r.choice([0.0, 0.1, 0.25, period * 0.99]) if period else 0.0
    start = r.choice([0.0, phase, phase + period / 2, phase + 2.5 * period, r.uniform(0, 60)])
    end = start + r.choice([0.0, 1.9, 2.0, 2.01, 2.1, 30.0, 180.0])
    return {"file": "/music/track.m4a", "start": start, "end": end,
            "grid": {"bpm": 60 / period if period else 0.0, "period": period, "phase": phase,
                     "duration": end + 5.0}}


def random_session(seed):
    """Every input of one planning run; a few sessions in a hundred admit no plan."""
    r = random.Random(seed)
    config = random_config(r)
    width, height = r.choice([(1920, 1080), (1280, 720), (1000, 1000), (333, 517)])
    meta = {"pixelWidth": width, "pixelHeight": height, "scaleFactor": 2.0, "nominalFPS": 60.0}
    events = random_events(r, meta, config)
    starts = [m["start"] for m in detect_moments(events, meta, [])] or [1.0]
    acted = starts * 3 + [e["t"] for e in events]
    first, last = min(starts), max([e["t"] for e in events] or [5.0])
    meta["duration"] = max(r.choice([last + 2.0, last + 2.0, last + r.uniform(0, 4), last + 0.72,
                                     last + 0.727, last, last - 0.1, first, first - 0.85,
                                     last / 2, 0.0]), first - 0.89)
    if r.random() < 0.06:  # the kept span is empty, or ends before it begins
        meta["duration"] = max(first - r.choice([0.9, 0.95, 2.0]), 0.0)
    files = {
        "transcript": some(r, 0.5, lambda: random_transcript(r, acted)),
        "framing": some(r, 0.6, lambda: random_framing(r, meta, acted)),
        "semantics": some(r, 0.6, lambda: random_semantics(r, acted))}
    return present(dict(files, meta=meta, events=events, config=config,
                        overrides=random_overrides(r, acted),
                        music=some(r, 0.5, lambda: random_music(r)),
                        size=r.choice([(1920, 1080), (606, 1080), (1080, 1080)]),
                        fps=r.choice([60, 30, 29.97]), wholeNumbers=r.random() < 0.5))


def write_session(session, folder):
    """Writes the bundle and, beside it, the records that are not part of one; returns paths."""
    def plain(value):
        if isinstance(value, dict):
            return {key: plain(v) for key, v in value.items()}
        if isinstance(value, list):
            return [plain(v) for v in value]
        whole = isinstance(value, float) and value.is_integer() and session["wholeNumbers"]
        return int(value) if whole else value

    def write(path, value):
        with open(path, "w", encoding="utf-8") as file:
            json.dump(plain(value), file, indent=2, sort_keys=True, ensure_ascii=False)
        return path

    bundle = os.path.join(folder, "session.zento")
    os.makedirs(bundle)
    for name in ("meta", "transcript", "framing", "semantics"):
        if name in session:
            write(os.path.join(bundle, name + ".json"), session[name])
    with open(os.path.join(bundle, "events.jsonl"), "w", encoding="utf-8", newline="\n") as file:
        for event in session["events"]:
            file.write(json.dumps(plain(event), sort_keys=True, separators=(",", ":"),
                                  ensure_ascii=False) + "\n")
    paths = {"bundle": bundle}
    for name in ("config", "overrides", "music"):
        if name in session:
            paths[name] = write(os.path.join(folder, name + ".json"), session[name])
    return paths
