#pragma once

#include "base/Bytes.h"
#include "base/FileDescriptor.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <vector>

/// The rows of a database whose structure may be broken, read page by page without SQLite: every leaf page
/// says by itself which rows it holds, so that what is damaged elsewhere does not hide them. The file is only
/// read. Which table a row belongs to is not known, nor whether it is still a row: whoever reads compares
/// digests.
class PageScan {
public:
    /// A row of tables whose first column is the row's number: its further columns are blobs.
    struct Row {
        std::int64_t number = 0;
        std::vector<std::uint64_t> lengths; ///< of the blobs
        std::uint32_t page = 0;             ///< from 1
        std::uint32_t cell = 0;             ///< where in the page it begins
        bool isFree = false;                ///< its page is one that the file calls free
    };

    /// Throws FileNotFound, FileNotReadable.
    explicit PageScan(std::filesystem::path file);

    const std::filesystem::path& Path() const { return path_; }
    std::uint32_t Pages() const { return pages_; }
    /// Shows all rows that can be recognised, page after page.
    void ForEachRow(const std::function<void(const Row&)>& see) const;
    /// The row's blobs one after the other; nothing when a page of them is not there.
    std::optional<Bytes> BlobsOf(const Row& row) const;

private:
    bool ReadPage(std::uint32_t page, Bytes& bytes) const;
    std::vector<bool> FreePages() const;
    void ShowLeaf(std::uint32_t page, const Bytes& bytes, bool isFree,
                  const std::function<void(const Row&)>& see) const;

    std::filesystem::path path_;
    FileDescriptor file_;
    std::uint32_t pages_ = 0;
};
