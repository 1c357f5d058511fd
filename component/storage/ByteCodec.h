#pragma once

#include "component/storage/Digest.h"

#include <bit>
#include <cmath>
#include <concepts>
#include <cstring>
#include <stdexcept>
#include <string>

/// Writes numbers and texts one after the other, least significant byte first; a text is its length in bytes
/// (32 bits) and its UTF-8.
class ByteWriter {
public:
    template <std::integral T>
    void Integer(T value) {
        for (std::size_t i = 0; i < sizeof(T); ++i)
            bytes_.push_back(static_cast<std::uint8_t>(static_cast<std::uint64_t>(value) >> (8 * i)));
    }
    void Double(double value) { Integer(std::bit_cast<std::uint64_t>(value)); }
    void Raw(ByteSpan raw) { bytes_.insert(bytes_.end(), raw.begin(), raw.end()); }
    void Text(std::string_view text) {
        Integer(static_cast<std::uint32_t>(text.size()));
        Raw(AsBytes(text));
    }

    const Bytes& Written() const { return bytes_; }

private:
    Bytes bytes_;
};

/// What a record says that no writer would have written. Turned into FileDamaged by whoever knows the file.
class MalformedRecord : public std::runtime_error {
public:
    explicit MalformedRecord(const std::string& reason) : std::runtime_error(reason) {}
};

/// Reads what ByteWriter wrote; every length is checked before it is used.
class ByteReader {
public:
    explicit ByteReader(ByteSpan bytes) : rest_(bytes) {}

    template <std::integral T>
    T Integer() {
        const ByteSpan raw = Raw(sizeof(T));
        std::uint64_t value = 0;
        for (std::size_t i = 0; i < sizeof(T); ++i)
            value |= std::uint64_t{raw[i]} << (8 * i);
        return static_cast<T>(value);
    }
    double Double() { return std::bit_cast<double>(Integer<std::uint64_t>()); }
    double FiniteDouble() {
        const double value = Double();
        Require(std::isfinite(value), "a number is not finite");
        return value;
    }
    bool Flag() {
        const auto value = Integer<std::uint8_t>();
        Require(value <= 1, "a flag is neither 0 nor 1");
        return value == 1;
    }
    ByteSpan Raw(std::size_t length) {
        Require(length <= rest_.size(), "it breaks off");
        const ByteSpan raw = rest_.first(length);
        rest_ = rest_.subspan(length);
        return raw;
    }
    template <std::size_t N>
    std::array<std::uint8_t, N> Array() {
        std::array<std::uint8_t, N> array{};
        std::memcpy(array.data(), Raw(N).data(), N);
        return array;
    }
    std::string Text() {
        const ByteSpan raw = Raw(Integer<std::uint32_t>());
        return {reinterpret_cast<const char*>(raw.data()), raw.size()};
    }
    std::size_t Left() const { return rest_.size(); }
    void End() const { Require(rest_.empty(), "it is longer than its content"); }

    static void Require(bool holds, const char* reason) {
        if (!holds)
            throw MalformedRecord(reason);
    }

private:
    ByteSpan rest_;
};
