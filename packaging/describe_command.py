"""Writes the man page and the completions of the command from what its --help says, so that they cannot differ.

    describe_command.py --command build/native/bin/velandoc --version 1.0.0 --template velandoc.1.in --output FOLDER

FOLDER gets velandoc.1, velandoc.bash, _velandoc (zsh) and velandoc.fish.
"""

import argparse
import pathlib
import re
import subprocess


class Command:
    """A command of the tree: the words that name it, what its help says of it, and its own commands."""

    def __init__(self, program, words=(), summary=""):
        self.words = words
        self.summary = summary
        text = subprocess.run([program, *words, "--help"], capture_output=True, text=True, check=True).stdout
        sections = split_sections(text)
        self.description = sections[""][0]
        self.usage = next(line for line in sections[""] if line.startswith("Usage: ")).removeprefix("Usage: ")
        self.positionals = rows(sections.get("Positionals", []))
        self.options = [Option(names, help) for names, help in rows(sections.get("Options", []))]
        self.exit_codes = rows(sections.get("Exit codes", []))
        self.commands = [Command(program, (*words, name), help)
                         for name, help in rows(sections.get("Subcommands", []))]

    def walk(self):
        yield self
        for command in self.commands:
            yield from command.walk()


class Option:
    """'-c,--comment TEXT' and its help."""

    def __init__(self, declaration, help):
        self.names = re.findall(r"(?<![\w-])--?[A-Za-z][\w-]*", declaration.split(" ")[0])
        self.value = declaration.partition(" ")[2].replace("REQUIRED", "").strip()
        # 'TEXT:{a,b}' and 'TEXT in {a,b}' name what may be chosen.
        choices = re.search(r"\{([^}]*)\}", self.value)
        self.choices = choices.group(1).split(",") if choices else []
        self.value = re.sub(r"(:| in )?\{[^}]*\}", "", self.value)
        self.help = help


def split_sections(text):
    """Sections by their headings; what stands before the first one is under ''."""
    sections = {"": []}
    name = ""
    for line in text.splitlines():
        heading = re.fullmatch(r"([A-Z][A-Za-z ]+):", line)
        if heading:
            name = heading.group(1)
            sections[name] = []
        elif line.strip():
            sections[name].append(line)
    return sections


def rows(lines):
    """Pairs of a name and its help, which may begin behind the name or on the next line, and go on for several."""
    found = []
    indent = None
    for line in lines:
        margin = len(line) - len(line.lstrip())
        if indent is None:
            indent = margin
        match = re.fullmatch(r"(\S.*?)(?:\s{2,}(\S.*))?", line.strip())
        # Numbers are set to the right, so a row of exit codes may begin further left than the first.
        begins = margin <= indent or re.match(r"\d+  ", line.strip())
        if begins and margin < 20:
            found.append([match.group(1), match.group(2) or ""])
        else:
            found[-1][1] = (found[-1][1] + " " + line.strip()).strip()
    return [tuple(row) for row in found]


# --- man page ---------------------------------------------------------------------------------------------------------


def roff(text):
    text = text.replace("\\", "\\e").replace("-", "\\-")
    return re.sub(r"^(['.])", r"\\&\1", text, flags=re.MULTILINE)


def man_page(root, template, version):
    lines = []
    for command in root.walk():
        if command.commands:
            continue
        lines += [".SS", '"' + roff(command.usage.replace("[OPTIONS] ", "")) + '"']
        lines[-2:] = [lines[-2] + " " + lines[-1]]
        lines += [roff(command.description) + "."]
        for name, help in command.positionals:
            lines += [".TP", ".I " + roff(name.split(" ")[0]), roff(help)]
        for option in command.options:
            if "--help" not in option.names:
                lines += [".TP", ".BR " + option_in_roff(option), roff(option.help)]
    general = []
    for option in root.options:
        general += [".TP", ".BR " + option_in_roff(option), roff(option.help)]
    codes = []
    for code, meaning in root.exit_codes:
        codes += [".TP", ".B " + code, roff(meaning)]
    page = template.replace("@VERSION@", version)
    for name, text in (("OPTIONS", general), ("COMMANDS", lines), ("EXIT_CODES", codes)):
        page = page.replace(f"@{name}@", "\n".join(text))
    return page


def option_in_roff(option):
    names = ' ", " '.join(roff(name) for name in option.names)
    return names + (f' " " \\fI{roff(option.value)}\\fR' if option.value else "")


# --- completions ------------------------------------------------------------------------------------------------------


