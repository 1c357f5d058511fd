// Other programs that change, replace, delete or lock the file that is open.

#include "component/Bitmap.h"
#include "tests/component/LibraryFixture.h"
#include "tests/component/OtherProgram.h"

#include <algorithm>

namespace {

class LibraryBesideOthers : public LibraryTest {
protected:
    /// Expects that no way of saving over the file is taken, that the file stays as the other program left
    /// it, and that Save As keeps the work.
    void ExpectRefusedUntilSavedElsewhere(AtlavexLibrary& library, const std::string& file,
                                          const std::string& key) {
        const std::string bytes = std::filesystem::exists(file) ? ReadWholeFile(file) : "absent";
        const LibraryContent content = ContentOf(library);
        for (const std::string& underKey : {key, std::string("another key"), std::string()}) {
            const Outcome outcome = OutcomeOf([&] { library.SaveToFile(file, underKey); });
            EXPECT_EQ(outcome.code, static_cast<int>(ErrorNumber::FileChanged)) << outcome.description;
            EXPECT_NE(outcome.description.find(file), std::string::npos) << outcome.description;
        }
        EXPECT_ERROR(library.Compact(), ErrorNumber::FileChanged);
        EXPECT_TRUE((std::filesystem::exists(file) ? ReadWholeFile(file) : "absent") == bytes);
        EXPECT_EQ(ContentOf(library), content);
        const std::string other = PathOf("saved as.Atlavex");
        library.SaveToFile(other, key);
        ExpectHolds(other, key, content);
        EXPECT_EQ(library.FileName(), other);
    }

    /// So large a map that the file is not written anew when another goes.
    void SaveWithALargeMap(const std::string& key) {
        const auto library = NewLibrary();
        FillRichly(*library);
        AddMap(*library, MakeSheet(PixelFormat::Rgb, 1200, 900), "large");
        library->SaveToFile(file_, key);
    }

    std::string file_ = PathOf("lib.Atlavex");
};

} // namespace

TEST_F(LibraryBesideOthers, AnotherLibraryObjectThatSavedFirstIsNotOverwritten) {
    for (const std::string key : {"", "key"}) {
        std::filesystem::remove(file_);
        std::filesystem::remove(PathOf("saved as.Atlavex"));
        SaveRichLibrary(file_, key);
        const auto mine = Open(file_, key), other = Open(file_, key);
        MapAt(*other, 1)->SetMetadata("by", "the other");
        other->SaveToFile(file_, key);
        MapAt(*mine, 1)->SetMetadata("by", "me");
        AddMap(*mine, MakeSheet(PixelFormat::Rgb, 99, 99));
        ExpectRefusedUntilSavedElsewhere(*mine, file_, key);
        ExpectHolds(file_, key, ContentOf(*other));
    }
}

TEST_F(LibraryBesideOthers, AnotherProgramThatSavedFirstIsNotOverwritten) {
    for (const std::string key : {"", "key"}) {
        std::filesystem::remove(file_);
        std::filesystem::remove(PathOf("saved as.Atlavex"));
        LibraryContent content = SaveRichLibrary(file_, key);
        const auto mine = Open(file_, key);
        SaveByAnotherProgram(file_, key, "another program");
        MapAt(*mine, 1)->SetMetadata("by", "me");
        ExpectRefusedUntilSavedElsewhere(*mine, file_, key);
        content.maps[0].metadata.emplace_back("by", "another program");
        ExpectHolds(file_, key, content);
    }
}

TEST_F(LibraryBesideOthers, ASaveByAnotherProgramThatChangedNothingStillCounts) {
    SaveRichLibrary(file_);
    const auto mine = Open(file_), other = Open(file_);
    other->SaveToFile(file_, {});
    EXPECT_ERROR(mine->SaveToFile(file_, {}), ErrorNumber::FileChanged);
}

TEST_F(LibraryBesideOthers, AFileReplacedByAnotherIsNotOverwritten) {
    SaveRichLibrary(file_);
    const auto mine = Open(file_);
    SaveRichLibrary(PathOf("new.Atlavex"), "key");
    std::filesystem::rename(PathOf("new.Atlavex"), file_);
    ExpectRefusedUntilSavedElsewhere(*mine, file_, {});
}

