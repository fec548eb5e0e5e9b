#!/usr/bin/env python3
"""The sender's tools on the three-card carousel example:
 1. a preview request on the studio page (payload in: the service flow downloading the three cards
    from the studio itself, inspect, both PNGs out), median and slowest of 20 after the first,
    against the goal of 200 ms;
 2. the animated WebP of 10 s at 10 frames a second (zvpush preview --animate): time and size.
Exits 1 when the studio misses its goal.
Usage: bench/studio_bench.py [build dir]   (default build/release)"""
import hashlib
import json
import os
import statistics
import subprocess
import sys
import tempfile
import time
import urllib.request

ROOT = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..")
build = sys.argv[1] if len(sys.argv) > 1 else os.path.join(ROOT, "build/release")
zvpush = os.path.join(build, "tools/zvpush/zvpush")

studio = subprocess.Popen([zvpush, "studio", "--port", "0", "--root",
                           os.path.join(ROOT, "examples")], stdout=subprocess.PIPE, text=True)
try:
    printed = studio.stdout.readline().split()[-1]  # http://127.0.0.1:PORT/?token=T
    url, token = printed.split("/?token=")
    headers = {"X-Studio-Token": token, "Content-Type": "application/json"}
    examples = json.load(urllib.request.urlopen(urllib.request.Request(url + "/api/examples",
                                                                       headers=headers)))
    carousel = next(e["payload"] for e in examples if e["name"] == "carousel")
    body = json.dumps({"payload": carousel}).encode()

    def request():
        start = time.perf_counter()
        answer = json.load(urllib.request.urlopen(urllib.request.Request(
            url + "/api/preview", data=body, headers=headers)))
        assert len(answer["delivered"]["attachments"]) == 3, answer["downloads"]
        return (time.perf_counter() - start) * 1000

    first = request()
    times = [request() for _ in range(20)]
finally:
    studio.terminate()
    studio.wait()
median = statistics.median(times)
print(f"studio preview of the carousel: first {first:.0f} ms, then median {median:.0f} ms, "
      f"slowest {max(times):.0f} ms over 20 (goal < 200 ms)")

with tempfile.TemporaryDirectory() as work:
    cards, attachments = [], []
    for i in (1, 2, 3):
        image = f"https://cdn.example.com/card{i}.png"
        cards.append({"id": i, "widgets": [{"id": 1, "type": "image", "content": image}]})
        attachments.append({"identifier": hashlib.md5(image.encode()).hexdigest(),
                            "url": "file://" + os.path.join(ROOT, f"examples/media/card{i}.png")})
    delivered = {"identifier": "bench", "attachments": attachments, "userInfo": {
        "aps": {"alert": "a"}, "zentrova": {"cid": "c", "app_id": "a"},
        "zovFeatures": {"richPush": {"title": "Three cards", "body": "Bench", "displayName": "b",
                                     "expanded": {"type": "imageCarousel", "autoStart": True,
                                                  "cards": cards}}}}}
    path = os.path.join(work, "delivered.json")
    with open(path, "w") as f:
        json.dump(delivered, f)
    webp = os.path.join(work, "carousel.webp")
    start = time.perf_counter()
    out = json.loads(subprocess.run([zvpush, "preview", path, "--animate", webp, "--compact"],
                                    check=True, capture_output=True, text=True).stdout)
    took = (time.perf_counter() - start) * 1000
    print(f"animated WebP, 10 s at 10 fps: {took:.0f} ms, {os.path.getsize(webp)} bytes, "
          f"{out['animation']['frames']} frames after merging equal ones")
sys.exit(0 if median < 200 else 1)
