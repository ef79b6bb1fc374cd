"""The same lines through Python and through the program: the same bits."""

import json
import pathlib
import re

import numpy as np
import pytest

import quoin
from conftest import EXAMPLES, ROOT, SHARED, run

PLANS = [plan for plan in EXAMPLES if "received" not in plan]


def layers_of(plan):
    return "W-*" if "studio" in plan else None


def options(plan):
    return ["--layer", layers_of(plan)] if layers_of(plan) else []


def result_of(plan, tmp_path):
    return tmp_path / ("program" + pathlib.Path(plan).suffix)


def replaced(plan, path, compute):
    """Saves the plan with the lines that `compute` makes of its lines."""
    with quoin.Drawing(plan) as drawing:
        lines, handles = drawing.lines(layers_of(plan))
        made, source = compute(lines, drawing.capture)
        drawing.replace(made, handles[source])
        gone = np.setdiff1d(handles["handle"], handles["handle"][source])
        drawing.erase(gone)
        drawing.save(path)


@pytest.mark.parametrize("plan", PLANS)
def test_broken_plans_are_the_program_s_byte_for_byte(plan, tmp_path):
    expected = result_of(plan, tmp_path)
    run("break", plan, *options(plan), "-o", expected)
    path = tmp_path / ("python" + expected.suffix)
    replaced(plan, path, lambda lines, capture: quoin.break_lines(lines, capture))
    assert path.read_bytes() == expected.read_bytes()


def shared_plans():
    names = ("barcelona_plan_r2013.dxf", "barcelona_pavilion_r2000.dxf",
             "house_bishop_floorplan_r2004.dxf", "acadsharp_sample_AC1015.dwg",
             "acadsharp_sample_AC1032.dwg", "acadsharp_sample_AC1009_binary.dxf",
             "barcelona_plan_exported_r12.dxf", "acadsharp_sample_AC1027_ascii.dxf")
    return [str(SHARED / name) for name in names if (SHARED / name).is_file()]


@pytest.mark.parametrize("plan", shared_plans())
def test_shared_drawings_are_broken_byte_for_byte_alike(plan, tmp_path):
    expected = result_of(plan, tmp_path)
    run("break", plan, "--layer", "*", "-o", expected, codes=(0, 4))
    if not expected.exists():
        with quoin.Drawing(plan) as drawing:
            assert len(drawing.lines("*")[0]) == 0
        return
    path = tmp_path / ("python" + expected.suffix)
    with quoin.Drawing(plan) as drawing:
        lines, handles = drawing.lines("*")
        pieces, source = quoin.break_lines(lines, drawing.capture)
        drawing.replace(pieces, handles[source])
        drawing.save(path)
    assert path.read_bytes() == expected.read_bytes()


@pytest.mark.parametrize("plan", [plan for plan in PLANS if "studio" in plan])
def test_trimmed_axes_are_the_program_s(plan, tmp_path):
    for overhang in (0, 350.5):
        expected = result_of(plan, tmp_path)
        run("trim-axes", plan, "--layer", "S-GRID", "--overhang", overhang, "-o", expected)
        path = tmp_path / ("python" + expected.suffix)
        with quoin.Drawing(plan) as drawing:
            lines, handles = drawing.lines("S-GRID")
            trimmed, source = quoin.trim_axes(lines, overhang)
            drawing.replace(trimmed, handles[source])
            drawing.save(path)
        assert path.read_bytes() == expected.read_bytes()


def numbers_of(entry):
    return [*entry["start"], *entry["end"]]


def report(*words):
    return json.loads(run(*words, "--report", "json"))["drawings"][0]


@pytest.mark.parametrize("plan", ["examples/flat/flat.dxf", "examples/office/office.dxf"])
def test_merged_lines_are_the_program_s(plan, tmp_path):
    broken = tmp_path / "broken.dxf"
    run("break", plan, "-o", broken)
    found = report("merge", broken, "--dry-run")
    with quoin.Drawing(broken) as drawing:
        lines, handles = drawing.lines()
        isLine = handles["segment"] < 0
        lines, handles = lines[isLine], handles[isLine]
        layers = [drawing[int(handle)].layer for handle in handles["handle"]]
        merged, source = quoin.merge_lines(lines, drawing.capture, properties=layers)
    after = {f"{handle:X}": row for handle, row in zip(handles["handle"][source], merged.tolist())}
    for change in found["changes"]:
        assert after[change["source"]] == numbers_of(change["results"][0])
    assert len(lines) - len(merged) == found["absorbed"]


