"""What the install checks share: their failures, and a temporary folder that is always removed."""

import os
import shutil
import sys
import tempfile

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "e2e"))
from tolvar_driver import Failure, check  # noqa: E402,F401


def checked_in_temporary_folder(prefix, checks):
    """Runs checks(folder) in a new temporary folder and removes the folder afterwards.

    Returns the exit status: 0 when every check holds, else 1 after printing the failure."""
    folder = tempfile.mkdtemp(prefix=prefix)
    try:
        checks(folder)
    except Failure as failure:
        print("FAILED:", failure)
        return 1
    finally:
        shutil.rmtree(folder, ignore_errors=True)
    return 0
