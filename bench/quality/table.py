"""Tables of records for the terminal."""

COLUMNS = [  # heading, key, format
    ("fP", "frame_precision", "{:.3f}"), ("fR", "frame_recall", "{:.3f}"), ("frameF1", "frame_f1", "{:.3f}"),
    ("false%", "false_share", "{:.1%}"), ("light%", "light_alone", "{:.1%}"),
    ("ev", "events_true", "{}"), ("found", "events_found", "{}"), ("false", "events_false", "{}"),
    ("fragm", "events_fragments", "{}"), ("delay", "event_delay", "{:.2f}"),
    ("boxP", "box05_precision", "{:.3f}"), ("boxR", "box05_recall", "{:.3f}"), ("boxF1", "box05_f1", "{:.3f}"),
    ("@0.3", "box03_f1", "{:.3f}"), ("IDF1", "idf1", "{:.3f}"), ("maskF1", "mask_f1", "{:.3f}"),
    ("s", "seconds", "{:.1f}"),
]


def cell(form, value):
    return "-" if value is None else form.format(value)


def text(rows, key):
    """`rows` are (label, figures); the worst by `key` come first."""
    worst = lambda row: (row[1].get(key) is None, row[1].get(key) or 0)  # noqa: E731
    body = [[label] + [cell(form, figures.get(name)) for _, name, form in COLUMNS]
            for label, figures in sorted(rows, key=worst)]
    head = [""] + [heading for heading, *_ in COLUMNS]
    wide = [max(len(row[i]) for row in [head] + body) for i in range(len(head))]
    return "\n".join("  ".join(value.ljust(wide[0]) if i == 0 else value.rjust(wide[i]) for i, value in enumerate(row))
                     for row in [head] + body)


COMPARED = [("frame_f1", 1), ("box05_f1", 1), ("idf1", 1), ("events_found", 1), ("events_false", -1),
            ("events_fragments", -1)]  # key, and whether more is better


def differences(before, after):
    """A line for each scene in which two systems differ, and how many are better and worse. The records are of the same
    scenes in the same order."""
    lines, better, worse = [], 0, 0
    for old, new in zip(before, after):
        changes = [(key, old[key], new[key], sign * (new[key] - old[key])) for key, sign in COMPARED
                   if old.get(key) is not None and new.get(key) is not None and abs(new[key] - old[key]) > 1e-9]
        if not changes:
            continue
        better += all(change > 0 for *_, change in changes)
        worse += any(change < 0 for *_, change in changes)
        figures = ", ".join(f"{key} {a:.4g} -> {b:.4g}" + (" (worse)" if change < 0 else "") for key, a, b, change in changes)
        lines.append(f"{new['scene']} {new['seed'] or ''}: {figures}. {new.get('remark', '')}")
    equal = len(after) - len(lines)
    return "\n".join(lines + [f"{len(after)} scenes: {equal} equal, {better} better, {worse} worse in some figure"])


def mean(figures):
    """The mean over scenes; counts of events are added up."""
    out = {}
    for _, key, _ in COLUMNS:
        values = [item[key] for item in figures if item.get(key) is not None]
        if values:
            total = sum(values)
            out[key] = total if key.startswith("events_") or key == "seconds" else total / len(values)
    return out