TEST_F(LibraryBesideOthers, ACopyWithTheSameContentIsAnotherFileToo) {
    SaveRichLibrary(file_);
    const auto mine = Open(file_);
    std::filesystem::copy_file(file_, PathOf("copy"));
    std::filesystem::rename(PathOf("copy"), file_);
    ExpectRefusedUntilSavedElsewhere(*mine, file_, {});
}

TEST_F(LibraryBesideOthers, ADeletedFileIsWrittenAgainUnderItsName) {
    for (const std::string key : {"", "key"})
        for (const std::string newKey : {"", "key", "another"}) {
            LibraryContent content = SaveRichLibrary(file_, key);
            const auto mine = Open(file_, key);
            std::filesystem::remove(file_);
            EXPECT_ERROR(mine->Compact(), ErrorNumber::FileChanged);
            mine->SaveToFile(file_, newKey);
            ExpectHolds(file_, newKey, content);
            MapAt(*mine, 1)->SetMetadata("by", "me");
            mine->SaveToFile(file_, newKey);
            ExpectHolds(file_, newKey, ContentOf(*mine));
            EXPECT_EQ(Names(), std::vector<std::string>{"lib.Atlavex"});
            std::filesystem::remove(file_);
        }
}

TEST_F(LibraryBesideOthers, ARenamedFileStaysAndCanBeReadAndSavedAgain) {
    const LibraryContent content = SaveRichLibrary(file_, "key");
    const auto mine = Open(file_, "key");
    std::filesystem::rename(file_, PathOf("elsewhere.Atlavex"));
    EXPECT_EQ(ContentOf(*mine), content);
    MapAt(*mine, 1)->SetMetadata("by", "me");
    mine->SaveToFile(file_, "key");
    ExpectHolds(file_, "key", ContentOf(*mine));
    ExpectHolds(PathOf("elsewhere.Atlavex"), "key", content);
}

TEST_F(LibraryBesideOthers, DirectWorkIsNotBroughtBackWithoutItsFile) {
    SaveRichLibrary(file_);
    const auto mine = OpenDirectly(file_);
    AddMap(*mine, MakeSheet(PixelFormat::Rgb, 99, 99));
    std::filesystem::remove(file_);
    EXPECT_ERROR(mine->SaveToFile(file_, {}), ErrorNumber::FileChanged);
    EXPECT_FALSE(std::filesystem::exists(file_));
}

TEST_F(LibraryBesideOthers, DirectWorkIsRefusedBeforeItBegins) {
    SaveRichLibrary(file_);
    const auto mine = OpenDirectly(file_);
    SaveByAnotherProgram(file_, {}, "another program");
    EXPECT_ERROR(AddMap(*mine, MakeSheet(PixelFormat::Rgb, 99, 99)), ErrorNumber::FileChanged);
    EXPECT_ERROR(AddIcon(*mine, MakeSheet(PixelFormat::Rgb, 9, 9)), ErrorNumber::FileChanged);
    EXPECT_EQ(mine->MapCount(), 2);
    SaveByAnotherProgram(file_, {}, "nothing was left locked");
}

TEST_F(LibraryBesideOthers, ALockedFileIsNotSavedOverAndTheWorkStays) {
    for (const std::string key : {"", "key"}) {
        std::filesystem::remove(file_);
        SaveRichLibrary(file_, key);
        const auto mine = Open(file_, key);
        MapAt(*mine, 1)->SetMetadata("by", "me");
        AddMap(*mine, MakeSheet(PixelFormat::Rgb, 99, 99));
        const LibraryContent content = ContentOf(*mine);
        {
            const LockingProgram other(file_);
            const std::string bytes = ReadWholeFile(file_);
            const Outcome outcome = OutcomeOf([&] { mine->SaveToFile(file_, key); });
            EXPECT_EQ(outcome.code, static_cast<int>(ErrorNumber::FileLocked)) << outcome.description;
            EXPECT_NE(outcome.description.find(file_), std::string::npos) << outcome.description;
            EXPECT_ERROR(mine->SaveToFile(file_, "new key"), ErrorNumber::FileLocked);
            EXPECT_ERROR(mine->Compact(), ErrorNumber::FileLocked);
            EXPECT_TRUE(ReadWholeFile(file_) == bytes);
            EXPECT_EQ(ContentOf(*mine), content);
        }
        mine->SaveToFile(file_, key);
        ExpectHolds(file_, key, content);
    }
}

