#!/usr/bin/env python3
"""The release notes tool on NEWS files it must refuse, and on a good one.

    check_news.py --tool packaging/news.py

A broken NEWS stops the build with the file, the line and the problem instead of making metadata
or a changelog that hides a release; a good one gives every change of every release.
"""

import argparse
import os
import subprocess
import sys

from temporary_folder import check, checked_in_temporary_folder

GOOD = """Introduction, which is not a release.

0.2 (2026-02-01)
  - Faster & <better> boards,
    on two lines.

0.1 (2026-01-01)
  - First.
"""

# (what is wrong, NEWS, the project's version, what the message must say)
REFUSED = [
    ("a version ahead of NEWS", GOOD, "0.3", "the newest release is 0.2, but the project is at version 0.3"),
    ("a line that is neither", GOOD.replace("  - First.", "First."), "0.2", "NEWS:8: expected a change"),
    ("dates out of order", GOOD.replace("2026-01-01", "2026-03-01"), "0.2", "NEWS:7: release 0.1 is dated after"),
    ("a release without a change", GOOD.replace("  - First.\n", ""), "0.2", "releases without a change: 0.1"),
    ("a date that does not exist", GOOD.replace("2026-02-01", "2026-02-30"), "0.2",
     "NEWS:3: 2026-02-30: day is out of range"),
    ("no release at all", "Nothing yet.\n", "0.2", "lists no release"),
]


def run(tool, *arguments):
    return subprocess.run([sys.executable, tool] + list(arguments), stdout=subprocess.PIPE,
                          stderr=subprocess.PIPE, timeout=60)


def check_notes(tool, work):
    news, template, out = (os.path.join(work, name) for name in ("NEWS", "template.xml", "out"))
    for problem, text, version, told in REFUSED:
        with open(news, "w", encoding="utf-8") as f:
            f.write(text)
        for kind, source in (("metainfo", template), ("changelog", "Someone <someone@tolvar.test>")):
            if os.path.exists(out):
                os.remove(out)
            with open(template, "w", encoding="utf-8") as f:
                f.write("<component>\n  <releases/>\n</component>\n")
            done = run(tool, kind, news, version, source, out)
            err = done.stderr.decode("utf-8", "replace")
            check(done.returncode == 1 and told in err and not os.path.exists(out),
                  "%s, %s: status %d, wrote %s, said %r" % (problem, kind, done.returncode, os.path.exists(out), err))
    with open(news, "w", encoding="utf-8") as f:
        f.write(GOOD)
    check(run(tool, "metainfo", news, "0.2", template, out).returncode == 0, "a good NEWS is refused")
    with open(out, encoding="utf-8") as f:
        xml = f.read()
    check('<release version="0.2" date="2026-02-01">' in xml and "<li>Faster &amp; &lt;better&gt; boards, on two "
          "lines.</li>" in xml and xml.index('"0.2"') < xml.index('"0.1"'), "the releases in the metadata:\n" + xml)
    check(run(tool, "changelog", news, "0.2", "Someone <someone@tolvar.test>", out).returncode == 0,
          "a good NEWS makes no changelog")
    with open(out, encoding="utf-8") as f:
        changelog = f.read()
    check(changelog.startswith("tolvar (0.2) unstable; urgency=medium\n\n  * Faster & <better> boards, on two lines.\n")
          and " -- Someone <someone@tolvar.test>  Sun, 01 Feb 2026 12:00:00 +0000\n" in changelog
          and "tolvar (0.1)" in changelog, "the changelog:\n" + changelog)
    print("ok: %d broken NEWS files refused, a good one listed in the metadata and the changelog" % len(REFUSED))


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--tool", required=True)
    tool = parser.parse_args().tool
    return checked_in_temporary_folder("tolvar-news-", lambda work: check_notes(tool, work))


if __name__ == "__main__":
    sys.exit(main())
