#!/usr/bin/env python3
"""The Debian package made from a build, checked as the distribution's tools see it.

    check_package.py --cpack CPACK --build DIR --source DIR --version V --programs a,b --hardened GNU|Clang|OFF

Makes the package with `cpack -G DEB` into a temporary folder, then checks its control fields
(section games, a description, the shared libraries' packages computed into Depends), its files
(the programs in /usr/games, their resources in /usr/share/tolvar), and that lintian finds no error or
warning and nothing about hardening (lintian reads the copyright, the changelog and the programs; the
install check reads the documents as installed). Prints the package's size, its Depends line and
lintian's full output.
"""

import argparse
import glob
import os
import subprocess
import sys

from temporary_folder import check, checked_in_temporary_folder



def output(*command):
    done = subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, timeout=300)
    return done.returncode, done.stdout.decode("utf-8", "replace")


def owners(paths):
    """The package that holds each library file, whether dpkg lists it under /usr or not."""
    def other(path):
        return path[4:] if path.startswith("/usr/") else "/usr" + path
    _, found = output("dpkg-query", "--search", *sorted({v for p in paths for v in (p, other(p))}))
    held = {line.split(": ", 1)[1]: line.split(":")[0] for line in found.splitlines() if ": /" in line}
    lost = [p for p in paths if p not in held and other(p) not in held]
    check(not lost, "no package holds %s" % lost)
    return {p: held.get(p) or held[other(p)] for p in paths}


def library_packages(programs):
    """The packages of the libraries the programs name (NEEDED), and of all they load."""
    named, loaded = [], []
    for program in programs:
        status, dynamic = output("readelf", "--dynamic", program)
        check(status == 0, "readelf cannot read %s" % program)
        status, listing = output("ldd", program)
        paths = {name: where.split(" (")[0] for name, where in (
            line.strip().split(" => ") for line in listing.splitlines() if " => /" in line)}
        for soname in [line.split("[")[1].rstrip("]") for line in dynamic.splitlines() if "(NEEDED)" in line]:
            check(soname in paths, "%s needs %s, which is not found" % (program, soname))
            named.append(paths[soname])
        loaded += paths.values()
    held = owners(loaded)
    return {held[p] for p in named}, set(held.values())


def installed_with(depends):
    """Every package apt installs with the given ones on a machine that has none of them."""
    status, tree = output("apt-cache", "depends", "--recurse", "--no-recommends", "--no-suggests", "--no-conflicts",
                          "--no-breaks", "--no-replaces", "--no-enhances", *depends)
    check(status == 0, "apt-cache cannot follow %s:\n%s" % (depends, tree[-2000:]))
    return {line.split(":")[0] for line in tree.splitlines() if line and not line.startswith(" ")}


def check_package(deb, args):
    status, fields = output("dpkg-deb", "--field", deb)
    check(status == 0, "dpkg-deb cannot read %s:\n%s" % (deb, fields))
    control = dict(line.split(": ", 1) for line in fields.splitlines() if ": " in line and not line.startswith(" "))
    for key, value in (("Package", "tolvar"), ("Version", args.version), ("Section", "games")):
        check(control.get(key) == value, "%s is %r, not %r" % (key, control.get(key), value))
    check(control.get("Description"), "no description:\n" + fields)
    check(len(fields.splitlines()) > 12, "no long description:\n" + fields)
    check("example." not in control.get("Homepage", ""), "the package's home page is %r" % control.get("Homepage"))
    depends = [d.split()[0] for d in control.get("Depends", "").split(", ")]
    named, loaded = library_packages([os.path.join(args.build, "bin", p) for p in args.programs])
    missing = sorted(named - set(depends))
    check(named and not missing, "Depends lacks %s: %s" % (missing, control.get("Depends")))
    # On a fresh machine, apt brings every library the programs load, and the OpenGL driver.
    missing = sorted((loaded | {"libgl1-mesa-dri"}) - installed_with(depends))
    check(not missing, "installing the package would not bring %s" % missing)
    status, listing = output("dpkg-deb", "--contents", deb)
    files = {line.split()[-1].lstrip(".") for line in listing.splitlines()}
    wanted = ["/usr/games/%s" % p for p in args.programs] + [
        "/usr/share/tolvar/Nebula.png", "/usr/share/tolvar/Spikes.dxf", "/usr/share/doc/tolvar/copyright"]
    check(all(f in files for f in wanted), "the package lacks %s" % [f for f in wanted if f not in files])
    check(not any(f.startswith("/usr/bin/") for f in files), "programs left in /usr/bin")
    print("size: %d bytes" % os.path.getsize(deb))
    print("Depends:", control.get("Depends"))
    status, report = output("lintian", "--pedantic", "--display-info", "--fail-on", "error,warning", deb)
    print("lintian:\n" + report)
    check(status == 0, "lintian finds errors or warnings (status %d)" % status)
    if args.hardened == "GNU":  # clang leaves printf and its kind unchecked, which lintian tells
        check("hardening-" not in report, "lintian finds the programs not hardened")


def main():
    parser = argparse.ArgumentParser()
    for option in ("cpack", "build", "source", "version", "programs", "hardened"):
        parser.add_argument("--" + option, required=True)
    args = parser.parse_args()
    args.programs = args.programs.split(",")

    def make_and_check(work):
        status, log = output(args.cpack, "-G", "DEB", "-B", work, "--config",
                             os.path.join(args.build, "CPackConfig.cmake"))
        check(status == 0, "cpack fails:\n" + log)
        debs = glob.glob(os.path.join(work, "tolvar_*.deb"))
        check(len(debs) == 1, "cpack made %s" % os.listdir(work))
        check_package(debs[0], args)

    return checked_in_temporary_folder("tolvar-package-", make_and_check)


if __name__ == "__main__":
    sys.exit(main())
