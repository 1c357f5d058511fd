#include "dialogs/MetadataEdits.h"

#include "component/Metadata.h"

#include <utility>

int MetadataEdits::Append(Entry entry) {
    entries_.push_back(std::move(entry));
    return static_cast<int>(entries_.size()) - 1;
}

int MetadataEdits::AddRead(std::string key, std::string value) {
    std::string read = value;
    return Append({std::move(key), std::move(value), std::move(read)});
}

int MetadataEdits::Add(std::string key) {
    const int entry = Append({std::move(key), {}, {}, true});
    added_.push_back(entry);
    return entry;
}

void MetadataEdits::Change(int entry, std::string value) {
    EntryAt(entry).value = std::move(value);
    EntryAt(entry).isChanged = true;
}

void MetadataEdits::Remove(int entry, int position) {
    EntryAt(entry).isRemoved = true;
    if (!EntryAt(entry).isNew)
        removed_.push_back(entry);
    else if (position <= static_cast<int>(added_.size()))
        added_.erase(added_.begin() + (position - 1));
    else
        std::erase(added_, entry);
}

void MetadataEdits::WriteTo(Metadata& object) const {
    for (const int entry : removed_)
        object.RemoveMetadata(EntryAt(entry).key);
    for (const int entry : added_)
        object.SetMetadata(EntryAt(entry).key, EntryAt(entry).value);
    for (const Entry& entry : entries_)
        if (!entry.isNew && entry.isChanged && !entry.isRemoved)
            object.SetMetadata(entry.key, entry.value);
}
