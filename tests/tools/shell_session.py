"""A shell on a terminal of its own, which is asked what it makes of a command line at the key TAB.

The shell loads the completion of mailstructure from this project. A key of the shell is bound to a
function that puts the line of a file on the command line, completes it, and writes what has become
of it into another file. So nothing that the shell draws on its terminal needs to be understood.
"""

import contextlib
import os
import pathlib
import pty
import shutil
import signal
import sys
import tempfile
import threading
import time

SKIPPED = 77  # the exit status of a test that was not run
MESSAGES = pathlib.Path(__file__).resolve().parent.parent / "data/messages"
COMPLETION = pathlib.Path(__file__).resolve().parent.parent.parent / "tools/completion"
TIME_LIMIT = 60  # seconds for one answer

BASH = r"""
PS1= HISTFILE=
bind 'set completion-query-items 0'
. {completion}/mailstructure
recorded() {{ _mailstructure "$@"; printf '%s\n' "${{COMPREPLY[@]}}" > {exchange}/offers; }}
complete -F recorded mailstructure
put_line() {{ READLINE_LINE=$(cat {exchange}/line); READLINE_POINT=$(cat {exchange}/point); }}
take_line() {{ printf '%s' "$READLINE_LINE" > {exchange}/completed; READLINE_LINE=; \
    mv {exchange}/completed {exchange}/answer; }}
bind -x '"\C-x1": put_line'
bind -x '"\C-x2": take_line'
bind '"\C-t": "\C-x1\t\C-x2"'
touch {exchange}/ready
"""

ZSH = r"""
PS1= PROMPT_EOL_MARK=
unsetopt beep
zstyle ':completion:*' list-prompt ''
fpath=({completion} $fpath)
autoload -Uz compinit
compinit -u -D
compadd() {{
    if [[ ${{@[1,(i)(-|--)]}} == *-(O|A|D)\ * ]]; then
        builtin compadd "$@"
        return
    fi
    local -a added
    builtin compadd -A added "$@"
    print -rl -- $added >> {exchange}/offers
    builtin compadd "$@"
}}
ask() {{
    BUFFER=$(<{exchange}/line)
    CURSOR=$(<{exchange}/point)
    zle complete-word
    print -rn -- $BUFFER > {exchange}/completed
    BUFFER=
    mv {exchange}/completed {exchange}/answer
}}
zle -N ask
bindkey '^T' ask
touch {exchange}/ready
"""

FISH = r"""
function fish_prompt; end
source {completion}/mailstructure.fish
function put_line
    commandline -r -- (cat {exchange}/line)
    commandline -C (cat {exchange}/point)
    complete -C (commandline -c) | cut -f 1 > {exchange}/offers
end
function take_line
    commandline | head -c -1 > {exchange}/completed
    commandline -r ''
    mv {exchange}/completed {exchange}/answer
end
bind \cx1 put_line
bind \cx2 take_line
touch {exchange}/ready
"""

# For each shell: its program and arguments, how it loads a file, and the keys that ask it.
SHELLS = {
    "bash": (["bash", "--norc", "--noprofile", "-i"], BASH, b"\x14"),
    "zsh": (["zsh", "-f", "-i"], ZSH, b"\x14"),
    "fish": (["fish", "--no-config", "-i"], FISH, b"\x181\t\x182"),
}


class Session:
    """One shell. It is in an empty folder, and has an empty home folder."""

    messages = MESSAGES

    def __init__(self, shell, tool, work):
        self.shell = shell
        arguments, setup, self.keys = SHELLS[shell]
        self.folder, self.home, self.exchange, programs = (
            work / name for name in ["folder", "home", "exchange", "programs"])
        for folder in [self.folder, self.home, self.exchange, programs]:
            folder.mkdir()
        (programs / "mailstructure").symlink_to(pathlib.Path(tool).resolve())
        script = self.exchange / "setup"
        script.write_text(setup.format(completion=COMPLETION, exchange=self.exchange))
        environment = {**os.environ, "TERM": "xterm", "LC_ALL": "C", "HOME": str(self.home),
                       "PATH": f"{programs}:{os.environ['PATH']}"}
        self.process, self.terminal = pty.fork()
        if self.process == 0:
            os.chdir(self.folder)
            os.execvpe(arguments[0], arguments, environment)
        threading.Thread(target=self._drain, daemon=True).start()
        os.write(self.terminal, f" . {script}\r".encode())
        self._wait_for("ready")

    def _drain(self):
        """Reads what the shell draws, so that it never waits for its terminal."""
        try:
            while os.read(self.terminal, 65536):
                pass
        except OSError:
            pass  # the shell has ended

    def _wait_for(self, name):
        file = self.exchange / name
        end = time.monotonic() + TIME_LIMIT
        while not file.exists():
            if time.monotonic() > end:
                raise TimeoutError(f"the shell has not written {name}")
            time.sleep(0.005)
        text = file.read_text()
        file.unlink()
        return text

    def ask(self, line):
        """What TAB makes of the line, and the set of what it offers. The cursor is where the line
        has a "|", which is left out; or else at its end."""
        point = line.find("|")
        (self.exchange / "line").write_text(line.replace("|", ""))
        (self.exchange / "point").write_text(str(len(line) if point < 0 else point))
        (self.exchange / "offers").write_text("")
        os.write(self.terminal, self.keys)
        completed = self._wait_for("answer")
        offers = (self.exchange / "offers").read_text().split("\n")
        return completed, {offer for offer in offers if offer}

    def close(self):
        """Ends the shell."""
        os.kill(self.process, signal.SIGKILL)
        os.waitpid(self.process, 0)


@contextlib.contextmanager
def open_session(shell, tool):
    """A session that ends with the block it is used in."""
    with tempfile.TemporaryDirectory(ignore_cleanup_errors=True) as work:
        session = Session(shell, tool, pathlib.Path(work))
        try:
            yield session
        finally:
            session.close()


def test_in_shell(faults_in):
    """Runs a test whose command line has the shell and the tool. Returns the exit status.

    faults_in takes a session and the tool, and returns what is wrong, a text each.
    """
    shell, tool = sys.argv[1:]
    if shutil.which(shell) is None:
        print(f"skipped: {shell} is not installed")
        return SKIPPED
    with open_session(shell, tool) as session:
        faults = faults_in(session, tool)
    print("\n".join(faults))
    return 1 if faults else 0
