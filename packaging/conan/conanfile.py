"""Conan 2 recipe of the tree it stands in; see the README of the folder packaging."""

import glob
import os

from conan import ConanFile
from conan.errors import ConanInvalidConfiguration
from conan.tools.build import check_min_cppstd
from conan.tools.cmake import CMake, CMakeDeps, CMakeToolchain, cmake_layout
from conan.tools.files import copy
from conan.tools.system.package_manager import Apt


class OrvConan(ConanFile):
    name = "orv"
    version = "0.26.1"
    description = "Orvane Core, a real-time 3D graphics framework"
    license = "MIT"
    topics = ("graphics", "opengl", "3d")
    package_type = "shared-library"
    settings = "os", "arch", "compiler", "build_type"
    # Static ones would need the libraries below them named at the link.
    default_options = {f"{name}/*:shared": True
                       for name in ("fontconfig", "libzip", "tinyobjloader", "tinyxml2")}

    def export_sources(self):
        root = os.path.join(self.recipe_folder, "..", "..")
        for pattern in ("CMakeLists.txt", "LICENSE", "cmake/*", "include/*", "src/*"):
            copy(self, pattern, root, self.export_sources_folder)

    def validate(self):
        if self.settings.os != "Linux" or self.settings.arch != "x86_64":
            raise ConanInvalidConfiguration("orv runs on 64-bit Linux (x86_64)")
        check_min_cppstd(self, 17)

    def requirements(self):
        # Linked into the one shared library; hosts see none of them.
        for reference in ("fontconfig/2.15.0", "libzip/1.10.1", "stb/cci.20230920",
                          "tinyobjloader/2.0.0-rc10", "tinyxml2/10.0.0"):
            self.requires(reference, headers=True, libs=True, visible=False)

    def system_requirements(self):
        # No recipes exist for the first two; the others are headers of the system's OpenGL and X11.
        Apt(self).install(["lib3ds-dev", "dpf-source", "libgl-dev", "libegl-dev", "libx11-dev"],
                          check=True)

    def layout(self):
        cmake_layout(self)

    def _stb_folder(self):
        """The sources include <stb/...>; the package of stb lays its headers flat."""
        folder = os.path.join(self.build_folder, "stb-headers")
        for include in self.dependencies["stb"].cpp_info.includedirs:
            for header in glob.glob(os.path.join(include, "stb_*.h")):
                copy(self, os.path.basename(header), include, os.path.join(folder, "stb"))
        return folder

    def generate(self):
        toolchain = CMakeToolchain(self)
        for option in ("TESTS", "EXAMPLES", "APPS", "BENCH", "PLUGINS"):
            toolchain.cache_variables[f"ORV_BUILD_{option}"] = False
        toolchain.cache_variables["ORV_WERROR"] = False
        toolchain.cache_variables["ORV_STB_INCLUDE"] = self._stb_folder()
        toolchain.generate()
        CMakeDeps(self).generate()

    def build(self):
        cmake = CMake(self)
        cmake.configure()
        cmake.build()

    def package(self):
        CMake(self).install()
        copy(self, "LICENSE", self.source_folder, os.path.join(self.package_folder, "licenses"))

    def package_info(self):
        # The installed package files are used as they are: orv_add_plugin stands in them.
        self.cpp_info.set_property("cmake_find_mode", "none")
        self.cpp_info.builddirs = [os.path.join("lib", "cmake", "orv")]
        self.cpp_info.libs = ["orv_x64"]
