"""Checks of what an install and the package both carry: the licence, the documentation, the
programs' hardening, and no address of a placeholder host."""

import gzip
import os
import re
import subprocess

from temporary_folder import check

DOC_LINK = re.compile(r"\]\(([^):/#]+)\)")
PLACEHOLDER_URL = re.compile(rb"https?://[^\s\"'<>]*\bexample\.(?:org|com|net)\b")
TEXT_SUFFIXES = (".xml", ".desktop", ".md", ".dict", ".svg", "copyright")


def paragraphs(text):
    return [p for p in re.split(r"\n\s*\n", text.strip()) if p.strip()]


def fields(paragraph):
    """A DEP-5 paragraph's fields; continuation lines (starting with a space) join their field."""
    found, name = {}, None
    for line in paragraph.splitlines():
        if line.startswith((" ", "\t")) and name:
            found[name] += "\n" + line.strip()
        else:
            name, _, value = line.partition(":")
            found[name] = value.strip()
    return found


def words(text):
    """The words of a licence text, whatever its line breaks, indentation and DEP-5 dots."""
    return re.findall(r"[A-Za-z]+", re.sub(r"(?m)^\s*\.\s*$", "", text))


def check_copyright(path, source):
    """A machine-readable copyright file whose every licence is free and written out, the
    project's own being the Expat text of LICENSE at the top of the source tree."""
    with open(path, encoding="utf-8") as f:
        parts = [fields(p) for p in paragraphs(f.read())]
    check(parts[0].get("Format", "").startswith("https://www.debian.org/doc/packaging-manuals/copyright-format/1.0"),
          "%s is not in the machine-readable copyright format: %r" % (path, parts[0].get("Format")))
    stanzas = [p for p in parts[1:] if "Files" in p]
    texts = {p["License"].split("\n")[0]: p["License"] for p in parts[1:] if "Files" not in p}
    check(stanzas and stanzas[0]["Files"] == "*" and stanzas[0].get("License") == "Expat",
          "%s: the first Files paragraph is not Files: * under Expat: %s" % (path, stanzas[:1]))
    used = {name.strip() for p in stanzas for name in re.split(r"\bor\b|\band\b", p.get("License", ""))}
    unwritten = sorted(used - set(texts))
    check(not unwritten, "%s names licences it does not write out: %s" % (path, unwritten))
    check(all(p.get("Copyright") for p in stanzas), "%s has a Files paragraph without Copyright" % path)
    with open(os.path.join(source, "LICENSE"), encoding="utf-8") as f:
        licence = f.read()
    check(licence.startswith("MIT License") and "The Tolvar developers" in licence,
          "LICENSE is not the MIT licence of the Tolvar developers")
    expat = words(texts.get("Expat", ""))[1:]
    check(expat and " ".join(expat) in " ".join(words(licence)),
          "%s: the Expat text differs from LICENSE" % path)


def gunzipped(path):
    """The contents of a file compressed as gzip -n does: without the file's name and time stamp."""
    with open(path, "rb") as f:
        head = f.read(10)
    check(head[:3] == b"\x1f\x8b\x08", "%s is not compressed with gzip" % path)
    check(head[3] & 0x08 == 0, "%s keeps the file's name (not gzip -n)" % path)
    check(head[4:8] == b"\0\0\0\0", "%s keeps a time stamp (not gzip -n)" % path)
    with gzip.open(path, "rb") as f:
        return f.read()


def check_changelog(path, source):
    """The changelog made from NEWS: compressed without name and time stamp, one entry for each
    release of NEWS in its order, as dpkg reads it."""
    text = gunzipped(path)
    done = subprocess.run(["dpkg-parsechangelog", "--file", "-", "--all", "--format", "rfc822"], input=text,
                          stdout=subprocess.PIPE, stderr=subprocess.PIPE, timeout=60)
    check(done.returncode == 0 and not done.stderr.strip(), "dpkg-parsechangelog on %s: %s"
          % (path, done.stderr.decode("utf-8", "replace")))
    versions = re.findall(r"(?m)^Version: (\S+)$", done.stdout.decode("utf-8"))
    releases = news_releases(source)
    check(len(releases) >= 3 and versions == releases, "%s lists the releases %s, NEWS %s" % (path, versions, releases))


