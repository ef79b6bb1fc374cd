"""Drawings as documents."""

import os
import pathlib
import shutil

import numpy as np
import pytest

import quoin
from conftest import EXAMPLES, SHARED, run

KINDS = "examples/kinds.dxf"
FLAT = "examples/flat/flat.dxf"


def every_drawing():
    shared = sorted(map(str, SHARED.glob("*.d[xw][fg]"))) if SHARED.is_dir() else []
    return EXAMPLES + shared


@pytest.mark.parametrize("plan", every_drawing())
def test_a_drawing_goes_through_byte_for_byte(plan, tmp_path):
    path = tmp_path / os.path.basename(plan)
    with quoin.Drawing(plan) as drawing:
        assert not drawing.is_modified
        assert drawing.layers and drawing.info["format"] in ("DXF", "DWG")
        for entity in drawing.entities()[:20]:
            assert drawing[entity.handle] == entity
        try:
            saved = drawing.save(path)
        except quoin.Error as error:
            assert "R2007" in str(error) or "AC1021" in str(error)  # read, and not written
            return
    assert path.read_bytes() == pathlib.Path(plan).read_bytes()
    assert (saved.path, saved.backup) == (str(path), "")


def test_it_says_what_it_is():
    with quoin.Drawing("examples/office/office.dxf") as drawing:
        assert drawing.units == "m" and drawing.mm_per_unit == 1000.0
        assert drawing.capture == 0.01
        info = drawing.info
        assert (info["format"], info["release"], info["is_binary"]) == ("DXF", "R2000", False)
        assert "office.dxf" in repr(drawing)


def test_units_that_the_file_does_not_name_are_given(tmp_path):
    with quoin.Drawing(FLAT, units="in") as drawing:
        assert (drawing.units, drawing.mm_per_unit) == ("in", 25.4)
        assert not drawing.is_modified
        drawing.save(tmp_path / "same.dxf")
    assert (tmp_path / "same.dxf").read_bytes() == pathlib.Path(FLAT).read_bytes()
    with pytest.raises(quoin.Error, match="units: no unit 'cubits' is known; there are .*mm"):
        quoin.Drawing(FLAT, units="cubits")


def test_entities_are_found_by_handle_kind_and_layer():
    with quoin.Drawing(FLAT) as drawing:
        all_of = drawing.entities()
        lines = drawing.entities(kind="LINE")
        walls = drawing.entities(layer="a-wall*")
        assert 0 < len(lines) < len(all_of) and 0 < len(walls) < len(all_of)
        assert {entity.kind for entity in lines} == {"LINE"}
        first = lines[0]
        assert drawing[first.handle] == drawing[f"{first.handle:x}"] == first
        counts = {layer.name: layer.counts for layer in drawing.layers}
        assert sum(kinds.get("LINE", 0) for kinds in counts.values()) == len(lines)
        for handle, words in ((0xFFFFFF, "no entity FFFFFF"), ("xyz", "no handle"),
                              (None, "no handle")):
            with pytest.raises(quoin.Error, match=words):
                drawing[handle]


def test_lines_are_those_of_the_layers():
    with quoin.Drawing(FLAT) as drawing:
        chosen, handles = drawing.lines()
        named, _ = drawing.lines(["A-WALL-EXT", "A-WALL-INT"])
        every, _ = drawing.lines("*")
        assert chosen.shape[1] == 6 and handles.dtype == quoin.HANDLES
        assert len(named) <= len(chosen) < len(every)
        with pytest.raises(quoin.Error, match="no layer matches NOTHING") as failure:
            drawing.lines("NOTHING")
        assert failure.value.code == 4
        with pytest.raises(quoin.Error, match="layers: name one"):
            drawing.lines([])


def test_what_is_the_same_is_not_touched():
    with quoin.Drawing(FLAT) as drawing:
        lines, handles = drawing.lines("*")
        results = drawing.replace(lines, handles)
        assert np.array_equal(results, handles["handle"])
        assert not drawing.is_modified
        flat = np.ascontiguousarray(lines[:, [0, 1, 3, 4]])
        drawing.replace(flat, handles)
        assert not drawing.is_modified


