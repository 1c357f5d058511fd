#include "component/ObjectTexts.h"

#include "base/Guid.h"
#include "component/AtlavexLibrary.h"

#include <array>
#include <ctime>

std::string LocalTimeText() {
    const std::time_t now = std::time(nullptr);
    std::tm parts{};
    localtime_r(&now, &parts);
    std::array<char, 32> text{};
    const std::size_t length = std::strftime(text.data(), text.size(), "%Y-%m-%d %H:%M:%S", &parts);
    return {text.data(), length};
}

std::string NameFromFile(std::string_view path) {
    const std::size_t slash = path.find_last_of('/');
    const std::size_t separator = slash != std::string_view::npos ? slash : path.find_last_of('\\');
    const std::string_view name = separator == std::string_view::npos ? path : path.substr(separator + 1);
    return std::string(name.substr(0, name.find('.'))); // all of it when there is none
}

void DescribeNewObject(Metadata& object, const std::string& name, const std::string& description,
                       const std::string& version) {
    object.SetMetadata("name", name);
    object.SetMetadata("description", description);
    object.SetMetadata("version", version);
    object.SetMetadata("created", LocalTimeText());
    object.SetMetadata("lastchanged", LocalTimeText());
}

void StampLastChanged(Metadata& object) {
    object.SetMetadata("lastchanged", LocalTimeText());
}

void StampLastChanged(AtlavexLibrary& library) {
    for (std::int32_t position = 1; position <= library.MapCount(); ++position)
        StampLastChanged(*library.GetMap(library.MapIdAt(position)));
    for (std::int32_t position = 1; position <= library.IconCount(); ++position)
        StampLastChanged(*library.GetIcon(library.IconIdAt(position)));
}

void CompleteIdentifiers(AtlavexLibrary& library) {
    for (std::int32_t position = 1; position <= library.MapCount(); ++position) {
        const auto map = library.GetMap(library.MapIdAt(position));
        if (!IsGUIDText(map->Identifier()))
            map->SetIdentifier(CreateGUID());
    }
}
