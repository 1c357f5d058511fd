// Keys in memory: no core dump carries them away, and no copy of the text is left behind.

#include "tests/component/LibraryFixture.h"

#include <sys/prctl.h>
#include <sys/resource.h>

#include <cstring>
#include <fstream>
#include <sstream>

namespace {

struct Range {
    const char* begin;
    const char* end;
};

/// The memory that programs write to: heap and what lies beside it, of every thread.
std::vector<Range> WritableMemory() {
    std::vector<Range> ranges;
    std::ifstream maps("/proc/self/maps");
    for (std::string line; std::getline(maps, line);) {
        std::uintptr_t begin = 0, end = 0;
        char dash = 0;
        std::string rights, offset, device, inode, name;
        std::istringstream(line) >> std::hex >> begin >> dash >> end >> rights >> offset >> device >> inode >>
            name;
        if (rights == "rw-p" && (name.empty() || name == "[heap]"))
            ranges.push_back({reinterpret_cast<const char*>(begin), reinterpret_cast<const char*>(end)});
    }
    return ranges;
}

__attribute__((no_sanitize("address"))) int CountInMemory(const std::string& text) {
    int count = 0;
    for (const Range& range : WritableMemory())
        for (const char* at = range.begin; at + text.size() <= range.end;) {
            at = static_cast<const char*>(
                memmem(at, static_cast<std::size_t>(range.end - at), text.data(), text.size()));
            if (at == nullptr)
                break;
            ++count;
            ++at;
        }
    return count;
}

class KeyMemory : public LibraryTest {};

/// Long enough to lie on the heap.
std::string MakeKey() {
    std::string key;
    for (int i = 0; i < 48; ++i)
        key += static_cast<char>('a' + (i * 7 + 3) % 23);
    return key;
}

} // namespace

/// The first of all: a key takes the right to core files for good.
TEST_F(KeyMemory, AllowsNoCoreFileOnceAKeyIsThere) {
    rlimit limit{4096, 4096};
    if (setrlimit(RLIMIT_CORE, &limit) != 0)
        GTEST_SKIP() << "core files are forbidden already";
    SaveRichLibrary(PathOf("sealed.Atlavex"), MakeKey());
    getrlimit(RLIMIT_CORE, &limit);
    EXPECT_EQ(limit.rlim_cur, 0U);
}

TEST_F(KeyMemory, LeavesNoCoreDumpOnceAKeyIsThere) {
    prctl(PR_SET_DUMPABLE, 1);
    SaveRichLibrary(PathOf("plain.Atlavex"));
    Open(PathOf("plain.Atlavex"));
    EXPECT_EQ(prctl(PR_GET_DUMPABLE), 1) << "without a key there is nothing to hide";
    SaveRichLibrary(PathOf("sealed.Atlavex"), MakeKey());
    EXPECT_EQ(prctl(PR_GET_DUMPABLE), 0);
}

TEST_F(KeyMemory, HoldsNoCopyOfTheKeyAfterSavingAndLoading) {
    const std::string key = MakeKey();
    const auto library = NewLibrary();
    AddMap(*library, MakeSheet(PixelFormat::Rgb, 100, 100));
    // The middle of it: the allocator writes over the first bytes of what it takes back.
    const std::string middle = key.substr(24, 16);
    const int before = CountInMemory(middle);
    // After each: the next one may write over what the last one left.
    library->SaveToFile(PathOf("sealed.Atlavex"), key);
    EXPECT_EQ(CountInMemory(middle), before);
    library->LoadFromFile(PathOf("sealed.Atlavex"), key);
    EXPECT_EQ(CountInMemory(middle), before);
    library->SaveToFile(PathOf("sealed.Atlavex"), key);
    EXPECT_EQ(CountInMemory(middle), before);
}
