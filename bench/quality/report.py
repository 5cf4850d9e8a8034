"""Tables and pictures for docs/quality.md from the records."""
import json
from pathlib import Path

import cv2
import numpy as np

MEASURES = ["frame_f1", "box05_f1", "box03_f1", "idf1", "mask_f1"]


def load(folder):
    """{system: {scene: [record of each seed]}}"""
    out = {}
    for path in sorted(Path(folder).glob("*/*.json")):
        record = json.loads(path.read_text())
        out.setdefault(record["system"], {}).setdefault(record["scene"], []).append(record)
    return out


def complete(records):
    """The systems that were measured on every scene: means over a part are no means."""
    scenes = set(records["lightmotion"])
    return {system: of for system, of in records.items() if scenes <= set(of)}


def mean(records, key):
    values = [record[key] for record in records if record.get(key) is not None]
    return sum(values) / len(values) if values else None


def number(value, digits=2):
    return "–" if value is None else f"{value:.{digits}f}"


def percent(value):
    return "–" if value is None else f"{100 * value:.1f}"


def table(heads, rows):
    lines = [heads, ["---"] + ["---:"] * (len(heads) - 1)] + rows
    return "\n".join("| " + " | ".join(cells) + " |" for cells in lines)


def events_ratio(records):
    """Events reported for each true event that was found: false ones aside."""
    found = sum(record["events_found"] for record in records)
    return (found + sum(record["events_fragments"] for record in records)) / found if found else None


SUMMARY = ["frame F1", "worst scene", "events missed", "false", "per true", "delay, s", "box F1, 0.3", "0.5", "IDF1", "mask F1"]


def summary(scenes):
    """The cells of SUMMARY for {scene: [record]}."""
    every = [record for of in scenes.values() for record in of]
    total = lambda key: sum(record[key] for record in every)  # noqa: E731
    worst = min((value, scene) for scene, of in scenes.items() if (value := mean(of, "frame_f1")) is not None)
    return [number(mean(every, "frame_f1"), 3), f"{number(worst[0])} ({worst[1]})",
            f"{total('events_missed')} of {total('events_true')}", str(total("events_false")),
            number(events_ratio(every)), number(mean(every, "event_delay"))] + \
        [number(mean(every, key), 3) for key in ("box03_f1", "box05_f1", "idf1", "mask_f1")]


def seeds_of(scenes):
    return sorted({record["seed"] for of in scenes.values() for record in of})


def systems_table(records):
    rows = []
    for system, scenes in records.items():
        box_f1 = mean([record for of in scenes.values() for record in of], "box05_f1") or 0
        rows.append((box_f1, [f"`{system}`", ", ".join(map(str, seeds_of(scenes))), *summary(scenes)]))
    return table(["System", "seeds", *SUMMARY], [row for _, row in sorted(rows, key=lambda row: row[0])])


def seeds_table(records, systems):
    """A row for each seed of these systems."""
    rows = []
    for system in systems:
        for seed in seeds_of(records[system]):
            of_seed = {scene: [record for record in of if record["seed"] == seed] for scene, of in records[system].items()}
            rows.append([f"`{system}`", str(seed), *summary(of_seed)])
    return table(["System", "seed", *SUMMARY], rows)


def scenes_table(records, system, peers):
    """A row for each scene, the smallest frame F1 first; with the best box F1 of the peers."""
    rows = []
    for scene, of in records[system].items():
        best = max(((mean(records[peer][scene], "box05_f1") or 0, peer) for peer in peers if scene in records[peer]),
                   default=(None, "–"))
        first = mean(of, "frame_f1")
        total = lambda key: sum(record[key] for record in of)  # noqa: E731, B023
        rows.append((first if first is not None else 2,
                     [f"`{scene}`", number(first, 3), percent(mean(of, "false_share")), percent(mean(of, "light_alone")),
                      f"{total('events_found')} of {total('events_true')}", str(total("events_false")),
                      str(total("events_fragments")), number(mean(of, "event_delay")), number(mean(of, "box05_precision")),
                      number(mean(of, "box05_recall")), number(mean(of, "box05_f1"), 3),
                      f"{number(best[0], 3)} ({best[1]})", number(mean(of, "idf1"), 3)]))
    return table(["Scene", "frame F1", "false frames, %", "light alone, %", "events found", "false", "fragments", "delay, s",
                  "box precision", "recall", "F1", "best peer", "IDF1"],
                 [row for _, row in sorted(rows, key=lambda row: row[0])])


