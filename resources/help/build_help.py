#!/usr/bin/env python3
"""Builds the help from the topic pages: the compiled help file, and a string table with the texts of the popups.

    build_help.py --topics FOLDER --work FOLDER --chm FILE --strings FILE --chmcmd PROGRAM --chmls PROGRAM

Any fault in the pages fails the build.
"""

import argparse
import pathlib
import shutil
import subprocess
import sys

import project
import topic_pages
from chm_contexts import ChmError, repair_contexts

PROJECT = "tervanfx.hhp"
COMPILED = "tervanfx.chm"


def lay_out_project(pages, source, work):
    """A folder with everything the compiler reads."""
    shutil.rmtree(work, ignore_errors=True)
    shutil.copytree(source, work)
    other_files = [path.name for path in sorted(source.iterdir()) if path.name not in pages]
    (work / PROJECT).write_text(project.project(pages, other_files))
    (work / "tervanfx.hhc").write_text(project.contents(pages))
    (work / "tervanfx.hhk").write_text(project.index(pages))


def compile_help(pages, work, chmcmd, chmls):
    """The compiler's exit code is 0 whatever happens: only what it wrote tells."""
    compiled = work / COMPILED
    run = subprocess.run([chmcmd, PROJECT], cwd=work, text=True, stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
    if not compiled.is_file() or compiled.read_bytes()[:4] != b"ITSF":
        raise ChmError(f"{chmcmd} made no help file:\n{run.stdout}")
    repair_contexts(compiled, {page.context: file for file, page in pages.items() if page.context is not None}, chmls)
    return compiled


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n")[0])
    for option in ("topics", "work", "chm", "strings"):
        parser.add_argument(f"--{option}", type=pathlib.Path, required=True)
    for option in ("chmcmd", "chmls"):
        parser.add_argument(f"--{option}", required=True)
    arguments = parser.parse_args()
    try:
        pages = topic_pages.read_topics(arguments.topics)
        lay_out_project(pages, arguments.topics, arguments.work)
        compiled = compile_help(pages, arguments.work, arguments.chmcmd, arguments.chmls)
    except (topic_pages.HelpError, ChmError) as error:
        sys.exit(f"help: {error}")
    shutil.copyfile(compiled, arguments.chm)
    arguments.strings.write_text(project.popup_strings(pages))


if __name__ == "__main__":
    main()
