#include "tests/platform/IniFile.h"

#include <cstdlib>
#include <fstream>

namespace {

/// Quotes around a value and backslashes before backslashes are the file's, not the value's.
std::string Plain(std::string text) {
    if (text.size() >= 2 && text.front() == '"' && text.back() == '"')
        text = text.substr(1, text.size() - 2);
    std::string plain;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '\\' && i + 1 < text.size())
            ++i;
        plain += text[i];
    }
    return plain;
}

} // namespace

std::string IniFilePath(const std::string& organisation, const std::string& application) {
    return std::string(std::getenv("XDG_CONFIG_HOME")) + "/" + organisation + "/" + application + ".conf";
}

IniFile::IniFile(const std::string& organisation, const std::string& application) {
    std::ifstream file(IniFilePath(organisation, application));
    std::string section;
    for (std::string line; std::getline(file, line);) {
        const std::size_t equals = line.find('=');
        if (line.starts_with('['))
            section = line.substr(1, line.find(']') - 1);
        else if (equals != std::string::npos)
            sections_[section][line.substr(0, equals)] = Plain(line.substr(equals + 1));
    }
}

std::optional<std::string> IniFile::Value(const std::string& section, const std::string& name) const {
    const auto found = sections_.find(section);
    if (found == sections_.end())
        return std::nullopt;
    const auto value = found->second.find(name);
    return value == found->second.end() ? std::nullopt : std::optional(value->second);
}
