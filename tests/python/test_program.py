"""The same lines through Python and through the program: the same bits."""

import json
import math
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


def same_cleaning(cleaned, told):
    """What `quoin clean` tells, to the last bit."""
    assert cleaned.counts == told["counts"]
    assert [(action.step, name_of(action.handle),
             action.segment if action.segment >= 0 else None,
             action.start and [*action.start], action.end and [*action.end],
             None if action.survivor is None else name_of(action.survivor))
            for action in cleaned.actions] == \
        [(action["step"], action["source"], action.get("segment"), action.get("from"),
          action.get("to"), action.get("survivor")) for action in told["actions"]]
    assert list(zip(names_of(cleaned.handles), cleaned.lines.tolist())) == \
        [(change["source"], numbers_of(change["results"][0])) for change in told["changes"]]
    assert names_of(cleaned.removed) == [entity["source"] for entity in told["removed"]]
    assert [(place.why, [*place.at], name_of(place.handle),
             None if place.other is None else name_of(place.other)) for place in
            cleaned.undecided] == \
        [(place["why"], place["at"], place["source"], place.get("other"))
         for place in told["undecided"]]
    assert [name_of(place.mark) for place in cleaned.undecided] == \
        [place["mark"] for place in told["undecided"]]
    assert (cleaned.kept_overlaps, cleaned.marks_added, cleaned.marks_erased) == \
        (told["keptOverlaps"], told["marks"]["added"], told["marks"]["erased"])


CLEANING = [([], {}), (["--snap", "30", "--reach", "300", "--spur", "off", "--duplicates", "any"],
                       dict(snap=30, reach=300, spur=0, duplicates="any")),
            (["--snap", "off", "--reach", "off", "--duplicates", "off", "--no-join", "--mark-layer",
              "M"], dict(snap=0, reach=0, duplicates="off", join=False, mark_layer="M"))]


@pytest.mark.parametrize("words, arguments", CLEANING)
@pytest.mark.parametrize("plan, layers", [(plan, layers_of(plan)) for plan in EXAMPLES] +
                         [(plan, "*") for plan in shared_plans()])
def test_cleaned_plans_are_the_program_s_byte_for_byte(plan, layers, words, arguments, tmp_path):
    expected = result_of(plan, tmp_path)
    told = json.loads(run("clean", plan, *(["--layer", layers] if layers else []), *words, "-o",
                          expected, "--report", "json", codes=(0, 4)))["drawings"][0]
    path = tmp_path / ("python" + expected.suffix)
    with quoin.Drawing(plan) as drawing:
        if told["exitCode"] != 0:
            with pytest.raises(quoin.Error) as failure:
                drawing.clean(layers, **arguments)
            assert (str(failure.value), failure.value.code) == (told["error"], 4)
            return
        same_cleaning(drawing.clean(layers, **arguments), told)
        drawing.save(path)
    assert path.read_bytes() == expected.read_bytes()


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


def name_of(handle):
    """As reports name an entity; "" where the file gives no handle."""
    return f"{handle:X}" if handle < 1 << 63 else ""


def names_of(handles):
    return [name_of(handle) for handle in handles["handle"]]


def reading_plans():
    """Plans that draw walls as faces, the layers that are read and what a unit is."""
    real = {"barcelona_pavilion_r2000.dxf": (None, "m"), "barcelona_plan_r2013.dxf": (None, ""),
            "house_bishop_floorplan_r2004.dxf": ("*A-WALL", "in")}
    shared = sorted(SHARED.glob("*.d[xw][fg]")) if SHARED.is_dir() else []
    return [(plan, None, "") for plan in EXAMPLES if "studio" not in plan] + \
        [(str(plan), *real.get(plan.name, ("*", ""))) for plan in shared]


def told_of(command, plan, layers, units):
    """What the program reports, of a failure too."""
    return json.loads(run(command, plan, *(["--layer", layers] if layers else []),
                          *(["--units", units] if units else []), "--dry-run", "--report", "json",
                          codes=(0, 4)))["drawings"][0]


@pytest.mark.parametrize("plan, layers, units", reading_plans())
def test_walls_of_drawings_are_the_program_s(plan, layers, units):
    told = told_of("walls", plan, layers, units)
    with quoin.Drawing(plan, units=units) as drawing:
        if told["exitCode"] != 0:
            with pytest.raises(quoin.Error) as failure:
                drawing.find_walls(layers)
            assert (str(failure.value), failure.value.code) == (told["error"], 4)
            return
        shares = []
        walls = drawing.find_walls(layers, progress=shares.append)
    assert shares[-1] == 1.0
    same_walls(walls, told)
    assert len(walls) > 5 or layers == "*"


