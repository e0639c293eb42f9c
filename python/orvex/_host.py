"""A host in Python, and the table of functions through which the component asks it."""

from __future__ import annotations

import ctypes
import dataclasses
import json
import logging
import os
from typing import Any, Callable, Optional, Union

from . import _library

Value = Union[int, float, str]

_logger = logging.getLogger("orvex")


@dataclasses.dataclass(frozen=True)
class Account:
    """The signed-in user's account at a cloud service."""

    user: str = ""
    service: str = ""
    token: str = dataclasses.field(default="", repr=False)


class Host:
    """What the component asks of its host. Override what the program has; for the rest the component's defaults hold
    (orvexcommon/orvex.h). All but `log` are called on the thread of the call."""

    owner: int = 0
    """The window that owns the dialogs: an HWND on Windows, else a QWidget's winId(); 0: the active one."""

    def get_setting(self, section: str, key: str) -> Optional[Value]:
        """The value that was stored; None if none was. Goes together with `set_setting`."""
        raise NotImplementedError

    def set_setting(self, section: str, key: str, value: Value) -> None:
        """Stores a value."""
        raise NotImplementedError

    def get_option(self, item: int) -> Optional[Value]:
        """An option item of the host by its number; None if it has none."""
        raise NotImplementedError

    def project_folder(self) -> Union[str, "os.PathLike[str]"]:
        """Folder of the open project; empty if none is open."""
        raise NotImplementedError

    def account(self) -> Optional[Account]:
        """The signed-in user's account; None if nobody is signed in."""
        raise NotImplementedError

    def log(self, level: int, line: str) -> None:
        """A line of the component's log, `level` 0 for information and 1 for warnings. Called on any thread."""
        raise NotImplementedError


class HostTable:
    """OrvexHost of a host, for one call. What the host does not override is null in it."""

    def __init__(self, host: Host) -> None:
        self._host = host
        self.error: Optional[BaseException] = None
        """The first exception that the host has raised."""
        functions: tuple[tuple[str, Any, Callable[..., Any]], ...] = (
            ("get_setting", _library.GetSetting, self._get_setting),
            ("set_setting", _library.SetSetting, self._set_setting),
            ("get_option", _library.GetOption, self._get_option),
            ("project_folder", _library.GetText, self._project_folder),
            ("account", _library.GetText, self._account),
            ("log", _library.Log, self._log),
        )
        # The structure keeps its functions alive.
        self.structure = _library.HostStructure(size=ctypes.sizeof(_library.HostStructure), owner=host.owner or None)
        for name, prototype, function in functions:
            if self._overrides(name):
                setattr(self.structure, name, prototype(function))

    def _overrides(self, name: str) -> bool:
        return getattr(type(self._host), name) is not getattr(Host, name)

    def _guarded(self, work: Callable[[], Any]) -> int:
        """0, or 1 if `work` says None or raises: nothing may leave a function that C calls."""
        try:
            return 1 if work() is None else 0
        except BaseException as error:
            self.error = self.error or error
            _logger.error("a function of the host has failed", exc_info=True)
            return 1

    def _get_setting(self, _: Any, section: bytes, key: bytes, put: int, sink: int) -> int:
        return self._guarded(lambda: _put(put, sink, self._host.get_setting(section.decode(), key.decode())))

    def _set_setting(self, _: Any, section: bytes, key: bytes, value: bytes) -> int:
        def store() -> bool:
            self._host.set_setting(section.decode(), key.decode(), json.loads(value))
            return True

        return self._guarded(store)

    def _get_option(self, _: Any, item: int, put: int, sink: int) -> int:
        return self._guarded(lambda: _put(put, sink, self._host.get_option(item)))

    def _project_folder(self, _: Any, put: int, sink: int) -> int:
        return self._guarded(lambda: _put_bytes(put, sink, os.fsencode(self._host.project_folder())))

    def _account(self, _: Any, put: int, sink: int) -> int:
        def answer() -> bool:
            account = self._host.account()
            return _put_bytes(put, sink, _json(account and dataclasses.asdict(account)))

        return self._guarded(answer)

    def _log(self, _: Any, level: int, line: bytes) -> None:
        self._guarded(lambda: self._host.log(level, line.decode("utf-8", "replace")))


def _json(value: Any) -> bytes:
    return json.dumps(value, allow_nan=False).encode("ascii")


def _put_bytes(put: int, sink: int, text: bytes) -> bool:
    _library.Put(put)(sink, text)
    return True


def _put(put: int, sink: int, value: Optional[Value]) -> Optional[bool]:
    return None if value is None else _put_bytes(put, sink, _json(value))
