"""The plots of bench/report.py, written as SVG."""

import math
import statistics
from pathlib import Path
from xml.sax.saxutils import escape

LIBRARY = "bci"
FORMS = ["text", "binary", "xml", "xml-reversed"]
NAMES = {
    "BciAuditCfm": "Audit confirm",
    "BciGenericRejMsg": "Reject",
    "BciCapabilityCfmMsg-full": "Full capability confirm",
    "BciHwLogSetReqMsg": "Log set request, by entries",
    "BciCapabilityCfmMsg": "Capability confirm, by links and sensors",
    "BciLoadLmcData": "Load-module data, by bytes",
}
COLOURS = {"text": "#0072b2", "binary": "#009e73", "xml": "#d55e00", "xml-reversed": "#cc79a7"}
OWN, OPTIMUM, OTHER = "#0072b2", "#009e73", "#b8bec6"
INK, GRID = "#333333", "#e3e3e3"


def duration(nanoseconds):
    for unit, size in (("ms", 1e6), ("µs", 1e3)):
        if nanoseconds >= size:
            return f"{nanoseconds / size:.3g} {unit}"
    return f"{nanoseconds:.3g} ns"


class Drawing:
    def __init__(self, width, height):
        self.size = width, height
        self.parts = []

    def line(self, x1, y1, x2, y2, colour, width=1.0, dash=""):
        self.parts.append(f'<line x1="{x1:.1f}" y1="{y1:.1f}" x2="{x2:.1f}" y2="{y2:.1f}" stroke="{colour}" '
                          f'stroke-width="{width}" stroke-dasharray="{dash or "none"}"/>')

    def path(self, points, colour, dash):
        where = " ".join(f"{x:.1f},{y:.1f}" for x, y in points)
        self.parts.append(f'<polyline points="{where}" fill="none" stroke="{colour}" stroke-width="1.6" '
                          f'stroke-dasharray="{dash or "none"}"/>')
        self.parts += [f'<circle cx="{x:.1f}" cy="{y:.1f}" r="2" fill="{colour}"/>' for x, y in points]

    def box(self, x, y, width, height, colour):
        self.parts.append(f'<rect x="{x:.1f}" y="{y:.1f}" width="{width:.1f}" height="{height:.1f}" '
                          f'fill="{colour}"/>')

    def text(self, x, y, text, anchor="start", size=11, weight="normal", colour=INK):
        self.parts.append(f'<text x="{x:.1f}" y="{y:.1f}" text-anchor="{anchor}" font-size="{size}" '
                          f'font-weight="{weight}" fill="{colour}">{escape(text)}</text>')

    def write(self, file):
        width, height = self.size
        head = (f'<svg xmlns="http://www.w3.org/2000/svg" width="{width}" height="{height}" '
                f'viewBox="0 0 {width} {height}" font-family="Helvetica, Arial, sans-serif">')
        background = f'<rect width="{width}" height="{height}" fill="white"/>'
        Path(file).write_text("\n".join([head, background, *self.parts, "</svg>", ""]), encoding="utf-8")


class LogScale:
    """Nanoseconds, by powers of ten that include all of the values."""

    def __init__(self, values, begin, end):
        self.low = math.floor(math.log10(min(values)))
        self.high = max(math.ceil(math.log10(max(values))), self.low + 1)
        self.begin, self.end = begin, end

    def __call__(self, value):
        return self.begin + (math.log10(value) - self.low) / (self.high - self.low) * (self.end - self.begin)

    def ticks(self):
        return [10.0**power for power in range(self.low, self.high + 1)]


def draw_bars(drawing, times, left, top, width, bar):
    """One panel: a bar for each peer, the fastest first."""
    medians = sorted((statistics.median(values), peer) for peer, values in times.items())
    label, number = 76, 48
    scale = LogScale([1, 100000], left + label, left + width - number)
    height = len(medians) * bar
    for tick in scale.ticks():
        drawing.line(scale(tick), top, scale(tick), top + height, GRID)
        drawing.text(scale(tick), top + height + 11, duration(tick).replace(" ", ""), "middle", 8)
    for index, (median, peer) in enumerate(medians):
        y = top + index * bar
        colour = OWN if peer == LIBRARY else OPTIMUM if peer == "optimum" else OTHER
        end = max(scale(median), scale(1) + 1)
        drawing.text(left + label - 4, y + bar - 5, peer, "end", 11, "bold" if peer == LIBRARY else "normal")
        drawing.box(scale(1), y + 2, end - scale(1), bar - 4, colour)
        drawing.text(end + 3, y + bar - 5, duration(median), size=10)


