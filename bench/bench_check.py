#!/usr/bin/env python3
"""Regression guard for performance: measures ratios that do not depend much on the machine and
compares them with bench/baseline.json, failing on a regression of more than 25%.

    bench/bench_check.py [--build build-bench] [--update] [--tolerance 0.25]

Ratios measured (all from one run):
  render_vs_rsvg/<set>      librsvg render time / ours, per icon, median    (higher is better)
  full_vs_rsvg/<set>        the same for parsing plus rendering             (higher is better)
  parse_vs_expat/<set>      our sprite parse rate / expat scanning alone    (higher is better)
  peak_x_doc/<set>          peak heap while parsing a sprite / its size     (lower is better)
  thread_speedup            render-all, 1 thread time / all cores time      (higher is better)
  png_over_render           render-all, PNG writing time / rendering time   (lower is better)

The thread speedup is compared only on a machine with as many cores as the baseline's. The
whole-sprite figures need scripts/fetch-bench-data; the librsvg ratios need librsvg2-dev.
--update writes the measured ratios as the new baseline instead of checking.
"""
import argparse
import json
import os
import re
import subprocess
import sys

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
BASELINE = os.path.join(ROOT, "bench", "baseline.json")
SETS = {
    "bootstrap": "bootstrap-icons.svg",
    "tabler": "tabler-sprite.svg",
    "fontawesome": "fontawesome-solid.svg",
}
LOWER_IS_BETTER = ("peak_x_doc/", "png_over_render")


def fail(message):
    print(f"bench-check: {message}", file=sys.stderr)
    sys.exit(2)


def run(command):
    result = subprocess.run(command, capture_output=True, text=True)
    if result.returncode != 0:
        fail(f"{' '.join(command)} exited with {result.returncode}:\n{result.stderr}")
    return result.stdout


def google_benchmarks(build, pattern, repetitions):
    binary = os.path.join(build, "bench", "tessaline_bench")
    if not os.access(binary, os.X_OK):
        fail(f"{binary} not built (run make bench-build)")
    # The repetitions of the benchmarks compared with one another run interleaved in a random
    # order, so that a slow phase of a shared machine falls on all of them alike rather than on
    # whichever ran during it.
    out = run([binary, f"--benchmark_filter={pattern}",
               f"--benchmark_repetitions={repetitions}",
               "--benchmark_enable_random_interleaving=true", "--benchmark_format=json"])
    report = json.loads(out)
    runs = {}
    for entry in report["benchmarks"]:
        if entry.get("error_occurred"):
            fail(f"{entry['name']}: {entry.get('error_message')}")
        if entry.get("run_type") != "iteration":
            continue
        runs.setdefault(entry["run_name"], []).append(entry)
    return report["context"], runs


def find(runs, prefix):
    for name, entries in runs.items():
        if name == prefix or name.startswith(prefix + "/"):
            return entries
    fail(f"no benchmark named {prefix}...")


def best(entries, field):
    # Interference only ever slows a run down, so the best repetition is the one to compare.
    pick = min if field == "real_time" else max
    return pick(entry[field] for entry in entries)


def median(values):
    values = sorted(values)
    middle = len(values) // 2
    return values[middle] if len(values) % 2 else (values[middle - 1] + values[middle]) / 2


