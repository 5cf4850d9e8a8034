"""What pip installs: one file for all versions of Python, with the library inside. usage: wheel.py SOURCE"""
from __future__ import annotations

import os
import pathlib
import re
import subprocess
import sys
import tempfile

PIP = [sys.executable, "-m", "pip", "--isolated", "--disable-pip-version-check", "--no-cache-dir"]
OFFLINE = ["--no-index", "--no-deps"]
TESTS = pathlib.Path(__file__).with_name("test_results.py")


def output_of(*command: object, **variables: str) -> str:
    words = [str(word) for word in command]
    done = subprocess.run(words, env={**os.environ, **variables}, capture_output=True, text=True)
    if done.returncode != 0:
        sys.exit(f"{' '.join(words)} ended with {done.returncode}:\n{done.stdout}{done.stderr}")
    return done.stdout


def check(source: pathlib.Path, scratch: pathlib.Path) -> None:
    output_of(*PIP, "wheel", "--no-build-isolation", *OFFLINE, "--wheel-dir", scratch, source)
    (wheel,) = scratch.glob("*.whl")
    assert re.fullmatch(r"lightmotion-\d+\.\d+\.\d+-cp311-abi3-linux_\w+\.whl", wheel.name), wheel.name
    assert not list(source.glob("python/*.egg-info")), "setuptools writes into the sources"

    site = scratch / "site"
    output_of(*PIP, "install", *OFFLINE, "--target", site, wheel)
    files = {file.name for file in site.glob("lightmotion/*") if file.is_file()}
    expected = {file.name for file in source.glob("python/lightmotion/*") if file.is_file()}
    assert files == expected | {"_core.abi3.so"}, files ^ expected

    # The library is inside, and nothing of it is visible.
    module = site / "lightmotion/_core.abi3.so"
    assert "liblightmotion" not in output_of("readelf", "--dynamic", module)
    names = output_of("nm", "--dynamic", "--defined-only", module).split()[2::3]
    assert names == ["PyInit__core"], names

    tell = "import lightmotion; print(lightmotion.__version__)"
    version = output_of(sys.executable, "-B", "-c", tell, PYTHONPATH=str(site)).strip()
    assert wheel.name.split("-")[1] == version, version
    print(output_of(sys.executable, "-B", "-m", "pytest", "-q", TESTS, PYTHONPATH=str(site)))


if __name__ == "__main__":
    with tempfile.TemporaryDirectory() as folder:
        check(pathlib.Path(sys.argv[1]).resolve(), pathlib.Path(folder))
