"""Errors, warnings, threads and memory."""
from __future__ import annotations

import concurrent.futures
import copy
import pickle
import sys
import threading
import tracemalloc
import warnings
from typing import Any

import lightmotion
import numpy
import pytest
from lightmotion import Box, ConfigurationError, ConfigurationWarning, Detector
from scene import HEIGHT, WIDTH, frames, times


def make(**settings: Any) -> Detector:
    return Detector(width=WIDTH, height=HEIGHT, format="grey", **settings)


def run(detector: Detector) -> list[list[Box]]:
    return [detector(frame, time) for frame, time in zip(frames(), times())]


# ---- errors and warnings ------------------------------------------------------------------------------------


def test_a_refused_configuration_names_key_value_and_what_is_right() -> None:
    with pytest.raises(ConfigurationError, match='"format": "yellow".*"grey", "bgr"'):
        Detector({"frmW": 5, "frmH": 5, "format": "yellow"})
    with pytest.raises(ConfigurationError, match="line 1, column 1"):
        Detector("no JSON")
    with pytest.raises(ConfigurationError, match='"peel"'):
        make(peel=9)
    with pytest.raises(ConfigurationError, match='"peel"'):
        Detector('{"frmW": 97, "frmH": 80, "format": "grey"}', peel=9)
    with pytest.raises(ValueError, match="format: 'yellow', expected one of grey, bgr"):
        Detector(width=5, height=5, format="yellow")  # type: ignore[arg-type]
    assert issubclass(ConfigurationError, lightmotion.Error) and issubclass(ConfigurationError, ValueError)


def test_a_refused_change_changes_nothing() -> None:
    detector = make()
    refused: list[dict[str, Any]] = [{"peel": 9}, {"frmW": 5}, {"roi": []}]
    for changes in refused:
        with pytest.raises(ConfigurationError):
            detector.change(changes)
    assert run(detector) == run(make())


def test_what_is_probably_not_meant_is_a_warning_that_names_the_caller() -> None:
    with pytest.warns(ConfigurationWarning, match='"sensitivty".*did you mean "sensitivity"') as caught:
        detector = make(sensitivty=3)
    assert [warning.filename for warning in caught] == [__file__]
    with pytest.warns(ConfigurationWarning, match='"roii"') as caught:
        detector.change({"roii": 1}, rorr=[])
    assert {warning.filename for warning in caught} == {__file__}
    with warnings.catch_warnings():
        warnings.simplefilter("error")
        make(sensitivity=3)
        with pytest.raises(ConfigurationWarning):
            make(sensitivty=3)


def test_values_that_json_does_not_have_are_refused() -> None:
    for value in float("nan"), object(), {1}:
        with pytest.raises((ValueError, TypeError)):
            make(sensitivity=value)
    with pytest.raises(ValueError):
        Detector('{"frmW": 1}\0')


def test_there_are_no_pictures_before_the_first_frame() -> None:
    detector = make()
    for picture in detector.foreground, detector.background:
        with pytest.raises(lightmotion.NoFrameError, match="no frame has been processed yet"):
            picture()
    assert detector.json() == ""


def test_a_closed_detector_says_so() -> None:
    with make() as detector:
        detector(next(frames()), 1)
        assert not detector.closed
    detector.close()
    assert detector.closed and repr(detector) == "<Detector closed>"
    uses: list[Any] = [lambda: detector(next(frames())), detector.reset, detector.foreground, detector.json,
                       lambda: detector.info, lambda: detector.change({}),
                       lambda: detector.relearn(0, 0, 1, 1)]  # fmt: skip
    for use in uses:
        with pytest.raises(lightmotion.ClosedError, match="the detector is closed"):
            use()


def test_a_detector_is_neither_copied_nor_pickled() -> None:
    uses: list[Any] = [copy.copy, pickle.dumps]
    for use in uses:
        with pytest.raises(TypeError):
            use(make())


