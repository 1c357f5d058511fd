// The events of long operations, and cancelling inside them.

#include "tests/component/LibraryFixture.h"

#include <stdexcept>
#include <thread>

namespace {

/// What the library's events told, and whether they kept their rules.
struct Record {
    int begins = 0;
    int progresses = 0;
    int ends = 0;
    float total = 0;
    float last = -1;
};

/// A handler's own failure.
struct HandlerFailed : std::runtime_error {
    HandlerFailed() : std::runtime_error("the handler failed") {}
};

enum class Event { Begin, Progress, End };

class LibraryEvents : public LibraryTest {
protected:
    struct Operation {
        const char* name;
        std::function<void(AtlavexLibrary&)> run;
        bool cancelThrows;
    };

    LibraryEvents() {
        SaveRichLibrary(file_, "key");
        SaveRichLibrary(other_);
        image_ = ImageOf(MakeSheet(PixelFormat::Rgb, 900, 700));
    }

    std::vector<Operation> Operations() const {
        return {{"load", [this](AtlavexLibrary& l) { l.LoadFromFile(other_, {}); }, false},
                {"load sealed", [this](AtlavexLibrary& l) { l.LoadFromFile(file_, "key"); }, false},
                {"merge", [this](AtlavexLibrary& l) { l.MergeFromFile(other_, {}); }, false},
                {"merge itself", [this](AtlavexLibrary& l) { l.MergeFromFile(file_, "key"); }, false},
                {"add a map", [this](AtlavexLibrary& l) { l.AddMapFromImageFile(image_, "added", 64, 64); },
                 true},
                {"add an icon", [this](AtlavexLibrary& l) { l.AddIconFromImageFile(image_, "added"); }, true},
                {"save", [this](AtlavexLibrary& l) { l.SaveToFile(file_, "key"); }, true},
                {"save as", [this](AtlavexLibrary& l) { l.SaveToFile(PathOf("new.Atlavex"), "key"); }, true},
                {"save under a new key", [this](AtlavexLibrary& l) { l.SaveToFile(file_, "new"); }, true},
                {"save plain", [this](AtlavexLibrary& l) { l.SaveToFile(file_, {}); }, true},
                {"compact", [](AtlavexLibrary& l) { l.Compact(); }, true},
                {"verify", [](AtlavexLibrary& l) { EXPECT_TRUE(l.Verify().empty()); }, true},
                {"export tiles",
                 [this](AtlavexLibrary& l) { l.GetMap(l.MapIdAt(1))->ExportTiles(PathOf("images"), ".png"); },
                 true},
                {"read all pixels", [](AtlavexLibrary& l) { SheetOf(*l.GetMap(l.MapIdAt(1))); }, true}};
    }

    /// Notes the events and checks what holds for all of them.
    void Watch(AtlavexLibrary& library, Record& record) {
        const auto thread = std::this_thread::get_id();
        library.OnProgressBegin = [&record, &library, thread](float total, AtlavexLibrary& raiser) {
            EXPECT_EQ(std::this_thread::get_id(), thread);
            EXPECT_EQ(&raiser, &library);
            EXPECT_EQ(record.begins, record.ends);
            EXPECT_GT(total, 0.0F);
            ++record.begins;
            record.total = total;
            record.last = -1;
        };
        library.OnProgress = [&record, thread](float done) {
            EXPECT_EQ(std::this_thread::get_id(), thread);
            EXPECT_EQ(record.begins, record.ends + 1);
            EXPECT_GE(done, std::max(record.last, 0.0F));
            EXPECT_LE(done, record.total);
            ++record.progresses;
            record.last = done;
        };
        library.OnProgressEnd = [&record, thread] {
            EXPECT_EQ(std::this_thread::get_id(), thread);
            ++record.ends;
            EXPECT_EQ(record.begins, record.ends);
        };
    }

    /// The sealed library with something unsaved in it.
    std::unique_ptr<AtlavexLibrary> OpenWithWork(bool direct = false) {
        auto library = direct ? OpenDirectly(file_, "key") : Open(file_, "key");
        MapAt(*library, 1)->SetMetadata("unsaved", "yes");
        AddMap(*library, MakeSheet(PixelFormat::Rgb, 200, 150, 7), "unsaved", 64, 64);
        return library;
    }

