#include "tests/cli/AtlavexTest.h"

#include "component/AtlavexLibrary.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <map>
#include <random>
#include <sstream>

namespace fs = std::filesystem;

const Words SheetScaling{"--grid",  "UTM (etrs89)",          "--zone",  "32",
                         "--point", "0,0=500000,6100000",    "--point", "0,100=500000,6099800",
                         "--point", "100,100=500200,6099800"};

Words operator+(Words left, const Words& right) {
    left.insert(left.end(), right.begin(), right.end());
    return left;
}

namespace {

std::map<std::string, std::string> Snapshot(const fs::path& folder) {
    std::map<std::string, std::string> files;
    for (const auto& entry : fs::recursive_directory_iterator(folder))
        files[entry.path().string()] = entry.is_regular_file() ? ReadWholeFile(entry.path()) : "";
    return files;
}

std::string LittleEndian(std::uint32_t value, int bytes) {
    std::string text;
    for (int index = 0; index < bytes; ++index)
        text += static_cast<char>((value >> (8 * index)) & 255U);
    return text;
}

std::string BmpHeader(std::uint32_t width, std::uint32_t height, std::uint32_t pixelBytes) {
    constexpr std::uint32_t HeaderBytes = 54;
    return "BM" + LittleEndian(HeaderBytes + pixelBytes, 4) + LittleEndian(0, 4) +
           LittleEndian(HeaderBytes, 4) + LittleEndian(40, 4) + LittleEndian(width, 4) +
           LittleEndian(height, 4) + LittleEndian(1, 2) + LittleEndian(24, 2) + LittleEndian(0, 4) +
           LittleEndian(pixelBytes, 4) + std::string(16, '\0');
}

} // namespace

ProgramResult AtlavexTest::Run(const Words& arguments, const std::string& input) const {
    return RunProgram(Words{"timeout", "60", BUILD_DIR "/atlavex"} + arguments, input);
}

std::string AtlavexTest::Do(const Words& arguments, const std::string& input) const {
    const ProgramResult result = Run(arguments, input);
    EXPECT_EQ(result.status, 0) << testing::PrintToString(arguments);
    EXPECT_EQ(result.err, "") << testing::PrintToString(arguments);
    return result.out;
}

void AtlavexTest::DoDoubted(const Words& arguments) const {
    const ProgramResult result = Run(arguments);
    EXPECT_EQ(result.status, 0) << testing::PrintToString(arguments);
    std::istringstream lines(result.err);
    int remarks = 0;
    for (std::string line; std::getline(lines, line); ++remarks)
        EXPECT_TRUE(line.starts_with("atlavex: Map '")) << line;
    EXPECT_GT(remarks, 0) << testing::PrintToString(arguments);
}

nlohmann::ordered_json AtlavexTest::DoJson(const Words& arguments, const std::string& input) const {
    return nlohmann::ordered_json::parse(Do(arguments + Words{"--json"}, input));
}

std::string AtlavexTest::ExpectFailure(int status, const Words& arguments, const std::string& message,
                                       const std::string& input) const {
    const auto before = Snapshot(folder_.Path());
    const ProgramResult result = Run(arguments, input);
    EXPECT_EQ(result.status, status) << testing::PrintToString(arguments) << result.err;
    EXPECT_TRUE(result.err.starts_with("atlavex: ")) << result.err;
    EXPECT_EQ(std::count(result.err.begin(), result.err.end(), '\n'), 1) << result.err;
    EXPECT_NE(result.err.find(message), std::string::npos) << result.err;
    EXPECT_TRUE(Snapshot(folder_.Path()) == before)
        << "files changed by " << testing::PrintToString(arguments);
    return result.out;
}

std::string AtlavexTest::Python(const std::string& script, const Words& arguments) const {
    const std::string prologue = "import os, sys; os.chdir(sys.argv[1]); atlavex = sys.argv[2]\n";
    const ProgramResult result = RunProgram(
        Words{"/usr/bin/python3", "-c", prologue + script, folder_.Path().string(), BUILD_DIR "/atlavex"} +
        arguments);
    EXPECT_EQ(result.status, 0) << result.err;
    return result.out;
}

std::string AtlavexTest::Write(const std::string& name, const std::string& content) const {
    WriteWholeFile(In(name), content);
    return In(name);
}

std::string AtlavexTest::Bmp(const std::string& name, int width, int height) const {
    const int stride = (3 * width + 3) / 4 * 4;
    std::string pixels(static_cast<std::size_t>(stride) * static_cast<std::size_t>(height), '\0');
    std::minstd_rand random(1);
    std::generate(pixels.begin(), pixels.end(), [&random] { return static_cast<char>(random() >> 8); });
    return Write(name, BmpHeader(static_cast<std::uint32_t>(width), static_cast<std::uint32_t>(height),
                                 static_cast<std::uint32_t>(pixels.size())) +
                           pixels);
}

std::string AtlavexTest::NewLibrary(const std::string& name) const {
    Do({"new", In(name)});
    return In(name);
}

std::string AtlavexTest::SealedLibrary(const std::string& name, const std::string& key) const {
    LibraryOptions cheap;
    cheap.keyOperations = 1;
    cheap.keyMemoryMiB = 8;
    CreateAtlavexLibrary(cheap)->SaveToFile(In(name), key);
    return In(name);
}

std::string AtlavexTest::ScaledLibrary(const std::string& name) const {
    const std::string library = NewLibrary(name);
    Do(Words{"add-map", library, Bmp("Sheet.bmp")} + SheetScaling);
    Do({"add-icon", library, Bmp("Hut.bmp", 16, 16), "--offset", "-3,4"});
    return library;
}

std::set<std::string> AtlavexTest::FileNames() const {
    std::set<std::string> names;
    for (const auto& entry : fs::directory_iterator(folder_.Path()))
        names.insert(entry.path().filename().string());
    return names;
}

Words Lines(const std::string& text) {
    std::istringstream stream(text);
    Words lines;
    for (std::string line; std::getline(stream, line);)
        lines.push_back(line);
    return lines;
}
