"""Decodes header field values with the standard library."""

import email.errors
import email.header


def decoded(value):
    """The value with its encoded words decoded.

    What email.header cannot decode stays as it is, but for bytes that are not UTF-8.
    """
    if "=?" in value:
        try:
            return str(email.header.make_header(email.header.decode_header(value)))
        except (email.errors.HeaderParseError, LookupError, ValueError):
            pass  # damaged base64, an unknown charset, or text that is not of its charset
    return value.encode("utf-8", "surrogateescape").decode("utf-8", "replace")
