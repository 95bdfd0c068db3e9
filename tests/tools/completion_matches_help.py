#!/usr/bin/env python3
"""Compares what a shell offers with what the tool's help says.

    completion_matches_help.py SHELL TOOL

Every command, every option and every word that an option takes is offered, and nothing else. Of an
option that has several names, the first long one is offered.
"""

import re
import subprocess
import sys

from shell_session import test_in_shell


class Help:
    """What the help of the tool says."""

    def __init__(self, tool):
        self.tool = tool

    def lines(self, section, *command):
        """The indented lines of that section of the help."""
        text = subprocess.run([self.tool, *command, "--help"], check=True, capture_output=True,
                              text=True).stdout
        found = re.search(rf"^{section}:\n((?:  .*\n)+)", text, re.MULTILINE)
        return found[1].splitlines() if found else []

    def commands(self):
        """The names of the commands in their order."""
        return [line.split()[0] for line in self.lines("Commands")]

    def options(self, *command):
        """The first long name of each option."""
        names = (re.match(r" +(?:-.,)?(--[a-z0-9-]+)", line)
                 for line in self.lines("Options", *command))
        return {name[1] for name in names if name}

    def words(self, command, option):
        """The words that the option takes, which the tool lists in its complaint about any other.
        Empty for an option that does not choose between words."""
        arguments = [command, f"{option}=no-such-word"] + (["1"] if command == "part" else [])
        complaint = subprocess.run([self.tool, *arguments, "nothing"], check=False,
                                   capture_output=True, text=True).stderr
        found = re.search(r": not one of (.*): no-such-word$", complaint, re.MULTILINE)
        return set(found[1].split(", ")) if found else set()


def offered(session, line):
    """What the shell offers. An option may end with a "=", and a word may begin with its option."""
    return {re.sub("^--.*=(?=.)", "", offer).removesuffix("=") for offer in session.ask(line)[1]}


def faults_in(session, tool):
    """Where the help and the offers differ. The folder of the session is empty, so that no file is
    offered."""
    faults = []

    def compare(what, expected, found):
        if expected != found:
            faults.append(f"{what}: only in the help: {sorted(expected - found)}, "
                          f"only offered: {sorted(found - expected)}")

    of_help = Help(tool)
    commands = of_help.commands()
    if not commands:
        return ["the help names no command"]
    compare("commands", set(commands), offered(session, "mailstructure "))
    for command in commands:
        options = of_help.options(command)
        compare(f"options of {command}", options, offered(session, f"mailstructure {command} --"))
        for option in options:
            compare(f"{command} {option}", of_help.words(command, option),
                    offered(session, f"mailstructure {command} {option}="))
    # Without a command on the command line, the first one is meant.
    compare("options without a command", of_help.options() | of_help.options(commands[0]),
            offered(session, "mailstructure --"))
    return faults


if __name__ == "__main__":
    sys.exit(test_in_shell(faults_in))
