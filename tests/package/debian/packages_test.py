#!/usr/bin/env python3
"""Installs the Debian packages in a root folder of their own, looks at all they hold, builds with them, runs the
programs, and removes them again.

    packages_test.py FOLDER    FOLDER holds the .deb files
"""

import gzip
import os
import pathlib
import re
import subprocess
import sys
import tempfile
import unittest
import xml.etree.ElementTree

from clean_root import CleanRoot, field, names_in

HERE = pathlib.Path(__file__).resolve().parent
PROJECT = HERE.parents[2]
sys.dont_write_bytecode = True
sys.path.insert(0, str(HERE.parent))
import check_symbols  # noqa: E402  beside this folder

FOLDER = pathlib.Path(sys.argv[1]).resolve()
VERSION = re.search(r"^ *VERSION (\S+)$", (PROJECT / "CMakeLists.txt").read_text(encoding="utf-8"), re.M)[1]
INTERFACE = VERSION.rpartition(".")[0]
RUNTIME, DEVELOPMENT, TOOLS = f"libvelwhiteboard{INTERFACE}", "libvelwhiteboard-dev", "velwhiteboard-tools"
PYTHON = "python3-velwhiteboard"
PROGRAMS = ("board-check", "lesson", "whiteboard")


def output_of(*command, **options):
    done = subprocess.run(command, capture_output=True, text=True, timeout=600, **options)
    if done.returncode != 0:
        raise AssertionError(f"{' '.join(map(str, command))}: {done.returncode}\n{done.stdout}{done.stderr}")
    return done.stdout


ARCHITECTURE = output_of("dpkg", "--print-architecture").strip()
LIBRARIES = "usr/lib/" + output_of("dpkg-architecture", "-qDEB_HOST_MULTIARCH").strip()
PACKAGES = {name: FOLDER / f"{name}_{VERSION}_{ARCHITECTURE}.deb" for name in (RUNTIME, DEVELOPMENT, TOOLS, PYTHON)}

MODULE = "usr/lib/python3/dist-packages/velwhiteboard"
EXTENSION = "_velwhiteboard" + output_of(
    "/usr/bin/python3", "-c", "import sysconfig; print(sysconfig.get_config_var('EXT_SUFFIX'), end='')")


def documents_of(name):
    found = {f"usr/share/doc/{name}/{file}" for file in ("changelog.gz", "copyright", "NEWS.gz")}
    # What is overridden is that nobody can be written to.
    is_published = not field(PACKAGES[name], "Maintainer").endswith("@localhost>")
    return found if is_published else found | {f"usr/share/lintian/overrides/{name}"}


def public_headers():
    listed = (PROJECT / "VelWhiteBoard/CMakeLists.txt").read_text(encoding="utf-8")
    names = re.search(r"^set\(public_headers\n(.*?)^\)", listed, re.M | re.S)[1].split()
    short = [re.sub(r"^foundation/[a-z]+/", "foundation/", name) for name in names]
    return {f"usr/include/VelWhiteBoard/{name}" for name in (*names, *short, "foundation/export.h")}


EXPECTED = {
    RUNTIME: documents_of(RUNTIME) | {
        f"{LIBRARIES}/libVelWhiteBoard.so.{version}" for version in (INTERFACE, VERSION)},
    DEVELOPMENT: documents_of(DEVELOPMENT) | public_headers() | {
        f"{LIBRARIES}/{name}" for name in (
            "libVelWhiteBoard.a", "libVelWhiteBoard.so", "pkgconfig/VelWhiteBoard.pc",
            *(f"cmake/VelWhiteBoard/VelWhiteBoard{part}.cmake" for part in (
                "Config", "ConfigVersion", "Targets", "Targets-release", "StaticTargets", "StaticTargets-release")))},
    TOOLS: documents_of(TOOLS) | {
        name.format(program) for program in PROGRAMS for name in (
            "usr/bin/{}", "usr/share/man/man1/{}.1.gz", "usr/share/bash-completion/completions/{}")} | {
        "usr/share/applications/whiteboard.desktop", "usr/share/icons/hicolor/scalable/apps/whiteboard.svg"},
    PYTHON: documents_of(PYTHON) | {
        f"{MODULE}/{name}" for name in ("__init__.py", "__init__.pyi", "py.typed", EXTENSION)},
}
EXAMPLES = f"usr/share/doc/{DEVELOPMENT}/examples"


