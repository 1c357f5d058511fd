#include "component/readers/GifCodes.h"

GifCodes::GifCodes(std::FILE* stream) : stream_(stream) {
    const int width = std::fgetc(stream);
    if (width == EOF || width < 1 || width > MostFirstWidth) {
        outcome_ = width == EOF ? Outcome::FileEnds : Outcome::Contradicted;
        return;
    }
    words_.emplace(1U << width);
    Clear();
}

void GifCodes::Clear() {
    words_->Clear();
    width_ = 1;
    while (1U << width_ < words_->Known())
        ++width_;
}

GifCodes::Outcome GifCodes::NextBlock() {
    const int length = std::fgetc(stream_);
    if (length == EOF)
        return Outcome::FileEnds;
    if (length == 0)
        return Outcome::PixelsEnd;
    blockAt_ = 0;
    blockEnd_ = std::fread(block_.data(), 1, static_cast<std::size_t>(length), stream_);
    return blockEnd_ > 0 ? Outcome::Done : Outcome::FileEnds;
}

GifCodes::Outcome GifCodes::NextCode(unsigned& code) {
    while (bitCount_ < width_) {
        if (blockAt_ == blockEnd_)
            if (const Outcome outcome = NextBlock(); outcome != Outcome::Done)
                return outcome;
        bits_ |= std::uint32_t{block_[blockAt_++]} << bitCount_;
        bitCount_ += 8;
    }
    code = bits_ & ((1U << width_) - 1);
    bits_ >>= width_;
    bitCount_ -= width_;
    return Outcome::Done;
}

GifCodes::Outcome GifCodes::Follow(unsigned code) {
    if (code == words_->EndCode())
        return Outcome::PixelsEnd;
    if (code == words_->ClearCode()) {
        Clear();
        return Outcome::Done;
    }
    if (!words_->Follow(code))
        return Outcome::Contradicted;
    if (words_->Known() == 1U << width_ && width_ < LzwWords::MostBits)
        ++width_;
    return Outcome::Done;
}

GifCodes::Outcome GifCodes::Read(std::span<std::uint8_t> indices) {
    if (words_)
        indices = indices.subspan(words_->Pop(indices));
    while (!indices.empty() && outcome_ == Outcome::Done) {
        unsigned code = 0;
        outcome_ = NextCode(code);
        if (outcome_ == Outcome::Done)
            outcome_ = Follow(code);
        if (outcome_ == Outcome::Done)
            indices = indices.subspan(words_->Pop(indices));
    }
    return indices.empty() ? Outcome::Done : outcome_;
}
