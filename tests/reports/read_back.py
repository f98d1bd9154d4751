#!/usr/bin/env python3
"""Reads back the PDF reports that the component tests made, with the tools of poppler.

    tests/reports/read_back.py FOLDER RESULTS.xml

Every line must stand where it belongs, in its size and colour, and every icon in its slot. RESULTS.xml is a JUnit file.
"""

import datetime
import re
import subprocess
import sys
import time
import xml.etree.ElementTree as ET
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[2] / "tools"))
import junit  # noqa: E402

# Points; the library's own page.
PAGE = (595, 841)
LEFT = 10

# Helvetica, in parts of its size (Adobe Font Metrics: Ascender, Descender, the blank's width).
ASCENDER, DESCENDER, BLANK = 0.718, -0.207, 0.278

HEADER_BLUE, BLACK, WHITE = (0, 0, 153), (0, 0, 0), (255, 255, 255)

# An icon's lens, 11 points above its middle, is lit in its colour.
ICON_SIZE = 32
ICON_COLOURS = {"green": (52, 181, 107), "blue": (52, 137, 219), "yellow": (255, 201, 40), "red": (224, 58, 51)}

KEY = "111111-222222-333333-444444-555555-666666-777777-888888"


# --- what the reports must show ----------------------------------------------------------------------------------------


def header(model="WDC WD10EZEX-08WN4A0", company=("Northgate Drive Rescue", "12 Harbour Road, Bristol", "+44 117 496 0123")):
    """Lines are (distance of the baseline from the page's top, font size, text)."""
    texts = ["Hard Drive Test Results", "Date: DATE", f"Model: {model}", "Serial Num: WD-WCC6Y7ABCDEF"]
    lines = [(28 + 20 * i, 18, text) for i, text in enumerate(texts)]
    return lines + [(128 + 20 * i, 18, text) for i, text in enumerate(company) if text]


def sections(titles_and_lines):
    lines = []
    for i, section in enumerate(titles_and_lines):
        lines += [(218 + 56 * i + 16 * row, 12, text) for row, text in enumerate(section)]
    return lines


def read_tests(top, results=("PASSED", "FAILED", "not performed")):
    names = ("Critical Test", "Short Test", "NIST Test")
    rows = [(top + 20 + 20 * i, 12, f"{name} {result}") for i, (name, result) in enumerate(zip(names, results))]
    return [(top, 16, "Read Test Results if Applicable")] + rows


def free_part(top, rows, icons=True):
    """What stands below, from the baseline of its title: the rows' labels and texts, and the key to the icons."""
    rows = rows + (["Icons: healthy ageing wearing out failing"] if icons else [])
    return [(top, 12, "About This Drive")] + [(top + 12 + 14 * i, 10, row) for i, row in enumerate(rows)]


NO_REPORT = "Verdict: SMART could not be read: smartctl.exe is missing."
SSD_PART = free_part(336, ["Verdict: The drive reports none of the counters that tell its condition."], icons=False)

FREE_ROW = re.compile(r"(Drive|Verdict|Wear|Icons): ")


def bit_locker(texts):
    return [(662 + 20 * i, 10, f"BITLOCKER VOL: {text}".rstrip()) for i, text in enumerate(texts)]


ATA = sections([
    ("Power On  Hours", "09 = The number of Powered On Hours this device has been in use = [3.00] years",
     "It is recommended to replace the drive if this value exceeds 5 years"),
    ("Moved Errors", "05 = [7] Bad sectors have been identified and remapped.",
     "It is recommended to replace the drive if this value exceeds 50"),
    ("Slow Sectors", "C4 = [3] Total Sector Remapping attempts.",
     "Excessive attempts is a sign of ongoing failure.Replace the drive if this value exceeds 10"),
    ("Pending Sectors", "C5 = [12] Damaged sectors flagged to be remapped to the Spare area of the device.",
     "Indicates sign of increasing failure and drive should be replaced"),
    ("Uncorrectable Errors", "C6 = [6] Uncorrectable Sector Read/Write attempts.",
     "Disk surface Defects and/or drive mechanics. Drive should be replaced"),
    ("Reported Errors", "BB = [0] Total reported unrecoverable errors using hardware (ECC)",
     "Any value other than zero should flag a drive for replacement"),
])
ATA_ICONS = ["blue", "yellow", "blue", "red", "yellow", "green"]

NVME = sections([
    ("Total Data Written to the Drive", "149999 Gigabytes of data has been written to the drive",
     "Standard Manufacturer Thresholds are between 70,000 and 150,000 Gigabytes"),
    ("Available Spare Space", "Available Spare is at 10 percent. Failure Threshold is 10 percent",
     "This data indicates that your drive is within  manufacturer thresholds"),
    ("Tempeature Threshold", "Temperature Threshold for upper and lower manufacturer specifications",
     "Drives current temperature threshold is outside of norms"),
    ("Non-Volatile Memory Sub-System", "NVM Sub System Reliability may be degraded due to media or internal errors",
     "NVM Sub-System flag indicates that this device is degraded."),
    ("Read Only Mode Set", "Drive may be set into a read-only state to prevent damage",
     "Your drive is currently in a read only critical state"),
    ("Volatile Memory Backup Device", "Volatile Memory Backup Systems current state of operation indicates that",
     "your drives VM Backup System is in a critically damaged state (If Available)"),
])