TEST_F(LibraryBesideOthers, ALockedFileCanBeReadAndSavedAs) {
    const LibraryContent content = SaveRichLibrary(file_);
    const LockingProgram other(file_);
    const auto mine = Open(file_);
    EXPECT_EQ(ContentOf(*mine), content);
    mine->SaveToFile(PathOf("other.Atlavex"), {});
    ExpectHolds(PathOf("other.Atlavex"), {}, content);
    const auto merging = NewLibrary();
    merging->MergeFromFile(file_, {});
    EXPECT_EQ(ContentOf(*merging), content);
}

TEST_F(LibraryBesideOthers, LookingAtTheOpenFileKeepsItsLock) {
    // The locks of a process on a file go when any descriptor of it is closed.
    SaveRichLibrary(file_);
    const auto mine = OpenDirectly(file_);
    AddMap(*mine, MakeSheet(PixelFormat::Rgb, 99, 99));
    EXPECT_FALSE(mine->IsEncrypted(file_));
    mine->MergeFromFile(file_, {});
    EXPECT_THROW(SaveByAnotherProgram(file_, {}, "between"), std::runtime_error);
    mine->SaveToFile(file_, {});
    ExpectHolds(file_, {}, ContentOf(*mine));
}

TEST_F(LibraryBesideOthers, WhatAnotherProgramRemovedIsNamedAndTheRestIsSavedElsewhere) {
    for (const std::string key : {"", "key"}) {
        std::filesystem::remove(file_);
        std::filesystem::remove(PathOf("rest.Atlavex"));
        SaveWithALargeMap(key);
        const auto mine = Open(file_, key), other = Open(file_, key);
        other->RemoveMap(other->MapIdAt(1));
        other->RemoveIcon(other->IconIdAt(1));
        other->SaveToFile(file_, key);
        const Outcome outcome = OutcomeOf([&] { mine->SaveToFile(PathOf("rest.Atlavex"), key); });
        EXPECT_EQ(outcome.code, static_cast<int>(ErrorNumber::FileChanged)) << outcome.description;
        EXPECT_NE(outcome.description.find("map 'North', icon 'Church'."), std::string::npos)
            << outcome.description;
        EXPECT_EQ(outcome.description.find("damaged"), std::string::npos) << outcome.description;
        EXPECT_FALSE(std::filesystem::exists(PathOf("rest.Atlavex")));
        mine->RemoveMap(mine->MapIdAt(1));
        mine->RemoveIcon(mine->IconIdAt(1));
        mine->SaveToFile(PathOf("rest.Atlavex"), key);
        ExpectHolds(PathOf("rest.Atlavex"), key, ContentOf(*other));
    }
}

TEST_F(LibraryBesideOthers, MergingTheOpenFileTakesWhatItHoldsNow) {
    for (const std::string key : {"", "key"}) {
        std::filesystem::remove(file_);
        SaveWithALargeMap(key);
        const auto mine = Open(file_, key), other = Open(file_, key);
        AddIcon(*other, MakeSheet(PixelFormat::Rgb, 7, 7), "new");
        other->RemoveMap(other->MapIdAt(1));
        MapAt(*other, 1)->SetMetadata("by", "the other");
        other->SaveToFile(file_, key);
        const LibraryContent theirs = ContentOf(*other);
        const auto before = mine->MapCount(), icons = mine->IconCount();
        EXPECT_EQ(mine->IsEncrypted(file_), !key.empty());
        mine->MergeFromFile(file_, key);
        ASSERT_EQ(mine->MapCount(), before + 2);
        ASSERT_EQ(mine->IconCount(), icons + 3);
        EXPECT_EQ(MapAt(*mine, before + 1)->GetMetadata("by"), "the other");
        EXPECT_EQ(SheetOf(*MapAt(*mine, before + 2)), theirs.maps[1].sheet);
        EXPECT_EQ(IconAt(*mine, icons + 3)->Name(), "new");
        EXPECT_ERROR(mine->SaveToFile(file_, key), ErrorNumber::FileChanged);
        ExpectHolds(file_, key, theirs);
    }
}

