"""What plans drawn by others show, read off their lines by hand.

Each wall is its reference line, in the middle between its faces, with its width and the openings
along it as (from, to, kind) in the coordinate that runs along the wall: x, or y for vertical ones.
Walls end on the reference lines of those that they meet; the network gives junctions and rooms.
"""

from plan_rounds.examples import Wall, truth_of


class Reading:
    """Stands where a recorded sheet does."""

    def __init__(self, metre, note, tolerance):
        self.unit = metre      # drawing units
        self.note = note
        self.tolerance = tolerance
        self.walls, self.doors, self.windows, self.labels, self.boxes = [], [], [], [], []
        self.optional_walls = set()

    def wall(self, start, end, width, openings=(), moved=0.0, optional=False):
        """`moved` is how far to the left of the middle the reference line lies."""
        vertical = start[0] == end[0]
        assert vertical or start[1] == end[1] or not openings
        spans = []
        for low, high, kind in openings:
            begin = start[1] if vertical else start[0]
            forward = (end[1] if vertical else end[0]) > begin
            spans.append((low - begin, high - begin) if forward else (begin - high, begin - low))
            middle = 0.5 * (low + high)
            place = (start[0], middle) if vertical else (middle, start[1])
            {"door": self.doors, "window": self.windows}.get(kind, []).append(place)
        wall = Wall("optional" if optional else "wall", start, end, width, spans)
        wall.moved = moved
        self.walls.append(wall)

    def label(self, place, name):
        self.labels.append(("label", place, name))

    def column(self, low, high):
        self.boxes.append(("column", low, high))

    def truth(self, optional_rooms=lambda room: False, areas=None):
        """`areas` is how much of a room's area may be off, as a part, by its name."""
        truth = truth_of(self, "label", ("column",), optional_rooms)
        truth["note"] = self.note
        truth["tolerance"] = self.tolerance
        for wall in truth["walls"]:
            if wall.pop("layer") == "optional":
                wall["optional"] = True
        for room in truth["rooms"]:
            if areas and room["name"] in areas:
                room["tolerance"] = areas[room["name"]]
        return truth


