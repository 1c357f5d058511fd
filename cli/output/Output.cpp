#include "cli/output/Output.h"

#include "base/NumberText.h"
#include "base/StandardErrors.h"
#include "base/Utf8.h"
#include "cli/output/ExitStatus.h"
#include "cli/output/Interrupt.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstdio>

namespace {

[[noreturn]] void FailOutput() {
    const int reason = errno;
    ThrowIfInterrupted();
    throw CommandFailure(ExitStatus::Failed,
                         "The standard output cannot be written: " + SystemReason(reason) + ".");
}

/// The start of an escape with the value's last hexadecimal digits.
std::string Escape(std::string_view start, std::uint32_t value, std::uint32_t digits) {
    std::string text(start);
    for (std::uint32_t left = digits; left > 0; --left)
        text += "0123456789abcdef"[(value >> (4 * (left - 1))) & 0xFU];
    return text;
}

/// Marks, overrides and isolates of writing direction, and line and paragraph separator: they can make a
/// line read otherwise than it is.
bool TurnsDirection(char32_t character) {
    return character == 0x061C || character == 0x200E || character == 0x200F ||
           (character >= 0x2028 && character <= 0x202E) || (character >= 0x2066 && character <= 0x2069);
}

bool IsControl(char32_t character) {
    return character < 0x20 || (character >= 0x7F && character <= 0x9F);
}

std::string EscapeOf(char32_t character) {
    switch (character) {
    case '\n':
        return "\\n";
    case '\r':
        return "\\r";
    case '\t':
        return "\\t";
    default:
        return IsControl(character) ? Escape("\\x", character, 2) : Escape("\\u", character, 4);
    }
}

} // namespace

void Print(std::string_view data) {
    if (std::fwrite(data.data(), 1, data.size(), stdout) != data.size())
        FailOutput();
}

void FlushOutput() {
    if (std::fflush(stdout) != 0 || std::ferror(stdout) != 0)
        FailOutput();
}

std::string JsonToText(const nlohmann::ordered_json& value) {
    constexpr int Indent = 2;
    return value.dump(Indent, ' ', false, nlohmann::ordered_json::error_handler_t::replace);
}

void PrintJson(const nlohmann::ordered_json& value) {
    Print(JsonToText(value) + "\n");
}

void PrintMessage(std::string_view sentence) {
    // There is nowhere left to tell of a failure to write this.
    static_cast<void>(std::fflush(stdout));
    static_cast<void>(std::fprintf(stderr, "atlavex: %s\n", Printable(sentence).c_str()));
}

std::string Printable(std::string_view text) {
    std::string shown;
    while (!text.empty()) {
        const Utf8Character first = FirstCharacter(text);
        const std::size_t length = std::max(first.length, std::size_t{1});
        if (first.length > 0 && (IsControl(first.code) || TurnsDirection(first.code)))
            shown += EscapeOf(first.code);
        else
            shown += text.substr(0, length);
        text.remove_prefix(length);
    }
    return shown;
}

std::string PrintableLines(std::string_view text) {
    std::string shown;
    for (std::size_t end = text.find('\n'); end != std::string_view::npos; end = text.find('\n')) {
        shown += Printable(text.substr(0, end)) + "\n";
        text.remove_prefix(end + 1);
    }
    return shown + Printable(text);
}

std::string CoordinateText(double value) {
    constexpr double Smallest = 1e-6, Largest = 1e15;
    const double size = std::abs(value);
    if (size != 0 && !(size >= Smallest && size < Largest))
        return NumberToText(value);
    std::array<char, 64> text{};
    const auto end =
        std::to_chars(text.data(), text.data() + text.size(), value, std::chars_format::fixed).ptr;
    return {text.data(), end};
}
