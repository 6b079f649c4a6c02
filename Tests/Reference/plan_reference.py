#!/usr/bin/env python3
"""A second, plain reading of the planner's rules.

Reads a session bundle and prints the edit plan as JSON. Nothing here is fast or clever: every
pass is a literal loop over the rules, so that a plan made by the real planner can be compared with
one made by code that shares nothing with it. Sums and products stand in the order in which the
rules give them, because several decisions hang on a comparison of doubles.

`style`, `webcam`, `systemAudio` and the text cards pass through a plan unchanged and are left out.
"""
import argparse
import json
import math
import os
import sys

from perceived_characters import WHITE_SPACE, characters, count

RAMP = 0.35  # output seconds over which the speed eases at a seam
TOLERANCE = 0.35  # source seconds within which a user's edit finds its zoom


class NoPlan(Exception):
    """The log admits no plan: the kept span would end before it begins."""


def round_half_away(x):
    """Nearest whole number, halves away from zero (the built-in round goes to even)."""
    whole = math.floor(abs(x))
    return math.copysign(whole + (1 if abs(x) - whole >= 0.5 else 0), x)


# ---- Time ------------------------------------------------------------------------------------

class Curve:
    """Source time to output time, with eased speed changes where segments touch."""

    def __init__(self, segments):
        self.src, self.out, self.duration = [], [], 0.0
        ordered = sorted(segments, key=lambda s: s["sourceStart"])
        total = 0.0
        for i, segment in enumerate(ordered):
            total = self.append(segment, ordered[i - 1] if i > 0 else None,
                                ordered[i + 1] if i + 1 < len(ordered) else None, total)
        self.duration = total

    def append(self, segment, previous, following, total):
        s0, s1, v = segment["sourceStart"], segment["sourceEnd"], segment["speed"]
        d = s1 - s0
        rate = 1 / v
        touches_previous = previous is not None and abs(previous["sourceEnd"] - s0) < 1e-9
        touches_next = following is not None and abs(s1 - following["sourceStart"]) < 1e-9
        m = min(d / 3, RAMP * v * 0.5)
        ramp_in = m if touches_previous else 0.0
        ramp_out = m if touches_next else 0.0
        previous_rate = 1 / previous["speed"] if touches_previous else rate
        next_rate = 1 / following["speed"] if touches_next else rate

        def rate_at(u):
            result = rate
            if ramp_in > 0 and u < ramp_in:
                a = min(max(u / ramp_in, 0.0), 1.0)
                mid = (rate + previous_rate) * 0.5
                result = mid + (rate - mid) * (a * a * (3 - 2 * a))
            if ramp_out > 0 and u > d - ramp_out:
                a = min(max((d - u) / ramp_out, 0.0), 1.0)
                mid = (rate + next_rate) * 0.5
                result = mid + (rate - mid) * (a * a * (3 - 2 * a))
            return result

        if not (touches_previous and self.src):
            self.src.append(s0)
            self.out.append(total)
        n = max(int(d / 0.02), 2)
        last_u, last_rate = 0.0, rate_at(0.0)
        for k in range(1, n + 1):
            u = d * k / n
            r = rate_at(u)
            total += (u - last_u) * (last_rate + r) * 0.5
            self.src.append(s0 + u)
            self.out.append(total)
            last_u, last_rate = u, r
        return total

    @staticmethod
    def bracket(values, x):
        lo, hi = 0, len(values) - 1
        while hi - lo > 1:
            mid = (lo + hi) // 2
            if values[mid] <= x:
                lo = mid
            else:
                hi = mid
        return lo, hi

    def output_time(self, s):
        src, out = self.src, self.out
        if not src:
            return 0.0
        if s <= src[0]:
            return out[0]
        if s >= src[-1]:
            return out[-1]
        lo, hi = self.bracket(src, s)
        if src[hi] - src[lo] < 1e-12:
            return out[lo]
        return out[lo] + (s - src[lo]) / (src[hi] - src[lo]) * (out[hi] - out[lo])

    def contains(self, s):
        src, out = self.src, self.out
        if not src or s < src[0] or s > src[-1]:
            return False
        lo, hi = self.bracket(src, s)
        if out[hi] - out[lo] >= 1e-12:
            return True
        return src[hi] - src[lo] <= 1e-9


# ---- Moments ---------------------------------------------------------------------------------

def center(rect):
    return {"x": rect["x"] + rect["w"] * 0.5, "y": rect["y"] + rect["h"] * 0.5}


