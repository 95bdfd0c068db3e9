"""Makes the rows of `mailstructure scan --hash=none --findings=none` with Python's mailbox and
email, as a programmer would without this tool: scan_by_python.py MBOX. bench/scan measures it.

The bodies' ranges are left out, because Python's parser does not know them.
"""

import email
import email.header
import email.utils
import json
import mailbox
import sys


def text_of(value):
    """The value of a field, decoded."""
    if value is None:
        return None
    return str(email.header.make_header(email.header.decode_header(value)))


def date_of(value):
    """A moment, with its zone if that is known, or None."""
    try:
        moment = email.utils.parsedate_to_datetime(value)
    except (TypeError, ValueError):
        return None
    return moment.isoformat()


def message_row(place, data, message, entities, depth):
    """The row of a message."""
    addresses = email.utils.getaddresses(message.get_all("From", []))
    return {
        "kind": "message", "source": sys.argv[1], "message": place, "length": len(data),
        "subject": text_of(message["Subject"]), "from": text_of(message["From"]),
        "to": text_of(message["To"]), "from_address": addresses[0][1] if addresses else None,
        "date": date_of(message["Date"]), "date_text": message["Date"],
        "message_id": message["Message-ID"], "entities": entities, "depth": depth}


def entity_rows(place, message):
    """The rows of the entities, in their order."""
    rows = []
    waiting = [(message, None, 0, "")]
    while waiting:
        entity, parent, depth, section = waiting.pop()
        index = len(rows)
        parts = entity.get_payload() if entity.is_multipart() else []
        rows.append({
            "kind": "entity", "source": sys.argv[1], "message": place, "index": index,
            "parent": parent, "depth": depth, "section": section,
            "type": entity.get_content_maintype(), "subtype": entity.get_content_subtype(),
            "transfer_encoding": entity["Content-Transfer-Encoding"],
            "charset": entity.get_content_charset(), "filename": text_of(entity.get_filename()),
            "disposition": entity.get_content_disposition(),
            "lines": None if parts else entity.get_payload().count("\n")})
        for number in range(len(parts), 0, -1):
            waiting.append((parts[number - 1], index, depth + 1,
                            f"{section}.{number}" if section else str(number)))
    return rows


def main():
    """Prints the rows of all messages."""
    box = mailbox.mbox(sys.argv[1], create=False)
    for key in box.keys():
        place = box._toc[key][0] # pylint: disable=protected-access # there is no other way
        data = box.get_bytes(key)
        message = email.message_from_bytes(data)
        rows = entity_rows(place, message)
        depth = max(row["depth"] for row in rows)
        print(json.dumps(message_row(place, data, message, len(rows), depth)))
        for row in rows:
            print(json.dumps(row))


main()
