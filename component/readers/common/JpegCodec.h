#pragma once

#include "base/LibraryGuard.h"
#include "component/readers/common/JpegCoefficients.h"

#include <cstdint>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <functional>
#include <span>
#include <utility>
// The library's header needs the C stream type first.
#include <jpeglib.h>

/// Where the bytes of a JPEG picture come from.
struct JpegSource {
    std::filesystem::path path; ///< of the file, for errors
    /// The next bytes, none at the end. They must stay until the next call. May throw.
    std::function<std::span<const std::uint8_t>()> next;
};

/// The codec library at work on one JPEG picture. Each step throws ComponentError, naming the file, when the
/// library cannot go on, and when it would go on with invented pixels.
class JpegCodec {
public:
    /// Reads the picture's header, after the tables that are kept apart from it, if any. What memory cannot
    /// hold goes through a SpoolFile in the folder.
    JpegCodec(JpegSource source, const std::filesystem::path& spoolFolder,
              std::span<const std::uint8_t> tables = {});
    ~JpegCodec();
    JpegCodec(const JpegCodec&) = delete;
    JpegCodec& operator=(const JpegCodec&) = delete;

    /// What the header says; the colour spaces may be set before the first row.
    jpeg_decompress_struct& Header() { return codec_; }
    /// Called after every few rows of every scan; may throw.
    void PauseWith(std::function<void()> pause) { pause_ = std::move(pause); }

    /// Decodes the next row. The first one of a file with several scans waits for the whole file.
    void ReadRow(std::uint8_t* row);
    /// After the last row: reads on to the end mark, so that a file cut in its last bytes is noticed too.
    void Finish();
    /// Whether the end mark was missing, though no pixel is.
    bool EndMarkIsMissing() const { return endIsMissing_; }

private:
    static void OnError(j_common_ptr codec);
    static void OnMessage(j_common_ptr codec, int level);
    static void OnProgress(j_common_ptr codec);
    static boolean OnEmpty(j_decompress_ptr codec);
    static void OnSkip(j_decompress_ptr codec, long bytes);
    friend JpegCoefficients& CoefficientsOf(j_common_ptr codec);

    template <class Call>
    void Guarded(const Call& call) {
        if (!RunGuarded(exit_, call))
            ThrowReason();
    }
    /// Runs what may throw inside the library's frames; false when it has thrown.
    template <class Call>
    bool Kept(const Call& call);
    void Prepare();
    void ReadHeader(std::span<const std::uint8_t> tables);
    std::span<const std::uint8_t> NextBytes();
    [[noreturn]] void ThrowReason() const;
    bool IsOfMissingEnd(int warning) const;
    bool LacksScans() const;

    JpegSource source_;
    LibraryExit exit_;
    std::exception_ptr failure_; ///< of the source or the pause
    JpegCoefficients coefficients_;
    jpeg_error_mgr errors_{};
    jpeg_progress_mgr watch_{};
    jpeg_source_mgr bytes_{};
    jpeg_decompress_struct codec_{};
    std::function<void()> pause_;
    bool headerIsRead_ = false;
    bool started_ = false;
    bool endIsMissing_ = false;
    std::int64_t row_ = 0;
};