def same_walls(walls, told):
    """What `quoin walls` tells, to the last bit."""
    assert [(wall["start"][:2] + wall["end"][:2], wall["left"], wall["right"], wall["confidence"])
            for wall in told["walls"]] == \
        [(row, *rest) for row, *rest in zip(walls.lines.tolist(), walls.left.tolist(),
                                            walls.right.tolist(), walls.confidence.tolist())]
    faces = [names_of(walls.face_handles[lines]) for lines in walls.faces]
    if told["input"]["release"] != "R12":  # else they are named by their lines in the file
        assert [wall["faces"] for wall in told["walls"]] == [sorted(set(names)) for names in faces]
    assert [(opening["start"][:2] + opening["end"][:2], opening["wall"], opening["kind"],
             opening["width"]) for opening in told["openings"]] == \
        [(row, place["wall"], quoin.KINDS[place["kind"]], place["end"] - place["start"])
         for row, place in zip(walls.opening_lines.tolist(), walls.openings)]
    assert [column["polygon"] for column in told["columns"]] == \
        [column.tolist() for column in walls.columns]
    degrees = 180.0 / math.pi
    assert [(curve["center"][:2], curve["radius"], curve["startAngle"], curve["sweep"],
             curve["width"], curve["walls"]) for curve in told["curved"]] == \
        [([*curve.center], curve.radius, curve.start * degrees, curve.sweep * degrees,
          curve.width, curve.walls.tolist()) for curve in walls.curved]
    assert [[row["width"], row["length"]] for row in told["widths"]] == walls.found_widths.tolist()
    assert [entity["source"] for entity in told["leftOver"]] == \
        names_of(walls.face_handles[walls.left_over])


def same_rooms(rooms, told, unit):
    """What `quoin rooms` tells, to the last bit."""
    square, metre = unit * unit / 1e6, unit / 1000.0
    assert [room.net_area * square for room in rooms] == [room["netArea"] for room in told["rooms"]]
    for room, row in zip(rooms, told["rooms"]):
        assert (room.name, room.number, room.stated_area, room.is_gross_by_strips) == \
            (row["name"], row["number"], row["statedArea"], row["grossByStrips"])
        assert (room.gross_area * square, room.perimeter * metre) == \
            (row["grossArea"], row["perimeter"])
        assert (room.walls.tolist(), room.openings.tolist()) == (row["walls"], row["openings"])
        assert room.ways == [(way["opening"], way["room"]) for way in row["neighbours"]]
        assert room.outer.tolist() == row["polygon"]
        assert [hole.tolist() for hole in room.holes] == row["holes"]
    walls = rooms.walls
    assert [(row["left"], row["right"]) for row in told["walls"]] == \
        list(zip(walls.left.tolist(), walls.right.tolist()))
    assert [(opening["start"] + opening["end"], opening["wall"], opening["type"])
            for opening in told["openings"]] == \
        [(row, place["wall"], quoin.KINDS[place["kind"]])
         for row, place in zip(walls.opening_lines.tolist(), walls.openings)]
    assert [entry["polygon"] for entry in told["tooSmall"]] == \
        [ring.tolist() for ring in rooms.too_small]
    assert rooms.walls_left_out == told["wallsLeftOut"]


@pytest.mark.parametrize("plan, layers, units", reading_plans())
def test_rooms_of_drawings_are_the_program_s(plan, layers, units):
    told = told_of("rooms", plan, layers, units)
    with quoin.Drawing(plan, units=units) as drawing:
        unit = drawing.mm_per_unit
        if told["exitCode"] != 0:
            with pytest.raises(quoin.Error) as failure:
                drawing.find_rooms(layers)
            assert (str(failure.value), failure.value.code) == (told["error"], 4)
            return
        rooms = drawing.find_rooms(layers)
        walls = drawing.find_walls(layers)
    same_rooms(rooms, told, unit)
    # The same from arrays, but for the names.
    again = quoin.find_rooms(walls, capture=10.0 / unit, min_area=0.25e6 / unit**2,
                             min_width=150.0 / unit)
    assert [room.net_area for room in again] == [room.net_area for room in rooms]
    if "examples" in plan and "received" not in plan:
        assert any(room.name or room.number for room in rooms)


