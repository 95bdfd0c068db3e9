"""Makes piles of mail, measures programs on them and writes a table:

scan_figures.py TOOL FOLDER REPORT [OPTION…]

bench/scan calls it. FOLDER has the file `messages`, which mailstructure_workload wrote. All times
are by the clock, and the programs take turns, so that a slow minute of the machine affects all.
"""

import argparse
import os
import pathlib
import platform
import shutil
import statistics
import subprocess
import sys
import textwrap
import time

import workload_file

MEBIBYTE = 1 << 20
SEPARATOR = b"From ada@mail.example Mon Mar  3 09:15:00 2025\n"
WANTED = {"summary": 0.5, "rows": 0.2, "threads": 1.8, "python": 30, "indexers": 5,
          "tables": 300_000, "memory": 256}
ENVIRONMENT = {**os.environ, "LC_ALL": "C"}


# --- Piles ---

def as_mbox(messages):
    """The messages with separators, and with lines quoted that would separate."""
    return b"".join(SEPARATOR + message.replace(b"\r\n", b"\n").replace(b"\nFrom ", b"\n>From ")
                    + b"\n" for message in messages)


def small_multipart(number):
    """A message of three entities in few bytes, of which a million make tables."""
    return (b"From: Ada <ada@mail.example>\nTo: ben@mail.example\nSubject: message %d\n"
            b"Date: Mon, 3 Mar 2025 09:15:00 +0100\nMessage-ID: <%d@mail.example>\n"
            b"Content-Type: multipart/mixed; boundary=b\n\n--b\n\ntext\n--b\n"
            b"Content-Type: text/csv\nContent-Disposition: attachment; filename=a.csv\n\n1;2\n"
            b"--b--\n" % (number, number))


