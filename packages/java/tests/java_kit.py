"""What the tests of the Java package share beside kovadx_kit.py: the Java below the home folder, and the test's classes.

Usage of each: TEST.py --classes FOLDER --home FOLDER
"""
import argparse
import pathlib
import sys

ROOT = pathlib.Path(__file__).resolve().parents[3]
sys.path.insert(0, str(ROOT / "programs" / "kovadx"))

from kovadx_kit import EXPECTED, PATIENCE, PENGUINS, KovadxTest, options, run_tests  # noqa: E402, F401

CLASSES = argparse.Namespace()  # Its `folder` is where the build left the test's classes.


def home():
    return options.home


def java():
    return str(home() / "JRE" / "bin" / "java")


def java_environment(environment):
    """Without the options of a developer's own, which Java would tell of on its streams."""
    own = ("JAVA_TOOL_OPTIONS", "JDK_JAVA_OPTIONS", "_JAVA_OPTIONS")
    return {name: value for name, value in environment.items() if name not in own}


def run_java_tests(tests):
    parser = argparse.ArgumentParser()
    parser.add_argument("--classes", type=pathlib.Path, required=True, dest="folder")
    _, sys.argv[1:] = parser.parse_known_args(namespace=CLASSES)
    run_tests(tests, [])