    /// Runs the operation with a handler of one event replaced; expects everything as before.
    void ExpectUndone(const Operation& operation, const std::function<void(AtlavexLibrary&)>& setHandlers,
                      const std::function<void(AtlavexLibrary&)>& run) {
        SCOPED_TRACE(operation.name);
        const std::string bytes = ReadWholeFile(file_);
        const auto library = OpenWithWork();
        const LibraryContent content = ContentOf(*library);
        const auto map = MapAt(*library, 2);
        setHandlers(*library);
        run(*library);
        library->OnProgressBegin = nullptr;
        library->OnProgress = nullptr;
        library->OnProgressEnd = nullptr;
        EXPECT_TRUE(ReadWholeFile(file_) == bytes);
        EXPECT_EQ(Names(), (std::vector<std::string>{"lib.Atlavex", "other.Atlavex"}));
        EXPECT_EQ(library->FileName(), file_);
        EXPECT_EQ(ContentOf(*library), content);
        EXPECT_EQ(MapAt(*library, 2), map);
        EXPECT_TRUE(library->Verify().empty());
    }

    std::string file_ = PathOf("lib.Atlavex"), other_ = PathOf("other.Atlavex"), image_;
};

} // namespace

TEST_F(LibraryEvents, ComeForEveryOperationInOrderOnTheCallersThread) {
    for (const Operation& operation : Operations()) {
        SCOPED_TRACE(operation.name);
        const std::string bytes = ReadWholeFile(file_);
        const auto library = OpenWithWork();
        Record record;
        Watch(*library, record);
        operation.run(*library);
        EXPECT_EQ(record.begins, 1);
        EXPECT_GE(record.progresses, 1) << "the first comes at once";
        EXPECT_EQ(record.ends, 1);
        std::filesystem::remove(PathOf("new.Atlavex"));
        WriteWholeFile(file_, bytes);
    }
}

TEST_F(LibraryEvents, HaveTheSameTotalWheneverTheyCome) {
    const auto library = OpenWithWork();
    Record record;
    Watch(*library, record);
    library->Verify();
    const float total = record.total;
    library->AddMapFromImageFile(image_, "added", 64, 64);
    EXPECT_EQ(record.total, total);
}

TEST_F(LibraryEvents, EndAlsoAfterAFailure) {
    const auto library = OpenWithWork();
    Record record;
    Watch(*library, record);
    WriteWholeFile(PathOf("text"), "no library");
    const std::string whole = ReadWholeFile(image_);
    WriteWholeFile(PathOf("images/torn.png"), whole.substr(0, whole.size() / 2));
    EXPECT_ERROR(library->LoadFromFile(PathOf("text"), {}), ErrorNumber::NotALibrary);
    EXPECT_ERROR(library->MergeFromFile(PathOf("missing"), {}), ErrorNumber::FileNotFound);
    EXPECT_ERROR(library->SaveToFile(PathOf("none/x.Atlavex"), {}), ErrorNumber::FileNotWritable);
    EXPECT_ERROR(library->AddMapFromImageFile(PathOf("images/torn.png"), "m", 64, 64),
                 ErrorNumber::ImageDamaged);
    library->LoadFromFile(file_, "wrong key");
    EXPECT_EQ(record.begins, 5);
    EXPECT_EQ(record.ends, 5);
}

TEST_F(LibraryEvents, AreNotNeeded) {
    const auto library = OpenWithWork();
    library->CancelOperation();
    library->SaveToFile(file_, "key");
    ExpectHolds(file_, "key", ContentOf(*library));
}

TEST_F(LibraryEvents, ACancelInsideAnyOfThemUndoesTheOperation) {
    for (const Operation& operation : Operations())
        for (const Event event : {Event::Begin, Event::Progress}) {
            SCOPED_TRACE(event == Event::Begin ? "in Begin" : "in Progress");
            Record record;
            ExpectUndone(
                operation,
                [&](AtlavexLibrary& library) {
                    Watch(library, record);
                    if (event == Event::Begin)
                        library.OnProgressBegin = [&](float, AtlavexLibrary& raiser) {
                            ++record.begins;
                            record.total = 1e9F;
                            raiser.CancelOperation();
                        };
                    else
                        library.OnProgress = [&](float) { library.CancelOperation(); };
                },
                [&](AtlavexLibrary& library) {
                    const Outcome outcome = OutcomeOf([&] { operation.run(library); });
                    EXPECT_EQ(outcome.code,
                              operation.cancelThrows ? static_cast<int>(ErrorNumber::Cancelled) : 0)
                        << outcome.description;
                    EXPECT_TRUE(library.KeyFitted());
                });
            EXPECT_EQ(record.begins, 1);
            EXPECT_EQ(record.ends, 1);
        }
}

