"""Runs let go of the interpreter, can be interrupted, and tell how far they are."""
import os
import pathlib
import signal
import subprocess
import sys
import textwrap
import threading
import time

import numpy as np
import pytest

import quelide as qel
from support import same

PACKAGE = str(pathlib.Path(qel.__file__).parents[0].parent)
SLOW = dict(patchSize=3, searchWindowSize=12, similarity=3.0)  # non-local means: seconds for a megapixel


def noise(*shape, dtype=np.uint8):
    return np.random.default_rng(3).integers(0, 255, shape).astype(dtype)


def in_child(code, **popen):
    return subprocess.Popen([sys.executable, "-c", textwrap.dedent(code)], stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                            text=True, env={**os.environ, "PYTHONPATH": PACKAGE}, **popen)


def test_lets_other_threads_go_on():
    image = noise(1500, 1500)
    ticks, done = [], threading.Event()

    def tick():
        while not done.is_set():
            ticks.append(time.perf_counter())
            time.sleep(0.002)

    clock = threading.Thread(target=tick)
    clock.start()
    begin = time.perf_counter()
    qel.NonLocalMeanFilter2D(image, patchSize=2, searchWindowSize=4, similarity=3.0)
    end = time.perf_counter()
    done.set()
    clock.join()
    inside = [each for each in ticks if begin < each < end]
    assert end - begin > 0.05 and len(inside) >= 3


def test_two_threads_run_two_algorithms_at_once():
    image = noise(600, 600)
    expected = [qel.MedianFilter2D(image, size) for size in (1, 2, 3, 4)]
    results = [None] * 4
    running = []

    def run(i):
        algorithm = qel.create("MedianFilter2D")
        algorithm.input, algorithm.neighborhoodSize = image, i + 1
        for _ in range(3):
            results[i] = algorithm.run()
        running.append(i)

    threads = [threading.Thread(target=run, args=(i,)) for i in range(4)]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    assert len(running) == 4 and all(same(a, b) for a, b in zip(results, expected))


def test_one_object_is_not_run_twice_at_once():
    algorithm = qel.create("NonLocalMeanFilter2D")
    algorithm.input = noise(1500, 1500)
    for name, value in SLOW.items():
        setattr(algorithm, name, value)
    failed = []

    def run():
        with pytest.raises(qel.Cancelled):
            algorithm.run()
        failed.append(True)

    thread = threading.Thread(target=run)
    thread.start()
    while not algorithm.running:
        time.sleep(0.001)
    with pytest.raises(RuntimeError, match="is running"):
        algorithm.run()
    with pytest.raises(qel.PropertyError, match="locked"):
        algorithm.similarity = 1.0
    assert algorithm.cancel()
    thread.join()
    assert failed and not algorithm.running


def test_a_cancelled_run_is_no_result():
    algorithm = qel.create("NonLocalMeanFilter2D")
    algorithm.input = noise(3000, 3000)
    for name, value in SLOW.items():
        setattr(algorithm, name, value)
    for delay in (0, 0.02):  # before the work has begun, and in its midst
        seen = []

        def run():
            try:
                seen.append(algorithm.run())
            except qel.Cancelled as error:
                seen.append(error)

        thread = threading.Thread(target=run)
        thread.start()
        while not algorithm.running:
            pass
        time.sleep(delay)
        begin = time.perf_counter()
        assert algorithm.cancel()
        thread.join()
        assert isinstance(seen[0], qel.Cancelled) and seen[0].algorithm == "NonLocalMeanFilter2D"
        assert time.perf_counter() - begin < 20


INTERRUPTED = """
    import os, signal, sys, threading, time
    import numpy as np
    import quelide as qel
    {before}
    image = np.random.default_rng(0).integers(0, 255, {shape}).astype({dtype!r})
    def soon():
        time.sleep(0.3)
        global sent
        sent = time.perf_counter()
        os.kill(os.getpid(), signal.SIGINT)
    threading.Thread(target=soon).start()
    try:
        qel.{name}(image, {arguments})
        print("result")
    except KeyboardInterrupt:
        print("interrupted", time.perf_counter() - sent)
    except qel.Cancelled:
        print("cancelled")
    assert qel.Threshold(np.ones((2, 2)), 0, 5).all()  # the next run knows nothing of it
    print("after")
"""