def of_kind(events, kind):
    return [e for e in events if e["kind"] == kind]


def moment(kind, start, end, pos, focus=None, title=None, edit_key=None, forced_zoom=None,
           hold=None):
    return {"kind": kind, "start": start, "end": end, "pos": pos, "focus": focus, "title": title,
            "editKey": edit_key, "forcedZoom": forced_zoom, "hold": hold}


def fits(rect, meta, smallest, share):
    """Whether a rectangle is a usable region: neither tiny nor a pane, and roughly in frame."""
    x, y, w, h = rect["x"], rect["y"], rect["w"], rect["h"]
    width, height = float(meta["pixelWidth"]), float(meta["pixelHeight"])
    return (w >= smallest and h >= smallest and x >= -w and y >= -h
            and w <= share * width and h <= share * height
            and x + w <= 1.05 * width and y + h <= 1.05 * height)


def detect_moments(events, meta, hints):
    def focus_for(event):
        if "ax" in event and fits(event["ax"]["frame"], meta, 8, 0.6):
            return event["ax"]["frame"]
        best = None
        for hint in hints:
            distance = abs(hint["sourceTime"] - event["t"])
            if distance < 0.08 and (best is None or distance < best[0]):
                best = (distance, hint["rect"])
        return best[1] if best and fits(best[1], meta, 24, 0.8) else None

    def runs(of, longest_gap):
        result = []
        for event in of:
            if not result or event["t"] - result[-1][-1]["t"] > longest_gap:
                result.append([])
            result[-1].append(event)
        return result

    moments = []
    clicks = of_kind(events, "click")
    for e in clicks:
        moments.append(moment("click", e["t"], e["t"] + 0.12, e["pos"], focus_for(e),
                              e.get("ax", {}).get("title")))
    for run in runs(of_kind(events, "keyDown"), 0.55):
        if len(run) < 2:
            continue
        start, end = run[0]["t"], run[-1]["t"] + 0.2
        target = None
        for click in reversed(clicks):
            role = click.get("ax", {}).get("role", "")
            if click["t"] <= start + 0.05 and ("TextField" in role or "TextArea" in role):
                target = click
                break
        if target is not None:
            moments.append(moment("typing", start, end, target["pos"], focus_for(target),
                                  target["ax"].get("title")))
        else:
            moments.append(moment("typing", start, end, run[0]["pos"]))
    for run in runs(of_kind(events, "scroll"), 0.4):
        moments.append(moment("scroll", run[0]["t"], run[-1]["t"] + 0.1, run[0]["pos"]))
    return sorted(moments, key=lambda m: m["start"])


def near(times, t):
    return any(abs(x - t) <= TOLERANCE for x in times)


def edit_key(m):
    return m["editKey"] if m["editKey"] is not None else m["start"]


def apply_zoom_edits(moments, overrides, events):
    moments = [dict(m) for m in moments]
    for edit in overrides.get("zoomEdits", []):
        nearest = None
        for m in moments:
            distance = abs(m["start"] - edit["sourceTime"])
            if nearest is None or distance < nearest[0]:
                nearest = (distance, m)
        if nearest is None or nearest[0] > TOLERANCE:
            continue
        m = nearest[1]
        m["editKey"] = m["start"]
        if "newSourceTime" in edit:
            m["end"] = edit["newSourceTime"] + (m["end"] - m["start"])
            m["start"] = edit["newSourceTime"]
        m["forcedZoom"] = edit.get("level")
        m["hold"] = edit.get("hold")
    deleted = overrides.get("deletedZoomSourceTimes", [])
    moments = [m for m in moments if m["kind"] == "scroll" or not near(deleted, edit_key(m))]
    moves = of_kind(events, "move")
    for added in overrides.get("addedZooms", []):
        t = added["sourceTime"]
        later = [e["pos"] for e in moves if e["t"] >= t]
        earlier = [e["pos"] for e in moves if e["t"] <= t]
        pos = later[0] if later else earlier[-1] if earlier else {"x": 0.0, "y": 0.0}
        moments.append(moment("added", t, t + 0.12, pos, None, None, added["id"], added["level"],
                              added["hold"]))
    return sorted(moments, key=lambda m: m["start"])


# ---- What is kept, and how fast --------------------------------------------------------------

