"""Threads, processes, Ctrl-C, progress, and memory over many calls."""

import concurrent.futures
import gc
import multiprocessing
import os
import resource
import signal
import subprocess
import sys
import threading
import time

import numpy as np
import pytest

import quoin

FLAT = "examples/flat/flat.dxf"


def town(count, seed=1):
    """Long walls with stems on them."""
    random = np.random.default_rng(seed)
    rows = np.arange(count) // 10
    lines = np.empty((count, 4))
    stem = np.arange(count) % 10 != 0
    x = random.integers(0, 40_000, count).astype(float)
    lines[:, 0] = np.where(stem, x, 0)
    lines[:, 1] = rows * 5000.0
    lines[:, 2] = np.where(stem, x, 40_000)
    lines[:, 3] = np.where(stem, rows * 5000.0 + 3000, rows * 5000.0)
    return lines


def work(seed):
    pieces, source = quoin.break_lines(town(2000, seed), capture=10 + seed)
    with quoin.Drawing(FLAT) as drawing:
        lines, _ = drawing.lines()
        rooms = drawing.find_rooms()
        cleaned = drawing.clean(snap=5 + seed)
    outline = quoin.outline(rooms.walls)
    return (len(pieces), int(source.sum()), len(lines), len(rooms), sorted(cleaned.counts.items()),
            outline.lines.sum())


def test_threads_take_turns_and_find_the_same():
    expected = [work(seed) for seed in range(8)]
    with concurrent.futures.ThreadPoolExecutor(8) as pool:
        for _ in range(3):
            assert list(pool.map(work, range(8))) == expected


@pytest.mark.parametrize("method", ["fork", "spawn"])
def test_processes_work_side_by_side(method):
    expected = [work(seed) for seed in range(4)]
    with multiprocessing.get_context(method).Pool(2) as pool:
        assert pool.map(work, range(4)) == expected


def test_a_fork_while_a_thread_works_is_whole():
    done = threading.Event()

    def keep_working():
        while not done.is_set():
            quoin.break_lines(town(20_000))

    thread = threading.Thread(target=keep_working)
    thread.start()
    try:
        for _ in range(5):
            child = os.fork()
            if child == 0:
                os._exit(0 if len(quoin.break_lines(town(100))[0]) > 100 else 1)
            assert os.waitpid(child, 0)[1] == 0
    finally:
        done.set()
        thread.join()


def test_other_threads_run_while_quoin_works():
    counted = 0
    done = threading.Event()

    def count():
        nonlocal counted
        while not done.is_set():
            counted += 1
            time.sleep(0.001)

    thread = threading.Thread(target=count)
    thread.start()
    begin = counted
    quoin.break_lines(town(300_000))
    during = counted - begin
    done.set()
    thread.join()
    assert during > 5


SCRIPT = """
import signal, sys
import quoin
signal.signal(signal.SIGINT, signal.default_int_handler)  # jobs in the background ignore it
sys.path.insert(0, "tests/python")
import test_running
lines = test_running.town(%d)
quoin.break_lines(lines[:10])
print("ready", flush=True)
try:
    for _ in range(1000):
        quoin.break_lines(lines)
except KeyboardInterrupt:
    print("stopped", flush=True)
print(len(quoin.break_lines(lines[:1000])[0]) > 1000, flush=True)
"""


def interrupted(script):
    """What it prints and returns that gets Ctrl-C a second after it is ready."""
    process = subprocess.Popen([sys.executable, "-c", script], stdout=subprocess.PIPE, text=True)
    assert process.stdout.readline() == "ready\n"
    time.sleep(1.0)
    process.send_signal(signal.SIGINT)
    try:
        words, _ = process.communicate(timeout=60)
    finally:
        process.kill()
    return words, process.returncode


def test_ctrl_c_stops_a_calculation_and_leaves_the_package_usable():
    assert interrupted(SCRIPT % 200_000) == ("stopped\nTrue\n", 0)


READING = """
import signal, sys
import quoin
signal.signal(signal.SIGINT, signal.default_int_handler)  # jobs in the background ignore it
sys.path.insert(0, "tests/python")
import test_running
with quoin.Drawing("examples/flat/flat.dxf") as drawing:
    drawing.append(test_running.faces(%d), "WALL")
    print("ready", flush=True)
    try:
        for _ in range(1000):
            drawing.find_walls("WALL")
            drawing.find_rooms("WALL", faces=True)
            drawing.clean("WALL")
    except KeyboardInterrupt:
        print("stopped", flush=True)
    print(len(drawing.find_walls("A-WALL*")) > 5, flush=True)
"""


