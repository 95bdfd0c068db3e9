"""Writes the figures of a benchmark run as tables (results.md) and pictures (results.svg and
growth.svg).

bench/run calls it."""

import argparse
import datetime
import glob
import json
import os
import platform
import statistics
import subprocess

from growth import growth_rows, read_growth, write_growth_picture
from picture import svg_text, write_picture

WORKLOADS = {
    "base64_crlf": "base64 attachments, CRLF, 64 MiB",
    "text_lf": "plain text, LF, 64 MiB",
    "dashed_lf": "text full of lines that begin with `--`, 64 MiB",
    "small_messages": "5,000 small messages",
    "tiny_parts": "1,000,000 parts",
    "levels": "100,000 levels",
    "fields": "1,000,000 fields",
}
STREAMS = {
    "parse": "memory stream",
    "keep_text": "memory stream, text kept",
    "by_4096": "buffer that hands out 4 KB",
    "ifstream": "`std::ifstream`",
    "mapped": "memory-mapped file",
}
WAYS = {
    "parse": "memory stream",
    "memory": "`Fill` from memory",
    "feed_65536": "fed 65,536 bytes at a time",
    "feed_100": "fed 100 bytes at a time",
    "feed_1": "fed one byte at a time",
    "c_arrays": "flat arrays for C",
    "python": "Python",
}
FLOORS = {"getline_floor": "`std::getline` loop", "memchr": "`memchr` loop", "memcpy": "`memcpy`"}
PEERS = {"dovecot": "Dovecot", "gmime": "GMime", "mimetic": "mimetic"}
SCANS = {
    "scan_avx512": "AVX-512",
    "scan_avx2": "AVX2",
    "scan_sse2": "SSE2",
    "scan_portable": "portable",
    "scan_plain": "plain twin",
}


class Figure:
    """The repeats of one benchmark, in seconds of processor time."""

    def __init__(self):
        self.times, self.bytes, self.lines, self.error = [], 0.0, 0.0, None
        self.of_rounds = {} # the same times by the name of their round

    def add(self, seconds, round_name):
        self.times.append(seconds)
        self.of_rounds.setdefault(round_name, []).append(seconds)

    def megabytes_per_second(self):
        return self.bytes / statistics.median(self.times) / 1e6

    def best_megabytes_per_second(self):
        return self.bytes / min(self.times) / 1e6

    def nanoseconds_per_line(self):
        return statistics.median(self.times) / self.lines * 1e9


def read_figures(paths):
    """The figures of all these files, by name ("workload/what")."""
    figures = {}
    for path in paths:
        with open(path, encoding="utf-8") as file:
            text = file.read()
        # A file is empty where there was nothing to measure.
        for run in json.loads(text)["benchmarks"] if text else []:
            if run.get("run_type") == "aggregate": # of the repeats in this file
                continue
            figure = figures.setdefault(run["run_name"], Figure())
            if run.get("error_occurred"):
                figure.error = run["error_message"]
                continue
            figure.add(run["cpu_time"] / 1e3, path.split(".")[-2])
            figure.bytes, figure.lines = run["bytes"], run["lines"]
    return figures


def has_times(figures, name):
    return name in figures and bool(figures[name].times)


def rate(figures, name):
    return f"{figures[name].megabytes_per_second():,.0f}" if has_times(figures, name) else "–"


def ratio(figures, name, others, other):
    """The speed of the first, divided by that of the other: the median of the rounds and, in
    brackets, the least and the most."""
    if not (has_times(figures, name) and has_times(others, other)):
        return "–"
    one, two = figures[name], others[other]
    ratios = [statistics.median(two.of_rounds[each]) / statistics.median(seconds)
              * one.bytes / two.bytes
              for each, seconds in one.of_rounds.items() if each in two.of_rounds]
    least, most = ratio_text(min(ratios)), ratio_text(max(ratios))
    spread = f" ({least}–{most})" if least != most else ""
    return ratio_text(statistics.median(ratios)) + spread


def ratio_text(times):
    return f"{times:.2f}" if times < 10 else f"{times:.0f}"


