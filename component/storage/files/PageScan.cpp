#include "component/storage/files/PageScan.h"

#include "base/ComponentError.h"
#include "base/Paths.h"
#include "base/StandardErrors.h"
#include "component/storage/files/Database.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

// By the file format of SQLite 3, "Database File Format", sections 1.5 (free pages), 1.6 (b-tree pages), 1.7
// (overflow pages) and 2.1 (records).

namespace {

constexpr std::size_t Usable = PageSize; // a library reserves no bytes at a page's end
constexpr std::size_t MostLocal = Usable - 35;
constexpr std::size_t LeastLocal = (Usable - 12) * 32 / 255 - 23;
constexpr std::uint8_t LeafOfATable = 0x0d;
constexpr std::size_t FirstPageHeader = 100;
constexpr std::size_t LeafHeader = 8;
constexpr std::size_t OverflowLink = 4;
constexpr std::size_t FreeListAt = 32; ///< in the first page

std::uint32_t BigEndian(const Bytes& bytes, std::size_t at, std::size_t count) {
    std::uint32_t value = 0;
    for (std::size_t i = 0; i < count; ++i)
        value = value << 8U | bytes.at(at + i);
    return value;
}

/// Reads one number after the other, of seven bits a byte; false in Good() once one goes beyond the bytes.
class Varints {
public:
    Varints(const Bytes& bytes, std::size_t at) : bytes_(bytes), at_(at) {}

    std::uint64_t Next() {
        std::uint64_t value = 0;
        for (int i = 0; i < 9; ++i) {
            if (at_ >= bytes_.size()) {
                good_ = false;
                return 0;
            }
            const std::uint8_t byte = bytes_[at_++];
            if (i == 8)
                return value << 8U | byte;
            value = value << 7U | (byte & 0x7fU);
            if (byte < 0x80)
                return value;
        }
        return value;
    }
    std::size_t At() const { return at_; }
    bool Good() const { return good_; }

private:
    const Bytes& bytes_;
    std::size_t at_;
    bool good_ = true;
};

std::size_t LocalPart(std::uint64_t payload) {
    if (payload <= MostLocal)
        return static_cast<std::size_t>(payload);
    const std::size_t part =
        LeastLocal + static_cast<std::size_t>((payload - LeastLocal) % (Usable - OverflowLink));
    return part <= MostLocal ? part : LeastLocal;
}

/// A cell of a leaf page.
struct Cell {
    PageScan::Row row;
    std::uint64_t payload = 0;
    std::size_t at = 0;     ///< where the payload begins in the page
    std::size_t header = 0; ///< bytes of the payload in front of the blobs
};

bool ReadColumns(Cell& cell, const Bytes& page) {
    Varints columns(page, cell.at);
    cell.header = static_cast<std::size_t>(columns.Next());
    const std::size_t end = cell.at + cell.header;
    if (!columns.Good() || cell.header > LocalPart(cell.payload) || columns.Next() != 0)
        return false; // the first column is the row's number, which stands elsewhere
    std::uint64_t blobs = 0;
    while (columns.Good() && columns.At() < end) {
        const std::uint64_t type = columns.Next();
        if (type < 12 || type % 2 != 0)
            return false;
        if (type / 2 > cell.payload + 6)
            return false; // longer than the whole
        cell.row.lengths.push_back((type - 12) / 2);
        blobs += cell.row.lengths.back();
    }
    return columns.Good() && columns.At() == end && !cell.row.lengths.empty() &&
           cell.header + blobs == cell.payload;
}

std::optional<Cell> ReadCell(const Bytes& page, std::uint32_t number, std::size_t at) {
    Varints numbers(page, at);
    Cell cell;
    cell.payload = numbers.Next();
    cell.row.number = static_cast<std::int64_t>(numbers.Next());
    cell.row.page = number;
    cell.row.cell = static_cast<std::uint32_t>(at);
    cell.at = numbers.At();
    if (!numbers.Good() || cell.payload > LongestValue + PageSize ||
        cell.at + LocalPart(cell.payload) > page.size() || !ReadColumns(cell, page))
        return std::nullopt;
    return cell;
}

} // namespace

