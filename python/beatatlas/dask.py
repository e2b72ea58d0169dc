# SPDX-License-Identifier: MIT
"""Many tracks on the workers of a Dask cluster.

    >>> from distributed import Client
    >>> import beatatlas.dask
    >>> with Client("scheduler:8786") as client:
    ...     for path, found in beatatlas.dask.scan(client, paths):
    ...         print(path, found.bpm if found else "no result")

Every worker needs this package and sees the files by the same names. To have the results in a
catalogue, run ``beatatlas scan --shard`` on each machine instead.
"""

from __future__ import annotations

import itertools
import os
import sys
from collections.abc import Iterable, Iterator
from typing import Any, Union

import distributed

from . import Analysis, AnalysisError, analyze
from ._arguments import refuse_unknown, shown, whole


def scan(
    client: distributed.Client,
    paths: Iterable[Union[str, "os.PathLike[str]"]],
    *,
    retries: int = 3,
    in_flight: int = 1000,
    **options: Any,
) -> Iterator[tuple[str, Union[Analysis, AnalysisError]]]:
    """Analyses files on a cluster, each as a task of its own.

    A task is repeated on another worker when its worker is lost; since an analysis always gives the
    same result, nothing is lost or found twice. Results come as they are ready, in no order.

    Args:
        client: of the cluster.
        paths: file names as the workers see them. Read as results arrive: it may be endless.
        retries: how often a task is tried again after an error of the worker itself. Files that
            cannot be analysed are not tried again.
        in_flight: how many tasks the scheduler holds at a time, at least 1.
        options: of ``beatatlas.analyze``. A ``progress`` function cannot be passed.

    Yields:
        A file's name with its Analysis, or with the AnalysisError that says why there is none: also
        where it ends every worker that reads it.

    Raises:
        TypeError: for an argument or option of the wrong kind.
        ValueError: for one out of range.
    """
    if "progress" in options:
        raise TypeError("progress cannot be passed to a cluster")
    refuse_unknown(analyze, options)
    in_flight = whole("in_flight", in_flight, 1, sys.maxsize)
    if isinstance(paths, (str, bytes, os.PathLike)) or not isinstance(paths, Iterable):
        raise TypeError(f"paths must be a list of names or the like, not {shown(paths)}")
    if not isinstance(client, distributed.Client):
        raise TypeError(f"client must be a distributed.Client, not {shown(client)}")
    names = iter(paths)
    waiting: dict[Any, str] = {}
    tasks = distributed.as_completed(loop=client.loop)

    def hand_in(most: int) -> None:
        for name in itertools.islice(names, most):
            task = client.submit(_analyze_one, os.fspath(name), options, retries=retries,
                                 pure=False)
            waiting[task] = os.fspath(name)
            tasks.add(task)

    try:
        hand_in(in_flight)
        while waiting:
            task = next(tasks)
            name = waiting.pop(task)
            yield name, _outcome(name, task)
            hand_in(1)
    finally:
        client.cancel(list(waiting))


def _outcome(name: str, task: Any) -> Union[Analysis, AnalysisError]:
    error = task.exception()
    if error is None:
        found: Union[Analysis, Exception] = task.result()
        if isinstance(found, (Analysis, AnalysisError)):
            return found
        raise found
    if isinstance(error, distributed.KilledWorker):
        return AnalysisError(name, "has no result: the workers that read it were lost")
    raise error


def _analyze_one(path: str, options: dict[str, Any]) -> Union[Analysis, Exception]:
    """Returns what is no fault of the worker: raised here, it would be tried again elsewhere."""
    try:
        return analyze(path, **options)
    except (AnalysisError, TypeError, ValueError) as error:
        return error


__all__ = ["scan"]
