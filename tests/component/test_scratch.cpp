// Where maps and icons stand that are not saved yet.

#include "tests/component/LibraryFixture.h"
#include "tests/support/RunProgram.h"
#include "tests/support/ScopedVariable.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <chrono>
#include <thread>

namespace {

class LibraryScratch : public LibraryTest {
protected:
    std::vector<std::string> ScratchFiles() const { return Names(ScratchFolder()); }
    /// This program's among all that stand in the folder.
    std::vector<std::string> OwnFiles(const std::filesystem::path& folder) const {
        std::vector<std::string> names = Names(folder);
        const std::string start = "unsaved-" + std::to_string(getpid()) + "-";
        std::erase_if(names, [&start](const std::string& name) { return !name.starts_with(start); });
        return names;
    }
    std::uintmax_t ScratchSize() const {
        return std::filesystem::file_size(ScratchFolder() / ScratchFiles().at(0));
    }
    /// A large file is taken back behind the call.
    bool OwnFilesGo(const std::filesystem::path& folder) const {
        for (int i = 0; i < 1000 && !OwnFiles(folder).empty(); ++i)
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        return OwnFiles(folder).empty();
    }
    bool ScratchFilesGo() const { return OwnFilesGo(ScratchFolder()); }
};

} // namespace

TEST_F(LibraryScratch, IsMadeWhenItIsNeededAndForTheUserAlone) {
    const auto library = NewLibrary();
    EXPECT_TRUE(ScratchFiles().empty());
    AddIcon(*library, MakeSheet(PixelFormat::Grey, 9, 9));
    ASSERT_EQ(ScratchFiles().size(), 1U);
    const std::string name = ScratchFiles()[0];
    EXPECT_NE(name.find(std::to_string(getpid())), std::string::npos) << name;
    EXPECT_EQ(std::filesystem::status(ScratchFolder() / name).permissions(), std::filesystem::perms{0600});
    AddMap(*library, MakeSheet(PixelFormat::Grey, 9, 9));
    EXPECT_EQ(ScratchFiles().size(), 1U);
}

TEST_F(LibraryScratch, GoesWithTheLibrary) {
    auto library = NewLibrary();
    FillRichly(*library);
    library.reset();
    EXPECT_TRUE(ScratchFiles().empty());
}

TEST_F(LibraryScratch, GoesWithTheSaveAlsoWhenItsMapsAreShown) {
    const auto library = NewLibrary();
    FillRichly(*library);
    std::shared_ptr<const AtlavexImage> view;
    EXPECT_TRUE(MapAt(*library, 1)->RenderView(0, 0, 50, 50, view));
    library->SaveToFile(PathOf("lib.Atlavex"), {});
    EXPECT_TRUE(ScratchFilesGo());
    AddMap(*library, MakeSheet(PixelFormat::Rgb, 100, 100));
    EXPECT_EQ(ScratchFiles().size(), 1U);
    library->SaveToFile(PathOf("lib.Atlavex"), {});
    EXPECT_TRUE(ScratchFilesGo());
}

TEST_F(LibraryScratch, GoesWhenAnotherFileIsLoaded) {
    SaveRichLibrary(PathOf("lib.Atlavex"));
    const auto library = NewLibrary();
    FillRichly(*library);
    library->LoadFromFile(PathOf("lib.Atlavex"), {});
    EXPECT_TRUE(ScratchFiles().empty());
}

TEST_F(LibraryScratch, StaysWhenASaveFails) {
    const auto library = NewLibrary();
    FillRichly(*library);
    const LibraryContent content = ContentOf(*library);
    EXPECT_ERROR(library->SaveToFile(PathOf("no folder/lib.Atlavex"), {}), ErrorNumber::FileNotWritable);
    EXPECT_EQ(ScratchFiles().size(), 1U);
    EXPECT_EQ(ContentOf(*library), content);
}

