"""What Python's standard e-mail parser finds in a message, under the names that the tool gives."""

import email


class Part:
    """A part that Python has found."""

    def __init__(self, message, is_leaf):
        self.message = message
        self.is_leaf = is_leaf

    def payload(self):
        """Its bytes; only of a part without parts."""
        return self.message.get_payload().encode("latin-1")


def parse(data):
    """The message as Python's object."""
    return email.message_from_string(data.decode("latin-1"))


def is_multipart(message):
    """Whether its parts have numbers of their own."""
    return message.get_content_maintype() == "multipart" and bool(
        message.is_multipart() or message.get_boundary()
    )


def parts_of(root, message_types):
    """All parts, each under its name. Messages within are looked into if they have these types."""
    parts = {}
    waiting = [(root, "", True)]
    while waiting:
        message, number, is_message = waiting.pop()
        payload = message.get_payload()
        is_list = isinstance(payload, list)
        multipart = is_multipart(message)
        if is_message:
            number = (number + (".TEXT" if multipart else ".1")).lstrip(".")
        parts[number] = Part(message, not multipart and not is_list)
        if multipart and is_list:
            number = number.removesuffix("TEXT").rstrip(".")
            for place, child in enumerate(payload, 1):
                waiting.append((child, f"{number}.{place}".lstrip("."), False))
        elif is_list and message.get_content_type() in message_types:
            waiting.append((payload[0], number, True))
    return parts
