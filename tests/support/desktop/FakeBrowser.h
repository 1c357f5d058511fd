#pragma once

#include "tests/support/ScopedVariable.h"
#include "tests/support/TempFolder.h"

#include <filesystem>

/// Takes the place of the program that opens the user's browser: notes the address and then does what the
/// shell is told here.
class FakeBrowser {
public:
    explicit FakeBrowser(const std::string& behaviour) {
        const std::filesystem::path program = folder_ / "xdg-open";
        WriteWholeFile(program,
                       "#!/bin/sh\necho \"$1\" >> '" + (folder_ / "opened").string() + "'\n" + behaviour);
        std::filesystem::permissions(program, std::filesystem::perms::owner_all);
    }

    /// The addresses, one a line.
    std::string Opened() const {
        const std::filesystem::path opened = folder_ / "opened";
        return std::filesystem::exists(opened) ? ReadWholeFile(opened) : std::string();
    }

private:
    TempFolder folder_;
    ScopedVariable path_{"PATH", folder_.Path().string() + ":" + std::getenv("PATH")};
};

/// A machine without any browser.
class NoBrowser {
private:
    TempFolder empty_;
    ScopedVariable path_{"PATH", empty_.Path().string()};
};
