#!/usr/bin/env python3
"""Start-up to the end of empty input: median of repeated runs."""
import statistics, subprocess, sys, time

binaire = sys.argv[1] if len(sys.argv) > 1 else "build/orvane"
args = [binaire, "gra=0", "ID", "ini=env/initb.h"]
temps = []
for _ in range(60):
    t = time.perf_counter()
    subprocess.run(args, stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, check=True)
    temps.append((time.perf_counter() - t) * 1000)
temps.sort()
print(f"start-up to end of empty input: median {statistics.median(temps):.2f} ms, "
      f"best {temps[0]:.2f} ms over {len(temps)} runs (goal < 20 ms)")