TEST_F(LibraryEvents, ACancelAtAnyLaterMomentEndsWhollyBeforeOrAfter) {
    // The first progress comes before the work; the later ones fall somewhere into it.
    const std::string former = ReadWholeFile(file_);
    for (int moment = 2; moment < 6; ++moment) {
        const auto library = OpenWithWork();
        const LibraryContent before = ContentOf(*library);
        int seen = 0;
        library->OnProgress = [&](float) {
            if (++seen == moment)
                library->CancelOperation();
        };
        const Outcome outcome = OutcomeOf([&] {
            library->AddMapFromImageFile(ImageOf(MakeSheet(PixelFormat::Rgb, 3000, 2000)), "l", 64, 64);
        });
        EXPECT_TRUE(outcome.code == 0 || outcome.code == static_cast<int>(ErrorNumber::Cancelled));
        EXPECT_EQ(library->MapCount(), outcome.code == 0 ? 4 : 3);
        seen = 0;
        const Outcome saving = OutcomeOf([&] { library->SaveToFile(file_, "new"); });
        EXPECT_TRUE(saving.code == 0 || saving.code == static_cast<int>(ErrorNumber::Cancelled));
        library->OnProgress = nullptr;
        if (saving.code == 0)
            ExpectHolds(file_, "new", ContentOf(*library));
        else
            EXPECT_TRUE(ReadWholeFile(file_) == former);
        std::filesystem::remove(file_);
        WriteWholeFile(file_, former);
    }
}

TEST_F(LibraryEvents, ACancelledSaveLeavesNoNameAtOnceAndNoOpenFileInTheEnd) {
    // To free what was written may go on behind the call: until the next save, or the library's end.
    const auto openFiles = [] {
        std::vector<std::string> targets;
        for (const auto& descriptor : std::filesystem::directory_iterator("/proc/self/fd")) {
            std::error_code gone;
            targets.push_back(std::filesystem::read_symlink(descriptor.path(), gone).string());
        }
        return std::count_if(targets.begin(), targets.end(),
                             [](const std::string& target) { return target.ends_with(" (deleted)"); });
    };
    const auto deletedBefore = openFiles();
    const auto names = Names();
    auto library = OpenWithWork();
    library->AddMapFromImageFile(ImageOf(MakeSheet(PixelFormat::Rgb, 2000, 1500)), "large", 64, 64);
    const LibraryContent content = ContentOf(*library);
    for (int moment = 2; moment < 12; ++moment) {
        int seen = 0;
        library->OnProgress = [&](float) {
            if (++seen == moment)
                library->CancelOperation();
        };
        const Outcome outcome = OutcomeOf([&] { library->SaveToFile(PathOf("copy.Atlavex"), "new"); });
        library->OnProgress = nullptr;
        EXPECT_EQ(outcome.code == 0, std::filesystem::exists(PathOf("copy.Atlavex")));
        std::filesystem::remove(PathOf("copy.Atlavex"));
        EXPECT_EQ(Names(), names);
        EXPECT_EQ(ContentOf(*library), content);
        if (outcome.code == 0)
            break;
    }
    library->SaveToFile(PathOf("other.Atlavex"), "new");
    ExpectHolds(PathOf("other.Atlavex"), "new", content);
    library.reset();
    EXPECT_EQ(openFiles(), deletedBefore);
}

TEST_F(LibraryEvents, ACancelledDirectAddLeavesNothingInTheFile) {
    const LibraryContent content = ContentOf(*Open(file_, "key"));
    const auto library = OpenDirectly(file_, "key");
    library->OnProgress = [&](float) { library->CancelOperation(); };
    EXPECT_ERROR(library->AddMapFromImageFile(image_, "m", 64, 64), ErrorNumber::Cancelled);
    library->MergeFromFile(other_, {});
    library->OnProgress = nullptr;
    EXPECT_EQ(ContentOf(*library), content);
    library->SaveToFile(file_, "key");
    ExpectHolds(file_, "key", content);
}

TEST_F(LibraryEvents, ADirectSaveCancelledBeforeItBeganKeepsTheWork) {
    const std::string bytes = ReadWholeFile(file_);
    for (const std::string key : {"key", "new"}) {
        const auto library = OpenWithWork(true);
        const LibraryContent content = ContentOf(*library);
        library->OnProgress = [&](float) { library->CancelOperation(); };
        EXPECT_ERROR(library->SaveToFile(file_, key), ErrorNumber::Cancelled);
        library->OnProgress = nullptr;
        EXPECT_TRUE(ReadWholeFile(file_) == bytes);
        EXPECT_EQ(ContentOf(*library), content);
        library->SaveToFile(file_, key);
        ExpectHolds(file_, key, content);
        std::filesystem::remove(file_);
        WriteWholeFile(file_, bytes);
    }
}

