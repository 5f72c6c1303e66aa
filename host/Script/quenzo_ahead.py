# SPDX-License-Identifier: MIT
"""Does a list of jobs on all cores, some jobs ahead of whoever takes the results in order.

Threads serve as long as the work leaves the interpreter lock, as deflating and reading do.
"""
import collections
import os
import Queue
import sys
import thread
import threading

MOST_THREADS = 8
_AHEAD = 4              # jobs a thread that are begun or done before their turn


def in_order(work, jobs):
    """Yields work(job) for every job of a list; an exception comes out in its job's turn, and ends the others."""
    count = min(_cores(), MOST_THREADS, len(jobs))
    if count < 2:
        for job in jobs:
            yield work(job)
        return
    queue, waiting = Queue.Queue(), collections.deque()
    threads = [threading.Thread(target=_serve, args=(queue,)) for unused in range(count)]
    try:
        for one in threads:
            one.start()
        for job in jobs:
            turn = _Turn(work, job)
            waiting.append(turn)
            queue.put(turn)
            if len(waiting) > _AHEAD * count:
                yield waiting.popleft().result()
        while waiting:
            yield waiting.popleft().result()
    finally:
        _finish(queue, waiting, threads)


class _Turn(object):
    """One job and what became of it."""

    def __init__(self, work, job):
        self._work = work
        self._job = job
        self._result = self._error = None
        self._done = thread.allocate_lock()
        self._done.acquire()

    def cancel(self):
        self._work = None

    def run(self):
        try:
            work = self._work
            self._result = work(self._job) if work else None
        except Exception:
            self._error = sys.exc_info()
        finally:
            self._done.release()

    def result(self):
        self._done.acquire()
        if self._error:
            raise self._error[0], self._error[1], self._error[2]
        return self._result


def _serve(queue):
    for turn in iter(queue.get, None):
        turn.run()


def _finish(queue, waiting, threads):
    """No thread may outlive the call: the host may leave, and modules may be unloaded."""
    for turn in waiting:
        turn.cancel()
    begun = [one for one in threads if one.ident is not None]
    for unused in begun:
        queue.put(None)
    for one in begun:
        one.join()


def _cores():
    try:
        return os.sysconf("SC_NPROCESSORS_ONLN")
    except (OSError, ValueError):
        return 1
