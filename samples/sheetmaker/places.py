"""Settlements and summits: where people would have built, and where the land is highest."""

from dataclasses import dataclass, field

import numpy as np

from .raster import nearest_source, smoothed

# Invented names; they carry letters beyond ASCII on purpose, as real sheets do.
TOWN = "Hohenlörach"
VILLAGES = ["Žirnovec", "Oberfärchau", "Sankt Ölm", "Črnica"]
HAMLETS = ["Großegg", "Štermec", "Mühltal", "Lärchau", "Döllern", "Kőhalm", "Brežkov", "Hüttwinkl",
           "Ročjane", "Weißgrub", "Øvergard", "Öd", "Zalužje", "Finsterbühl"]
SUMMITS = ["Hoher Rauß", "Velika Šepa", "Nebelköpfl", "Čelnik", "Kaltwand", "Schönalmkopf", "Mali Šepec",
           "Öder Stein", "Žagar", "Grießkogel", "Blaßeck", "Dünnspitz"]
LAKES = ["Färchauer See", "Črno jezerce", "Bärenlacke"]
STREAMS = ["Rauß", "Žirnovka", "Löschbach", "Ölmer Ache", "Šepski potok", "Bärenbach"]
FORESTS = ["KÖNIGSFORST", "ŠEPSKI GOZD", "LÖRACHER WALD", "ÖDWALD"]


@dataclass
class Place:
    """A settlement: its node, its body pixel and how large it is (3 town, 2 village, 1 hamlet)."""

    name: str
    size: int
    cell: int
    x: float
    y: float
    streets: list = field(default_factory=list)


def _suitability(terrain, water_cells):
    down, right = np.gradient(smoothed(terrain.height.values, 1.5), 40.0)
    slope = np.hypot(down, right)
    channel = (terrain.area > 1500).reshape(slope.shape)
    distance, _ = nearest_source(channel, 16)
    near_water = np.exp(-((np.minimum(distance, 16) - 4.5) / 4.0) ** 2)
    score = near_water + 0.35 - 7.0 * slope
    score.ravel()[water_cells] = -9
    wet, _ = nearest_source((score < -8) | (terrain.area > 9000).reshape(slope.shape), 3)
    return np.where(wet < 2.5, -9, score).ravel()


def settlements(rng, terrain, water_cells, body_size):
    """Return the Places, best sites first: the town, the villages, the hamlets."""
    score = _suitability(terrain, water_cells) + 0.15 * rng.random(terrain.area.size)
    x, y = terrain.height.position(np.arange(score.size))
    inside = (x > 300) & (y > 260) & (x < body_size[0] - 300) & (y < body_size[1] - 260)
    score = np.where(inside, score, -9)
    found = []
    wanted = [(TOWN, 3, 0)] + [(n, 2, 1000) for n in VILLAGES] + [(n, 1, 520) for n in HAMLETS]
    for name, size, apart in wanted:
        for place in found:
            score = np.where(np.hypot(x - place.x, y - place.y) < apart, -9, score)
        cell = int(score.argmax())
        if score[cell] > -8:
            found.append(Place(name, size, cell, float(x[cell]), float(y[cell])))
    return found


def summits(height, body_size, count):
    """Return [(x, y, metres)] of the highest local tops, highest first, none close to another."""
    rows, columns = height.values.shape
    row, column = np.indices((rows, columns))
    x, y = height.origin + height.step * column, height.origin + height.step * row
    z = np.where((x > 90) & (y > 90) & (x < body_size[0] - 90) & (y < body_size[1] - 90), height.values, -1)
    reach = 12
    top = np.ones_like(z, bool)
    for down in range(-reach, reach + 1, 2):
        for right in range(-reach, reach + 1, 2):
            if down or right:
                top &= z >= np.roll(z, (down, right), (0, 1))
    order = [k for k in np.argsort(-z, axis=None).tolist() if top.ravel()[k] and z.ravel()[k] > 0]
    kept = []
    for k in order:
        px, py = x.ravel()[k], y.ravel()[k]
        if all(np.hypot(px - a, py - b) > 260 for a, b, _ in kept):
            kept.append((float(px), float(py), float(z.ravel()[k])))
    return kept[:count]
