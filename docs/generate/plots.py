"""The plots of docs/PERFORMANCE.md, drawn from bench/figures.json."""

import pathlib
import sys

ROOT = pathlib.Path(__file__).resolve().parents[2]
sys.path.insert(0, str(ROOT / "bench"))

import report  # noqa: E402

FONT = 'font-family="Helvetica, Arial, sans-serif"'
INK, PALE = "#24292f", "#5b6b7b"
BAR, GAP, GROUP_GAP = 40, 6, 36
HEIGHT, TOP, LEFT, BOTTOM = 230, 64, 52, 34
COLOURS = {"floor": "#c5ced8", "ours": "#3f7fbf", "newer": "#3f7fbf", "peer": "#d99a3d",
           "legacy": "#d99a3d"}


def text(x, y, words, size=12, anchor="middle", colour=INK):
    return (f'<text x="{x:.1f}" y="{y:.1f}" font-size="{size}" text-anchor="{anchor}" '
            f'fill="{colour}">{words}</text>')


def grid(top_value, step, width):
    """Lines across, each with what it stands for."""
    lines, value = [], 0.0
    while value <= top_value + step / 2:
        y = TOP + HEIGHT * (1 - value / top_value)
        lines.append(f'<line x1="{LEFT}" y1="{y:.1f}" x2="{width - 12}" y2="{y:.1f}" '
                     f'stroke="{"#8897a6" if value == 0 else "#e3e8ed"}"/>')
        lines.append(text(LEFT - 8, y + 4, f"{value:g}", 11, "end", PALE))
        value += step
    return lines


def legend(names, width):
    """Who has which colour, at the right end."""
    parts, x = [], width - 12
    for name, words in reversed(names):
        x -= 7.0 * len(words) + 26
        parts.append(f'<rect x="{x:.1f}" y="{TOP - 34}" width="12" height="12" rx="2" '
                     f'fill="{COLOURS[name]}"/>')
        parts.append(text(x + 17, TOP - 24, words, 12, "start"))
    return parts


def bars(title, names, groups, unit, step):
    """A plot of grouped bars.
    names   (figure's name, words) of the bars of a group, from left to right
    groups  (words under the group, {name: (value, what stands over the bar)})
    unit    what the values count
    """
    width = LEFT + 12 + len(groups) * (len(names) * (BAR + GAP) + GROUP_GAP)
    top_value = max(value for _, values in groups for value, _ in values.values())
    top_value = step * -(-top_value * 1.04 // step)
    parts = [text(LEFT - 36, 22, title, 15, "start"), text(LEFT - 36, TOP - 24, unit, 11, "start", PALE)]
    parts += legend(names, width) + grid(top_value, step, width)
    x = LEFT + GROUP_GAP / 2
    for words, values in groups:
        middle = x + len(names) * (BAR + GAP) / 2
        for name, _ in names:
            if name in values:
                value, label = values[name]
                height = HEIGHT * value / top_value
                y = TOP + HEIGHT - height
                parts.append(f'<rect x="{x + GAP / 2:.1f}" y="{y:.1f}" width="{BAR}" '
                             f'height="{height:.1f}" rx="2" fill="{COLOURS[name]}"/>')
                parts.append(text(x + (BAR + GAP) / 2, y - 4, label, 10, colour=PALE))
            x += BAR + GAP
        parts.append(text(middle, TOP + HEIGHT + 20, words, 13))
        x += GROUP_GAP
    height = TOP + HEIGHT + BOTTOM
    return (f'<svg xmlns="http://www.w3.org/2000/svg" width="{width:.0f}" height="{height}" '
            f'viewBox="0 0 {width:.0f} {height}" {FONT} role="img" aria-label="{title}">\n'
            f'<rect width="100%" height="100%" fill="white"/>\n' + "\n".join(parts) + "\n</svg>\n")


def beside_the_floor(figures, operation, title):
    names = [("floor", "floor"), ("ours", "ours"), ("peer", "peer")]
    groups = [(what, {name: (row[name]["ns"] / row["floor"]["ns"], f"{row[name]['ns']:,.0f}")
                      for name, _ in names if name in row})
              for what, row in sorted(figures[operation].items())]
    return bars(title, names, groups, "times the floor; above the bars, nanoseconds", 1)


def beside_the_newer(figures):
    names = [("newer", "newer codec"), ("legacy", "legacy")]
    groups = [(f"{operation} {what}",
               {name: (row[name]["ns"] / row["newer"]["ns"], f"{row[name]['ns']:,.0f}")
                for name, _ in names})
              for operation in ("read", "edit") for what, row in sorted(figures[operation].items())]
    return bars("The legacy interface", names, groups, "times the newer; above the bars, nanoseconds", 0.5)


def plots(figures):
    """File name -> content."""
    return {
        "verify-and-decode.svg": beside_the_floor(figures, "parse", "Verify and decode"),
        "build-and-sign.svg": beside_the_floor(figures, "build", "Build and sign"),
        "legacy.svg": beside_the_newer(figures),
    }
