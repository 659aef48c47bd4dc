#!/usr/bin/env python3
"""The layers of app/ point one way: core <- rules <- engine <- presentation <- desktop, with the
checker beside the engine (it reads rules files as the engine would), and lib/ below them all.
Every `#include "..."` under app/ and lib/ is resolved as the compiler would (the including file's
folder first, then app/, then lib/) and must land in the including file's layer or one it may use.
The layers below the presentation include no SDL, OpenGL, ImGui or fontconfig header.

    check_layers.py SOURCE_DIR     checks the tree, listing every include that points the wrong way
    check_layers.py --self-test    checks the checker on a small tree of right and wrong includes
"""
import pathlib
import re
import sys
import tempfile

# What each folder may include, besides itself.
USES = {
    "lib": set(),
    "core": {"lib"},
    "rules": {"lib", "core"},
    "engine": {"lib", "core", "rules"},
    "checker": {"lib", "core", "rules", "engine"},
    "presentation": {"lib", "core", "rules", "engine"},
    "desktop": {"lib", "core", "rules", "engine", "checker", "presentation"},
}
HEADLESS = {"core", "rules", "engine", "checker"}
WINDOW_HEADERS = ("SDL", "GL/", "imgui", "fontconfig/")
SOURCE_SUFFIXES = {".c", ".cc", ".cpp", ".h", ".hpp"}
QUOTED = re.compile(r'^\s*#\s*include\s*"([^"]+)"')
ANGLED = re.compile(r"^\s*#\s*include\s*<([^>]+)>")


def layer_of(root, path):
    """The layer a file under root belongs to, or None for a file outside app/ and lib/."""
    relative = path.relative_to(root).parts
    if relative[0] == "lib":
        return "lib"
    if relative[0] == "app":
        return relative[1] if len(relative) > 2 else "app"
    return None


def resolve(root, including, name):
    """The file a quoted include names, searched as the build does; None when it is not ours."""
    for folder in (including.parent, root / "app", root / "lib"):
        candidate = folder / name
        if candidate.is_file():
            return candidate.resolve()
    return None


def problems_in(root, path):
    layer = layer_of(root, path)
    where = path.relative_to(root)
    if layer not in USES:
        folder = "a file directly in app/" if layer == "app" else f"app/{layer}"
        yield f"{where}: {folder} is in no layer; give it one in tests/layers/check_layers.py"
        return
    lines = path.read_text(encoding="utf-8", errors="replace").splitlines()
    for number, line in enumerate(lines, start=1):
        angled = ANGLED.match(line)
        if angled and layer in HEADLESS and angled.group(1).startswith(WINDOW_HEADERS):
            yield f"{where}:{number}: includes <{angled.group(1)}>, but {layer} knows no window"
        quoted = QUOTED.match(line)
        if not quoted:
            continue
        target = resolve(root, path, quoted.group(1))
        if target is None:
            continue
        target_layer = layer_of(root, target)
        if target_layer != layer and target_layer not in USES[layer]:
            yield (f"{where}:{number}: includes {target.relative_to(root)}, "
                   f"but {layer} may use only {', '.join(sorted(USES[layer])) or 'itself'}")


def problems(root):
    root = root.resolve()
    found = []
    for top in ("app", "lib"):
        for path in sorted((root / top).rglob("*")):
            if path.suffix in SOURCE_SUFFIXES and path.is_file():
                found.extend(problems_in(root, path))
    return found


# Each case: a file, its text, and the words its one complaint holds (None: no complaint).
SELF_TEST_CASES = [
    ("app/core/Plist.h", "#include <string>\n", None),
    ("app/rules/Game.h", '#include "core/Plist.h"\n', None),
    ("app/engine/Host.h", '#include "rules/Game.h"\n#include "RegularFile.h"\n', None),
    ("app/checker/Check.cpp", '#include "engine/Host.h"\n#include "Check.h"\n', None),
    ("app/checker/Check.h", "", None),
    ("app/presentation/View.cpp", '#include "engine/Host.h"\n', None),
    ("app/desktop/Window.h", '#include "presentation/View.h"\n#include <SDL.h>\n', None),
    ("app/desktop/Window.cpp", '#include "Window.h"\n#include "checker/Check.h"\n', None),
    ("app/presentation/View.h", '#include "checker/Check.h"\n', "presentation/View.h:1: includes app/checker"),
    ("app/core/Events.h", '  # include "engine/Host.h"\n', "core/Events.h:1: includes app/engine/Host.h"),
    ("app/rules/Up.cpp", '#include "desktop/Window.h"\n', "rules/Up.cpp:1: includes app/desktop"),
    ("app/engine/Draw.cpp", "\n#include <GL/gl.h>\n", "engine/Draw.cpp:2: includes <GL/gl.h>"),
    ("app/Loose.cpp", "", "app/Loose.cpp: a file directly in app/ is in no layer"),
    ("app/platform/Old.h", "", "app/platform is in no layer"),
    ("lib/RegularFile.h", "", None),
    ("lib/Sprites.cpp", '#include "RegularFile.h"\n#include "core/Plist.h"\n', "lib/Sprites.cpp:2: includes app/core"),
]


def self_test():
    with tempfile.TemporaryDirectory() as folder:
        root = pathlib.Path(folder)
        for name, text, _ in SELF_TEST_CASES:
            (root / name).parent.mkdir(parents=True, exist_ok=True)
            (root / name).write_text(text, encoding="utf-8")
        found = problems(root)
        failures = []
        for name, _, expected in SELF_TEST_CASES:
            own = [line for line in found if line.startswith(name)]
            if expected is None and own:
                failures.append(f"{name}: unexpected complaint {own}")
            if expected is not None and (len(own) != 1 or expected not in own[0]):
                failures.append(f"{name}: expected one complaint with '{expected}', got {own}")
        for failure in failures:
            print(failure)
        return 1 if failures else 0


def main(arguments):
    if arguments == ["--self-test"]:
        return self_test()
    if len(arguments) != 1:
        print(__doc__.strip())
        return 2
    found = problems(pathlib.Path(arguments[0]))
    for line in found:
        print(line)
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
