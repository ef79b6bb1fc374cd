"""Builds the extension module with CMake and lays Quoin's libraries beside it.

QUOIN_BUILD names a build tree to use, configured with QUOIN_PYTHON_PACKAGE; else one is made, with
what CMAKE_ARGS adds. QUOIN_JOBS says how many compilers run at a time.
"""

import os
import pathlib
import shlex
import shutil
import subprocess
import sys

from setuptools import Extension, setup
from setuptools.command.build_ext import build_ext

ROOT = pathlib.Path(__file__).resolve().parent
LIBRARIES = ("libquoin.so", "libquoinhost.so", "libquoinplan.so")


class CMakeBuild(build_ext):
    """One extension; what it needs at run time goes with it."""

    def build_extension(self, ext):
        target = pathlib.Path(self.get_ext_fullpath(ext.name)).resolve()
        tree = pathlib.Path(os.environ.get("QUOIN_BUILD") or self.build_temp).resolve()
        if "QUOIN_BUILD" not in os.environ:
            generator = ["-G", "Ninja"] if shutil.which("ninja") else []
            subprocess.run(["cmake", "-S", ROOT, "-B", tree, *generator, "--log-level=WARNING",
                            "-DCMAKE_BUILD_TYPE=Release", "-DQUOIN_TESTS=OFF",
                            "-DQUOIN_INSTALL=OFF", "-DQUOIN_PYTHON_PACKAGE=ON",
                            f"-DPython_EXECUTABLE={sys.executable}",
                            *shlex.split(os.environ.get("CMAKE_ARGS", ""))], check=True)
        jobs = os.environ.get("QUOIN_JOBS", str(os.cpu_count() or 1))
        subprocess.run(["cmake", "--build", tree, "--target", "quoin_python", "-j", jobs],
                       check=True)
        target.parent.mkdir(parents=True, exist_ok=True)
        [built] = (tree / "python" / "quoin").glob("_quoin*.so")
        self.strip(built, target)
        for name in LIBRARIES:
            [library] = tree.glob(f"lib*/{name}") or tree.glob(f"lib*/*/{name}")
            self.strip(library, target.parent / name)

    @staticmethod
    def strip(source, target):
        """Without debug lines, and found beside itself by its own search path ($ORIGIN)."""
        shutil.copy2(source, target)
        if shutil.which("strip"):
            subprocess.run(["strip", "--strip-unneeded", target], check=True)


setup(ext_modules=[Extension("quoin._quoin", sources=[])], cmdclass={"build_ext": CMakeBuild})
