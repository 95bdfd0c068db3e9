"""Pictures (SVG) of a benchmark run, for report.py."""

import html


def svg_text(x, y, words, extra=""):
    return f'<text x="{x:.1f}" y="{y:.1f}" {extra}>{html.escape(words)}</text>\n'


def write_picture(path, width, height, title, drawn):
    """The background is white, also on a dark page."""
    with open(path, "w", encoding="utf-8") as file:
        file.write(f'<svg xmlns="http://www.w3.org/2000/svg" width="{width}" height="{height}" '
                   f'viewBox="0 0 {width} {height}" font-family="sans-serif" font-size="12" '
                   'fill="#1f2328">\n'
                   f'<title>{html.escape(title)}</title>\n'
                   f'<rect width="{width}" height="{height}" fill="#ffffff"/>\n{drawn}</svg>\n')
