# SPDX-License-Identifier: MIT
"""From an array of any kind to the samples that the library takes."""

from __future__ import annotations

from typing import Any

import numpy as np
from numpy.typing import NDArray

from ._arguments import shown

_MOST_CHANNELS = 64
_WANTED = ("source must be the name of a file, or an array of floats or of signed integers of 16 "
           "or 32 bits")
_FRAMES_AT_A_TIME = 65536


def as_frames(source: Any) -> NDArray[Any]:
    """Shape (frames, channels), of a kind that can be converted; not copied if it is an array."""
    if isinstance(source, np.ma.MaskedArray) and np.any(source.mask):
        raise ValueError("source must hold a number everywhere, but has masked values")
    try:
        array = np.asarray(source)
    except (TypeError, ValueError) as error:  # rows of different lengths, say
        raise type(error)(f"{_WANTED}, and this cannot be made one: {error}") from None
    kind = array.dtype.newbyteorder("=")
    if array.ndim == 0 or (kind.kind in "OSU" and array is not source):
        raise TypeError(f"{_WANTED}, not {shown(source)}")
    if not np.issubdtype(kind, np.floating) and kind not in (np.int16, np.int32):
        raise TypeError(f"{_WANTED}, not one of {array.dtype}")
    return _channels_last(array)


def _channels_last(array: NDArray[Any]) -> NDArray[Any]:
    if array.ndim not in (1, 2):
        raise ValueError("source must have the shape (frames,), (frames, channels) or "
                         f"(channels, frames), not {array.shape}")
    if array.size == 0:
        raise ValueError(f"source must hold at least one frame, but has the shape {array.shape}")
    if array.ndim == 1:
        return array[:, np.newaxis]
    if min(array.shape) > _MOST_CHANNELS:
        raise ValueError(f"source must have 1 to {_MOST_CHANNELS} channels, which is neither "
                         f"number of its shape {array.shape}")
    return array.T if array.shape[0] < array.shape[1] else array


def interleaved(array: NDArray[Any]) -> NDArray[np.float32]:
    """From what as_frames returns: floats of full scale ±1.0, every value finite, the channels of a
    frame one after the other. The array is never written to, and copied unless it has this form."""
    kind = array.dtype.newbyteorder("=")
    with np.errstate(over="ignore"):  # What has become infinite is found afterwards.
        samples = np.ascontiguousarray(array, dtype=np.float32)
    if np.issubdtype(kind, np.integer):
        # A copy of the integers; the divisor is a power of two, so nothing is rounded here.
        samples /= np.float32(2.0 ** (8 * kind.itemsize - 1))
    _require_finite(samples)
    return samples


def _require_finite(samples: NDArray[np.float32]) -> None:
    for start in range(0, len(samples), _FRAMES_AT_A_TIME):
        is_finite = np.isfinite(samples[start:start + _FRAMES_AT_A_TIME])
        if not is_finite.all():
            frame = start + int(is_finite.all(axis=1).argmin())
            value = samples[frame][~np.isfinite(samples[frame])][0]
            raise ValueError(f"source must hold finite numbers: frame {frame} has {value}")
