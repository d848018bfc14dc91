"""The blocks of a page that come from elsewhere: code from the examples, output from the tool.

A block of code names its source in a comment above it, and is what stands there between the lines
`// [region]` and `// [/region]`:

    <!-- examples/guide/parse.cpp: collector, request -->
    ```cpp
    ...
    ```

A block whose lines begin with `$ ` is a session at the prompt, in the root of the project.
"""

import os
import pathlib
import re
import subprocess
import textwrap

ROOT = pathlib.Path(__file__).resolve().parents[2]
CODE_PAGES = (ROOT / "README.md", ROOT / "docs" / "GUIDE.md")
SESSION_PAGES = (ROOT / "README.md", ROOT / "docs" / "GUIDE.md")

CODE = re.compile(r"^(?:<!-- (?P<source>[^:\n]+): (?P<regions>[^\n]+) -->\n)?```cpp\n(?P<code>.*?)^```$",
                  re.MULTILINE | re.DOTALL)
SESSION = re.compile(r"^```\n(?P<session>\$ .*?)^```$", re.MULTILINE | re.DOTALL)
COMMAND = re.compile(r"^\$ (.*)$", re.MULTILINE)


class Unnamed(Exception):
    """A block of code that does not say where it comes from."""


def region(source, name):
    """The text between the marks of a region, at the margin."""
    text = (ROOT / source).read_text(encoding="utf-8")
    found = re.findall(rf"^ *// \[{re.escape(name)}\]\n(.*?)^ *// \[/{re.escape(name)}\]$", text,
                       re.MULTILINE | re.DOTALL)
    if len(found) != 1:
        raise LookupError(f"{source} has {len(found)} regions called {name}, not one")
    return textwrap.dedent(found[0]).strip("\n") + "\n"


def with_code(page):
    """The page with each block of code as its source has it."""
    def renewed(block):
        if not block["source"]:
            raise Unnamed(block["code"])
        regions = [region(block["source"], name) for name in block["regions"].split(", ")]
        return (f"<!-- {block['source']}: {block['regions']} -->\n```cpp\n"
                + "\n".join(regions) + "```")
    return CODE.sub(renewed, page)


def output_of(command, tool):
    """What a command prints, and behind it what it says on standard error. The tool is found."""
    path = f"{pathlib.Path(tool).resolve().parent}:{os.environ['PATH']}"
    done = subprocess.run(["bash", "-c", command], cwd=ROOT, env={**os.environ, "PATH": path},
                          capture_output=True, text=True, timeout=60, check=False)
    return done.stdout + done.stderr


def with_sessions(page, tool):
    """The page with the output that the commands of its sessions give."""
    def renewed(block):
        parts = [f"$ {command}\n{output_of(command, tool)}"
                 for command in COMMAND.findall(block["session"])]
        return "```\n" + "\n".join(parts) + "```"
    return SESSION.sub(renewed, page)


def renew(pages, renewed):
    for path in pages:
        page = path.read_text(encoding="utf-8")
        path.write_text(renewed(page), encoding="utf-8")
