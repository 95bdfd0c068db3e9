"""Measures how many messages a second the package parses and walks, and how many the parser of
Python's standard library does: python_rates.py MESSAGES REPORT

bench/python calls it. MESSAGES is what mailstructure_workload wrote.
"""

import email
import email.policy
import pathlib
import platform
import statistics
import sys
import time

import mailstructure
import workload_file

ROUNDS = 5
STANDARD_LIBRARY_MESSAGES = 500  # of the messages; it needs seconds for all


def walk_ours(messages):
    """Parses and visits each entity of each message. Returns the number of entities."""
    count = 0
    for data in messages:
        for _ in mailstructure.parse(data).walk():
            count += 1
    return count


def walk_types_of_ours(messages):
    """As walk_ours, and asks each entity for its media type and its body."""
    count = 0
    for data in messages:
        for entity in mailstructure.parse(data).walk():
            if entity.media_type and entity.body is not None:
                count += 1
    return count


def table_of_ours(messages):
    """Parses each message, and takes the table of all its entities."""
    return sum(mailstructure.parse(data).entity_table.shape[0] for data in messages)


def describe_ours(messages):
    """Parses each message, and makes a dictionary of all about it."""
    return sum(1 for data in messages if mailstructure.parse(data).to_dict())


def walk_email(messages, policy=email.policy.compat32):
    """Parses and visits each part with the parser of Python's standard library: with its older
    classes, or with those of another policy."""
    count = 0
    for data in messages:
        for _ in email.message_from_bytes(data, policy=policy).walk():
            count += 1
    return count


def walk_email_by_policy(messages):
    """The same with the newer classes of that library."""
    return walk_email(messages, email.policy.default)


WAYS = (
    ("`mailstructure.parse`, then `walk()`", walk_ours, None),
    ("the same, with type and body of each entity", walk_types_of_ours, None),
    ("`mailstructure.parse`, then `entity_table`", table_of_ours, None),
    ("`mailstructure.parse`, then `to_dict()`", describe_ours, STANDARD_LIBRARY_MESSAGES),
    ("`email.message_from_bytes`, then `walk()`", walk_email, STANDARD_LIBRARY_MESSAGES),
    ("the same with `policy.default`", walk_email_by_policy, STANDARD_LIBRARY_MESSAGES),
)


def measure(messages):
    """The rates of each way, in messages a second. The ways take turns, so that a slow minute of
    the machine affects all of them."""
    rates = {text: [] for text, _, _ in WAYS}
    for _ in range(ROUNDS):
        for text, way, most in WAYS:
            chosen = messages[:most]
            start = time.process_time()
            way(chosen)
            rates[text].append(len(chosen) / (time.process_time() - start))
    return rates


def check(messages, totals):
    """The package finds all parts of the messages, and both parsers the same number in some."""
    found = walk_ours(messages)
    if found != totals["entities"]:
        sys.exit(f"{found} entities of {totals['entities']}")
    few = messages[:STANDARD_LIBRARY_MESSAGES]
    ours, theirs = walk_ours(few), walk_email(few)
    if ours != theirs:
        sys.exit(f"{ours} entities, but the standard library finds {theirs}")


def report(messages, rates):
    """The figures as a page."""
    medians = [statistics.median(repeats) for repeats in rates.values()]
    size = sum(map(len, messages))
    lines = [
        "# Speed of the package for Python",
        "",
        f"Written by `bench/python`: {len(messages):,} messages of {size // len(messages):,} bytes"
        " on average,",
        f"Python {platform.python_version()}, median of {ROUNDS} rounds of processor time.",
        "",
        "| | messages a second |",
        "|---|---:|",
    ]
    for text, median in zip(rates, medians, strict=True):
        lines.append(f"| {text} | {median:,.0f} |")
    lines += [
        "",
        f"The first is {medians[0] / medians[4]:.0f} times as fast as `email.message_from_bytes`,"
        f" and {medians[0] / medians[5]:.0f} times",
        "as fast as that with `policy.default`.",
        "",
    ]
    return "\n".join(lines)


def main():
    """Measures, writes the report and prints it."""
    totals, messages = workload_file.read(sys.argv[1])
    check(messages, totals)
    page = report(messages, measure(messages))
    pathlib.Path(sys.argv[2]).write_text(page, encoding="utf-8")
    print(page, end="")


main()
