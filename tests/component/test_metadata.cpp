// Names and metadata: order, positions, and texts of every kind and length.

#include "tests/component/LibraryFixture.h"

namespace {

using Pairs = std::vector<std::pair<std::string, std::string>>;

class LibraryMetadata : public LibraryTest {
protected:
    LibraryMetadata()
        : library_(NewLibrary()), map_(AddMap(*library_, MakeSheet(PixelFormat::Grey, 9, 9), "own name")) {}

    /// The first map's metadata as another library reads them from the file.
    Pairs SavedAndLoaded(const std::string& key = {}) {
        file_ = PathOf(key.empty() ? "plain.Atlavex" : "sealed.Atlavex");
        library_->SaveToFile(file_, key);
        const auto again = Open(file_, key);
        return MetadataOf(*MapAt(*again, 1));
    }

    std::string file_; ///< that was saved last
    std::unique_ptr<AtlavexLibrary> library_;
    std::shared_ptr<AtlavexMap> map_;
};

} // namespace

TEST_F(LibraryMetadata, OfANewMapOrIconAreEmpty) {
    const auto icon = AddIcon(*library_, MakeSheet(PixelFormat::Grey, 9, 9), "own icon name");
    EXPECT_EQ(map_->MetadataCount(), 0);
    EXPECT_EQ(icon->MetadataCount(), 0);
    EXPECT_EQ(map_->GetMetadata("name"), "");
    EXPECT_EQ(map_->Identifier(), "");
    EXPECT_EQ(map_->Name(), "own name");
    EXPECT_EQ(icon->Name(), "own icon name");
    EXPECT_EQ(icon->OffsetX(), 0);
    EXPECT_EQ(icon->OffsetY(), 0);
}

TEST_F(LibraryMetadata, TheNameIsTheMetadataElseTheOwnOne) {
    map_->SetMetadata("name", "given");
    EXPECT_EQ(map_->Name(), "given");
    map_->SetMetadata("name", "");
    EXPECT_EQ(map_->Name(), "own name");
    EXPECT_EQ(map_->MetadataCount(), 1);
    map_->SetMetadata("name", "given");
    map_->RemoveMetadata("name");
    EXPECT_EQ(map_->Name(), "own name");
    EXPECT_EQ(SavedAndLoaded(), Pairs{});
    EXPECT_EQ(MapAt(*Open(file_), 1)->Name(), "own name");
}

TEST_F(LibraryMetadata, KeepTheOrderInWhichTheKeysCame) {
    for (const char* key : {"name", "zeta", "alpha", "Name", "NAME", "", "_x", "lastchanged"})
        map_->SetMetadata(key, std::string("value of ") + key);
    map_->SetMetadata("alpha", "changed, in its place");
    map_->RemoveMetadata("zeta");
    map_->SetMetadata("zeta", "now last");
    const Pairs expected{{"name", "value of name"},
                         {"alpha", "changed, in its place"},
                         {"Name", "value of Name"},
                         {"NAME", "value of NAME"},
                         {"", "value of "},
                         {"_x", "value of _x"},
                         {"lastchanged", "value of lastchanged"},
                         {"zeta", "now last"}};
    EXPECT_EQ(MetadataOf(*map_), expected);
    EXPECT_EQ(SavedAndLoaded(), expected);
    EXPECT_EQ(SavedAndLoaded("key"), expected);
}

TEST_F(LibraryMetadata, OfAnAbsentKeyAreEmptyAndRemovingItDoesNothing) {
    map_->SetMetadata("present", "");
    EXPECT_EQ(map_->GetMetadata("absent"), "");
    map_->RemoveMetadata("absent");
    map_->RemoveMetadata("Present");
    EXPECT_EQ(SavedAndLoaded(), (Pairs{{"present", ""}}));
}

TEST_F(LibraryMetadata, OutsideTheirPositionsAreRefused) {
    map_->SetMetadata("a", "1");
    map_->SetMetadata("b", "2");
    EXPECT_EQ(map_->MetadataKeyAt(2), "b");
    EXPECT_EQ(map_->MetadataValueAt(1), "1");
    for (const std::int32_t position : {0, 3, -1, 2147483647, -2147483647 - 1}) {
        EXPECT_ERROR(map_->MetadataKeyAt(position), ErrorNumber::InvalidArgument);
        EXPECT_ERROR(map_->MetadataValueAt(position), ErrorNumber::InvalidArgument);
    }
}

