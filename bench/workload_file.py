"""Reads the files that mailstructure_workload writes (write_workload.cpp)."""

import json
import pathlib


def read(path):
    """What a right parse of all messages finds, as a dictionary, and the messages."""
    data = pathlib.Path(path).read_bytes()
    place = data.index(b"\n") + 1
    totals, messages = json.loads(data[:place]), []
    while place < len(data):
        line_end = data.index(b"\n", place)
        message_end = line_end + 1 + int(data[place:line_end])
        messages.append(data[line_end + 1 : message_end])
        place = message_end
    return totals, messages
