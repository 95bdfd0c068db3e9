"""Messages whose senders mean harm, for the tests of maps and reports: every text that these show
is one that a reader of SVG or HTML could take for something else."""

SCRIPT = b"<script>alert(1)</script>"
ATTRIBUTE = b"\" onload='alert(1)' x=\""
CLOSING = b"</title></style></svg></table></body>--><!--]]>"
REFERENCES = b"&lt;&#x0;&#1;&bogus;<!ENTITY a SYSTEM 'file:///etc/passwd'>"
ADDRESS = b"javascript:alert(1) http://tracker.example/a.png url(http://tracker.example/b)"
STYLE = b"}*{background:url(http://tracker.example/c)}@import 'http://tracker.example/d';"
CONTROLS = bytes(range(1, 10)) + bytes(range(14, 32)) + b"\x7f\0\x0b\x0c"
NOT_UTF8 = b"\xff\xfe\xc0\xaf\xed\xa0\x80\xf4\x90\x80\x80\xe2\x82"
NOT_XML = b"\xef\xbf\xbe\xef\xbf\xbf\xf0\x9f\xbf\xbe\xc2\x85\xe2\x80\xa8\xe2\x80\xae"
TEXTS = {
    "script": SCRIPT,
    "attribute": ATTRIBUTE,
    "closing": CLOSING,
    "references": REFERENCES,
    "address": ADDRESS,
    "style": STYLE,
    "controls": CONTROLS,
    "not_utf8": NOT_UTF8,
    "not_xml": NOT_XML,
    "all": b" ".join((SCRIPT, ATTRIBUTE, CLOSING, REFERENCES, STYLE, CONTROLS, NOT_UTF8, NOT_XML)),
}


def message(text):
    """A message that has the text in every place that the map shows: types, names, values,
    subjects, boundaries and field names."""
    quoted = text.replace(b"\\", b"").replace(b'"', b"'")
    token = bytes(byte for byte in text if byte > 32 and byte not in b":;()\"\\/\x7f")
    return b"".join((
        b"Subject: ", text, b"\nFrom: ", text, b"\nX-", token, b": ", text, b"\n",
        b'Content-Type: multipart/mixed; boundary="b"; x="', quoted, b'"\n\n',
        text, b"\n--b\nContent-Type: ", token, b"/", token, b'; name="', quoted, b'"\n\n',
        text, b"\n--b\nContent-Type: a&'{}/b&amp'*{}\n\n",
        text, b"\n--b\nContent-Type: text/html\nContent-Disposition: ", token,
        b'; filename="', quoted, b'"\n\n', text, b"\n--b\nContent-Type: message/rfc822\n\n",
        b"Subject: ", text, b'\nContent-Type: multipart/mixed; boundary="c"; x="',
        quoted, b'"\n\n--c\n\n', text, b"\n--b--\n", text, b"\n",
    ))


def mailbox(text):
    """Mail that has the text in every place that a report shows."""
    quoted = text.replace(b"\\", b"").replace(b'"', b"'")
    token = bytes(byte for byte in text if byte > 32 and byte not in b":;()\"\\/\x7f")
    attachment = (b"--b\nContent-Type: " + token + b"/" + token + b'; name="' + quoted + b'"\n'
                  b"Content-Disposition: attachment; filename=\"" + quoted + b"\"\n\nsame\n")
    return b"".join((
        b"From a Mon Jan  1 00:00:00 2024\nFrom: <a@", token, b">\nSubject: ", text,
        b"\nDate: Mon, 1 Jan 2024 00:00:00 +0000\nContent-Type : multipart/mixed; boundary=b\n\n",
        attachment, attachment, b"--b--\n\n", message(text)))