TEST_F(LibraryScratch, OfKilledProgramsIsSweptAndThatOfOthersIsNot) {
    const auto abandoned = ScratchFolder() / "unsaved-1-1.scratch",
               held = ScratchFolder() / "unsaved-1-2.scratch", foreign = ScratchFolder() / "notes.scratch";
    for (const auto& file : {abandoned, held, foreign})
        WriteWholeFile(file, "left");
    const int descriptor = open(held.c_str(), O_RDWR | O_CLOEXEC);
    ASSERT_EQ(flock(descriptor, LOCK_EX | LOCK_NB), 0);
    const auto library = NewLibrary();
    AddIcon(*library, MakeSheet(PixelFormat::Grey, 9, 9));
    EXPECT_FALSE(std::filesystem::exists(abandoned));
    EXPECT_TRUE(std::filesystem::exists(held));
    EXPECT_TRUE(std::filesystem::exists(foreign));
    close(descriptor);
}

TEST_F(LibraryScratch, OfOneLibraryIsNotSweptByAnother) {
    const auto first = NewLibrary();
    FillRichly(*first);
    const LibraryContent content = ContentOf(*first);
    const auto second = NewLibrary();
    AddIcon(*second, MakeSheet(PixelFormat::Grey, 9, 9));
    EXPECT_EQ(ScratchFiles().size(), 2U);
    first->SaveToFile(PathOf("lib.Atlavex"), {});
    ExpectHolds(PathOf("lib.Atlavex"), {}, content);
}

TEST_F(LibraryScratch, LiesInTheFolderThatWasNamedLast) {
    const auto library = NewLibrary();
    AddIcon(*library, MakeSheet(PixelFormat::Grey, 9, 9), "first");
    std::filesystem::create_directory(PathOf("other"));
    library->SetScratchFolder(PathOf("other"));
    AddMap(*library, MakeSheet(PixelFormat::Rgb, 100, 100), "second");
    EXPECT_EQ(ScratchFiles().size(), 1U);
    EXPECT_EQ(Names(PathOf("other")).size(), 1U);
    const LibraryContent content = ContentOf(*library);
    library->SaveToFile(PathOf("lib.Atlavex"), {});
    ExpectHolds(PathOf("lib.Atlavex"), {}, content);
}

/// Also what an image that is turned keeps beside memory while it is read.
TEST_F(LibraryScratch, AndTheTemporaryPixelsOfAnImageLieInTheFolderThatWasNamedLast) {
    const auto library = NewLibrary();
    std::filesystem::create_directory(PathOf("other"));
    library->SetScratchFolder(PathOf("other"));
    const std::string image = PathOf("turned.png");
    ASSERT_EQ(RunProgram({"/usr/bin/python3", "-c",
                          "import sys\nfrom PIL import Image\nexif = Image.Exif()\nexif[0x0112] = 6\n"
                          "Image.new('RGB', (30, 20)).save(sys.argv[1], exif=exif)",
                          image})
                  .status,
              0);
    std::vector<std::filesystem::path> places;
    library->OnProgressBegin = [&](float, AtlavexLibrary&) {
        for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
            std::error_code gone;
            const std::filesystem::path file = std::filesystem::read_symlink(entry.path(), gone);
            if (file.filename().string().starts_with("quorvant-image-"))
                places.push_back(file.parent_path());
        }
    };
    library->AddMapFromImageFile(image, "turned", 64, 64);
    library->AddIconFromImageFile(image, "turned");
    EXPECT_EQ(places, (std::vector<std::filesystem::path>{PathOf("other"), PathOf("other")}));
}

TEST_F(LibraryScratch, LiesInTheCacheFolderWhereTheNamedOneTakesNoFile) {
    const ScopedVariable cache("XDG_CACHE_HOME", PathOf("cache"));
    WriteWholeFile(PathOf("file"), "no folder");
    for (const char* const named : {"no such folder", "file", "file/below"}) {
        LibraryOptions options = Options();
        options.scratchFolder = PathOf(named);
        const auto library = CreateAtlavexLibrary(options);
        AddMap(*library, MakeSheet(PixelFormat::Grey, 9, 9));
        EXPECT_EQ(Names(PathOf("cache/quorvant-studio")).size(), 1U) << named;
        EXPECT_FALSE(std::filesystem::exists(PathOf("no such folder")));
    }
}

