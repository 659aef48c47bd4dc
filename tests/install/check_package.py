#!/usr/bin/env python3
"""The Debian package made from a build, checked as the distribution's tools see it.

    check_package.py --cpack CPACK --build DIR --version V --programs a,b

Makes the package with `cpack -G DEB` into a temporary folder, then checks its control fields
(section games, a description, the shared libraries' packages computed into Depends), its files
(the programs in /usr/games, their resources in /usr/share/tolvar) and that lintian finds no error
or warning. Prints the package's size, its Depends line and lintian's full output.
"""

import argparse
import glob
import os
import shutil
import subprocess
import sys
import tempfile


class Failure(Exception):
    pass


def check(condition, message):
    if not condition:
        raise Failure(message)


def output(*command):
    done = subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, timeout=300)
    return done.returncode, done.stdout.decode("utf-8", "replace")


def library_packages(programs):
    """The packages that hold the shared libraries the programs name (their NEEDED entries)."""
    packages = set()
    for program in programs:
        status, dynamic = output("readelf", "--dynamic", program)
        check(status == 0, "readelf cannot read %s" % program)
        status, loaded = output("ldd", program)
        paths = dict(line.split(" => ") for line in loaded.replace("\t", "").splitlines() if " => /" in line)
        for soname in [line.split("[")[1].rstrip("]") for line in dynamic.splitlines() if "(NEEDED)" in line]:
            check(soname in paths, "%s needs %s, which is not found" % (program, soname))
            path = paths[soname].split(" (")[0]
            for candidate in (path, path[4:] if path.startswith("/usr/") else "/usr" + path):
                status, owner = output("dpkg-query", "--search", candidate)
                if status == 0:
                    packages.add(owner.split(":")[0])
                    break
            check(status == 0, "no package holds %s" % path)
    return packages


def check_package(deb, args):
    status, fields = output("dpkg-deb", "--field", deb)
    check(status == 0, "dpkg-deb cannot read %s:\n%s" % (deb, fields))
    control = dict(line.split(": ", 1) for line in fields.splitlines() if ": " in line and not line.startswith(" "))
    for key, value in (("Package", "tolvar"), ("Version", args.version), ("Section", "games")):
        check(control.get(key) == value, "%s is %r, not %r" % (key, control.get(key), value))
    check(len(fields.splitlines()) > 12 and control.get("Description"), "no long description:\n" + fields)
    depends = [d.split()[0] for d in control.get("Depends", "").split(", ")]
    needed = library_packages([os.path.join(args.build, "bin", p) for p in args.programs])
    missing = sorted(needed - set(depends))
    check(needed and not missing, "Depends lacks %s: %s" % (missing, control.get("Depends")))
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


def main():
    parser = argparse.ArgumentParser()
    for option in ("cpack", "build", "version", "programs"):
        parser.add_argument("--" + option, required=True)
    args = parser.parse_args()
    args.programs = args.programs.split(",")
    work = tempfile.mkdtemp(prefix="tolvar-package-")
    try:
        status, log = output(args.cpack, "-G", "DEB", "-B", work, "--config",
                             os.path.join(args.build, "CPackConfig.cmake"))
        check(status == 0, "cpack fails:\n" + log)
        debs = glob.glob(os.path.join(work, "tolvar_*.deb"))
        check(len(debs) == 1, "cpack made %s" % os.listdir(work))
        check_package(debs[0], args)
    except Failure as failure:
        print("FAILED:", failure)
        return 1
    finally:
        shutil.rmtree(work, ignore_errors=True)
    return 0


if __name__ == "__main__":
    sys.exit(main())
