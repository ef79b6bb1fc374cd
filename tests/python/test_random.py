"""Arrays that hypothesis makes up: nothing crashes, and what every result must keep."""

import math

import numpy as np
import pytest
from hypothesis import HealthCheck, given, settings
from hypothesis import strategies as st
from hypothesis.extra import numpy as hnp

import quoin

settings.register_profile("quoin", deadline=None, max_examples=60, derandomize=True,
                          database=None,
                          suppress_health_check=list(HealthCheck))
settings.load_profile("quoin")

# Coarse numbers meet one another; others are of every size that is taken.
NEAR = st.integers(-40, 40).map(lambda n: n * 25.0)
FAR = st.floats(-1e150, 1e150, allow_nan=False)
ANY = st.floats()


def rows(elements, columns=4, most=40):
    return st.integers(0, most).flatmap(
        lambda count: hnp.arrays(np.float64, (count, columns), elements=elements))


@given(rows(NEAR))
def test_pieces_lie_on_their_lines_and_cover_them(lines):
    pieces, source = quoin.break_lines(lines)
    assert (np.diff(source) >= 0).all()
    assert np.array_equal(np.unique(source), np.arange(len(lines)))
    for i, line in enumerate(lines):
        mine = pieces[source == i]
        assert np.array_equal(mine[0, :2], line[:2]) and np.array_equal(mine[-1, 2:], line[2:])
        assert np.array_equal(mine[1:, :2], mine[:-1, 2:])
        whole = math.dist(line[:2], line[2:])
        parts = np.hypot(*(mine[:, 2:] - mine[:, :2]).T).sum()
        assert parts == pytest.approx(whole, abs=1e-9)


@given(rows(NEAR))
def test_in_space_at_height_0_is_in_plan(lines):
    wide = np.insert(lines, [2, 4], 0.0, axis=1)
    for function in (quoin.break_lines, quoin.merge_lines, quoin.trim_axes, quoin.clean):
        flat, source = function(lines)
        high, again = function(wide)
        assert np.array_equal(high[:, [0, 1, 3, 4]], flat) and np.array_equal(source, again)


@given(rows(NEAR))
def test_cleaning_twice_changes_nothing(lines):
    once, _ = quoin.clean(lines)
    twice, source = quoin.clean(once)
    assert np.array_equal(twice, once) and np.array_equal(source, np.arange(len(once)))


@given(rows(NEAR))
def test_what_is_trimmed_lies_within_its_line(lines):
    trimmed, source = quoin.trim_axes(lines)
    assert np.array_equal(source, np.arange(len(lines)))
    before = np.hypot(*(lines[:, 2:] - lines[:, :2]).T)
    after = np.hypot(*(trimmed[:, 2:] - trimmed[:, :2]).T)
    assert (after <= before + 1e-9).all()


@given(rows(FAR), st.floats(1e-3, 1e6))
def test_lines_of_every_size_are_worked_on(lines, capture):
    for function in (quoin.break_lines, quoin.merge_lines):
        found, source = function(lines, capture=capture)
        assert len(found) == len(source)
    quoin.trim_axes(lines, capture)
    quoin.draw_line(lines, (0, 0), (capture, 1), capture=capture)
    assert len(quoin.outline(lines, capture, capture, capture=capture).lines) >= 0
    quoin.solid(lines, capture, 1, 100, capture=capture)


@given(rows(st.floats(-1e9, 1e9), most=30))
def test_plans_of_every_size_are_read(lines):
    walls = quoin.find_walls(lines)
    assert set(walls.left_over.tolist()) <= set(range(len(lines)))
    quoin.find_rooms(walls)
    quoin.clean(lines)


@given(rows(NEAR, most=20))
def test_bodies_are_closed(lines):
    body = quoin.solid(lines, 40, 60, 2800)
    edges = {}
    for face, source in zip(body.faces.tolist(), body.source.tolist()):
        corners = list(dict.fromkeys(face))
        for a, b in zip(corners, corners[1:] + corners[:1]):
            edges[source, a, b] = edges.get((source, a, b), 0) + 1
    for (source, a, b), count in edges.items():
        assert edges.get((source, b, a), 0) == count


