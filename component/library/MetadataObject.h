#pragma once

#include "component/library/MetadataEditing.h"

/// Implements Metadata for a map or an icon: `Interface` is AtlavexMap or AtlavexIcon, `State` what the
/// library holds for it. Throws the error of `Gone` once the library holds it no more.
template <typename Interface, typename State, ErrorNumber Gone>
class MetadataObject : public Interface {
public:
    explicit MetadataObject(std::shared_ptr<State> state) : state_(std::move(state)) {}

    /// The library holds the object no more.
    void Detach() { state_ = nullptr; }

    std::string Name() const override { return Held().Name(); }
    std::string GetMetadata(const std::string& key) const override {
        return MetadataValue(Held().metadata, key);
    }
    void SetMetadata(const std::string& key, const std::string& value) override {
        SetMetadataValue(Held().metadata, key, value);
    }
    void RemoveMetadata(const std::string& key) override { RemoveMetadataKey(Held().metadata, key); }
    std::int32_t MetadataCount() const override { return static_cast<std::int32_t>(Held().metadata.size()); }
    std::string MetadataKeyAt(std::int32_t position) const override {
        return MetadataAt(Held().metadata, position).first;
    }
    std::string MetadataValueAt(std::int32_t position) const override {
        return MetadataAt(Held().metadata, position).second;
    }

protected:
    State& Held() const {
        if (!state_)
            throw ComponentError(Gone, "The library holds this object no more.");
        return *state_;
    }

private:
    std::shared_ptr<State> state_;
};
