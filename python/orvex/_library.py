"""The shared library, found and loaded, with the types of its functions (orvexcommon/orvex.h)."""

from __future__ import annotations

import ctypes
import enum
import functools
import json
import os
import sys
from ctypes import CFUNCTYPE, POINTER, c_char_p, c_int32, c_size_t, c_void_p
from pathlib import Path
from typing import Any, Callable

INTERFACE_VERSION = 1

# What is loaded from a full path on Windows finds its own libraries beside itself.
LOAD_WITH_ALTERED_SEARCH_PATH = 0x8


class Status(enum.IntEnum):
    """How a call has ended."""

    OK = 0
    CANCELLED = 1
    NOT_SHOWN = 2
    INVALID = 3
    FAILED = 4
    NO_MEMORY = 5


class OrvexError(RuntimeError):
    """A call has failed; its text is the library's reason."""

    def __init__(self, status: Status, reason: str) -> None:
        super().__init__(reason or status.name)
        self.status = status


Put = CFUNCTYPE(None, c_void_p, c_char_p)
GetSetting = CFUNCTYPE(c_int32, c_void_p, c_char_p, c_char_p, c_void_p, c_void_p)
SetSetting = CFUNCTYPE(c_int32, c_void_p, c_char_p, c_char_p, c_char_p)
GetOption = CFUNCTYPE(c_int32, c_void_p, c_int32, c_void_p, c_void_p)
GetText = CFUNCTYPE(c_int32, c_void_p, c_void_p, c_void_p)
Log = CFUNCTYPE(None, c_void_p, c_int32, c_char_p)


class HostStructure(ctypes.Structure):
    """OrvexHost."""

    _fields_ = [
        ("size", c_size_t),
        ("context", c_void_p),
        ("owner", c_void_p),
        ("get_setting", GetSetting),
        ("set_setting", SetSetting),
        ("get_option", GetOption),
        ("project_folder", GetText),
        ("account", GetText),
        ("log", Log),
    ]


# Name, type of the result, types of the arguments.
_FUNCTIONS: tuple[tuple[str, Any, list[Any]], ...] = (
    ("orvex_interface_version", c_int32, []),
    ("orvex_version", c_char_p, []),
    ("orvex_show_add_files", c_int32, [POINTER(HostStructure), c_char_p, POINTER(c_void_p)]),
    ("orvex_inspect", c_int32, [c_char_p, c_char_p, POINTER(c_void_p)]),
    ("orvex_last_error", c_char_p, []),
    ("orvex_free", None, [c_void_p]),
)


def _names() -> list[str]:
    """The library's names, those to be tried first at the head."""
    named = os.environ.get("ORVEX_LIBRARY")
    if named:
        return [os.path.abspath(named)]
    files = ["OrvexCommon.dll"] if sys.platform == "win32" else ["libOrvexCommon.so.0", "libOrvexCommon.so"]
    folder = Path(__file__).resolve().parent
    return [str(folder / file) for file in files if (folder / file).exists()] or files


def _load() -> ctypes.CDLL:
    reasons = []
    for name in _names():
        try:
            if sys.platform == "win32" and os.path.isabs(name):
                return ctypes.CDLL(name, winmode=LOAD_WITH_ALTERED_SEARCH_PATH)
            return ctypes.CDLL(name)
        except OSError as error:
            reasons.append(str(error))
    raise OSError("the library OrvexCommon cannot be loaded (ORVEX_LIBRARY can name it): " + "; ".join(reasons))


@functools.lru_cache(maxsize=None)
def library() -> ctypes.CDLL:
    """The loaded library. Raises OSError if there is none, or one that is too old."""
    loaded = _load()
    try:
        for name, result, arguments in _FUNCTIONS:
            function = getattr(loaded, name)
            function.restype = result
            function.argtypes = arguments
    except AttributeError as error:
        raise OSError(f"{loaded._name} is not the library that is asked for: {error}") from None
    found = loaded.orvex_interface_version()
    if found < INTERFACE_VERSION:
        raise OSError(f"{loaded._name} has version {found} of the interface; {INTERFACE_VERSION} is needed")
    return loaded


def result_of(call: Callable[[c_void_p], Any]) -> Any:
    """The JSON value that a function of the library has written; `call` is given the place for it.

    Raises OrvexError unless the status is OK.
    """
    text = c_void_p()
    status = Status(call(text))
    if status != Status.OK:
        raise OrvexError(status, library().orvex_last_error().decode("utf-8", "replace"))
    try:
        return json.loads(ctypes.string_at(text.value or 0).decode("utf-8"))
    finally:
        library().orvex_free(text)
