#pragma once

#include "component/storage/LibraryFile.h"
#include "component/storage/TileDirectory.h"

#include <functional>
#include <unordered_map>

/// Which map or icon each blob and each page of a file belongs to. A blob belongs to one map, whose tiles may
/// share it, or to one icon; a page belongs to one map.
class Belonging {
public:
    /// Told of an owner that names what another one had before it: both, as in a sentence, and how much.
    using Shared = std::function<void(const std::string& owner, const std::string& other, std::int64_t)>;

    Belonging() = default;
    explicit Belonging(Shared shared) : shared_(std::move(shared)) {}

    /// Gives how much of it another one had before. Throws FileDamaged for a page that cannot be read, unless
    /// it is to be passed over.
    std::int64_t Add(const MapState& map, bool passOverDamage = false);
    std::int64_t Add(const IconState& icon);

    bool HasBlob(std::int64_t number) const { return blobs_.contains(number); }
    bool HasPage(std::int64_t number) const { return pages_.contains(number); }
    /// The largest number that something names.
    std::int64_t Largest() const { return largest_; }

private:
    using Owners = std::unordered_map<std::int64_t, std::size_t>;
    void Claim(Owners& owners, std::int64_t number);
    void Begin(std::string owner);
    std::int64_t TellShared() const;

    Shared shared_;
    std::vector<std::string> names_;
    std::unordered_map<std::size_t, std::int64_t> others_; ///< of the owner being added
    Owners blobs_;
    Owners pages_;
    std::int64_t largest_ = 0;
};