ABSENT = sections([(title, "ABSENT") for title in (
    "Power On  Hours", "Moved Errors", "Slow Sectors", "Pending Sectors", "Uncorrectable Errors", "Reported Errors")])

# Icons stand one below the other, one slot for each section.
EXPECTED = {
    "ata": (header() + ATA + read_tests(560) + bit_locker([f"D: Recovery Key: {KEY}", "E: LOCKED", "F: not encrypted"])
            + free_part(738, ["Drive: SATA, 931.51 GB (1,000,204,886,016 bytes), firmware 01.01A01",
                              "Verdict: Failing: copy what matters now."]), ATA_ICONS),
    "ata-absent": (header() + ABSENT + read_tests(560, ("TERMINATED",) * 3) + free_part(678, [NO_REPORT], icons=False),
                   []),
    "logo": (header() + read_tests(248) + SSD_PART, []),
    "ata-ten-volumes": (header() + ATA + read_tests(560)
                        + bit_locker([f"{letter}: Recovery Key: {KEY}" for letter in "DEFGHIJKLM"]), ATA_ICONS),
    "ssd": (header() + read_tests(248) + SSD_PART, []),
    "nvme": (header() + NVME + read_tests(560) + bit_locker(["F: LOCKED"])
             + free_part(698, ["Wear: Life used 0 %, spare 10 % (limit 10 %), 0 h, 0 media errors"]),
             ["blue", "yellow", "yellow", "yellow", None, "yellow"]),
    "no-data": (header() + [(268, 12, "Interface does not have Monitoring data.")]
                + free_part(296, ["Verdict: This interface reports no monitoring data."], icons=False), []),
    "foreign": (header(company=("Müller & Söhne € ? O'Brien", "It's (here) \\ there", "")) + read_tests(248) + SSD_PART, []),
    "foreign-utf8": (header(company=("Müller & Söhne € ?", "?? ? Š", "broken Ã end")) + read_tests(248) + SSD_PART, []),
    "missing-icon": (header() + ATA + read_tests(560) + free_part(678, [NO_REPORT]), ["blue", None, "blue", "red", None, "green"]),
    "no-icons": (header() + ATA + read_tests(560) + free_part(678, [NO_REPORT]), []),
    "damaged-icons": (header() + ATA + read_tests(560) + free_part(678, [NO_REPORT]), []),
}

# Pictures of the key, and the logo.
MORE_PICTURES = {"ata": 4, "ata-ten-volumes": 0, "nvme": 4, "missing-icon": 3, "logo": 1}


# --- what they do show -------------------------------------------------------------------------------------------------


def poppler(*arguments):
    return subprocess.run(arguments, check=True, capture_output=True).stdout


def lines_of(pdf):
    """Lines as (baseline from the top, font size, left edge, text), from the words that pdftotext finds."""
    tree = ET.fromstring(poppler("pdftotext", "-bbox", str(pdf), "-"))
    namespace = {"x": "http://www.w3.org/1999/xhtml"}
    pages = tree.findall(".//x:page", namespace)
    assert len(pages) == 1, f"{len(pages)} pages"
    size = (float(pages[0].get("width")), float(pages[0].get("height")))
    assert size == PAGE, f"the page is {size} points"
    lines = {}
    for word in pages[0].findall("x:word", namespace):
        left, right, top, bottom = (float(word.get(key)) for key in ("xMin", "xMax", "yMin", "yMax"))
        font = (bottom - top) / (ASCENDER - DESCENDER)
        place = (round(top + ASCENDER * font, 1), round(font, 1))
        lines.setdefault(place, []).append((left, right, word.text))
    return [(*place, words[0][0], joined(words, place[1])) for place, words in sorted(lines.items())]


def joined(words, size):
    """A line's words with as many blanks between them as there is room for."""
    text, end = "", words[0][0]
    for left, right, word in words:
        text += " " * round((left - end) / (BLANK * size)) + word
        end = right
    return text


class Picture:
    """The page as pixels, one for each quarter of a point."""

    SCALE = 4

    def __init__(self, pdf):
        data = poppler("pdftoppm", "-r", str(72 * self.SCALE), "-singlefile", str(pdf))
        match = re.match(rb"P6\s(\d+) (\d+)\s255\s", data)
        self.width, self.height = int(match[1]), int(match[2])
        self.pixels = data[match.end():]

    def at(self, x, y):
        """Colour at a place in points from the left and top edges."""
        return self.pixel(int(x * self.SCALE), int(y * self.SCALE))

    def pixel(self, x, y):
        start = 3 * (y * self.width + x)
        return tuple(self.pixels[start:start + 3])

    def ink(self, left, top, right, bottom):
        """The darkest colour in a rectangle, and the lowest row of pixels that is not white, in points."""
        darkest, lowest = WHITE, None
        for y in range(int(top * self.SCALE), min(int(bottom * self.SCALE), self.height)):
            for x in range(int(left * self.SCALE), int(right * self.SCALE)):
                colour = self.pixel(x, y)
                if sum(colour) < sum(darkest):
                    darkest = colour
                if sum(colour) < 300:
                    lowest = (y + 1) / self.SCALE
        return darkest, lowest


