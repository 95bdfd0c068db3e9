"""The messages whose maps are looked at, and the piles that reports are about, by what their pages
are called."""

import pathlib
import sys

TOP = pathlib.Path(__file__).resolve().parent.parent.parent
sys.path.insert(0, str(TOP / "tests/map"))
sys.path.insert(0, str(TOP / "tests/queries"))

import hostile  # noqa: E402
import sample_pile  # noqa: E402

# It claims to be from a bank, has an attachment of two types whose name reads as if it were a PDF,
# and text that differs between its two forms.
PHISHING = """\
From: "support@bank.example" <promo@mailer.example>
To: customer@mail.example
Subject: =?utf-8?q?Your_account_is_locked_=E2=9A=A0?=
Date: Tue, 4 Mar 2025 18:40:12 +0100
MIME-Version: 1.0
Content-Type: multipart/mixed; boundary="outer"

If you can read this, your mail reader is old.
--outer
Content-Type: multipart/alternative; boundary="inner"

--inner
Content-Type: text/plain; charset=utf-8

Dear customer, your account is in good order.

--inner
Content-Type: text/html; charset=utf-8

<html><body onload="steal()"><p>Dear customer, your account is <b>locked</b>.</p>
<p><a href="http://collect.example/login">https://bank.example/login</a></p>
<img src="http://collect.example/seen.gif" width="1" height="1"></body></html>

--inner--
--outer
Content-Type: application/octet-stream;
 name*=utf-8''invoice%E2%80%AEfdp.exe
Content-Type: text/plain
Content-Disposition: attachment; filename*=utf-8''invoice%E2%80%AEfdp.exe
Content-Transfer-Encoding: base64

{attachment}
--outer--
""".format(attachment="TVqQAAMAAAAEAAAA//8AALgAAAAAAAAAQAAAAAAAAAAAAAAAAAAAAAAAAAAA\n" * 60)

MESSAGES = {
    "sample": (TOP / "tests/data/messages/mixed-with-attachment.eml").read_bytes(),
    "phishing": PHISHING.encode(),
    "hostile": hostile.message(hostile.TEXTS["all"]),
    "million": b"Content-Type: multipart/mixed; boundary=b\n\n" + b"--b\n\nx\n" * 1000000
    + b"--b--\n",
}



def write_hostile_pile(folder):
    """Mail in files whose names mean harm too."""
    folder.mkdir()
    for text in hostile.TEXTS.values():
        name = text.decode("utf-8", errors="surrogateescape").replace("/", "").replace("\0", "")
        (folder / name[:80]).write_bytes(hostile.mailbox(text))


PILES = {"report": sample_pile.write, "report-hostile": write_hostile_pile}

# Pages that do what no page of the tool may do, and so show that it would be noticed.
POLICY = ("<meta http-equiv=\"Content-Security-Policy\" content=\"default-src 'none'; "
          "style-src 'none'\">")
HARMFUL = {
    "script": "<!DOCTYPE html><title>x</title><script>var ran = 1</script>",
    "attribute": "<!DOCTYPE html><title>x</title><body onload=\"var ran = 1\">",
    "request": "<!DOCTYPE html><title>x</title><img src=\"http://127.0.0.1:9/a.png\">",
    "violation": f"<!DOCTYPE html>{POLICY}<title>x</title><script>var ran = 1</script>",
    "style": f"<!DOCTYPE html>{POLICY}<title>x</title><p style=\"color:red\">x</p>",
}
