"""Runs models and reads their frames with VTK's own reader, as ParaView does. Every frame of every part is held against the
report page, which other code makes of the same moments, and against results.csv. Exits with 77 where there is no VTK.

usage: frames_in_vtk.py COMMAND FOLDER MODEL...
"""
import base64
import csv
import json
import os
import re
import struct
import subprocess
import sys
import xml.etree.ElementTree as ElementTree

try:
    import vtk
except ImportError:
    sys.exit(77)

SINGLE = 2.0**-22  # some roundings of single precision, relative


def check(condition, *what):
    if not condition:
        sys.exit("frames_in_vtk: " + " ".join(str(part) for part in what))


def check_near(found, expected, what, scale=None):
    found, expected = list(found), list(expected)
    check(len(found) == len(expected), what, "has", len(found), "numbers, expected", len(expected))
    size = scale or max((abs(value) for value in expected), default=0)
    for k, (a, b) in enumerate(zip(found, expected)):
        check(abs(a - b) <= SINGLE * size, what, "number", k, "is", a, "expected", b)


class Page:
    """The data of a report page."""

    TYPES = {"f32": "f", "f64": "d", "u32": "I", "u16": "H", "u8": "B"}

    def __init__(self, path):
        with open(path, encoding="utf-8") as file:
            text = file.read()
        self.json = json.loads(re.search(r'id="page-data">(.*?)</script>', text, re.S).group(1))
        self.arrays = {}
        for name, info in self.json["arrays"].items():
            data = base64.b64decode(re.search(f'id="array-{name}">(.*?)</script>', text, re.S).group(1))
            self.arrays[name] = struct.unpack("<%d%s" % (info["length"], self.TYPES[info["type"]]), data)

    def slice(self, name, frame, per_frame):
        return self.arrays[name][frame * per_frame : (frame + 1) * per_frame]

    def pose(self, frame, body):
        """Place of a body's centre of mass, and its quaternion x, y, z, w."""
        pose = self.slice("poses", frame, 7 * len(self.json["bodies"]))[7 * body : 7 * body + 7]
        return [a + b for a, b in zip(pose[:3], self.json["origin"])], pose[3:]


def turned(quaternion, vector):
    x, y, z, w = quaternion
    rows = (
        (1 - 2 * (y * y + z * z), 2 * (x * y - w * z), 2 * (x * z + w * y)),
        (2 * (x * y + w * z), 1 - 2 * (x * x + z * z), 2 * (y * z - w * x)),
        (2 * (x * z - w * y), 2 * (y * z + w * x), 1 - 2 * (x * x + y * y)),
    )
    return [sum(a * b for a, b in zip(row, vector)) for row in rows]


class Picture:
    """A .vtp file as VTK reads it."""

    def __init__(self, path):
        reader = vtk.vtkXMLPolyDataReader()
        reader.SetFileName(path)
        errors = []
        reader.AddObserver("ErrorEvent", lambda *_: errors.append(path))
        reader.Update()
        check(not errors, path, "cannot be read")
        self.data = reader.GetOutput()
        points = self.data.GetPoints()
        self.points = memory(points.GetData()) if points else []
        self.cells = memory(self.data.GetPolys().GetConnectivityArray())

    def of_points(self, name):
        return memory(self.data.GetPointData().GetArray(name))

    def of_cells(self, name):
        return memory(self.data.GetCellData().GetArray(name))


def memory(array):
    """All numbers of a VTK array, one after the other."""
    view = memoryview(array)
    return list(view.cast("B").cast(view.format))


def check_terrain(picture, page):
    origin = page.json["origin"]
    places = [value + origin[k % 3] for k, value in enumerate(page.arrays["terrain_points"])]
    check_near(picture.points, places, "terrain")
    check(picture.cells == list(page.arrays["terrain_triangles"]), "triangles of the terrain")
    check_near(picture.of_points("height"), places[2::3], "height", max(map(abs, places)))


def check_bodies(picture, page, row, frame):
    """All shapes are symmetric about the centre of mass."""
    owners = picture.of_cells("body")
    for body in sorted(set(owners)):
        corners = {c for k, owner in enumerate(owners) if owner == body for c in picture.cells[3 * k : 3 * k + 3]}
        middle = [sum(picture.points[3 * c + k] for c in corners) / len(corners) for k in range(3)]
        name = page.json["bodies"][body]["name"]
        place = [row[f"{name}.{axis}"] for axis in "xyz"]
        check_near(middle, place, f"body {name}, frame {frame}", max(map(abs, picture.points)))


