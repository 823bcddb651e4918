#!/usr/bin/python3
"""The pictures of docs/gallery.md: gallery.py BINARIES FOLDER. Each is the dialog of a document of the stand-in's site, opened
by `velandoc doc edit`."""

import importlib.util
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile

from display import TOP, Display, wait_for

_found = importlib.util.spec_from_file_location("cli_support", TOP / "tests/cli/support.py")
cli = importlib.util.module_from_spec(_found)
_found.loader.exec_module(cli)

BOOK = "http://docs.example.test/sites/a/Shared%20Documents/b.xlsx"


def text(name, shown=None, **more):
    return {"name": name, "display_name": shown or name, "type": "Text", **more}


def choice(name, choices, kind="Choice", **more):
    return {"name": name, "display_name": name, "type": kind, "choices": choices, **more}


STATES = ["Draft", "In review", "Final"]
REGIONS = ["North", "East", "South", "West"]
LONG = "A value that is far longer than its box, which shows the beginning and scrolls to the rest"

# name: columns, values
PICTURES = {
    "text": ([text("Owner"), text("Code", "Project code"), text("Amount")],
             {"Owner": "Jane Doe", "Code": "A-100", "Amount": "1250.50"}),
    "choice": ([choice("Status", STATES), choice("Priority", ["High", "Normal", "Low"])], {"Status": "In review"}),
    "multiple-choice": ([choice("Regions", REGIONS, "MultiChoice"), choice("Tags", ["One", "Two"], "MultiChoice")],
                        {"Regions": ";#East;#West;#"}),
    "required": ([text("Owner", required=True), choice("Status", STATES, required=True), text("Remark"),
                  choice("Regions", REGIONS, "MultiChoice", required=True)], {"Owner": "Jane Doe"}),
    "long": ([text("Summary", "A label that says at some length what the column is for"), text("Owner"),
              choice("Status", STATES + ["Waiting for the approval of everybody who has to approve"]),
              *(text(f"Column{i}", f"Column {i}") for i in range(1, 10))],
             {"Summary": LONG, "Owner": "Jane Doe", "Status": "Draft"}),
    "letters": ([text("Title1", "标题"), text("Owner", "担当者"), text("Note", "메모"), text("Ort", "Straße und Ort"),
                 choice("状态", ["草稿", "审核中", "完成"])],
                {"Title1": "二〇二六年预算", "Owner": "山田太郎", "Note": "검토 중", "Ort": "Königsallee 1, Düsseldorf", "状态": "审核中"}),
}


def site(columns, values):
    site = cli.server.command("GET", "/site")
    (web,) = (web for web in site["webs"] if web["path"] == "/sites/a")
    (library,) = web["libraries"]
    title = next(column for column in library["columns"] if column["name"] == "Title")
    library["columns"] = [title, *columns]
    for kind in library["content_types"]:
        kind["columns"] = ["Title", *(column["name"] for column in columns)]
    for document in library["documents"]:
        document["values"] = dict(values)
    cli.server.command("PUT", "/site", site)


def photograph(display, binaries, path, alert=False):
    with tempfile.TemporaryDirectory() as folder:
        proxy = f"http://127.0.0.1:{cli.server.ports['http']}"
        environment = dict(display.environment, HOME=folder, XDG_CACHE_HOME=folder, http_proxy=proxy, LC_ALL="C.UTF-8")
        program = subprocess.Popen([binaries / "velandoc", "doc", "edit", BOOK], env=environment,
                                   stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL)
        try:
            window = display.window()
            window.wait_for_page()
            if alert:
                display.keys("Return")
                display.window(other_than=(window.number,))
            left, top = corner(display, window)
            frame = [left - 1, top - 20, window.width + 2, window.height + 25]  # openbox's title and borders
            wait_for("a picture that stays", lambda: same(display))
            display.capture("root", f"png:{path}")
            subprocess.run(["convert", path, "-crop", "{2}x{3}+{0}+{1}".format(*frame), "+repage", "+dither", "-colors",
                            "96", "-strip", "-define", "png:compression-level=9", f"PNG8:{path}"], check=True)
        finally:
            program.kill()
            program.wait()
        wait_for("the window to go", lambda: not display.windows())


def corner(display, window):
    """Where the client area is on the screen; xdotool counts the window manager's frame twice."""
    told = display.run(["xwininfo", "-id", str(window.number)]).stdout.decode()
    return [int(re.search(rf"Absolute upper-left {axis}: +(\d+)", told).group(1)) for axis in "XY"]


def same(display):
    first = display.capture("root", "ppm:-")
    return first == display.capture("root", "ppm:-")


def main():
    binaries, folder = (pathlib.Path(word).resolve() for word in sys.argv[1:3])
    cli.standin = binaries / "velandoc-standin"
    cli.server = cli.Server()
    display = Display()
    try:
        shutil.rmtree(folder, ignore_errors=True)
        os.makedirs(folder)
        for name, (columns, values) in PICTURES.items():
            site(columns, values)
            photograph(display, binaries, folder / f"{name}.png")
        site(*PICTURES["required"])
        photograph(display, binaries, folder / "alert.png", alert=True)
    finally:
        display.close()
        cli.server.stop()


if __name__ == "__main__":
    main()