def speech_ranges(transcript, pad):
    ranges = sorted(((s["start"] - pad, s["end"] + pad) for s in transcript), key=lambda r: r[0])
    merged = []
    for start, end in ranges:
        if merged and start <= merged[-1][1]:
            merged[-1] = (merged[-1][0], max(merged[-1][1], end))
        else:
            merged.append((start, end))
    return merged


def without(start, end, protected):
    pieces = [(start, end)]
    for a, b in protected:
        rest = []
        for s, e in pieces:
            if s < b and a < e:
                if s < a:
                    rest.append((s, a))
                if b < e:
                    rest.append((b, e))
            else:
                rest.append((s, e))
        pieces = rest
    return pieces


def segment_of(start, end, speed):
    return {"sourceStart": start, "sourceEnd": end, "speed": speed}


def build_time_remap(moments, duration, config, protected):
    if not moments:
        return [segment_of(0.0, duration, 1.0)]
    keep_start = max(moments[0]["start"] - 0.9, 0)
    keep_end = min(max(m["end"] for m in moments) + 1.3, duration)
    if protected:
        keep_start = max(min(protected[0][0], keep_start), 0)
        keep_end = min(max(keep_end, protected[-1][1] + 0.4), duration)
    if keep_start > keep_end:
        raise NoPlan("the kept span would start at %r and end at %r" % (keep_start, keep_end))

    fast = []
    for m in moments:
        if m["kind"] == "typing":
            start, end, speed = m["start"] + 0.15, m["end"] - 0.1, config["typingSpeed"]
        elif m["kind"] == "scroll":
            start, end, speed = m["start"], m["end"], config["scrollSpeed"]
        else:
            continue
        for s, e in without(start, end, protected):
            if e - s >= 0.2:
                fast.append((s, e, speed))
    fast = sorted((p for p in fast if p[1] - p[0] > 0.2), key=lambda p: p[0])

    cuts = []
    gap_need = config["idleThreshold"] + config["preHandle"] + config["postHandle"]
    cursor = moments[0]["start"]
    for m in moments:
        if gap_need < m["start"] - cursor:
            for s, e in without(cursor + config["postHandle"], m["start"] - config["preHandle"],
                                protected):
                if e - s >= 0.6:
                    cuts.append((s, e))
        cursor = max(cursor, m["end"])

    boundaries = {keep_start, keep_end}
    for piece in cuts + fast:
        boundaries.update(piece[:2])
    inside = [b for b in sorted(boundaries) if keep_start <= b <= keep_end]
    result = []
    for a, b in zip(inside, inside[1:]):
        mid = (a + b) * 0.5
        if not b - a > 1e-6 or any(s <= mid < e for s, e in cuts):
            continue
        speed = next((v for s, e, v in fast if s <= mid < e), 1.0)
        if result and abs(result[-1]["sourceEnd"] - a) < 1e-6 and result[-1]["speed"] == speed:
            result[-1]["sourceEnd"] = b
        else:
            result.append(segment_of(a, b, speed))
    return result


def subtract(segments, removed):
    if not removed:
        return segments
    for span in removed:
        a, b = span["start"], span["end"]
        if not a < b:
            continue
        rest = []
        for segment in segments:
            s, e, speed = segment["sourceStart"], segment["sourceEnd"], segment["speed"]
            if b <= s or e <= a:
                rest.append(segment)
                continue
            if s < a:
                rest.append(segment_of(s, a, speed))
            if b < e:
                rest.append(segment_of(b, e, speed))
        segments = rest
    return [s for s in segments if s["sourceEnd"] - s["sourceStart"] > 0.05]


def snap_to_beats(segments, period, tolerance):
    if not period > 0.2 or not segments:
        return segments
    runs = []
    for segment in segments:
        if not runs or abs(runs[-1][-1]["sourceEnd"] - segment["sourceStart"]) > 1e-9:
            runs.append([])
        runs[-1].append(segment)
    result, elapsed = [], 0.0
    for run in runs:
        d = Curve(run).duration
        ideal_end = elapsed + d
        beat = period * round_half_away(ideal_end / period)
        target = beat - elapsed
        factor = 1.0
        if abs(beat - ideal_end) <= tolerance and d * 0.5 < target:
            factor = min(max(d / target, 0.9), 1.12)
        for s in run:
            result.append(segment_of(s["sourceStart"], s["sourceEnd"], s["speed"] * factor))
        elapsed += d / factor
    return result


# ---- Camera and cursor -----------------------------------------------------------------------

