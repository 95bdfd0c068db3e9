#!/usr/bin/env python3
"""What becomes of the folder: what is in it already, links in it, interruptions, full disks.

tests/extract/folder_test.py TOOL LIBRARY     LIBRARY is made of tests/scan/failing_calls.c
"""

import errno
import hashlib
import os
import pathlib
import random
import shutil
import subprocess
import sys
import tempfile
import time
import unittest

LIBRARY = pathlib.Path(sys.argv.pop(2)).resolve()

# pylint: disable=wrong-import-position # it takes the tool from the arguments
from extracted import contents_of, message, name_for, pile_of, rows_in, run
from scanned import TOOL, of_kind, rows_of

ATTACHED = b"Content-Disposition: attachment; filename="
CONTENTS = [b"first content", b"second content", b""]
PILE = pile_of([message((ATTACHED + b"a.pdf", CONTENTS[0]), (ATTACHED + b"b.exe", CONTENTS[1])),
                message((ATTACHED + b"c.PDF", CONTENTS[0]), (ATTACHED + b"d.txt", CONTENTS[0])),
                message((b"Content-Type: image/png", CONTENTS[2]))])
WANTED = {name_for(CONTENTS[0], "pdf"): CONTENTS[0], name_for(CONTENTS[1], "txt"): CONTENTS[1],
          name_for(CONTENTS[2], "png"): CONTENTS[2]}


