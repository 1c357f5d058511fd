// Memory that runs out anywhere in the calls that scale a map.

#include "tests/component/LibraryFixture.h"

#include <cstdlib>
#include <new>

namespace {

/// Allocations of this thread until one fails; below 0: none does.
thread_local int allocationsLeft = -1;

void* Allocate(std::size_t bytes) {
    if (allocationsLeft == 0)
        throw std::bad_alloc();
    if (allocationsLeft > 0)
        --allocationsLeft;
    if (void* memory = std::malloc(bytes == 0 ? 1 : bytes))
        return memory;
    throw std::bad_alloc();
}

} // namespace

void* operator new(std::size_t bytes) {
    return Allocate(bytes);
}
// All forms, so that what one of them gives is never handed to another allocator's.
void* operator new(std::size_t bytes, const std::nothrow_t&) noexcept {
    return std::malloc(bytes == 0 ? 1 : bytes);
}
void operator delete(void* memory, const std::nothrow_t&) noexcept {
    std::free(memory);
}
void operator delete(void* memory) noexcept {
    std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);
}

namespace {

class LackOfMemory : public LibraryTest {
protected:
    void Scale(AtlavexMap& map, double east) const {
        map.SetMapDatum({6378388.0, 0.00672267002233332, -87, -98, -121, 0, 0, 0, 0});
        map.SetMapGrid(1, 32, {0, 9, 0.9996, 500000, 0, 0, 0});
        map.SetGridIdentifier(28);
        map.SetZone(zone_);
        map.SetScalingThreePoints({east, 6310000, 0, 0}, {east + 10000, 6310010, 999, 0},
                                  {east + 10, 6302000, 0, 799});
    }

private:
    const std::string zone_ = "a zone whose name needs memory of its own";
};

} // namespace

TEST_F(LackOfMemory, InAScalingChangesNothing) {
    const auto library = NewLibrary();
    const auto map = AddMap(*library, MakeSheet(PixelFormat::Grey, 1000, 800));
    Scale(*map, 570000);
    const Georeference former = map->MapGeoreference();
    int failures = 0;
    for (bool isScaled = false; !isScaled; ++failures) {
        allocationsLeft = failures;
        try {
            Scale(*map, 600000);
            isScaled = true;
        } catch (const std::exception&) { // whichever the call that met it makes of it
        }
        allocationsLeft = -1;
        if (isScaled)
            break;
        ASSERT_EQ(map->MapGeoreference(), former) << "allocation " << failures;
        EXPECT_NEAR(map->PixelToWorld({0, 0}).x, 570000, 1e-6);
        // Nothing is left for a scaling that gives no system.
        map->SetScalingThreePoints({10, 56, 0, 0}, {11, 56, 999, 0}, {10, 55, 0, 799});
        EXPECT_FALSE(map->HasGrid()) << "allocation " << failures;
        EXPECT_EQ(map->MapGeoreference().datum, std::nullopt);
        Scale(*map, 570000);
    }
    EXPECT_GT(failures, 5);
    EXPECT_NEAR(map->PixelToWorld({0, 0}).x, 600000, 1e-6);
}