def test_replacing_moves_and_adds(tmp_path):
    with quoin.Drawing(FLAT) as drawing:
        lines, handles = drawing.lines("A-WALL-INT")
        row = int(np.flatnonzero(handles["segment"] < 0)[0])
        middle = 0.5 * (lines[row, :3] + lines[row, 3:])
        halves = np.array([[*lines[row, :3], *middle], [*middle, *lines[row, 3:]]])
        made = drawing.replace(halves, handles[[row, row]])
        assert made[0] == handles["handle"][row] and made[1] != made[0]
        assert drawing[int(made[1])].layer == "A-WALL-INT"
        again, places = drawing.lines("A-WALL-INT")
        assert len(again) == len(lines) + 1
        assert np.array_equal(again[places["handle"] == made[1]][0], halves[1])


def test_replacing_refuses_what_is_no_line(tmp_path):
    with quoin.Drawing(FLAT) as drawing:
        lines, handles = drawing.lines()
        with pytest.raises(quoin.Error, match="quoin.HANDLES"):
            drawing.replace(lines, handles["handle"])
        with pytest.raises(quoin.Error, match=f"handles: {len(lines)} are wanted"):
            drawing.replace(lines, handles[:1])
        text = next(entity for entity in drawing.entities() if entity.kind not in
                    ("LINE", "LWPOLYLINE", "POLYLINE"))
        for place, words in (((text.handle, -1), "has no straight segment"),
                             ((0xFFFFFF, -1), "no entity FFFFFF")):
            with pytest.raises(quoin.Error, match=words) as failure:
                drawing.replace(lines[:1], np.array([place], dtype=quoin.HANDLES))
            assert failure.value.code == 6
        assert not drawing.is_modified


def test_lines_are_added_and_erased(tmp_path):
    path = tmp_path / "added.dxf"
    with quoin.Drawing(FLAT) as drawing:
        before = pathlib.Path(FLAT).read_bytes()
        handles = drawing.append([[0, 0, 1, 0], [1, 0, 1, 1]], "NEW")
        assert [drawing[int(handle)].layer for handle in handles] == ["NEW", "NEW"]
        assert drawing.is_modified
        drawing.save(path)
    with quoin.Drawing(path) as drawing:
        assert drawing.lines("NEW")[0].tolist() == [[0, 0, 0, 1, 0, 0], [1, 0, 0, 1, 1, 0]]
        with pytest.raises(quoin.Error, match="no entity"):
            drawing.erase([int(handles[0]), 0xFFFFFF])
        assert len(drawing.lines("NEW")[0]) == 2
        drawing.erase(handles)
        drawing.erase([])
        with pytest.raises(quoin.Error, match="no entity"):
            drawing[int(handles[0])]
    assert pathlib.Path(FLAT).read_bytes() == before


def test_extents_and_moves_are_the_program_s(tmp_path):
    expected, path = tmp_path / "program.dxf", tmp_path / "python.dxf"
    run("to-origin", FLAT, "--at", "left-bottom", "-o", expected)
    with quoin.Drawing(FLAT) as drawing:
        least, greatest = drawing.extents()
        assert (least <= greatest).all()
        moved = drawing.transform(move=-least[:2])
        assert moved.moved == len(drawing.entities()) and moved.left == []
        assert np.abs(drawing.extents()[0][:2]).max() < 1e-9
        drawing.save(path)
        for wrong in ({"factor": 0}, {"factor": np.nan}, {"move": (1, np.inf)},
                      {"move": [(1, 2), (3, 4)]}):
            with pytest.raises(quoin.Error):
                drawing.transform(**wrong)
    assert path.read_bytes() == expected.read_bytes()


def test_an_empty_drawing_has_no_extents(tmp_path):
    with quoin.Drawing(FLAT) as drawing:
        drawing.erase([entity.handle for entity in drawing.entities()])
        assert drawing.extents() is None and drawing.entities() == []


def test_pictures_come_in_three_formats(tmp_path):
    with quoin.Drawing(FLAT) as drawing:
        lines, _ = drawing.lines()
        for ending, magic in (("png", b"\x89PNG"), ("svg", b"<?xml"), ("pdf", b"%PDF")):
            path = tmp_path / f"plan.{ending}"
            data = drawing.picture(path, highlight=lines, title="walls")
            assert data.startswith(magic) and path.read_bytes() == data
        assert drawing._repr_png_().startswith(b"\x89PNG")
        with pytest.raises(quoin.Error, match="plan.gif: pictures end in .png, .svg or .pdf"):
            drawing.picture(tmp_path / "plan.gif")
        with pytest.raises(quoin.Error, match="nowhere"):
            drawing.picture(tmp_path / "nowhere" / "plan.png")
        assert not drawing.is_modified


