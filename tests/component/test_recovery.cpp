// What is kept of work that is not saved, and how it is got back.

#include "component/Recovery.h"
#include "tests/component/LibraryFixture.h"
#include "tests/support/ScopedVariable.h"

#include <gmock/gmock.h>

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace fs = std::filesystem;

namespace {

class Recovery : public LibraryTest {
protected:
    Recovery() : cache_("XDG_CACHE_HOME", PathOf("cache")) {}

    std::unique_ptr<AtlavexLibrary> Keeping(const std::string& file = {}, const std::string& key = {}) const {
        LibraryOptions options = Options();
        options.keepUnsavedWork = true;
        auto library = CreateAtlavexLibrary(options);
        if (!file.empty())
            library->LoadFromFile(file, key);
        return library;
    }

    std::vector<std::string> Scratches(const fs::path& folder) const {
        std::vector<std::string> names = Names(folder);
        std::erase_if(names, [](const std::string& name) { return !name.ends_with(".scratch"); });
        return names;
    }

    /// The program ends without having ended the library: its scratches stay as they are now.
    std::string Crash(std::unique_ptr<AtlavexLibrary>& library, const std::vector<fs::path>& folders = {}) {
        std::vector<fs::path> scratches;
        for (const fs::path& folder : folders.empty() ? std::vector<fs::path>{ScratchFolder()} : folders)
            for (const std::string& name : Scratches(folder))
                scratches.push_back(folder / name);
        for (const fs::path& scratch : scratches)
            fs::copy_file(scratch, scratch.string() + ".copy");
        const fs::path cache = PathOf("cache/quorvant-studio");
        const std::vector<std::string> links = Names(cache);
        library.reset();
        for (const fs::path& scratch : scratches) {
            fs::rename(scratch.string() + ".copy", scratch);
            if (std::ranges::count(links, scratch.filename().string()) > 0)
                fs::create_symlink(scratch, cache / scratch.filename());
        }
        return scratches.empty() ? std::string() : scratches.back().string();
    }

    /// What is got back, after a save to a new file too.
    LibraryContent Recovered(const std::string& scratch, const std::string& key = {},
                             const std::string& base = {}) {
        const auto library = NewLibrary();
        work_ = library->LoadUnsavedWork(scratch, key, base);
        EXPECT_TRUE(library->KeyFitted());
        const LibraryContent content = ContentOf(*library);
        fs::remove(PathOf("fresh.Atlavex"));
        library->SaveToFile(PathOf("fresh.Atlavex"), key);
        ExpectHolds(PathOf("fresh.Atlavex"), key, content);
        EXPECT_TRUE(Open(PathOf("fresh.Atlavex"), key)->Verify().empty());
        return content;
    }

    const LoadedWork& Work() const { return work_; }

private:
    ScopedVariable cache_;
    LoadedWork work_;
};

} // namespace

TEST_F(Recovery, OfANewLibraryGivesEverythingBack) {
    auto library = Keeping();
    FillRichly(*library);
    library->KeepUnsavedWork();
    const LibraryContent content = ContentOf(*library);
    const std::string scratch = Crash(library);
    EXPECT_EQ(Recovered(scratch), content);
    EXPECT_THAT(Work().notes, IsEmpty());
    EXPECT_THAT(Work().missing, IsEmpty());
}

TEST_F(Recovery, OfAFileGivesItsContentWithTheChangesBack) {
    for (const std::string key : {"", "key"}) {
        SaveRichLibrary(PathOf("lib.Atlavex"), key);
        auto library = Keeping(PathOf("lib.Atlavex"), key);
        MapAt(*library, 1)->SetMetadata("name", "Renamed");
        library->RemoveMap(library->MapIdAt(2));
        AddMap(*library, MakeSheet(PixelFormat::Rgba, 200, 150));
        library->RemoveIcon(library->IconIdAt(1));
        IconAt(*library, 1)->SetOffsetX(77);
        library->KeepUnsavedWork();
        const LibraryContent content = ContentOf(*library);
        const std::string scratch = Crash(library);
        const UnsavedWork work = LookAtUnsavedWork(scratch);
        EXPECT_EQ(work.library, PathOf("lib.Atlavex"));
        EXPECT_EQ(work.changedMaps, 2);
        EXPECT_EQ(work.removedMaps, 1);
        EXPECT_EQ(work.changedIcons, 1);
        EXPECT_EQ(work.removedIcons, 1);
        EXPECT_EQ(work.needsKey, !key.empty());
        EXPECT_FALSE(work.isInUse);
        EXPECT_EQ(work.problem, "");
        EXPECT_EQ(Recovered(scratch, key), content);
        EXPECT_THAT(Work().notes, IsEmpty());
        EXPECT_THAT(Work().missing, IsEmpty());
        DiscardUnsavedWork(scratch);
        fs::remove(PathOf("lib.Atlavex"));
    }
}

