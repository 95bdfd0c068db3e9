#!/usr/bin/env python3
"""What a shell makes of command lines at the key TAB: completion.py SHELL TOOL

A "|" marks the cursor where it is not at the end of the line.
"""

import shutil
import sys

from shell_session import test_in_shell

COMMANDS = {"tree", "json", "part", "scan", "merge", "extract", "check", "map", "report", "dump",
            "help"}
FILES = {"letter.eml", "a b.eml", "c:d=e.eml", "folder"}
SECTIONS = {"HEADER", "TEXT", "1", "1.MIME", "2", "2.MIME", "2.HEADER", "2.TEXT", "2.1", "2.1.MIME",
            "3", "3.MIME"}

# Lines, and all that is offered for them.
OFFERS = [
    ("mailstructure ", COMMANDS | FILES),
    ("mailstructure help ", COMMANDS),
    ("mailstructure json ", FILES),
    ("mailstructure json --", {"--flat", "--help", "--max-size", "--pretty", "--rules"}),
    ("mailstructure dump --", {"--help", "--keep-text", "--max-size", "--memlimit", "--rules"}),
    ("mailstructure check --", {"--fail-on", "--help", "--json", "--max-size",
                                "--rules"}),
    ("mailstructure check --rules ", FILES),
    ("mailstructure check --fail-on ", {"danger", "fault", "note"}),
    ("mailstructure check --fail-on note ", FILES),
    ("mailstructure map --", {"--force", "--format", "--help", "--max-size", "--output",
                              "--rules"}),
    ("mailstructure map --format ", {"html", "svg"}),
    ("mailstructure report --", {"--force", "--help", "--output"}),
    ("mailstructure report ", FILES),
    ("mailstructure map --format html ", FILES),
    ("mailstructure letter.eml --d", {"--decoded"}),
    ("mailstructure --v", {"--version"}),
    ("mailstructure json --v", set()),
    ("mailstructure tree --color ", {"always", "auto", "never"}),
    ("mailstructure dump --memlimit ", set()),
    ("mailstructure --max-size ", set()),
    ("mailstructure dump --memlimit 5 l", {"letter.eml"}),
    ("mailstructure tree --color=x --nothing", set()),
    ("mailstructure tree -- -", set()),
    ("mailstructure scan --hash=none ", FILES),
    ("mailstructure scan --mbox ", {"any", "auto", "strict", "thunderbird"}),
    ("mailstructure scan --threads ", set()),
    ("mailstructure scan --shard ", set()),
    ("mailstructure scan --plan ", set()),
    ("mailstructure scan --shard 1/2 --by-plan ", FILES),
    ("mailstructure merge ", FILES),
    ("mailstructure extract -o folder ", FILES),
    ("mailstructure part ", {"HEADER", "TEXT"}),
    ("mailstructure part --list ", FILES),
    ("mailstructure part --all -o out ", FILES),
    ("mailstructure part --name ", set()),
    ("mailstructure part --name a ", FILES),
    ("mailstructure part --name=a ", FILES),
]

# Lines, and what becomes of them.
COMPLETED = [
    ("mailstructure t", "mailstructure tree"),
    ("mailstructure let", "mailstructure letter.eml"),
    ("mailstructure help j", "mailstructure help json"),
    ("mailstructure --asc", "mailstructure --ascii"),
    ("mailstructure tree --ascii letter.eml a", "mailstructure tree --ascii letter.eml a\\ b.eml"),
    ("mailstructure tree --color au", "mailstructure tree --color auto"),
    ("mailstructure tree --color=au", "mailstructure tree --color=auto"),
    ("mailstructure json --rules=cl", "mailstructure json --rules=classic"),
    ("mailstructure scan --progress=al", "mailstructure scan --progress=always"),
    ("mailstructure scan -o le", "mailstructure scan -o letter.eml"),
    ("mailstructure scan --sqlite le", "mailstructure scan --sqlite letter.eml"),
    ("mailstructure scan --threads 2 le", "mailstructure scan --threads 2 letter.eml"),
    ("mailstructure extract --index le", "mailstructure extract --index letter.eml"),
    ("mailstructure part --decode=l", "mailstructure part --decode=lenient"),
    ("mailstructure part --decode H", "mailstructure part --decode HEADER"),
    ("mailstructure part --range=h", "mailstructure part --range=header"),
    ("mailstructure part -o le", "mailstructure part -o letter.eml"),
    ("mailstructure part --output=le", "mailstructure part --output=letter.eml"),
    ("mailstructure part --range body -o out --max-size 25M --rules=classic H",
     "mailstructure part --range body -o out --max-size 25M --rules=classic HEADER"),
    ("mailstructure check --fail-on=d", "mailstructure check --fail-on=danger"),
    ("mailstructure check --fail-on fault le",
     "mailstructure check --fail-on fault letter.eml"),
    ("mailstructure map --format=h", "mailstructure map --format=html"),
    ("mailstructure map -o le", "mailstructure map -o letter.eml"),
    ("mailstructure map le", "mailstructure map letter.eml"),
    ("mailstructure report -o le", "mailstructure report -o letter.eml"),
    ("mailstructure part 2 le", "mailstructure part 2 letter.eml"),
    ("mailstructure part --list le", "mailstructure part --list letter.eml"),
    ('mailstructure json "a', 'mailstructure json "a b.eml"'),
    ('mailstructure json "c:d', 'mailstructure json "c:d=e.eml"'),
]