def zoom_level(focus, width, config):
    levels = config["zoomLevels"]
    if len(levels) < 2:
        return 1.45
    if focus is None or len(levels) == 2:
        return levels[1]
    wanted = min(width * config["focusFraction"] / max(focus["w"], 60), 1.9)
    best = levels[1]
    for level in levels[2:]:
        if abs(level - wanted) < abs(best - wanted):
            best = level
    return best


def build_camera(moments, remap, meta, config, overrides, hero_time):
    width, height = float(meta["pixelWidth"]), float(meta["pixelHeight"])
    middle = {"x": width / 2, "y": height / 2}

    def wide(t):
        return {"tOut": t, "center": middle, "zoom": 1.0}

    keyframes, focus_moments = [wide(0.0)], []
    current_zoom, last_t, last_center, last_out = 1.0, 0.0, middle, 0.0
    for m in moments:
        if not remap.contains(m["start"]):
            continue
        t = max(remap.output_time(m["start"]) - config["cameraLead"], 0)
        moment_end = remap.output_time(m["end"])
        if m["kind"] == "scroll":
            if current_zoom > 1.05 and t - last_t >= config["minKeyframeSpacing"]:
                keyframes.append(wide(t))
                current_zoom, last_t, last_center = 1.0, t, middle
            last_out = moment_end
            continue

        hero = hero_time is not None and abs(m["start"] - hero_time) < 0.08
        if m["forcedZoom"] is not None:
            zoom = m["forcedZoom"]
        elif hero:
            zoom = config["zoomLevels"][-1] if config["zoomLevels"] else 1.9
        else:
            zoom = zoom_level(m["focus"], width, config)
        key = edit_key(m)
        shown = {"sourceTime": key, "zoom": zoom, "title": m["title"], "hold": m["hold"],
                 "kind": m["kind"] if m["kind"] in ("typing", "added") else "click",
                 "effectiveSourceTime": None if m["start"] == key else m["start"]}
        focus_moments.append({k: v for k, v in shown.items() if v is not None})
        last_out = moment_end
        if near(overrides.get("disabledZoomSourceTimes", []), key):
            continue

        aim = center(m["focus"]) if m["focus"] is not None else m["pos"]
        aim = {"x": min(max(aim["x"], 0.12 * width), 0.88 * width),
               "y": min(max(aim["y"], 0.12 * height), 0.88 * height)}
        pinned = (hero or m["forcedZoom"] is not None or m["editKey"] is not None
                  or m["hold"] is not None)
        same_shot = (abs(zoom - current_zoom) < 0.01
                     and abs(aim["x"] - last_center["x"]) / width < 0.14
                     and abs(aim["y"] - last_center["y"]) / height < 0.14)
        too_soon = t - last_t < config["minKeyframeSpacing"] and len(keyframes) >= 2
        if not pinned and (same_shot or too_soon):
            continue
        keyframes.append({"tOut": t, "center": aim, "zoom": zoom})
        current_zoom, last_t, last_center = zoom, t, aim
        if m["hold"] is not None:
            s = m["start"] + m["hold"]
            if remap.contains(s) and t + 0.3 < remap.output_time(s):
                keyframes.append(wide(remap.output_time(s)))
                current_zoom, last_t, last_center = 1.0, remap.output_time(s), middle

    result = []
    for i, k in enumerate(keyframes):
        if i >= 1:
            before = keyframes[i - 1]
            if config["wideAfter"] + 1.2 < k["tOut"] - before["tOut"] and before["zoom"] > 1.05:
                result.append(wide(before["tOut"] + config["wideAfter"]))
        result.append(k)
    if remap.duration - last_out > 0.6 and current_zoom > 1.05:
        result.append(wide(min(remap.duration - 0.8, last_out + 0.5)))
    return sorted(result, key=lambda k: k["tOut"]), focus_moments


def smooth_cursor(events, moments, config):
    moves = sorted(of_kind(events, "move"), key=lambda e: e["t"])
    click_times = sorted(e["t"] for e in of_kind(events, "click"))
    typing = of_kind(moments, "typing")
    samples, lo, hi = [], 0, 0
    for e in moves:
        t = e["t"]
        while moves[lo]["t"] < t - 0.045:
            lo += 1
        while hi + 1 < len(moves) and moves[hi + 1]["t"] <= t + 0.045:
            hi += 1
        x = y = 0.0
        for other in moves[lo:hi + 1]:
            x += other["pos"]["x"]
            y += other["pos"]["y"]
        n = hi - lo + 1
        if any(m["start"] <= t <= m["end"] for m in typing):
            style = "iBeam"
        elif config["pointerOnClick"] and any(c - 0.15 <= t <= c + 0.4 for c in click_times):
            style = "pointingHand"
        else:
            style = "arrow"
        samples.append({"t": t, "pos": {"x": x / n, "y": y / n}, "style": style})
    return samples