def test_drawn_lines_are_the_program_s(tmp_path):
    plan = "examples/flat/flat.dxf"
    for layer in ("A-WALL-EXT", "A-WALL-INT"):
        found = report("draw", plan, "--from", "900,4500", "--to", "9000.5,5850.25", "--layer",
                       "NEW", "--walls", layer, "--dry-run")["drawn"][0]
        with quoin.Drawing(plan) as drawing:
            lines, handles = drawing.lines(layer)
            drawn, source = quoin.draw_line(lines, (900, 4500), (9000.5, 5850.25), drawing.capture)
        new = drawn[source < 0].tolist()
        assert new == [numbers_of(piece) for piece in found["results"]]
        cut = [handles["handle"][i] for i in np.flatnonzero(np.bincount(source[source >= 0]) > 1)]
        assert sorted(cut) == sorted(int(change["source"], 16) for change in found["changes"])


WIDTHS = ["--left", "120", "--right", "150.5"]


def test_outlines_are_the_program_s(tmp_path):
    broken = tmp_path / "broken.dxf"
    run("break", "examples/studio/studio.dxf", "--layer", "W-*", "-o", broken)
    found = report("outline", broken, "--layer", "W-*", *WIDTHS, "--dry-run")
    with quoin.Drawing(broken) as drawing:
        lines, _ = drawing.lines("W-*")
        outline = quoin.outline(lines, 120, 150.5, drawing.capture)
    expected = [(i, entry["role"], numbers_of(entry)) for i, wall in enumerate(found["walls"])
                for entry in wall["results"]]
    assert [(wall, quoin.ROLES[role], row) for wall, role, row in
            zip(outline.source, outline.role, outline.lines.tolist())] == expected


def test_bodies_are_the_program_s(tmp_path):
    broken, model = tmp_path / "broken.dxf", tmp_path / "model.obj"
    run("break", "examples/studio/studio.dxf", "--layer", "W-*", "-o", broken)
    run("solid", broken, "--layer", "W-*", *WIDTHS, "--height", "2800", "-o", model)
    vertices, faces = [], []
    for line in model.read_text().splitlines():
        word, *rest = line.split() or [""]
        if word == "v":
            vertices.append([float(number) for number in rest])
        elif word == "f":
            faces.append([int(number) - 1 for number in rest])
    with quoin.Drawing(broken) as drawing:
        lines, _ = drawing.lines("W-*")
        body = quoin.solid(lines, 120, 150.5, 2800, drawing.capture)
    # The file may number the corners of a body in another order.
    assert sorted(body.vertices.tolist()) == sorted(vertices)
    corners = [[vertices[i] for i in face] for face in faces]
    assert [[body.vertices[i].tolist() for i in dict.fromkeys(face)]
            for face in body.faces.tolist()] == corners


def test_cleaned_lines_are_the_program_s(tmp_path):
    with quoin.Drawing("examples/flat/flat.dxf") as drawing:
        plan = made_plan(tmp_path / "lines.dxf", drawing.lines()[0])
    found = report("clean", plan, "--layer", "WALL", "--snap", "30", "--reach", "300",
                   "--spur", "400", "--dry-run")
    with quoin.Drawing(plan) as drawing:
        lines, handles = drawing.lines("WALL")
        cleaned, source = quoin.clean(lines, 30, 300, 400)
    after = dict(zip((f"{handle:X}" for handle in handles["handle"][source]), cleaned.tolist()))
    before = dict(zip((f"{handle:X}" for handle in handles["handle"]), lines.tolist()))
    changed = {change["source"]: numbers_of(change["results"][0]) for change in found["changes"]}
    assert {handle: row for handle, row in after.items() if before[handle] != row} == changed
    assert set(before) - set(after) == {entry["source"] for entry in found["removed"]}
    assert found["changes"] or found["removed"]


def made_plan(path, lines):
    with quoin.Drawing("examples/studio/studio.dxf") as drawing:
        drawing.erase([entity.handle for entity in drawing.entities()])
        drawing.append(lines, "WALL")
        drawing.save(path)
    return path


def test_walls_are_the_program_s(tmp_path):
    with quoin.Drawing("examples/flat/flat.dxf") as drawing:
        lines, _ = drawing.lines()
    plan = made_plan(tmp_path / "faces.dxf", lines)
    found = report("walls", plan, "--layer", "WALL", "--dry-run")
    walls = quoin.find_walls(lines)
    assert len(walls) == len(found["walls"]) > 5
    for row, left, right, sure, wall in zip(walls.lines.tolist(), walls.left, walls.right,
                                            walls.confidence, found["walls"]):
        assert [*wall["start"][:2], *wall["end"][:2]] == row
        assert (wall["left"], wall["right"], wall["confidence"]) == (left, right, sure)
    assert len(walls.openings) == len(found["openings"])