class Contents(unittest.TestCase):
    def control_file(self, name):
        return output_of("dpkg-deb", "--info", PACKAGES[RUNTIME], name)

    def test_there_are_these_packages(self):
        self.assertEqual(sorted(FOLDER.glob("*.deb")), sorted(PACKAGES.values()))

    def test_the_fields(self):
        for name, package in PACKAGES.items():
            with self.subTest(package=name):
                self.assertEqual(field(package, "Package"), name)
                self.assertEqual(field(package, "Version"), VERSION)
                self.assertEqual(field(package, "Architecture"), ARCHITECTURE)
        self.assertIn("libexpat1", names_in(field(PACKAGES[RUNTIME], "Depends")))
        exactly = f"{RUNTIME} (= {VERSION})"
        for name, others in ((DEVELOPMENT, {"nlohmann-json3-dev", "libsimdjson-dev", "libexpat1-dev"}),
                             (TOOLS, {"libc6", "libcairo2", "libnats3.4", "libqt6widgets6", "libqt6svg6"}),
                             (PYTHON, {"python3", "libc6"})):
            depends = field(PACKAGES[name], "Depends")
            self.assertIn(exactly, depends)
            self.assertLessEqual(others, names_in(depends))

    def test_every_package_that_is_suggested_exists(self):
        for package in PACKAGES.values():
            for name in names_in(field(package, "Recommends")) | names_in(field(package, "Suggests")):
                self.assertIn("Version:", output_of("apt-cache", "show", "--no-all-versions", name))

    def test_the_files(self):
        for name, package in PACKAGES.items():
            with self.subTest(package=name):
                rows = [line.split(None, 5) for line in output_of("dpkg-deb", "--contents", package).splitlines()]
                self.assertEqual({row[1] for row in rows}, {"root/root"})
                files = {row[5].split(" -> ")[0].removeprefix("./") for row in rows if row[0][0] != "d"}
                examples = {file for file in files if file.startswith(EXAMPLES)}
                self.assertEqual(files - examples, EXPECTED[name])
                self.assertEqual(bool(examples), name == DEVELOPMENT)

    def test_the_control_files_of_the_library(self):
        self.assertEqual(self.control_file("triggers"), "activate-noawait ldconfig\n")
        self.assertEqual(self.control_file("shlibs"), f"libVelWhiteBoard {INTERFACE} {RUNTIME} (>= {INTERFACE}.0)\n")

    def test_nothing_runs_at_installation(self):
        for package in PACKAGES.values():
            with tempfile.TemporaryDirectory() as folder:
                subprocess.run(["dpkg-deb", "--control", package, folder], check=True)
                names = {file.name for file in pathlib.Path(folder).iterdir()}
                self.assertEqual(names - {"control", "md5sums", "shlibs", "symbols", "triggers"}, set())

    def test_the_symbols(self):
        heading, package, *lines = self.control_file("symbols").splitlines()
        self.assertEqual(heading, f"libVelWhiteBoard.so.{INTERFACE} {RUNTIME} #MINVER#")
        self.assertEqual(package, f"* Build-Depends-Package: {DEVELOPMENT}")
        listed = dict(line.strip().split("@Base ") for line in lines)
        self.assertEqual(set(listed.values()), {f"{INTERFACE}.0"})
        with tempfile.TemporaryDirectory() as folder:
            output_of("dpkg-deb", "--extract", PACKAGES[RUNTIME], folder)
            library = pathlib.Path(folder) / LIBRARIES / f"libVelWhiteBoard.so.{VERSION}"
            rows = output_of("nm", "--dynamic", "--defined-only", library).splitlines()
        self.assertEqual(set(listed), {row.split()[2] for row in rows})
        names = output_of("c++filt", input="\n".join(listed)).splitlines()
        shown = {check_symbols.shortened(name) for mangled, name in zip(listed, names)
                 if not check_symbols.OF_THE_STANDARD_LIBRARY.match(mangled)}
        self.assertEqual(shown, set(check_symbols.listed_in(HERE.parent / "exported_symbols.txt")))