def test_a_subclass_that_creates_nothing_is_closed() -> None:
    class Lazy(Detector):
        def __init__(self) -> None:
            pass

    assert Lazy().closed
    with pytest.raises(lightmotion.Error, match="created already"):
        make()._create("{}", 5, 5, 1)


# ---- threads ------------------------------------------------------------------------------------------------


def test_detectors_in_several_threads_give_what_each_gives_alone() -> None:
    expected = run(make())
    with concurrent.futures.ThreadPoolExecutor(8) as threads:
        assert all(found == expected for found in threads.map(lambda _: run(make()), range(32)))


def test_threads_that_share_a_detector_wait_for_each_other() -> None:
    detector = make()
    frame = next(frames())
    start = threading.Barrier(4)

    def use(_: int) -> None:
        start.wait()
        for i in range(200):
            detector(frame, i)
            detector.info
            detector.foreground()
            if i % 50 == 0:
                detector.change(sensitivity=1 + i % 5)

    with concurrent.futures.ThreadPoolExecutor(4) as threads:
        list(threads.map(use, range(4)))
    assert detector.info.frames == 800


def test_other_threads_run_while_a_frame_is_processed() -> None:
    """Nobody is made to let another thread run: one that runs was let in by the detector itself."""
    frame = numpy.zeros((720, 1280), numpy.uint8)
    detector = Detector.for_frame(frame)
    gate, ran = threading.Lock(), threading.Event()
    interval = sys.getswitchinterval()
    gate.acquire()

    def other() -> None:
        gate.acquire()
        ran.set()

    thread = threading.Thread(target=other)
    thread.start()
    sys.setswitchinterval(1000)
    try:
        gate.release()
        for i in range(100):
            detector(frame, i)
            if ran.is_set():
                break
        was_let_in = ran.is_set()
    finally:
        sys.setswitchinterval(interval)
        thread.join()
    assert was_let_in


def test_use_while_results_are_built_is_refused_instead_of_waiting_for_ever() -> None:
    detector = make()
    refused = []

    def while_built(frame: Any, event: str, argument: Any) -> None:
        try:
            detector.reset()
        except RuntimeError as error:
            refused.append(str(error))

    sequence = list(zip(frames(), times()))
    for image, time in sequence[:-1]:
        detector(image, time)
    sys.setprofile(while_built)
    try:
        boxes = detector(*sequence[-1])
    finally:
        sys.setprofile(None)
    assert boxes and "the detector is in use by this thread" in refused


# ---- memory -------------------------------------------------------------------------------------------------


def resident() -> int:
    with open("/proc/self/statm", encoding="ascii") as statm:
        return int(statm.read().split()[1]) * 4096


def test_detectors_free_what_they_own() -> None:
    frame = numpy.zeros((240, 320, 3), numpy.uint8)

    def use(count: int) -> None:
        for i in range(count):
            detector = Detector.for_frame(frame)
            detector(frame, 1)
            assert detector.info.memory > 4_000_000
            if i % 2:
                detector.close()
            with pytest.raises(ConfigurationError):
                Detector.for_frame(frame, peel=9)

    use(3)
    before = resident()
    use(60)  # 300 MB
    assert resident() - before < 30_000_000


def test_results_and_errors_are_freed() -> None:
    detector = make()
    sequence = list(zip(frames(), times()))

    def use() -> None:
        detector.reset()
        for frame, time in sequence:
            detector(frame, time)
            detector.json()
            detector.info
            with pytest.raises(lightmotion.FrameError):
                detector(b"")
        detector.change(sensitivity=3)

    use()
    references = sys.getrefcount(sequence[0][0])
    tracemalloc.start()
    try:
        use()
        before = tracemalloc.get_traced_memory()[0]
        for _ in range(20):
            use()
        growth = tracemalloc.get_traced_memory()[0] - before
    finally:
        tracemalloc.stop()
    assert growth < 20_000  # a leaked box per frame is 100 kB
    references -= sys.getrefcount(sequence[0][0])  # not in the assertion, which keeps what it compares
    assert references == 0