def news_releases(source):
    """The versions NEWS lists, newest first."""
    with open(os.path.join(source, "NEWS"), encoding="utf-8") as f:
        return re.findall(r"(?m)^(\d+(?:\.\d+)+) \(\d{4}-\d{2}-\d{2}\)$", f.read())


def check_documentation(folder, source):
    """The player's and the rules author's pages, and every picture and page they link to,
    installed as they are in docs/."""
    pages = ["desktop.md", "writing-games.md"]
    wanted = list(pages)
    for page in pages:
        with open(os.path.join(source, "docs", page), encoding="utf-8") as f:
            wanted += DOC_LINK.findall(f.read())
    check(any(w.endswith(".png") for w in wanted), "the pages link no picture: %s" % wanted)
    for name in wanted:
        installed = os.path.join(folder, name)
        check(os.path.isfile(installed), "%s is not installed in %s" % (name, folder))
        with open(installed, "rb") as f, open(os.path.join(source, "docs", name), "rb") as g:
            check(f.read() == g.read(), "%s differs from docs/%s" % (installed, name))
    return wanted


def readelf(*arguments):
    done = subprocess.run(("readelf", "-W") + arguments, stdout=subprocess.PIPE, stderr=subprocess.PIPE, timeout=60)
    check(done.returncode == 0, "readelf %s: %s" % (" ".join(arguments), done.stderr.decode("utf-8", "replace")))
    return done.stdout.decode("utf-8", "replace")


def check_hardening(programs, compiler):
    """Each program binds every symbol at start into a read-only relocation table, and calls the
    stack guard and the checked versions of string and memory functions. g++ checks printf and
    its kind in every program; clang only calls whose buffer size it knows, so with clang the
    programs together call one at least."""
    fortified_in_all = set()
    for program in programs:
        dynamic = readelf("--dynamic", program)
        check("(BIND_NOW)" in dynamic or re.search(r"\(FLAGS\)\s+.*\bBIND_NOW\b", dynamic)
              or re.search(r"\(FLAGS_1\)\s+Flags:.*\bNOW\b", dynamic),
              "%s is not linked with -z now (no BIND_NOW):\n%s" % (program, dynamic))
        check(re.search(r"^\s*GNU_RELRO\b", readelf("--program-headers", program), re.M),
              "%s has no GNU_RELRO segment (-z relro)" % program)
        symbols = set(re.findall(r"\b(__\w+?_chk(?:_fail)?)\b", readelf("--dyn-syms", program)))
        fortified = sorted(s for s in symbols if s != "__stack_chk_fail")
        fortified_in_all.update(fortified)
        check(fortified or compiler != "GNU", "%s imports no checked function (_FORTIFY_SOURCE): %s"
              % (program, sorted(symbols)))
        check("__stack_chk_fail" in symbols, "%s has no stack guard (-fstack-protector-strong)" % program)
        shown = fortified[:4] + ["__stack_chk_fail"]
        print("  %s: BIND_NOW, GNU_RELRO, %s" % (os.path.basename(program), ", ".join(shown)))
    check(fortified_in_all, "the programs import no checked function (_FORTIFY_SOURCE)")


def check_no_placeholder_urls(root):
    """No installed text points at a placeholder host."""
    found = []
    for folder, _, names in os.walk(root):
        for name in names:
            path = os.path.join(folder, name)
            if name.endswith(".gz"):
                with gzip.open(path, "rb") as f:
                    data = f.read()
            elif name.endswith(TEXT_SUFFIXES) and not os.path.islink(path):
                with open(path, "rb") as f:
                    data = f.read()
            else:
                continue
            found += ["%s: %s" % (os.path.relpath(path, root), m.decode()) for m in PLACEHOLDER_URL.findall(data)]
    check(not found, "addresses of a placeholder host installed:\n" + "\n".join(found))
