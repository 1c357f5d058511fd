#include "tests/cli/AtlavexTest.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <cstdlib>
#include <filesystem>

using testing::HasSubstr;
using testing::Not;

namespace {

using Keys = AtlavexTest;

} // namespace

TEST_F(Keys, ASealedLibraryShowsNothingWithoutItsKey) {
    const std::string library = SealedLibrary("a.Atlavex", "open sesame"),
                      key = Write("key", "open sesame\n");
    Do({"add-map", library, Bmp("Treasure.bmp"), "--key-file", key});
    EXPECT_THAT(ReadWholeFile(library), Not(HasSubstr("Treasure")));
    EXPECT_EQ(DoJson({"info", library, "--key-file", key})["sealed"], true);
    EXPECT_EQ(DoJson({"info", library, "--key-file", key})["maps"][0]["name"], "Treasure");
    ExpectFailure(3, {"info", library}, "--key-file");
    for (const char* wrong : {"", "\n", "open sesam", "open sesame ", "Open sesame", "open sesame\n\n"})
        ExpectFailure(3, {"info", library, "--key-file", Write("wrong", wrong)}, "does not open");
}

TEST_F(Keys, EveryCommandOnASealedLibraryEndsWithStatus3UnderAWrongKey) {
    const std::string library = SealedLibrary("a.Atlavex", "k"), key = Write("key", "k"),
                      wrong = Write("wrong", "w");
    Do({"merge", library, ScaledLibrary("b.Atlavex"), "--key-file", key});
    const std::string image = Bmp("x.bmp");
    for (const Words& command :
         {Words{"info", library}, Words{"verify", library}, Words{"compact", library},
          Words{"locate", library, "1", "1", "1"}, Words{"add-map", library, image},
          Words{"add-icon", library, image}, Words{"scale", library, "1"} + SheetScaling,
          Words{"set", library, "map", "1", "a=b"}, Words{"unset", library, "map", "1", "a"},
          Words{"remove", library, "map", "1"}, Words{"offset", library, "1", "1,1"},
          Words{"merge", library, library}, Words{"rekey", library, "--no-key"},
          Words{"extract", library, "1", "--out", In("o.png")},
          Words{"export-tiles", library, "1", "--to", In("t")}})
        ExpectFailure(3, command + Words{"--key-file", wrong});
    Do({"set", library, "map", "1", "a=b", "--key-file", key});
    EXPECT_EQ(DoJson({"info", library, "--key-file", key})["sealed"], true);
}

TEST_F(Keys, AKeyMayHaveAnyCharacters) {
    int number = 0;
    for (const char* key : {"1", "ключ от карты 16", "鍵鍵鍵鍵鍵鍵鍵鍵鍵鍵鍵鍵鍵鍵鍵鍵",
                            "🗝🗺🗝🗺🗝🗺🗝🗺🗝🗺🗝🗺🗝🗺🗝🗺",
                            "  blanks count  ", "מפתח של המפה שלי", "a\n\"b'\\/"}) {
        const std::string library = SealedLibrary("k" + std::to_string(++number), key);
        Do({"info", library, "--key-file", Write("key", std::string(key) + "\r\n")});
        ExpectFailure(3, {"info", library, "--key-file", Write("wrong", std::string(key) + "x")});
    }
}

TEST_F(Keys, ComposedAndDecomposedLettersAreTheSameKey) {
    const std::string composed = Write("composed", "Schl\xC3\xBCssel"),
                      decomposed = Write("decomposed", "Schlu\xCC\x88ssel");
    SealedLibrary("a", "Schl\xC3\xBCssel");
    Do({"info", In("a"), "--key-file", decomposed});
    SealedLibrary("b", "Schlu\xCC\x88ssel");
    Do({"info", In("b"), "--key-file", composed});
}