def plot_ratios(measured, file):
    messages = ["BciAuditCfm", "BciGenericRejMsg", "BciCapabilityCfmMsg-full"]
    forms = FORMS[:3]
    margin, column, bar = 12, 320, 17
    rows = []
    y = 34
    for message in messages:
        for direction in ["encode", "decode"]:
            panels = [measured.times.get((message, form, direction), {}) for form in forms]
            rows.append((y, message, direction, panels))
            y += max(map(len, panels)) * bar + 54
    drawing = Drawing(2 * margin + len(forms) * column, y)
    drawing.text(margin, 20, "Time for one message (median), on a logarithmic scale", size=14, weight="bold")
    for top, message, direction, panels in rows:
        for index, (form, times) in enumerate(zip(forms, panels)):
            if times:
                left = margin + index * column
                drawing.text(left, top + 12, f"{NAMES[message]}: {direction} {form}", size=12, weight="bold")
                draw_bars(drawing, times, left, top + 20, column - 10, bar)
    drawing.write(file)


def draw_growth(drawing, title, lines, left, top, width, height):
    """One panel: `lines` are (label, colour, dash, {size: nanoseconds})."""
    sizes = [size for *_, line in lines for size in line]
    across, foot = 46, 18
    scale = LogScale([value for *_, line in lines for value in line.values()], top + height - foot, top + 20)
    most = max(sizes)

    def place(size):
        return left + across + size / most * (width - across - 8)

    drawing.text(left, top + 10, title, size=12, weight="bold")
    for tick in scale.ticks():
        drawing.line(place(0), scale(tick), place(most), scale(tick), GRID)
        drawing.text(place(0) - 5, scale(tick) + 4, duration(tick), "end", 10)
    for part in range(5):
        size = most * part / 4
        drawing.line(place(size), scale.begin, place(size), scale.begin + 3, INK)
        drawing.text(place(size), scale.begin + 14, f"{size:.0f}", "middle", 10)
    for _, colour, dash, line in lines:
        drawing.path([(place(size), scale(line[size])) for size in sorted(line)], colour, dash)


def plot_growth(measured, file):
    panels = []
    for message in ["BciHwLogSetReqMsg", "BciCapabilityCfmMsg", "BciLoadLmcData"]:
        found = {}
        for (name, form, direction), times in measured.times.items():
            base, _, size = name.rpartition("-")
            if base == message and size.isdigit():
                for peer, values in times.items():
                    found.setdefault((form, direction, peer), {})[int(size)] = statistics.median(values)
        if found:
            panels.append((NAMES[message], found))
    margin, width, height, legend = 12, 330, 270, 34
    drawing = Drawing(2 * margin + len(panels) * width, height + legend + 2 * margin)
    for index, (title, found) in enumerate(panels):
        lines = [(key, COLOURS[key[0]] if key[2] == LIBRARY else OTHER, "" if key[1] == "encode" else "5 3", line)
                 for key, line in sorted(found.items())]
        draw_growth(drawing, title, lines, margin + index * width, margin, width - 10, height)
    x, y = margin + 46, height + margin + 24
    for label, colour, dash in [*((form, COLOURS[form], "") for form in FORMS), ("memcpy", OTHER, ""),
                                ("encode", INK, ""), ("decode", INK, "5 3")]:
        drawing.line(x, y - 4, x + 26, y - 4, colour, 2, dash)
        drawing.text(x + 31, y, label)
        x += 48 + 7 * len(label)
    drawing.write(file)


def write(measured, directory):
    plot_ratios(measured, Path(directory) / "performance-ratios.svg")
    plot_growth(measured, Path(directory) / "performance-growth.svg")