SLOW_ONES = [
    ("NonLocalMeanFilter2D", "(4000, 4000)", "patchSize=3, searchWindowSize=15, similarity=3.0"),
    ("NonLocalMeanFilter3D", "(200, 200, 200)", "patchSize=2, searchWindowSize=5, similarity=3.0"),
    ("MedianFilter3D", "(250, 250, 250)", "5, 'QEL_BALL'"),
    ("GaussianFilter3D", "(400, 400, 400)", "sigmaX=30, sigmaY=30, sigmaZ=30"),
    ("OpeningBall3D", "(400, 400, 400)", "12, 'QEL_ALGO_PRECISE'"),
]


@pytest.mark.parametrize("name, shape, arguments", SLOW_ONES, ids=[each[0] for each in SLOW_ONES])
def test_ctrl_c_ends_a_run(name, shape, arguments):
    child = in_child(INTERRUPTED.format(name=name, shape=shape, arguments=arguments, dtype="uint8", before=""))
    out, err = child.communicate(timeout=120)
    assert child.returncode == 0, err
    words = out.split()
    assert words[0] == "interrupted" and words[2] == "after", out
    # 0.2 seconds where the machine is idle; what is asserted allows for others.
    assert float(words[1]) < 3, out


def test_ctrl_c_ends_a_run_that_shows_progress():
    child = in_child(INTERRUPTED.format(name="NonLocalMeanFilter2D", shape="(4000, 4000)", dtype="uint8", before="",
                                        arguments="3, 15, 3.0, progress=lambda percent: None"))
    out, err = child.communicate(timeout=120)
    assert child.returncode == 0, err
    assert out.split()[0] == "interrupted" and float(out.split()[1]) < 3


def test_a_handler_of_the_program_decides_for_itself():
    code = INTERRUPTED.format(name="NonLocalMeanFilter2D", shape="(700, 700)", dtype="uint8", arguments="3, 10, 3.0",
                              before="seen = []\n    signal.signal(signal.SIGINT, lambda *_: seen.append(time.perf_counter()))")
    child = in_child(code + "\n    assert seen and seen[0] - sent < 3\n")
    out, err = child.communicate(timeout=120)
    assert child.returncode == 0, err
    assert out.split() == ["result", "after"]


def test_ctrl_c_reaches_the_main_thread_while_another_one_runs():
    child = in_child("""
        import os, signal, threading, time
        import numpy as np
        import quelide as qel
        image = np.random.default_rng(0).integers(0, 255, (900, 900)).astype("uint8")
        results = []
        thread = threading.Thread(target=lambda: results.append(qel.NonLocalMeanFilter2D(image, 3, 10, 3.0)))
        thread.start()
        threading.Timer(0.1, lambda: os.kill(os.getpid(), signal.SIGINT)).start()
        try:
            time.sleep(20)
        except KeyboardInterrupt:
            print("interrupted")
        thread.join()
        print(len(results))
    """)
    out, err = child.communicate(timeout=120)
    assert out.split() == ["interrupted", "1"], err


def test_tells_progress():
    seen = []
    threads = set()

    def show(percent):
        seen.append(percent)
        threads.add(threading.get_ident())

    image = noise(1200, 1200)
    result = qel.NonLocalMeanFilter2D(image, patchSize=2, searchWindowSize=4, similarity=3.0, progress=show)
    assert same(result, qel.NonLocalMeanFilter2D(image, patchSize=2, searchWindowSize=4, similarity=3.0))
    assert seen == sorted(seen) and seen[-1] == 100 and len(seen) > 2 and seen[0] < 100
    assert threads == {threading.get_ident()}
    seen.clear()
    qel.Threshold(np.zeros((2, 2)), progress=show)
    assert seen == [100]


