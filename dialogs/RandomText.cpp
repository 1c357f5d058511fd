#include "dialogs/RandomText.h"

#include "base/Bytes.h"
#include "base/CheckedNumbers.h"

#include <sodium.h>

#include <chrono>
#include <cmath>
#include <string_view>

namespace {

constexpr std::u16string_view Digits = u"0123456789";
constexpr std::u16string_view Letters = u"ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz";
constexpr std::u16string_view LettersAndDigits =
    u"ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789";
constexpr std::u16string_view HexadecimalDigits = u"0123456789ABCDEF";

/// The one code of RandomText's set that is not the same in Unicode.
constexpr int EuroCode = 128;
constexpr QChar EuroSign = u'\u20AC';

QChar AnyCharacter(double drawn) {
    const auto code = CheckedRound<std::int16_t>(drawn * 127 + 1);
    return code == EuroCode ? EuroSign : QChar(code);
}

std::u16string_view AlphabetOf(QChar mark) {
    switch (mark.unicode()) {
    case u'#':
        return Digits;
    case u'A':
        return Letters;
    case u'N':
        return LettersAndDigits;
    case u'H':
        return HexadecimalDigits;
    default:
        return {};
    }
}

QChar Replaced(QChar mark, const UniformDraw& draw) {
    if (mark == u'?')
        return AnyCharacter(draw());
    const std::u16string_view alphabet = AlphabetOf(mark);
    if (alphabet.empty())
        return mark;
    return alphabet.at(static_cast<std::size_t>(std::floor(draw() * static_cast<double>(alphabet.size()))));
}

} // namespace

QString RandomText(const QString& mask, const UniformDraw& draw) {
    QString text = mask;
    for (QChar& character : text)
        character = Replaced(character, draw);
    return text;
}

void SeededGenerator::Seed() {
    std::array<std::uint8_t, 32> random{};
    FillRandom(random);
    const auto now = std::chrono::high_resolution_clock::now().time_since_epoch().count();
    std::array<unsigned char, sizeof now> clock{};
    for (std::size_t i = 0; i < clock.size(); ++i)
        clock.at(i) = static_cast<unsigned char>(static_cast<std::uint64_t>(now) >> (8 * i));
    // Keyed with the random bytes: the clock can add to them and take nothing away.
    crypto_generichash(seed_.data(), seed_.size(), clock.data(), clock.size(), random.data(), random.size());
    sodium_memzero(random.data(), random.size());
    draws_ = 0;
}

double SeededGenerator::operator()() {
    static_assert(crypto_stream_chacha20_KEYBYTES == std::tuple_size_v<decltype(seed_)>);
    std::array<unsigned char, crypto_stream_chacha20_NONCEBYTES> nonce{};
    for (std::size_t i = 0; i < nonce.size(); ++i)
        nonce.at(i) = static_cast<unsigned char>(draws_ >> (8 * i));
    ++draws_;
    std::array<unsigned char, 8> bytes{};
    crypto_stream_chacha20(bytes.data(), bytes.size(), nonce.data(), seed_.data());
    std::uint64_t bits = 0;
    for (const unsigned char byte : bytes)
        bits = bits << 8 | byte;
    constexpr int Precision = 53; // bits of a double's mantissa
    return std::ldexp(static_cast<double>(bits >> (64 - Precision)), -Precision);
}
