"""OrvexCommon from Python: what is in point clouds, rasters, features and photos, and the dialog that adds them.

    import orvex

    for report in orvex.inspect(["tile.laz", "image.tif"]):
        print(report["path"], report["summary"])

    chosen = orvex.add_files(existingLasLayers={"Survey 2019": ""})
    if chosen is not None:
        print(chosen["lasFileLayers"])

The library is loaded by the first call: the file that the environment variable ORVEX_LIBRARY names, else the one in
this package's folder, else the one that the system's loader finds.
"""

from __future__ import annotations

import json
import os
from collections.abc import Iterable
from ctypes import byref
from typing import Any, Optional, Union

from ._host import Account, Host, HostTable
from ._library import OrvexError, Status, library, result_of

__all__ = ["Account", "Host", "OrvexError", "Status", "add_files", "inspect", "version"]

StrPath = Union[str, "os.PathLike[str]"]


def version() -> str:
    """Version of the library, as "1.2.3"."""
    text: bytes = library().orvex_version()
    return text.decode()


def inspect(paths: Union[StrPath, Iterable[StrPath]], *, kind: Optional[str] = None) -> list[dict[str, Any]]:
    """Returns for each file the object that the command orvex-inspect prints for it (docs/inspect.md).

    `paths` is one path or several. `kind` ("las", "raster", "dem", "feature" or "photo") comes before what the file's
    name says. A file that is missing or damaged has "loadable" false and the reason in "summary"; it raises nothing.
    Raises OrvexError if a kind is unknown or the library fails.
    """
    if isinstance(paths, (str, os.PathLike)):
        paths = [paths]
    request = None if kind is None else _request({"kind": kind})
    return [_inspect_one(path, request) for path in paths]


def _inspect_one(path: StrPath, request: Optional[bytes]) -> dict[str, Any]:
    name = os.fsencode(path)
    if b"\0" in name:
        raise ValueError("embedded null character in a path")
    return dict(result_of(lambda text: library().orvex_inspect(name, request, byref(text))))


def add_files(host: Optional[Host] = None, **inputs: Any) -> Optional[dict[str, Any]]:
    """Shows the Add Files dialog until the user closes it. Returns the record's results; None after Cancel.

    `inputs` are inputs of the record under the names of its members (docs/record.md): showRasterTab=True,
    initialPaths=["/data"]. Paths may be os.PathLike. `host` answers the component's questions meanwhile; without one it
    uses its own defaults. Raises OrvexError: with Status.NOT_SHOWN if there is no display, Status.INVALID for an input
    that is unknown or of the wrong type, Status.FAILED for all else, with an exception of `host` as its cause.
    """
    table = HostTable(host or Host())
    request = _request(inputs)
    try:
        return dict(
            result_of(lambda text: library().orvex_show_add_files(byref(table.structure), request, byref(text)))
        )
    except OrvexError as error:
        if error.status == Status.CANCELLED:
            return None
        raise error from table.error


def _request(members: dict[str, Any]) -> bytes:
    return json.dumps(members, default=os.fspath, allow_nan=False).encode("ascii")
