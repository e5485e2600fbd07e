"""Finds the build and starts sample sites for the tests.

ORV_BUILD_DIR names the build folder (default: the one holding the module),
whose bin/ has the tool and the sample site.
"""

import os
import pathlib
import subprocess
import tempfile

import orvwebpage
import pytest

SOURCE_DIR = pathlib.Path(__file__).resolve().parents[2]
BUILD_DIR = pathlib.Path(
    os.environ.get("ORV_BUILD_DIR", pathlib.Path(orvwebpage.__file__).resolve().parents[1]))
BIN_DIR = BUILD_DIR / "bin"
DATA_DIR = SOURCE_DIR / "tests" / "data" / "real"
EXAMPLES_DIR = SOURCE_DIR / "python" / "examples"


class SampleSite:
    """orvwebpage-sample-site on a free loopback port, with a request log."""

    def __init__(self, *args):
        self.dir = tempfile.TemporaryDirectory(prefix="orv-py-site-")
        self.log = pathlib.Path(self.dir.name) / "requests.log"
        self.process = subprocess.Popen(
            [str(BIN_DIR / "orvwebpage-sample-site"), "--port", "0", "--log", str(self.log),
             *args], stdout=subprocess.PIPE, stdin=subprocess.DEVNULL, text=True)
        first = self.process.stdout.readline().split()
        if len(first) != 2:
            self.stop()
            raise RuntimeError("the sample site did not start")
        self.url, self.true_pages = first[0], int(first[1])

    def log_lines(self):
        return self.log.read_text().splitlines()

    def clear_log(self):
        self.log.write_text("")

    def stop(self):
        if self.process.poll() is None:
            self.process.terminate()
            try:
                self.process.wait(5)
            except subprocess.TimeoutExpired:
                self.process.kill()
                self.process.wait()
        self.process.stdout.close()
        self.dir.cleanup()


@pytest.fixture
def sample_site():
    """Call it with the site's options; every site started stops after the test."""
    sites = []

    def start(*args):
        sites.append(SampleSite(*args))
        return sites[-1]

    yield start
    for site in sites:
        site.stop()


def tool_estimate(url):
    """The command-line tool's estimate and request count for url."""
    import json
    out = subprocess.run([str(BIN_DIR / "orvwebpage"), "estimate", "--json", url],
                         capture_output=True, text=True, timeout=120, check=True).stdout
    doc = json.loads(out)
    return doc["estimate"], doc["requests"]
