#pragma once

#include <string>
#include <vector>

class Metadata;

/// What is done to the custom metadata of one object while its dialog is open, until it is written.
/// Entries have a number that stays the same; positions are those in the dialog's list, counted from 1.
class MetadataEdits {
public:
    /// An entry that the object has.
    int AddRead(std::string key, std::string value);
    /// An entry that the user adds, with an empty value.
    int Add(std::string key);
    void Change(int entry, std::string value);
    /// The value that the entry had in the object; empty for one that the user added.
    const std::string& ReadValue(int entry) const { return EntryAt(entry).read; }
    /// An entry of the object is remembered as removed. For one that the user added, the entry that was added
    /// `position`th is forgotten, which is another one when entries of the object stand before it; when
    /// there are not so many, the entry itself. Meant.
    void Remove(int entry, int position);

    /// Removes what was removed, sets what was added, then sets what was changed of the object's own.
    void WriteTo(Metadata& object) const;

private:
    struct Entry {
        std::string key;
        std::string value;
        std::string read; ///< the value in the object
        bool isNew = false;
        bool isChanged = false;
        bool isRemoved = false;
    };

    const Entry& EntryAt(int entry) const { return entries_.at(static_cast<std::size_t>(entry)); }
    Entry& EntryAt(int entry) { return entries_.at(static_cast<std::size_t>(entry)); }
    int Append(Entry entry);

    std::vector<Entry> entries_;
    std::vector<int> added_;
    std::vector<int> removed_;
};
