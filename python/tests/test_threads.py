import threading
import time

import numpy as np

import vantracore
from conftest import document


def longest_pause_of_this_thread(work, threads=1):
    """Runs work on other threads and returns the longest time this thread could not run meanwhile.
    Were the GIL held during the work, this thread would stand still for the length of one call."""
    workers = [threading.Thread(target=work) for _ in range(threads)]
    for worker in workers:
        worker.start()
    longest, last = 0.0, time.perf_counter()
    while any(worker.is_alive() for worker in workers):
        now = time.perf_counter()
        longest, last = max(longest, now - last), now
    for worker in workers:
        worker.join()
    return longest


def duration(work):
    start = time.perf_counter()
    work()
    return time.perf_counter() - start


COUNT = 2_000_000
TEXT = document("double", [0.5] * COUNT, [COUNT])


def test_reading_in_two_threads_at_once():
    results = []
    one = duration(lambda: vantracore.loads(TEXT))
    pause = longest_pause_of_this_thread(lambda: results.append(vantracore.loads(TEXT)), threads=2)
    assert len(results) == 2 and all(result.shape == (COUNT,) and result[-1] == 0.5 for result in results)
    assert pause < one / 2, f"stood still {pause:.3f} s of a {one:.3f} s parse"


def test_writing_and_converting_release_the_gil():
    values = np.linspace(0, 1, COUNT)
    one = duration(lambda: vantracore.dumps(values, numbers="15"))
    pause = longest_pause_of_this_thread(lambda: vantracore.dumps(values, numbers="15"))
    assert pause < one / 2, f"stood still {pause:.3f} s of a {one:.3f} s write"
    big = np.ones(8 * COUNT)
    one = duration(lambda: vantracore.convert(big, "mV", "V"))
    pause = longest_pause_of_this_thread(lambda: vantracore.convert(big, "mV", "V"))
    assert pause < one / 2, f"stood still {pause:.3f} s of a {one:.3f} s conversion"


def test_threads_read_and_write_correctly_side_by_side():
    failures = []

    def work(seed):
        values = np.arange(seed, seed + 10_000, dtype=np.int32)
        for _ in range(20):
            back = vantracore.loads(vantracore.dumps({"v": values}, numbers="15"))["v"]
            if not np.array_equal(back, values):
                failures.append(seed)

    threads = [threading.Thread(target=work, args=(seed,)) for seed in range(4)]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    assert failures == []
