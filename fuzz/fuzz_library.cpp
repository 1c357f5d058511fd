// A whole library file: open it under a key, read everything, save it in place.

#include "base/ComponentError.h"
#include "component/AtlavexLibrary.h"
#include "fuzz/FuzzInput.h"

namespace {

/// Cuts of what a hostile file may claim, so that a run stays short.
constexpr std::int64_t MostPixels = 1 << 22;

void ReadAll(AtlavexLibrary& library) {
    library.Verify();
    for (std::int32_t i = 1; i <= library.MapCount(); ++i) {
        const auto map = library.GetMap(library.MapIdAt(i));
        map->Name();
        std::shared_ptr<const AtlavexImage> view;
        map->RenderView(0, 0, 64, 64, view);
        if (std::int64_t{map->Width()} * map->Height() <= MostPixels)
            map->ReadPixels([](std::span<const std::uint8_t>, std::int32_t) {});
    }
    for (std::int32_t i = 1; i <= library.IconCount(); ++i)
        library.GetIcon(library.IconIdAt(i))->Image();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static FuzzFile file;
    const std::string path = file.Write({data, size}).string();
    LibraryOptions options;
    options.threads = 1;
    const auto library = CreateAtlavexLibrary(options);
    try {
        library->IsEncrypted(path);
        library->LoadFromFile(path, "key1");
        ReadAll(*library);
        library->SaveToFile(path, library->IsSealed() ? "key1" : "");
    } catch (const ComponentError&) {
        // The orderly answer.
    }
    return 0;
}
