#include "component/readers/tiff/TiffFile.h"

#include "base/ComponentError.h"
#include "component/readers/common/ImageError.h"

#include <algorithm>
#include <array>
#include <cstdarg>
#include <cstdio>
#include <new>
#include <string_view>

namespace {

/// The largest piece of memory that libtiff may ask for.
constexpr std::int64_t MostPieceOfMemory = std::int64_t{448} << 20;

struct FreeOptions {
    void operator()(TIFFOpenOptions* options) const { TIFFOpenOptionsFree(options); }
};

int OnClose(thandle_t) {
    return 0;
}
tmsize_t OnWrite(thandle_t, void*, tmsize_t) {
    return 0;
}
int OnMap(thandle_t, void**, toff_t*) {
    return 0;
}
void OnUnmap(thandle_t, void*, toff_t) {}

std::string Formatted(const char* format, std::va_list arguments) {
    std::array<char, 300> text{};
    if (std::vsnprintf(text.data(), text.size(), format, arguments) < 0)
        return "unknown";
    std::string sentence(text.data());
    while (!sentence.empty() && (sentence.back() == '.' || sentence.back() == '\n'))
        sentence.pop_back();
    return sentence;
}

/// The JPEG libraries only warn before they fill what is missing with grey, the facsimile coders before they
/// end a row that is too short, give up one that is too long, or leave out the rows that a strip lacks. All
/// other warnings are of tags and of padding, and leave the pixels whole.
bool IsOfInventedPixels(std::string_view module, std::string_view text) {
    if (module == "JPEGLib" || module == "LibJpeg")
        return text.find("extraneous bytes") == std::string_view::npos;
    return module.starts_with("Fax3Decode") || module == "Fax4Decode";
}

/// Tags without a name are none that this program asks for; libtiff goes on without them.
bool IsOfPassedOverTag(std::string_view text) {
    return text.find("\"Tag ") != std::string_view::npos ||
           text.find("tag ignored") != std::string_view::npos;
}

} // namespace

TiffFile::TiffFile(const std::filesystem::path& path)
    : file_(std::make_shared<ImageFile>(path)), size_(file_->Size()) {
    Open();
}

TiffFile::TiffFile(const TiffFile& other, std::vector<std::uint8_t> head, std::int64_t begin,
                   std::int64_t length)
    : file_(other.file_), head_(std::move(head)), begin_(begin), size_(std::ssize(head_) + length),
      pause_(other.pause_) {
    Open();
}

void TiffFile::Open() {
    const std::unique_ptr<TIFFOpenOptions, FreeOptions> options(TIFFOpenOptionsAlloc());
    if (!options)
        throw std::bad_alloc();
    TIFFOpenOptionsSetMaxSingleMemAlloc(options.get(), MostPieceOfMemory);
    TIFFOpenOptionsSetErrorHandlerExtR(options.get(), OnError, this);
    TIFFOpenOptionsSetWarningHandlerExtR(options.get(), OnWarning, this);
    handle_.reset(TIFFClientOpenExt(Path().filename().c_str(), "rm", this, OnRead, OnWrite, OnSeek, OnClose,
                                    OnSize, OnMap, OnUnmap, options.get()));
    if (!handle_)
        ThrowComplaint();
}

std::uint16_t TiffFile::Tag16(std::uint32_t tag, std::uint16_t otherwise) const {
    std::uint16_t value = 0;
    return TIFFGetFieldDefaulted(handle_.get(), tag, &value) == 1 ? value : otherwise;
}

std::uint32_t TiffFile::Tag32(std::uint32_t tag, std::uint32_t otherwise) const {
    std::uint32_t value = 0;
    return TIFFGetFieldDefaulted(handle_.get(), tag, &value) == 1 ? value : otherwise;
}