TEST_F(Recovery, NeedsNoTilesOfItsOwn) {
    SaveRichLibrary(PathOf("lib.Atlavex"));
    auto library = Keeping(PathOf("lib.Atlavex"));
    MapAt(*library, 2)->SetMetadata("remark", "alone");
    library->KeepUnsavedWork();
    const LibraryContent content = ContentOf(*library);
    EXPECT_EQ(Recovered(Crash(library)), content);
}

TEST_F(Recovery, HasNothingToKeepOfWhatIsLookedAtOrTakenBack) {
    SaveRichLibrary(PathOf("lib.Atlavex"));
    const auto library = Keeping(PathOf("lib.Atlavex"));
    const std::string before = MapAt(*library, 1)->GetMetadata("remark");
    MapAt(*library, 1)->SetZoom(0.5);
    library->KeepUnsavedWork();
    EXPECT_THAT(Names(ScratchFolder()), IsEmpty());
    AddIcon(*library, MakeSheet(PixelFormat::Grey, 9, 9));
    EXPECT_EQ(Scratches(ScratchFolder()).size(), 1U);
    library->RemoveIcon(library->IconIdAt(library->IconCount()));
    library->KeepUnsavedWork();
    EXPECT_THAT(FindUnsavedWork(), IsEmpty());
}

TEST_F(Recovery, HasNothingToKeepOfWhatIsSavedOrGivenUp) {
    auto library = Keeping();
    FillRichly(*library);
    library->KeepUnsavedWork();
    library->SaveToFile(PathOf("lib.Atlavex"), {});
    library->KeepUnsavedWork();
    EXPECT_THAT(FindUnsavedWork(), IsEmpty());
    MapAt(*library, 1)->SetMetadata("remark", "new");
    library->KeepUnsavedWork();
    EXPECT_EQ(FindUnsavedWork().size(), 1U);
    EXPECT_TRUE(FindUnsavedWork()[0].isInUse);
    library.reset();
    EXPECT_THAT(FindUnsavedWork(), IsEmpty());
    EXPECT_THAT(Names(ScratchFolder()), IsEmpty());
}

TEST_F(Recovery, OfWorkThatWasSavedJustBeforeTheEndAddsNothingTwice) {
    SaveRichLibrary(PathOf("lib.Atlavex"));
    auto library = Keeping(PathOf("lib.Atlavex"));
    AddMap(*library, MakeSheet(PixelFormat::Rgb, 200, 150), "added");
    AddIcon(*library, MakeSheet(PixelFormat::Rgb, 20, 15), "added");
    library->RemoveMap(library->MapIdAt(1));
    const std::string name = Scratches(ScratchFolder()).at(0);
    fs::copy_file(ScratchFolder() / name, PathOf("copy"));
    const LibraryContent content = ContentOf(*library);
    library->SaveToFile(PathOf("lib.Atlavex"), {});
    library.reset();
    fs::rename(PathOf("copy"), ScratchFolder() / name);
    EXPECT_EQ(Recovered(ScratchFolder() / name), content);
    ASSERT_EQ(Work().notes.size(), 1U);
    EXPECT_THAT(Work().notes[0], HasSubstr("was saved since"));
}

