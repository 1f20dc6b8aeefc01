"""Builds the wheel: the library and the module by CMake, and both into the package.

What CMake has built before is taken with NORVEX_BUILD=FOLDER in the environment.
"""

import os
import pathlib
import re
import subprocess
import sys

from setuptools import Extension, setup
from setuptools.command.build_ext import build_ext

ROOT = pathlib.Path(__file__).parent.resolve()
VERSION = re.search(r"project\(Norvex VERSION (\S+)", (ROOT / "CMakeLists.txt").read_text()).group(1)


class CMakeBuild(build_ext):
    def build_extension(self, extension):
        package = pathlib.Path(self.get_ext_fullpath(extension.name)).parent.resolve()
        build = os.environ.get("NORVEX_BUILD")
        if build is None:
            build = ROOT / "build" / "wheel"
            options = {"CMAKE_BUILD_TYPE": "Release", "NORVEX_BUILD_PYTHON": "ON", "NORVEX_BUILD_APPS": "OFF",
                       "NORVEX_BUILD_TESTS": "OFF", "Python3_EXECUTABLE": sys.executable}
            subprocess.run(["cmake", "-S", ROOT, "-B", build, "-G", "Ninja",
                            *(f"-D{name}={value}" for name, value in options.items())], check=True)
            subprocess.run(["cmake", "--build", build], check=True)
        stage = pathlib.Path(self.build_temp).resolve() / "stage"
        for component in ("python", "runtime", "document"):
            subprocess.run(["cmake", "--install", build, "--prefix", stage, "--component", component, "--strip"],
                           check=True)
        package.mkdir(parents=True, exist_ok=True)
        # The libraries under the names by which they are loaded: a wheel holds no links.
        loaded_as = VERSION.rpartition(".")[0]
        for pattern in ("**/_norvex*.so", f"**/libnorvex*.so.{loaded_as}"):
            for library in stage.glob(pattern):
                self.copy_file(str(library), str(package / library.name))


setup(
    version=VERSION,
    ext_modules=[Extension("norvex._norvex", sources=[])],
    cmdclass={"build_ext": CMakeBuild},
)