def bash_completion(root):
    cases = []
    for command in root.walk():
        path = " ".join(command.words)
        words = [sub.words[-1] for sub in command.commands]
        words += [name for option in visible_options(root, command) for name in option.names if name.startswith("--")]
        cases.append(f"    '{path}') words='{' '.join(words)}' ;;")
    values = []
    for option in {option.names[-1]: option for command in root.walk() for option in command.options}.values():
        if option.choices:
            values.append(f"    {option.names[-1]}) words='{' '.join(option.choices)}' ;;")
        elif option.value:
            values.append(f"    {'|'.join(option.names)}) return ;;")
    groups = "|".join(" ".join(command.words) for command in root.walk() if command.commands and command.words)
    return f"""# Completion of velandoc for bash.
_velandoc() {{
  local current=${{COMP_WORDS[COMP_CWORD]}} previous=${{COMP_WORDS[COMP_CWORD-1]}} path='' word words=''
  for word in "${{COMP_WORDS[@]:1:COMP_CWORD-1}}"; do
    case $word in
    -*) ;;
    *)
      case $path in
      ''|{groups}) path=${{path:+$path }}$word ;;
      esac ;;
    esac
  done
  COMPREPLY=()
  case $previous in
{chr(10).join(values)}
  *)
    case $path in
{chr(10).join(cases)}
    esac ;;
  esac
  [[ $words ]] && mapfile -t COMPREPLY < <(compgen -W "$words" -- "$current")
}}
complete -o default -F _velandoc velandoc
"""


def visible_options(root, command):
    """Its own, and the program's, which may stand behind every command."""
    own = {option.names[-1]: option for option in command.options}
    return list(own.values()) + [option for option in root.options
                                 if option.names[-1] not in own and "--version" not in option.names]


def zsh_text(text):
    return text.replace("'", "'\\''").replace("[", "\\[").replace("]", "\\]").replace(":", "\\:")


def zsh_option(option):
    names = option.names[-1] if len(option.names) == 1 else "{" + ",".join(option.names) + "}"
    value = ""
    if option.value:
        value = f":{option.value.split(' ')[0]}:" + (f"({' '.join(option.choices)})" if option.choices else "_files")
    quoted = f"'[{zsh_text(option.help)}]{value}'"
    return names + quoted


def zsh_function(root, command):
    name = "_".join(["_velandoc", *command.words])
    lines = [f"{name}() {{"]
    arguments = [zsh_option(option) for option in visible_options(root, command)]
    if command.commands:
        described = " ".join(f"'{sub.words[-1]}:{zsh_text(sub.summary)}'" for sub in command.commands)
        lines += ["  local -a commands", f"  commands=({described})",
                  "  _arguments -C \\", *[f"    {argument} \\" for argument in arguments],
                  "    '1: :->command' '*::argument:->argument'",
                  "  case $state in",
                  "  command) _describe -t commands command commands ;;",
                  f"  argument) (( $+functions[{name}_$words[1]] )) && {name}_$words[1] ;;",
                  "  esac"]
    else:
        lines += ["  _arguments \\", *[f"    {argument} \\" for argument in arguments], "    '*:file:_files'"]
    return "\n".join([*lines, "}"])


def zsh_completion(root):
    functions = "\n\n".join(zsh_function(root, command) for command in root.walk())
    return f"#compdef velandoc\n# Completion of velandoc for zsh.\n\n{functions}\n\n_velandoc \"$@\"\n"


def fish_completion(root):
    lines = ["# Completion of velandoc for fish."]

    def quote(text):
        return "'" + text.replace("\\", "\\\\").replace("'", "\\'") + "'"

    def option_line(condition, option):
        words = ["complete -c velandoc", *condition]
        for name in option.names:
            words.append(f"-l {name[2:]}" if name.startswith("--") else f"-s {name[1:]}")
        if option.value:
            words.append("-x -a " + quote(" ".join(option.choices)) if option.choices else "-r")
        return " ".join([*words, "-d", quote(option.help)])

    lines += [option_line([], option) for option in root.options]
    for command in root.walk():
        seen = " ".join(f"; and __fish_seen_subcommand_from {word}" for word in command.words).lstrip("; and ")
        for sub in command.commands:
            names = " ".join(other.words[-1] for other in command.commands)
            condition = (f"{seen}; and " if seen else "") + f"not __fish_seen_subcommand_from {names}"
            lines.append(f"complete -c velandoc -f -n {quote(condition)} -a {sub.words[-1]} -d {quote(sub.summary)}")
        if command.words:
            lines += [option_line(["-n", quote(seen)], option) for option in command.options]
    return "\n".join(lines) + "\n"


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--command", required=True, help="the velandoc program")
    parser.add_argument("--version", required=True)
    parser.add_argument("--template", type=pathlib.Path, required=True, help="what the man page says beyond the help")
    parser.add_argument("--output", type=pathlib.Path, required=True)
    arguments = parser.parse_args()
    root = Command(arguments.command)
    arguments.output.mkdir(parents=True, exist_ok=True)
    template = arguments.template.read_text(encoding="utf-8")
    for name, text in (("velandoc.1", man_page(root, template, arguments.version)),
                       ("velandoc.bash", bash_completion(root)),
                       ("_velandoc", zsh_completion(root)),
                       ("velandoc.fish", fish_completion(root))):
        (arguments.output / name).write_text(text, encoding="utf-8")


if __name__ == "__main__":
    main()