def distance(left, right):
    return sum(abs(a - b) for a, b in zip(left, right))


# --- the checks --------------------------------------------------------------------------------------------------------


def check_lines(pdf, lines):
    today = datetime.date.fromtimestamp(pdf.stat().st_mtime)
    # The tools leave out what stands below the page: a tenth volume's line does, by a point.
    expected = [(base, size, LEFT, text.replace("DATE", today.strftime("%m/%d/%Y")))
                for base, size, text in lines if base <= PAGE[1]]
    # In a row of the free part the texts stand in columns.
    found = [(*place, " ".join(text.split()) if FREE_ROW.match(text) else text) for *place, text in lines_of(pdf)]
    assert found == expected, "\n".join(
        ["lines differ; expected:", *map(str, expected), "found:", *map(str, found)])


def check_colours_and_baselines(picture, lines):
    for base, size, text in lines:
        colour, lowest = picture.ink(LEFT, base - 0.7 * size, 300, base + 0.15 * size)
        wanted = HEADER_BLUE if size == 18 or text == "About This Drive" else BLACK
        assert distance(colour, wanted) <= 12, f"{text}: drawn in {colour}"
        # Letters stand on the baseline (round ones reach a little below it) unless they have descenders.
        if base < PAGE[1] and not re.search(r"[gjpqy,()\[\];/]", text):
            assert base - 0.5 <= lowest <= base + 0.02 * size + 0.5, f"{text}: stands on {lowest}, not on {base}"


def check_icons(pdf, picture, icons):
    rows = [row.split() for row in poppler("pdfimages", "-list", str(pdf)).decode().splitlines()[2:]]
    images = [(int(row[3]), int(row[4])) for row in rows if row[2] == "image"]
    count = sum(1 for icon in icons if icon) + MORE_PICTURES.get(pdf.stem, 0)
    assert images == [(ICON_SIZE, ICON_SIZE)] * count, f"pictures: {images}"
    if pdf.stem == "logo":
        assert picture.at(575 - ICON_SIZE / 2, 12 + ICON_SIZE / 2) != WHITE, "no logo in the upper right corner"
    left = PAGE[0] - 60
    for slot in range(6):
        top = 246 + 56 * slot - ICON_SIZE
        wanted = icons[slot] if slot < len(icons) else None
        middle = (left + ICON_SIZE / 2, top + ICON_SIZE / 2)
        lens = picture.at(middle[0], middle[1] - 11)
        if wanted is None:
            assert lens == WHITE, f"slot {slot} is not empty: {lens}"
            continue
        nearest = min(ICON_COLOURS, key=lambda name: distance(ICON_COLOURS[name], lens))
        assert nearest == wanted, f"slot {slot} is {nearest} ({lens}), not {wanted}"
        for x, y in ((left + 0.3, middle[1]), (left + ICON_SIZE - 0.6, middle[1]), (middle[0], top + 0.3),
                     (middle[0], top + ICON_SIZE - 0.6)):
            assert picture.at(x, y) != WHITE, f"slot {slot}: the icon does not reach ({x}, {y})"
        for x, y in ((left - 1, middle[1]), (left + ICON_SIZE + 1, middle[1]), (middle[0], top - 1),
                     (middle[0], top + ICON_SIZE + 1)):
            assert picture.at(x, y) == WHITE, f"slot {slot}: the icon reaches ({x}, {y})"


def check_fonts(pdf, lines):
    rows = [row.split() for row in poppler("pdffonts", str(pdf)).decode().splitlines()[2:]]
    names = {row[0] for row in rows}
    encodings = {row[3] for row in rows}
    assert names == {"Helvetica"}, f"fonts: {names}"
    foreign = any(re.search(r"[^\x20-\x26\x28-\x5f\x61-\x7e]", line) for _, _, line in lines)
    assert encodings == ({"Standard", "WinAnsi"} if foreign else {"Standard"}), f"encodings: {encodings}"


def check(pdf):
    assert pdf.is_file(), f"{pdf} is not there: run the component tests first"
    lines, icons = EXPECTED[pdf.stem]
    picture = Picture(pdf)
    check_lines(pdf, lines)
    check_colours_and_baselines(picture, lines)
    check_icons(pdf, picture, icons)
    check_fonts(pdf, lines)


def main():
    folder, results = Path(sys.argv[1]), sys.argv[2]
    cases = []
    for name in EXPECTED:
        started, failure = time.monotonic(), None
        try:
            check(folder / f"{name}.pdf")
        except (AssertionError, subprocess.CalledProcessError, ET.ParseError) as error:
            failure = str(error)
            print(f"{name}: {failure}")
        cases.append((name, f"{time.monotonic() - started:.3f}", failure))
    junit.write(results, "reports", cases)
    failed = sum(1 for case in cases if case[2] is not None)
    print(f"{len(cases) - failed} passed, {failed} failed")
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
