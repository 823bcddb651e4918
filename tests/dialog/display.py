"""A screen of its own (Xvfb), a window manager (openbox), and the keys, clicks and pictures of a user before it."""

import os
import pathlib
import re
import subprocess
import time

TOP = pathlib.Path(__file__).resolve().parent.parent.parent
RULES = TOP / "tests/dialog/openbox.xml"
CAPTION = "Edit SharePoint Fields"
PATIENCE = 30.0  # seconds; a wait ends as soon as what it waits for is there


class Missing(AssertionError):
    """What a test waited for did not come."""


def wait_for(what, ask, patience=PATIENCE):
    """Asks until the answer is neither None nor False, and gives it."""
    deadline = time.monotonic() + patience
    while True:
        answer = ask()
        if answer is not None and answer is not False:
            return answer
        if time.monotonic() > deadline:
            raise Missing(f"waited {patience} s for {what}")
        time.sleep(0.02)


class Picture:
    """Pixels of a part of the screen, three bytes each."""

    def __init__(self, ppm):
        head = re.match(rb"P6\s+(\d+)\s+(\d+)\s+(\d+)\s", ppm)
        self.width, self.height = int(head.group(1)), int(head.group(2))
        self.step = 3 if int(head.group(3)) < 256 else 6
        self.data = ppm[head.end():]

    def pixel(self, x, y):
        at = (y * self.width + x) * self.step
        return tuple(self.data[at + i * self.step // 3] for i in range(3))

    def dark(self, left, top, right, bottom):
        """How many pixels of the rectangle are darker than middle grey: the strokes of letters."""
        return sum(1 for y in range(max(0, top), min(bottom, self.height))
                   for x in range(max(0, left), min(right, self.width)) if sum(self.pixel(x, y)) < 3 * 128)


class Window:
    """A window on the screen; coordinates are those of its client area."""

    def __init__(self, display, number):
        self.display, self.number = display, number
        self.x, self.y, self.width, self.height = self.place()

    def place(self):
        shell = self.display.xdotool("getwindowgeometry", "--shell", self.number)
        values = dict(re.findall(r"(\w+)=(-?\d+)", shell))
        return tuple(int(values[key]) for key in ("X", "Y", "WIDTH", "HEIGHT"))

    def resize(self, width, height):
        self.display.xdotool("windowsize", self.number, width, height)

        def resized():
            self.x, self.y, self.width, self.height = self.place()
            return (self.width, self.height) == (width, height)
        wait_for(f"the size {width}x{height}", resized)

    def click(self, x, y):
        self.display.xdotool("mousemove", "--window", self.number, x, y, "click", 1)

    def close(self):
        """As the close box in the title does."""
        self.display.keys("alt+F4")

    def maximise(self):
        self.display.keys("alt+F10")

    def picture(self):
        return Picture(self.display.capture(self.number, "ppm:-"))

    def wait_for_page(self):
        """Returns once the page has painted its words. A window that nobody has painted yet is black."""
        wait_for("the page", lambda: 50 < self.picture().dark(0, 0, 400, 60) < 6000)

    def save(self, path):
        path = pathlib.Path(path)
        path.parent.mkdir(parents=True, exist_ok=True)
        self.display.capture(self.number, f"png:{path}")


class Display:
    """Xvfb and openbox until close()."""

    def __init__(self, size="1280x1024", manager=True):
        read, write = os.pipe()
        self.server = subprocess.Popen(
            ["Xvfb", "-displayfd", str(write), "-screen", "0", f"{size}x24", "-nolisten", "tcp", "-noreset"],
            pass_fds=[write], stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        os.close(write)
        with os.fdopen(read) as number:
            self.name = ":" + number.readline().strip()
        self.environment = dict(os.environ, DISPLAY=self.name, GDK_BACKEND="x11", NO_AT_BRIDGE="1",
                                DBUS_SESSION_BUS_ADDRESS="disabled:", GTK_THEME="Adwaita")
        self.environment.pop("WAYLAND_DISPLAY", None)
        self.manager = None
        if manager:
            self.manager = subprocess.Popen(["openbox", "--sm-disable", "--config-file", RULES], env=self.environment, stdin=subprocess.DEVNULL,
                                            stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
            try:
                wait_for("the window manager", self._managed)
            except Missing:
                self.close()
                raise

    def _managed(self):
        done = self.run(["xdotool", "get_num_desktops"])
        return done.returncode == 0

    def close(self):
        for process in (self.manager, self.server):
            if process:
                process.terminate()
                process.wait(timeout=20)

    def run(self, command):
        return subprocess.run(command, env=self.environment, stdin=subprocess.DEVNULL, capture_output=True, timeout=60)

    def xdotool(self, *words):
        done = self.run(["xdotool", *map(str, words)])
        if done.returncode:
            raise Missing(f"xdotool {words}: {done.stderr.decode()}")
        return done.stdout.decode()

    def capture(self, number, target):
        done = self.run(["import", "-silent", "-window", str(number), target])
        if done.returncode:
            raise Missing(f"no picture: {done.stderr.decode()}")
        return done.stdout

    def windows(self, caption=CAPTION):
        done = self.run(["xdotool", "search", "--onlyvisible", "--name", f"^{re.escape(caption)}$"])
        return [int(number) for number in done.stdout.split()]

    def windows_of(self, program):
        """All that are seen of a program: an open list is a window without a caption."""
        return self.run(["xdotool", "search", "--onlyvisible", "--class", f"^{re.escape(program)}$"]).stdout.split()

    def active(self):
        done = self.run(["xdotool", "getactivewindow"])
        return int(done.stdout) if done.returncode == 0 and done.stdout.strip() else None

    def window(self, caption=CAPTION, other_than=()):
        """The window of that caption, once it is seen and has the keyboard."""
        def find():
            return next((number for number in self.windows(caption)
                         if number not in other_than and number == self.active()), None)
        return Window(self, wait_for(f"a window '{caption}' with the keyboard", find))

    def gone(self, window):
        wait_for("the window to go", lambda: window.number not in self.windows() or None)

    def keys(self, *names):
        self.xdotool("key", "--clearmodifiers", *names)

    def type(self, text, *keys):
        """As fast as the machine can; the keys follow at once."""
        self.xdotool("type", "--delay", 0, "--args", 1, text, *(("key", *keys) if keys else ()))
