#!/usr/bin/env python3
"""Pairs the results of the benchmark programs and shows ours beside the peers.

usage: report.py TARGETS.json OUT RESULT.json...

Prints the table, and writes it as OUT.json, OUT.md and, as bars, OUT.svg.
The results are Google Benchmark's JSON files. A benchmark is named ROAD/ours or ROAD/PEER; its
repetitions are reduced to their median here. A counter named "bytes" stands for memory and one named
"seconds" for a time measured by the program itself: either takes the place of the CPU time.
"""
import json
import statistics
import sys
from xml.sax.saxutils import escape


def value_and_unit(run):
    """What a run is judged by: a counter of its own, or its CPU time in nanoseconds."""
    for counter, unit in (("bytes", "bytes"), ("seconds", "s")):
        if counter in run:
            return run[counter], unit
    factor = {"ns": 1e-9, "us": 1e-6, "ms": 1e-3, "s": 1.0}[run["time_unit"]]
    return run["cpu_time"] * factor, "s"


def read_results(paths):
    """Road -> side -> list of values, and road -> unit."""
    roads, units = {}, {}
    for path in paths:
        with open(path, encoding="utf-8") as file:
            result = json.load(file)
        for run in result["benchmarks"]:
            if run.get("run_type") == "aggregate" or run.get("error_occurred"):
                continue
            name = run["run_name"].split("/iterations:")[0].split("/process_time")[0]
            road, side = name.removesuffix("/manual_time").removesuffix("/real_time").rsplit("/", 1)
            value, units[road] = value_and_unit(run)
            roads.setdefault(road, {}).setdefault(side, []).append(value)
    return roads, units


def spread(values):
    """Half the distance between the quartiles, as a share of the median."""
    if len(values) < 4:
        return 0.0
    low, middle, high = statistics.quantiles(values, n=4)
    return (high - low) / 2 / middle if middle else 0.0


def text_of(value, unit):
    if unit == "bytes":
        return f"{value / 2**20:.2f} MiB"
    for limit, factor, name in ((1e-6, 1e9, "ns"), (1e-3, 1e6, "us"), (1.0, 1e3, "ms")):
        if value < limit:
            return f"{value * factor:.3g} {name}"
    return f"{value:.3g} s"


def wanted_ratio(target, theirs):
    """A target is a ratio, or {"ratio": R, "plus": P}: P bytes or seconds beyond R times the peer."""
    if not isinstance(target, dict) or not theirs:
        return target
    return target["ratio"] + target["plus"] / theirs


def text_of_target(row):
    """A ratio, or what may come on top of the peer's cost."""
    if isinstance(row["wanted"], dict) and row["wanted"]["ratio"] == 1:
        return "+" + text_of(row["wanted"]["plus"], row["unit"])
    return "" if row["target"] is None else f"{row['target']:.2f}"


def sorted_rows(rows, targets):
    """In the order of the targets: that of the runs is random."""
    names = list(targets)

    def place(row):
        for name in (f"{row['road']}/{row['peer']}", row["road"]):
            if name in targets:
                return names.index(name)
        return next((i for i, name in enumerate(names) if name.startswith(row["road"] + "/")),
                    len(names))

    return sorted(rows, key=lambda row: (place(row), row["peer"]))


def make_rows(roads, units, targets):
    rows = []
    for road, sides in roads.items():
        if "ours" not in sides:
            continue
        ours = statistics.median(sides["ours"])
        for peer, values in sides.items():
            if peer == "ours":
                continue
            theirs = statistics.median(values)
            wanted = targets.get(f"{road}/{peer}", targets.get(road))
            ratio = ours / theirs if theirs else 0.0
            target = wanted_ratio(wanted, theirs)
            rows.append({
                "road": road, "peer": peer, "ours": ours, "theirs": theirs, "unit": units[road],
                "ratio": ratio, "wanted": wanted, "target": target, "runs": len(values),
                "spread_ours": spread(sides["ours"]), "spread_peer": spread(values),
                "reached": None if target is None else ratio <= target})
    return sorted_rows(rows, targets)