def table(heads, rows):
    lines = [heads, ["---"] + ["---:"] * (len(heads) - 1)] + rows
    return "".join("| " + " | ".join(cells) + " |\n" for cells in lines) + "\n"


def speed_row(figures, plain, name, title):
    figure = figures[name]
    return [title, f"{figure.megabytes_per_second():,.0f}",
            f"{figure.best_megabytes_per_second():,.0f}", f"{figure.nanoseconds_per_line():.1f}",
            ratio(figures, name, plain, name)]


def memory_table(figures, plain):
    rows = []
    for workload, title in WORKLOADS.items():
        name = workload + "/parse"
        if has_times(figures, name):
            floors = [ratio(figures, name, figures, f"{workload}/{floor}") for floor in FLOORS]
            rows.append(speed_row(figures, plain, name, title) + floors)
    return table(["workload", "MB/s", "best MB/s", "ns per line", "× plain build"]
                 + [f"× {title}" for title in FLOORS.values()], rows)


def peer_table(figures):
    rows = []
    for workload, title in WORKLOADS.items():
        cells = [title, rate(figures, workload + "/parse")]
        for peer in PEERS:
            cells += [rate(figures, f"{workload}/{peer}"),
                      ratio(figures, workload + "/parse", figures, f"{workload}/{peer}")]
        rows.append(cells)
    heads = ["workload", "MB/s"]
    for title in PEERS.values():
        heads += [f"{title} MB/s", "×"]
    return table(heads, rows)


def rules_table(figures):
    """Both sets of rules, and the fastest other library."""
    rows = []
    for workload, title in WORKLOADS.items():
        name = workload + "/parse_standard"
        if not has_times(figures, name):
            continue
        peers = [peer for peer in PEERS if has_times(figures, f"{workload}/{peer}")]
        fastest = max(peers, default=None,
                      key=lambda peer, w=workload: figures[f"{w}/{peer}"].megabytes_per_second())
        against = ratio(figures, name, figures, f"{workload}/{fastest}") if fastest else "–"
        rows.append([title, rate(figures, workload + "/parse"), rate(figures, name),
                     ratio(figures, name, figures, workload + "/parse"), against])
    return table(["workload", "classic MB/s", "standard MB/s", "standard × classic",
                  "standard × next fastest library"], rows)


def ways_table(figures, suffix):
    """How the bytes arrive; the suffix chooses the rules."""
    rows = []
    for workload, title in WORKLOADS.items():
        if not has_times(figures, f"{workload}/memory{suffix}"):
            continue
        rates = [rate(figures, f"{workload}/{way}{suffix}") for way in WAYS]
        rows.append([title] + rates + [ratio(figures, f"{workload}/memory{suffix}",
                                             figures, f"{workload}/parse{suffix}")])
    return table(["MB/s", *WAYS.values(), "memory × memory stream"], rows)


def peer_errors(figures):
    lines = []
    for name, figure in figures.items():
        workload, peer = name.split("/")
        if figure.error and peer in PEERS:
            lines.append(f"- {PEERS[peer]} {figure.error} of “{WORKLOADS[workload]}”.\n")
    return "".join(lines)


def stream_table(figures, plain):
    rows = []
    for workload in ("base64_crlf", "text_lf"):
        for stream, title in STREAMS.items():
            name = f"{workload}/{stream}"
            if has_times(figures, name):
                floor = ""
                if stream == "ifstream":
                    floor = ratio(figures, name, figures, workload + "/ifstream_floor")
                title = f"{WORKLOADS[workload]}: {title}"
                rows.append(speed_row(figures, plain, name, title) + [floor])
    return table(["workload and stream", "MB/s", "best MB/s", "ns per line", "× plain build",
                  "× 8 KiB `sgetn` loop"], rows)


def scan_table(figures):
    rows = []
    for workload in ("base64_crlf", "text_lf"):
        names = [f"{workload}/{scan}" for scan in SCANS]
        fastest = next((name for name in names if has_times(figures, name)), None)
        rows.append([WORKLOADS[workload]] + [rate(figures, name) for name in names]
                    + [ratio(figures, workload + "/parse", figures, fastest)])
    return table(["MB/s", *SCANS.values(), "parse × the first one"], rows)


