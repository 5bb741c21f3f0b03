#!/usr/bin/env python3
"""Runs what a Markdown page shows.

  samples.py PAGE --source ROOT --build BUILD --compiler CXX

In a fresh folder with a recording night.edf in it, from the top of the page to its end:
- `console` blocks: each line that begins with "$ " is run by bash, with the command on the path and
  with what a trailing "\\" joins to it; it must succeed. Lines below it are what it must print; "..."
  stands for anything.
- `cpp` blocks: those of the page are one program, in their order: lines that include come first,
  the rest is the body of main(). A block with a main() of its own is a program by itself. It is
  compiled against the build and run.
- a comment right before a block says more of it: <!-- file: NAME --> puts the block into that file,
  <!-- from: PATH --> says that the block stands in that file of the repository, <!-- not run: WHY -->
  leaves it alone.
Links into the repository must lead somewhere, and tests that a page names (`Suite.Case`) must exist.
"""
import argparse
import os
import pathlib
import re
import subprocess
import sys
import tempfile
import textwrap

BLOCK = re.compile(r"^(?: *<!-- *(?P<mark>[a-z ]+): *(?P<of>.*?) *-->\n)?"
                   r"(?P<indent> *)```(?P<kind>\w*)\n(?P<text>.*?)^(?P=indent)```$", re.M | re.S)
class Failure(Exception):
    pass


def expression(lines):
    """What a command must print, as an expression; a line "..." is any lines."""
    parts = []
    for line in lines:
        if line.strip() == "...":
            parts.append(r"(?:.*\n)*?")
        else:
            parts.append(".*".join(re.escape(part) for part in line.rstrip().split("...")) + r" *\n")
    return re.compile("".join(parts))


def run_console(text, run):
    command, printed = None, []

    def finish():
        if command is None:
            return
        out = run(["bash", "-euo", "pipefail", "-c", command])
        if printed and not expression(printed).fullmatch(out):
            raise Failure(f"$ {command}\nprints\n{out}\nand not\n" + "\n".join(printed))

    joins = False
    for line in text.splitlines():
        if joins:
            command += "\n" + line
        elif line.startswith("$ "):
            finish()
            command, printed = line[2:], []
        else:
            printed.append(line)
            continue
        joins = line.endswith("\\")
    finish()


def program(blocks):
    """One source of several fragments."""
    includes, body = [], []
    for block in blocks:
        for line in block.splitlines():
            (includes if line.startswith("#include") else body).append(line)
    if not any("kvsig.h" in line for line in includes):
        includes.append("#include <kvsig/kvsig.h>")
    return "\n".join(dict.fromkeys(includes)) + "\nint main() {\n" + "\n".join(body) + "\n}\n"


def check_links(page, text, root):
    for target in re.findall(r"\]\(([^)#:]+)(?:#[^)]*)?\)", re.sub(r"```.*?```", "", text, flags=re.S)):
        if not (page.parent / target).exists():
            raise Failure(f"leads nowhere: {target}")


def check_tests(text, root):
    cases = set()
    for source in root.glob("tests/**/*.cpp"):
        cases.update(re.findall(r"^(?:TYPED_)?TEST(?:_[FP])?\(\s*(\w+),\s*(\w+)\)", source.read_text(), re.M))
    for named in re.findall(r"`([A-Z]\w*)\.([A-Z]\w*)`", re.sub(r"```.*?```", "", text, flags=re.S)):
        if named not in cases:
            raise Failure("no such test: " + ".".join(named))


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("page", type=pathlib.Path)
    parser.add_argument("--source", type=pathlib.Path)
    parser.add_argument("--build", type=pathlib.Path)
    parser.add_argument("--compiler")
    options = parser.parse_args()
    environment = dict(os.environ, PATH=f"{options.build}/bin:{os.environ['PATH']}", LC_ALL="C.UTF-8")

    with tempfile.TemporaryDirectory() as folder:
        def run(arguments):
            done = subprocess.run(arguments, cwd=folder, env=environment, text=True,
                                  capture_output=True, stdin=subprocess.DEVNULL)
            if done.returncode != 0:
                raise Failure(f"{arguments[-1]}\n{done.returncode}: {done.stdout}{done.stderr}")
            return done.stdout

        def run_cpp(source):
            (pathlib.Path(folder) / "sample.cpp").write_text(source)
            run([options.compiler, "-std=c++20", "-Wall", "-Wextra", "-Werror", "-I", options.source,
                 "sample.cpp", "-o", "sample", "-L", f"{options.build}/lib", "-lkvsig001",
                 f"-Wl,-rpath,{options.build}/lib"])
            run(["./sample"])

        text = options.page.read_text()
        fragments = []
        try:
            check_links(options.page, text, options.source)
            check_tests(text, options.source)
            run(["kvsig", "synth", "-q", "-o", "night.edf", "--duration", "60"])
            for block in BLOCK.finditer(text):
                mark, of, kind, sample = block.group("mark", "of", "kind", "text")
                sample = textwrap.dedent(sample)
                if mark == "not run":
                    continue
                if mark == "from":
                    if sample not in (options.source / of).read_text():
                        raise Failure(f"is not what stands in {of}:\n{sample}")
                elif mark == "file":
                    (pathlib.Path(folder) / of).write_text(sample)
                elif kind == "console":
                    run_console(sample, run)
                elif kind == "sh":
                    run(["bash", "-euo", "pipefail", "-c", sample])
                elif kind == "cpp" and "int main(" in sample:
                    run_cpp(sample)
                elif kind == "cpp":
                    fragments.append(sample)
            if fragments:
                run_cpp(program(fragments))
        except Failure as failure:
            sys.exit(f"{options.page}: {failure}")


if __name__ == "__main__":
    main()
