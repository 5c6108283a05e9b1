#!/usr/bin/env python3
"""Checks the recipes as far as that goes without their tools: see README.md beside this file."""

import importlib.util
import json
import pathlib
import re
import subprocess
import sys
import tempfile
import types

HERE = pathlib.Path(__file__).resolve().parent
ROOT = HERE.parent
PORT = HERE / "vcpkg" / "orv"
CONAN = HERE / "conan"

failures = []


def check(right, what):
    if not right:
        failures.append(what)


def tree_version():
    text = (ROOT / "CMakeLists.txt").read_text()
    return re.search(r"project\(orv VERSION ([0-9.]+)", text).group(1)


def tree_options():
    """Names of the tree's options and of the paths that a cache entry may give."""
    text = "".join(p.read_text() for p in [ROOT / "CMakeLists.txt", *ROOT.glob("cmake/*.cmake")])
    options = re.findall(r"option\((ORV_\w+)", text)
    return set(options + re.findall(r"orv_require_\w+\((ORV_\w+)", text))


# ---- vcpkg ----


def check_manifest():
    manifest = json.loads((PORT / "vcpkg.json").read_text())
    known = {"$schema", "name", "version", "description", "license", "supports", "dependencies"}
    check(set(manifest) == known, f"vcpkg.json: fields {sorted(manifest)}")
    name = re.compile(r"[a-z0-9]+(-[a-z0-9]+)*")
    check(manifest["name"] == "orv", "vcpkg.json: name")
    check(manifest["version"] == tree_version(), "vcpkg.json: version")
    check(manifest["license"] == "MIT", "vcpkg.json: license")
    names = [d if isinstance(d, str) else d["name"] for d in manifest["dependencies"]]
    check(all(name.fullmatch(n) for n in names), f"vcpkg.json: dependencies {names}")
    check(names == sorted(names), "vcpkg.json: dependencies are not in order")
    for dependency in manifest["dependencies"]:
        if not isinstance(dependency, str):
            check(set(dependency) <= {"name", "host", "platform"}, f"vcpkg.json: {dependency}")


STUBS = """
cmake_minimum_required(VERSION 3.25)
set(PORT orv)
foreach(name vcpkg_check_linkage vcpkg_cmake_install vcpkg_cmake_config_fixup vcpkg_fixup_pkgconfig
    vcpkg_install_copyright)
  cmake_language(EVAL CODE "
    function(${name})
      message(STATUS \\"called ${name} \\${ARGN}\\")
    endfunction()")
endforeach()
function(vcpkg_cmake_configure)
  cmake_parse_arguments(PARSE_ARGV 0 arg "" "SOURCE_PATH" "OPTIONS")
  message(STATUS "called vcpkg_cmake_configure")
  execute_process(COMMAND ${CMAKE_COMMAND} -S ${arg_SOURCE_PATH} -B ${CURRENT_BUILDTREES_DIR}/build
      ${arg_OPTIONS} OUTPUT_VARIABLE out ERROR_VARIABLE out RESULT_VARIABLE status)
  message(STATUS "${out}")
  if(NOT status EQUAL 0)
    message(FATAL_ERROR "configuring failed")
  endif()
endfunction()
"""


def check_port():
    """Runs the port with stand-ins for vcpkg's functions; the tree is configured for real."""
    with tempfile.TemporaryDirectory() as folder:
        work = pathlib.Path(folder)
        (work / "installed" / "include").mkdir(parents=True)
        for header in pathlib.Path("/usr/include/stb").glob("stb_*.h"):
            (work / "installed" / "include" / header.name).write_bytes(header.read_bytes())
        (work / "port.cmake").write_text(
            STUBS
            + f'set(CURRENT_BUILDTREES_DIR "{work}/trees")\n'
            + f'set(CURRENT_INSTALLED_DIR "{work}/installed")\n'
            + f'set(CURRENT_PACKAGES_DIR "{work}/packages")\n'
            + f'include("{PORT}/portfile.cmake")\n')
        ran = subprocess.run(["cmake", "-P", work / "port.cmake"], text=True, check=False,
                             stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
        check(ran.returncode == 0, f"portfile.cmake:\n{ran.stdout}")
        check("not used by the project" not in ran.stdout, f"unknown options:\n{ran.stdout}")
        for call in ("check_linkage ONLY_DYNAMIC_LIBRARY", "cmake_configure", "cmake_install",
                     "cmake_config_fixup", "fixup_pkgconfig", "install_copyright FILE_LIST"):
            check(f"called vcpkg_{call}" in ran.stdout, f"portfile.cmake: no vcpkg_{call}")
        check((work / "packages/share/orv/usage").is_file(), "portfile.cmake: usage not installed")


# ---- Conan ----


def stand_in(name, **members):
    module = types.ModuleType(name)
    for member, value in members.items():
        setattr(module, member, value)
    sys.modules[name] = module


def load_recipe(path, copied):
    def copy(_recipe, pattern, source, _target):
        copied.extend((pattern, p) for p in pathlib.Path(source).glob(pattern))

    anything = type("Anything", (), {})
    stand_in("conan", ConanFile=type("ConanFile", (), {}))
    stand_in("conan.errors", ConanInvalidConfiguration=RuntimeError)
    stand_in("conan.tools")
    stand_in("conan.tools.build", check_min_cppstd=lambda *_: None, can_run=lambda _: True)
    stand_in("conan.tools.cmake", CMake=anything, CMakeDeps=anything, CMakeToolchain=anything,
             cmake_layout=lambda _: None)
    stand_in("conan.tools.files", copy=copy)
    stand_in("conan.tools.system")
    stand_in("conan.tools.system.package_manager", Apt=anything)
    spec = importlib.util.spec_from_file_location(path.stem, path)
    module = importlib.util.module_from_spec(spec)
    sys.dont_write_bytecode = True
    spec.loader.exec_module(module)
    return module


def check_recipe():
    copied = []
    recipe = load_recipe(CONAN / "conanfile.py", copied).OrvConan()
    check(recipe.name == "orv" and recipe.version == tree_version(), "conanfile.py: version")

    recipe.recipe_folder = str(CONAN)
    recipe.export_sources_folder = "exported"
    recipe.export_sources()
    patterns = {pattern for pattern, _ in copied}
    check(patterns == {"CMakeLists.txt", "LICENSE", "cmake/*", "include/*", "src/*"},
          f"conanfile.py: exported by {sorted(patterns)}")

    references = []
    recipe.requires = lambda reference, **_: references.append(reference)
    recipe.requirements()
    check(len(references) == 5 and all("/" in r for r in references), "conanfile.py: requirements")

    recipe.settings = types.SimpleNamespace(os="Linux", arch="x86_64")
    recipe.validate()
    recipe.settings.os = "Windows"
    try:
        recipe.validate()
        failures.append("conanfile.py: validates on another system")
    except RuntimeError:
        pass

    text = (CONAN / "conanfile.py").read_text()
    named = set(re.findall(r"ORV_[A-Z0-9_]*[A-Z0-9]", text)) - {"ORV_BUILD"}
    check(named <= tree_options(), f"conanfile.py: options {sorted(named)}")

    test = load_recipe(CONAN / "test_package" / "conanfile.py", []).OrvTestPackage()
    test.tested_reference_str = "orv/0"
    test.requires = references.append
    test.requirements()
    check(references[-1] == "orv/0", "test_package: requirements")


for step in (check_manifest, check_port, check_recipe):
    step()
for failure in failures:
    print(failure, file=sys.stderr)
print("recipes: well" if not failures else f"recipes: {len(failures)} failures")
sys.exit(1 if failures else 0)