def test_progress_moves_a_bar_of_tqdm():
    tqdm = pytest.importorskip("tqdm")
    with open(os.devnull, "w") as nowhere:
        bar = tqdm.tqdm(total=100, file=nowhere)
        qel.MedianFilter2D(noise(800, 800), 3, progress=bar)
        assert bar.n == 100
        bar = tqdm.tqdm(file=nowhere)
        qel.Threshold(noise(10, 10), progress=bar)
        assert bar.total == 100 and bar.n == 100
    with pytest.raises(TypeError, match="progress="):
        qel.Threshold(noise(10, 10), progress=7)


def test_progress_true_shows_a_bar(capsys):
    qel.MedianFilter2D(noise(800, 800), 3, progress=True)
    assert "100%" in capsys.readouterr().err


def test_a_small_image_waits_for_nothing():
    image, out = noise(10, 10), np.empty((10, 10), np.uint8)
    times = []
    for _ in range(50):
        begin = time.perf_counter()
        for _ in range(20):
            qel.Threshold(image, 10, 20, out=out)
        times.append((time.perf_counter() - begin) / 20)
    # Five microseconds where the machine is idle.
    assert min(times) < 200e-6


def test_what_the_progress_raises_ends_the_run():
    class Enough(Exception):
        pass

    def show(percent):
        raise Enough(percent)

    begin = time.perf_counter()
    with pytest.raises(Enough):
        qel.NonLocalMeanFilter2D(noise(4000, 4000), **SLOW, progress=show)
    assert time.perf_counter() - begin < 20


def test_results_are_the_same_for_every_number_of_threads_and_level():
    image = noise(300, 300, dtype=np.float32)
    expected = qel.GaussianFilter2D(image)
    for threads in (1, 2, 3, 7):
        assert same(qel.GaussianFilter2D(image, threads=threads), expected)
    assert same(qel.IntensityExtrema(image, level="scalar"), qel.IntensityExtrema(image, level="sse"))
    assert same(qel.GaussianFilter2D(image, extra_memory=10), expected)


def test_one_thread_is_one():
    image = noise(2000, 2000)
    before, begin = time.process_time(), time.perf_counter()
    qel.MedianFilter2D(image, 3, threads=1)
    worked, passed = time.process_time() - before, time.perf_counter() - begin
    assert worked < 1.25 * passed + 0.1


def test_runs_after_a_fork():
    image = noise(64, 64)
    qel.BoxFilter2D(image)
    child = os.fork()
    if child == 0:
        status = 1
        try:
            qel.BoxFilter2D(image, threads=1)
            status = 0
        finally:
            os._exit(status)
    deadline = time.monotonic() + 60
    while time.monotonic() < deadline:
        ended, status = os.waitpid(child, os.WNOHANG)
        if ended:
            assert status == 0
            return
        time.sleep(0.01)
    os.kill(child, signal.SIGKILL)
    os.waitpid(child, 0)
    pytest.fail("hangs after a fork")


def test_a_child_that_is_forked_during_a_run_keeps_the_handler_of_python():
    child = in_child("""
        import os, signal, threading, time
        import numpy as np
        import quelide as qel
        image = np.random.default_rng(0).integers(0, 255, (900, 900)).astype("uint8")
        statuses = []
        def fork():
            time.sleep(0.1)
            child = os.fork()
            if child == 0:
                try:
                    os.kill(os.getpid(), signal.SIGINT)
                    time.sleep(5)
                except KeyboardInterrupt:
                    os._exit(3)
                os._exit(4)
            statuses.append(os.waitstatus_to_exitcode(os.waitpid(child, 0)[1]))
        thread = threading.Thread(target=fork)
        thread.start()
        qel.NonLocalMeanFilter2D(image, 3, 12, 3.0)
        thread.join()
        print(*statuses)
    """)
    out, err = child.communicate(timeout=120)
    assert out.split() == ["3"], err
