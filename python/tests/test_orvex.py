"""The module with the real library; the driver takes a person's part in the dialog."""

import ctypes
import logging
import os
import pathlib
import shutil
import subprocess
import sys
import tempfile
import unittest

import orvex

NAMES = ["a.las", "über b.las"]


class Driver:
    """The functions of entry/tests/foreign/ForeignDriver.h."""

    def __init__(self):
        self._library = ctypes.CDLL(os.environ["FOREIGN_DRIVER"])
        self._library.DriverLeft.restype = ctypes.c_size_t

    def begin(self, *commands):
        self._library.DriverBegin("\n".join(commands).encode(), None)

    def left(self):
        return self._library.DriverLeft()

    def serve(self, folder):
        self._library.DriverServe(ctypes.c_wchar_p(folder))


class Program(orvex.Host):
    """A host that notes what it is asked."""

    def __init__(self, folder):
        self.folder = folder
        self.settings = {}
        self.read = set()
        self.options = []
        self.lines = []

    def get_setting(self, section, key):
        self.read.add((section, key))
        return self.settings.get((section, key))

    def set_setting(self, section, key, value):
        self.settings[section, key] = value

    def get_option(self, item):
        self.options.append(item)
        return None

    def project_folder(self):
        return self.folder

    def log(self, level, line):
        self.lines.append(line)


class Lost(Program):
    """A host whose project is on a drive that has gone."""

    def project_folder(self):
        raise OSError("the drive has gone")


class OrvexTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.driver = Driver()
        cls.folder = pathlib.Path(cls.enterClassContext(tempfile.TemporaryDirectory()))
        cls.driver.serve(str(cls.folder))
        cls.addClassCleanup(cls.driver.serve, None)

    def add(self, host, *commands, **inputs):
        self.driver.begin(*commands)
        return orvex.add_files(host, **inputs)

    def test_inspect_reads_what_is_there_and_says_what_is_not(self):
        bytes_name = os.fsdecode(os.fsencode(self.folder) + b"/\xff.las")
        shutil.copy(self.folder / NAMES[0], bytes_name)
        paths = [self.folder / name for name in NAMES] + [bytes_name, self.folder / "missing.las"]
        reports = orvex.inspect(paths)
        for i in (0, 1, 3):  # the third's name is shown as Unicode
            self.assertEqual(reports[i]["path"], os.fspath(paths[i]))
        self.assertEqual([report["loadable"] for report in reports], [True, True, True, False])
        self.assertEqual([report["las"]["pointCount"] for report in reports[:3]], [400] * 3)
        self.assertEqual(orvex.inspect(paths[1])[0], reports[1])
        self.assertEqual(orvex.inspect(paths[0], kind="raster")[0]["kind"], "raster")
        self.assertEqual(orvex.inspect([]), [])

    def test_what_is_refused(self):
        refused = [
            (lambda: orvex.inspect("a.las", kind="nonsense"), "kind"),
            (lambda: orvex.add_files(nonsense=1), "nonsense"),
            (lambda: orvex.add_files(initialTab="first"), "initialTab"),
        ]
        for call, word in refused:
            with self.subTest(word), self.assertRaises(orvex.OrvexError) as raised:
                call()
            self.assertEqual(raised.exception.status, orvex.Status.INVALID)
            self.assertIn(word, str(raised.exception))
        with self.assertRaises(ValueError):
            orvex.inspect("a\0.las")
        with self.assertRaises(TypeError):
            orvex.add_files(initialPaths=object())

    def test_the_dialog_gives_what_was_chosen_and_asks_the_host(self):
        paths = [os.fspath(self.folder / name) for name in NAMES]
        host = Program(self.folder)
        chosen = self.add(host, "click ok", "click yes", showDemTab=True,
                          initialPaths=[self.folder / name for name in NAMES])
        self.assertEqual(self.driver.left(), 0)
        self.assertEqual(chosen["lasFiles"], {os.fspath(self.folder): NAMES})
        self.assertEqual(sorted(chosen["lasFileLayers"]), paths)
        self.assertEqual({path: file["las"]["pointCount"] for path, file in chosen["lasFileDetails"].items()},
                         dict.fromkeys(paths, 400))
        self.assertIn(("AddFilesDlg", "DEMThinningFactor"), host.read)

    def test_cancel_is_none(self):
        self.assertIsNone(self.add(None, "click cancel"))
        self.assertIsNone(self.add(Program(""), "click cancel"))

    def test_an_exception_of_the_host_is_the_cause(self):
        with self.assertLogs("orvex", logging.ERROR), self.assertRaises(orvex.OrvexError) as raised:
            self.add(Lost(self.folder), "click ok")  # of the message
        self.assertEqual(raised.exception.status, orvex.Status.FAILED)
        self.assertIsInstance(raised.exception.__cause__, OSError)

    def test_the_library_is_looked_for_where_it_was_named(self):
        for name, reason in (("nowhere.so", "nowhere.so"), (os.environ["FOREIGN_DRIVER"], "is not the library")):
            with self.subTest(name):
                ended = subprocess.run([sys.executable, "-c", "import orvex; orvex.version()"], text=True,
                                       capture_output=True, env={**os.environ, "ORVEX_LIBRARY": name})
                self.assertNotEqual(ended.returncode, 0)
                self.assertIn("OSError", ended.stderr)
                self.assertIn(reason, ended.stderr)
        self.assertRegex(orvex.version(), r"^\d+\.\d+\.\d+$")


if __name__ == "__main__":
    unittest.main()