def house_bishop():
    r = Reading(1000.0 / 25.4, (
        "Drawn in inches, though its header says millimetres: read it with --units in. Walls on the "
        "layers *A-WALL alone; *S-STEM-WALL is the foundation below them, read by the same words. "
        "Widths are 6 and 4 inches. Doors and windows are known by the numbers beside them (S.G.D. is "
        "a sliding door, XO and SH are windows); the garage door counts as a door, the 6068 and 7068 "
        "of the wardrobes too. Uncertain: whether the chase behind the fireplace is a room (optional)."),
        {"along": 5.0, "across": 2.0, "width": 2.0, "area": 0.001, "place": 300.0})
    W, E, S, N = -645.773, 44.227, -213.633, 344.367
    # Around the house, and between house and garage, 6 inches.
    r.wall((W, -9.633), (W, N), 6.0)
    r.wall((W, N), (E, N), 6.0, [(-596.773, -524.773, "door"), (-380.773, -332.773, "window"),
                                 (-220.773, -148.773, "window"), (-94.773, -70.773, "window"),
                                 (9.227, 33.227, "window")])
    r.wall((E, S), (E, N), 6.0, [(92.367, 128.367, "window"), (225.367, 297.367, "door")])
    r.wall((W, -9.633), (-479.773, -9.633), 6.0, [(-591.773, -531.773, "window")])
    r.wall((-479.773, -33.633), (-479.773, -9.633), 6.0)
    r.wall((-479.773, -33.633), (-335.773, -33.633), 6.0, [(-437.773, -377.773, "window")])
    r.wall((-335.773, -33.633), (-335.773, -9.633), 6.0)
    r.wall((-335.773, -9.633), (-307.773, -9.633), 6.0)
    r.wall((-307.773, -9.633), (-307.773, 42.367), 6.0)
    r.wall((-307.773, 42.367), (E, 42.367), 6.0, [(-294.773, -276.773, "window"),
                                                  (-264.773, -228.773, "door"),
                                                  (-85.273, -49.273, "door")])
    r.wall((-215.773, S), (-215.773, 42.367), 6.0)
    r.wall((-215.773, S), (E, S), 6.0, [(-181.773, 10.227, "door")])
    # Inside, 4 inches; where they go on from one of 6, one face is flush.
    r.wall((-478.773, -9.633), (-478.773, 127.367), 4.0, moved=1.0)
    r.wall((-336.773, -9.633), (-336.773, 127.367), 4.0, [(-0.633, 83.367, "door")], moved=-1.0)
    r.wall((-308.773, 42.367), (-308.773, 127.367), 4.0, [(97.367, 121.367, "door")], moved=-1.0)
    r.wall((-336.773, 91.367), (-308.773, 91.367), 4.0)
    r.wall((W, 127.367), (-308.773, 127.367), 4.0, [(-608.773, -578.773, "door"),
                                                    (-514.273, -484.273, "door"),
                                                    (-473.273, -443.273, "door")])
    r.wall((W, 171.367), (-324.773, 171.367), 4.0, [(-512.273, -482.273, "door"),
                                                    (-468.773, -396.773, "door"),
                                                    (-357.273, -329.273, "door")])
    r.wall((-543.773, 127.367), (-543.773, 171.367), 4.0)
    r.wall((-519.773, 127.367), (-519.773, 171.367), 4.0, [(135.367, 163.367, "door")])
    r.wall((-476.773, 171.367), (-476.773, N), 4.0, [(277.867, 307.867, "door")])
    r.wall((-388.773, 171.367), (-388.773, N), 4.0, [(277.867, 307.867, "door")])
    r.wall((-324.773, 171.367), (-324.773, N), 4.0)
    r.wall((-476.773, 197.367), (-388.773, 197.367), 4.0)
    r.wall((-476.773, 272.367), (-324.773, 272.367), 4.0, [(-447.773, -417.773, "door")])
    # Before the fireplace: the faces are y = x + 602.140 and y = x + 607.797.
    r.wall((-324.773, 280.1955), (-260.6015, N), 4.0)
    r.wall((-214.773, 42.367), (-214.773, 127.367), 4.0, moved=1.0)
    r.wall((-214.773, 127.367), (-91.773, 127.367), 4.0)
    r.wall((-158.773, 42.367), (-158.773, 127.367), 4.0, [(91.867, 121.867, "door")])
    r.wall((-91.773, 42.367), (-91.773, 127.367), 4.0, [(91.867, 121.867, "door")])
    r.wall((-116.773, 127.367), (-116.773, 187.367), 4.0)
    for place, name in (((-582, 264), "MASTER BEDROOM"), ((-446, 259), "W.I.C."),
                        ((-383, 292), "TOIL."), ((-458, 296), "MSTR. BATH"), ((-355, 224), "BATH"),
                        ((-607, 151), "W.I.C."), ((-588, 52), "BEDROOM 2"), ((-433, 50), "BEDROOM 3"),
                        ((-314.5, 26), "CLOSET"), ((-314.5, 100), "CLO."), ((-191, 88), "Pantry"),
                        ((-139, 91), "UTIL."), ((-122, -102), "2 CAR GARAGE"),
                        ((-53, 121), "KITCHEN"), ((-277, 98), "ENTRY"), ((-240, 244), "GREAT ROOM"),
                        ((-368, 151), "HALL"), ((-59, 277), "DINING ROOM")):
        r.label(place, name)
    for y in (140.867, 223.367, 305.867):
        r.column((139.227, y), (143.227, y + 4.0))
    return r.truth(lambda room: not room["name"] and abs(room["netArea"] - 1.024) < 0.01)


