"""Damages messages where it changes their structure: the lines of boundaries, of types and of the
ends of header blocks are hit most.
"""

# What is put into lines.
PIECES = [
    b"--", b"\r", b"\n", b'"', b";", b"(", b")", b"\\", b" ", b"\t", b":", b"=", b"\0", b"\x80",
    b"multipart/", b"message/rfc822", b"boundary=", b"boundary*0=", b"Content-Type: ",
    b"Content-Transfer-Encoding: base64\n", b"\n\n", b"--\n", b"=?a?Q?b?=",
]


def chosen_line(lines, random):
    """The index of a line; four times out of five one that the structure depends on."""
    structural = [
        index
        for index, line in enumerate(lines)
        if b"ontent" in line or b"oundary" in line or line.startswith(b"--") or line in (b"", b"\r")
    ]
    if structural and random.random() < 0.8:
        return random.choice(structural)
    return random.randrange(len(lines))


def hit_once(lines, random):
    """The lines with one of them dropped, doubled, copied elsewhere, changed, or cut in two."""
    at = chosen_line(lines, random)
    line = lines[at]
    place = random.randrange(len(line) + 1)
    way = random.choice(["drop", "double", "copy", "insert", "insert", "insert", "erase", "cut"])
    if way == "drop":
        return lines[:at] + lines[at + 1 :]
    if way == "double":
        return lines[:at] + [line] + lines[at:]
    if way == "copy":
        to = random.randrange(len(lines))
        return lines[:to] + [line] + lines[to:]
    if way == "insert":
        return lines[:at] + [line[:place] + random.choice(PIECES) + line[place:]] + lines[at + 1 :]
    if way == "erase":
        return lines[:at] + [line[:place] + line[place + 1 :]] + lines[at + 1 :]
    rest = [line[place:]] + lines[at + 1 :] if random.random() < 0.7 else []
    return lines[:at] + [line[:place]] + rest


def damaged(message, random):
    """The message, hit once to three times."""
    lines = message.split(b"\n")
    for _ in range(random.choice([1, 1, 2, 3])):
        lines = hit_once(lines, random) or [b""]
    return b"\n".join(lines)
