#!/usr/bin/env python3
"""Holds the manual to the program, both ways.

    tests/manual/captions.py [MANUAL]     docs/manual.md, unless another one is named

What stands in double quotes in the manual is a text of the program: a caption, a label, a box. Every button, check box,
radio button and menu item of the program stands in the manual, in double quotes. Texts that the program puts together
while it runs stand in `backticks`, which are not looked at. Pictures and links inside the manual lead somewhere.
"""

import pathlib
import re
import sys

ROOT = pathlib.Path(__file__).resolve().parents[2]
RESOURCES = ROOT / "resources" / "torvane.rc"
MESSAGES = ROOT / "resources" / "data" / "messages.txt"
PICTURES = "pictures"

# What is not the program: what stands for its users, and what builds and tries it.
NOT_THE_PROGRAM = {"benchmarks", "build", "cmake", "docs", "tests", "tools", "workbench"}

LARGEST_PICTURE = 60 * 1024
# A format with less text of its own fits nearly everything.
LEAST_LETTERS = 4

PRESSED = re.compile(r"^\s*(?:DEF)?(?:PUSHBUTTON|AUTOCHECKBOX|AUTORADIOBUTTON|MENUITEM|POPUP)\s")
LITERAL = r'"((?:[^"\\\n]|\\.)*)"'


def shown(text):
    """As it is read on the screen: no access key, no shortcut, single blanks."""
    text = text.split("\t")[0]
    return " ".join(re.sub(r"&(.)", r"\1", text).split())


def unescaped(literal):
    return re.sub(r"\\(.)", lambda found: {"n": "\n", "t": "\t", "r": ""}.get(found[1], found[1]), literal)


# --- what the program shows


def resource_texts():
    """The texts of the resources, and of those the ones that a user presses, with their lines."""
    texts = set()
    pressed = {}
    for number, line in enumerate(RESOURCES.read_text(encoding="utf-8").splitlines(), 1):
        if line.lstrip().startswith("//"):
            continue
        found = [shown(unescaped(text)) for text in re.findall(LITERAL, line)]
        texts.update(found)
        if PRESSED.match(line) and found and found[0]:
            pressed.setdefault(found[0], f"{RESOURCES.relative_to(ROOT)}:{number}")
    return texts, pressed


def program_sources():
    for path in sorted(ROOT.glob("*/**/*")):
        if path.suffix in (".cpp", ".h") and path.relative_to(ROOT).parts[0] not in NOT_THE_PROGRAM:
            yield path


MADE = re.compile(r'\bAppendMenu[AW]?\(([^;]*)\);|"BUTTON",\s*("[^"]*")')
TOKENS = re.compile(r"//[^\n]*|/\*.*?\*/|'(?:[^'\\\n]|\\.)'|(" + LITERAL + r"(?:\s*" + LITERAL + r")*)", re.DOTALL)


def literals(source):
    """Its string literals, those side by side as the one that they are."""
    for token in TOKENS.finditer(source):
        if token[1]:
            yield unescaped("".join(re.findall(LITERAL, token[1])))


def source_texts():
    """The literals of the sources, and the menu items and buttons that they make, with their file."""
    texts = set()
    made = {}
    for path in program_sources():
        source = path.read_text(encoding="utf-8")
        texts.update(literals(source))
        for call in MADE.finditer(source):
            for text in literals(call[1] or call[2]):
                made.setdefault(shown(text), str(path.relative_to(ROOT)))
    return texts, made


CONVERSION = re.compile(r"%(?:%|[-+ #0]*\d*(?:\.\d+)?(?:hh|h|ll|l|I64|z)?[diuxXcsf])")


def as_pattern(text):
    """A format as a pattern of what comes of it; none where it says too little, or is no format."""
    pieces = CONVERSION.split(text)
    if len(pieces) == 1 or len(re.sub(r"\W", "", "".join(pieces))) < LEAST_LETTERS:
        return None
    return re.compile(".+".join(re.escape(piece) for piece in pieces))


