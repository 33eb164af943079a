"""What the checks share: the project's files, and how a check ends."""
import pathlib
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parents[2]


def files(*suffixes):
    """Files that git tracks or would track; all files outside build folders where there is no git."""
    try:
        names = subprocess.run(["git", "-C", ROOT, "ls-files", "-z", "--cached", "--others", "--exclude-standard"],
                               check=True, capture_output=True, text=True).stdout.split("\0")
        paths = [ROOT / name for name in names if name]
    except (OSError, subprocess.CalledProcessError):
        paths = [path for path in ROOT.rglob("*")
                 if not path.relative_to(ROOT).parts[0].startswith(("build", ".git"))]
    return sorted(path for path in paths if path.is_file() and (not suffixes or path.name.endswith(suffixes)))


def name(path):
    return path.relative_to(ROOT).as_posix()


def finish(problems, checked):
    """Prints each problem on a line; fails too where there was nothing to look at."""
    for problem in problems:
        print(problem)
    print(f"{checked} checked, {len(problems)} wrong")
    sys.exit(1 if problems or not checked else 0)
