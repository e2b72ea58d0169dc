# SPDX-License-Identifier: MIT
"""From an array of any kind to the samples that the library takes."""

from __future__ import annotations

import math
import warnings
from typing import Any

import numpy as np
from numpy.typing import NDArray

_MOST_CHANNELS = 64
_FRAMES_AT_A_TIME = 65536

# As in the program: decoders and converters exceed full scale by a little now and then.
_LOUD_PEAK = 2.0
_MANY_CLIPPED = 0.01


def interleaved(source: Any) -> NDArray[np.float32]:
    """Shape (frames, channels), full scale ±1.0, every value finite. The array itself is never
    written to; it is copied unless it has this form."""
    array = np.asarray(source)
    if array.ndim == 1:
        array = array[:, np.newaxis]
    if array.ndim != 2:
        raise ValueError(f"an array of samples has one or two axes, not {array.ndim}")
    if array.shape[0] < array.shape[1]:
        array = array.T
    frames, channels = array.shape
    if frames == 0 or channels == 0:
        raise ValueError("the array has no samples")
    if channels > _MOST_CHANNELS:
        raise ValueError(f"an array of shape {array.shape} has no axis of channels: at most 64")
    samples = _full_scale(array)
    _check_levels(samples)
    return samples


def _full_scale(array: NDArray[Any]) -> NDArray[np.float32]:
    kind = array.dtype.newbyteorder("=")
    if not np.issubdtype(kind, np.floating) and kind not in (np.int16, np.int32):
        raise TypeError(f"samples are floats or signed integers of 16 or 32 bits, not {array.dtype}")
    with np.errstate(over="ignore"):  # What has become infinite is found afterwards.
        samples = np.ascontiguousarray(array, dtype=np.float32)
    if np.issubdtype(kind, np.integer):
        # A copy of the integers; the divisor is a power of two, so nothing is rounded here.
        samples /= np.float32(2.0 ** (8 * kind.itemsize - 1))
    return samples


def _check_levels(samples: NDArray[np.float32]) -> None:
    """Raises ValueError for what is no finite number. Warns of what is far too loud, as are integers
    that were made floats without being divided."""
    peak, clipped = 0.0, 0
    for start in range(0, len(samples), _FRAMES_AT_A_TIME):
        size = np.abs(samples[start:start + _FRAMES_AT_A_TIME])
        loudest = float(size.max())  # NaN where there is one
        if not math.isfinite(loudest):
            frame = start + int(np.isfinite(size).all(axis=1).argmin())
            value = samples[frame][~np.isfinite(samples[frame])][0]
            raise ValueError(f"a sample must be a finite number: frame {frame} has {value}")
        peak = max(peak, loudest)
        clipped += int(np.count_nonzero(size > 1))
    if peak >= _LOUD_PEAK or clipped > _MANY_CLIPPED * samples.size:
        warnings.warn(f"the samples are too loud: full scale is 1, they reach {peak:g}, and "
                      f"{clipped} of them are clipped", stacklevel=5)
