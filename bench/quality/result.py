"""What a system under test reports about a video."""
from dataclasses import dataclass, field


@dataclass
class Box:
    """In pixels; `id` is the track, or None."""
    x: float
    y: float
    width: float
    height: float
    id: object = None

    @property
    def box(self):
        return self.x, self.y, self.width, self.height


@dataclass
class Event:
    """In seconds, from the first to the last frame."""
    begin: float
    end: float
    kind: str = "motion"


@dataclass
class Result:
    frames: list  # of lists of Box
    events: list
    masks: object = None  # masks[frame] is an array, 0 is background; None: the system has none
    light_alone: set = field(default_factory=set)  # frames whose boxes a system attributes to lighting alone
    seconds: float = 0.0
    remark: str = ""  # how the system was set up, if that depends on the video


def events_of(frames, fps, min_event=0.5, gap=2.0):
    """Events by the program's rule, for systems that have only boxes: frames with boxes whose distance is at most `gap`
    seconds, at least `min_event` seconds from the first to the last."""
    events, begin, last = [], None, None
    for number, boxes in enumerate(frames):
        if not boxes:
            continue
        time = number / fps
        if begin is not None and time - last > gap:
            events.append(Event(begin, last))
            begin = None
        begin = time if begin is None else begin
        last = time
    if begin is not None:
        events.append(Event(begin, last))
    return [event for event in events if event.end - event.begin >= min_event - 1e-9]
