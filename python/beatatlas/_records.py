# SPDX-License-Identifier: MIT
"""What the records of an analysis have in common."""

from __future__ import annotations

from typing import Any

import numpy as np


class ReadOnlyArrays:
    """A record whose arrays nobody changes by mistake: without this they would be writable in what
    comes out of a pickle or a deep copy."""

    def __setstate__(self, state: dict[str, Any]) -> None:
        vars(self).update(state)
        for value in state.values():
            if isinstance(value, np.ndarray):
                value.setflags(write=False)