# ---- Words on screen -------------------------------------------------------------------------

def split_caption(text, limit):
    if count(text) <= limit:
        return [text]
    words = [""]
    for ch in characters(text):
        if ch == " ":
            words.append("")
        else:
            words[-1] += ch
    result, line = [], ""
    for word in words:
        if not word:
            continue
        if not line:
            line = word
        elif count(line) + 1 + count(word) <= limit:
            line += " " + word
        else:
            result.append(line)
            line = word
    return result + [line] if line else result


def build_captions(transcript, remap):
    chips = []
    for segment in transcript:
        text = segment["text"].strip(WHITE_SPACE)
        if not text or not remap.contains((segment["start"] + segment["end"]) * 0.5):
            continue
        lines = split_caption(text, 80)
        start, end = remap.output_time(segment["start"]), remap.output_time(segment["end"])
        span = max(start + 0.3, end) - start
        total = sum(count(line) for line in lines)
        for line in lines:
            d = span * count(line) / max(total, 1)
            chips.append({"tOut": start, "tOutEnd": start + d, "text": line})
            start += d
    return sorted(chips, key=lambda c: c["tOut"])


def keystroke_chips(events, remap):
    chips = []

    def emit(run):
        text = ""
        for i, e in enumerate(run):
            if "key" not in e or not remap.contains(e["t"]):
                continue
            if count(e["key"]) >= 2 and text:
                text += "  "
            text += e["key"]
            shown = characters(text)
            t = remap.output_time(e["t"])
            end = remap.output_time(run[i + 1]["t"]) if i + 1 < len(run) else t + 0.9
            chips.append({"tOut": t, "tOutEnd": end,
                          "label": "…" + "".join(shown[-25:]) if len(shown) >= 27 else text})

    run = []
    for e in of_kind(events, "keyDown"):
        if run and e["t"] - run[-1]["t"] > 0.6:
            emit(run)
            run = []
        run.append(e)
    emit(run)
    return chips


def chapter_markers(semantics, remap):
    markers = []
    for chapter in semantics.get("chapters", []):
        if not remap.contains(chapter["sourceTime"]):
            continue
        t = max(remap.output_time(chapter["sourceTime"]) - 0.4, 0)
        if markers and t - markers[-1]["tOut"] < 3.2:
            continue
        markers.append({"tOut": t, "title": chapter["title"]})
    return markers


# ---- Sound -----------------------------------------------------------------------------------

def sound_cues(clicks, camera, remap, config):
    cues = []
    if config["clickSFX"]:
        for click in clicks:
            cues.append({"tOut": remap.output_time(click["t"]), "kind": "click", "gain": 1.0})
    if config["whooshSFX"]:
        previous = 1.0
        for k in camera:
            if abs(k["zoom"] - previous) >= 0.3:
                cues.append({"tOut": k["tOut"], "kind": "whoosh", "gain": 0.7})
            previous = k["zoom"]
    return sorted(cues, key=lambda c: c["tOut"])


def music_plan(music, segments, protected, remap):
    events = []
    for s in segments:
        if s["speed"] > 1.9:
            events.append((remap.output_time(s["sourceStart"]), -6.0, True))
            events.append((remap.output_time(s["sourceEnd"]), -6.0, False))
    for start, end in protected:
        if remap.contains((start + end) * 0.5):
            events.append((remap.output_time(max(start, 0)), -9.0, True))
            events.append((remap.output_time(end), -9.0, False))
    points, active = [], []
    for t, db, on in sorted(events, key=lambda e: e[0]):
        if on:
            active.append(db)
        elif db in active:
            active.remove(db)
        points.append({"tOut": t, "gainDb": min(active) if active else 0.0})

    grid = music["grid"]
    offset = grid["phase"]
    if grid["phase"] < music["start"] and grid["period"] > 0.2:
        beats = round_half_away((music["start"] - grid["phase"]) / grid["period"])
        offset = max(grid["phase"], grid["phase"] + beats * grid["period"])
    plan = {"file": music["file"], "gainDb": -16.0 if protected else -11.0, "sourceOffset": offset,
            "fadeIn": 0.4, "fadeOut": min(0.12 * remap.duration, 1.8), "duckPoints": points}
    if music["start"] + 2.0 < music["end"]:
        plan["playDuration"] = music["end"] - offset
    return plan