# The same for the shells that tell what stands behind the cursor.
OFFERS_BEFORE_A_FILE = [
    ("mailstructure part | letter.eml", SECTIONS),
    ("mailstructure part | --decode letter.eml", SECTIONS),
    ("mailstructure part | --range body -o out letter.eml", SECTIONS),
    ("mailstructure part | 'a b.eml'", SECTIONS),
    ('mailstructure part | "a b.eml"', SECTIONS),
    ("mailstructure part | a\\ b.eml", SECTIONS),
    ("mailstructure part | c:d=e.eml", SECTIONS),
    ("mailstructure part | ~/own.eml", SECTIONS),
    ("mailstructure part | ~/'my own.eml'", SECTIONS),
    ("mailstructure part --decode 2.1| letter.eml", {"2.1", "2.1.MIME"}),
    ("mailstructure part | ~/digit.eml", {"HEADER", "TEXT", "1", "1.MIME"}),
    ("mailstructure part --rules=classic T| ~/digit.eml", {"TEXT"}),
    ("mailstructure part --rules classic | ~/two.eml", {"HEADER", "TEXT", "1", "1.MIME"}),
    ("mailstructure part --rules=classic | ~/two.eml", {"HEADER", "TEXT", "1", "1.MIME"}),
    ("mailstructure part | ~/two.eml --rules=classic", {"HEADER", "TEXT", "1", "1.MIME"}),
    ("mailstructure part --rules=standard | ~/two.eml",
     {"HEADER", "TEXT", "1", "1.MIME", "2", "2.MIME"}),
    ("mailstructure part | $(touch touched)", {"HEADER", "TEXT"}),
    ("mailstructure part | no-such-file", {"HEADER", "TEXT"}),
]

# fish offers more for such names: it completes what follows the ":" or "=", too.
COMPLETED_WITH_SEPARATORS = {
    "bash": [
        ("mailstructure json c:", "mailstructure json c:d\\=e.eml"),
        ("mailstructure json c:d=", "mailstructure json c:d=e.eml"),
        ("mailstructure json c\\:d=", "mailstructure json c\\:d=e.eml"),
        ("mailstructure json folder/x:", "mailstructure json folder/x:y.eml"),
    ],
    "zsh": [
        ("mailstructure json c:", "mailstructure json c:d=e.eml"),
        ("mailstructure json c:d=", "mailstructure json c:d=e.eml"),
        ("mailstructure json folder/x:", "mailstructure json folder/x:y.eml"),
    ],
}

# By the classic rules the digit in the name of its first field ends the header block.
TWO_PARTS = """X-2: a
Content-Type: multipart/mixed; boundary=ab

--ab

one
--ab

two
--ab--
"""


def without_quoting(offer):
    """The offer as all shells put it."""
    return offer.replace("\\", "").removesuffix("=")


def faults_in(session, _):
    """What the shell makes of the lines otherwise than it should."""
    faults = []
    letter = session.messages / "forwarded.eml"
    for name in FILES - {"folder"}:
        shutil.copy(letter, session.folder / name)
    (session.folder / "folder").mkdir()
    shutil.copy(letter, session.folder / "folder/x:y.eml")
    for name in ["own.eml", "my own.eml"]:
        shutil.copy(letter, session.home / name)
    shutil.copy(session.messages / "plain.eml", session.home / "digit.eml")
    (session.home / "two.eml").write_text(TWO_PARTS)
    offers = OFFERS + (OFFERS_BEFORE_A_FILE if session.shell != "fish" else [])
    for line, expected in offers:
        offered = {without_quoting(offer).rstrip("/") for offer in session.ask(line)[1]}
        if offered != expected:
            faults.append(f"{line}\n  expected: {sorted(expected)}\n"
                          f"  offered:  {sorted(offered)}")
    for line, expected in COMPLETED + COMPLETED_WITH_SEPARATORS.get(session.shell, []):
        completed = session.ask(line)[0].rstrip(" ")
        if completed != expected:
            faults.append(f"{line}\n  expected: {expected}\n  became:   {completed}")
    if (session.folder / "touched").exists():
        faults.append("a command on the line was run")
    return faults


if __name__ == "__main__":
    sys.exit(test_in_shell(faults_in))
