# SPDX-License-Identifier: MIT
"""Does jobs on all cores, some jobs ahead of whoever takes the results in order.

Threads serve where the work leaves the interpreter lock for long, as deflating does.
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
    """Yields (job, work(job)) for each job; an exception comes out in its job's turn, and ends the others.

    The jobs are taken from their iterator on the caller's thread, a few ahead of the results. Close the generator
    (contextlib.closing) where the results may not be taken to the end.
    """
    queue, waiting, threads = Queue.Queue(), collections.deque(), []
    count = min(_cores(), MOST_THREADS)
    try:
        for job in jobs:
            if len(threads) < count:
                threads.append(threading.Thread(target=_serve, args=(queue,)))
                threads[-1].start()
            waiting.append(_Turn(work, job))
            queue.put(waiting[-1])
            if len(waiting) > _AHEAD * count:
                turn = waiting.popleft()
                yield turn.job, turn.result()
        while waiting:
            turn = waiting.popleft()
            yield turn.job, turn.result()
    finally:
        _finish(queue, waiting, threads)


class _Turn(object):
    """One job and what became of it."""

    def __init__(self, work, job):
        self._work = work
        self.job = job
        self._result = self._error = None
        self._done = thread.allocate_lock()
        self._done.acquire()

    def cancel(self):
        self._work = None

    def run(self):
        try:
            work = self._work
            self._result = work(self.job) if work else None
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
    for unused in threads:
        queue.put(None)
    for one in threads:
        one.join()


def _cores():
    try:
        return os.sysconf("SC_NPROCESSORS_ONLN")
    except (OSError, ValueError):
        return 1
