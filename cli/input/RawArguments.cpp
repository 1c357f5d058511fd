#include "cli/input/RawArguments.h"

#include <string_view>

namespace {

constexpr char Guard = '\x01'; // in front of a text it keeps the parser from seeing a bracket there

std::string Guarded(std::string_view text) {
    const bool needed = text.starts_with('[') || text.starts_with(Guard);
    return (needed ? std::string(1, Guard) : std::string()) + std::string(text);
}

} // namespace

std::vector<std::string> GuardedArguments(int argumentCount, const char* const* arguments) {
    std::vector<std::string> guarded;
    bool options = true; // "--" ends them
    for (int index = 1; index < argumentCount; ++index) {
        const std::string_view text = arguments[index];
        options = options && text != "--";
        if (options && text.starts_with("--") && text.find('=') == text.size() - 1) {
            guarded.emplace_back(text.substr(0, text.size() - 1));
            guarded.emplace_back();
        } else {
            guarded.push_back(Guarded(text));
        }
    }
    return guarded;
}

std::string Unguarded(const std::string& text) {
    return text.starts_with(Guard) ? text.substr(1) : text;
}
