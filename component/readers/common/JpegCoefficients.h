#pragma once

#include "base/LibraryGuard.h"
#include "component/readers/common/SpoolFile.h"

#include <cstdint>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <memory>
#include <vector>
// The library's header needs the C stream type first.
#include <jpeglib.h>

/// Most memory for the coefficients of one component, unless the few rows of blocks that the library works on
/// at a time take more.
inline constexpr std::int64_t JpegWindowBytes = std::int64_t{32} << 20;

/// Holds the coefficients of JPEG files with several scans, all of which must be read before the first pixel
/// is known. The library itself would keep them in memory, two bytes a sample: 6 gigabytes for a picture of
/// one gigapixel. Here each component has a window of some rows of blocks in memory; what lies outside stands
/// in a temporary file, which small images never need.
class JpegCoefficients {
public:
    JpegCoefficients(LibraryExit& exit, std::filesystem::path spoolFolder);
    ~JpegCoefficients();
    JpegCoefficients(const JpegCoefficients&) = delete;
    JpegCoefficients& operator=(const JpegCoefficients&) = delete;

    /// Takes the place of the library's own arrays; codec.client_data must be made to lead to this object by
    /// CoefficientsOf.
    void Attach(jpeg_decompress_struct& codec);

    /// After the library was left: throws what went wrong here, if it was here.
    void ThrowIfFailed() const;

private:
    struct Array;

    static jvirt_barray_ptr OnRequest(j_common_ptr codec, int pool, boolean zeroed, JDIMENSION blocksInRow,
                                      JDIMENSION rows, JDIMENSION rowsAtOnce);
    static JBLOCKARRAY OnAccess(j_common_ptr codec, jvirt_barray_ptr array, JDIMENSION firstRow,
                                JDIMENSION rows, boolean writable);

    Array* Request(std::int64_t blocksInRow, std::int64_t rows, std::int64_t rowsAtOnce);
    JBLOCKARRAY Access(Array& array, std::int64_t firstRow, std::int64_t rows, bool writable);
    void MoveWindow(Array& array, std::int64_t firstRow);

    LibraryExit& exit_;
    std::exception_ptr failure_;
    std::vector<std::unique_ptr<Array>> arrays_;
    std::filesystem::path spoolFolder_;
    std::unique_ptr<SpoolFile> spool_; ///< made when the first window moves
    std::int64_t spoolBytes_ = 0;      ///< taken by the arrays so far
};

/// The object that serves this codec; defined by the owner of both.
JpegCoefficients& CoefficientsOf(j_common_ptr codec);