def barcelona(pavilion):
    note = ("Thin walls are drawn 0.10 m, the others 0.16 m wide. The office has strips of glass for "
            "its north and east windows, drawn outside of the wall (layer Walls), with the glass in "
            "the wall's middle (layer Crystal); they are read as windows in the wall. In the north the "
            "window takes the whole wall between two others, so that nothing of the wall is drawn: "
            "optional, with its window, and the areas of the two toilets beside it may be off by 15 %. "
            "The partition between them ends 0.03 m before the wall's inner face, and begins with a "
            "door at the other wall. Glass walls (Crystal) are no walls here; rooms that they close "
            "are not listed. There are no names.")
    if pavilion:
        note = ("Drawn in metres, though its header says inches: read it with --units m. The plan is the "
                "one of barcelona_plan_r2013.dxf, in the lower left. The sheet also has the roof's plan "
                "above it, whose walls are optional, and elevations to the right, on the layer Walls "
                "too: nothing there is a wall of a plan. ") + note
    r = Reading(1.0, note, {"along": 5.0, "across": 2.0, "width": 2.0, "area": 0.01, "place": 300.0})
    r.wall((0.08, 0.08), (0.08, 21.24), 0.16)
    r.wall((0.08, 0.08), (7.16, 0.08), 0.16)
    r.wall((0.08, 21.24), (4.16, 21.24), 0.16)
    r.wall((4.16, 21.24), (8.24, 21.24), 0.16, [(4.21, 6.11, "window"), (6.21, 8.16, "window")],
           optional=True)
    r.wall((4.16, 16.0), (4.16, 21.24), 0.10, [(18.16, 19.16, "door")])
    r.wall((4.16, 19.71), (8.24, 19.71), 0.10, [(5.01, 5.81, "door")])
    r.wall((8.24, 16.0), (8.24, 21.24), 0.16, [(17.86, 19.46, "window")])
    r.wall((6.16, 19.71), (6.16, 21.24), 0.10, [(19.76, 20.56, "door")])
    r.wall((6.66, 14.24), (25.49, 14.24), 0.16)
    r.wall((24.493, 6.57), (31.827, 6.57), 0.16)
    r.wall((36.33, 10.57), (41.49, 10.57), 0.16)
    r.wall((36.96, 15.24), (50.24, 15.24), 0.16)
    r.wall((50.24, 4.08), (50.24, 15.24), 0.16)
    r.wall((40.493, 4.08), (50.24, 4.08), 0.16)
    if pavilion:
        for start, end in (((0.08, 27.43), (0.08, 39.81)), ((0.08, 27.43), (7.16, 27.43)),
                           ((8.86, 41.59), (23.21, 41.59)), ((46.11, 31.43), (50.24, 31.43)),
                           ((50.24, 31.43), (50.24, 42.59)), ((46.11, 42.59), (50.24, 42.59))):
            r.wall(start, end, 0.16, optional=True)
    truth = r.truth()
    for room in truth["rooms"]:
        room["tolerance"] = 0.15
    for wall in truth["walls"]:
        if wall["start"][0] == wall["end"][0] == 6.16:
            # What is drawn of the partition between the toilets begins behind the door.
            low, high = sorted((0, 1), key=lambda k: (wall["start"], wall["end"])[k][1])
            wall["slack"] = [0.0, 0.0]
            wall["slack"][low], wall["slack"][high] = 0.85, 0.05
        if max(wall["start"][1], wall["end"][1]) == 21.24 and wall["start"][0] == wall["end"][0]:
            wall.setdefault("slack", [0.08, 0.08])
    for opening in truth["openings"]:
        if truth["walls"][opening["wall"]].get("optional") or opening["start"][0] == 6.16:
            opening["optional"] = True
    return truth


def truths():
    """Name -> truth of the plans."""
    found = {"house_bishop_floorplan_r2004": house_bishop(),
             "barcelona_plan_r2013": barcelona(False), "barcelona_pavilion_r2000": barcelona(True)}
    for name, truth in found.items():
        truth["drawing"] = f"{name}.dxf"
    found["house_bishop_floorplan_r2004"]["arguments"] = ["--units", "in", "--layer", "*A-WALL"]
    found["barcelona_pavilion_r2000"]["arguments"] = ["--units", "m"]
    return found
