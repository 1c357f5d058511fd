#include "tests/cli/AtlavexTest.h"

#include <gmock/gmock.h>

#include <filesystem>

namespace fs = std::filesystem;
using testing::HasSubstr;

namespace {

using Output = AtlavexTest;

/// Makes one image of each kind, with palette and alpha, adds them as maps in order and extracts them as PNG
/// and TIFF; prints one line for each difference.
constexpr const char* ExtractScript = R"(
import subprocess
import numpy as np
from PIL import Image
noise = np.random.RandomState(7)
def pixels(*shape, top=256): return noise.randint(0, top, shape).astype(np.uint8)
Image.fromarray(pixels(333, 517)).save('grey.png')
Image.fromarray(pixels(333, 517, 3)).save('rgb.tif')
Image.fromarray(pixels(333, 517, 4), 'RGBA').save('rgba.png')
palette = Image.fromarray(pixels(333, 517, top=200), 'P')
palette.putpalette(bytes(pixels(600)))
palette.save('palette.gif')
palette.save('clear.png', transparency=bytes([0, 128, 254] + [255] * 197))
Image.fromarray(pixels(1, 1, 3)).save('one.png')
subprocess.run([atlavex, 'new', 'x.Atlavex'], check=True)
for position, (name, mode) in enumerate((('grey.png', 'L'), ('rgb.tif', 'RGB'), ('rgba.png', 'RGBA'),
                                         ('palette.gif', 'P'), ('clear.png', 'P'), ('one.png', 'RGB')), 1):
    subprocess.run([atlavex, 'add-map', 'x.Atlavex', name, '--tile', '128x64'], check=True)
    for extension in 'png', 'tif', 'TIFF':
        out = name + '.out.' + extension
        subprocess.run([atlavex, 'extract', 'x.Atlavex', str(position), '--out', out], check=True)
        source, copy = Image.open(name), Image.open(out)
        if not np.array_equal(np.array(source.convert('RGBA')), np.array(copy.convert('RGBA'))):
            print(out, 'has other colours')
        if mode == 'P' and not np.array_equal(np.array(source.getchannel(0)), np.array(copy.getchannel(0))):
            print(out, 'has other indexes')
        if copy.mode != mode and not (copy.mode == 'PA' and extension != 'png'):
            print(out, 'is', copy.mode)
)";

} // namespace

TEST_F(Output, ExtractedPixelsAreThoseThatWereAdded) {
    EXPECT_EQ(Python(ExtractScript), "");
}

TEST_F(Output, WhatAKilledExtractLeavesIsForNobodyElseToReadAndSweptByTheNext) {
    ScaledLibrary();
    const std::string answer = Python(R"(
import glob, subprocess
extract = [atlavex, 'extract', 'a.Atlavex', '1', '--out', 'out.png']
os.umask(0o022)
subprocess.run(['strace', '-f', '-qq', '-o', '/dev/null', '-e', 'inject=fsync:signal=SIGKILL', *extract])
left = glob.glob('.atlavex.*.tmp')
print(len(left), oct(os.stat(left[0]).st_mode & 0o777))
open('.atlavex.mine.tmp', 'w').close()
subprocess.run(extract, check=True)
print(glob.glob('.atlavex.*.tmp'), oct(os.stat('out.png').st_mode & 0o777))
)");
    EXPECT_EQ(answer, "1 0o600\n['.atlavex.mine.tmp'] 0o644\n");
}

TEST_F(Output, AnExtractedIconIsThePictureThatWasAdded) {
    const std::string library = NewLibrary();
    Python(
        "from PIL import Image\nImage.frombytes('RGBA', (16, 16), bytes(range(256)) * 4).save('icon.png')");
    Do({"add-icon", library, In("icon.png")});
    Do({"extract-icon", library, "icon", "--out", In("out.png")});
    EXPECT_EQ(Python("from PIL import Image\n"
                     "a, b = (Image.open(f).convert('RGBA').tobytes() for f in ('icon.png', 'out.png'))\n"
                     "print(a == b)"),
              "True\n");
}

