#pragma once

#include "base/LibraryGuard.h"
#include "base/Progress.h"
#include "component/readers/common/JpegCoefficients.h"
#include "component/readers/common/ImageFile.h"

#include <cstdint>
#include <cstdio>
// The library's header needs the C stream type first.
#include <jpeglib.h>

/// The codec library at work on one JPEG file. Each step throws ComponentError, naming the file, when the
/// library cannot go on, and when it would go on with invented pixels.
class JpegCodec {
public:
    /// Reads the file's header. What memory cannot hold goes through a SpoolFile in the folder.
    JpegCodec(ImageFile& file, const std::filesystem::path& spoolFolder);
    ~JpegCodec();
    JpegCodec(const JpegCodec&) = delete;
    JpegCodec& operator=(const JpegCodec&) = delete;

    /// What the header says; the colour space of the answer may be set before the first row.
    jpeg_decompress_struct& Header() { return codec_; }
    void WatchForCancel(const Progress& progress) { progress_ = &progress; }

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
    friend JpegCoefficients& CoefficientsOf(j_common_ptr codec);

    template <class Call>
    void Guarded(const Call& call) {
        if (!RunGuarded(exit_, call))
            ThrowReason();
    }
    [[noreturn]] void ThrowReason() const;
    bool IsOfMissingEnd(int warning) const;
    bool LacksScans() const;

    ImageFile& file_;
    LibraryExit exit_;
    JpegCoefficients coefficients_;
    jpeg_error_mgr errors_{};
    jpeg_progress_mgr watch_{};
    jpeg_decompress_struct codec_{};
    const Progress* progress_ = nullptr;
    bool headerIsRead_ = false;
    bool started_ = false;
    bool endIsMissing_ = false;
    std::int64_t row_ = 0;
};