TEST_F(LibraryEvents, AFailedDirectSaveGivesUpWhatWasAddedAndNothingElse) {
    const auto library = OpenWithWork(true);
    const auto kept = MapAt(*library, 1), added = MapAt(*library, 3);
    LibraryContent content = ContentOf(*library);
    std::filesystem::rename(file_, PathOf("moved.Atlavex"));
    EXPECT_ERROR(library->SaveToFile(file_, "key"), ErrorNumber::FileChanged);
    EXPECT_ERROR(added->Name(), ErrorNumber::NoSuchMap);
    EXPECT_EQ(MapAt(*library, 1), kept);
    content.maps.pop_back();
    EXPECT_EQ(ContentOf(*library), content);
    library->SaveToFile(PathOf("saved as.Atlavex"), "key");
    ExpectHolds(PathOf("saved as.Atlavex"), "key", content);
}

TEST_F(LibraryEvents, AnOperationInsideAnEventIsRefused) {
    const auto library = OpenWithWork();
    const LibraryContent content = ContentOf(*library);
    int refused = 0;
    library->OnProgress = [&](float) {
        EXPECT_ERROR(library->LoadFromFile(other_, {}), ErrorNumber::Failed);
        EXPECT_ERROR(library->SaveToFile(other_, {}), ErrorNumber::Failed);
        EXPECT_ERROR(library->MergeFromFile(other_, {}), ErrorNumber::Failed);
        EXPECT_ERROR(library->Verify(), ErrorNumber::Failed);
        ++refused;
    };
    library->SaveToFile(file_, "key");
    library->OnProgress = nullptr;
    EXPECT_GT(refused, 0);
    ExpectHolds(file_, "key", content);
}

TEST_F(LibraryEvents, WhatAHandlerThrowsComesThroughAndNothingIsBroken) {
    for (const Operation& operation : Operations())
        for (const Event event : {Event::Begin, Event::Progress}) {
            SCOPED_TRACE(event == Event::Begin ? "in Begin" : "in Progress");
            int ends = 0;
            ExpectUndone(
                operation,
                [&](AtlavexLibrary& library) {
                    if (event == Event::Begin)
                        library.OnProgressBegin = [](float, AtlavexLibrary&) { throw HandlerFailed(); };
                    else
                        library.OnProgress = [](float) { throw HandlerFailed(); };
                    library.OnProgressEnd = [&] { ++ends; };
                },
                [&](AtlavexLibrary& library) { EXPECT_THROW(operation.run(library), HandlerFailed); });
            EXPECT_EQ(ends, 1);
        }
}

TEST_F(LibraryEvents, WhatTheLastHandlerThrowsComesThroughAlsoAfterAFailure) {
    const auto library = OpenWithWork();
    const LibraryContent content = ContentOf(*library);
    library->OnProgressEnd = [] { throw HandlerFailed(); };
    EXPECT_THROW(library->LoadFromFile(PathOf("missing"), {}), HandlerFailed);
    EXPECT_THROW(library->LoadFromFile(other_, {}), HandlerFailed);
    EXPECT_THROW(library->MergeFromFile(other_, {}), HandlerFailed);
    EXPECT_THROW(library->AddMapFromImageFile(image_, "m", 64, 64), HandlerFailed);
    library->OnProgressEnd = nullptr;
    EXPECT_EQ(ContentOf(*library), content);
    // A save is done by then. The library knows under which key.
    library->OnProgressEnd = [] { throw HandlerFailed(); };
    EXPECT_THROW(library->SaveToFile(file_, "new"), HandlerFailed);
    library->OnProgressEnd = nullptr;
    ExpectHolds(file_, "new", content);
    library->SaveToFile(file_, "key");
    ExpectHolds(file_, "key", content);
}

TEST_F(LibraryEvents, AFailingCallbackOfReadPixelsComesThrough) {
    const auto library = OpenWithWork();
    EXPECT_THROW(MapAt(*library, 1)->ReadPixels([](std::span<const std::uint8_t>, std::int32_t) {
        throw HandlerFailed();
    }),
                 HandlerFailed);
    library->SaveToFile(file_, "key");
}
