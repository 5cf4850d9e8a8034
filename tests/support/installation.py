"""What the tests of the installed tree and of the packages share. CTest says where things are."""
import os
import pathlib
import subprocess

PREFIX = pathlib.Path(os.environ.get("LIGHTMOTION_PREFIX", ""))
ARCH = os.environ.get("LIGHTMOTION_ARCH", "")
VERSION = os.environ.get("LIGHTMOTION_VERSION", "")
SOURCE = pathlib.Path(__file__).parents[2]
LIBRARY_FOLDER = PREFIX / "lib" / ARCH

# As a shell has it in which the installed tree is in use.
ENVIRONMENT = dict(os.environ, LC_ALL="C", LD_LIBRARY_PATH=str(LIBRARY_FOLDER),
                   PKG_CONFIG_PATH=str(LIBRARY_FOLDER / "pkgconfig"), CMAKE_PREFIX_PATH=str(PREFIX))


def run(*command, environment=ENVIRONMENT, **more):
    """Runs a command to its end; its output is kept as text (or bytes, with text=False)."""
    more.setdefault("text", True)
    return subprocess.run([str(word) for word in command], env=environment, capture_output=True, **more)


def output_of(*command, **more):
    """The output of a command that has to succeed."""
    done = run(*command, **more)
    if done.returncode != 0:
        raise AssertionError(f"{' '.join(map(str, command))} ended with {done.returncode}:\n{done.stdout}{done.stderr}")
    return done.stdout


def pkg_config(*arguments):
    return output_of("pkg-config", *arguments, "lightmotion").split()


def expected_files():
    """The files of each package, below the prefix."""
    packages = {}
    text = (SOURCE / "tests/package/installed_files.txt").read_text()
    for line in text.replace("<arch>", ARCH).replace("<version>", VERSION).splitlines():
        if line.startswith("["):
            files = packages[line.strip("[]")] = set()
        elif line and not line.startswith("#"):
            files.add(line)
    return packages