def chart(records, systems, path):
    """Three columns of dots, a row for each scene: frame F1, box F1 at 0.5, IDF1."""
    colours = [(40, 40, 200), (60, 140, 60), (200, 120, 40), (150, 60, 150), (90, 90, 90)]
    columns = [("frame_f1", "Frame F1"), ("box05_f1", "Box F1, IoU 0.5"), ("idf1", "IDF1")]
    first = systems[0]
    box_f1 = {scene: mean(of, "box05_f1") for scene, of in records[first].items()}
    order = sorted((scene for scene in box_f1 if box_f1[scene] is not None), key=box_f1.get)
    wide, step, left, top = 300, 22, 190, 74
    picture = np.full((top + step * len(order) + 20, left + len(columns) * (wide + 40), 3), 255, np.uint8)
    text = lambda words, at, colour=(60, 60, 60), size=0.42: cv2.putText(  # noqa: E731
        picture, words, at, cv2.FONT_HERSHEY_SIMPLEX, size, colour, 1, cv2.LINE_AA)
    for number_, system in enumerate(systems):
        cv2.circle(picture, (left + 150 * number_, 16), 5, colours[number_], -1, cv2.LINE_AA)
        text(system, (left + 10 + 150 * number_, 20))
    for column, (key, title) in enumerate(columns):
        x0 = left + column * (wide + 40)
        text(title, (x0, 46), (20, 20, 20), 0.5)
        for tick in range(6):
            x = x0 + wide * tick // 5
            cv2.line(picture, (x, top - 8), (x, top + step * len(order)), (225, 225, 225), 1)
            text(f"{tick / 5:.1f}", (x - 10, top - 12), (120, 120, 120), 0.36)
        for row, scene in enumerate(order):
            y = top + step * row + step // 2
            if column == 0:
                text(scene, (10, y + 4))
            cv2.line(picture, (x0, y), (x0 + wide, y), (238, 238, 238), 1)
            for number_ in reversed(range(len(systems))):
                value = mean(records[systems[number_]].get(scene, []), key)
                if value is not None:
                    cv2.circle(picture, (x0 + round(wide * value), y), 5 if number_ == 0 else 4, colours[number_], -1,
                               cv2.LINE_AA)
    cv2.imwrite(str(path), picture)


def sheet(videos, path, wide=300):
    """One frame of each scene with the boxes of the truth."""
    tiles = []
    for video in videos:
        truth = video.truth
        busy = max(range(len(truth.frames)), key=lambda i: (sum(o.pixels for o in truth.frames[i] if o.counts), -i))
        capture = cv2.VideoCapture(str(video.source), cv2.CAP_FFMPEG)
        for _ in range(busy + 1):
            image = capture.read()[1]
        for item in truth.frames[busy]:
            colour = (0, 230, 0) if item.counts else (0, 230, 230)
            cv2.rectangle(image, (item.x, item.y), (item.x + item.width, item.y + item.height), colour, 1)
        image = cv2.resize(image, (wide, 3 * wide // 4), interpolation=cv2.INTER_AREA)
        cv2.putText(image, video.name, (6, 16), cv2.FONT_HERSHEY_SIMPLEX, 0.45, (0, 0, 0), 3, cv2.LINE_AA)
        cv2.putText(image, video.name, (6, 16), cv2.FONT_HERSHEY_SIMPLEX, 0.45, (255, 255, 255), 1, cv2.LINE_AA)
        tiles.append(image)
    while len(tiles) % 5:
        tiles.append(np.full_like(tiles[0], 255))
    rows = [np.hstack(tiles[i:i + 5]) for i in range(0, len(tiles), 5)]
    cv2.imwrite(str(path), np.vstack(rows), [cv2.IMWRITE_JPEG_QUALITY, 82])