/// What the other program took away is no damage of the file.
TEST_F(LibraryBesideOthers, AFileThatIsChangedWhileItIsVerifiedIsNotCalledDamaged) {
    SaveWithALargeMap("");
    const auto library = Open(file_);
    const auto other = Open(file_);
    other->RemoveMap(other->MapIdAt(1));
    other->SaveToFile(file_, "");
    EXPECT_ERROR(library->Verify(), ErrorNumber::FileChanged);
    EXPECT_TRUE(Open(file_)->Verify().empty());
}

/// Nor is what it added.
TEST_F(LibraryBesideOthers, AFileThatGrowsWhileItIsVerifiedIsNotCalledDamaged) {
    SaveWithALargeMap("");
    const auto library = Open(file_);
    const auto other = Open(file_);
    AddMap(*other, MakeSheet(PixelFormat::Rgb, 100, 100), "added");
    other->SaveToFile(file_, "");
    EXPECT_ERROR(library->Verify(), ErrorNumber::FileChanged);
}

TEST_F(LibraryBesideOthers, AFileThatIsSavedWhileItsKeyIsDerivedIsLoadedAsItIsThen) {
    LibraryOptions dear = Options();
    dear.keyOperations = 4;
    dear.keyMemoryMiB = 256;
    const auto other = CreateAtlavexLibrary(dear);
    FillRichly(*other);
    other->SaveToFile(file_, "a key");
    const auto library = NewLibrary();
    int events = 0;
    library->OnProgress = [&](float) {
        if (++events != 3)
            return;
        MapAt(*other, 1)->SetMetadata("by", "the other");
        other->SaveToFile(file_, "a key");
    };
    library->LoadFromFile(file_, "a key");
    ASSERT_GE(events, 3);
    EXPECT_EQ(ContentOf(*library), ContentOf(*other));
    MapAt(*library, 1)->SetMetadata("by", "this one");
    library->SaveToFile(file_, "a key");
}

TEST_F(LibraryBesideOthers, AFileThatIsLockedIsShownAsADraftAndFinallyWhole) {
    const Sheet sheet = MakeSheet(PixelFormat::Rgb, 1200, 900);
    {
        const auto library = NewLibrary();
        AddMap(*library, sheet);
        library->SaveToFile(file_, "");
    }
    LibraryOptions patient = Options();
    patient.viewPatience = 20;
    const auto library = CreateAtlavexLibrary(patient);
    library->LoadFromFile(file_, "");
    const auto map = MapAt(*library, 1);
    std::shared_ptr<const AtlavexImage> view;
    {
        const LockingProgram writer(file_, "EXCLUSIVE");
        ASSERT_TRUE(map->RenderView(0, 0, 1000, 800, view));
        EXPECT_TRUE(map->ViewIsDraft());
        constexpr std::uint32_t hatchLine = 0xFFB04040;
        const Bitmap& pixels = *view->Pixels();
        EXPECT_EQ(std::count(pixels.pixels.begin(), pixels.pixels.end(), hatchLine), 0);
    }
    bool isFinal = false;
    for (int attempt = 0; attempt < 100 && !isFinal; ++attempt) {
        map->RenderView(0, 0, 1000, 800, view);
        isFinal = !map->ViewIsDraft();
    }
    ASSERT_TRUE(isFinal);
    const auto expected = Open(file_);
    std::shared_ptr<const AtlavexImage> whole;
    MapAt(*expected, 1)->RenderView(0, 0, 1000, 800, whole);
    EXPECT_TRUE(view->Pixels()->pixels == whole->Pixels()->pixels);
}

TEST_F(LibraryBesideOthers, AFileThatIsLockedIsNoPictureForWhoeverWaitsForTheFinalOne) {
    SaveWithALargeMap("");
    const auto library = Open(file_);
    const LockingProgram writer(file_, "EXCLUSIVE");
    std::shared_ptr<const AtlavexImage> view;
    EXPECT_ERROR(MapAt(*library, 1)->RenderView(0, 0, 100, 80, view), ErrorNumber::FileLocked);
}
