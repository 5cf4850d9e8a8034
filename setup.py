"""Builds the Python package with CMake. The settings are in pyproject.toml.

Environment: LIGHTMOTION_BUILD_FOLDER, a configured CMake build folder to use instead of a new one;
CMAKE_ARGS, more arguments for CMake.
"""
import os
import pathlib
import shlex
import shutil
import subprocess
import sys

from setuptools import Extension, setup
from setuptools.command.build_ext import build_ext

SOURCE = pathlib.Path(__file__).resolve().parent


class BuildWithCMake(build_ext):
    def build_extension(self, ext):
        target = pathlib.Path(self.get_ext_fullpath(ext.name))
        folder = os.environ.get("LIGHTMOTION_BUILD_FOLDER") or self.configured()
        subprocess.run(["cmake", "--build", folder, "--target", "lightmotion_wheel",
                        "--parallel", str(os.cpu_count())], check=True)
        target.parent.mkdir(parents=True, exist_ok=True)
        shutil.copy(pathlib.Path(folder, "python/wheel/_core.abi3.so"), target)

    def configured(self):
        folder = pathlib.Path(self.build_temp).resolve()
        options = {"CMAKE_BUILD_TYPE": "Release", "Python3_EXECUTABLE": sys.executable, "LIGHTMOTION_PYTHON": "ON",
                   "LIGHTMOTION_HOST": "OFF", "LIGHTMOTION_TESTS": "OFF", "LIGHTMOTION_INSTALL": "OFF"}
        subprocess.run(["cmake", "-S", SOURCE, "-B", folder, *(f"-D{key}={value}" for key, value in options.items()),
                        *shlex.split(os.environ.get("CMAKE_ARGS", ""))], check=True)
        return folder


# What setuptools writes stays out of the sources.
BUILD = pathlib.Path("build/python")
(SOURCE / BUILD).mkdir(parents=True, exist_ok=True)

setup(
    ext_modules=[Extension("lightmotion._core", sources=[], py_limited_api=True)],
    cmdclass={"build_ext": BuildWithCMake},
    options={"build": {"build_base": str(BUILD)}, "egg_info": {"egg_base": str(BUILD)},
             "bdist_wheel": {"py_limited_api": "cp311"}},
)
