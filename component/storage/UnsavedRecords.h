#pragma once

#include "component/storage/ByteCodec.h"
#include "component/storage/LibraryFile.h"

#include <map>
#include <set>

// What a kept scratch says beside its tiles, so that a program that was killed loses nothing:
// docs/scratch.md.

/// Says what is malformed as damage of this file.
template <typename Read>
auto ReadingFrom(const Database& database, const Read& read) {
    try {
        return read();
    } catch (const MalformedRecord& malformed) {
        database.Damaged(malformed.what());
    }
}

/// What can be read of unsaved work without a key.
struct UnsavedSummary {
    std::string library;                    ///< path of the file that it belongs to; empty: of none yet
    std::string time;                       ///< local, when it was written
    std::array<std::uint8_t, 16> session{}; ///< the same in all scratches of one library in one program
    std::int64_t revision = 0;              ///< grows with every writing
    std::vector<std::string> scratches;     ///< all that hold tiles of it
    std::int32_t changedMaps = 0;           ///< new ones too
    std::int32_t removedMaps = 0;
    std::int32_t changedIcons = 0;
    std::int32_t removedIcons = 0;
    Digest state{}; ///< of the state's row as stored

    Bytes Encode() const;
    /// Throws MalformedRecord.
    static UnsavedSummary Decode(ByteSpan bytes);
};

/// Which maps and icons there were, and which of their records the scratch holds.
struct UnsavedState {
    struct Object {
        RecordKey key; ///< of its map or icon record
        std::string name;
    };
    std::int64_t nextNumber = 1;
    std::vector<Object> objects;         ///< all that there were, in their order
    std::vector<RecordKey> removed;      ///< of the file's that were there no more
    std::map<RecordKey, Digest> records; ///< those in the scratch, with their digests as stored

    Bytes Encode() const;
    static UnsavedState Decode(ByteSpan bytes);
};

/// Keeps what is not saved of one library in its scratches.
class UnsavedKeeper {
public:
    /// What the work is done on: path and header of the file, or those of a library that has none yet.
    struct Base {
        std::string path;
        LibraryFile::HeaderRow row;
    };

    UnsavedKeeper();

    /// This is what the file holds now: nothing is unsaved, and no scratch is used any more.
    void Saved(const LibraryState& state);
    /// Whether something of the state is not in the file. What is looked at alone, the zoom, does not count.
    bool IsUnsaved(const LibraryState& state) const;
    /// From now on the work is kept in this scratch too.
    void Use(const std::shared_ptr<Container>& scratch);
    /// Writes what has changed since the last time into every scratch, each in one transaction. Where nothing
    /// is unsaved the scratches say so.
    void Keep(const LibraryState& state, const Base& base, std::int64_t nextNumber);
    /// Whether the scratches hold work that is not saved.
    bool Holds() const { return holds_; }

private:
    struct Changes {
        std::set<RecordKey> changed;
        std::vector<RecordKey> removed;
    };
    struct Scratch {
        std::weak_ptr<Container> container;
        RecordTable kept;
    };

    Changes ChangesOf(const LibraryState& state) const;
    UnsavedSummary SummaryOf(const Changes& changes, const Base& base) const;
    void Forget();
    static void PutRecords(Container& container, RecordTable& kept, const LibraryState& state,
                           const Changes& changes);

    std::array<std::uint8_t, 16> session_{};
    std::int64_t revision_ = 0;
    std::map<RecordKey, Digest> saved_;
    std::vector<Scratch> scratches_;
    bool holds_ = false;
};

/// A scratch that a killed program left, opened and locked.
class LeftScratch {
public:
    /// Throws FileLocked while a program uses it, and what opening a database throws.
    explicit LeftScratch(const std::filesystem::path& path);

    const UnsavedSummary& Summary() const { return summary_; }
    const LibraryFile::HeaderRow& Base() const { return base_; }
    const FileHeader& Header() const { return header_; }

    /// The scratch with its tiles, which holds the lock as long as it lives. To be called once.
    std::shared_ptr<Container> Open(std::shared_ptr<const Envelope> envelope);

private:
    class Held;
    std::shared_ptr<Held> held_;
    UnsavedSummary summary_;
    LibraryFile::HeaderRow base_;
    FileHeader header_;
};

/// What can be said of a scratch without a key, also of one that is in use.
struct UnsavedOverview {
    UnsavedSummary summary;
    bool isSealed = false;
};
/// Throws as LeftScratch does, but FileLocked for a program that has the scratch.
UnsavedOverview ReadUnsavedOverview(const std::filesystem::path& scratch);

/// The state that a scratch holds, and a record of it. Throws FileDamaged.
UnsavedState ReadUnsavedState(Container& scratch, const UnsavedSummary& summary);
Bytes ReadUnsavedRecord(Container& scratch, const UnsavedState& state, const RecordKey& key);
