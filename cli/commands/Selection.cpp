#include "cli/commands/Selection.h"

#include "base/NumberText.h"
#include "cli/input/Suggestion.h"
#include "cli/output/ExitStatus.h"
#include "cli/output/Output.h"

#include <algorithm>
#include <map>
#include <string_view>
#include <vector>

namespace {

/// What a text may be compared with.
struct Wanted {
    std::string_view text;
    bool asName = true;
    bool asIdentifier = true;
};

Wanted ParseWanted(std::string_view text) {
    if (text.starts_with("name:"))
        return {text.substr(5), true, false};
    if (text.starts_with("id:"))
        return {text.substr(3), false, true};
    return {text, true, true};
}

bool IsPosition(std::string_view text) {
    return !text.empty() &&
           std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
}

const char* KindName(ObjectKind kind) {
    return kind == ObjectKind::Map ? "map" : "icon";
}

std::int32_t CountOf(const AtlavexLibrary& library, ObjectKind kind) {
    return kind == ObjectKind::Map ? library.MapCount() : library.IconCount();
}

bool Fits(AtlavexLibrary& library, ObjectKind kind, std::int32_t position, const Wanted& wanted) {
    if (kind == ObjectKind::Icon)
        return wanted.asName && library.GetIcon(library.IconIdAt(position))->Name() == wanted.text;
    const auto map = library.GetMap(library.MapIdAt(position));
    return (wanted.asName && map->Name() == wanted.text) ||
           (wanted.asIdentifier && map->Identifier() == wanted.text);
}

std::string Holding(const AtlavexLibrary& library, ObjectKind kind) {
    const std::int32_t count = CountOf(library, kind);
    return "; the library has " + std::to_string(count) + " " + KindName(kind) + (count == 1 ? "" : "s");
}

std::vector<std::string> NamesOf(AtlavexLibrary& library, ObjectKind kind) {
    std::vector<std::string> names;
    for (std::int32_t position = 1; position <= CountOf(library, kind); ++position)
        names.push_back(kind == ObjectKind::Map ? library.GetMap(library.MapIdAt(position))->Name()
                                                : library.GetIcon(library.IconIdAt(position))->Name());
    return names;
}

/// How many objects each name, and each name or identifier, stands for.
struct Uses {
    std::map<std::string, int> ofName;
    std::map<std::string, int> ofText;
};

Uses CountUses(AtlavexLibrary& library, ObjectKind kind, const std::vector<std::string>& names) {
    Uses uses;
    for (std::size_t index = 0; index < names.size(); ++index) {
        ++uses.ofName[names[index]];
        ++uses.ofText[names[index]];
        if (kind == ObjectKind::Icon)
            continue;
        const auto map = library.GetMap(library.MapIdAt(static_cast<std::int32_t>(index) + 1));
        if (map->Identifier() != names[index])
            ++uses.ofText[map->Identifier()];
    }
    return uses;
}

std::string SelectorOf(const std::string& name, std::size_t position, const Uses& uses) {
    const bool canBeTyped = Printable(name) == name;
    const bool isPlain = !name.empty() && !IsPosition(name) && name.front() != '-' &&
                         !name.starts_with("name:") && !name.starts_with("id:");
    if (canBeTyped && isPlain && uses.ofText.at(name) == 1)
        return name;
    return canBeTyped && uses.ofName.at(name) == 1 ? "name:" + name : std::to_string(position);
}

std::int32_t CheckPosition(const AtlavexLibrary& library, ObjectKind kind, const std::string& text) {
    const auto position = TextToWholeNumber(text);
    if (!position || *position < 1 || *position > CountOf(library, kind))
        throw CommandFailure(ExitStatus::Failed, std::string("There is no ") + KindName(kind) + " " + text +
                                                     Holding(library, kind) + ".");
    return *position;
}

std::string ListOf(const std::vector<std::int32_t>& positions) {
    std::string list;
    for (const std::int32_t position : positions)
        list += (list.empty() ? "" : ", ") + std::to_string(position);
    return list;
}

} // namespace

ObjectKind ParseObjectKind(const std::string& text) {
    if (text != "map" && text != "icon")
        throw UsageError("Expected 'map' or 'icon', not '" + text + "'.");
    return text == "map" ? ObjectKind::Map : ObjectKind::Icon;
}

std::int32_t SelectPosition(AtlavexLibrary& library, ObjectKind kind, const std::string& text) {
    if (IsPosition(text))
        return CheckPosition(library, kind, text);
    const Wanted wanted = ParseWanted(text);
    std::vector<std::int32_t> found;
    for (std::int32_t position = 1; position <= CountOf(library, kind); ++position)
        if (Fits(library, kind, position, wanted))
            found.push_back(position);
    if (found.empty())
        throw CommandFailure(ExitStatus::Failed, std::string("There is no ") + KindName(kind) + " '" + text +
                                                     "'" + Holding(library, kind) +
                                                     DidYouMean(wanted.text, NamesOf(library, kind)));
    if (found.size() > 1)
        throw CommandFailure(ExitStatus::Failed, "'" + text + "' stands for more than one " + KindName(kind) +
                                                     ": choose one of the positions " + ListOf(found) + ".");
    return found.front();
}

std::vector<Selector> SelectorsOf(AtlavexLibrary& library, ObjectKind kind) {
    const std::vector<std::string> names = NamesOf(library, kind);
    const Uses uses = CountUses(library, kind, names);
    std::vector<Selector> selectors;
    for (const std::string& name : names) {
        const std::size_t position = selectors.size() + 1;
        selectors.push_back({SelectorOf(name, position, uses), std::to_string(position) + " " + name});
    }
    return selectors;
}

std::shared_ptr<AtlavexMap> SelectMap(AtlavexLibrary& library, const std::string& text) {
    return library.GetMap(library.MapIdAt(SelectPosition(library, ObjectKind::Map, text)));
}

std::shared_ptr<AtlavexIcon> SelectIcon(AtlavexLibrary& library, const std::string& text) {
    return library.GetIcon(library.IconIdAt(SelectPosition(library, ObjectKind::Icon, text)));
}

std::shared_ptr<Metadata> SelectMetadata(AtlavexLibrary& library, ObjectKind kind, const std::string& text) {
    if (kind == ObjectKind::Map)
        return SelectMap(library, text);
    return SelectIcon(library, text);
}