TEST_F(Recovery, OnAFileThatAnotherProgramHasChangedKeepsBoth) {
    SaveRichLibrary(PathOf("lib.Atlavex"));
    auto library = Keeping(PathOf("lib.Atlavex"));
    AddMap(*library, MakeSheet(PixelFormat::Rgb, 200, 150, 1), "mine");
    MapAt(*library, 1)->SetMetadata("name", "Renamed here");
    library->KeepUnsavedWork();
    LibraryContent expected = ContentOf(*library);
    const std::string scratch = Crash(library);
    {
        const auto other = Open(PathOf("lib.Atlavex"));
        AddMap(*other, MakeSheet(PixelFormat::Rgb, 200, 150, 2), "theirs"); // takes the same numbers
        other->SaveToFile(PathOf("lib.Atlavex"), {});
        expected.maps.insert(expected.maps.end() - 1, ContentOf(*MapAt(*other, 3)));
    }
    EXPECT_EQ(Recovered(scratch), expected);
    ASSERT_EQ(Work().notes.size(), 1U);
    EXPECT_THAT(Work().notes[0], HasSubstr("was saved since"));
    EXPECT_THAT(Work().missing, IsEmpty());
}

TEST_F(Recovery, WithoutItsFileTellsWhatIsMissingAndGivesTheRestBack) {
    SaveRichLibrary(PathOf("lib.Atlavex"));
    auto library = Keeping(PathOf("lib.Atlavex"));
    const std::string first = MapAt(*library, 1)->Name();
    AddMap(*library, MakeSheet(PixelFormat::Rgb, 200, 150), "mine");
    MapAt(*library, 1)->SetMetadata("remark", "changed");
    library->KeepUnsavedWork();
    const LibraryContent content = ContentOf(*library);
    const std::string scratch = Crash(library);
    fs::rename(PathOf("lib.Atlavex"), PathOf("moved.Atlavex"));
    const LibraryContent rest = Recovered(scratch);
    ASSERT_EQ(rest.maps.size(), 1U);
    EXPECT_EQ(rest.maps[0], content.maps[2]);
    EXPECT_EQ(Work().missing.size(), 4U) << "two maps, two icons";
    EXPECT_EQ(Work().missing[0], "map '" + first + "'");
    ASSERT_EQ(Work().notes.size(), 1U);
    EXPECT_THAT(Work().notes[0], HasSubstr("lib.Atlavex"));
    // Where it is told the new place, all is there.
    EXPECT_EQ(Recovered(scratch, {}, PathOf("moved.Atlavex")), content);
    EXPECT_THAT(Work().missing, IsEmpty());
}

TEST_F(Recovery, TakesNoOtherLibraryForItsOwn) {
    SaveRichLibrary(PathOf("lib.Atlavex"));
    auto library = Keeping(PathOf("lib.Atlavex"));
    AddMap(*library, MakeSheet(PixelFormat::Rgb, 200, 150), "mine");
    const std::string scratch = Crash(library);
    fs::remove(PathOf("lib.Atlavex"));
    SaveRichLibrary(PathOf("lib.Atlavex"));
    EXPECT_EQ(Recovered(scratch).maps.size(), 1U);
    ASSERT_EQ(Work().notes.size(), 1U);
    EXPECT_THAT(Work().notes[0], HasSubstr("not the library"));
}

TEST_F(Recovery, OfWorkInTwoFoldersFindsBoth) {
    fs::create_directory(PathOf("other"));
    auto library = Keeping();
    AddMap(*library, MakeSheet(PixelFormat::Rgb, 100, 90, 1), "first");
    library->SetScratchFolder(PathOf("other"));
    AddMap(*library, MakeSheet(PixelFormat::Rgb, 200, 150, 2), "second");
    library->KeepUnsavedWork();
    MapAt(*library, 1)->SetMetadata("remark", "later");
    library->KeepUnsavedWork();
    const LibraryContent content = ContentOf(*library);
    Crash(library, {ScratchFolder(), PathOf("other")});
    ASSERT_EQ(FindUnsavedWork().size(), 2U) << "links in the cache folder lead there";
    for (const UnsavedWork& work : FindUnsavedWork()) {
        EXPECT_EQ(Recovered(work.scratch), content);
        EXPECT_THAT(Work().notes, IsEmpty());
    }
    DiscardUnsavedWork(FindUnsavedWork()[0].scratch);
    EXPECT_THAT(FindUnsavedWork(), IsEmpty());
    EXPECT_THAT(Names(PathOf("other")), IsEmpty());
}