class Program:
    def __init__(self):
        captions, self.pressed = resource_texts()
        texts, made = source_texts()
        self.pressed.update(made)
        messages = [line.strip() for line in MESSAGES.read_text(encoding="utf-8").splitlines()]
        self.texts = captions | {shown(text) for text in texts} | set(messages)
        self.patterns = [pattern for text in texts if (pattern := as_pattern(shown(text)))]

    def shows(self, text):
        return text in self.texts or any(pattern.fullmatch(text) for pattern in self.patterns)


# --- what the manual says


def without_code(text):
    """The manual with blanks where code stands, so that lines and places stay."""

    def blank(found):
        return re.sub(r"[^\n]", " ", found[0])

    text = re.sub(r"^```.*?^```", blank, text, flags=re.MULTILINE | re.DOTALL)
    return re.sub(r"(`+)[^`].*?\1", blank, text)


def unmarked(text):
    """Without the signs that keep Markdown from reading others as marks."""
    return re.sub(r"\\([*_<>])", r"\1", text)


def quoted(text):
    """Each quoted text with its line; a None in its place where quotation marks do not pair up in a paragraph."""
    line = 1
    for paragraph in re.split(r"(\n\s*\n|\n(?=[|#-]|\d+\. ))", text):
        if paragraph.count('"') % 2 != 0:
            yield line + paragraph[: paragraph.rfind('"')].count("\n"), None
        else:
            for found in re.finditer(r'"([^"]*)"', paragraph):
                yield line + paragraph[: found.start()].count("\n"), " ".join(unmarked(found[1]).split())
        line += paragraph.count("\n")


def anchors(text):
    """The names of the headings, as a page of it has them."""
    for heading in re.findall(r"^#+ (.*)$", text, flags=re.MULTILINE):
        yield re.sub(r"[^\w\- ]", "", heading.lower()).replace(" ", "-")


def wrong_quotes(manual, program, quotes):
    for line, text in quotes:
        if text is None:
            yield f"{manual}:{line}: a quotation mark without its other"
        elif not program.shows(text):
            yield f'{manual}:{line}: the program does not show "{text}"'


def unnamed(program, quotes):
    named = {text for _, text in quotes}
    for caption, place in sorted(program.pressed.items()):
        if caption not in named:
            yield f'{place}: "{caption}" is not in the manual'


def wrong_links(manual, text):
    names = list(anchors(text))
    for name in sorted({name for name in names if names.count(name) > 1}):
        yield f"{manual}: two headings are called #{name}"
    for target in re.findall(r"\]\(([^)]*)\)", text):
        if target.startswith("#") and target[1:] not in names:
            yield f"{manual}: no heading is called {target}"
        elif not target.startswith(("#", "https://")) and not (manual.parent / target).is_file():
            yield f"{manual}: there is no {target}"


def wrong_pictures(manual):
    others = (ROOT / "README.md").read_text(encoding="utf-8") + manual.read_text(encoding="utf-8")
    for picture in sorted((manual.parent / PICTURES).glob("*")):
        if f"{PICTURES}/{picture.name}" not in others:
            yield f"{picture}: nothing shows it"
        if picture.stat().st_size > LARGEST_PICTURE:
            yield f"{picture}: {picture.stat().st_size} bytes; {LARGEST_PICTURE} are enough for a window of few colours"


def main():
    manual = pathlib.Path(sys.argv[1]) if len(sys.argv) > 1 else ROOT / "docs" / "manual.md"
    text = manual.read_text(encoding="utf-8")
    plain = without_code(text)
    quotes = list(quoted(plain))
    program = Program()
    wrong = [
        *wrong_quotes(manual, program, quotes),
        *unnamed(program, quotes),
        *wrong_links(manual, plain),
        *wrong_pictures(manual),
    ]
    print(*wrong, sep="\n", end="\n" if wrong else "")
    if not wrong:
        print(f"{len(quotes)} texts of the manual, {len(program.pressed)} buttons and menu items of the program")
    return 1 if wrong else 0


if __name__ == "__main__":
    sys.exit(main())
