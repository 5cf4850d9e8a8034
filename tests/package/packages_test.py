"""The Debian packages: contents, metadata, and lintian."""
import os
import pathlib
import re
import shutil
import sys
import tempfile
import unittest

from tests.support.installation import ARCH, SOURCE, VERSION, expected_files, output_of, run

FOLDER = pathlib.Path(os.environ["LIGHTMOTION_PACKAGES"])
PACKAGES = {file.name.split("_")[0]: file for file in FOLDER.glob("*.deb")}


def field(package, name):
    return output_of("dpkg-deb", "--field", PACKAGES[package], name).strip()


def dependencies(package):
    return re.split(", ", field(package, "Depends"))


def control_file(package, name):
    return output_of("dpkg-deb", "--info", PACKAGES[package], name)


class Packages(unittest.TestCase):
    def test_are_those_listed(self):
        self.assertEqual(set(PACKAGES), set(expected_files()))

    def test_hold_exactly_the_listed_files(self):
        for package, files in expected_files().items():
            lines = output_of("dpkg-deb", "--contents", PACKAGES[package]).splitlines()
            names = [line.split()[5] for line in lines if not line.startswith("d")]
            self.assertEqual(set(names), {"./usr/" + file for file in files}, package)

    def test_belong_to_root_with_modes_as_policy_has_them(self):
        for package, file in PACKAGES.items():
            for line in output_of("dpkg-deb", "--contents", file).splitlines():
                mode, owner, name = line.split()[0], line.split()[1], line.split()[5]
                expected = {"d": "drwxr-xr-x", "l": "lrwxrwxrwx"}.get(mode[0])
                runnable = name.endswith(("/usr/bin/lightmotion", "/host.py", "/boxes.py", ".sbatch", ".sh"))
                expected = expected or ("-rwxr-xr-x" if runnable else "-rw-r--r--")
                self.assertEqual((mode, owner), (expected, "root/root"), f"{package}: {name}")

    def test_state_the_version_of_the_project(self):
        for package in PACKAGES:
            self.assertEqual(field(package, "Version"), VERSION)

    def test_need_each_other_in_the_same_version(self):
        for package in "liblightmotion-dev", "lightmotion", "python3-lightmotion", "gstreamer1.0-lightmotion":
            self.assertIn(f"liblightmotion1 (= {VERSION})", dependencies(package))

    def test_need_the_libraries_that_they_use(self):
        self.assertRegex(field("liblightmotion1", "Depends"), r"libc6 \(.*libjsoncpp\d+ \(.*libstdc\+\+6 \(")
        self.assertRegex(field("lightmotion", "Depends"), r"libavformat\d+ \(.*libopencv-core\d+ \(")
        self.assertRegex(field("python3-lightmotion", "Depends"), r"python3 \(>= 3\.11~\), libc6 \(")
        self.assertRegex(field("gstreamer1.0-lightmotion", "Depends"),
                         r"libgstreamer-plugins-base1\.0-0 \(.*libgstreamer1\.0-0 \(.*libjsoncpp\d+ \(")
        self.assertIn("libjsoncpp-dev", dependencies("liblightmotion-dev"))

    def test_library_tells_dependants_which_package_has_which_names(self):
        self.assertEqual(control_file("liblightmotion1", "shlibs"), f"liblightmotion 1 liblightmotion1 (>= {VERSION})\n")
        bits = 64 if sys.maxsize > 2**32 else 32
        listed = (SOURCE / "packaging/symbols").read_text().splitlines(keepends=True)
        lines = [re.sub(rf"^ \(arch-bits={bits}\)", " ", line) for line in listed]
        names = [line for line in lines if not line.startswith(" (")]
        self.assertEqual(control_file("liblightmotion1", "symbols"), "".join(names))

    def test_library_is_registered_by_trigger_and_runs_no_scripts(self):
        self.assertIn("activate-noawait ldconfig\n", control_file("liblightmotion1", "triggers"))
        for package, file in PACKAGES.items():
            if package != "python3-lightmotion": # compiles its modules when it is installed, as all such packages
                self.assertNotRegex(output_of("dpkg-deb", "--info", file), r"\b(pre|post)(inst|rm)\b", package)

    def test_changelog_ends_with_the_version_of_the_project(self):
        with tempfile.TemporaryDirectory() as folder:
            for package, file in PACKAGES.items():
                output_of("dpkg-deb", "--extract", file, folder)
                changelog = f"{folder}/usr/share/doc/{package}/changelog.gz"
                told = output_of("dpkg-parsechangelog", "--file", changelog, "--show-field", "Version")
                self.assertEqual(told.strip(), VERSION)

    def test_a_program_that_uses_the_library_depends_on_its_package(self):
        """As dpkg-shlibdeps determines it for a package that uses the library."""
        with tempfile.TemporaryDirectory() as folder:
            host = pathlib.Path(folder, "host.c")
            host.write_text("int terminate(void); int main(void) { return terminate(); }\n")
            for package in "liblightmotion1", "liblightmotion-dev":
                output_of("dpkg-deb", "--extract", PACKAGES[package], f"{folder}/root")
            output_of("dpkg-deb", "--control", PACKAGES["liblightmotion1"], f"{folder}/root/DEBIAN")
            library_folder = f"{folder}/root/usr/lib/{ARCH}"
            output_of("cc", host, f"-L{library_folder}", "-llightmotion", "-o", f"{folder}/host")
            pathlib.Path(folder, "debian").mkdir()
            pathlib.Path(folder, "debian/control").touch()
            found = output_of("dpkg-shlibdeps", "-O", f"-S{folder}/root", "-e" + f"{folder}/host", cwd=folder)
            self.assertIn("liblightmotion1 (>= 1.0.0)", found)

    def test_python_module_finds_the_library_of_its_package(self):
        with tempfile.TemporaryDirectory() as folder:
            for package in "liblightmotion1", "python3-lightmotion":
                output_of("dpkg-deb", "--extract", PACKAGES[package], folder)
            where = {"PYTHONPATH": f"{folder}/usr/lib/python3/dist-packages", "LD_LIBRARY_PATH": f"{folder}/usr/lib/{ARCH}"}
            tell = "import lightmotion, importlib.metadata as m; print(lightmotion.__version__, m.version('lightmotion'))"
            told = output_of(sys.executable, "-B", "-c", tell, cwd=folder, environment={**os.environ, **where})
            self.assertEqual(told, f"{VERSION} {VERSION}\n")

    @unittest.skipUnless(shutil.which("lintian"), "lintian is not installed")
    def test_lintian_has_neither_errors_nor_warnings(self):
        done = run("lintian", "--allow-root", "--fail-on", "error,warning", *PACKAGES.values())
        self.assertEqual((done.returncode, done.stdout), (0, ""))


if __name__ == "__main__":
    unittest.main()