def read_heap_figures(path):
    with open(path, encoding="utf-8") as file:
        return dict(line.rstrip("\n").split("\t") for line in file)


def heap_table(path):
    figures = read_heap_figures(path)
    things = [what[len("bytes of "):] for what in figures if what.startswith("bytes of ")]
    kinds = ["bytes of ", "peak bytes of ", "allocations of ", "allocations when reused of "]
    rows = [[thing] + [figures[kind + thing] for kind in kinds] for thing in things]
    entity, field = (float(figures["size of " + thing]) for thing in ("an entity", "a field"))
    sizes = f"The record of an entity is {entity:.0f} bytes, that of a field {field:.0f}.\n\n"
    heads = ["of each", "bytes", "bytes at the peak", "allocations", "allocations when reused"]
    return sizes + table(heads, rows)


def machine():
    model = platform.processor()
    with open("/proc/cpuinfo", encoding="utf-8") as file:
        for line in file:
            if line.startswith("model name"):
                model = line.split(":", 1)[1].strip()
    return f"{model}, {os.cpu_count()} processors, Linux {platform.release()}"


def package_versions(names):
    query = ["dpkg-query", "-W", "-f", "${Package} ${Version}\n"]
    try:
        found = subprocess.run(query + names, capture_output=True, text=True, check=False)
    except FileNotFoundError: # not a Debian machine
        return "unknown"
    lines = found.stdout.split("\n")
    return ", ".join(sorted({line for line in lines if len(line.split()) == 2}))


INTRODUCTION = """# Figures of the last accepted run

Written by `bench/run`; not to be edited. MB/s are millions of bytes per second of processor time:
the median of {repeats} repeats or more, in which the programs took turns; “best” is the fastest
repeat. The two sets of rules took turns within one process as well, and so did `std::ifstream` and
the loop beside it. “× another” says how many times as fast as the other the parse is: the median
of the rounds of this run and, in brackets, the least and the most of them, for other systems share
the memory of the machine. One parser object takes all messages of a workload, as in a server, so
each parse also clears away the tree of the message before. The result of the parse was checked
outside the timing.

- machine: {machine}
- compiler: {compiler}
- packages: {packages}
- date: {date}

"""

PEER_NOTES = """\
Each library parses from memory, and is told to keep or copy no text. Dovecot's tree has offsets and
no header fields; GMime's has both; mimetic's has fields and no offsets. mimetic is left out for the
plain text, which it skips unread where no boundary can come, and for the levels, on which it
recurses.

"""


WAY_NOTES = """\
“Flat arrays for C” is a parse from memory and the layout of its tree in arrays, both through
`mail_structure_c.h`. “Python” is `mailstructure.parse`, which does the same, but gives back the
memory of each large tree before it makes the next.

"""


GROWTH_NOTES = """\
![Time against the number of lines, for hostile messages](growth.svg)

Each message of a shape has ten times the lines of the one before, from 1,000 to 10 million. A cell
has the slope of the logarithm of the time over that of the lines, from 10,000 lines on: 1 is
linear, 2 quadratic. In brackets stand the largest message measured and its time: the next one would
have taken more than some 4 s, or ended the program, as mimetic's recursion does. GMime stops
entering messages at a depth of 513, so its figures for these are not those of a whole parse.

"""


