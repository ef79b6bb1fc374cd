"""Lines that ezdxf reads, broken by Quoin; handles lead from one to the other."""

import ezdxf
import numpy as np

import quoin

plan = "examples/flat/flat.dxf"
document = ezdxf.readfile(plan)
entities = [line for line in document.modelspace().query("LINE") if "WALL" in line.dxf.layer]
lines = np.array([[*line.dxf.start, *line.dxf.end] for line in entities])
pieces, source = quoin.break_lines(lines)
print(f"{len(lines)} lines of ezdxf, {len(pieces)} pieces")

# The change is made by Quoin, which leaves all else in the file as it stood, byte for byte.
with quoin.Drawing(plan) as drawing:
    handles = np.array([(int(line.dxf.handle, 16), -1) for line in entities], dtype=quoin.HANDLES)
    drawing.replace(pieces, handles[source])
    print(f"{len(drawing.entities('LINE'))} lines in the drawing now, "
          f"{len(document.modelspace().query('LINE'))} before")