def measure(build):
    # Parsing in a process of its own, so the heap the rendering benchmarks leave behind does not
    # change what it costs.
    context, runs = google_benchmarks(build, "BM_(ParseSprite|ExpatScanSprite)", 7)
    runs.update(google_benchmarks(build, "BM_RenderAll", 5)[1])
    ratios = {}
    for index, (key, _) in enumerate(SETS.items()):
        parse = best(find(runs, f"BM_ParseSprite/{index}"), "bytes_per_second")
        expat = best(find(runs, f"BM_ExpatScanSprite/{index}"), "bytes_per_second")
        ratios[f"parse_vs_expat/{key}"] = parse / expat
    one = best(find(runs, "BM_RenderAll/0/1/0"), "real_time")
    all_cores = best(find(runs, "BM_RenderAll/0/0/0"), "real_time")
    ratios["thread_speedup"] = one / all_cores
    # Rendering and encoding are timed apart inside each run; the median over the runs.
    ratios["png_over_render"] = median(
        entry["png_over_render"] for entry in find(runs, "BM_RenderAll/0/1/1"))

    files = [os.path.join(ROOT, "bench", "data", name) for name in SETS.values()]
    memory = os.path.join(build, "bench", "tessaline_sprite_memory")
    if not os.access(memory, os.X_OK):
        fail(f"{memory} not built (run make bench-build)")
    out = run([memory] + files)
    print(out)
    for key, name in SETS.items():
        line = next((l for l in out.splitlines() if l.startswith(name)), None)
        if line is None:
            fail(f"the memory measurement printed no line for {name}:\n{out}")
        ratios[f"peak_x_doc/{key}"] = float(re.findall(r"([0-9.]+)x", line)[0])

    compare = os.path.join(build, "bench", "compare", "tessaline_rsvg_compare")
    if os.access(compare, os.X_OK):
        out = run([compare, "--reps", "3"] + files)
        for key, name in SETS.items():
            line = next((l for l in out.splitlines() if l.startswith(name)), None)
            if line is None:
                fail(f"the librsvg comparison printed no line for {name}:\n{out}")
            ratio = re.findall(r"([0-9.]+)x", line)
            ratios[f"render_vs_rsvg/{key}"] = float(ratio[0])
            ratios[f"full_vs_rsvg/{key}"] = float(ratio[1])
        print(out)
    else:
        print("bench-check: librsvg comparison not built; its ratios are not checked")
    return {"cores": context.get("num_cpus"), "ratios": ratios}


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--build", default=os.path.join(ROOT, "build-bench"))
    parser.add_argument("--update", action="store_true")
    parser.add_argument("--tolerance", type=float, default=0.25)
    args = parser.parse_args()

    if not os.path.exists(os.path.join(ROOT, "bench", "data", SETS["bootstrap"])):
        fail("bench/data missing: run scripts/fetch-bench-data first")
    measured = measure(args.build)

    if args.update:
        with open(BASELINE, "w") as out:
            json.dump(measured, out, indent=2, sort_keys=True)
            out.write("\n")
        print(f"bench-check: baseline written to {os.path.relpath(BASELINE, ROOT)}")
        return 0

    try:
        with open(BASELINE) as f:
            baseline = json.load(f)
    except OSError:
        fail(f"no baseline at {BASELINE} (record one with --update)")

    regressions = []
    print(f"{'ratio':28} {'baseline':>10} {'now':>10} {'change':>8}")
    for name, base in sorted(baseline["ratios"].items()):
        now = measured["ratios"].get(name)
        if now is None:
            print(f"{name:28} {base:10.3f} {'-':>10}  not measured")
            continue
        if name == "thread_speedup" and measured["cores"] != baseline.get("cores"):
            print(f"{name:28} {base:10.3f} {now:10.3f}  not compared: "
                  f"{measured['cores']} cores here, {baseline.get('cores')} in the baseline")
            continue
        lower = name.startswith(LOWER_IS_BETTER)
        # A change for the worse, as a share of the baseline.
        worse = (now - base) / base if lower else (base - now) / base
        mark = ""
        if worse > args.tolerance:
            regressions.append(name)
            mark = "  REGRESSION"
        print(f"{name:28} {base:10.3f} {now:10.3f} {-worse:+8.1%}{mark}")

    if regressions:
        print(f"bench-check: FAILED: {len(regressions)} ratio(s) more than "
              f"{args.tolerance:.0%} worse than bench/baseline.json: {', '.join(regressions)}",
              file=sys.stderr)
        return 1
    print(f"bench-check: ok, no ratio more than {args.tolerance:.0%} worse than the baseline")
    return 0


if __name__ == "__main__":
    sys.exit(main())