TEST_F(LibraryScratch, LiesAmongLastingTemporaryFilesWhereTheUserHasNoCacheFolder) {
    WriteWholeFile(PathOf("file"), "no folder");
    const ScopedVariable cache("XDG_CACHE_HOME", PathOf("file/cache"));
    LibraryOptions options = Options();
    options.scratchFolder.clear();
    const auto library = CreateAtlavexLibrary(options);
    AddMap(*library, MakeSheet(PixelFormat::Grey, 9, 9));
    EXPECT_EQ(OwnFiles("/var/tmp").size(), 1U);
    library->SaveToFile(PathOf("lib.Atlavex"), {});
    EXPECT_TRUE(OwnFilesGo("/var/tmp"));
}

TEST_F(LibraryScratch, IsNotNeededForDirectWork) {
    SaveRichLibrary(PathOf("lib.Atlavex"));
    const auto library = OpenDirectly(PathOf("lib.Atlavex"));
    AddMap(*library, MakeSheet(PixelFormat::Rgb, 100, 100));
    EXPECT_TRUE(ScratchFiles().empty());
}

TEST_F(LibraryScratch, GoesWithTheLastUnsavedObject) {
    for (const std::string key : {"", "key"}) {
        SaveRichLibrary(PathOf("lib.Atlavex"), key);
        const auto library = Open(PathOf("lib.Atlavex"), key);
        AddMap(*library, MakeSheet(PixelFormat::Rgb, 500, 400));
        AddIcon(*library, MakeSheet(PixelFormat::Grey, 9, 9));
        std::shared_ptr<const AtlavexImage> view;
        EXPECT_TRUE(MapAt(*library, 3)->RenderView(0, 0, 50, 50, view));
        library->RemoveMap(library->MapIdAt(3));
        EXPECT_EQ(ScratchFiles().size(), 1U);
        library->RemoveIcon(library->IconIdAt(3));
        EXPECT_TRUE(ScratchFilesGo());
        library->RemoveMap(library->MapIdAt(1));
        AddMap(*library, MakeSheet(PixelFormat::Rgb, 50, 40));
        library->SaveToFile(PathOf("lib.Atlavex"), key);
        ExpectHolds(PathOf("lib.Atlavex"), key, ContentOf(*library));
        std::filesystem::remove(PathOf("lib.Atlavex"));
    }
}