TEST_F(LibraryMetadata, OfAnyTextComeBackByteForByte) {
    const std::vector<std::string> texts{"it's \"quoted\" `so` \\ and %s",
                                         "line\nline\r\nline\ttab\r",
                                         "שלום עולם \u202e reversed \u202c",
                                         "مرحبا",
                                         "🗺️👩‍👩‍👧‍👦",
                                         "e\u0301 stays decomposed, \u00e9 composed",
                                         "\xff\xfe\xc0\x80 invalid \xed\xa0\x80",
                                         std::string("zero\0byte", 9),
                                         "  blanks  ",
                                         "'; DROP TABLE map; --",
                                         "<b>&amp;</b>",
                                         "\x01\x1b[31m"};
    Pairs expected;
    for (const std::string& text : texts) {
        map_->SetMetadata(text, text + text);
        expected.emplace_back(text, text + text);
    }
    EXPECT_EQ(SavedAndLoaded(), expected);
    EXPECT_EQ(SavedAndLoaded("key"), expected);
    for (const std::string& text : texts) {
        map_->SetMetadata("name", text);
        map_->SetIdentifier(text);
        SavedAndLoaded();
        const auto again = Open(file_);
        EXPECT_EQ(MapAt(*again, 1)->Name(), text);
        EXPECT_EQ(MapAt(*again, 1)->Identifier(), text);
        EXPECT_EQ(MapAt(*again, 1)->GetMetadata(text), text + text);
        const auto icon = AddIcon(*again, MakeSheet(PixelFormat::Grey, 2, 2), text);
        EXPECT_EQ(icon->Name(), text);
    }
}

TEST_F(LibraryMetadata, OfAMegabyteComeBack) {
    std::string large(1 << 20, 'x');
    for (std::size_t i = 0; i < large.size(); ++i)
        large[i] = static_cast<char>(i * 7 + i / 251);
    map_->SetMetadata("large", large);
    map_->SetMetadata(large, "a large key");
    EXPECT_EQ(SavedAndLoaded(), (Pairs{{"large", large}, {large, "a large key"}}));
    EXPECT_EQ(SavedAndLoaded("key"), (Pairs{{"large", large}, {large, "a large key"}}));
}

TEST_F(LibraryMetadata, OfAThousandEntriesComeBackInOrder) {
    Pairs expected;
    for (int i = 0; i < 1000; ++i) {
        expected.emplace_back("key " + std::to_string(i * 7919 % 1000), "value " + std::to_string(i));
        map_->SetMetadata(expected.back().first, expected.back().second);
    }
    EXPECT_EQ(map_->MetadataCount(), 1000);
    EXPECT_EQ(SavedAndLoaded(), expected);
}

TEST_F(LibraryMetadata, BeyondWhatARecordHoldsAreRefusedAndLeaveTheFormer) {
    map_->SetMetadata("a", "kept");
    EXPECT_ERROR(map_->SetMetadata("b", std::string(std::size_t{17} << 20, 'x')),
                 ErrorNumber::InvalidArgument);
    EXPECT_ERROR(map_->SetMetadata("a", std::string(std::size_t{17} << 20, 'x')),
                 ErrorNumber::InvalidArgument);
    EXPECT_EQ(SavedAndLoaded(), (Pairs{{"a", "kept"}}));
}

TEST_F(LibraryMetadata, OfMapsAndIconsDoNotMix) {
    const auto icon = AddIcon(*library_, MakeSheet(PixelFormat::Grey, 2, 2));
    const auto second = AddMap(*library_, MakeSheet(PixelFormat::Grey, 3, 3));
    map_->SetMetadata("of", "first map");
    icon->SetMetadata("of", "icon");
    second->SetMetadata("of", "second map");
    library_->SaveToFile(PathOf("lib.Atlavex"), {});
    ExpectHolds(PathOf("lib.Atlavex"), {}, ContentOf(*library_));
    const auto again = Open(PathOf("lib.Atlavex"));
    EXPECT_EQ(MapAt(*again, 1)->GetMetadata("of"), "first map");
    EXPECT_EQ(MapAt(*again, 2)->GetMetadata("of"), "second map");
    EXPECT_EQ(IconAt(*again, 1)->GetMetadata("of"), "icon");
}
