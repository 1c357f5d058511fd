#include "component/storage/Belonging.h"

#include <algorithm>

void Belonging::Begin(std::string owner) {
    names_.push_back(std::move(owner));
    others_.clear();
}

void Belonging::Claim(Owners& owners, std::int64_t number) {
    largest_ = std::max(largest_, number);
    const auto [place, isNew] = owners.try_emplace(number, names_.size());
    if (!isNew && place->second != names_.size())
        ++others_[place->second];
}

std::int64_t Belonging::TellShared() const {
    std::int64_t all = 0;
    for (const auto& [other, count] : others_) {
        all += count;
        if (shared_)
            shared_(names_.back(), names_[other - 1], count);
    }
    return all;
}

std::int64_t Belonging::Add(const MapState& map, bool passOverDamage) {
    Begin("map '" + map.Name() + "'");
    for (const PageRef& page : map.record.pages)
        Claim(pages_, page.number);
    const PyramidLayout layout = map.record.Layout();
    TileReader reader(map.container, layout, map.record.pages, map.Name());
    for (std::int64_t entry = 0; entry < layout.Entries(); ++entry) {
        try {
            Claim(blobs_, reader.Entry(entry).number);
        } catch (const ComponentError& error) {
            if (!passOverDamage || error.Number() != ErrorNumber::FileDamaged)
                throw;
            entry += EntriesPerPage - 1 - entry % EntriesPerPage;
        }
    }
    return TellShared();
}

std::int64_t Belonging::Add(const IconState& icon) {
    Begin("icon '" + icon.Name() + "'");
    Claim(blobs_, icon.record.picture.number);
    return TellShared();
}
