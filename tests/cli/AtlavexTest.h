#pragma once

#include "tests/support/RunProgram.h"
#include "tests/support/TempFolder.h"

#include <gtest/gtest.h>
#include <nlohmann/json_fwd.hpp>

#include <set>
#include <string>
#include <vector>

using Words = std::vector<std::string>;

/// The real program on real files in a folder of its own.
class AtlavexTest : public testing::Test {
protected:
    /// Runs `atlavex` with the arguments. It is ended after a minute, so that a hang is a failure (status
    /// 124).
    ProgramResult Run(const Words& arguments, const std::string& input = {}) const;
    /// Runs a command that must succeed without a message; answers what it printed.
    std::string Do(const Words& arguments, const std::string& input = {}) const;
    /// The same for a command that scales a map in an unlikely way: every line of message is a remark on a
    /// map.
    void DoDoubted(const Words& arguments) const;
    /// Do, read as JSON.
    nlohmann::ordered_json DoJson(const Words& arguments, const std::string& input = {}) const;
    /// Runs a command that must end with the status and one line of message that holds the text; every file
    /// of the folder stays as it was and none is added. Answers what it printed.
    std::string ExpectFailure(int status, const Words& arguments, const std::string& message = {},
                              const std::string& input = {}) const;
    /// Runs a script of Debian's Python with the folder as its working folder; it must succeed.
    std::string Python(const std::string& script, const Words& arguments = {}) const;

    /// The path of a file in the folder.
    std::string In(const std::string& name) const { return (folder_ / name).string(); }
    std::string Write(const std::string& name, const std::string& content) const;
    /// A 24-bit BMP of coloured noise.
    std::string Bmp(const std::string& name, int width = 300, int height = 200) const;

    /// An empty library.
    std::string NewLibrary(const std::string& name = "a.Atlavex") const;
    /// An empty library sealed under the key at the least cost of derivation, so that each command on it is
    /// quick.
    std::string SealedLibrary(const std::string& name, const std::string& key) const;
    /// A library with the map "Sheet" (300x200 pixels, UTM zone 32, two metres a pixel, pixel 0,0 at easting
    /// 500000, northing 6100000) and the icon "Hut".
    std::string ScaledLibrary(const std::string& name = "a.Atlavex") const;

    std::set<std::string> FileNames() const;

private:
    TempFolder folder_;
};

/// The scaling arguments of ScaledLibrary.
extern const Words SheetScaling;

Words operator+(Words left, const Words& right);

/// The lines of a text, without their ends.
Words Lines(const std::string& text);
