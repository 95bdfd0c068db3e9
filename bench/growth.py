"""How the cost of hostile messages grows: a table of slopes and a picture, for report.py."""

import glob
import math
import os

from picture import svg_text, write_picture

SHAPES = {
    "parts": "parts of one multipart",
    "messages": "messages within messages",
    "multiparts": "multiparts within multiparts",
    "fields": "header fields",
    "folds": "folded lines of one field",
    "dashes": "lines like delimiters, at depth",
}
PROGRAMS = {
    "classic": ("mailstructure, classic", "#1f6feb", ""),
    "standard": ("mailstructure, standard", "#0a7d33", "6 3"),
    "dovecot": ("Dovecot", "#bc4c00", ""),
    "gmime": ("GMime", "#8250df", ""),
    "mimetic": ("mimetic", "#57606a", "2 3"),
}
# Below this the time is that of the message itself.
FEWEST_LINES_OF_SLOPE = 10000
LEAST_LINES, MOST_LINES = 1e3, 1e7
LEAST_SECONDS, MOST_SECONDS = 1e-5, 1e2
PLOT_WIDTH, PLOT_HEIGHT, MARGIN_LEFT, MARGIN_TOP = 250, 175, 55, 45


def read_growth(folder):
    """{(program, shape): [(lines, bytes, seconds), ...]}"""
    growth = {}
    for path in glob.glob(folder + "/growth.*.txt"):
        program, shape = os.path.basename(path).split(".")[1:3]
        with open(path, encoding="utf-8") as file:
            rows = [line.split("\t") for line in file if line.count("\t") == 2]
        if rows:
            growth[program, shape] = [(int(a), int(b), float(c)) for a, b, c in rows]
    return growth


def slope_of(points):
    """The slope of the straight line through the logarithms; None where there are too few."""
    used = [(math.log(lines), math.log(seconds)) for lines, _, seconds in points
            if lines >= FEWEST_LINES_OF_SLOPE]
    if len(used) < 2:
        return None
    middle_x, middle_y = (sum(values) / len(used) for values in zip(*used))
    above = sum((x - middle_x) * (y - middle_y) for x, y in used)
    return above / sum((x - middle_x) ** 2 for x, _ in used)


def lines_text(lines):
    return f"{lines // 1000000} million" if lines >= 1000000 else f"{lines:,}"


def growth_cell(points):
    if not points:
        return "–"
    slope = slope_of(points)
    lines, _, seconds = points[-1]
    largest = f"{lines_text(lines)}: {seconds:.2g} s"
    return largest if slope is None else f"{slope:.2f} ({largest})"


def growth_rows(growth):
    measured = [program for program in PROGRAMS if any(key[0] == program for key in growth)]
    heads = ["shape"] + [PROGRAMS[program][0] for program in measured]
    rows = [[title] + [growth_cell(growth.get((program, shape))) for program in measured]
            for shape, title in SHAPES.items()]
    return heads, rows


def place_x(left, lines):
    return left + PLOT_WIDTH * math.log(lines / LEAST_LINES) / math.log(MOST_LINES / LEAST_LINES)


def place_y(top, seconds):
    height = math.log(seconds / LEAST_SECONDS) / math.log(MOST_SECONDS / LEAST_SECONDS)
    return top + PLOT_HEIGHT * (1 - height)


def axes(left, top):
    names = {-5: "10 µs", -4: "100 µs", -3: "1 ms", -2: "10 ms", -1: "100 ms", 0: "1 s",
             1: "10 s", 2: "100 s"}
    drawn = ""
    for power, name in names.items():
        y = place_y(top, 10.0 ** power)
        drawn += (f'<path d="M{left} {y:.1f}h{PLOT_WIDTH}" stroke="#d0d7de"/>\n'
                  + svg_text(left - 5, y + 4, name, 'text-anchor="end"'))
    for power, name in {3: "1,000", 4: "10,000", 5: "100,000", 6: "1 m.", 7: "10 m."}.items():
        x = place_x(left, 10.0 ** power)
        drawn += (f'<path d="M{x:.1f} {top}v{PLOT_HEIGHT}" stroke="#d0d7de"/>\n'
                  + svg_text(x, top + PLOT_HEIGHT + 15, name, 'text-anchor="middle"'))
    return drawn


def curve(points, colour, dashes, left, top):
    places = [(place_x(left, lines), place_y(top, max(seconds, LEAST_SECONDS)))
              for lines, _, seconds in points]
    path = " ".join(f"{x:.1f},{y:.1f}" for x, y in places)
    drawn = (f'<polyline points="{path}" fill="none" stroke="{colour}" stroke-width="2" '
             f'stroke-dasharray="{dashes or "none"}"/>\n')
    return drawn + "".join(f'<circle cx="{x:.1f}" cy="{y:.1f}" r="2.5" fill="{colour}"/>\n'
                           for x, y in places)


def growth_panel(growth, shape, left, top):
    drawn = svg_text(left, top - 10, SHAPES[shape], 'font-weight="bold"') + axes(left, top)
    # What linear cost looks like: the diagonal of a decade for each decade.
    drawn += (f'<path d="M{place_x(left, 1e3):.1f} {place_y(top, 1e-4):.1f}'
              f'L{place_x(left, 1e7):.1f} {place_y(top, 1):.1f}" stroke="#8c959f" '
              'stroke-dasharray="1 4" stroke-width="1.5"/>\n')
    for program, (_, colour, dashes) in PROGRAMS.items():
        if (program, shape) in growth:
            drawn += curve(growth[program, shape], colour, dashes, left, top)
    return drawn


def legend(growth, left, top):
    entries = [entry for program, entry in PROGRAMS.items()
               if any(key[0] == program for key in growth)]
    drawn = ""
    for title, colour, dashes in entries + [("slope 1: linear", "#8c959f", "1 4")]:
        drawn += (f'<path d="M{left} {top}h26" stroke="{colour}" stroke-width="2" '
                  f'stroke-dasharray="{dashes or "none"}"/>\n'
                  + svg_text(left + 31, top + 4, title))
        left += 50 + 7 * len(title)
    return drawn


def write_growth_picture(path, growth):
    """Three panels in a row."""
    across, down = PLOT_WIDTH + MARGIN_LEFT + 20, PLOT_HEIGHT + MARGIN_TOP + 30
    drawn = "".join(growth_panel(growth, shape, MARGIN_LEFT + index % 3 * across,
                                 MARGIN_TOP + index // 3 * down)
                    for index, shape in enumerate(SHAPES))
    write_picture(path, 3 * across + 15, 2 * down + 40,
                  "Time against the number of lines, for hostile messages",
                  drawn + legend(growth, MARGIN_LEFT, 2 * down + 20))
