#pragma once

#include "component/readers/common/ImageFile.h"

#include <tiffio.h>

#include <cstdarg>
#include <cstdint>
#include <exception>
#include <filesystem>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <utility>
#include <vector>

/// A TIFF file opened through libtiff at its first page. Bytes come from an ImageFile, never from a memory
/// map: another program that shortens the file would end this one. libtiff's complaints stay with the object,
/// so that several files can be read at the same time and nothing is printed.
class TiffFile {
public:
    /// Throws what ImageFile throws, ImageDamaged or ImageNotReadable.
    explicit TiffFile(const std::filesystem::path& path);
    /// A file that is not on the disk: `head`, followed by a range of another file's bytes. Throws the same.
    TiffFile(const TiffFile& other, std::vector<std::uint8_t> head, std::int64_t begin, std::int64_t length);
    TiffFile(const TiffFile&) = delete;
    TiffFile& operator=(const TiffFile&) = delete;

    ::TIFF* Handle() const { return handle_.get(); }
    const std::filesystem::path& Path() const { return file_->Path(); }
    std::int64_t Size() const { return size_; }

    /// Stored bytes from a place in the file, as many as there are. Throws FileNotReadable.
    std::size_t ReadAt(std::int64_t offset, std::span<std::uint8_t> bytes);
    /// Called now and then while libtiff reads; what it throws comes out of the next Check.
    void PauseWith(std::function<void()> pause) { pause_ = std::move(pause); }
    const std::function<void()>& Pause() const { return pause_; }

    /// A tag of one number, or the standard's default, or else `otherwise`.
    std::uint16_t Tag16(std::uint32_t tag, std::uint16_t otherwise) const;
    std::uint32_t Tag32(std::uint32_t tag, std::uint32_t otherwise) const;

    /// Whether a colour map stands in the file but could not be read. libtiff then calls the indices greys.
    bool HasLostColourMap() const { return colourMapLost_; }

    /// From here on what libtiff complains of is damage; what it said of tags before is no reason for it.
    void ForgetComplaints();
    /// Throws ImageDamaged when a call failed or libtiff complained of the pixels.
    void Check(bool succeeded) const;
    [[noreturn]] void ThrowComplaint() const;

private:
    struct Close {
        void operator()(::TIFF* handle) const { TIFFClose(handle); }
    };

    void Open();
    std::size_t ReadOn(std::span<std::uint8_t> bytes);

    static int OnError(::TIFF*, void* self, const char* module, const char* format, std::va_list arguments);
    static int OnWarning(::TIFF*, void* self, const char* module, const char* format, std::va_list arguments);
    static tmsize_t OnRead(thandle_t self, void* bytes, tmsize_t count);
    static toff_t OnSeek(thandle_t self, toff_t offset, int from);
    static toff_t OnSize(thandle_t self);

    std::shared_ptr<ImageFile> file_;
    const std::vector<std::uint8_t> head_; ///< stands before the file's bytes from begin_ on
    const std::int64_t begin_ = 0;
    const std::int64_t size_;
    std::int64_t position_ = 0;
    std::string complaint_;
    std::string hint_; ///< the last thing that was said and is no complaint
    bool colourMapLost_ = false;
    std::function<void()> pause_;
    std::exception_ptr stopped_;            ///< what ended the reading: a pause, or the system
    std::unique_ptr<::TIFF, Close> handle_; ///< last, for closing it calls back
};
