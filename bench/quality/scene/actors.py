"""Who is in a scene, and where they are at a time."""
from dataclasses import dataclass, field

import numpy as np


@dataclass
class State:
    x: float
    z: float
    heading: float
    walked: float
    stride: float
    sits: float
    time: float
    still: float  # seconds since the last movement
    bicycle: bool = False


class Path:
    """Straight legs at one speed, with pauses. `soft`: the ends of legs at a pause are slow, as of vehicles."""

    def __init__(self, points, start, speed, pauses=None, soft=False):
        pauses = pauses or {}
        self.legs = []  # begin, end, from, to, whether it starts and ends softly, metres before it
        time, metres = start, 0.0
        points = [np.asarray(point, np.float64) for point in points]
        for index in range(len(points)):
            if index in pauses:
                self.legs.append((time, time + pauses[index], points[index], points[index], False, False, metres))
                time += pauses[index]
            if index + 1 < len(points):
                length = float(np.linalg.norm(points[index + 1] - points[index]))
                begins, ends = soft and index in pauses, soft and index + 1 in pauses
                seconds = length / speed * (1 + 0.5 * begins + 0.5 * ends)
                self.legs.append((time, time + seconds, points[index], points[index + 1], begins, ends, metres))
                time, metres = time + seconds, metres + length
        self.begin, self.end = start, time
        self.first_move = next((leg[0] for leg in self.legs if np.any(leg[2] != leg[3])), time)
        self._heading = 0.0

    def at(self, time):
        """Position, direction, metres gone, speed in metres per second, seconds still; None while away."""
        if not self.begin <= time < self.end:
            return None
        index = next(i for i, leg in enumerate(self.legs) if time < leg[1])
        begin, end, start, stop, begins, ends, metres = self.legs[index]
        share = (time - begin) / (end - begin)
        way = stop - start
        length = float(np.linalg.norm(way))
        slope = 1.0
        if begins and ends:
            share, slope = share * share * (3 - 2 * share), 6 * share * (1 - share)
        elif begins:
            share, slope = share * share, 2 * share
        elif ends:
            share, slope = 1 - (1 - share) ** 2, 2 * (1 - share)
        if length == 0:
            return start, self._direction(index), metres, 0.0, time - begin
        return start + way * share, np.arctan2(way[1], way[0]), metres + length * share, slope * length / (end - begin), 0.0

    def _direction(self, index):
        """Standing, one looks where one came from or will go."""
        for leg in list(reversed(self.legs[:index])) + self.legs[index:]:
            way = leg[3] - leg[2]
            if np.any(way):
                return np.arctan2(way[1], way[0])
        return self._heading


@dataclass
class Actor:
    """`cause` says in words what it does; an actor that was there at the start counts from its first movement."""
    kind: str  # person, bicycle, vehicle
    looks: object
    path: Path
    cause: str
    arrived: bool = True
    sits: list = field(default_factory=list)  # (begin, end) of sitting, with 1.2 s to sit down and to stand up
    turns: float | None = None  # direction in which one looks while standing
    id: int = 0

    def state(self, time):
        now = self.path.at(time)
        if now is None:
            return None
        (x, z), heading, walked, speed, still = now
        sits = 0.0
        for begin, end in self.sits:
            sits = max(sits, min(np.clip((time - begin) / 1.2, 0, 1), np.clip((end - time) / 1.2, 0, 1)))
        if self.turns is not None and still > 0.3:
            heading = self.turns
        return State(x, z, heading, walked, min(1.0, speed / 0.8), sits, time, still, self.kind == "bicycle")
