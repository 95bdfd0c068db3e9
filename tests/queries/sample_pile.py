#!/usr/bin/env python3
"""Writes the pile of mail that the answers in doc/queries.md are about.

tests/queries/sample_pile.py FOLDER

The folder must not exist. The same bytes come out every time: two mailboxes, a Maildir, an archive
with a mailbox in it, and an archive that is cut off.
"""

import base64
import gzip
import hashlib
import io
import pathlib
import sys
import tarfile

MEBIBYTE = 1 << 20


def noise(seed, size):
    """Bytes that look like those of a packed file, the same for the same seed."""
    return b"".join(hashlib.sha256(f"{seed} {count}".encode()).digest()
                    for count in range(size // 32 + 1))[:size]


def in_base64(body):
    return base64.encodebytes(body).decode("ascii")


def message(number, sender, date, subject, *parts, text="See you soon.\n"):
    """A message with a text and parts."""
    head = (f"From: {sender}\nTo: club@library.example\nDate: {date}\n"
            f"Subject: {subject}\nMessage-ID: <{number}@library.example>\nMIME-Version: 1.0\n")
    if not parts:
        return f"{head}Content-Type: text/plain; charset=utf-8\n\n{text}"
    body = "".join(f"--sea\n{part}\n" for part in (f"Content-Type: text/plain\n\n{text}", *parts))
    return f"{head}Content-Type: multipart/mixed; boundary=sea\n\n{body}--sea--\n"


def attachment(media_type, name, body):
    return (f"Content-Type: {media_type}\nContent-Disposition: attachment; filename=\"{name}\"\n"
            f"Content-Transfer-Encoding: base64\n\n{in_base64(body)}")


CATALOGUE_PDF = b"%PDF-1.4\n" + noise("a", 12 * MEBIBYTE)
CATALOGUE = attachment("application/pdf", "catalogue.pdf", CATALOGUE_PDF)
PLAN = attachment("application/pdf", "plan.pdf", b"%PDF-1.4\n" + noise("b", 40000))
PHOTO = attachment("image/jpeg", "shelf.jpg", b"\xff\xd8\xff" + noise("c", 900000))
LOGO = attachment("image/png", "logo.png", b"\x89PNG" + noise("d", 3000))
INVOICE = attachment("application/zip", "invoice.zip", noise("e", 20000))
SHEET = attachment("text/csv", "loans.csv", b"book,reader\n" * 5000)

ADA = "Ada Lane <ada@library.example>"
BEN = "Ben Oak <ben@mail.example>"
SHOP = "Book Shop <offers@shop.example>"

OLD = [
    message(1, ADA, "Mon, 4 Mar 2019 09:00:00 +0000", "The plan", PLAN, LOGO),
    message(2, BEN, "Mon, 4 Mar 2019 11:30:00 +0100", "Re: The plan", LOGO),
    message(3, ADA, "Fri, 7 Jun 2019 08:15:00 +0000", "Photo of the shelf", PHOTO),
    message(4, SHOP, "Sat, 8 Jun 2019 06:00:00 +0000", "Ten per cent off", text="Buy!\n" * 400),
    message(5, BEN, "Tue, 1 Oct 2019 22:45:00 -0500", "Loans", SHEET,
            text="The list:\n\nFrom here on, all is new.\n"),
]

# A blank before a colon, and a multipart without a closing line.
ODD = (message(11, "billing@pay.example", "Wed, 6 Nov 2024 03:00:00 +0000", "Your invoice", INVOICE)
       .replace("Content-Type: multipart", "Content-Type : multipart", 1))
OPEN = (message(12, "billing@pay.example", "Wed, 6 Nov 2024 03:05:00 +0000", "Once more", INVOICE)
        .replace("--sea--\n", ""))

NEW = [
    message(6, ADA, "Tue, 16 Jan 2024 09:00:00 +0000", "The catalogue", CATALOGUE),
    message(7, BEN, "Wed, 17 Jan 2024 10:00:00 +0000", "Photo", PHOTO, LOGO),
    message(8, SHOP, "Thu, 1 Feb 2024 06:00:00 +0000", "Sale", text="Buy!\n" * 900),
    message(9, SHOP, "no date", "Sale again", text="Buy!\n" * 900),
    message(10, ADA, "Tue, 5 Nov 2024 17:20:00 +0000", "Loans in autumn", SHEET, LOGO),
    ODD,
    OPEN,
]

# The second one is the first, delivered once more; the third is the same bytes.
LETTER = message(13, ADA, "Mon, 2 Dec 2024 12:00:00 +0000", "Members' list")
MAILDIR = {
    "cur/1733140801.a:2,S": "Received: from one by mx.mail.example; 2 Dec 2024\n" + LETTER,
    "cur/1733140950.b:2,S": "Received: from two by mx.mail.example; 2 Dec 2024\n" + LETTER,
    "new/1733141000.c": "Received: from one by mx.mail.example; 2 Dec 2024\n" + LETTER,
}


def mbox(messages):
    return "".join(f"From club@library.example Mon Dec  2 12:00:00 2024\n{each}\n"
                   for each in messages).encode()


def tar(files):
    """An archive of the files, in gzip."""
    plain = io.BytesIO()
    with tarfile.open(fileobj=plain, mode="w", format=tarfile.USTAR_FORMAT) as archive:
        for name, content in files.items():
            entry = tarfile.TarInfo(name)
            entry.size = len(content)
            archive.addfile(entry, io.BytesIO(content))
    return gzip.compress(plain.getvalue(), mtime=0)


def write(folder):
    """Writes the pile into a new folder."""
    folder = pathlib.Path(folder)
    (folder / "members/tmp").mkdir(parents=True)
    files = {"2019.mbox": mbox(OLD), "2024.mbox": mbox(NEW)}
    files.update((f"members/{name}", content.encode()) for name, content in MAILDIR.items())
    files["old.tar.gz"] = tar({"club/minutes": mbox(OLD[:2])})
    files["torn.tar.gz"] = tar({"club/photos": mbox(OLD[2:3])})[:400000]
    for name, content in files.items():
        (folder / name).parent.mkdir(exist_ok=True)
        (folder / name).write_bytes(content)


if __name__ == "__main__":
    if len(sys.argv) != 2:
        sys.exit(__doc__)
    write(sys.argv[1])