def faces(count):
    """Long walls as pairs of faces."""
    lines = np.empty((count, 4))
    lines[:, 0], lines[:, 2] = 0, 40_000
    lines[:, 1] = lines[:, 3] = (np.arange(count) // 2) * 3000.0 + (np.arange(count) % 2) * 200
    return lines


def test_ctrl_c_stops_the_reading_of_plans_and_leaves_the_drawing_usable():
    assert interrupted(READING % 30_000) == ("stopped\nTrue\n", 0)


def test_a_process_may_end_with_drawings_open():
    script = "import quoin; kept = [quoin.Drawing('examples/flat/flat.dxf') for _ in range(3)]"
    for _ in range(10):
        done = subprocess.run([sys.executable, "-c", script], capture_output=True, text=True,
                              timeout=60)
        assert (done.returncode, done.stderr) == (0, "")


def large_drawing(path, count):
    with quoin.Drawing(FLAT) as drawing:
        drawing.append(town(count), "WALL")
        drawing.save(path)


def test_progress_is_told_and_may_stop_the_work(tmp_path):
    path = tmp_path / "large.dxf"
    large_drawing(path, 60_000)
    before = path.read_bytes()
    told = []
    with quoin.Drawing(path, progress=told.append) as drawing:
        lines, handles = drawing.lines("WALL", progress=told.append)
        assert told and told[-1] == 1.0 and all(0.0 <= share <= 1.0 for share in told)
        drawing.append([[0, 0, 1, 1]], "NEW")

        def stop(share):
            raise RuntimeError("enough")

        with pytest.raises(RuntimeError, match="enough"):
            drawing.save(progress=stop)
    # The file is the one before or the one behind, whole.
    if path.read_bytes() != before:
        with quoin.Drawing(path) as drawing:
            assert len(drawing.lines("NEW")[0]) == 1
    with pytest.raises(RuntimeError, match="enough"):
        quoin.outline(lines, 10, 10, progress=stop)
    assert len(quoin.outline(lines[:1000], 10, 10, progress=told.append).lines) > 1000


def test_reading_and_cleaning_tell_of_progress_and_may_be_stopped():
    told = []

    def stop(share):
        raise RuntimeError("enough")

    with quoin.Drawing(FLAT) as drawing:
        drawing.append(town(20_000), "TOWN")
        for call in (lambda progress: drawing.clean("TOWN", progress=progress),
                     lambda progress: drawing.outline("TOWN", 10, 10, progress=progress),
                     lambda progress: drawing.find_walls("A-WALL*", progress=progress),
                     lambda progress: drawing.find_rooms("A-WALL*", progress=progress)):
            told.clear()
            call(told.append)
            assert told[-1] == 1.0 and all(0.0 <= share <= 1.0 for share in told)
            with pytest.raises(RuntimeError, match="enough"):
                call(stop)


def resident():
    gc.collect()
    with open("/proc/self/statm", encoding="ascii") as file:
        return int(file.read().split()[1]) * resource.getpagesize()


def test_ten_thousand_calls_keep_no_memory():
    lines = town(30)
    wrong = lines.copy()
    wrong[3, 3] = np.nan
    openings = np.array([(i, 1000, 2000, 1, np.nan, np.nan) for i in range(3)],
                        dtype=quoin.OPENINGS)

    def once():
        quoin.break_lines(lines, at=[[1, 1]])
        quoin.merge_lines(lines)
        quoin.draw_line(lines, (0, 0), (1000, 1000))
        quoin.trim_axes(lines)
        quoin.outline(lines, 10, 10, openings=openings)
        quoin.solid(lines, 10, 10, 100, openings=openings)
        quoin.clean(lines)
        quoin.find_walls(lines, arcs=[[0, 0, 900, 0, 1]], face_arcs=[[0, 0, 900, 0, 1]],
                         symbols=lines, boxes=[[0, 0, 900, 900, 1]])
        quoin.find_rooms(lines, 10, 10, openings)
        try:
            quoin.break_lines(wrong)
        except quoin.Error:
            pass

    for _ in range(100):
        once()
    before = resident()
    for _ in range(1000):
        once()
    assert resident() - before < 4 << 20


def test_drawings_that_come_and_go_keep_no_memory():
    def once():
        drawing = quoin.Drawing(FLAT)
        lines, handles = drawing.lines()
        drawing.replace(lines + 1.0, handles)
        drawing.picture()

    for _ in range(5):
        once()
    before = resident()
    for _ in range(40):
        once()
    assert resident() - before < 8 << 20


def test_plans_read_ten_thousand_times_keep_no_memory(tmp_path):
    """One drawing stays open; each round is five calls that read it and two that are refused."""
    plan = tmp_path / "plan.dxf"
    with quoin.Drawing(FLAT) as drawing:
        drawing.erase([entity.handle for entity in drawing.entities()])
        drawing.append([[0, 0, 4000, 0], [0, 200, 4000, 200], [0, 0, 0, 200], [4000, 0, 4000, 200],
                        [0, 200, 0, 3000], [1000, 200, 1000, 2000]], "WALL")
        drawing.append([[500, 100, 1500, 100]], "QUOIN-OPENING")
        drawing.save(plan)
    with quoin.Drawing(plan) as drawing:
        def once():
            assert len(drawing.find_walls()) == 1
            drawing.find_rooms("WALL", left=50, right=50)
            drawing.read_walls("WALL", widths={"WALL": 100})
            drawing.outline("WALL", 50, 50)
            drawing.clean()
            for refused in (lambda: drawing.read_walls("WALL"), lambda: drawing.clean("NOTHING")):
                with pytest.raises(quoin.Error):
                    refused()

        for _ in range(100):
            once()
        before = resident()
        for _ in range(1450):
            once()
        assert resident() - before < 4 << 20