@pytest.mark.parametrize("plan", [plan for plan in EXAMPLES if "studio" not in plan])
def test_what_stated_walls_enclose_and_look_like_is_the_program_s(plan, tmp_path):
    stated, expected = result_of(plan, tmp_path), tmp_path / ("outlined" + plan[-4:])
    run("walls", plan, "-o", stated)
    outlined = report("outline", stated, "--layer", "QUOIN-WALL", "-o", expected)
    told = report("rooms", stated, "--dry-run")
    assert outlined["openingCounts"]["cut"] > 3
    with quoin.Drawing(stated) as drawing:
        rooms = drawing.find_rooms()
        same_rooms(rooms, told, drawing.mm_per_unit)
        assert names_of(rooms.walls.handles) == [wall["source"] for wall in told["walls"]]
        assert [name_of(handle) for handle in rooms.walls.opening_handles] == \
            [opening["source"] for opening in told["openings"]]
        walls = drawing.read_walls()
        assert names_of(walls.handles) == [wall["source"] for wall in outlined["walls"]]
        outline = drawing.outline()
        same_outline(outline, outlined)
        assert all(np.array_equal(a, b) for a, b in
                   zip(outline, quoin.outline(walls, capture=drawing.capture)))
        assert len(drawing.outline(openings=[]).cut) == 0
        drawing.append(outline.lines, "WALL-OUTLINE")
        saved = tmp_path / ("python" + plan[-4:])
        drawing.save(saved)
    assert saved.read_bytes() == expected.read_bytes()


def same_outline(outline, told):
    assert [(i, entry["role"], numbers_of(entry)) for i, wall in enumerate(told["walls"])
            for entry in wall["results"]] == \
        [(wall, quoin.ROLES[role], row) for wall, role, row in
         zip(outline.source, outline.role, outline.lines.tolist())]
    assert len(outline.cut) == told["openingCounts"]["cut"]


def test_widths_are_read_as_the_program_reads_them():
    plan, given = "examples/studio/studio.dxf", {"W-EXT*": 300, "W-INT": (60, 59.7)}
    words = ["--width", "W-EXT*=300", "--width", "W-INT=60,59.7", "--left", "20", "--right", "0.1"]
    with quoin.Drawing(plan) as drawing:
        found = drawing.outline("W-*", left=20, right=0.1, widths=given)
        same_outline(found, report("outline", plan, "--layer", "W-*", *words, "--dry-run"))
        rooms = drawing.find_rooms("W-*", left=20, right=0.1, widths=given)
        same_rooms(rooms, report("rooms", plan, "--layer", "W-*", *words, "--dry-run"),
                   drawing.mm_per_unit)
        assert len(rooms) > 2
        for wrong, message in ((dict(left="x"), "left"), (dict(widths={"A": [1, 2, 3]}), "widths"),
                               (dict(openings="NOTHING"), "no layer matches NOTHING"),
                               (dict(left=-1, right=1), "no thickness")):
            with pytest.raises(quoin.Error, match=message):
                drawing.read_walls("W-*", **wrong)
        with pytest.raises(quoin.Error, match="has no width"):
            drawing.outline("W-*")


def test_openings_of_arrays_are_left_open_as_the_program_does(tmp_path):
    """Overlapping, touching, in a joint, wider than their wall."""
    lines = [[0, 0, 4000, 0], [4000, 0, 4000, 3000], [4000, 3000, 0, 0]]
    places = [(0, 500, 1500), (0, 1400, 1800), (0, 1800, 1900), (0, 3900, 4000), (1, 0, 3000),
              (1, 1000, 1900), (2, 100, 900), (2, 2, 60)]
    openings = np.array([(*place, 1, np.nan, np.nan) for place in places], dtype=quoin.OPENINGS)
    plan = made_plan(tmp_path / "walls.dxf", lines)
    with quoin.Drawing(plan) as drawing:
        walls = np.array(lines, dtype=float)
        ways = (walls[:, 2:] - walls[:, :2]) / np.hypot(*(walls[:, 2:] - walls[:, :2]).T)[:, None]
        wall = openings["wall"]
        drawing.append(np.hstack((walls[wall, :2] + ways[wall] * openings["start"][:, None],
                                  walls[wall, :2] + ways[wall] * openings["end"][:, None])), "GAP")
        drawing.save()
    told = report("outline", plan, "--layer", "WALL", "--left", "100", "--right", "90",
                  "--openings", "GAP", "--dry-run")
    with quoin.Drawing(plan) as drawing:
        read = drawing.read_walls("WALL", left=100, right=90, openings="GAP")
        assert len(read.openings) == len(openings)
    outline = quoin.outline(read)
    same_outline(outline, told)
    assert 0 < len(outline.cut) < len(openings)
    assert (outline.role == quoin.ROLES.index("jamb")).sum() >= 6
    flat = quoin.outline(lines, 100, 90, openings=openings)
    assert np.array_equal(flat.role, outline.role) and np.array_equal(flat.cut, outline.cut)
    assert np.abs(flat.lines - outline.lines[:, [0, 1, 3, 4]]).max() < 1e-9


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
