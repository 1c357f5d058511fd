#include "component/readers/common/JpegCoefficients.h"

#include <algorithm>
#include <span>
#include <utility>

namespace {

/// A block as the library's vector code wants it: aligned.
struct alignas(32) Block {
    JCOEF coefficients[DCTSIZE2];
};
static_assert(sizeof(Block) == sizeof(JBLOCK));

} // namespace

/// What the library holds in its hands as an array of blocks.
struct JpegCoefficients::Array {
    std::int64_t blocksInRow = 0;
    std::int64_t rows = 0;
    std::int64_t spoolOffset = 0;    ///< where its rows begin in the temporary file
    std::int64_t firstRow = 0;       ///< the window's
    std::vector<Block> window;       ///< some rows, one after the other
    std::vector<JBLOCKROW> inWindow; ///< a pointer to each of them
    bool changed = false;            ///< the window differs from the file

    std::int64_t WindowRows() const { return static_cast<std::int64_t>(inWindow.size()); }
    std::int64_t RowBytes() const { return blocksInRow * static_cast<std::int64_t>(sizeof(Block)); }
    std::int64_t FileOffset() const { return spoolOffset + firstRow * RowBytes(); }
    /// The window's rows that lie in the image, as bytes.
    std::span<std::uint8_t> Bytes() {
        const std::int64_t used = std::min(WindowRows(), rows - firstRow);
        return {reinterpret_cast<std::uint8_t*>(window.data()), static_cast<std::size_t>(used * RowBytes())};
    }
};

JpegCoefficients::JpegCoefficients(LibraryExit& exit, std::filesystem::path spoolFolder)
    : exit_(exit), spoolFolder_(std::move(spoolFolder)) {}

JpegCoefficients::~JpegCoefficients() = default;

void JpegCoefficients::Attach(jpeg_decompress_struct& codec) {
    codec.mem->request_virt_barray = OnRequest;
    codec.mem->access_virt_barray = OnAccess;
}

void JpegCoefficients::ThrowIfFailed() const {
    if (failure_)
        std::rethrow_exception(failure_);
}

// The two callbacks stand inside the library's frames, which no exception may pass. They leave through the
// library's own way out, once the catch clause and its objects are gone.

jvirt_barray_ptr JpegCoefficients::OnRequest(j_common_ptr codec, int, boolean, JDIMENSION blocksInRow,
                                             JDIMENSION rows, JDIMENSION rowsAtOnce) {
    JpegCoefficients& self = CoefficientsOf(codec);
    try {
        return reinterpret_cast<jvirt_barray_ptr>(self.Request(blocksInRow, rows, rowsAtOnce));
    } catch (const std::exception&) {
        self.failure_ = std::current_exception();
    }
    self.exit_.Leave("no memory for the coefficients");
}

JBLOCKARRAY JpegCoefficients::OnAccess(j_common_ptr codec, jvirt_barray_ptr array, JDIMENSION firstRow,
                                       JDIMENSION rows, boolean writable) {
    JpegCoefficients& self = CoefficientsOf(codec);
    try {
        return self.Access(*reinterpret_cast<Array*>(array), firstRow, rows, writable != FALSE);
    } catch (const std::exception&) {
        self.failure_ = std::current_exception();
    }
    self.exit_.Leave("the temporary file failed");
}

JpegCoefficients::Array* JpegCoefficients::Request(std::int64_t blocksInRow, std::int64_t rows,
                                                   std::int64_t rowsAtOnce) {
    auto array = std::make_unique<Array>();
    array->blocksInRow = blocksInRow;
    array->rows = rows;
    array->spoolOffset = spoolBytes_;
    spoolBytes_ += rows * array->RowBytes();
    const std::int64_t windowRows =
        std::clamp(JpegWindowBytes / array->RowBytes(), std::min(rowsAtOnce, rows), rows);
    array->window.resize(static_cast<std::size_t>(windowRows * blocksInRow));
    for (std::int64_t row = 0; row < windowRows; ++row)
        array->inWindow.push_back(
            reinterpret_cast<JBLOCKROW>(&array->window[static_cast<std::size_t>(row * blocksInRow)]));
    arrays_.push_back(std::move(array));
    return arrays_.back().get();
}

JBLOCKARRAY JpegCoefficients::Access(Array& array, std::int64_t firstRow, std::int64_t rows, bool writable) {
    if (firstRow < array.firstRow || firstRow + rows > array.firstRow + array.WindowRows())
        MoveWindow(array, firstRow);
    array.changed = array.changed || writable;
    return &array.inWindow[static_cast<std::size_t>(firstRow - array.firstRow)];
}

void JpegCoefficients::MoveWindow(Array& array, std::int64_t firstRow) {
    if (!spool_)
        spool_ = std::make_unique<SpoolFile>(spoolFolder_);
    if (array.changed)
        spool_->Write(array.FileOffset(), array.Bytes());
    // The window may reach the image's last rows, but a request lies in it as a whole.
    array.firstRow = firstRow;
    spool_->Read(array.FileOffset(), array.Bytes());
    array.changed = false;
}
