"""An installation: its files, and building against it."""
import os
import pathlib
import re
import tempfile
import unittest

from tests.support.installation import (ENVIRONMENT, LIBRARY_FOLDER, PREFIX, SOURCE, VERSION, expected_files, output_of,
                                        pkg_config, run)

WARNINGS = ["-Wall", "-Wextra", "-Wpedantic", "-Werror"]
HEADERS = [str(file.relative_to(PREFIX / "include/lightmotion")) for file in PREFIX.rglob("*.h")]

# Requires both linking against the library and loading it at run time.
C_HOST = '#include "plugin/entry_points.h"\nint main(void) { return terminate() == 1 ? 0 : 1; }\n'
CPP_HOST = '#include "simd/simd.h"\nint main() { return GetCpuInstructionSet() >= 2 ? 0 : 1; }\n'


class Installation(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)

    def write(self, name, text):
        file = self.folder / name
        file.write_text(text)
        return file

    def test_holds_exactly_the_listed_files(self):
        found = {str(file.relative_to(PREFIX)) for file in PREFIX.rglob("*") if not file.is_dir()}
        # What is Python is installed by its package or by pip.
        expected = [files for package, files in expected_files().items() if package != "python3-lightmotion"]
        self.assertEqual(found, set.union(*expected))

    def test_links_lead_from_the_name_to_the_version(self):
        self.assertEqual((LIBRARY_FOLDER / "liblightmotion.so").readlink().name, "liblightmotion.so.1")
        self.assertEqual((LIBRARY_FOLDER / "liblightmotion.so.1").readlink().name, f"liblightmotion.so.{VERSION}")

    def test_names_no_folder_of_the_build(self):
        # Absolute paths of what is in it: a folder "/lightmotion" alone would be found in "lightmotion/lightmotion.h".
        names = b"|".join(re.escape(os.fsencode(name)) for name in os.listdir(SOURCE))
        path = re.compile(rb"(?<![\w.}-])" + re.escape(bytes(SOURCE)) + rb"/(" + names + rb")\b")
        for file in PREFIX.rglob("*"):
            if file.is_file():
                text = file.read_bytes().replace(bytes(PREFIX), b"") # the prefix may be inside the build folder
                self.assertIsNone(path.search(text), file)

    def test_every_header_compiles_alone_and_has_both_names(self):
        for header in HEADERS:
            source = self.write("header.cpp", f"#include <{header}>\n#include <lightmotion/{header}>\n")
            output_of("c++", "-std=c++20", *WARNINGS, "-fsyntax-only", *pkg_config("--cflags"), source)

    def test_c_header_serves_a_c_compiler_of_any_age(self):
        source = self.write("host.c", C_HOST)
        for standard in "c99", "c11", "c17":
            output_of("cc", f"-std={standard}", *WARNINGS, source, *pkg_config("--cflags", "--libs"), "-o", self.folder / "host")
            output_of(self.folder / "host")

    def test_pkg_config_knows_version_and_folders(self):
        self.assertEqual(pkg_config("--modversion"), [VERSION])
        self.assertEqual(pkg_config("--variable=libdir"), [str(LIBRARY_FOLDER)])
        self.assertIn("-llightmotion", pkg_config("--libs"))
        self.assertNotIn("-ljsoncpp", pkg_config("--libs"))

    def build_with_cmake(self, language, source, version):
        self.write("CMakeLists.txt", f"""
            cmake_minimum_required(VERSION 3.22)
            project(host LANGUAGES {language})
            find_package(lightmotion {version} REQUIRED)
            add_executable(host {source.name})
            target_link_libraries(host PRIVATE lightmotion::lightmotion)""")
        build = self.folder / f"build-{language}"
        done = run("cmake", "-S", self.folder, "-B", build)
        if done.returncode == 0:
            output_of("cmake", "--build", build)
            output_of(build / "host")
        return done

    def test_cmake_package_serves_c_and_cpp(self):
        for language, source in ("C", self.write("host.c", C_HOST)), ("CXX", self.write("host.cpp", CPP_HOST)):
            done = self.build_with_cmake(language, source, "1.0")
            self.assertEqual(done.returncode, 0, done.stderr)

    def test_cmake_package_refuses_another_major_version(self):
        for version in "0.9", "2":
            done = self.build_with_cmake("C", self.write("host.c", C_HOST), version)
            self.assertIn(f"version: {VERSION}", done.stderr)
            self.assertNotEqual(done.returncode, 0, version)


class Program(unittest.TestCase):
    program = PREFIX / "bin/lightmotion"

    def test_tells_the_version(self):
        self.assertEqual(output_of(self.program, "--version"), f"lightmotion {VERSION}\n")

    def test_finds_the_plug_in_beside_it_and_runs_the_example_configuration(self):
        example = PREFIX / "share/doc/lightmotion/examples/night.json"
        plain = dict(ENVIRONMENT)
        del plain["LD_LIBRARY_PATH"]
        done = run(self.program, "run", "--quiet", "--config", example, environment=plain)
        self.assertEqual((done.returncode, done.stderr), (0, ""))
        self.assertGreater(len(done.stdout.splitlines()), 100) # of 500 frames; people walk in 18 of 20 seconds


if __name__ == "__main__":
    unittest.main()