TEST_F(Keys, AKeyCanComeFromTheEnvironment) {
    SealedLibrary("a", "secret");
    setenv("ATLAVEX_TEST_KEY", "secret", 1);
    Do({"info", In("a"), "--key-env", "ATLAVEX_TEST_KEY"});
    setenv("ATLAVEX_TEST_KEY", "other", 1);
    ExpectFailure(3, {"info", In("a"), "--key-env", "ATLAVEX_TEST_KEY"}, "does not open");
    unsetenv("ATLAVEX_TEST_KEY");
    ExpectFailure(3, {"info", In("a"), "--key-env", "ATLAVEX_TEST_KEY"}, "ATLAVEX_TEST_KEY");
}

TEST_F(Keys, AKeyFileThatCannotBeReadIsAFailure) {
    SealedLibrary("a", "secret");
    ExpectFailure(1, {"info", In("a"), "--key-file", In("missing")}, "missing");
    ExpectFailure(1, {"info", In("a"), "--key-file", "/"}, "'/'");
    ExpectFailure(1, {"info", In("a"), "--key-file", ""}, "key file");
    ExpectFailure(1, {"info", In("a"), "--key-file", "/dev/zero"}, "longer");
}

TEST_F(Keys, NewWithAKeySealsTheLibrary) {
    const std::string key = Write("key", "secret\n");
    Do({"new", In("a"), "--key-file", key});
    EXPECT_EQ(DoJson({"info", In("a"), "--key-file", key})["sealed"], true);
    ExpectFailure(3, {"info", In("a")}, "--key-file");
}

TEST_F(Keys, ANewKeyIsNeverEmpty) {
    const std::string library = ScaledLibrary();
    ExpectFailure(1, {"new", In("b"), "--key-file", Write("empty", "\n")}, "empty");
    ExpectFailure(1, {"rekey", library, "--new-key-file", In("empty")}, "empty");
    ExpectFailure(1, {"new", In("b"), "--key-file", In("missing")}, "missing");
}

TEST_F(Keys, RekeySealsChangesAndUnseals) {
    const std::string library = ScaledLibrary(), first = Write("first", "1"), second = Write("second", "2");
    const auto before = DoJson({"info", library})["maps"];
    Do({"rekey", library, "--new-key-file", first});
    EXPECT_EQ(DoJson({"info", library, "--key-file", first})["maps"], before);
    Do({"rekey", library, "--key-file", first, "--new-key-file", second});
    ExpectFailure(3, {"info", library, "--key-file", first});
    EXPECT_EQ(DoJson({"info", library, "--key-file", second})["maps"], before);
    Do({"rekey", library, "--key-file", second, "--no-key"});
    EXPECT_EQ(DoJson({"info", library})["maps"], before);
    EXPECT_EQ(DoJson({"info", library})["sealed"], false);
    EXPECT_EQ(FileNames().size(), 5U); // no copy of the file under an earlier key stays behind
}

TEST_F(Keys, AKeyForAPlainLibraryIsRefusedForReadingAndWriting) {
    const std::string library = ScaledLibrary(), key = Write("key", "k"), image = Bmp("x.bmp");
    setenv("ATLAVEX_TEST_KEY", "k", 1);
    for (const Words& source : {Words{"--key-file", key}, Words{"--key-env", "ATLAVEX_TEST_KEY"}})
        for (const Words& command :
             {Words{"info", library}, Words{"verify", library}, Words{"compact", library},
              Words{"locate", library, "1", "1", "1"}, Words{"find", library, "1", "500000", "6100000"},
              Words{"add-map", library, image}, Words{"add-icon", library, image},
              Words{"scale", library, "1"} + SheetScaling, Words{"set", library, "map", "1", "a=b"},
              Words{"unset", library, "map", "1", "a"}, Words{"remove", library, "map", "1"},
              Words{"offset", library, "1", "1,1"}, Words{"merge", library, library},
              Words{"rekey", library, "--no-key"}, Words{"rekey", library, "--new-key-file", key},
              Words{"extract", library, "1", "--out", In("o.png")},
              Words{"extract-icon", library, "1", "--out", In("o.png")},
              Words{"render", library, "1", "--zoom", "1", "--at", "0,0", "--size", "9x9", "--out",
                    In("o.png")},
              Words{"export-tiles", library, "1", "--to", In("t")}})
            EXPECT_EQ(ExpectFailure(3, command + source, "is not sealed"), "");
    unsetenv("ATLAVEX_TEST_KEY");
}

