"""Builds the package with the project's own CMake build, offline: the
extension, libquadrel and the Python files go into one folder, quadrel/, in
which the extension finds the library beside itself.

    python3 -m pip install ./python --no-build-isolation

CMake is told to build for the interpreter that runs this script; it needs
numpy and pybind11 there (Debian: python3-numpy python3-pybind11 pybind11-dev
python3-dev, which serve /usr/bin/python3).
"""

import os
import subprocess
import sys
from pathlib import Path

from setuptools import Extension, setup
from setuptools.command.build_ext import build_ext

ROOT = Path(__file__).resolve().parent.parent  # the CMake project


class CMakeBuild(build_ext):
    def build_extension(self, ext):
        build = Path(self.build_temp).resolve() / "cmake"
        target = Path(self.get_ext_fullpath(ext.name)).resolve().parent.parent  # holds quadrel/
        configure = [
            "cmake", "-S", str(ROOT), "-B", str(build), "-DCMAKE_BUILD_TYPE=Release",
            "-DQUADREL_BUILD_PYTHON=ON", "-DBUILD_TESTING=OFF", "-DQUADREL_BUILD_TOOLS=OFF",
            "-DQUADREL_BUILD_EXAMPLES=OFF", f"-DPython3_EXECUTABLE={sys.executable}",
        ]  # fmt: skip
        jobs = str(os.cpu_count() or 1)
        subprocess.run(configure, check=True)
        subprocess.run(["cmake", "--build", str(build), "--target", "_quadrel", "-j", jobs], check=True)
        subprocess.run(
            ["cmake", "--install", str(build), "--component", "python", "--prefix", str(target)], check=True
        )


setup(
    packages=["quadrel"],
    package_data={"quadrel": ["*.pyi", "py.typed"]},
    ext_modules=[Extension("quadrel._quadrel", sources=[])],
    cmdclass={"build_ext": CMakeBuild},
    zip_safe=False,
)
