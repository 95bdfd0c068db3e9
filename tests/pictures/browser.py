"""A headless Chromium that tells what a page does: which requests leave it, whether a script runs,
and whether its policy is violated. It is driven through its debugging pipe."""

import base64
import json
import os
import pathlib
import shutil
import subprocess
import tempfile

NAMES = ("chromium", "chromium-browser", "google-chrome")
FONTS = "/usr/share/fonts/truetype/dejavu"
TIME_LIMIT = 60  # seconds for an answer

# The same fonts on every machine, whatever else is installed.
FONT_CONFIGURATION = """<?xml version="1.0"?>
<!DOCTYPE fontconfig SYSTEM "fonts.dtd">
<fontconfig><dir>{fonts}</dir><cachedir>{cache}</cachedir>
<include ignore_missing="yes">/etc/fonts/conf.d</include></fontconfig>
"""


def found():
    """The program, or None if there is none, or no fonts for it."""
    if not pathlib.Path(FONTS).is_dir():
        return None
    return next(filter(None, map(shutil.which, NAMES)), None)


class Browser:
    """One page. Whatever it does is in `requests`, `scripts` and `violations` after open()."""

    def __init__(self, program):
        self.folder = tempfile.TemporaryDirectory(ignore_cleanup_errors=True)
        fonts = pathlib.Path(self.folder.name, "fonts.conf")
        fonts.write_text(FONT_CONFIGURATION.format(fonts=FONTS, cache=self.folder.name))
        to_browser, self.output = os.pipe()
        self.input, from_browser = os.pipe()
        arguments = [program, "--headless=new", "--remote-debugging-pipe", "--disable-gpu",
                     "--hide-scrollbars", "--force-color-profile=srgb", "--no-first-run",
                     "--font-render-hinting=none", "--disable-lcd-text",
                     "--disable-background-networking",
                     f"--user-data-dir={self.folder.name}/profile"]
        if os.geteuid() == 0:
            arguments.append("--no-sandbox")  # the sandbox refuses to run as root
        # The browser reads from descriptor 3 and writes to descriptor 4.
        script = 'exec 5<&"$1" 6>&"$2" 3<&5 4>&6; shift 2; exec "$@"'
        self.process = subprocess.Popen(
            ["bash", "-c", script, "-", str(to_browser), str(from_browser), *arguments],
            pass_fds=(to_browser, from_browser), stdin=subprocess.DEVNULL,
            stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
            env={**os.environ, "FONTCONFIG_FILE": str(fonts)})
        os.close(to_browser)
        os.close(from_browser)
        self.unread = b""
        self.count = 0
        self.session = None
        self.requests, self.scripts, self.violations, self.loaded = [], [], [], False
        target = self.ask("Target.createTarget", url="about:blank")["targetId"]
        self.session = self.ask("Target.attachToTarget", targetId=target, flatten=True)["sessionId"]
        for domain in ("Page", "Network", "Debugger", "Log", "Audits", "Runtime"):
            self.ask(f"{domain}.enable")

    def __enter__(self):
        return self

    def __exit__(self, *_):
        os.close(self.output)
        try:
            self.process.wait(timeout=10)  # the browser ends with its pipe
        except subprocess.TimeoutExpired:
            self.process.kill()
            self.process.wait()
        os.close(self.input)
        self.folder.cleanup()

    def read(self):
        """The next message of the browser."""
        while b"\0" not in self.unread:
            piece = os.read(self.input, 1 << 16)
            if not piece:
                raise EOFError("the browser has ended")
            self.unread += piece
        text, self.unread = self.unread.split(b"\0", 1)
        return json.loads(text)

    def ask(self, method, **parameters):
        """Calls the method, notes what happens until the answer comes, and returns the answer."""
        self.count += 1
        number = self.count
        message = {"id": number, "method": method, "params": parameters}
        if self.session:
            message["sessionId"] = self.session
        os.write(self.output, json.dumps(message).encode() + b"\0")
        while True:
            answer = self.read()
            if answer.get("id") == number:
                if "error" in answer:
                    raise RuntimeError(f"{method}: {answer['error']}")
                return answer["result"]
            self.note(answer)

    def note(self, event):
        """Keeps what the page has done."""
        what, values = event.get("method"), event.get("params", {})
        if what == "Network.requestWillBeSent":
            self.requests.append(values["request"]["url"])
        elif what == "Debugger.scriptParsed":
            self.scripts.append(values.get("url", ""))
        elif what == "Page.javascriptDialogOpening":
            self.scripts.append("dialog: " + values["message"])
        elif what == "Page.loadEventFired":
            self.loaded = True
        elif what == "Log.entryAdded" and values["entry"]["source"] in ("security", "violation"):
            self.violations.append(values["entry"]["text"])
        elif what == "Audits.issueAdded" and "ContentSecurityPolicy" in values["issue"]["code"]:
            self.violations.append(json.dumps(values["issue"]["details"]))

    def open(self, path, width, height, scheme="light", media="screen", place=""):
        """Shows the file, from the element of that name on, in a window of that size."""
        self.ask("Emulation.setDeviceMetricsOverride", width=width, height=height,
                 deviceScaleFactor=1, mobile=False)
        self.ask("Emulation.setEmulatedMedia", media=media,
                 features=[{"name": "prefers-color-scheme", "value": scheme}])
        self.requests, self.scripts, self.violations, self.loaded = [], [], [], False
        self.ask("Page.navigate", url="about:blank")  # else a place is only scrolled to
        while not self.loaded:
            self.note(self.read())
        self.requests, self.scripts, self.violations, self.loaded = [], [], [], False
        self.ask("Page.navigate", url=pathlib.Path(path).resolve().as_uri() + place)
        while not self.loaded:
            self.note(self.read())
        # What a page has begun shows by now: two frames, and a turn of each queue in between.
        for _ in range(2):
            self.picture()
            self.ask("Page.getLayoutMetrics")

    def picture(self):
        """What the window shows, as a PNG."""
        return base64.b64decode(self.ask("Page.captureScreenshot", format="png")["data"])

    def press_tab(self):
        """Moves the focus on, and returns where it is then: a link's target, or the tag."""
        for kind in ("rawKeyDown", "keyUp"):
            self.ask("Input.dispatchKeyEvent", type=kind, key="Tab", code="Tab",
                     windowsVirtualKeyCode=9)
        found_at = self.ask(
            "Runtime.evaluate",
            expression="(e => e.getAttribute('href') || e.localName)(document.activeElement)")
        return found_at["result"]["value"]