def check_points(picture, page, frame):
    first, count = sum(page.arrays["point_counts"][:frame]), page.arrays["point_counts"][frame]
    touching = [k for k, flag in enumerate(picture.of_points("in_contact")) if flag]
    expected = [page.arrays["points"][8 * k : 8 * k + 8] for k in range(first, first + count)]
    check(len(touching) == count, "points in contact of frame", frame)
    places = [picture.points[3 * k + c] for k in touching for c in range(3)]
    check_near(places, [e[c] + page.json["origin"][c] for e in expected for c in range(3)], f"points, frame {frame}")
    for name, column in (("sinkage", 6), ("normal_force", 7)):
        sign = -1 if name == "sinkage" else 1
        values = picture.of_points(name)
        check_near([sign * values[k] for k in touching], [e[column] for e in expected], f"{name}, frame {frame}")
    force = picture.of_points("force")
    size = [sum(e[c] ** 2 for c in (3, 4, 5)) ** 0.5 for e in expected]
    check_near([force[k] for k in touching], size, f"force, frame {frame}")
    elements = picture.of_points("element")
    check([elements[k] for k in touching] == list(page.arrays["point_elements"][first : first + count]), "elements")


def check_hulls(picture, page, frame):
    places, patches, bits = [], [], []
    wet = page.slice("hull_wet", frame, len(page.arrays["hull_wet"]) // len(page.arrays["frame_times"]))
    for hull in page.json["hulls"]:
        place, quaternion = page.pose(frame, hull["body"])
        first = len(places) // 3
        for k in range(first, first + hull["nodes"]):
            node = turned(quaternion, page.arrays["hull_nodes"][3 * k : 3 * k + 3])
            places += [a + b for a, b in zip(place, node)]
        begin = len(patches)
        corners = page.arrays["hull_patches"][begin : begin + 3 * hull["patches"]]
        patches += [corner + first for corner in corners]
    bits = [wet[k // 8] >> k % 8 & 1 for k in range(len(patches) // 3)]
    check_near(picture.points, places, f"hulls, frame {frame}")
    check(picture.cells == patches, "patches of the hulls")
    check(picture.of_cells("wet") == bits, "wet patches of frame", frame)


def check_water(picture, page, frame):
    """The waters of these models lie level, along the ground's axes; the page draws them over the same columns."""
    columns = len(page.arrays["water_x"])
    levels = [level for level in page.slice("water_levels", frame, columns) for _ in range(2)]
    check_near(picture.of_points("elevation"), levels, f"elevation, frame {frame}", 1)
    height = page.json["waters"][0]["place"][2] + page.json["origin"][2]
    check_near(picture.points[2::3], [level + height for level in levels], f"water, frame {frame}", 1)


def check_run(folder):
    page = Page(f"{folder}/report.html")
    with open(f"{folder}/results.csv", newline="", encoding="utf-8") as file:
        rows = [{head.split(" [")[0]: float(cell or "nan") for head, cell in row.items()} for row in csv.DictReader(file)]
    by_time = {row["time"]: row for row in rows}
    times, listed = [], set()
    for entry in ElementTree.parse(f"{folder}/frames.pvd").iter("DataSet"):
        time, name = float(entry.get("timestep")), entry.get("file")
        if not times or times[-1] != time:
            times.append(time)
        listed.add(name)
        frame, picture = len(times) - 1, Picture(f"{folder}/{name}")
        part = re.match(r"frames/([a-z]+)", name).group(1)
        if part == "terrain":
            check_terrain(picture, page)
        elif part == "bodies":
            check_bodies(picture, page, by_time[time], frame)
        else:
            {"points": check_points, "hulls": check_hulls, "water": check_water}[part](picture, page, frame)
    check(times == list(page.arrays["frame_times"]), "times", times)
    check({"frames/" + name for name in os.listdir(f"{folder}/frames")} == listed, "files that frames.pvd does not list")
    parts = sorted({re.match(r"frames/([a-z]+)", name).group(1) for name in listed})
    print(f"{folder}: {len(times)} frames of {', '.join(parts)}")
    return parts


def main():
    command, folder, models = sys.argv[1], sys.argv[2], sys.argv[3:]
    seen = set()
    for model in models:
        out = f"{folder}/{os.path.basename(os.path.dirname(os.path.abspath(model)))}_{os.path.basename(model)[:-5]}"
        subprocess.run([command, "run", model, "--out", out, "--quiet"], check=True)
        seen.update(check_run(out))
    check(seen == {"terrain", "bodies", "points", "hulls", "water"}, "the models show only", seen)


main()
