"""What every Tolvar tool answers to --version: its own name and the game's version, the one the
build gives every program (the VERSION of the project in the top CMakeLists.txt).

A tool in tools/NAME/ finds this module one folder up:

    sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), ".."))
    from tool_version import add_version_option
"""

import os
import re

TOP_CMAKE_LISTS = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "CMakeLists.txt")
PROJECT_VERSION = re.compile(r"^project\(\s*Tolvar\s+VERSION\s+([0-9][0-9.]*)", re.M)


def tolvar_version():
    """The game's version ("0.1"), read from the top CMakeLists.txt."""
    with open(TOP_CMAKE_LISTS, encoding="utf-8") as f:
        found = PROJECT_VERSION.search(f.read())
    if not found:
        raise SystemExit("%s names no project version" % os.path.normpath(TOP_CMAKE_LISTS))
    return found.group(1)


def add_version_option(parser):
    """--version on an argparse parser: prints "PROGRAM VERSION" and ends with status 0."""
    parser.add_argument("--version", action="version", version="%(prog)s " + tolvar_version(),
                        help="show the version and exit")