/// Copied as it is stored, a rotten tile shows only when the new file is read back.
TEST_F(Keys, RotInASealedLibraryIsDamageToACompactToo) {
    const std::string library = SealedLibrary("a.Atlavex", "k"), key = Write("key", "k");
    Do({"add-map", library, Bmp("Treasure.bmp"), "--key-file", key});
    Python("import sqlite3, sys\n"
           "file = sqlite3.connect(sys.argv[3])\n"
           "number, data = file.execute('SELECT id, data FROM blob ORDER BY id').fetchone()\n"
           "data = data[:100] + bytes([data[100] ^ 1]) + data[101:]\n"
           "file.execute('UPDATE blob SET data = ? WHERE id = ?', (data, number))\n"
           "file.commit()",
           {library});
    ExpectFailure(7, {"verify", library, "--key-file", key}, "damaged");
    ExpectFailure(7, {"compact", library, "--key-file", key}, "Treasure");
    ExpectFailure(7, {"rekey", library, "--key-file", key, "--new-key-file", Write("new", "n")}, "Treasure");
}

TEST_F(Keys, APlainFileInThePlaceOfASealedOneIsNotTakenForIt) {
    const std::string library = SealedLibrary("a.Atlavex", "k"), key = Write("key", "k");
    Do({"add-icon", library, Bmp("Hut.bmp", 16, 16), "--key-file", key});
    std::filesystem::copy_file(ScaledLibrary("b.Atlavex"), library,
                               std::filesystem::copy_options::overwrite_existing);
    ExpectFailure(3, {"info", library, "--key-file", key}, "a.Atlavex");
    ExpectFailure(3, {"add-map", library, Bmp("Secret.bmp"), "--key-file", key}, "a.Atlavex");
}

TEST_F(Keys, TheOtherKeyIsRefusedOnlyWhenNoneOfTheOthersIsSealed) {
    const std::string a = ScaledLibrary("a.Atlavex"), b = ScaledLibrary("b.Atlavex"),
                      c = SealedLibrary("c.Atlavex", "C");
    const std::string keyC = Write("keyC", "C");
    setenv("ATLAVEX_TEST_KEY", "C", 1);
    ExpectFailure(3, {"merge", a, b, b, "--other-key-file", keyC}, "sealed");
    ExpectFailure(3, {"merge", a, b, "--other-key-env", "ATLAVEX_TEST_KEY"}, "sealed");
    unsetenv("ATLAVEX_TEST_KEY");
    Do({"merge", a, b, c, "--other-key-file", keyC});
    EXPECT_EQ(DoJson({"info", a})["maps"].size(), 2U);
}

TEST_F(Keys, ASealedLibraryIsMergedWithItsOwnOrTheNamedKey) {
    const std::string a = ScaledLibrary("a.Atlavex"), b = SealedLibrary("b.Atlavex", "B");
    const std::string keyA = Write("keyA", "A"), keyB = Write("keyB", "B");
    Do({"merge", b, a, "--key-file", keyB});
    ExpectFailure(3, {"merge", a, b}, "b.Atlavex");
    ExpectFailure(3, {"merge", a, b, "--other-key-file", keyA}, "b.Atlavex");
    Do({"merge", a, b, "--other-key-file", keyB});
    EXPECT_EQ(DoJson({"info", a})["maps"].size(), 2U);
    EXPECT_EQ(DoJson({"info", a})["sealed"], false);
    Do({"merge", b, b, "--key-file", keyB});
    EXPECT_EQ(DoJson({"info", b, "--key-file", keyB})["maps"].size(), 2U);
    Do({"verify", b, "--key-file", keyB});
}
