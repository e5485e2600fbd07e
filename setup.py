"""Builds the Python package: CMake builds the module with the static library
linked in, with the flags of every other build; setuptools packs it with the
Python files of python/orvwebpage/.

Environment: ORV_CMAKE_ARGS adds CMake arguments; CMAKE_BUILD_PARALLEL_LEVEL
sets the jobs (default: every core); ccache is used when found.
"""

import os
import pathlib
import re
import shlex
import shutil
import subprocess
import sys

from setuptools import Extension, setup
from setuptools.command.build_ext import build_ext

ROOT = pathlib.Path(__file__).resolve().parent


def project_version():
    text = (ROOT / "CMakeLists.txt").read_text()
    found = re.search(r"project\(\s*OrvWebPage\s+VERSION\s+([0-9][0-9.]*)", text)
    if not found:
        raise RuntimeError("CMakeLists.txt names no project version")
    return found.group(1)


def pybind11_cmake_dir():
    try:
        import pybind11
    except ImportError:
        return None
    return pybind11.get_cmake_dir()


class CMakeBuild(build_ext):
    def build_extension(self, ext):
        build_dir = pathlib.Path(self.build_temp).resolve() / "cmake"
        build_dir.mkdir(parents=True, exist_ok=True)
        args = [
            "cmake", "-S", str(ROOT), "-B", str(build_dir),
            "-DCMAKE_BUILD_TYPE=Release",
            f"-DPython3_EXECUTABLE={sys.executable}",
            "-DORV_BUILD_TESTS=OFF", "-DORV_BUILD_BENCH=OFF", "-DORV_BUILD_TOOLS=OFF",
            "-DORV_BUILD_FUZZ=OFF", "-DORV_BUILD_PYTHON=ON",
        ]
        if shutil.which("ninja"):
            args += ["-G", "Ninja"]
        if shutil.which("ccache") and "CMAKE_CXX_COMPILER_LAUNCHER" not in os.environ:
            args.append("-DCMAKE_CXX_COMPILER_LAUNCHER=ccache")
        cmake_dir = pybind11_cmake_dir()
        if cmake_dir:
            args.append(f"-Dpybind11_DIR={cmake_dir}")
        args += shlex.split(os.environ.get("ORV_CMAKE_ARGS", ""))
        subprocess.run(args, check=True)
        jobs = os.environ.get("CMAKE_BUILD_PARALLEL_LEVEL", str(os.cpu_count() or 1))
        subprocess.run(["cmake", "--build", str(build_dir), "--target", "orvwebpage_python",
                        "--parallel", jobs], check=True)
        built = sorted((build_dir / "python" / "orvwebpage").glob("_orvwebpage*.so"))
        if not built:
            raise RuntimeError("CMake built no module (is pybind11 found for this Python?)")
        target = pathlib.Path(self.get_ext_fullpath(ext.name))
        target.parent.mkdir(parents=True, exist_ok=True)
        shutil.copyfile(built[-1], target)


setup(
    version=project_version(),
    packages=["orvwebpage"],
    package_dir={"": "python"},
    package_data={"orvwebpage": ["py.typed", "*.pyi"]},
    ext_modules=[Extension("orvwebpage._orvwebpage", sources=[])],
    cmdclass={"build_ext": CMakeBuild},
    # Kept apart from the CMake build folders developers use.
    options={"build": {"build_base": "build-wheel"}},
    zip_safe=False,
)
