"""Arguments: what is converted, and what is refused with which words."""

import numpy as np
import pytest

import quoin

TEE = [[0, 0, 1000, 0], [400, 500, 400, 0]]


def same(found, expected):
    return all(np.array_equal(a, b) for a, b in zip(found, expected))


@pytest.mark.parametrize("dtype", ["i4", "i8", "f4", "f8", ">f8", "u2", object])
def test_all_kinds_of_numbers_are_taken(dtype):
    assert same(quoin.break_lines(np.array(TEE, dtype=dtype)), quoin.break_lines(TEE))


def test_arrays_that_are_not_contiguous_are_taken():
    wide = np.zeros((4, 8))
    wide[::2, ::2] = TEE
    assert same(quoin.break_lines(wide[::2, ::2]), quoin.break_lines(TEE))
    assert same(quoin.break_lines(np.asfortranarray(TEE)), quoin.break_lines(TEE))


def test_an_array_is_never_changed():
    lines = np.array(TEE, dtype=float)
    before = lines.copy()
    quoin.break_lines(lines)
    quoin.merge_lines(lines)
    quoin.clean(lines)
    assert np.array_equal(lines, before)


def test_read_only_arrays_are_taken():
    lines = np.array(TEE, dtype=float)
    lines.setflags(write=False)
    assert same(quoin.break_lines(lines), quoin.break_lines(TEE))


def test_lines_in_space_come_back_in_space():
    flat = np.array(TEE, dtype=float)
    high = np.insert(flat, [2, 4], 2.5, axis=1)
    pieces, source = quoin.break_lines(high)
    assert pieces.shape == (3, 6) and (pieces[:, [2, 5]] == 2.5).all()
    assert np.array_equal(pieces[:, [0, 1, 3, 4]], quoin.break_lines(flat)[0])


@pytest.mark.parametrize("function", [
    quoin.break_lines, quoin.merge_lines, quoin.trim_axes, quoin.clean,
    lambda lines: quoin.draw_line(lines, (0, 0), (1, 1)),
    lambda lines: quoin.outline(lines, 1, 1), lambda lines: quoin.solid(lines, 1, 1, 1),
    quoin.find_walls, lambda lines: quoin.find_rooms(lines, 1, 1)])
def test_what_is_wrong_with_lines_is_said_alike_by_all(function):
    for wrong, words in (
            ([[0, 0, 1]], r"lines: an array of shape \(n, 4\) or \(n, 6\) is wanted.*\(1, 3\)"),
            ([0, 0, 1, 0], r"lines: .*\(4,\)"),
            ([[[0, 0, 1, 0]]], r"lines: .*\(1, 1, 4\)"),
            ([[0, 0, 1, 0], [0, 0, np.nan, 0]], r"lines\[1\]: x2 is nan"),
            ([[0, 0, 1e300, 0]], r"lines\[0\]: x2 is 1e\+300, too far out"),
            ([[0, 0, 1, 0], [0, -np.inf, 1, 0]], r"lines\[1\]: y1 is -inf"),
            ([[0, 0, 0, 1, 0, np.inf]], r"lines\[0\]: z2 is inf"),
            ([["a", 0, 1, 0]], r"lines: this is no array of real numbers"),
            ([[1j, 0, 1, 0]], r"lines: this is no array of real numbers"),
            (None, r"lines: .*"),
            ([[0, 0, 1, 0], [0]], r"lines: .*")):
        with pytest.raises(quoin.Error, match=words) as failure:
            function(wrong)
        assert failure.value.code == 2


def test_the_first_wrong_number_of_many_is_named():
    lines = np.zeros((100_000, 4))
    lines[:, 2] = 1
    lines[99_999, 3] = np.nan
    with pytest.raises(quoin.Error, match=r"^lines\[99999\]: y2 is nan$"):
        quoin.break_lines(lines)


@pytest.mark.parametrize("function", [
    quoin.break_lines, quoin.merge_lines,
    lambda lines: quoin.draw_line(lines, (0, 0), (1000, 0)), quoin.trim_axes, quoin.clean])
def test_no_lines_give_no_lines_but_those_that_are_drawn(function):
    for empty in ([], np.empty((0, 4)), np.empty((0, 6))):
        lines, source = function(empty)
        assert lines.shape[1] in (4, 6) and len(lines) == len(source) == (source == -1).sum()


def test_no_walls_give_nothing():
    assert len(quoin.outline([], 1, 1).lines) == 0
    assert quoin.solid([], 1, 1, 1).faces.shape == (0, 4)
    assert len(quoin.find_walls([])) == 0
    assert quoin.find_rooms([], 1, 1) == []


@pytest.mark.parametrize("capture", [0, -1, np.nan, np.inf, 1e-320, "wide", None, [1, 2]])
def test_a_capture_distance_is_a_number_above_zero(capture):
    with pytest.raises(quoin.Error, match="capture"):
        quoin.break_lines(TEE, capture=capture)


def test_the_capture_distance_is_each_call_s_own():
    lines = [[0, 0, 1000, 0], [400, 500, 400, 15]]
    for _ in range(3):
        assert len(quoin.break_lines(lines, capture=10)[0]) == 2
        assert len(quoin.break_lines(lines, capture=20)[0]) == 3


def test_points_are_checked_too():
    for wrong, words in (([[1, 2, 3, 4]], r"at: an array of shape \(n, 2\) or \(n, 3\)"),
                         ([[1, np.nan]], r"at\[0\]: y is nan")):
        with pytest.raises(quoin.Error, match=words):
            quoin.break_lines(TEE, at=wrong)
    with pytest.raises(quoin.Error, match="at: there is no line"):
        quoin.break_lines([], at=[1, 1])
    with pytest.raises(quoin.Error, match="start: one point is wanted"):
        quoin.draw_line(TEE, [[0, 0], [1, 1]], (0, 0))