class Installed(unittest.TestCase):
    """All packages in one root."""

    @classmethod
    def setUpClass(cls):
        cls.root = CleanRoot(PACKAGES.values())
        cls.addClassCleanup(cls.root.close)
        cls.root.dpkg("--install", *PACKAGES.values())
        folder = tempfile.TemporaryDirectory(prefix="vwb-packages-")
        cls.addClassCleanup(folder.cleanup)
        cls.work = pathlib.Path(folder.name)
        cls.libraries = cls.root.folder / LIBRARIES
        cls.environment = {**os.environ, "LD_LIBRARY_PATH": str(cls.libraries), "QT_QPA_PLATFORM": "offscreen",
                           "TMPDIR": folder.name, "XDG_CONFIG_HOME": folder.name, "XDG_DATA_HOME": folder.name}

    def run_program(self, name, *arguments):
        return output_of(self.root.folder / "usr/bin" / name, *arguments, env=self.environment)

    def libraries_of(self, program):
        return set(re.findall(r"NEEDED.*\[(.*)\]", output_of("readelf", "--dynamic", program)))

    def build(self, source, name, *options, build=True):
        folder = self.work / name
        output_of("cmake", "-S", source, "-B", folder, "-G", "Ninja", "-DCMAKE_BUILD_TYPE=Debug",
                  f"-DCMAKE_PREFIX_PATH={self.root.folder}/usr", f"-DEXPECTED_VERSION={INTERFACE}", *options)
        if build:
            output_of("cmake", "--build", folder)
        return folder

    def test_the_programs_and_the_library_are_stripped_and_hardened(self):
        for file in (self.libraries / f"libVelWhiteBoard.so.{VERSION}",
                     self.root.folder / MODULE / EXTENSION,
                     *(self.root.folder / "usr/bin" / name for name in PROGRAMS)):
            with self.subTest(file=file.name):
                sections = output_of("readelf", "--wide", "--sections", file)
                self.assertNotRegex(sections, r"\.(symtab|debug_info|comment)\b")
                dynamic = output_of("readelf", "--dynamic", file)
                self.assertIn("NOW", dynamic)
                self.assertNotRegex(dynamic, "RPATH|RUNPATH")
                self.assertIn("GNU_RELRO", output_of("readelf", "--wide", "--segments", file))
        for name in ("lesson", "whiteboard"):
            self.assertIn(f"libVelWhiteBoard.so.{INTERFACE}", self.libraries_of(self.root.folder / "usr/bin" / name))

    def test_the_programs_run(self):
        for name in PROGRAMS:
            self.assertEqual(self.run_program(name, "--version").strip(), f"{name} {VERSION}")
        lesson = self.root.folder / EXAMPLES / "lesson/data/second_lesson.ndjson"
        board = self.work / "board"
        self.run_program("lesson", lesson, "--board", board, "--png", self.work / "pictures")
        self.assertTrue(list((self.work / "pictures").glob("*.png")))
        self.run_program("board-check", board)

    def test_python_finds_the_module(self):
        lesson = self.root.folder / EXAMPLES / "lesson/data/second_lesson.ndjson"
        board = self.work / "board-for-python"
        self.run_program("lesson", lesson, "--board", board)
        environment = {**self.environment, "PYTHONPATH": str((self.root.folder / MODULE).parent)}
        python = ("/usr/bin/python3", "-B")
        version = output_of(*python, "-c", "import velwhiteboard; print(velwhiteboard.__version__)", env=environment)
        self.assertEqual(version.strip(), VERSION)
        counts = output_of(*python, self.root.folder / EXAMPLES / "python/who_drew_what.py", board, env=environment)
        self.assertRegex(counts, r"(?m)^\S+ +line +\d+$")

    def test_the_menu_entry(self):
        share = self.root.folder / "usr/share"
        entry = share / "applications/whiteboard.desktop"
        self.assertEqual(output_of("desktop-file-validate", entry), "")
        self.assertIn("\nIcon=whiteboard\n", entry.read_text(encoding="utf-8"))
        icon = xml.etree.ElementTree.parse(share / "icons/hicolor/scalable/apps/whiteboard.svg").getroot()
        self.assertEqual(icon.get("width"), icon.get("height"))

    def test_the_changelog_begins_with_the_version(self):
        for name in PACKAGES:
            with gzip.open(self.root.folder / f"usr/share/doc/{name}/changelog.gz", "rt", encoding="utf-8") as file:
                self.assertTrue(file.readline().startswith(f"velwhiteboard ({VERSION}) "))

    def test_a_project_gets_the_shared_library_unasked(self):
        folder = self.build(HERE.parent / "consumer", "shared", "-DEXPECTED_KIND=shared")
        self.assertIn(f"libVelWhiteBoard.so.{INTERFACE}", self.libraries_of(folder / "consumer"))
        output_of(folder / "consumer", env=self.environment)

    def test_a_project_gets_the_static_library_by_a_variable(self):
        folder = self.build(HERE.parent / "consumer", "static", "-DEXPECTED_KIND=static",
                            "-DVelWhiteBoard_USE_STATIC_LIBS=ON")
        self.assertNotIn(f"libVelWhiteBoard.so.{INTERFACE}", self.libraries_of(folder / "consumer"))
        output_of(folder / "consumer")

    def test_a_project_gets_what_it_names_as_a_component(self):
        for kind in ("shared", "static"):
            self.build(HERE.parent / "consumer", f"component-{kind}", f"-DEXPECTED_KIND={kind}",
                       f"-DCOMPONENTS={kind}", build=False)
        for wrong in ("shared;static", "other"):
            with self.assertRaises(AssertionError):
                self.build(HERE.parent / "consumer", "component-wrong", "-DEXPECTED_KIND=static",
                           f"-DCOMPONENTS={wrong}", build=False)

    def test_pkg_config(self):
        for static in ("no", "yes"):
            folder = self.work / f"pkg-config-{static}"
            output_of("make", "-C", HERE.parent / "pkg_config", f"PREFIX={self.root.folder}", f"BUILD={folder}",
                      f"VERSION={VERSION}", f"STATIC={static}", "CXX=c++")
            found = f"libVelWhiteBoard.so.{INTERFACE}" in self.libraries_of(folder / "consumer")
            self.assertEqual(found, static == "no")

    def test_the_examples_can_be_built(self):
        folder = self.build(self.root.folder / EXAMPLES, "examples")
        output_of(folder / "quickstart/quickstart", env=self.environment)
        self.build(self.root.folder / EXAMPLES, "all-examples", "-DBUILD_LESSON=ON", "-DBUILD_CLIENT=ON",
                   build=False)


class Removal(unittest.TestCase):
    def setUp(self):
        self.root = CleanRoot(PACKAGES.values())
        self.addCleanup(self.root.close)
        self.before = self.root.files()

    def test_what_is_installed_goes_without_a_trace(self):
        self.root.dpkg("--install", *PACKAGES.values())
        self.assertIn("triggered ldconfig", self.root.ldconfig_calls())
        self.assertGreater(len(self.root.files()), len(self.before) + 50)
        self.root.dpkg("--verify", *PACKAGES)
        self.assertNotEqual(self.root.dpkg("--remove", RUNTIME, check=False).returncode, 0)
        self.root.dpkg("--remove", DEVELOPMENT, TOOLS, PYTHON)
        self.assertEqual(self.root.ldconfig_calls(), [])
        self.root.dpkg("--purge", *PACKAGES)
        self.assertIn("triggered ldconfig", self.root.ldconfig_calls())
        self.assertEqual(self.root.files(), self.before)

    def test_the_tools_need_the_library(self):
        self.assertNotEqual(self.root.dpkg("--install", PACKAGES[TOOLS], check=False).returncode, 0)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
