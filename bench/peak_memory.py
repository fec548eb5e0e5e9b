#!/usr/bin/env python3
"""Runs a command and prints its peak private dirty memory and peak RSS (kB), sampled from
/proc/PID/smaps_rollup every 0.2 ms until it exits. Private dirty pages (heap, stacks, relocated
data) are what a phone counts against an extension; RSS also counts shared library code.
Usage: peak_memory.py COMMAND [ARGS...]   (the command's stdout goes to /dev/null)"""
import subprocess
import sys
import time


def sample(pid):
    dirty = rss = 0
    try:
        with open(f"/proc/{pid}/smaps_rollup") as f:
            for line in f:
                if line.startswith("Private_Dirty:"):
                    dirty = int(line.split()[1])
                elif line.startswith("Rss:"):
                    rss = int(line.split()[1])
    except (FileNotFoundError, ProcessLookupError, PermissionError):
        pass
    return dirty, rss


def main():
    process = subprocess.Popen(sys.argv[1:], stdout=subprocess.DEVNULL)
    peak_dirty = peak_rss = 0
    while process.poll() is None:
        dirty, rss = sample(process.pid)
        peak_dirty, peak_rss = max(peak_dirty, dirty), max(peak_rss, rss)
        time.sleep(0.0002)
    print(f"private_dirty_kb={peak_dirty} rss_kb={peak_rss} exit={process.returncode}")
    sys.exit(process.returncode)


if __name__ == "__main__":
    main()