def test_at_cuts_the_nearest_line():
    pieces, source = quoin.break_lines([[0, 0, 1000, 0], [0, 900, 1000, 900]], at=[250, 100])
    assert pieces.tolist() == [[0, 0, 250, 0], [250, 0, 1000, 0], [0, 900, 1000, 900]]
    assert source.tolist() == [0, 0, 1]


def test_lines_with_other_properties_do_not_merge():
    row = [[0, 0, 400, 0], [400, 0, 1000, 0]]
    assert len(quoin.merge_lines(row)[0]) == 1
    assert len(quoin.merge_lines(row, properties=["brick", "glass"])[0]) == 2
    assert len(quoin.merge_lines(row, properties=["brick", "brick"])[0]) == 1
    assert len(quoin.merge_lines(row, keep_at=(400, 0))[0]) == 2
    with pytest.raises(quoin.Error, match="properties: 2 values are wanted"):
        quoin.merge_lines(row, properties=[1])


def test_widths_are_one_for_all_or_one_for_each():
    assert len(quoin.outline(TEE, 100, [50, 60]).lines) > 0
    with pytest.raises(quoin.Error, match="left: one number, or 2"):
        quoin.outline(TEE, [1, 2, 3], 1)
    with pytest.raises(quoin.Error, match=r"lines\[1\]: a wall 0 wide to the left and 0"):
        quoin.outline(TEE, [1, 0], 0)
    with pytest.raises(quoin.Error, match=r"right\[0\]: it is nan"):
        quoin.outline(TEE, 1, [np.nan, 1])


def test_openings_are_checked():
    opening = np.array([(0, 300, 1200, 2, np.nan, np.nan)], dtype=quoin.OPENINGS)
    wall = [[0, 0, 4000, 0]]
    body = quoin.solid(wall, 100, 100, 2800, openings=opening)
    assert body.cut.tolist() == [0]
    assert len(body.faces) > len(quoin.solid(wall, 100, 100, 2800).faces)
    for name, value, words in (("wall", 1, "there is no wall 1"), ("wall", -1, "no wall -1"),
                               ("kind", 3, "no kind 3"), ("end", 300, "is no width"),
                               ("start", np.nan, "is no width"), ("head", np.inf, "head is inf")):
        wrong = opening.copy()
        wrong[name] = value
        with pytest.raises(quoin.Error, match=words):
            quoin.solid(wall, 100, 100, 2800, openings=wrong)
    with pytest.raises(quoin.Error, match="OPENINGS"):
        quoin.solid(wall, 100, 100, 2800, openings=[1, 2])
    with pytest.raises(quoin.Error, match="its line has no length"):
        quoin.solid([[0, 0, 0, 0]], 100, 100, 2800, openings=opening)


def test_what_is_drawn_beside_walls_is_checked():
    faces = [[0, 0, 4000, 0], [0, 200, 4000, 200]]
    for name, wrong, words in (
            ("arcs", [[0, 0, 1, 0]], r"arcs: an array of shape \(n, 5\)"),
            ("face_arcs", [[0, 0, 1, 0, np.nan]], r"face_arcs\[0\]: turn is nan"),
            ("symbols", [[0, 0, 1]], "symbols: "), ("boxes", [[0, 0, 1, 1]], "boxes: "),
            ("boxes", [[0, 0, 1, 1, 2], [0, 0, 1, 1, 1.5]], r"boxes\[1\]: there is no kind 1.5")):
        with pytest.raises(quoin.Error, match=words):
            quoin.find_walls(faces, **{name: wrong})
    with pytest.raises(TypeError, match="no argument 'with_thickness'"):
        quoin.find_walls(faces, with_thickness=1)


def test_a_block_s_box_says_what_an_opening_is():
    faces = [[x, y, x + 2500, y] for y in (0, 200) for x in (0, 3400)]
    faces += [[x, 0, x, 200] for x in (0, 2500, 3400, 5900)]
    for kind in (0, 1, 2):
        walls = quoin.find_walls(faces, boxes=[[2500, 100, 3400, 1000, kind]])
        assert walls.openings["kind"].tolist() == [kind]
    assert walls.opening_lines.tolist() == [[2500.0, 100.0, 3400.0, 100.0]]


def test_walls_between_arcs_are_found():
    arcs = [[0, 0, radius, 0.0, 1.5] for radius in (4900, 5100)]
    walls = quoin.find_walls([[-9000, 0, -5000, 0], [-9000, 200, -5000, 200]], face_arcs=arcs)
    [curve] = walls.curved
    assert (curve.radius, curve.width) == (5000.0, 200.0)
    assert len(curve.walls) > 3 and curve.walls.max() < len(walls)


def test_found_walls_come_with_their_own_widths():
    walls = quoin.find_walls([[0, 0, 4000, 0], [0, 200, 4000, 200], [0, 0, 0, 200],
                              [4000, 0, 4000, 200]])
    assert len(quoin.outline(walls).lines) == 4
    assert len(quoin.solid(walls, height=2800).faces) > 0
    for function in (quoin.outline, quoin.solid, quoin.find_rooms):
        with pytest.raises(quoin.Error, match="found walls have their own"):
            function(walls, 1, 1)
        with pytest.raises(quoin.Error, match="how wide are the walls"):
            function([[0, 0, 1, 0]])


def test_an_error_survives_pickling():
    import pickle
    error = pickle.loads(pickle.dumps(quoin.Error("words", 4)))
    assert (str(error), error.code) == ("words", 4)
