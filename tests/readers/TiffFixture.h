#pragma once

#include "base/ComponentError.h"
#include "tests/readers/ReferenceDecoder.h"
#include "tests/support/TempFolder.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

/// Compares every file of a theme of make_tiffs.py with its truth.
void CheckTiffTheme(const std::string& theme, Tolerance tolerance = {});

/// The error that reading the whole TIFF ends in, if any.
std::optional<ErrorNumber> TiffErrorOf(const std::filesystem::path& file);

/// What the user is told of it.
std::string TiffSentenceOf(const std::filesystem::path& file);

/// Whether damage may end so.
bool IsOrderly(std::optional<ErrorNumber> error);

/// An entry of a directory, with one 32-bit value.
struct Tag {
    std::uint16_t number;
    std::uint32_t value;
};

/// A TIFF of one strip or tile in little-endian order, whose data are `dataBytes` bytes of 0x55.
std::string TiffOf(const std::vector<Tag>& tags, std::uint32_t nextDirectory = 0, std::size_t dataBytes = 64);
