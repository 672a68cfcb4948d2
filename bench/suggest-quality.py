#!/usr/bin/env python3
"""The field suggestions measured: their quality on matching pairs with known
answers, and their speed from bench_suggest, each beside its goal.

    suggest-quality.py --tool FIELDBRIDGE [--data DIR] [--out DIR]
                       [--speed BENCH_SUGGEST.json] [--merge BENCH_RESULTS.json]

Quality: for every <pair>.truth.json of DIR (default ../shared/matchdata beside
the repository), `fieldbridge suggest <pair>.xml` writes the suggestions, the
folder's baseline.py writes its naive matchers' output, and the folder's
score.py scores both. Goals per pair: F1 at the fixed threshold 0.5 at least
1.5 times the fuzzy baseline's best F1 (or at least 0.8), and recall@3 at least
0.9 on the gdc- pairs, 0.6 on the others.

Speed: the Google Benchmark JSON of bench_suggest; the whole suggestion of a
400-field dump against 40,000 source fields must take under 250 ms.

Prints one table; --merge adds the figures to the bench results JSON under
"suggestions". Exit status 0 whether goals are met or not (the table says),
1 when a step fails.
"""
import argparse
import json
import os
import subprocess
import sys

HERE = os.path.dirname(os.path.abspath(__file__))
SPEED_GOALS_MS = {"BM_SuggestDump400x40000": 250.0}


def run(cmd, **kw):
    r = subprocess.run(cmd, capture_output=True, text=True, **kw)
    if r.returncode != 0:
        sys.exit("suggest-quality: failed (%d): %s\n%s" % (r.returncode, " ".join(cmd), r.stderr.strip()))
    return r.stdout


def score(data, pairs, files, out_json):
    args = [sys.executable, os.path.join(data, "score.py"), "--quiet", "--json", out_json]
    for p in pairs:
        args += [os.path.join(data, p + ".truth.json"), files[p]]
    run(args)
    with open(out_json, encoding="utf-8") as f:
        return {r["pair"]: r for r in json.load(f)}


def quality(tool, data, out):
    pairs = sorted(n[: -len(".truth.json")] for n in os.listdir(data) if n.endswith(".truth.json"))
    if not pairs:
        sys.exit("suggest-quality: no *.truth.json in %s" % data)
    os.makedirs(os.path.join(out, "baseline"), exist_ok=True)
    mine, fuzzy = {}, {}
    for p in pairs:
        mine[p] = os.path.join(out, p + ".json")
        with open(mine[p], "w", encoding="utf-8") as f:
            f.write(run([tool, "suggest", os.path.join(data, p + ".xml"), "--top", "3"]))
        run([sys.executable, os.path.join(data, "baseline.py"), os.path.join(data, p + ".truth.json"),
             os.path.join(data, p + ".xml"), "--out", os.path.join(out, "baseline"), "--no-score"])
        fuzzy[p] = os.path.join(out, "baseline", p + ".fuzzy.json")
    engine = score(data, pairs, mine, os.path.join(out, "scores.json"))
    base = score(data, pairs, fuzzy, os.path.join(out, "baseline-scores.json"))
    rows = []
    for p in pairs:
        e, b = engine[p], base[p]
        f1_goal = min(0.8, 1.5 * b["best"]["f1"])
        r3_goal = 0.9 if p.startswith("gdc-") else 0.6
        rows.append({
            "pair": p, "trueCorrespondences": e["trueCorrespondences"],
            "fuzzyBestF1": b["best"]["f1"], "fuzzyRecallAt3": b["recallAt3"],
            "f1At05": e["fixed"]["f1"], "precisionAt05": e["fixed"]["precision"],
            "recallAt05": e["fixed"]["recall"], "bestF1": e["best"]["f1"],
            "bestThreshold": e["best"]["threshold"], "recallAt3": e["recallAt3"],
            "f1Goal": f1_goal, "recallAt3Goal": r3_goal,
            "met": e["fixed"]["f1"] >= f1_goal - 1e-9 and e["recallAt3"] >= r3_goal - 1e-9,
        })
    return rows


