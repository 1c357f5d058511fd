// Temporaries beside a target: their names, what is swept, and what is kept.

#include "base/ComponentError.h"
#include "component/storage/files/FileReplacement.h"
#include "tests/support/TempFolder.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <set>

namespace {

class Replacing : public testing::Test {
protected:
    std::set<std::string> Names() const {
        std::set<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(folder_.Path()))
            names.insert(entry.path().filename().string());
        return names;
    }
    void Replace(const std::string& content, bool keepFormer) const {
        FileReplacement replacement(SystemFiles(), target_);
        WriteWholeFile(replacement.Temporary(), content);
        replacement.Sync();
        replacement.Place(keepFormer ? FileReplacement::Former::Kept : FileReplacement::Former::Ours);
    }

    TempFolder folder_;
    std::filesystem::path target_ = folder_ / "lib.Atlavex";
};

} // namespace

TEST_F(Replacing, MakesATemporaryThatIsHiddenAndForTheOwnerAlone) {
    const FileReplacement replacement(SystemFiles(), target_);
    const std::string name = replacement.Temporary().filename().string();
    EXPECT_EQ(replacement.Temporary().parent_path(), folder_.Path());
    EXPECT_TRUE(name.starts_with(".lib.Atlavex.") && name.ends_with(".tmp")) << name;
    EXPECT_EQ(name.size(), std::string(".lib.Atlavex.0123456789abcdef.tmp").size());
    EXPECT_EQ(std::filesystem::status(replacement.Temporary()).permissions(), std::filesystem::perms{0600});
}

TEST_F(Replacing, LeavesNothingUnlessItTakesPlace) {
    WriteWholeFile(target_, "former");
    {
        const FileReplacement replacement(SystemFiles(), target_);
        WriteWholeFile(replacement.Temporary(), "new");
        EXPECT_EQ(Names().size(), 2U);
    }
    EXPECT_EQ(Names(), std::set<std::string>{"lib.Atlavex"});
    EXPECT_EQ(ReadWholeFile(target_), "former");
}

TEST_F(Replacing, KeepsTheFormerFileUnderTheFirstFreeName) {
    Replace("first", true);
    EXPECT_EQ(Names(), std::set<std::string>{"lib.Atlavex"});
    Replace("second", true);
    Replace("third", true);
    Replace("fourth", false);
    EXPECT_EQ(ReadWholeFile(target_), "fourth");
    EXPECT_EQ(ReadWholeFile(folder_ / "lib.Atlavex.bak"), "first");
    EXPECT_EQ(ReadWholeFile(folder_ / "lib.Atlavex.bak2"), "second");
    EXPECT_EQ(Names(), (std::set<std::string>{"lib.Atlavex", "lib.Atlavex.bak", "lib.Atlavex.bak2"}));
    std::filesystem::remove(folder_ / "lib.Atlavex.bak");
    Replace("fifth", true);
    EXPECT_EQ(ReadWholeFile(folder_ / "lib.Atlavex.bak"), "fourth");
    EXPECT_EQ(ReadWholeFile(folder_ / "lib.Atlavex.bak2"), "second");
}

TEST_F(Replacing, SweepsAbandonedTemporariesOfTheSameTargetOnly) {
    const auto abandoned = folder_ / ".lib.Atlavex.0123456789abcdef.tmp",
               held = folder_ / ".lib.Atlavex.fedcba9876543210.tmp";
    const std::set<std::string> others{
        ".lib.Atlavex.0123456789abcde.tmp", ".lib.Atlavex.0123456789ABCDEF.tmp",
        ".other.Atlavex.0123456789abcdef.tmp", "lib.Atlavex.0123456789abcdef.tmp", ".lib.Atlavex.tmp"};
    for (const auto& file : {abandoned, held})
        WriteWholeFile(file, "left");
    for (const std::string& name : others)
        WriteWholeFile(folder_ / name, "someone's");
    const int descriptor = open(held.c_str(), O_RDWR | O_CLOEXEC);
    ASSERT_EQ(flock(descriptor, LOCK_EX | LOCK_NB), 0);
    Replace("new", false);
    std::set<std::string> expected = others;
    expected.insert({"lib.Atlavex", held.filename().string()});
    EXPECT_EQ(Names(), expected);
    close(descriptor);
}

TEST_F(Replacing, DoesNotSweepWhatAnotherReplacementIsBuilding) {
    const FileReplacement first(SystemFiles(), target_), second(SystemFiles(), target_);
    EXPECT_NE(first.Temporary(), second.Temporary());
    EXPECT_TRUE(std::filesystem::exists(first.Temporary()));
}

TEST_F(Replacing, RefusesATargetWithAJournalBesideIt) {
    for (const char* sibling : {"-journal", "-wal"}) {
        const std::filesystem::path file = target_.string() + sibling;
        WriteWholeFile(target_, "former");
        WriteWholeFile(file, "journal");
        try {
            Replace("new", true);
            ADD_FAILURE() << "the journal would be rolled into the new file";
        } catch (const ComponentError& error) {
            EXPECT_EQ(error.Number(), ErrorNumber::FileLocked);
        }
        EXPECT_EQ(ReadWholeFile(target_), "former");
        EXPECT_EQ(Names().size(), 2U);
        std::filesystem::remove(file);
    }
}

TEST_F(Replacing, NamesTheTargetAndNotTheTemporaryInErrors) {
    try {
        const FileReplacement replacement(SystemFiles(), folder_ / "none" / "lib.Atlavex");
        ADD_FAILURE() << "there is no such folder";
    } catch (const ComponentError& error) {
        EXPECT_EQ(error.Number(), ErrorNumber::FileNotWritable);
        EXPECT_NE(error.Description().find("none/lib.Atlavex'"), std::string::npos) << error.Description();
    }
}
