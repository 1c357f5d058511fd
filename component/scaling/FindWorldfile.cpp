#include "base/ComponentError.h"
#include "component/Worldfile.h"

#include <algorithm>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;

char Small(char letter) {
    return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
}

std::string Small(std::string text) {
    std::ranges::transform(text, text.begin(), [](char letter) { return Small(letter); });
    return text;
}

/// What may stand behind the image's name without its extension, in small letters.
std::vector<std::string> UsualEndings(const fs::path& image) {
    const std::string extension = Small(image.extension().string());
    if (extension.size() < 3)
        return {extension + ".wld", ".wld"};
    // "jpeg" is an image by "jgw", like "jpg"; so is "tiff" by "tfw".
    const std::string first{extension[1], extension.back(), 'w'};
    return {"." + first, extension + "w", extension + ".wld", ".wld"};
}

/// The files of a folder whose names are `stem` and something behind it. A folder that cannot be read has
/// none.
std::vector<fs::path> FilesNamed(const fs::path& folder, const std::string& stem) {
    std::vector<fs::path> found;
    std::error_code error;
    for (fs::directory_iterator entries(folder, error), end; !error && entries != end;
         entries.increment(error))
        if (entries->path().filename().string().starts_with(stem))
            found.push_back(entries->path());
    // In which order a folder lists its files is its own matter.
    std::ranges::sort(found);
    return found;
}

} // namespace

fs::path FindWorldfile(const fs::path& image) {
    const std::string stem = image.stem().string();
    const fs::path folder = image.has_parent_path() ? image.parent_path() : fs::path(".");
    const std::vector<fs::path> files = FilesNamed(folder, stem);
    std::string names;
    for (const std::string& ending : UsualEndings(image)) {
        const auto file = std::ranges::find_if(files, [&](const fs::path& path) {
            return Small(path.filename().string().substr(stem.size())) == ending;
        });
        if (file != files.end())
            return *file;
        names.append(names.empty() ? "" : ", ").append(stem).append(ending);
    }
    throw ComponentError(ErrorNumber::FileNotFound,
                         "No worldfile lies beside \"" + image.string() + "\"; looked for " + names + ".");
}