class Folder(unittest.TestCase):
    """A folder beside the pile."""

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.top = pathlib.Path(folder.name)
        self.pile = self.top / "pile"
        self.pile.write_bytes(PILE)
        self.folder = self.top / "out"

    def extract_again(self):
        """Extracts with an index of its own."""
        index = self.top / "index"
        index.unlink(missing_ok=True)
        done = run("-o", self.folder, "--index", index, self.pile)
        return done, rows_of(index.read_bytes()) if index.exists() else None

    def test_has_each_content_once(self):
        done = run("-o", self.folder, self.pile)
        self.assertEqual((done.returncode, done.stderr), (0, b""))
        self.assertEqual(contents_of(self.folder), WANTED)
        self.assertEqual(len(rows_in(self.folder)), 5)

    def test_is_filled_only_once(self):
        run("-o", self.folder, self.pile)
        before = {path: path.stat() for path in self.folder.rglob("*")}
        done, rows = self.extract_again()
        self.assertIn(b"\nnew files    0\nnew bytes    0\n", done.stdout)
        self.assertEqual(done.returncode, 0)
        self.assertEqual(rows, rows_in(self.folder))
        self.assertEqual({path: path.stat().st_mtime_ns for path in before},
                         {path: each.st_mtime_ns for path, each in before.items()})
        self.assertEqual({path: path.stat().st_ino for path in self.folder.rglob("*")},
                         {path: each.st_ino for path, each in before.items()})

    def test_keeps_its_index(self):
        run("-o", self.folder, self.pile)
        index = (self.folder / "index.ndjson").read_bytes()
        self.pile.write_bytes(pile_of([message((ATTACHED + b"e", b"new"))]))
        done = run("-o", self.folder, self.pile)
        self.assertEqual(done.returncode, 1)
        self.assertIn(b"index.ndjson: cannot write: File exists; --index names", done.stderr)
        self.assertEqual((self.folder / "index.ndjson").read_bytes(), index)
        self.assertEqual(contents_of(self.folder), WANTED)

    def test_takes_a_content_that_has_another_extension(self):
        old = self.folder / name_for(CONTENTS[0], "xml")
        old.parent.mkdir(parents=True)
        old.write_bytes(CONTENTS[0])
        _, rows = self.extract_again()
        self.assertEqual(rows[0]["file"], name_for(CONTENTS[0], "xml"))
        self.assertEqual(len(contents_of(self.folder)), 3)

    def test_keeps_what_has_the_name_of_a_content(self):
        """Another content of the same length or not, a link, a folder."""
        secret = self.top / "secret"
        secret.write_bytes(CONTENTS[0])
        taken = self.folder / name_for(CONTENTS[0], "pdf")
        taken.parent.mkdir(parents=True)
        for make in (lambda: taken.write_bytes(CONTENTS[0][:-1] + b"!"),
                     lambda: taken.write_bytes(CONTENTS[0] + b"!"),
                     lambda: taken.write_bytes(b""),
                     lambda: taken.symlink_to(secret),
                     lambda: taken.symlink_to("nowhere"),
                     taken.mkdir):
            make()
            before = taken.lstat()
            done, rows = self.extract_again()
            self.assertEqual(done.returncode, 1)
            self.assertIn(b"name-taken 3", done.stderr)
            files = [row["file"] for row in of_kind("attachment", rows)]
            self.assertEqual(files.count(None), 3)
            self.assertEqual(sorted(row["level"] for row in of_kind("fault", rows)), ["error"] * 3)
            after = taken.lstat()
            self.assertEqual((after.st_ino, after.st_mtime_ns), (before.st_ino, before.st_mtime_ns))
            self.assertFalse((taken.parent / "nowhere").exists())
            taken.rmdir() if taken.is_dir() else taken.unlink()
        self.assertEqual(secret.read_bytes(), CONTENTS[0])

    def check_not_compared(self, rows, count, names, error):
        """So many contents have no file in the index, and faults that name the system's error."""
        faults = of_kind("fault", rows)
        self.assertEqual({(row["level"], row["code"]) for row in faults},
                         {("error", "cannot-compare")})
        self.assertLessEqual({row["text"] for row in faults},
                             {f"cannot read {name}: {os.strerror(error)}" for name in names})
        files = [row["file"] for row in of_kind("attachment", rows)]
        self.assertEqual((len(faults), files.count(None), len(files)), (count, count, 5))

    def test_tells_of_a_content_that_may_not_be_read(self):
        as_others = [] # root may read everything, unless it gives that up
        if os.geteuid() == 0:
            as_others = ["setpriv", "--bounding-set=-dac_override,-dac_read_search"]
            if subprocess.run([*as_others, "true"], check=False).returncode != 0:
                self.skipTest("root cannot give up its rights here")
        run("-o", self.folder, self.pile)
        secret = name_for(CONTENTS[0], "pdf")
        (self.folder / secret).chmod(0)
        done = subprocess.run([*as_others, TOOL, "extract", "-o", self.folder,
                               "--index=-", self.pile], stdout=subprocess.PIPE,
                              stderr=subprocess.PIPE, check=False)
        self.assertEqual(done.returncode, 1)
        self.assertIn(b"3 faults in 1 source: cannot-compare 3\n", done.stderr)
        self.check_not_compared(rows_of(done.stdout), 3, [secret], errno.EACCES)

    def test_tells_of_a_content_that_the_disk_cannot_read(self):
        """Each time that something is read, in turn."""
        run("-o", self.folder, self.pile)
        log = self.top / "log"
        not_compared = 0
        for number in range(1, 100):
            environment = dict(os.environ, LD_PRELOAD=str(LIBRARY), FAILING_CALL_LOG=str(log),
                               FAILING_CALL=f"{errno.EIO}:read:{number}")
            done = run("-o", self.folder, "--index=-", "--threads=1", self.pile, env=environment)
            if int(log.read_text()) < number:
                break
            if b"cannot-read 1" in done.stderr: # the source
                continue
            self.assertEqual(done.returncode, 1)
            self.assertIn(b"1 fault in 1 source: cannot-compare 1\n", done.stderr)
            self.check_not_compared(rows_of(done.stdout), 1, WANTED, errno.EIO)
            not_compared += 1
        self.assertEqual(not_compared, 4) # the fifth content is empty

    def test_follows_no_link_to_a_folder(self):
        outside = self.top / "outside"
        outside.mkdir()
        self.folder.mkdir()
        (self.folder / name_for(CONTENTS[0], "pdf")[:2]).symlink_to(outside)
        done, rows = self.extract_again()
        self.assertEqual(done.returncode, 1)
        self.assertIn(b": cannot write: ", done.stderr)
        self.assertIsNone(rows)
        self.assertEqual(list(outside.iterdir()), [])

    def test_has_whole_files_after_every_kill(self):
        """A run that is killed leaves whole files alone, and another run completes them."""
        generator = random.Random(1)
        contents = [generator.randbytes(60_000) for _ in range(200)]
        self.pile.write_bytes(pile_of([message((ATTACHED + b"x.zip", each)) for each in contents]))
        wanted = {name_for(each, "zip"): each for each in contents}
        partial = 0
        for kill in range(12):
            wait_for = generator.randrange(len(wanted))
            with subprocess.Popen([TOOL, "extract", "-o", self.folder, self.pile],
                                  stdout=subprocess.DEVNULL) as tool:
                while tool.poll() is None and len(list(self.folder.glob("*/*"))) < wait_for:
                    time.sleep(0.0005)
                tool.kill() if kill % 2 else tool.terminate()
            found = contents_of(self.folder) if self.folder.exists() else {}
            partial += 0 < len(found) < len(wanted)
            for name, content in found.items():
                self.assertEqual(hashlib.sha256(content).hexdigest(), name[3:67])
            if tool.returncode == 0 or kill % 3 == 2: # begin anew
                shutil.rmtree(self.folder)
        self.assertGreater(partial, 0)
        (self.folder / "index.ndjson").unlink(missing_ok=True)
        self.assertEqual(run("-o", self.folder, self.pile).returncode, 0)
        self.assertEqual(contents_of(self.folder), wanted)
        self.assertEqual(len(rows_in(self.folder)), len(contents))

    def test_has_no_part_of_a_file_for_which_there_is_no_room(self):
        large = b"x" * 300_000
        self.pile.write_bytes(pile_of([message((ATTACHED + b"a", b"small")),
                                       message((ATTACHED + b"b", large))]))
        limited = ["sh", "-c", "trap '' XFSZ; ulimit -f 200; exec \"$@\"", "sh", TOOL]
        done = subprocess.run([*limited, "extract", "-o", self.folder, self.pile],
                              stdout=subprocess.PIPE, stderr=subprocess.PIPE, check=False)
        self.assertEqual((done.returncode, done.stdout), (1, b""))
        path = self.folder / name_for(large, "txt")
        self.assertEqual(done.stderr.decode(),
                         f"mailstructure: {path}: cannot write: File too large\n")
        self.assertEqual(contents_of(self.folder), {name_for(b"small", "txt"): b"small"})
        self.assertFalse((self.folder / "index.ndjson").exists())

    def test_reports_a_large_message_for_which_there_is_no_room(self):
        """The others are extracted."""
        self.pile.write_bytes(pile_of([message((ATTACHED + b"a", b"one")),
                                       message((ATTACHED + b"b", bytes(33 << 20))),
                                       message((ATTACHED + b"c", b"three"))]))
        limited = ["sh", "-c", "trap '' XFSZ; ulimit -f 20000; exec \"$@\"", "sh", TOOL]
        done = subprocess.run([*limited, "extract", "-o", self.folder, self.pile],
                              stdout=subprocess.PIPE, stderr=subprocess.PIPE, check=False)
        self.assertEqual(done.returncode, 1)
        self.assertIn(b"1 fault in 1 source: cannot-hold 1", done.stderr)
        self.assertEqual(sorted(contents_of(self.folder).values()), [b"one", b"three"])
        [fault] = of_kind("fault", rows_in(self.folder))
        self.assertIn("File too large", fault["text"])


if __name__ == "__main__":
    unittest.main()