std::size_t TiffFile::ReadAt(std::int64_t offset, std::span<std::uint8_t> bytes) {
    const std::int64_t behindHead = offset - std::ssize(head_);
    if (behindHead < 0) {
        const auto count = std::min(static_cast<std::size_t>(-behindHead), bytes.size());
        std::copy_n(head_.begin() + offset, count, bytes.begin());
        return count;
    }
    file_->Seek(begin_ + behindHead);
    const std::int64_t left = std::max<std::int64_t>(0, size_ - offset);
    return file_->ReadSome(bytes.first(static_cast<std::size_t>(std::min(std::ssize(bytes), left))));
}

void TiffFile::Check(bool succeeded) const {
    if (!succeeded || stopped_ || !complaint_.empty())
        ThrowComplaint();
}

void TiffFile::ForgetComplaints() {
    if (!complaint_.empty())
        hint_ = complaint_;
    complaint_.clear();
}

void TiffFile::ThrowComplaint() const {
    if (stopped_)
        std::rethrow_exception(stopped_);
    if (!complaint_.empty())
        ThrowDamaged(Path(), complaint_);
    ThrowDamaged(Path(), hint_.empty() ? "its TIFF structure is broken"
                                       : "its TIFF structure is broken (" + hint_ + ")");
}

/// The first complaint is the cause, later ones its consequences; unless it is of a tag that nobody needs.
int TiffFile::OnError(::TIFF*, void* self, const char* module, const char* format, std::va_list arguments) {
    auto* tiff = static_cast<TiffFile*>(self);
    const std::string text = Formatted(format, arguments);
    std::string& kept = IsOfPassedOverTag(text) ? tiff->hint_ : tiff->complaint_;
    if (&kept == &tiff->hint_ || kept.empty())
        kept = (module != nullptr ? std::string(module) + ": " : "") + text;
    return 1; // handled: the global handlers stay silent
}

int TiffFile::OnWarning(::TIFF*, void* self, const char* module, const char* format, std::va_list arguments) {
    auto* tiff = static_cast<TiffFile*>(self);
    const std::string text = Formatted(format, arguments);
    if (IsOfInventedPixels(module != nullptr ? module : "", text) && tiff->complaint_.empty())
        tiff->complaint_ = text;
    else
        tiff->hint_ = text;
    if (text.find("\"ColorMap\"") != std::string::npos)
        tiff->colourMapLost_ = true;
    return 1;
}

/// A strip may be long: libtiff reads it in one go.
std::size_t TiffFile::ReadOn(std::span<std::uint8_t> bytes) {
    constexpr std::size_t MostBetweenPauses = std::size_t{1} << 20;
    std::size_t done = 0;
    while (done < bytes.size()) {
        if (pause_)
            pause_();
        const auto part = bytes.subspan(done).first(std::min(MostBetweenPauses, bytes.size() - done));
        const std::size_t got = ReadAt(position_, part);
        done += got;
        position_ += static_cast<std::int64_t>(got);
        if (got == 0)
            break;
    }
    return done;
}

tmsize_t TiffFile::OnRead(thandle_t self, void* bytes, tmsize_t count) {
    auto* tiff = static_cast<TiffFile*>(self);
    // No exception may pass through libtiff's frames.
    try {
        return static_cast<tmsize_t>(
            tiff->ReadOn({static_cast<std::uint8_t*>(bytes), static_cast<std::size_t>(count)}));
    } catch (...) {
        if (!tiff->stopped_)
            tiff->stopped_ = std::current_exception();
        return -1;
    }
}

toff_t TiffFile::OnSeek(thandle_t self, toff_t offset, int from) {
    auto* tiff = static_cast<TiffFile*>(self);
    const std::int64_t base = from == SEEK_CUR ? tiff->position_ : from == SEEK_END ? tiff->Size() : 0;
    const std::int64_t target = base + static_cast<std::int64_t>(offset);
    // libtiff reads offsets from the file; one outside it is refused here, whatever libtiff makes of it.
    if (target < 0 || target > tiff->Size())
        return static_cast<toff_t>(-1);
    tiff->position_ = target;
    return static_cast<toff_t>(target);
}

toff_t TiffFile::OnSize(thandle_t self) {
    return static_cast<toff_t>(static_cast<TiffFile*>(self)->Size());
}
