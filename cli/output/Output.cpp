#include "cli/output/Output.h"

#include "base/NumberText.h"
#include "cli/output/ExitStatus.h"
#include "cli/output/Interrupt.h"

#include <nlohmann/json.hpp>

#include <array>
#include <cerrno>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>

namespace {

[[noreturn]] void FailOutput() {
    const int reason = errno;
    ThrowIfInterrupted();
    throw CommandFailure(ExitStatus::Failed, std::string("The standard output cannot be written: ") +
                                                 std::strerror(reason) + ".");
}

/// The start of an escape with the value's last hexadecimal digits.
std::string Escape(std::string_view start, std::uint32_t value, std::uint32_t digits) {
    std::string text(start);
    for (std::uint32_t left = digits; left > 0; --left)
        text += "0123456789abcdef"[(value >> (4 * (left - 1))) & 0xFU];
    return text;
}

/// The three-byte UTF-8 character at the start of the text, or 0.
std::uint32_t ThreeByteCharacter(std::string_view text) {
    if (text.size() < 3 || (text[0] & 0xF0) != 0xE0)
        return 0;
    const auto part = [text](std::size_t at) { return static_cast<std::uint32_t>(text[at]) & 0x3F; };
    return ((static_cast<std::uint32_t>(text[0]) & 0x0F) << 12) | (part(1) << 6) | part(2);
}

/// Marks, overrides and isolates of writing direction, and line and paragraph separator: they can make a
/// line read otherwise than it is.
bool TurnsDirection(std::uint32_t character) {
    return character == 0x200E || character == 0x200F || (character >= 0x2028 && character <= 0x202E) ||
           (character >= 0x2066 && character <= 0x2069);
}

/// True for a control character of the second kind (U+0080 to U+009F), two bytes in UTF-8.
bool IsHighControl(std::string_view text) {
    return text.size() >= 2 && text[0] == '\xC2' && static_cast<unsigned char>(text[1]) >= 0x80 &&
           static_cast<unsigned char>(text[1]) <= 0x9F;
}

/// Appends the escape of what stands at the start of the text; answers how many bytes it stands for, 0 when
/// nothing needs an escape.
std::size_t AppendEscape(std::string& shown, std::string_view text) {
    const auto byte = static_cast<unsigned char>(text[0]);
    if (byte == '\n' || byte == '\r' || byte == '\t') {
        shown += byte == '\n' ? "\\n" : byte == '\r' ? "\\r" : "\\t";
        return 1;
    }
    if (byte < 0x20 || byte == 0x7F) {
        shown += Escape("\\x", byte, 2);
        return 1;
    }
    if (IsHighControl(text)) {
        shown += Escape("\\x", static_cast<unsigned char>(text[1]), 2);
        return 2;
    }
    if (const std::uint32_t character = ThreeByteCharacter(text); TurnsDirection(character)) {
        shown += Escape("\\u", character, 4);
        return 3;
    }
    if (text.substr(0, 2) == "\xD8\x9C") { // U+061C, the only one of them with two bytes
        shown += "\\u061c";
        return 2;
    }
    return 0;
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
        const std::size_t escaped = AppendEscape(shown, text);
        if (escaped == 0)
            shown += text.front();
        text.remove_prefix(escaped == 0 ? 1 : escaped);
    }
    return shown;
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
