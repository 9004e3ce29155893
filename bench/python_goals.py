#!/usr/bin/python3
"""The goals of the Python module, each beside its reference in one run: medians of several runs,
peak memory from a process of its own.

    /usr/bin/python3 bench/python_goals.py [--build build] [--repeat 5]
"""
import argparse
import json
import os
import statistics
import subprocess
import sys
import tempfile
import time

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))


def median_seconds(work, repeat):
    times = []
    for _ in range(repeat):
        start = time.perf_counter()
        work()
        times.append(time.perf_counter() - start)
    return statistics.median(times)


PEAK_CODE = """
import json, sys
import numpy as np
import vantracore
def status(key):
    with open("/proc/self/status") as file:
        return next(int(line.split()[1]) for line in file if line.startswith(key))
text = open(sys.argv[1]).read()
# The high-water mark starts again from here: reading the text may have set a higher one.
with open("/proc/self/clear_refs", "w") as file:
    file.write("5")
base = status("VmRSS:")
{work}
print(status("VmHWM:") - base)
"""


def peak_kib(build, path, work):
    """Peak resident memory a statement adds once the text is read, in a fresh interpreter."""
    env = dict(os.environ, PYTHONPATH=os.path.join(build, "python"))
    out = subprocess.run([sys.executable, "-c", PEAK_CODE.format(work=work), path], env=env,
                         check=True, capture_output=True, text=True)
    return int(out.stdout.split()[-1])


def pending(name, error):
    print(f"{name:60} pending: {error}")


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--build", default=os.path.join(ROOT, "build"))
    parser.add_argument("--repeat", type=int, default=5)
    options = parser.parse_args()
    sys.path.insert(0, os.path.join(options.build, "python"))
    import numpy as np
    import vantracore

    rng = np.random.default_rng(1)
    rows = []
    with tempfile.TemporaryDirectory() as scratch:
        # 1. A full-fidelity document of 1M doubles from a file.
        path = os.path.join(scratch, "doubles.json")
        vantracore.dump(rng.standard_normal(1_000_000), path, numbers="15")

        def reference():
            with open(path) as file:
                np.asarray(json.load(file)["_data_"])

        ours = median_seconds(lambda: vantracore.load(path), options.repeat)
        theirs = median_seconds(reference, options.repeat)
        rows.append((f"load, 1M doubles ({os.path.getsize(path) / 1e6:.0f} MB)", ours, theirs, 0.1))

        # 2. A plain export of 10M samples, arrays as NumPy arrays.
        plain = os.path.join(scratch, "plain.json")
        with open(plain, "w") as file:
            json.dump({"unit": "mV", "samples": rng.standard_normal(10_000_000).round(6).tolist()}, file)
        with open(plain) as file:
            text = file.read()
        name = "loads, 10M-sample plain export, arrays=\"variants\""
        try:
            vantracore.loads("[1]", fidelity="low", arrays="variants")
            ours = median_seconds(lambda: vantracore.loads(text, fidelity="low"), options.repeat)
            theirs = median_seconds(lambda: np.asarray(json.loads(text)["samples"]), options.repeat)
            rows.append((name, ours, theirs, 0.1))
            our_peak = peak_kib(options.build, plain, "vantracore.loads(text, fidelity='low')")
            their_peak = peak_kib(options.build, plain, "np.asarray(json.loads(text)['samples'])")
            rows.append((name + ", peak RSS", our_peak, their_peak, 0.5))
        except NotImplementedError as error:
            pending(name, error)
        del text

        # 3. Writing 1M doubles with round-trip numbers.
        values = rng.standard_normal(1_000_000)
        theirs = median_seconds(lambda: json.dumps(values.tolist()), options.repeat)
        try:
            ours = median_seconds(lambda: vantracore.dumps(values, numbers="roundtrip"), options.repeat)
            rows.append(("dumps, 1M doubles, roundtrip numbers", ours, theirs, 0.2))
        except NotImplementedError as error:
            pending("dumps, 1M doubles, roundtrip numbers", error)
            ours = median_seconds(lambda: vantracore.dumps(values, numbers="15"), options.repeat)
            rows.append(("dumps, 1M doubles, 15 digits (no goal)", ours, theirs, None))

        # 4. Unit conversion against NumPy's own multiplication.
        big = rng.standard_normal(16 * 1024 * 1024)
        ours = median_seconds(lambda: vantracore.convert(big, "mV", "V"), options.repeat)
        theirs = median_seconds(lambda: big * 0.001, options.repeat)
        rows.append(("convert mV to V, 16M float64", ours, theirs, 1.5))

    print(f"{'workload':60} {'vantracore':>12} {'reference':>12} {'ratio':>7} {'goal':>7}")
    for name, ours, theirs, goal in rows:
        unit = "KiB" if "RSS" in name else "s"
        ratio = ours / theirs
        verdict = "" if goal is None else ("met" if ratio <= goal else "MISSED")
        goal_text = "" if goal is None else f"<={goal:g}x"
        print(f"{name:60} {ours:>10.4g} {unit:<1} {theirs:>10.4g} {unit:<1} {ratio:>6.3f}x {goal_text:>7} {verdict}")


if __name__ == "__main__":
    main()
