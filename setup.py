"""Builds the Python module with CMake, with the library inside it."""

import importlib.util
import os
import pathlib
import re
import shutil
import subprocess
import sys

from setuptools import Extension, setup
from setuptools.command.build_ext import build_ext

ROOT = pathlib.Path(__file__).resolve().parent


def project_version():
    text = (ROOT / "CMakeLists.txt").read_text(encoding="utf-8")
    return re.search(r"^    VERSION ([0-9.]+)$", text, re.MULTILINE).group(1)


class CMakeBuild(build_ext):
    """Puts the module, linked statically with the library, where setuptools expects it."""

    def build_extension(self, ext):
        target = pathlib.Path(self.get_ext_fullpath(ext.name)).resolve().parent
        target.mkdir(parents=True, exist_ok=True)
        work = pathlib.Path(self.build_temp).resolve()
        options = {
            "CMAKE_BUILD_TYPE": "Release",
            "BUILD_SHARED_LIBS": "OFF",
            "CMAKE_POSITION_INDEPENDENT_CODE": "ON",
            "QEL_BUILD_PYTHON": "ON",
            "QEL_BUILD_TESTS": "OFF",
            "QEL_BUILD_EXAMPLES": "OFF",
            "Python3_EXECUTABLE": sys.executable,
            "CMAKE_LIBRARY_OUTPUT_DIRECTORY": target,
        }
        if importlib.util.find_spec("pybind11"):
            import pybind11

            options["pybind11_DIR"] = pybind11.get_cmake_dir()
        defines = [f"-D{name}={value}" for name, value in options.items()]
        subprocess.run(["cmake", "-S", ROOT, "-B", work, *defines], check=True)
        jobs = str(os.cpu_count() or 1)
        subprocess.run(
            ["cmake", "--build", work, "--target", "qel_python", "--parallel", jobs], check=True
        )
        stubs = target / "qel-stubs"
        stubs.mkdir(exist_ok=True)
        shutil.copyfile(ROOT / "bindings/python/qel.pyi", stubs / "__init__.pyi")


setup(
    version=project_version(),
    ext_modules=[Extension("qel", sources=[])],
    cmdclass={"build_ext": CMakeBuild},
    packages=[],
)
