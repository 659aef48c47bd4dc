#!/usr/bin/env python3
"""Makes the release notes of the metadata and the Debian package from the NEWS file.

    news.py metainfo NEWS VERSION TEMPLATE OUTPUT
        writes TEMPLATE with its line "<releases/>" replaced by every release of NEWS
    news.py changelog NEWS VERSION MAINTAINER OUTPUT
        writes the Debian changelog of the package tolvar, one entry a release

NEWS lists the releases newest first, each a line "VERSION (YYYY-MM-DD)" followed by its changes,
one "  - " item each, continued on lines indented by four spaces; lines before the first release
are an introduction. The newest release must be VERSION, the project's own, so that a new version
is never packaged without its notes.
"""

import datetime
import email.utils
import re
import sys
from xml.sax.saxutils import escape

PACKAGE = "tolvar"
HEADING = re.compile(r"^(\d+(?:\.\d+)+) \((\d{4}-\d{2}-\d{2})\)$")
ITEM, CONTINUED = "  - ", "    "
RELEASES_MARK = "  <releases/>\n"
CHANGELOG_WIDTH = 78   # Debian's changelog lines stay under 80 columns
RELEASE_TIME = datetime.time(12, 0, tzinfo=datetime.timezone.utc)


class Problem(Exception):
    pass


def releases(path):
    """[(version, date, [change, ...])], newest first, as NEWS gives them."""
    found = []
    with open(path, encoding="utf-8") as f:
        for number, line in enumerate(f, start=1):
            line = line.rstrip("\n")
            heading = HEADING.match(line)
            where = "%s:%d" % (path, number)
            if heading:
                try:
                    date = datetime.date.fromisoformat(heading.group(2))
                except ValueError as problem:
                    raise Problem("%s: %s: %s" % (where, heading.group(2), problem)) from None
                if found and date > found[-1][1]:
                    raise Problem("%s: release %s is dated after the one above it" % (where, heading.group(1)))
                found.append((heading.group(1), date, []))
            elif not found or not line.strip():
                continue
            elif line.startswith(ITEM):
                found[-1][2].append(line[len(ITEM):].strip())
            elif line.startswith(CONTINUED) and found[-1][2]:
                found[-1][2][-1] += " " + line.strip()
            else:
                raise Problem('%s: expected a change ("  - ...") or a release ("1.2 (2026-01-31)"): %r'
                              % (where, line))
    if not found:
        raise Problem("%s lists no release" % path)
    empty = [version for version, _, changes in found if not changes]
    if empty:
        raise Problem("%s: releases without a change: %s" % (path, ", ".join(empty)))
    return found


def metainfo_releases(notes):
    lines = ["  <releases>"]
    for version, date, changes in notes:
        lines += ['    <release version="%s" date="%s">' % (version, date.isoformat()),
                  "      <description>", "        <ul>"]
        lines += ["          <li>%s</li>" % escape(change) for change in changes]
        lines += ["        </ul>", "      </description>", "    </release>"]
    return "\n".join(lines + ["  </releases>"]) + "\n"


def wrapped(text, first, rest):
    lines, line = [], first
    for word in text.split():
        if len(line) + len(word) + 1 > CHANGELOG_WIDTH and line.strip() not in ("", "*"):
            lines.append(line.rstrip())
            line = rest
        line += word + " "
    return lines + [line.rstrip()]


def changelog(notes, maintainer):
    entries = []
    for version, date, changes in notes:
        when = email.utils.format_datetime(datetime.datetime.combine(date, RELEASE_TIME))
        body = [line for change in changes for line in wrapped(change, "  * ", "    ")]
        entries.append("%s (%s) unstable; urgency=medium\n\n%s\n\n -- %s  %s\n"
                       % (PACKAGE, version, "\n".join(body), maintainer, when))
    return "\n".join(entries)


def main(argv):
    if len(argv) != 6 or argv[1] not in ("metainfo", "changelog"):
        sys.stderr.write(__doc__)
        return 2
    kind, news, version, source, output = argv[1:]
    try:
        notes = releases(news)
        if notes[0][0] != version:
            raise Problem("%s: the newest release is %s, but the project is at version %s"
                          % (news, notes[0][0], version))
        if kind == "metainfo":
            with open(source, encoding="utf-8") as f:
                template = f.read()
            if template.count(RELEASES_MARK) != 1:
                raise Problem("%s has no line %r to put the releases in" % (source, RELEASES_MARK.strip()))
            text = template.replace(RELEASES_MARK, metainfo_releases(notes))
        else:
            text = changelog(notes, source)
    except (OSError, Problem) as problem:
        sys.stderr.write("news.py: %s\n" % problem)
        return 1
    with open(output, "w", encoding="utf-8") as f:
        f.write(text)
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv))