PageScan::PageScan(std::filesystem::path file) : path_(std::move(file)) {
    RequireRegularFile(path_);
    file_ = FileDescriptor(open(path_.c_str(), O_RDONLY | O_CLOEXEC));
    struct stat status {};
    if (!file_.IsOpen() || fstat(file_.Number(), &status) != 0)
        throw ComponentError(ErrorNumber::FileNotReadable, "The file '" + path_.string() +
                                                               "' could not be read: " + SystemReason(errno) +
                                                               ".");
    pages_ = static_cast<std::uint32_t>(std::min<std::int64_t>(status.st_size / PageSize, 0xfffffffe));
}

bool PageScan::ReadPage(std::uint32_t page, Bytes& bytes) const {
    if (page < 1 || page > pages_)
        return false;
    bytes.resize(Usable);
    const off_t at = static_cast<off_t>(page - 1) * PageSize;
    ssize_t got = 0;
    do
        got = pread(file_.Number(), bytes.data(), bytes.size(), at);
    while (got < 0 && errno == EINTR);
    return got == std::ssize(bytes); // a part of the disk that cannot be read is damage too
}

std::vector<bool> PageScan::FreePages() const {
    std::vector<bool> isFree(std::size_t{pages_} + 1);
    Bytes page;
    if (!ReadPage(1, page))
        return isFree;
    std::uint32_t trunk = BigEndian(page, FreeListAt, 4);
    for (std::uint32_t left = pages_; left > 0 && ReadPage(trunk, page) && !isFree[trunk]; --left) {
        isFree[trunk] = true;
        const std::uint32_t count = std::min<std::uint32_t>(BigEndian(page, 4, 4), Usable / 4 - 2);
        for (std::uint32_t i = 0; i < count; ++i)
            if (const std::uint32_t leaf = BigEndian(page, 8 + 4 * std::size_t{i}, 4); leaf <= pages_)
                isFree[leaf] = true;
        trunk = BigEndian(page, 0, 4);
    }
    return isFree;
}

void PageScan::ShowLeaf(std::uint32_t page, const Bytes& bytes, bool isFree,
                        const std::function<void(const Row&)>& see) const {
    const std::size_t start = page == 1 ? FirstPageHeader : 0;
    if (bytes[start] != LeafOfATable)
        return;
    const std::size_t cells = BigEndian(bytes, start + 3, 2);
    for (std::size_t i = 0; i < cells && start + LeafHeader + 2 * i + 2 <= Usable; ++i)
        if (auto cell = ReadCell(bytes, page, BigEndian(bytes, start + LeafHeader + 2 * i, 2))) {
            cell->row.isFree = isFree;
            see(cell->row);
        }
}

void PageScan::ForEachRow(const std::function<void(const Row&)>& see) const {
    const std::vector<bool> isFree = FreePages();
    Bytes bytes;
    for (std::uint32_t page = 1; page <= pages_; ++page)
        if (ReadPage(page, bytes))
            ShowLeaf(page, bytes, isFree[page], see);
}

std::optional<Bytes> PageScan::BlobsOf(const Row& row) const {
    Bytes page;
    if (!ReadPage(row.page, page))
        return std::nullopt;
    const auto cell = ReadCell(page, row.page, row.cell);
    if (!cell || cell->row.number != row.number)
        return std::nullopt;
    const std::size_t local = LocalPart(cell->payload);
    const auto begin = page.begin() + static_cast<std::ptrdiff_t>(cell->at);
    Bytes payload(begin, begin + static_cast<std::ptrdiff_t>(local));
    std::uint32_t next = local < cell->payload && cell->at + local + OverflowLink <= Usable
                             ? BigEndian(page, cell->at + local, OverflowLink)
                             : 0;
    while (payload.size() < cell->payload) {
        if (!ReadPage(next, page))
            return std::nullopt;
        const std::size_t part = std::min<std::size_t>(Usable - OverflowLink, cell->payload - payload.size());
        payload.insert(payload.end(), page.begin() + OverflowLink,
                       page.begin() + static_cast<std::ptrdiff_t>(OverflowLink + part));
        next = BigEndian(page, 0, OverflowLink);
    }
    payload.erase(payload.begin(), payload.begin() + static_cast<std::ptrdiff_t>(cell->header));
    return payload;
}
