"""Shows the Add Files dialog and lists what the user chose; given files, lists what is in them instead."""

import os
import sys

import orvex


class Program(orvex.Host):
    """Keeps the dialog's settings while it runs, and shows what the component has to report."""

    def __init__(self):
        self.settings = {}

    def get_setting(self, section, key):
        return self.settings.get((section, key))

    def set_setting(self, section, key, value):
        self.settings[section, key] = value

    def project_folder(self):
        return os.getcwd()

    def log(self, level, line):
        print(line, file=sys.stderr)


def show_dialog():
    chosen = orvex.add_files(Program(), existingLasLayers={"Survey 2019": ""}, showRasterTab=True)
    if chosen is None:
        print("Cancelled, or nothing was chosen")
        return
    for path, details in chosen["lasFileDetails"].items():
        print(f"{path}: {details['las']['pointCount']} points to layer {chosen['lasFileLayers'][path]}")


def list_files(paths):
    for report in orvex.inspect(paths):
        print(f"{report['path']}: {report['kind']}, {report['summary']}")


sys.stdout.reconfigure(errors="surrogateescape")  # file names need not be Unicode
try:
    list_files(sys.argv[1:]) if len(sys.argv) > 1 else show_dialog()
except orvex.OrvexError as error:
    sys.exit(f"{error.status.name}: {error}")