TEST_F(Output, AViewShowsTheMapsPixelsAndIsTransparentBeyond) {
    const std::string library = ScaledLibrary();
    const auto render = [&](const char* zoom, const char* at, const char* out) {
        Do({"render", library, "1", "--zoom", zoom, "--at", at, "--size", "90x70", "--out", In(out)});
    };
    render("1", "20,30", "same.png");
    render("2", "20,30", "double.png");
    render("1", "-10,-5", "beyond.png");
    render("0.5", "0,0", "half.png");
    EXPECT_EQ(Python(R"(
import numpy as np
from PIL import Image
sheet = np.array(Image.open('Sheet.bmp').convert('RGBA'))
views = {name: np.array(Image.open(name + '.png')) for name in ('same', 'double', 'beyond', 'half')}
print(all(view.shape == (70, 90, 4) for view in views.values()))
print(np.array_equal(views['same'], sheet[30:100, 20:110]))
# The screen pixel s shows the map pixel whose centre is nearest to s / 2, between two the upper one.
rows, columns = ((np.arange(start, start + count) + 1) // 2 for start, count in ((30, 70), (20, 90)))
print(np.array_equal(views['double'], sheet[rows][:, columns]))
print(np.array_equal(views['beyond'][5:, 10:], sheet[:65, :80]), views['beyond'][:5].any(), views['beyond'][:, :10].any())
)"),
              "True\nTrue\nTrue\nTrue False False\n");
}

TEST_F(Output, AtAWholeZoomEveryPixelWithinIsEquallyWide) {
    const std::string library = NewLibrary();
    Python("import numpy as np\nfrom PIL import Image\n"
           "y, x = np.mgrid[:12, :20]\n"
           "Image.fromarray((x + 20 * y).astype(np.uint8)).save('ramp.png')");
    Do({"add-map", library, In("ramp.png")});
    for (int zoom = 1; zoom <= 9; ++zoom)
        Do({"render", library, "1", "--zoom", std::to_string(zoom), "--at", "0,0", "--size",
            std::to_string(20 * zoom) + "x" + std::to_string(12 * zoom), "--out",
            In("zoom" + std::to_string(zoom) + ".png")});
    for (int zoom = 1; zoom <= 9; ++zoom)
        Do({"render", library, "1", "--zoom", std::to_string(zoom), "--at", "7,5", "--size", "13x7", "--out",
            In("part" + std::to_string(zoom) + ".png")});
    EXPECT_EQ(Python(R"(
import numpy as np
from PIL import Image
for zoom in range(1, 10):
    seen = np.array(Image.open(f'zoom{zoom}.png'))[:, :, 0].astype(int)
    columns, rows = seen[0] % 20, seen[:, 0] // 20
    for name, axis, count in ('columns', columns, 20), ('rows', rows, 12):
        widths = np.bincount(axis, minlength=count)
        if not (widths[1:-1] == zoom).all() or widths.sum() != count * zoom:
            print(zoom, name, widths)
    if not np.array_equal(seen, columns + 20 * rows[:, None]):
        print(zoom, 'is no grid of the pixels')
    part = np.array(Image.open(f'part{zoom}.png'))[:, :, 0].astype(int)
    if not np.array_equal(part, seen[5:12, 7:20]):
        print(zoom, 'elsewhere is another grid')
)"),
              "");
}

TEST_F(Output, AnOlderPictureIsReplacedAndNothingElseIsLeft) {
    const std::string library = ScaledLibrary();
    Write("out.png", "older");
    Do({"extract", library, "1", "--out", In("out.png")});
    EXPECT_GT(fs::file_size(In("out.png")), 1000U);
    EXPECT_EQ(FileNames().size(), 4U);
}

TEST_F(Output, APictureThatCannotBeWrittenLeavesNothingBehind) {
    const std::string library = ScaledLibrary();
    fs::create_directory(In("folder.png"));
    for (const std::string& out : {In("missing/out.png"), In("folder.png"), std::string("/proc/out.png"),
                                   In("Sheet.bmp/out.png"), In(std::string(300, 'x') + ".png")}) {
        ExpectFailure(1, {"extract", library, "1", "--out", out}, "cannot be written");
        ExpectFailure(1, {"extract-icon", library, "1", "--out", out}, "cannot be written");
        ExpectFailure(1,
                      {"render", library, "1", "--zoom", "1", "--at", "0,0", "--size", "9x9", "--out", out},
                      "cannot be written");
    }
}

TEST_F(Output, AFullDiskLeavesNothingBehind) {
    const std::string library = ScaledLibrary();
    Do({"add-map", library, Bmp("big.bmp", 900, 900)});
    for (const char* out : {"out.png", "out.tif"}) {
        // A limit on the size of a file stands for the full disk.
        const ProgramResult result =
            RunProgram({"bash", "-c", "trap '' XFSZ; ulimit -f 100; exec \"$0\" \"$@\"", BUILD_DIR "/atlavex",
                        "extract", library, "2", "--out", In(out)});
        EXPECT_EQ(result.status, 1);
        EXPECT_THAT(result.err, HasSubstr("cannot be written"));
    }
    EXPECT_EQ(FileNames(), (std::set<std::string>{"a.Atlavex", "Sheet.bmp", "Hut.bmp", "big.bmp"}));
}

TEST_F(Output, ThePictureMustHaveAKnownKindAndNotBeTheLibrary) {
    const std::string library = ScaledLibrary("a.png");
    ExpectFailure(2, {"extract", library, "1", "--out", library}, "library itself");
    ExpectFailure(2, {"extract-icon", library, "1", "--out", In("icon.tif")}, ".png");
    for (const char* name : {"out", "out.bmp", ".png", "out.png.gz", ""})
        ExpectFailure(2, {"extract", library, "1", "--out", In(name)}, ".png");
}

TEST_F(Output, TilesAreExportedIntoANewOrTheSameFolder) {
    const std::string library = ScaledLibrary();
    Do({"export-tiles", library, "1", "--to", In("tiles")});
    for (const char* file : {"tiles.json", "map.vrt", "index.html", "0/0/0.png", "1/0/0.png", "1/1/0.png"})
        EXPECT_TRUE(fs::exists(In("tiles") + "/" + file)) << file;
    EXPECT_FALSE(fs::exists(In("tiles") + "/1/0/1.png"));
    Do({"export-tiles", library, "Sheet", "--to", In("tiles")});
    Do({"add-map", library, Bmp("x.bmp")});
    ExpectFailure(1, {"export-tiles", library, "2", "--to", In("tiles")}, "tiles");
}

TEST_F(Output, TilesNeedAFolder) {
    const std::string library = ScaledLibrary();
    ExpectFailure(1, {"export-tiles", library, "1", "--to", In("Sheet.bmp")}, "Sheet.bmp");
    ExpectFailure(1, {"export-tiles", library, "1", "--to", In("missing/tiles")}, "missing/tiles");
    ExpectFailure(1, {"export-tiles", library, "9", "--to", In("tiles")}, "There is no map");
}
