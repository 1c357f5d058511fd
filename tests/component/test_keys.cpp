// Encryption keys: which fit, which do not, and what a wrong one shows.

#include "tests/component/LibraryFixture.h"

#include <set>

namespace {

class LibraryKeys : public LibraryTest {};

} // namespace

TEST_F(LibraryKeys, AWrongKeyLoadsNothingAndIsNoError) {
    const std::string file = PathOf("lib.Atlavex");
    SaveRichLibrary(file, "the key");
    for (const std::string key : {"", "the kez", "The key", "the key ", " the key", "the", "the key\n"}) {
        const auto library = Open(file, key);
        EXPECT_FALSE(library->KeyFitted()) << key;
        EXPECT_EQ(library->MapCount(), 0);
        EXPECT_EQ(library->IconCount(), 0);
        EXPECT_EQ(library->FileName(), "");
        EXPECT_FALSE(library->IsSealed());
    }
}

TEST_F(LibraryKeys, AWrongKeyLeavesWhatIsOpenAsItIs) {
    const std::string sealed = PathOf("sealed.Atlavex"), plain = PathOf("plain.Atlavex");
    SaveRichLibrary(sealed, "key");
    SaveRichLibrary(plain);
    const auto library = Open(plain);
    const auto map = MapAt(*library, 1);
    map->SetMetadata("name", "unsaved");
    const LibraryContent content = ContentOf(*library);
    library->LoadFromFile(sealed, "wrong");
    EXPECT_FALSE(library->KeyFitted());
    EXPECT_EQ(ContentOf(*library), content);
    EXPECT_EQ(library->FileName(), plain);
    EXPECT_EQ(MapAt(*library, 1), map);
    library->SaveToFile(plain, {});
    ExpectHolds(plain, {}, content);
}

TEST_F(LibraryKeys, KeyFittedTellsOfTheLastAttempt) {
    const std::string file = PathOf("lib.Atlavex");
    SaveRichLibrary(file, "key");
    const auto library = NewLibrary();
    EXPECT_TRUE(library->KeyFitted());
    library->LoadFromFile(file, "wrong");
    EXPECT_FALSE(library->KeyFitted());
    library->LoadFromFile(file, "key");
    EXPECT_TRUE(library->KeyFitted());
}

TEST_F(LibraryKeys, AreIgnoredForAPlainFile) {
    const std::string file = PathOf("lib.Atlavex");
    const LibraryContent content = SaveRichLibrary(file);
    const auto library = Open(file, "any key");
    EXPECT_TRUE(library->KeyFitted());
    EXPECT_FALSE(library->IsSealed());
    EXPECT_EQ(ContentOf(*library), content);
    const auto merged = NewLibrary();
    merged->MergeFromFile(file, "any key");
    EXPECT_EQ(ContentOf(*merged), content);
}

TEST_F(LibraryKeys, GivenForAPlainFileAreSetByTheNextSave) {
    const std::string file = PathOf("lib.Atlavex");
    const LibraryContent content = SaveRichLibrary(file);
    const auto library = Open(file, "a key");
    library->SaveToFile(file, "a key");
    EXPECT_TRUE(library->IsEncrypted(file));
    ExpectHolds(file, "a key", content);
}

TEST_F(LibraryKeys, OfSixteenCharactersOfAnyScriptWork) {
    for (const std::string key :
         {"ABCDEFGHIJKLMNOP", "ÆØÅæøåÄÖÜäöüßéèê", "ключключключключ", "鍵鍵鍵鍵鍵鍵鍵鍵鍵鍵鍵鍵鍵鍵鍵鍵",
          "مفتاحمفتاحمفتاحم", "🔑🔑🔑🔑🔑🔑🔑🔑🔑🔑🔑🔑🔑🔑🔑🔑", "क्षक्षक्षक्षक्षक", "                ", "0000000000000000",
          "\xff\xfe\xfd no utf8 \x80"}) {
        const std::string file = PathOf("lib.Atlavex");
        std::filesystem::remove(file);
        const LibraryContent content = SaveRichLibrary(file, key);
        ExpectHolds(file, key, content);
        EXPECT_FALSE(Open(file, std::string(key).substr(1))->KeyFitted());
    }
}

