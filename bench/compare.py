#!/usr/bin/python3
"""Measures the engine beside the tools of the field, in one run on the same images, and prints the tables.

    bench/compare.py [--folder FOLDER] [--times N] [--gigapixel]

Needs some 20 GB in FOLDER (default /var/tmp/quorvant-bench) and builds nothing: run ./run once before. The images
are made at the first run. Debian's libvips-tools and gdal-bin are the peers.
"""
import argparse
import json
import os
import pathlib
import platform
import subprocess
import sys

from measure import Table, in_turn, remove, run, size_of

HERE = pathlib.Path(__file__).resolve().parent
BUILD = HERE.parent / "build"
ATLAVEX = str(BUILD / "atlavex")
KEY = "bench key"


class Bench:
    """The folder that everything happens in."""

    def __init__(self, folder, times):
        self.folder, self.times = pathlib.Path(folder), times
        self.folder.mkdir(parents=True, exist_ok=True)
        (self.folder / "key").write_text(KEY, encoding="utf-8")

    def path(self, *names):
        return str(self.folder.joinpath(*names))

    def make_images(self, name, *size):
        if not os.path.exists(self.path(name, "pal_lzw.tif")):
            print("Making the images of", name, flush=True)
            subprocess.run([sys.executable, str(HERE / "make_inputs.py"), self.path(name), *size], check=True)

    def new_library(self, name, sealed=False):
        remove(self.path(name))
        subprocess.run([ATLAVEX, "new", self.path(name), *self.key(sealed)], check=True)

    def key(self, sealed):
        return ["--key-file", self.path("key")] if sealed else []

    def add_map(self, library, image, sealed=False):
        return [ATLAVEX, "add-map", self.path(library), image, *self.key(sealed)]


def imports(bench):
    """One image into a library or a folder of tiles, all levels."""
    table = Table("Import of 300 megapixels with all overviews (PNG tiles of 256 pixels)",
                  "image and program", "wall s", "CPU s", "MiB", "output MB", "wall, times ours", "CPU, times ours")
    for image in ("rgb_lzw.tif", "rgb.jpg", "pal_lzw.tif"):
        source = bench.path("300", image)
        commands = {"atlavex": bench.add_map("import.Atlavex", source),
                    "atlavex, sealed": bench.add_map("sealed.Atlavex", source, True),
                    "vips dzsave": ["vips", "dzsave", source, bench.path("vips"), "--layout", "dz", "--tile-size",
                                    "256", "--overlap", "0", "--suffix", ".png[compression=1]"]}
        if image == "rgb_lzw.tif":
            commands["gdal2tiles, 2 processes"] = ["gdal2tiles.py", "-q", "-p", "raster", "-w", "none",
                                                   "--processes=2", source, bench.path("gdal2tiles")]
        outputs = {"atlavex": "import.Atlavex", "atlavex, sealed": "sealed.Atlavex", "vips dzsave": "vips_files",
                   "gdal2tiles, 2 processes": "gdal2tiles"}

        def prepare(name):
            if name.startswith("atlavex"):
                bench.new_library(outputs[name], "sealed" in name)
            else:
                for left in (outputs[name], "vips.dzi"):
                    remove(bench.path(left))

        slow = {name: commands.pop(name) for name in list(commands) if name.startswith("gdal2tiles")}
        results = in_turn(commands, bench.times, prepare)
        results.update(in_turn(slow, 1, prepare))  # minutes long: once is enough to tell
        ours = results["atlavex"]
        for name, result in results.items():
            table.add(f"{image}: {name}", result.wall, result.cpu, result.memory,
                      size_of(bench.path(outputs[name])) / 1e6, result.wall / ours.wall, result.cpu / ours.cpu)
        for left in (*outputs.values(), "vips.dzi"):
            remove(bench.path(left))
    table.print()


def memory(bench, gigapixel):
    """Peak memory of an import, which must not grow with the image's height."""
    table = Table("Peak memory of an import", "image", "megapixels", "wall s", "MiB")
    sheets = [("300", "rgb_lzw.tif", 300), ("300", "pal_lzw.tif", 300)]
    if gigapixel:
        bench.make_images("1000", "32768", "32768")
        sheets += [("1000", name, 1074) for name in ("rgb_lzw.tif", "rgb.jpg", "pal_lzw.tif")]
    for folder, image, megapixels in sheets:
        bench.new_library("memory.Atlavex")
        result = run(bench.add_map("memory.Atlavex", bench.path(folder, image)))
        table.add(f"{folder}/{image}", str(megapixels), result.wall, result.memory)
        remove(bench.path("memory.Atlavex"))
    table.print()