def speed(path):
    with open(path, encoding="utf-8") as f:
        benchmarks = json.load(f).get("benchmarks", [])
    scale = {"ns": 1e-6, "us": 1e-3, "ms": 1.0, "s": 1e3}
    rows = []
    for b in benchmarks:
        if b.get("run_type") == "aggregate":
            continue
        ms = b["real_time"] * scale[b.get("time_unit", "ns")]
        name = b["name"].split("/min_time")[0]
        goal = SPEED_GOALS_MS.get(name)
        rows.append({"benchmark": name, "ms": ms, "cpuMs": b["cpu_time"] * scale[b.get("time_unit", "ns")],
                     "goalMs": goal, "met": None if goal is None else ms < goal})
    return rows


def print_table(quality_rows, speed_rows):
    print("\nfield suggestions (bench/suggest-quality.py; score.py of the matching pairs, fuzzy = its naive baseline):")
    head = "%-16s | %4s | %9s | %7s | %7s | %7s | %6s | %6s | %4s"
    print(head % ("pair", "true", "fuzzy F1", "F1@0.5", "F1 goal", "best F1", "R@3", "goal", "met?"))
    print("-" * 96)
    for r in quality_rows:
        print("%-16s | %4d | %9.3f | %7.3f | %7.3f | %7.3f | %6.3f | %6.2f | %4s" % (
            r["pair"], r["trueCorrespondences"], r["fuzzyBestF1"], r["f1At05"], r["f1Goal"], r["bestF1"],
            r["recallAt3"], r["recallAt3Goal"], "yes" if r["met"] else "NO"))
    if speed_rows:
        print("-" * 96)
        for r in speed_rows:
            goal = "" if r["goalMs"] is None else "< %.0f ms" % r["goalMs"]
            met = "" if r["met"] is None else ("yes" if r["met"] else "NO")
            print("%-40s %9.1f ms  (CPU %.1f ms)  %-10s %s" % (r["benchmark"], r["ms"], r["cpuMs"], goal, met))
    missed = sum(1 for r in quality_rows if not r["met"]) + sum(1 for r in speed_rows if r["met"] is False)
    print("suggestion goals missed: %d" % missed)
    return missed


def main():
    ap = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    ap.add_argument("--tool", required=True, help="the fieldbridge program")
    ap.add_argument("--data", default=os.path.join(HERE, "..", "..", "shared", "matchdata"))
    ap.add_argument("--out", default="suggest-quality", help="folder for suggestions and scores")
    ap.add_argument("--speed", help="Google Benchmark JSON of bench_suggest")
    ap.add_argument("--merge", help="bench results JSON to add the figures to")
    a = ap.parse_args()
    data = os.path.abspath(a.data)
    if not os.path.isfile(os.path.join(data, "score.py")):
        sys.exit("suggest-quality: no score.py in %s" % data)
    quality_rows = quality(os.path.abspath(a.tool), data, a.out)
    speed_rows = speed(a.speed) if a.speed else []
    missed = print_table(quality_rows, speed_rows)
    figures = {"quality": quality_rows, "speed": speed_rows, "goalsMissed": missed}
    with open(os.path.join(a.out, "suggest-quality.json"), "w", encoding="utf-8") as f:
        json.dump(figures, f, indent=1)
    if a.merge:
        results = {}
        if os.path.exists(a.merge):
            with open(a.merge, encoding="utf-8") as f:
                results = json.load(f)
        results["suggestions"] = figures
        with open(a.merge, "w", encoding="utf-8") as f:
            json.dump(results, f, indent=1)
        print("results: %s (suggestions)" % a.merge)
    return 0


if __name__ == "__main__":
    sys.exit(main())
