# SPDX-License-Identifier: MIT
"""What callers pass, checked. A refusal is one sentence: the argument's name and what it takes."""

from __future__ import annotations

import difflib
import inspect
import numbers
import os
import reprlib
from collections.abc import Collection, Iterable
from typing import Any, Callable

import numpy as np


def shown(value: object) -> str:
    """What was passed instead, on one line, however long it is."""
    return " ".join(reprlib.repr(value).split())


def refuse_unknown(function: Callable[..., Any], options: Iterable[str]) -> None:
    """Raises TypeError for an option that the function does not have, naming one that it has."""
    known = list(inspect.signature(function).parameters)
    for name in options:
        if name not in known:
            near = difflib.get_close_matches(name, known, 1)
            advice = f"did you mean {near[0]!r}?" if near else f"it has {', '.join(known)}"
            raise TypeError(f"{function.__name__}() has no option {name!r}: {advice}")


def number(name: str, value: Any, wanted: str = "a number") -> Any:
    """A real number of any type, also in an array without axes, as np.load returns them. Raises
    TypeError for others: also for True and False, which Python counts among the integers."""
    found = value[()] if isinstance(value, np.ndarray) and value.ndim == 0 else value
    if not isinstance(found, numbers.Real) or isinstance(found, bool):
        raise TypeError(f"{name} must be {wanted}, not {shown(value)}")
    return found


def whole(name: str, value: Any, lowest: int, highest: int) -> int:
    """A whole number, as an integer or as a float, which tables and readers of sound files give."""
    wanted = f"a whole number from {lowest} to {highest}"
    found = number(name, value, wanted)
    try:
        is_whole = isinstance(found, numbers.Integral) or float(found).is_integer()
    except OverflowError:  # a fraction that no float can hold is past every limit
        is_whole = True
    if not is_whole:
        raise TypeError(f"{name} must be {wanted}, not {shown(value)}")
    if not lowest <= found <= highest:
        raise ValueError(f"{name} must be {wanted}, not {shown(value)}")
    return int(found)


def one_of(name: str, value: Any, choices: tuple[int, ...]) -> int:
    *others, last = map(str, choices)
    wanted = f"{', '.join(others)} or {last}"
    found = number(name, value, wanted)
    if found not in choices:
        raise ValueError(f"{name} must be {wanted}, not {shown(value)}")
    return int(found)


def one_word(name: str, value: Any, words: Collection[str]) -> str:
    wanted = f"one of {', '.join(words)}"
    if not isinstance(value, str):
        raise TypeError(f"{name} must be {wanted}, not {shown(value)}")
    if value not in words:
        raise ValueError(f"{name} must be {wanted}, not {shown(value)}")
    return value


def flag(name: str, value: Any) -> bool:
    """A text such as "no" would count as true."""
    if not isinstance(value, (bool, np.bool_, int, np.integer)) or value not in (0, 1):
        raise TypeError(f"{name} must be True or False, not {shown(value)}")
    return bool(value)


def tempo_range(bpm_range: Any) -> tuple[float, float]:
    wanted = ("bpm_range must be two tempi within 20 and 1000 BPM, the second at least twice the "
              f"first, such as (80, 160), not {shown(bpm_range)}")
    try:
        lowest, highest = (number("bpm_range", bpm) for bpm in bpm_range)
    except TypeError:
        raise TypeError(wanted) from None
    except ValueError:  # more than two, or fewer
        raise ValueError(wanted) from None
    if not (20 <= lowest and highest <= 1000 and highest >= 2 * lowest):
        raise ValueError(wanted)
    return float(lowest), float(highest)


def file_name(source: Any) -> bytes:
    """In the bytes of the file system."""
    try:
        name = os.fsencode(source)
    except UnicodeEncodeError:
        raise ValueError("source must be a name in the encoding of the file system, not "
                         f"{shown(source)}") from None
    if b"\0" in name:
        raise ValueError(f"source must be a name without null characters, not {shown(source)}")
    return name
