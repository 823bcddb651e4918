"""Pages in the shape of the component's form, for the driver: what the tests put in stands as it is."""

import pathlib

TOP = pathlib.Path(__file__).resolve().parent.parent.parent
SCRIPT = (TOP / "resources/edit_fields.js").read_bytes().decode("ascii")


def text(name, value="", label=None):
    return f"<span><label for='{name}'>{label or name}:</label><br/><input type='text' name='{name}' value='{value}'></span>"


def choice(name, *choices):
    options = "".join(f"<option value='{value}'>{value}</option>&nbsp;" for value in choices)
    return f"<span><label for='{name}'>{name}:</label><br/><select name='{name}'>{options}</select></span>"


def boxes(name, *choices, ticked=()):
    inputs = "".join(f"<input type='checkbox' name='{name}' value='{value}'"
                     f"{' checked=1' if value in ticked else ''} />{value}<br/>" for value in choices)
    return f"<span><label for='{name}'>{name}:</label><br/><fieldset>{inputs}</fieldset></span>"


def write(path, *fields, script=SCRIPT):
    """UTF-16 with its mark, as the component writes it."""
    page = ("<html><head><style>body{font: 8pt sans-serif;} span{float: left;}</style></head><body>"
            "<form name='shptform1' id='shptform1' method='post' action=''>" + "".join(fields) +
            "</form><script>" + script + "</script></body></html>")
    pathlib.Path(path).write_bytes(b"\xff\xfe" + page.encode("utf-16-le"))
    return path
