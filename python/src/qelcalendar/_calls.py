"""Calls of the library that call back.

Python runs signal handlers in the main thread, between any two steps of its code. What a handler
raises within a callback (Ctrl-C, a time limit) would be lost, and the callback's data with it. So the
main thread makes such a call in another thread and waits for it, and callbacks only collect.
"""

from __future__ import annotations

import _thread
import sys
import threading
from typing import Callable, Optional, TypeVar

_T = TypeVar("_T")


class Stop:
    """Ends a call by its next callback: the callback returns `asked`."""

    asked = False
    problem: Optional[BaseException] = None
    """What failed in a callback, memory that is exhausted."""

    def failed(self, problem: BaseException) -> int:
        """What a callback returns that failed."""
        self.problem = problem
        self.asked = True
        return 1


def apart(stop: Stop, work: Callable[[], _T]) -> _T:
    """Calls `work`, out of reach of signal handlers. When one raises, `work` is stopped and the
    exception comes out of here after its end.

    `work` keeps all that it uses alive: should a second handler raise at the wrong moment, it may
    outlast this call.
    """
    if threading.get_ident() != threading.main_thread().ident or sys.is_finalizing():
        return work()
    begun, done = _thread.allocate_lock(), _thread.allocate_lock()
    done.acquire()
    results: list[_T] = []
    problems: list[BaseException] = []

    def run() -> None:
        if not begun.acquire(False):
            return
        try:
            results.append(work())
        except BaseException as problem:
            problems.append(problem)
        done.release()

    try:
        try:
            _thread.start_new_thread(run, ())
        except RuntimeError as problem:
            if problem.__traceback__ is not None and problem.__traceback__.tb_next is not None:
                raise  # of a signal handler
            if begun.acquire(False):
                return work()  # no more threads
        done.acquire()
    except BaseException:
        stop.asked = True
        # A handler may have raised before the thread began, which then has nothing to do.
        if not begun.acquire(False):
            while not results and not problems:
                try:
                    done.acquire()
                except BaseException:  # the first one counts
                    continue
        raise
    if problems:
        try:
            raise problems[0]
        finally:
            problems.clear()
    return results[0]