TEST_F(Recovery, OfTwoLibrariesAtOnceKeepsThemApart) {
    SaveRichLibrary(PathOf("lib.Atlavex"));
    auto first = Keeping(PathOf("lib.Atlavex"));
    const auto second = Keeping(PathOf("lib.Atlavex"));
    AddMap(*first, MakeSheet(PixelFormat::Rgb, 100, 90), "first");
    AddMap(*second, MakeSheet(PixelFormat::Rgb, 200, 150), "second");
    const std::string held = PathOf("scratch/" + Scratches(ScratchFolder()).at(1));
    ASSERT_EQ(Scratches(ScratchFolder()).size(), 2U);
    for (const UnsavedWork& work : FindUnsavedWork()) {
        EXPECT_TRUE(work.isInUse);
        EXPECT_ERROR(DiscardUnsavedWork(work.scratch), ErrorNumber::FileLocked);
        EXPECT_ERROR(NewLibrary()->LoadUnsavedWork(work.scratch, {}, {}), ErrorNumber::FileLocked);
    }
    EXPECT_EQ(Scratches(ScratchFolder()).size(), 2U);
}

TEST_F(Recovery, IsLeftAloneBySweepersAndDiscardedOnDemand) {
    auto library = Keeping();
    AddMap(*library, MakeSheet(PixelFormat::Rgb, 100, 90), "first");
    const std::string scratch = Crash(library);
    AddMap(*NewLibrary(), MakeSheet(PixelFormat::Grey, 9, 9));
    AddMap(*Keeping(), MakeSheet(PixelFormat::Grey, 9, 9));
    EXPECT_TRUE(fs::exists(scratch));
    EXPECT_EQ(fs::status(scratch).permissions(), fs::perms{0600});
    DiscardUnsavedWork(scratch);
    EXPECT_FALSE(fs::exists(scratch));
    EXPECT_THAT(Names(PathOf("cache/quorvant-studio")), IsEmpty());
}

TEST_F(Recovery, OfARottenScratchSaysSoAndRemovesNothing) {
    auto library = Keeping();
    FillRichly(*library);
    library->KeepUnsavedWork();
    const std::string scratch = Crash(library);
    const std::string whole = ReadWholeFile(scratch);
    for (std::size_t at = 3000; at < whole.size(); at += whole.size() / 40) {
        std::string rotten = whole;
        for (std::size_t i = at; i < std::min(at + 64, whole.size()); ++i)
            rotten[i] = static_cast<char>(rotten[i] ^ 0x55);
        WriteWholeFile(scratch, rotten);
        const auto fresh = NewLibrary();
        const Outcome outcome = OutcomeOf([&] {
            fresh->LoadUnsavedWork(scratch, {}, {});
            fresh->SaveToFile(PathOf("fresh.Atlavex"), {});
        });
        EXPECT_TRUE(outcome.code != 0 || Open(PathOf("fresh.Atlavex"))->Verify().empty()) << at;
        fs::remove(PathOf("fresh.Atlavex"));
        EXPECT_TRUE(fs::exists(scratch));
    }
    WriteWholeFile(scratch, "no database at all");
    EXPECT_NE(LookAtUnsavedWork(scratch).problem, "");
    EXPECT_NE(OutcomeOf([&] { DiscardUnsavedWork(scratch); }).code, 0);
    EXPECT_TRUE(fs::exists(scratch));
}

TEST_F(Recovery, OfAWrongKeyLoadsNothing) {
    SaveRichLibrary(PathOf("lib.Atlavex"), "key");
    auto library = Keeping(PathOf("lib.Atlavex"), "key");
    MapAt(*library, 1)->SetMetadata("remark", "secret remark");
    library->KeepUnsavedWork();
    const std::string scratch = Crash(library);
    EXPECT_EQ(ReadWholeFile(scratch).find("secret remark"), std::string::npos);
    const auto fresh = NewLibrary();
    fresh->LoadUnsavedWork(scratch, "wrong", {});
    EXPECT_FALSE(fresh->KeyFitted());
    EXPECT_EQ(fresh->MapCount(), 0);
    EXPECT_TRUE(fs::exists(scratch));
}
