"""Puts the invented land together: relief, water, woods, places and the ways between them."""

from dataclasses import dataclass

import numpy as np

from . import places, routes, terrain, water
from .raster import Raster, smoothed, spectral_noise


@dataclass(frozen=True)
class Landscape:
    """Everything that the map body shows, in body pixels and metres."""

    terrain: terrain.Terrain
    height: Raster
    streams: list
    lakes: list
    woods: Raster  # above 0: forest
    fields: Raster  # above 0: meadow
    settlements: list
    summits: list
    roads: list
    railway: np.ndarray


def _woods(rng, land, settled):
    """Woods stand on slopes and leave the valley floors, the settlements and the highest ground open."""
    z = land.height.values
    down, right = np.gradient(smoothed(z, 1.2), 40.0)
    slope = np.hypot(down, right)
    patches = spectral_noise(rng, z.shape, 60, 1.3)
    wish = 0.95 * patches + 5.5 * (slope - 0.16) - 3.0 * settled - np.clip((z - 1120) / 60, 0, 4)
    return land.height.with_values(smoothed(wish, 0.7))


def _meadows(rng, land):
    z = land.height.values
    down, right = np.gradient(smoothed(z, 1.5), 40.0)
    patches = spectral_noise(rng, z.shape, 30, 1.3)
    return land.height.with_values(smoothed(0.1 - 3 * np.hypot(down, right) + 0.35 * patches, 0.7))


def _settled(land, settlements):
    """Return how far each node belongs to a settlement's cleared land, 0..1."""
    x, y = land.height.position(np.arange(land.area.size))
    share = np.zeros(land.area.size)
    for place in settlements:
        reach = {3: 360, 2: 210, 1: 110}[place.size]
        share = np.maximum(share, np.exp(-(np.hypot(x - place.x, y - place.y) / reach) ** 4))
    return share.reshape(land.height.values.shape)


def _edge_cells(land, body_size):
    """Where the valley's traffic enters and leaves: the river's ends beyond the west and east edge."""
    rows, columns = land.height.values.shape
    area = land.area.reshape(rows, columns)
    west = int(area[:, 14].argmax()) * columns + 14
    east = int(area[:, columns - 14].argmax()) * columns + columns - 14
    north = int(land.height.values[12, 60:-60].argmin()) + 60 + 12 * columns
    south = int(land.height.values[rows - 12, 60:-60].argmin()) + 60 + (rows - 12) * columns
    return west, east, north, south


def _roads(ground, settlements, edges):
    network = routes.Network(ground)
    town = settlements[0].cell
    network.lay("road", edges[0], town, 260)
    network.lay("road", town, edges[1], 260)
    network.join("road", edges[2], 260)
    for place in settlements[1:]:
        network.join("lane", place.cell, 330 if place.size == 2 else 200)
    network.join("lane", edges[3], 200)
    return network


def _railway(ground, network, settlements, edges):
    """The railway keeps off the roads and passes the town at its edge."""
    ground.make_dear(network.cells, 2.4, 3.0)
    x, y = ground.raster.position(np.arange(ground.toll.size))
    town = settlements[0]
    ground.toll[np.hypot(x - town.x, y - town.y) < 240] *= 12.0
    cells = ground.way(edges[0] + 3 * ground.columns, {edges[1] + 3 * ground.columns}, 900)
    return ground.line(cells, calm=9)


def make_landscape(rng, body_size):
    """Return the Landscape under a map body of the given size."""
    land = terrain.make_terrain(rng, body_size)
    lakes = water.lakes(rng, land, body_size)
    reaches = water.streams(rng, land)
    lake_cells = np.flatnonzero(np.any([lake.cells for lake in lakes], axis=0))
    settlements = places.settlements(rng, land, lake_cells, body_size)
    ground = routes.Ground(land.height, lake_cells, np.flatnonzero(land.area > 2500))
    ground.make_dear(np.flatnonzero(land.area > 4000), 1.6, 2.5)
    edges = _edge_cells(land, body_size)
    network = _roads(ground, settlements, edges)
    railway = _railway(ground, network, settlements, edges)
    flat = terrain.Terrain(water.flooded(land, lakes), land.receiver, land.groups, land.area)
    height = terrain.detailed(rng, flat)
    return Landscape(flat, height, reaches, lakes, _woods(rng, land, _settled(land, settlements)),
                     _meadows(rng, land), settlements, places.summits(height, body_size, 34), network.lines, railway)