TEST_F(LibraryKeys, WithAZeroByteOrOfGreatLengthWork) {
    for (const std::string& key : {std::string("a\0b", 3), std::string(100000, 'k')}) {
        const std::string file = PathOf("lib.Atlavex");
        std::filesystem::remove(file);
        const LibraryContent content = SaveRichLibrary(file, key);
        ExpectHolds(file, key, content);
        EXPECT_FALSE(Open(file, key.substr(0, 1))->KeyFitted());
    }
}

TEST_F(LibraryKeys, TypedComposedAndDecomposedAreOneKey) {
    // Å (U+00C5; or A and U+030A; or the Ångström sign U+212B), ệ and a Hangul syllable.
    const std::string composed = "\u00c5\u1ec7\uac01", decomposed = "A\u030ae\u0323\u0302\u1100\u1161\u11a8",
                      mixed = "\u212be\u0302\u0323\uac00\u11a8";
    const std::string file = PathOf("lib.Atlavex");
    const LibraryContent content = SaveRichLibrary(file, composed);
    for (const std::string& key : {composed, decomposed, mixed}) {
        ExpectHolds(file, key, content);
        const auto library = Open(file, key);
        library->SaveToFile(file, composed);
        library->MergeFromFile(file, decomposed);
        EXPECT_EQ(library->MapCount(), 4);
    }
    // Compatibility forms are other characters: the fullwidth A is no A.
    EXPECT_FALSE(Open(file, "\uff21\u030a\u1ec7\uac01")->KeyFitted());
    EXPECT_EQ(Names(), std::vector<std::string>{"lib.Atlavex"});
}

TEST_F(LibraryKeys, IsEncryptedTellsOfAnyFileAlsoOfTheOpenOne) {
    const std::string plain = PathOf("plain.Atlavex"), sealed = PathOf("sealed.Atlavex");
    SaveRichLibrary(plain);
    SaveRichLibrary(sealed, "key");
    for (const auto& [file, key] : {std::pair{plain, ""}, {sealed, "key"}}) {
        const auto library = Open(file, key);
        EXPECT_FALSE(library->IsEncrypted(plain));
        EXPECT_TRUE(library->IsEncrypted(sealed));
        MapAt(*library, 1)->SetMetadata("x", "y");
        library->SaveToFile(file, key);
        EXPECT_FALSE(library->IsEncrypted(plain));
        EXPECT_TRUE(library->IsEncrypted(sealed));
    }
}

TEST_F(LibraryKeys, IsEncryptedRefusesWhatIsNoLibrary) {
    const auto library = NewLibrary();
    WriteWholeFile(PathOf("text"), "just text");
    WriteWholeFile(PathOf("empty"), "");
    EXPECT_ERROR(library->IsEncrypted(PathOf("text")), ErrorNumber::NotALibrary);
    EXPECT_ERROR(library->IsEncrypted(PathOf("empty")), ErrorNumber::NotALibrary);
    EXPECT_ERROR(library->IsEncrypted(PathOf("missing")), ErrorNumber::FileNotFound);
    EXPECT_ERROR(library->IsEncrypted(PathOf("scratch")), ErrorNumber::FileNotReadable);
    EXPECT_ERROR(library->IsEncrypted("/dev/null"), ErrorNumber::FileNotReadable);
    EXPECT_ERROR(library->IsEncrypted(""), ErrorNumber::FileNotFound);
}

TEST_F(LibraryKeys, AnotherKeyMakesAnotherFileThroughout) {
    // Whoever kept the former key and the former data key must not be able to read the new file.
    const std::string file = PathOf("lib.Atlavex");
    SaveRichLibrary(file, "one");
    const std::string before = ReadWholeFile(file);
    const auto library = Open(file, "one");
    library->SaveToFile(file, "two");
    const std::string after = ReadWholeFile(file);
    // 64 bytes of ciphertext that stayed the same would be a blob that was copied. (Pages that are nearly
    // empty have zeros in common.)
    const auto isCiphertext = [](const std::string& block) {
        return std::set<char>(block.begin(), block.end()).size() > 40;
    };
    std::set<std::string> blocks;
    for (std::size_t at = 8192; at + 64 <= before.size(); at += 64)
        if (isCiphertext(before.substr(at, 64)))
            blocks.insert(before.substr(at, 64));
    EXPECT_GT(blocks.size(), 1000U);
    std::size_t same = 0;
    for (std::size_t at = 8192; at + 64 <= after.size(); ++at)
        same += blocks.contains(after.substr(at, 64)) ? 1 : 0;
    EXPECT_EQ(same, 0U);
}