def libraries(bench):
    """Libraries of about 10 MB and over 2 GB, plain and sealed, for what must not depend on size."""
    small = bench.path("small.tif")
    subprocess.run(["gdal_translate", "-q", "-co", "COMPRESS=LZW", "-srcwin", "0", "0", "1800", "1800",
                    bench.path("300", "rgb_lzw.tif"), small], check=True)
    folder = pathlib.Path(bench.path("libraries"))
    folder.mkdir(exist_ok=True)
    for sealed in (False, True):
        for name, image, copies in (("small", small, 1), ("large", bench.path("300", "rgb_lzw.tif"), 3)):
            library = f"libraries/{name}{'-sealed' if sealed else ''}.Atlavex"
            if os.path.exists(bench.path(library)):
                continue
            bench.new_library(library, sealed)
            for _ in range(copies):
                subprocess.run(bench.add_map(library, image, sealed), check=True)
    return folder


def inside(bench, folder):
    """Opening, saving and looking, measured inside one process."""
    done = subprocess.run([str(BUILD / "bench" / "bench_library"), str(folder), "--benchmark_format=json",
                           "--benchmark_repetitions=3", "--benchmark_report_aggregates_only=true"],
                          check=True, capture_output=True, text=True)
    figures = {row["run_name"].split("/iterations")[0]: row["real_time"]
               for row in json.loads(done.stdout)["benchmarks"] if row.get("aggregate_name") == "median"}
    names = ["small", "large", "small-sealed", "large-sealed"]
    table = Table("Inside one process, milliseconds (median of 3); a view is 1920 x 1080",
                  "what", *(f"{name}, {size_of(folder / (name + '.Atlavex')) / 1e6:.0f} MB" for name in names))
    for what in ("open", "save_metadata", "view_cold_1.0", "view_cold_0.7", "view_cold_2.0", "view_warm_1.0",
                 "view_warm_0.7", "view_warm_2.0"):
        table.add(what, *(figures.get(f"{what}/{name}", figures.get(f"{what}/{name}/manual_time", float("nan")))
                          for name in names))
    table.print()


def exports(bench, folder):
    """All tiles of one map as files, against copying the same files."""
    table = Table("Export of all tiles of 300 megapixels, full resolution included",
                  "program", "wall s", "CPU s", "wall, times cp -r")
    library = str(folder / "large.Atlavex")
    tiles, copy = bench.path("tiles"), bench.path("copy")
    sealed = str(folder / "large-sealed.Atlavex")
    commands = {"export-tiles": [ATLAVEX, "export-tiles", library, "1", "--to", tiles],
                "cp -r": ["cp", "-r", tiles, copy],
                "export-tiles, sealed": [ATLAVEX, "export-tiles", sealed, "1", "--to", bench.path("from-sealed"),
                                         *bench.key(True)]}
    targets = {"export-tiles": tiles, "export-tiles, sealed": bench.path("from-sealed"), "cp -r": copy}

    def prepare(name):
        remove(targets[name])
        if name != "cp -r":
            os.mkdir(targets[name])

    results = in_turn(commands, bench.times, prepare)
    for name, result in results.items():
        table.add(name, result.wall, result.cpu, result.wall / results["cp -r"].wall)
    table.print()
    for left in targets.values():
        remove(left)


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--folder", default="/var/tmp/quorvant-bench")
    parser.add_argument("--times", type=int, default=3, help="runs of each command; the median counts")
    parser.add_argument("--gigapixel", action="store_true", help="also the memory for one gigapixel (10 GB more)")
    options = parser.parse_args()
    bench = Bench(options.folder, options.times)
    print(f"{platform.platform()}, {os.cpu_count()} cores, load {os.getloadavg()[0]:.1f}")
    bench.make_images("300")
    imports(bench)
    memory(bench, options.gigapixel)
    folder = libraries(bench)
    inside(bench, folder)
    exports(bench, folder)


if __name__ == "__main__":
    main()