def write_repeated(path, piece, size):
    """A file of whole pieces, at least that large."""
    with open(path, "wb") as file:
        for _ in range(-(-size // len(piece))):
            file.write(piece)
    return path


def write_maildir(path, messages, count):
    """A Maildir of so many of the messages."""
    for name in ("cur", "new", "tmp"):
        (path / name).mkdir(parents=True)
    for number in range(count):
        data = messages[number % len(messages)].replace(b"\r\n", b"\n")
        data = b"Message-ID: <%d@bench.example>\n%s" % (number, data)
        (path / "cur" / f"1740989700.{number}.host:2,S").write_bytes(data)
    return path


# --- Measuring ---

def seconds_of(command, output=subprocess.DEVNULL):
    """How long the program runs. It must succeed."""
    start = time.monotonic()
    subprocess.run(command, check=True, env=ENVIRONMENT, stdin=subprocess.DEVNULL,
                   stdout=output, stderr=subprocess.DEVNULL)
    return time.monotonic() - start


def medians_of(ways, rounds):
    """The median of the seconds that each of the functions takes, in turns."""
    seconds = {name: [] for name in ways}
    for _ in range(rounds):
        for name, way in ways.items():
            seconds[name].append(way())
    return {name: statistics.median(each) for name, each in seconds.items()}


def output_of(command):
    """What the program prints."""
    return subprocess.run(command, check=True, env=ENVIRONMENT, stdout=subprocess.PIPE,
                          stderr=subprocess.DEVNULL, stdin=subprocess.DEVNULL).stdout.decode()


def peak_memory(process):
    """The most bytes that the process has had in memory so far; 0 if it has ended. What wait4
    tells is no less than what its parent had when the process began, and this program has much.
    """
    status = pathlib.Path(f"/proc/{process}/status").read_text(encoding="ascii")
    peaks = [line.split()[1] for line in status.splitlines() if line.startswith("VmHWM:")]
    return int(peaks[0]) * 1024 if peaks else 0


class Bench:
    """What all measurements share: the tool, the folder and the sizes."""

    def __init__(self, options):
        self.options = options
        self.tool = [options.tool, "scan"]
        self.folder = pathlib.Path(options.folder)
        self.messages = workload_file.read(self.folder / "messages")[1]
        self.lines = []

    def add(self, what, figure, wanted, unit="times"):
        """A row of the table."""
        number = f"{figure:,.0f}" if figure >= 100 else f"{figure:.2f}"
        self.lines.append(f"| {what} | {number} {unit} | {wanted:,} |")
        print(self.lines[-1], file=sys.stderr)

    def counts_of(self, *arguments):
        """The summary as numbers."""
        return {name: int(count) for name, count in map(str.split, output_of(
            [*self.tool, "--summary", *arguments]).splitlines()) if count.isdecimal()}

    def beside_grep(self):
        """Summary and rows of a large mbox beside grep, and two threads beside one."""
        piece = as_mbox(self.messages)
        pile = write_repeated(self.folder / "mbox", piece, self.options.mbox * MEBIBYTE)
        size = pile.stat().st_size
        grep = ["grep", "-c", "^From ", pile]
        found = self.counts_of(pile)
        if found["messages"] != int(output_of(grep)):
            sys.exit(f"{found['messages']} messages, but grep finds others")
        # If grep sees that it writes to /dev/null, it ends at the first line that it finds.
        ways = {"grep": lambda: seconds_of(grep, subprocess.PIPE)}
        for name, arguments in (("summary", ["--summary"]),
                                ("rows", ["--hash=none", "--findings=none"]),
                                ("rows and findings", ["--hash=none"])):
            for threads in (1, 2):
                command = [*self.tool, *arguments, f"--threads={threads}", pile]
                ways[name, threads] = lambda command=command: seconds_of(command)
        median = medians_of(ways, self.options.rounds)
        for name in ("summary", "rows", "rows and findings"):
            rate = size / median[name, 1] / 1e6
            self.add(f"{name}, one thread ({rate:,.0f} MB/s), against `grep -c`",
                     median["grep"] / median[name, 1], WANTED[name.split()[0]])
        for name in ("summary", "rows", "rows and findings"):
            self.add(f"{name}, two threads against one", median[name, 1] / median[name, 2],
                     WANTED["threads"])
        pile.unlink()
        return (f"The mbox has {size / 2**30:.2f} GiB and {found['messages']:,} messages;"
                f" `LC_ALL=C grep -c '^From '` reads {size / median['grep'] / 1e6:,.0f} MB/s.")

    def beside_python(self):
        """Rows of an mbox beside the same rows by Python."""
        few = self.messages[:1000]
        pile = write_repeated(self.folder / "slice", as_mbox(few), 1)
        whole = write_repeated(self.folder / "mbox", as_mbox(few), 256 * MEBIBYTE)
        script = pathlib.Path(__file__).parent / "scan_by_python.py"
        theirs = output_of([sys.executable, script, pile]).count('"kind": "entity"')
        if theirs != self.counts_of(pile)["entities"]:
            sys.exit(f"Python finds {theirs} entities")
        rows = [*self.tool, "--hash=none", "--findings=none", "--threads=1", whole]
        median = medians_of({"python": lambda: seconds_of([sys.executable, script, pile]),
                             "scan": lambda: seconds_of(rows)}, self.options.rounds)
        each = {"python": median["python"] / pile.stat().st_size,
                "scan": median["scan"] / whole.stat().st_size}
        self.add("rows, one thread, against Python's `mailbox` and `email`, by bytes",
                 each["python"] / each["scan"], WANTED["python"])
        whole.unlink()
        return (f"Python {platform.python_version()} makes the same rows of {len(few):,} of these"
                " messages, without the ranges.")

    def beside_indexers(self):
        """Rows of a Maildir beside programs that index mail. They also index the words."""
        mail = write_maildir(self.folder / "Maildir", self.messages, self.options.maildir)
        state = self.folder / "index"

        def fresh():
            shutil.rmtree(state, ignore_errors=True)
            state.mkdir()

        def mu_index():
            fresh()
            seconds_of(["mu", "init", f"--muhome={state}", f"--maildir={mail}"])
            return seconds_of(["mu", "index", f"--muhome={state}"])

        def notmuch_new():
            shutil.rmtree(mail / ".notmuch", ignore_errors=True)
            config = self.folder / "notmuch"
            config.write_text(f"[database]\npath={mail}\n[user]\nname=a\nprimary_email=a@b.example"
                              "\n[new]\ntags=\n")
            return seconds_of(["notmuch", f"--config={config}", "new", "--quiet"])

        def mairix():
            fresh()
            config = self.folder / "mairix"
            config.write_text(f"base={mail.parent}\nmaildir={mail.name}\nmfolder=found\n"
                              f"database={state}/db\n")
            return seconds_of(["mairix", "-f", config])

        indexers = {name: way for name, way in (("mu index", mu_index), ("notmuch new",
                    notmuch_new), ("mairix", mairix)) if shutil.which(name.split()[0])}
        if not indexers:
            return "No program that indexes mail is installed."
        scans = {f"{what} of a Maildir, {threads}": [*self.tool, "--hash=none", *arguments, mail]
                 for what, findings in (("rows", ["--findings=none"]), ("rows and findings", []))
                 for threads, arguments in (("one thread", ["--threads=1", *findings]),
                                            ("a thread for each processor", findings))}
        ways = {name: lambda command=command: seconds_of(command)
                for name, command in scans.items()}
        median = medians_of({**ways, **indexers}, self.options.rounds)
        fastest = min(indexers, key=median.get)
        for name in scans:
            self.add(f"{name}, against `{fastest}`", median[fastest] / median[name],
                     WANTED["indexers"])
        shutil.rmtree(mail)
        each = ", ".join(f"`{name}` {self.options.maildir / median[name]:,.0f}"
                         for name in indexers)
        return (f"The Maildir has {self.options.maildir:,} messages. Messages a second: {each}."
                " They do more than `scan`: they index the words of the texts too.")

    def tables(self):
        """Rows of entities that go into one SQLite file each second."""
        count = self.options.tables
        pile = self.folder / "tables"
        with open(pile, "wb") as file:
            for begin in range(0, count, 10_000):
                file.write(as_mbox(map(small_multipart, range(begin, min(count, begin + 10_000)))))
        database = self.folder / "database"

        def write_tables(*options):
            database.unlink(missing_ok=True)
            return seconds_of([*self.tool, *options, "--sqlite", database, pile])

        plain = ["--hash=none", "--findings=none"]
        median = medians_of({"least": lambda: write_tables(*plain), "usual": write_tables},
                            self.options.rounds)
        entities = self.counts_of(pile)["entities"]
        self.add(f"`--sqlite` without hashes and findings, {count:,} messages",
                 entities / median["least"], WANTED["tables"], "entity rows/s")
        self.add(f"`--sqlite` as usual, {count:,} messages",
                 entities / median["usual"], WANTED["tables"], "entity rows/s")
        pile.unlink()
        database.unlink()
        return f"Each of the messages in tables has three entities; {os.cpu_count()} threads."

    def memory(self):
        """The most memory that two threads need for a large mbox, which comes through a pipe."""
        piece = as_mbox(self.messages)
        most = 0
        for arguments in (["--summary"], ["--hash=none"]):
            command = [*self.tool, *arguments, "--threads=2", "-"]
            with subprocess.Popen(command, stdin=subprocess.PIPE, env=ENVIRONMENT,
                                  stdout=subprocess.DEVNULL) as scan:
                for _ in range(-(-self.options.memory * MEBIBYTE // len(piece))):
                    scan.stdin.write(piece)
                scan.stdin.close()
                while scan.poll() is None:
                    most = max(most, peak_memory(scan.pid))
                    time.sleep(0.001)
            if scan.returncode != 0:
                sys.exit("the scan of a pipe fails")
        if most == 0:
            sys.exit("the scan of a pipe ends before its memory is known")
        self.add(f"most memory for an mbox of {self.options.memory / 1024:.1f} GiB",
                 most / MEBIBYTE, WANTED["memory"], "MiB")
        return "The mbox for the memory comes through a pipe; two threads."


def machine(folder):
    """The processor, as the system names it, and the kind of file system."""
    with open("/proc/cpuinfo", encoding="utf-8") as file:
        names = [line.split(":")[1].strip() for line in file if line.startswith("model name")]
    kind = output_of(["stat", "--file-system", "--format=%T", folder]).strip()
    return (f"{names[0] if names else platform.machine()}, {os.cpu_count()} processors; piles and"
            f" tables on a file system of the kind {kind}.")


def item(text):
    """The lines of a list's item. No name of a program is divided."""
    return textwrap.wrap(text, 98, initial_indent="- ", subsequent_indent="  ",
                         break_on_hyphens=False)


def options_of(arguments):
    """The command line."""
    parser = argparse.ArgumentParser(prog="bench/scan")
    for name in ("tool", "folder", "report"):
        parser.add_argument(name)
    parser.add_argument("--mbox", type=int, default=4096, metavar="MEBIBYTES")
    parser.add_argument("--maildir", type=int, default=5_000, metavar="MESSAGES")
    parser.add_argument("--tables", type=int, default=1_000_000, metavar="MESSAGES")
    parser.add_argument("--memory", type=int, default=10_240, metavar="MEBIBYTES")
    parser.add_argument("--rounds", type=int, default=3)
    parser.add_argument("--print", action="store_true", dest="only_prints")
    return parser.parse_args(arguments)


def main():
    """Measures all, and writes the report."""
    options = options_of(sys.argv[1:])
    bench = Bench(options)
    remarks = []
    for measure in (bench.beside_grep, bench.beside_python, bench.beside_indexers, bench.tables,
                    bench.memory):
        start = time.monotonic()
        remarks += item(measure())
        print(f"{measure.__name__}: {time.monotonic() - start:.0f} s", file=sys.stderr)
    page = "\n".join([
        "# Figures of `mailstructure scan`", "",
        "Written by `bench/scan`; not to be edited. Files are in memory when they are read, and"
        " rows go to",
        f"`/dev/null`. Medians of {options.rounds} runs by the clock, in which the programs took"
        " turns.", "",
        *item(machine(bench.folder)), *remarks, "",
        "| | | wanted |", "|---|---:|---:|", *bench.lines, ""])
    print(page, end="")
    if not options.only_prints:
        pathlib.Path(options.report).write_text(page, encoding="utf-8")


main()