def write_table(path, options, figures, plain, growth):
    repeats = min(len(figure.times) for figure in figures.values() if figure.times)
    text = INTRODUCTION.format(repeats=repeats, machine=machine(), compiler=options.compiler,
                               packages=package_versions(options.packages.split()),
                               date=datetime.date.today().isoformat())
    text += "## From memory, against the least that reading costs\n\n"
    text += memory_table(figures, plain)
    text += ("The plain build (`MAILSTRUCTURE_PLAIN`) reads by `std::getline`, and looks at one "
             "byte after another.\n\n")
    text += "## Against other libraries\n\n"
    text += peer_table(figures) + PEER_NOTES + peer_errors(figures)
    text += "\n## Both sets of rules, from memory\n\n" + rules_table(figures)
    text += "## From memory, in chunks, and from other languages\n\n" + WAY_NOTES
    text += "By the classic rules:\n\n" + ways_table(figures, "")
    text += "By the standard rules:\n\n" + ways_table(figures, "_standard")
    text += "## Other streams, and with the text kept\n\n" + stream_table(figures, plain)
    text += "## The scan of bodies alone\n\n" + scan_table(figures)
    text += "## How the cost of hostile messages grows\n\n" + GROWTH_NOTES
    text += table(*growth_rows(growth))
    text += "## Heap\n\n" + heap_table(options.figures + "/heap.txt")
    with open(path, "w", encoding="utf-8") as file:
        file.write(text.rstrip("\n") + "\n")


# The picture: a panel for each workload, with a bar for each program whose length is the speed.
BARS = {
    "parse": ("mailstructure", "#1f6feb"),
    "dovecot": ("Dovecot", "#8b949e"),
    "gmime": ("GMime", "#8b949e"),
    "mimetic": ("mimetic", "#8b949e"),
    "getline_floor": ("empty getline loop", "#d0d7de"),
}
PANEL_WIDTH, BAR_HEIGHT, LABEL_WIDTH, NUMBER_WIDTH = 430, 20, 125, 85


def panel(figures, workload, left, top):
    drawn = svg_text(left, top + 12, WORKLOADS[workload], 'font-weight="bold"')
    rates = {bar: figures[f"{workload}/{bar}"].megabytes_per_second()
             for bar in BARS if has_times(figures, f"{workload}/{bar}")}
    longest = max(rates.values(), default=1)
    for row, (bar, value) in enumerate(rates.items()):
        title, colour = BARS[bar]
        y = top + 22 + row * BAR_HEIGHT
        width = max(1, (PANEL_WIDTH - LABEL_WIDTH - NUMBER_WIDTH) * value / longest)
        drawn += svg_text(left + LABEL_WIDTH - 6, y + 12, title, 'text-anchor="end"')
        drawn += (f'<rect x="{left + LABEL_WIDTH}" y="{y}" width="{width:.1f}" '
                  f'height="{BAR_HEIGHT - 5}" fill="{colour}"/>\n')
        number = f"{value / 1e3:.1f} GB/s" if value >= 1e3 else f"{value:.0f} MB/s"
        drawn += svg_text(left + LABEL_WIDTH + width + 5, y + 12, number)
    return drawn


def write_speed_picture(path, figures):
    workloads = [name for name in WORKLOADS if has_times(figures, name + "/parse")]
    panel_height = 22 + len(BARS) * BAR_HEIGHT + 16
    drawn = "".join(panel(figures, workload, 10 + index % 2 * (PANEL_WIDTH + 10),
                          10 + index // 2 * panel_height)
                    for index, workload in enumerate(workloads))
    write_picture(path, 2 * PANEL_WIDTH + 30, (len(workloads) + 1) // 2 * panel_height + 10,
                  "Speed of parsing mail from memory", drawn)


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    for name in ("compiler", "packages", "figures", "output"):
        parser.add_argument("--" + name, required=True)
    options = parser.parse_args()
    figures = read_figures(glob.glob(options.figures + "/bench.*.json"))
    plain = read_figures(glob.glob(options.figures + "/bench-plain.*.json"))
    wrong = [name for all_figures in (figures, plain) for name, figure in all_figures.items()
             if figure.error and name.split("/")[1] not in PEERS]
    if wrong or not figures:
        reason = ", ".join(wrong) + ": a wrong result" if wrong else "nothing was measured"
        raise SystemExit("No report: " + reason)
    growth = read_growth(options.figures)
    write_table(options.output + ".md", options, figures, plain, growth)
    write_speed_picture(options.output + ".svg", figures)
    write_growth_picture(os.path.dirname(options.output) + "/growth.svg", growth)


if __name__ == "__main__":
    main()