def test_pictures_have_a_theme():
    with quoin.Drawing(KINDS) as drawing:
        faint = drawing.picture()
        pictures = {theme: drawing.picture(theme=theme) for theme in ("faint", "paper", "screen")}
        assert pictures["faint"] == faint and len(set(pictures.values())) == 3
        assert drawing._repr_png_() == pictures["paper"]
        with pytest.raises(quoin.Error, match="theme: 'dark' is none of"):
            drawing.picture(theme="dark")


def test_pictures_show_images_where_they_are_asked_for(tmp_path):
    ezdxf = pytest.importorskip("ezdxf")
    document = ezdxf.new("R2010")
    image = document.add_image_def("house.png", (20, 10))
    document.modelspace().add_image(image, insert=(0, 0), size_in_units=(200, 100))
    document.saveas(tmp_path / "plan.dxf")
    (tmp_path / "house.png").write_bytes(quoin.Drawing(FLAT).picture())

    def shows(**options):
        with quoin.Drawing(tmp_path / "plan.dxf") as drawing:
            return drawing.picture(tmp_path / "plan.svg", **options).decode()

    assert "data:image/png;base64," not in shows()
    assert "data:image/png;base64," in shows(images=True)
    (tmp_path / "house.png").unlink()
    missing = shows(images=True)
    assert "data:image/png;base64," not in missing and "image not shown: 'house.png'" in missing


def test_saving_in_place_keeps_the_version_before(tmp_path):
    path = tmp_path / "plan.dxf"
    shutil.copy(FLAT, path)
    with quoin.Drawing(path) as drawing:
        assert drawing.save().is_unchanged
        drawing.append([[0, 0, 1, 0]], "NEW")
        saved = drawing.save()
        assert not saved.is_unchanged and not drawing.is_modified
    assert pathlib.Path(saved.backup).read_bytes() == pathlib.Path(FLAT).read_bytes()


def test_files_that_cannot_be_read_are_refused_in_the_host_s_words(tmp_path):
    path = tmp_path / "bad.dxf"
    for content, words in ((b"", "bad.dxf"), (b"no drawing", "bad.dxf"),
                           (pathlib.Path(FLAT).read_bytes()[:5000], "bad.dxf")):
        path.write_bytes(content)
        with pytest.raises(quoin.Error, match=words) as failure:
            quoin.Drawing(path)
        assert failure.value.code == 3
        told = run("info", path, codes=(3,))
        assert told == ""
    with pytest.raises(quoin.Error, match="missing.dxf"):
        quoin.Drawing(tmp_path / "missing.dxf")
    with pytest.raises(quoin.Error, match="no code page 'klingon' is known"):
        quoin.Drawing(FLAT, code_page="klingon")


def test_a_file_that_cannot_be_written_is_refused(tmp_path):
    with quoin.Drawing(FLAT) as drawing:
        with pytest.raises(quoin.Error, match="nowhere") as failure:
            drawing.save(tmp_path / "nowhere" / "plan.dxf")
        assert failure.value.code == 5


def test_a_closed_drawing_says_so():
    drawing = quoin.Drawing(FLAT)
    with drawing as same:
        assert same is drawing
    drawing.close()
    assert "closed" in repr(drawing)
    for use in (drawing.lines, drawing.entities, drawing.extents, lambda: drawing.layers,
                lambda: drawing.save("never.dxf")):
        with pytest.raises(quoin.Error, match="the drawing is closed"):
            use()


def test_arrays_outlive_their_drawing():
    drawing = quoin.Drawing(FLAT)
    lines, handles = drawing.lines()
    copies = lines.copy(), handles.copy()
    drawing.close()
    del drawing
    assert np.array_equal(lines, copies[0]) and np.array_equal(handles, copies[1])


def test_a_code_page_is_taken():
    with quoin.Drawing("examples/house-gbk/house.dxf") as drawing:
        names = [layer.name for layer in drawing.layers]
        assert any("\u5899" in name for name in names)
        assert len(drawing.lines()[0]) > 0
