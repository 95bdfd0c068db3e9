"""Times mailstructure.parse on a workload, by both sets of rules:

python_figures.py WORKLOAD MESSAGES FIGURES

bench/run calls it. MESSAGES is what mailstructure_workload wrote for the workload; FIGURES is
written in the form that report.py reads.
"""

import json
import sys
import time

import mailstructure
import workload_file

LEAST_SECONDS = 0.1  # as bench/run has it for the other benchmarks
NAMES = {"classic": "python", "standard": "python_standard"}


def parses_right(messages, totals, rules):
    """Whether the messages are parsed as they should be; the speed of a wrong parse means
    nothing."""
    entities = body_lines = 0
    for data in messages:
        message = mailstructure.parse(data, rules)
        entities += len(message)
        body_lines += message.root.lines
    return entities == totals["entities"] and body_lines == totals["body_lines"]


def seconds_for(messages, rules):
    """The processor time that one parse of all messages takes."""
    turns, start = 0, time.process_time()
    while time.process_time() - start < LEAST_SECONDS:
        for data in messages:
            mailstructure.parse(data, rules)
        turns += 1
    return (time.process_time() - start) / turns


def figure_of(workload, messages, totals, rules):
    """The figure of one set of rules."""
    figure = {"run_name": f"{workload}/{NAMES[rules]}"}
    if not parses_right(messages, totals, rules):
        return figure | {"error_occurred": True, "error_message": "a wrong parse"}
    return figure | {
        "cpu_time": seconds_for(messages, rules) * 1e3,
        "bytes": sum(map(len, messages)),
        "lines": totals["lines"],
    }


def main():
    """Measures both sets of rules, and writes the figures."""
    workload, path, output = sys.argv[1:]
    totals, messages = workload_file.read(path)
    figures = [figure_of(workload, messages, totals, rules) for rules in NAMES]
    with open(output, "w", encoding="utf-8") as file:
        json.dump({"benchmarks": figures}, file)


main()