@pytest.mark.parametrize("plan", [plan for plan in EXAMPLES if "studio" not in plan])
def test_walls_of_drawings_are_the_program_s(plan):
    found = report("walls", plan, "--dry-run")
    with quoin.Drawing(plan) as drawing:
        walls = drawing.find_walls()
        unit = drawing.mm_per_unit
    assert len(walls) == len(found["walls"]) > 5
    assert len(walls.face_lines) >= found["lines"]
    assert [[*wall["start"][:2], *wall["end"][:2]] for wall in found["walls"]] == \
        walls.lines.tolist()
    assert [opening["kind"] for opening in found["openings"]] == \
        [quoin.KINDS[kind] for kind in walls.openings["kind"]]
    rooms = quoin.find_rooms(walls, capture=10.0 / unit, min_area=0.25e6 / unit**2,
                             min_width=150.0 / unit)
    told = report("rooms", plan, "--faces", "--dry-run")["rooms"]
    assert [room.net_area * (unit * unit / 1e6) for room in rooms] == \
        [room["netArea"] for room in told]


def test_rooms_are_the_program_s(tmp_path):
    with quoin.Drawing("examples/flat/flat.dxf") as drawing:
        lines, _ = drawing.lines()
    plan = made_plan(tmp_path / "faces.dxf", lines)
    found = report("rooms", plan, "--layer", "WALL", "--faces", "--dry-run")["rooms"]
    rooms = quoin.find_rooms(quoin.find_walls(lines))
    assert len(rooms) == len(found) > 2
    assert [room.net_area * 1e-6 for room in rooms] == [room["netArea"] for room in found]


# --- the corpus -------------------------------------------------------------------------------

CASE = re.compile(r"^case  (.*?)$(.*?)(?=^case |\Z)", re.MULTILINE | re.DOTALL)


def corpus(kind):
    """(name, capture, words of each line) of the cases of one algorithm."""
    cases = []
    for file in sorted((ROOT / "tests" / "corpus").rglob("*.txt")):
        for name, body in CASE.findall(file.read_text("utf-8")):
            rows = [line.split() for line in body.split("=>")[0].splitlines()]
            rows = [row for row in rows if row and row[0] != "#"]
            if ["do", kind] in rows:
                scale = [float(row[1]) for row in rows if row[0] == "scale"]
                cases.append((f"{file.stem}: {name}", 
                              10.0 / scale[0] if scale and scale[0] else 10.0, rows))
    assert cases
    return cases


def point(text):
    numbers = [float(number) for number in text.split(",")]
    return (numbers + [0.0])[:3]


def lines_of(rows):
    return [point(row[1]) + point(row[2]) for row in rows if row[0] == "line"]


def is_plain(lines, capture):
    return lines and np.isfinite(lines).all() and capture > 0 and np.isfinite(capture) and \
        np.abs(lines).max() < 1e150


@pytest.mark.parametrize("kind", ["break", "axes"])
def test_the_corpus_is_the_program_s_byte_for_byte(kind, tmp_path):
    by_capture = {}
    for number, (name, capture, rows) in enumerate(corpus(kind)):
        lines = lines_of(rows)
        if not is_plain(lines, capture) or any(row[0] == "cut" for row in rows):
            continue
        plan = made_plan(tmp_path / f"case{number}.dxf", lines)
        by_capture.setdefault(capture, []).append((name, plan))
    compared = 0
    for capture, cases in by_capture.items():
        folder = tmp_path / f"program{compared}"
        words = ["break", "--tolerance", repr(capture)] if kind == "break" else ["trim-axes"]
        run(*words, *(plan for _, plan in cases), "--layer", "WALL", "--jobs", "1", "-o",
            f"{folder}/", codes=(0, 4))
        for name, plan in cases:
            with quoin.Drawing(plan) as drawing:
                lines, handles = drawing.lines("WALL")
                if len(lines) == 0:
                    assert not (folder / plan.name).exists(), name
                    continue
                found, source = quoin.break_lines(lines, capture) if kind == "break" else \
                    quoin.trim_axes(lines)
                drawing.replace(found, handles[source])
                drawing.save(plan)
            assert plan.read_bytes() == (folder / plan.name).read_bytes(), name
            compared += 1
    assert compared > 10
