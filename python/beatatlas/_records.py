# SPDX-License-Identifier: MIT
"""What the records of an analysis have in common."""

from __future__ import annotations

from typing import Any

import numpy as np


class RecordWithArrays:
    """A record some of whose members are arrays, which would make neither an equality nor a hash.

    Nobody changes the arrays by mistake: without __setstate__ they would be writable in what comes
    out of a pickle or a deep copy."""

    def __eq__(self, other: object) -> bool:
        if type(self) is not type(other):
            return NotImplemented
        theirs = vars(other)
        return all(np.array_equal(value, theirs[name]) if isinstance(value, np.ndarray)
                   else value == theirs[name] for name, value in vars(self).items())

    def __hash__(self) -> int:
        """Of the members that are no arrays, which tell most records apart."""
        return hash(tuple(value for value in vars(self).values()
                          if not isinstance(value, np.ndarray)))

    def __setstate__(self, state: dict[str, Any]) -> None:
        vars(self).update(state)
        for value in state.values():
            if isinstance(value, np.ndarray):
                value.setflags(write=False)
