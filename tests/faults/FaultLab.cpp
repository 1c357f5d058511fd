#include "tests/faults/FaultLab.h"

#include "base/ComponentError.h"

#include <algorithm>
#include <fstream>
#include <random>

namespace fs = std::filesystem;

void MakeNoiseImage(const fs::path& file, int width, int height, unsigned seed) {
    // A BMP needs no library: a header of 54 bytes, then rows of blue, green, red.
    const std::size_t stride = (static_cast<std::size_t>(width) * 3 + 3) / 4 * 4;
    std::string bytes(54 + stride * static_cast<std::size_t>(height), '\0');
    const auto put = [&bytes](std::size_t at, std::uint32_t value, std::size_t length) {
        for (std::size_t i = 0; i < length; ++i)
            bytes[at + i] = static_cast<char>(value >> (8 * i));
    };
    bytes.replace(0, 2, "BM");
    put(2, static_cast<std::uint32_t>(bytes.size()), 4);
    put(10, 54, 4);
    put(14, 40, 4);
    put(18, static_cast<std::uint32_t>(width), 4);
    put(22, static_cast<std::uint32_t>(height), 4);
    put(26, 1, 2);
    put(28, 24, 2);
    std::mt19937 random(seed);
    for (std::size_t i = 54; i + 4 <= bytes.size(); i += 4)
        put(i, static_cast<std::uint32_t>(random()), 4);
    WriteWholeFile(file, bytes);
}

void MakeLibrary(const fs::path& file, int maps, int side, const std::string& key) {
    const TempFolder folder;
    const auto library = CreateAtlavexLibrary(CheapOptions(folder.Path().string()));
    for (int i = 1; i <= maps; ++i) {
        const fs::path image = folder / "sheet.bmp";
        MakeNoiseImage(image, side, side, static_cast<unsigned>(i));
        const auto map = library->AddMapFromImageFile(image.string(), "Sheet " + std::to_string(i), 256, 256);
        map->SetMetadata("author", "Surveyor " + std::to_string(i));
        map->SetScalingThreePoints({10, 50, 0, 0}, {11, 50, side - 1, 0}, {10, 49, 0, side - 1});
    }
    const fs::path picture = folder / "icon.bmp";
    MakeNoiseImage(picture, 16, 16, 99);
    library->AddIconFromImageFile(picture.string(), "Mill")->SetOffsetX(3);
    library->SaveToFile(file.string(), key);
}

std::string ContentOfFile(const fs::path& file, const std::string& key) {
    try {
        const TempFolder scratch;
        const auto library = CreateAtlavexLibrary(CheapOptions(scratch.Path().string()));
        library->LoadFromFile(file.string(), key);
        if (!library->KeyFitted())
            return "wrong key";
        if (const auto damages = library->Verify(); !damages.empty())
            throw ComponentError(ErrorNumber::FileDamaged, damages.front().reason);
        return ContentOf(*library);
    } catch (const ComponentError& error) {
        return "error " + std::to_string(error.Code()) + " " + error.Description();
    }
}

ProgramResult ReadBySecondReader(const fs::path& file) {
    const TempFolder folder;
    return RunProgram({"/usr/bin/python3", SOURCE_DIR "/tests/storage/second_reader.py", file.string(),
                       folder.Path().string()});
}

void CopyFile(const fs::path& from, const fs::path& to) {
    const ProgramResult copied = RunProgram({"cp", "--reflink=auto", from.string(), to.string()});
    if (copied.status != 0)
        throw std::runtime_error(copied.err);
}

std::vector<std::string> NamesIn(const fs::path& folder, const std::string& start, const std::string& end) {
    std::vector<std::string> names;
    for (const fs::directory_entry& entry : fs::directory_iterator(folder)) {
        const std::string name = entry.path().filename().string();
        if (name.starts_with(start) && name.ends_with(end))
            names.push_back(name);
    }
    std::sort(names.begin(), names.end());
    return names;
}

std::vector<std::string> Temporaries(const fs::path& folder) {
    return NamesIn(folder, ".", "");
}

std::vector<std::string> Scratches(const fs::path& folder) {
    return NamesIn(folder, "unsaved-", ".scratch");
}

std::string DriverProgram() {
    return FAULT_DRIVER;
}

ProgramResult RunWith(const std::vector<std::string>& variables, const std::vector<std::string>& command) {
    std::vector<std::string> words = {"env"};
    words.insert(words.end(), variables.begin(), variables.end());
    words.insert(words.end(), command.begin(), command.end());
    return RunProgram(words);
}

int FirstError(const ProgramResult& result) {
    const std::size_t at = result.out.find("error ");
    return at == std::string::npos ? 0 : std::stoi(result.out.substr(at + 6));
}
