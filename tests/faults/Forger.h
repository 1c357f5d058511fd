#pragma once

#include "component/storage/FileHeader.h"
#include "component/storage/LibraryState.h"
#include "component/storage/files/Database.h"

#include <filesystem>
#include <functional>

/// Changes a plain library as anybody can who knows the format: every digest is right afterwards, whatever
/// the content is worth.
class Forger {
public:
    explicit Forger(const std::filesystem::path& file);
    /// Makes the digests anew and puts the header in its place.
    ~Forger();
    Forger(const Forger&) = delete;
    Forger& operator=(const Forger&) = delete;

    FileHeader& Header() { return header_; }
    MapRecord Map(std::int64_t number);
    void PutMap(std::int64_t number, const MapRecord& record);
    IconRecord Icon(std::int64_t number);
    void PutIcon(std::int64_t number, const IconRecord& record);
    std::vector<BlobRef> Page(const PageRef& page);
    /// Writes the page under its number; gives its new digest.
    PageRef PutPage(std::int64_t number, const std::vector<BlobRef>& entries);
    /// Puts other bytes in a blob's place; gives the entry for it.
    BlobRef PutBlob(std::int64_t number, ByteSpan bytes);
    void Remove(const std::string& table, std::int64_t number) {
        Run("DELETE FROM " + table + " WHERE id = " + std::to_string(number));
    }
    /// The numbers of a table's rows in order.
    std::vector<std::int64_t> Numbers(const std::string& table);
    /// Any statement.
    void Run(const std::string& sql) { database_.Execute(sql.c_str()); }

private:
    Bytes Value(const char* sql, std::int64_t number);
    void Put(const char* sql, std::int64_t number, ByteSpan bytes);

    Database database_;
    FileHeader header_;
};

/// Positions of the maps in a library of MakeLibrary: their numbers in order.
std::vector<std::int64_t> MapNumbers(const std::filesystem::path& file);