def print_table(rows):
    print(f"{'road':<44}{'peer':<26}{'ours':>16}{'peer':>16}{'ratio':>8}{'target':>10}")
    for row in rows:
        ours = f"{text_of(row['ours'], row['unit'])} ±{row['spread_ours'] * 100:.0f}%"
        theirs = f"{text_of(row['theirs'], row['unit'])} ±{row['spread_peer'] * 100:.0f}%"
        target = text_of_target(row)
        missed = "  missed" if row["reached"] is False else ""
        print(f"{row['road']:<44}{row['peer']:<26}{ours:>16}{theirs:>16}"
              f"{row['ratio']:>8.2f}{target:>10}{missed}")


def write_markdown(rows, path):
    """The same table for a page of the documentation; a ratio beyond its target is bold."""
    lines = ["| work | peer | ours | theirs | ratio | target |", "|---|---|--:|--:|--:|--:|"]
    for row in rows:
        ratio = f"{row['ratio']:.2f}"
        if row["reached"] is False:
            ratio = f"**{ratio}**"
        lines.append(f"| {row['road']} | {row['peer']} | {text_of(row['ours'], row['unit'])} | "
                     f"{text_of(row['theirs'], row['unit'])} | {ratio} | {text_of_target(row)} |")
    with open(path, "w", encoding="utf-8") as file:
        file.write("\n".join(lines) + "\n")


def write_chart(rows, path):
    """A bar a road: our share of the peer's cost, with a mark at the wanted share."""
    left, scale, line = 380, 220, 22
    height = line * len(rows) + 50
    parts = [f'<svg xmlns="http://www.w3.org/2000/svg" width="{left + scale * 2 + 80}" '
             f'height="{height}" font-family="sans-serif" font-size="12">',
             '<rect width="100%" height="100%" fill="white"/>',
             f'<text x="{left + scale}" y="16" text-anchor="middle">the peer = 1</text>']
    for index, row in enumerate(rows):
        y = 26 + index * line
        width = min(row["ratio"], 2.0) * scale
        colour = "#c0504d" if row["reached"] is False else "#4f81bd"
        parts.append(f'<text x="{left - 8}" y="{y + 13}" text-anchor="end">'
                     f'{escape(row["road"])} / {escape(row["peer"])}</text>')
        parts.append(f'<rect x="{left}" y="{y}" width="{width:.1f}" height="{line - 6}" '
                     f'fill="{colour}"/>')
        parts.append(f'<text x="{left + width + 5:.1f}" y="{y + 13}">{row["ratio"]:.2f}</text>')
        if row["target"] is not None and row["target"] <= 2.0:
            x = left + row["target"] * scale
            parts.append(f'<line x1="{x:.1f}" y1="{y - 2}" x2="{x:.1f}" y2="{y + line - 4}" '
                         'stroke="black" stroke-width="2"/>')
    parts.append(f'<line x1="{left + scale}" y1="20" x2="{left + scale}" y2="{height - 20}" '
                 'stroke="grey" stroke-dasharray="3 3"/>')
    parts.append(f'<text x="{left}" y="{height - 6}">ratio of cost, less is better; '
                 'black marks: targets</text></svg>')
    with open(path, "w", encoding="utf-8") as file:
        file.write("\n".join(parts) + "\n")


def main():
    if len(sys.argv) < 4:
        sys.exit(__doc__)
    targets_path, out, *paths = sys.argv[1:]
    with open(targets_path, encoding="utf-8") as file:
        targets = json.load(file)
    rows = make_rows(*read_results(paths), targets)
    with open(out + ".json", "w", encoding="utf-8") as file:
        json.dump(rows, file, indent=1)
    write_chart(rows, out + ".svg")
    write_markdown(rows, out + ".md")
    print_table(rows)


if __name__ == "__main__":
    main()
