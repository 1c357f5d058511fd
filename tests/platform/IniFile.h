#pragma once

#include <map>
#include <optional>
#include <string>

/// The stored settings as another program would read them: sections of "name=value" lines, no Qt involved.
class IniFile {
public:
    /// The settings of "Kestova" "Brisquent" below XDG_CONFIG_HOME, or of another application; empty when
    /// there is no such file.
    explicit IniFile(const std::string& organisation = "Kestova",
                     const std::string& application = "Brisquent");

    std::optional<std::string> Value(const std::string& section, const std::string& name) const;
    bool IsEmpty() const { return sections_.empty(); }

private:
    std::map<std::string, std::map<std::string, std::string>> sections_;
};

/// Where those settings are kept.
std::string IniFilePath(const std::string& organisation = "Kestova",
                        const std::string& application = "Brisquent");