TEST_F(LibraryScratch, ShrinksByWhatIsRemovedWhileOthersStay) {
    const Sheet first = MakeSheet(PixelFormat::Rgb, 700, 600, 1),
                second = MakeSheet(PixelFormat::Rgb, 700, 600, 2),
                large = MakeSheet(PixelFormat::Rgb, 1200, 900, 3),
                icon = MakeSheet(PixelFormat::Rgba, 400, 300, 4);
    for (const std::string key : {"", "key"}) {
        SaveRichLibrary(PathOf("lib.Atlavex"), key);
        const auto library = Open(PathOf("lib.Atlavex"), key);
        AddMap(*library, first);
        const auto size = ScratchSize();
        AddMap(*library, large);
        AddIcon(*library, icon);
        AddMap(*library, second);
        const auto full = ScratchSize();
        library->RemoveMap(library->MapIdAt(4)); // what follows it moves up
        EXPECT_LT(ScratchSize(), full - 1200 * 900 * 2);
        EXPECT_EQ(SheetOf(*MapAt(*library, 3)), first);
        EXPECT_EQ(SheetOf(*MapAt(*library, 4)), second);
        library->RemoveIcon(library->IconIdAt(3));
        library->RemoveMap(library->MapIdAt(4)); // nothing follows it
        EXPECT_LT(ScratchSize(), size + 100'000);
        EXPECT_EQ(SheetOf(*MapAt(*library, 3)), first);
        const LibraryContent content = ContentOf(*library);
        library->SaveToFile(PathOf("lib.Atlavex"), key);
        ExpectHolds(PathOf("lib.Atlavex"), key, content);
        std::filesystem::remove(PathOf("lib.Atlavex"));
    }
}

TEST_F(LibraryScratch, ShrinksAlsoWhenAnotherFolderIsPreferredByNow) {
    const auto library = NewLibrary();
    AddMap(*library, MakeSheet(PixelFormat::Rgb, 100, 90));
    const auto size = ScratchSize();
    AddMap(*library, MakeSheet(PixelFormat::Rgb, 1200, 900));
    std::filesystem::create_directory(PathOf("other"));
    library->SetScratchFolder(PathOf("other"));
    AddMap(*library, MakeSheet(PixelFormat::Rgb, 100, 90));
    library->RemoveMap(library->MapIdAt(2));
    EXPECT_LT(ScratchSize(), size + 100'000);
    library->RemoveMap(library->MapIdAt(1));
    EXPECT_TRUE(ScratchFilesGo());
    EXPECT_EQ(library->MapCount(), 1);
}

TEST_F(LibraryScratch, ShrinksWhenAMapIsNotAdded) {
    const auto library = NewLibrary();
    AddMap(*library, MakeSheet(PixelFormat::Rgb, 100, 90));
    const auto size = ScratchSize();
    library->OnProgress = [&](float done) {
        if (done > 0.5F)
            library->CancelOperation();
    };
    EXPECT_ERROR(AddMap(*library, MakeSheet(PixelFormat::Rgb, 1200, 900)), ErrorNumber::Cancelled);
    EXPECT_LT(ScratchSize(), size + 100'000);
}

TEST_F(LibraryScratch, GivesBackTheSpaceOfAMapThatIsRemoved) {
    const auto library = NewLibrary();
    const Sheet large = MakeSheet(PixelFormat::Rgb, 1200, 900, 1),
                small = MakeSheet(PixelFormat::Rgb, 100, 90, 2);
    AddMap(*library, small);
    AddMap(*library, large);
    AddMap(*library, small);
    const auto full = ScratchSize();
    for (int turn = 0; turn < 3; ++turn) {
        library->RemoveMap(library->MapIdAt(turn == 0 ? 2 : 3));
        AddMap(*library, large);
        EXPECT_LE(ScratchSize(), full + full / 10)
            << "how tiles fit into pages goes by the order of the threads";
    }
    const LibraryContent content = ContentOf(*library);
    library->SaveToFile(PathOf("lib.Atlavex"), {});
    ExpectHolds(PathOf("lib.Atlavex"), {}, content);
}

TEST_F(LibraryScratch, GivesBackTheSpaceOfAnIconThatIsRemoved) {
    const auto library = NewLibrary();
    AddIcon(*library, MakeSheet(PixelFormat::Rgba, 9, 9));
    AddIcon(*library, MakeSheet(PixelFormat::Rgba, 400, 300));
    const auto full = ScratchSize();
    for (int turn = 0; turn < 3; ++turn) {
        library->RemoveIcon(library->IconIdAt(2));
        AddIcon(*library, MakeSheet(PixelFormat::Rgba, 400, 300));
        EXPECT_LE(ScratchSize(), full);
    }
}

TEST_F(LibraryScratch, KeepsNothingOfAMapThatWasNotAdded) {
    const auto library = NewLibrary();
    const std::string image = ImageOf(MakeSheet(PixelFormat::Rgb, 1200, 900));
    library->OnProgress = [&](float done) {
        if (done > 0)
            library->CancelOperation();
    };
    EXPECT_ERROR(library->AddMapFromImageFile(image, "sheet", 64, 64), ErrorNumber::Cancelled);
    EXPECT_TRUE(ScratchFilesGo());
    const std::string broken = PathOf("broken.png");
    WriteWholeFile(broken, ReadWholeFile(image).substr(0, 5000));
    EXPECT_THROW(library->AddIconFromImageFile(broken, "broken"), ComponentError);
    EXPECT_THROW(library->AddMapFromImageFile(broken, "broken", 64, 64), ComponentError);
    EXPECT_TRUE(ScratchFilesGo());
}
