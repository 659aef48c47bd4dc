#!/usr/bin/env python3
"""The Debian package made from a build, checked as the distribution's tools see it.

    check_package.py --cpack CPACK --build DIR --source DIR --version V --programs a,b --hardened GNU|Clang|OFF

Makes the package with `cpack -G DEB` into a temporary folder, then checks its control fields (section games,
a description, Depends computed from the shared libraries and bringing the OpenGL driver the game loads), its
files (the programs in /usr/games, their resources in /usr/share/tolvar), and that lintian finds no error or
warning and nothing about hardening (lintian reads the copyright, the changelog and the programs; the install
check reads the documents as installed). Prints the package's size, its Depends line and lintian's output.
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


def check_package(deb, args):
    status, fields = output("dpkg-deb", "--field", deb)
    check(status == 0, "dpkg-deb cannot read %s:\n%s" % (deb, fields))
    control = dict(line.split(": ", 1) for line in fields.splitlines() if ": " in line and not line.startswith(" "))
    wanted = {"Package": "tolvar", "Version": args.version, "Section": "games"}
    check({k: control.get(k) for k in wanted} == wanted, "the control fields:\n" + fields)
    check(len(fields.splitlines()) > 12, "no long description:\n" + fields)
    check("example." not in control.get("Homepage", ""), "the package's home page is %r" % control.get("Homepage"))
    depends = [d.split()[0] for d in control.get("Depends", "").split(", ")]
    check("libc6" in depends, "Depends is not computed from the programs' libraries: %s" % control.get("Depends"))
    check(any(d.startswith("libsdl2-mixer") for d in depends), "Depends lacks the sound library: %s" % depends)
    # On a fresh machine, apt brings the OpenGL driver, which the game loads without naming it.
    status, tree = output("apt-cache", "depends", "--recurse", "--no-recommends", "--no-suggests", "--no-conflicts",
                          "--no-breaks", "--no-replaces", "--no-enhances", *depends)
    check(status == 0, "apt-cache cannot follow %s:\n%s" % (depends, tree[-2000:]))
    check("\nlibgl1-mesa-dri\n" in tree, "installing the package would not bring the OpenGL driver")
    status, listing = output("dpkg-deb", "--contents", deb)
    files = {line.split()[-1].lstrip(".") for line in listing.splitlines()}
    wanted = ["/usr/games/%s" % p for p in args.programs] + [
        "/usr/share/tolvar/Nebula.png", "/usr/share/tolvar/Spikes.dxf", "/usr/share/tolvar/sounds/removal.wav",
        "/usr/share/doc/tolvar/copyright"]
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
