#include "component/storage/files/JournalCheck.h"

#include "component/storage/files/Database.h"

#include <sqlite3.h>

#include <array>
#include <bit>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

namespace {

constexpr std::string_view JournalMagic("\xd9\xd5\x05\xf9\x20\xa1\x63\xd7", 8);
constexpr std::string_view DatabaseMagic("SQLite format 3\0", 16);
constexpr std::int64_t HeaderBytes = 28;
/// Page number in front of a page's former content, checksum behind it.
constexpr std::int64_t RecordOverhead = 8;
constexpr std::uint32_t CountIsTheRest = 0xffffffff;
constexpr std::uint32_t SmallestSector = 32;
constexpr std::uint32_t LargestSector = 65536;

/// Bytes of a file; nothing where it has not so many.
template <std::size_t Count>
std::optional<std::array<char, Count>> Read(sqlite3_file& file, std::int64_t at) {
    std::array<char, Count> bytes{};
    if (at < 0 || file.pMethods->xRead(&file, bytes.data(), Count, at) != SQLITE_OK)
        return std::nullopt;
    return bytes;
}

std::uint32_t BigEndian(std::span<const char> bytes, std::size_t at) {
    std::uint32_t value = 0;
    for (std::size_t i = 0; i < 4; ++i)
        value = value << 8U | static_cast<std::uint8_t>(bytes[at + i]);
    return value;
}

std::int64_t SizeOf(sqlite3_file& file) {
    sqlite3_int64 size = 0;
    return file.pMethods->xFileSize(&file, &size) == SQLITE_OK ? size : 0;
}

/// The head of one section of a journal.
struct SectionHead {
    std::uint32_t records;
    std::uint32_t formerPages; ///< of the database, before the transaction
    std::uint32_t sector;
    std::uint32_t page;
};

/// Nothing when SQLite would take it for the journal's end.
std::optional<SectionHead> ReadHead(sqlite3_file& journal, std::int64_t at) {
    const auto bytes = Read<HeaderBytes>(journal, at);
    if (!bytes || !std::string_view(bytes->data(), bytes->size()).starts_with(JournalMagic))
        return std::nullopt;
    return SectionHead{BigEndian(*bytes, 8), BigEndian(*bytes, 16), BigEndian(*bytes, 20),
                       BigEndian(*bytes, 24)};
}

/// What the first page says of the whole file.
struct FileState {
    std::uint32_t changes; ///< grows by one with every transaction
    std::uint32_t pages;
};

/// Nothing when it is not the start of a database.
std::optional<FileState> ReadState(sqlite3_file& file, std::int64_t at) {
    const auto start = Read<100>(file, at);
    if (!start || !std::string_view(start->data(), start->size()).starts_with(DatabaseMagic))
        return std::nullopt;
    return FileState{BigEndian(*start, 24), BigEndian(*start, 28)};
}

/// Where the former content of the first page stands in the journal.
std::optional<std::int64_t> FindFirstPage(sqlite3_file& journal, const SectionHead& first) {
    const std::int64_t size = SizeOf(journal);
    const std::int64_t record = first.page + RecordOverhead;
    std::optional<SectionHead> head = first;
    for (std::int64_t at = 0; head; head = ReadHead(journal, at)) {
        at += first.sector;
        std::int64_t left = head->records == CountIsTheRest ? (size - at) / record : head->records;
        for (; left > 0 && at + record <= size; --left, at += record)
            if (const auto number = Read<4>(journal, at); number && BigEndian(*number, 0) == 1)
                return at + 4;
        at = (at + first.sector - 1) / first.sector * first.sector; // a section starts with a sector
    }
    return std::nullopt;
}

/// Whether the transaction that wrote the journal can have led from the former state to the present one. It
/// writes the first page last, with one change more, and takes no page from the file.
bool CanFollow(const std::optional<FileState>& former, const FileState& present, std::uint32_t formerPages) {
    if (!former)
        return present.pages == formerPages; // the first page has not been touched yet
    if (present.changes == former->changes)
        return present.pages == formerPages && former->pages == formerPages;
    return present.changes == former->changes + 1 && present.pages >= formerPages;
}

bool Contradicts(sqlite3_file& journal, const SectionHead& head, sqlite3_file& database) {
    if (head.page != PageSize || SizeOf(database) < head.formerPages * PageSize)
        return true;
    const std::optional<std::int64_t> firstPage = FindFirstPage(journal, head);
    const std::optional<FileState> present = ReadState(database, 0);
    // A first page that was torn when the power failed can be told from nothing; the journal restores it.
    if (!present)
        return !firstPage;
    return !CanFollow(firstPage ? ReadState(journal, *firstPage) : std::nullopt, *present, head.formerPages);
}

/// A journal of a transaction over several databases ends with the name of a file that lists them all, and
/// SQLite removes the file of that name, whatever it is.
bool NamesAnotherFile(sqlite3_file& journal) {
    const auto end = Read<8>(journal, SizeOf(journal) - 8);
    return end && std::string_view(end->data(), end->size()) == JournalMagic;
}

bool SqliteReads(const SectionHead& head) {
    return std::has_single_bit(head.sector) && head.sector >= SmallestSector &&
           head.sector <= LargestSector && std::has_single_bit(head.page) && head.page >= 512 &&
           head.page <= 65536;
}

} // namespace

std::string ReasonAgainstJournal(sqlite3_file& journal, sqlite3_file& database) {
    if (NamesAnotherFile(journal))
        return "names a third file, as none of a map library does";
    const std::optional<SectionHead> head = ReadHead(journal, 0);
    if (head && SqliteReads(*head) && Contradicts(journal, *head, database))
        return "was written for another file, or for another state of this one";
    return {};
}