# ---- The whole plan --------------------------------------------------------------------------

def make_plan(bundle, config, overrides, music, output, narration=None):
    """The edit plan of a bundle, a dictionary as `load_bundle` gives it; raises `NoPlan`."""
    events, meta, transcript = bundle["events"], bundle["meta"], bundle["transcript"]
    semantics = bundle["semantics"]
    protected = speech_ranges(transcript, 0.25)
    moments = detect_moments(events, meta, bundle["framing"])
    edited = apply_zoom_edits(moments, overrides, events)
    segments = build_time_remap(moments, meta["duration"], config, protected)
    segments = subtract(segments, overrides.get("removedRanges", []))
    if music is not None and not protected:
        segments = snap_to_beats(segments, music["grid"]["period"], 0.22)
    remap = Curve(segments)
    camera, focus_moments = build_camera(edited, remap, meta, config, overrides,
                                         semantics.get("heroSourceTime"))
    clicks = [{"t": e["t"], "pos": e["pos"]} for e in of_kind(events, "click")
              if remap.contains(e["t"])]
    plan = {"output": output, "timeRemap": segments, "camera": camera,
            "cursor": smooth_cursor(events, moments, config), "clicks": clicks,
            "sfx": sound_cues(clicks, camera, remap, config), "focusMoments": focus_moments}
    if config["showKeystrokes"]:
        plan["keystrokes"] = keystroke_chips(events, remap)
    optional = {"captions": build_captions(transcript, remap),
                "chapters": chapter_markers(semantics, remap), "narration": narration}
    plan.update({key: value for key, value in optional.items() if value})
    if music is not None:
        plan["music"] = music_plan(music, segments, protected, remap)
    return plan


def read_json(path):
    with open(path, encoding="utf-8") as file:
        return json.load(file)


def load_bundle(folder):
    """The files of a bundle that a plan depends on; the three analyses may be missing."""
    def analysis(name, empty):
        path = os.path.join(folder, name)
        return read_json(path) if os.path.exists(path) else empty

    with open(os.path.join(folder, "events.jsonl"), encoding="utf-8", newline="\n") as file:
        events = [json.loads(line) for line in file.read().split("\n") if line]
    return {"meta": read_json(os.path.join(folder, "meta.json")), "events": events,
            "transcript": analysis("transcript.json", []),
            "framing": analysis("framing.json", []),
            "semantics": analysis("semantics.json", {})}


DEFAULT_CONFIG = {
    "idleThreshold": 1.6, "preHandle": 0.45, "postHandle": 0.6, "typingSpeed": 2.4,
    "scrollSpeed": 1.6, "zoomLevels": [1.0, 1.35, 1.6, 1.9], "focusFraction": 0.18,
    "cameraLead": 0.35, "minKeyframeSpacing": 0.8, "wideAfter": 2.6, "clickSFX": True,
    "whooshSFX": True, "showKeystrokes": False, "pointerOnClick": True}


def main():
    parser = argparse.ArgumentParser(description="Prints the edit plan of a session bundle.")
    parser.add_argument("bundle")
    parser.add_argument("--config", help="plan configuration; without it the defaults")
    parser.add_argument("--overrides", help="the user's edits")
    parser.add_argument("--music", help="music file, beat grid and trim")
    parser.add_argument("--narration", help="narration record, passed through")
    parser.add_argument("--output", "--size", metavar="WxH", default="1920x1080")
    parser.add_argument("--fps", type=float, default=60.0)
    options = parser.parse_args()
    width, height = (int(n) for n in options.output.split("x"))
    try:
        plan = make_plan(load_bundle(options.bundle),
                         read_json(options.config) if options.config else DEFAULT_CONFIG,
                         read_json(options.overrides) if options.overrides else {},
                         read_json(options.music) if options.music else None,
                         {"width": width, "height": height, "fps": options.fps},
                         read_json(options.narration) if options.narration else None)
    except NoPlan as problem:
        plan = {"error": str(problem)}
    json.dump(plan, sys.stdout, indent=2, sort_keys=True, ensure_ascii=False)
    print()


if __name__ == "__main__":
    main()
