#!/usr/bin/env python3
"""zvpush check over a batch: 100 payloads (text-only stylised pushes, stylised pushes with a
1080 x 720 JPEG, and three-card carousels, as delivered by zvpush service) x 5 widths x 2 styles
= 1,000 previews, with -j 2. Prints the wall time and the peak private dirty memory and RSS of the
whole process tree (the command and its worker processes, summed, sampled from
/proc/PID/smaps_rollup; PSS beside them, since forked workers share the parent's pages until they
write them), without and with --report (every preview drawn into the contact sheet);
then the cost of one preview inside the batch against a separate `zvpush preview` process of the
same payloads (median of 5 runs each, drawn to PNG), as a ratio. Goals: <= 60 s and <= 100 MB for
the batch; the ratio <= 0.5.
Usage: bench/check_bench.py [build dir]   (default build/release)"""
import json
import os
import statistics
import subprocess
import sys
import tempfile
import time
import hashlib

ROOT = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..")


def tree(pid):
    """pid and all its descendants."""
    out, todo = [], [pid]
    while todo:
        p = todo.pop()
        out.append(p)
        try:
            for task in os.listdir(f"/proc/{p}/task"):
                with open(f"/proc/{p}/task/{task}/children") as f:
                    todo += [int(c) for c in f.read().split()]
        except (FileNotFoundError, ProcessLookupError, PermissionError):
            pass
    return out


def sample(pid):
    dirty = rss = pss = 0
    for p in tree(pid):
        try:
            with open(f"/proc/{p}/smaps_rollup") as f:
                for line in f:
                    if line.startswith("Private_Dirty:"):
                        dirty += int(line.split()[1])
                    elif line.startswith("Rss:"):
                        rss += int(line.split()[1])
                    elif line.startswith("Pss:"):
                        pss += int(line.split()[1])
        except (FileNotFoundError, ProcessLookupError, PermissionError):
            pass
    return dirty, rss, pss


def measured(command):
    """(seconds, CPU seconds, peak private dirty kB, peak RSS kB, peak PSS kB, exit code) of a
    command and its children."""
    start, cpu = time.monotonic(), os.times()
    process = subprocess.Popen(command, stdout=subprocess.DEVNULL)
    peak = [0, 0, 0]
    while process.poll() is None:
        peak = [max(a, b) for a, b in zip(peak, sample(process.pid))]
        time.sleep(0.002)
    used = os.times()
    cpu = used.children_user + used.children_system - cpu.children_user - cpu.children_system
    return (time.monotonic() - start, cpu, *peak, process.returncode)


def payloads(folder, media):
    """100 delivered notifications: a third text only, a third one image, a third carousels."""
    files = []
    for i in range(100):
        kind = ("text", "image", "carousel")[i % 3]
        cards, attachments = [], []
        for k in range({"text": 0, "image": 1, "carousel": 3}[kind]):
            url = f"https://cdn.example.com/{i}/card{k}.jpg"
            cards.append({"id": k + 1, "widgets": [{"id": 1, "type": "image", "content": url}]})
            attachments.append({"identifier": hashlib.md5(url.encode()).hexdigest(),
                                "url": "file://" + media[k % len(media)]})
        push = {"aps": {"alert": {"title": "t", "body": "b"}, "mutable-content": 1},
                "zentrova": {"cid": f"c{i}", "app_id": "app"},
                "zovFeatures": {"richPush": {
                    "title": f"Offer {i}: new arrivals this week",
                    "subtitle": "Picked for you",
                    "body": "Sneakers, backpacks and watches, <b>hand-picked</b> this week.",
                    "displayName": "bench",
                    "expanded": {"type": "imageCarousel" if kind == "carousel" else "stylizedBasic",
                                 "style": {"bgColor": "#4A7A96"} if i % 2 else {},
                                 "cards": cards}}}}
        path = os.path.join(folder, f"p{i:03}.json")
        with open(path, "w") as f:
            json.dump({"identifier": f"n{i}", "userInfo": push, "attachments": attachments}, f)
        files.append(path)
    return files


def main():
    build = sys.argv[1] if len(sys.argv) > 1 else os.path.join(ROOT, "build", "release")
    zvpush = os.path.join(build, "tools", "zvpush", "zvpush")
    with tempfile.TemporaryDirectory() as work:
        media = []
        for k, pattern in enumerate(["plasma:orange-white", "gradient:navy-gold", "plasma:"]):
            path = os.path.join(work, f"m{k}.jpg")
            subprocess.run(["convert", "-size", "1080x720", pattern, path], check=True)
            media.append(path)
        folder = os.path.join(work, "payloads")
        os.makedirs(folder)
        files = payloads(folder, media)
        previews = len(files) * 5 * 2
        check = [zvpush, "check", folder, "--default-content-hidden", "-j", "2", "--format", "json"]
        batch = {}
        for label, extra in (("check", []), ("check --report", ["--report", os.path.join(work, "r")])):
            seconds, cpu, dirty, rss, pss, code = measured(check + extra)
            batch[label] = seconds
            print(f"{label}: {previews} previews in {seconds:.1f} s ({cpu:.1f} s of CPU), peak "
                  f"private_dirty {dirty / 1024:.1f} MB, pss {pss / 1024:.1f} MB, rss "
                  f"{rss / 1024:.1f} MB (summed over the process tree), exit {code}")
        # A separate preview process for one payload of each kind, median of 5 runs.
        alone = []
        for path in files[:3]:
            runs = []
            for _ in range(5):
                start = time.monotonic()
                subprocess.run([zvpush, "preview", path, "-o", os.path.join(work, "p.png"),
                                "--default-content-hidden"], stdout=subprocess.DEVNULL, check=True)
                runs.append(time.monotonic() - start)
            alone.append(statistics.median(runs))
        separate = statistics.mean(alone)
        print(f"zvpush preview, a process per preview: {separate * 1000:.1f} ms each "
              "(mean of the three kinds' medians)")
        for label, seconds in batch.items():
            ratio = seconds / previews / separate
            print(f"per preview, {label} / separate process: {ratio:.3f} (goal <= 0.5)")


if __name__ == "__main__":
    main()