def openings_of(data, walls):
    """Openings of these walls: side by side, over one another, beyond their ends."""
    places = data.draw(st.lists(st.tuples(st.integers(0, max(0, walls - 1)), NEAR,
                                          st.integers(1, 40).map(lambda n: n * 25.0),
                                          st.integers(0, 2)), max_size=8 if walls else 0))
    return np.array([(wall, start, start + width, kind, np.nan, np.nan)
                     for wall, start, width, kind in places], dtype=quoin.OPENINGS)


@given(st.data(), rows(NEAR, most=20))
def test_gaps_of_outlines_lie_in_their_openings(data, lines):
    lines = lines[np.hypot(*(lines[:, 2:] - lines[:, :2]).T) > 0]
    openings = openings_of(data, len(lines))
    whole = quoin.outline(lines, 40, 60)
    outline = quoin.outline(lines, 40, 60, openings=openings)
    assert len(np.unique(outline.cut)) == len(outline.cut) <= len(openings)
    jamb = outline.role == quoin.ROLES.index("jamb")
    assert jamb.sum() <= 2 * len(outline.cut)
    sides = [(line.tolist(), source, role) for line, source, role in
             zip(whole.lines, whole.source, whole.role)
             if role > 1 or source not in openings["wall"][outline.cut]]
    parted = [(line.tolist(), source, role) for line, source, role in
              zip(outline.lines[~jamb], outline.source[~jamb], outline.role[~jamb])
              if role > 1 or source not in openings["wall"][outline.cut]]
    assert parted == sides
    assert (np.abs(outline.lines[jamb][:, 2:] - outline.lines[jamb][:, :2]).sum(axis=1) > 0).all()


@settings(max_examples=25)
@given(rows(st.one_of(NEAR, st.floats(-1e9, 1e9)), most=25),
       st.one_of(st.just(0.0), st.floats(1e-3, 1e4)))
def test_drawings_of_any_lines_are_read_as_arrays_are(lines, length):
    lines = lines[(lines[:, :2] != lines[:, 2:]).any(axis=1)]
    with quoin.Drawing("examples/studio/studio.dxf") as drawing:
        drawing.erase([entity.handle for entity in drawing.entities()])
        drawing.append(lines, "WALL")
        if len(lines) == 0:
            for call in (drawing.find_walls, drawing.find_rooms, drawing.clean,
                         lambda: drawing.outline("WALL", 1, 1)):
                with pytest.raises(quoin.Error):
                    call()
            return
        read, _ = drawing.lines()
        walls, found = drawing.find_walls(), quoin.find_walls(read)
        assert np.array_equal(walls.lines, found.lines)
        assert walls.openings.tobytes() == found.openings.tobytes()
        rooms, again = drawing.find_rooms(faces=True), quoin.find_rooms(found)
        assert [room.net_area for room in rooms] == [room.net_area for room in again]
        outline, same = drawing.outline("WALL", 40, 60), quoin.outline(read, 40, 60)
        assert all(np.array_equal(a, b) for a, b in zip(outline, same))
        cleaned, left = drawing.clean(snap=length, reach=length), quoin.clean(read, length, length)
        assert np.array_equal(drawing.lines("WALL")[0], left[0])
        assert len(cleaned.removed) == len(read) - len(left[0])


@given(rows(ANY), st.floats())
def test_what_is_no_number_is_refused_and_all_else_done(lines, capture):
    wrong = ~(np.abs(lines) <= 1e150)
    try:
        quoin.break_lines(lines, capture=capture)
    except quoin.Error as error:
        if wrong.any() and not str(error).startswith("capture"):
            assert str(error).startswith(f"lines[{np.argwhere(wrong)[0][0]}]")
    else:
        assert not wrong.any()


@given(hnp.arrays(st.sampled_from(["f4", "f8", "i2", "i8", "c8", "U3", "?", "M8[s]"]),
                  hnp.array_shapes(min_dims=0, max_dims=3, max_side=7)))
def test_every_array_is_taken_or_refused_in_words(values):
    for function in (quoin.break_lines, quoin.merge_lines, quoin.clean, quoin.find_walls):
        try:
            function(values)
        except quoin.Error as error:
            assert str(error)
