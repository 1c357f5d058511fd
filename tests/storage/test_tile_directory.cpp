// Tiles and the pages that list them, in a real database.

#include "base/ComponentError.h"
#include "component/storage/Schema.h"
#include "component/storage/TileDirectory.h"
#include "tests/storage/CheapKey.h"
#include "tests/storage/Hex.h"
#include "tests/support/TempFolder.h"

#include <gtest/gtest.h>
#include <sqlite3.h>

#include <set>
#include <thread>

namespace {

/// Plain and sealed.
class TileDirectory : public testing::TestWithParam<bool> {
protected:
    std::shared_ptr<Container> NewContainer(const std::string& name,
                                            const std::shared_ptr<const Envelope>& envelope) {
        WriteWholeFile(folder_ / name, "");
        auto database = std::make_unique<Database>(folder_ / name, Database::Mode::Fill, name);
        CreateScratchSchema(*database);
        return std::make_shared<Container>(std::move(database), envelope);
    }
    static std::shared_ptr<const Envelope> NewEnvelope() {
        return GetParam() ? Envelope::Sealed("k", Cheap) : Envelope::Plain();
    }

    /// A different tile for every entry, but for those of row 0, which are all alike.
    static Bytes TileOf(int level, std::int32_t row, std::int32_t column) {
        return BytesOf(row == 0 ? std::string("alike")
                                : std::to_string(level) + "/" + std::to_string(row) + "/" +
                                      std::to_string(column));
    }
    std::vector<PageRef> Write(Container& container) {
        TileWriter writer(container, numbers_, layout_);
        ForEveryTile([&](int level, std::int32_t row, std::int32_t column) {
            writer.Put(level, row, column, TileOf(level, row, column));
        });
        return writer.Finish();
    }
    void ForEveryTile(const std::function<void(int, std::int32_t, std::int32_t)>& function) const {
        for (int level = 0; level < layout_.Levels(); ++level)
            for (std::int32_t row = 0; row < layout_.Level(level).rows; ++row)
                for (std::int32_t column = 0; column < layout_.Level(level).columns; ++column)
                    function(level, row, column);
    }
    void ExpectReads(const std::shared_ptr<Container>& container, const std::vector<PageRef>& pages) const {
        TileReader reader(container, layout_, pages, "North");
        ForEveryTile([&](int level, std::int32_t row, std::int32_t column) {
            ASSERT_EQ(reader.ReadTile(level, row, column), TileOf(level, row, column));
        });
    }
    static std::string ErrorOf(const std::function<void()>& read) {
        try {
            read();
        } catch (const ComponentError& error) {
            EXPECT_EQ(error.Number(), ErrorNumber::FileDamaged);
            return error.Description();
        }
        return "no error";
    }

    TempFolder folder_;
    /// 2,736 tiles in all: three pages.
    PyramidLayout layout_{64 * 45, 64 * 45, 64, 64};
    NumberSource numbers_;
};

} // namespace

INSTANTIATE_TEST_SUITE_P(PlainAndSealed, TileDirectory, testing::Bool(),
                         [](const auto& sealed) { return sealed.param ? "Sealed" : "Plain"; });

TEST_P(TileDirectory, GivesBackEveryTileThroughPagesOfAThousand) {
    const auto container = NewContainer("a", NewEnvelope());
    const std::vector<PageRef> pages = Write(*container);
    EXPECT_EQ(static_cast<std::int64_t>(pages.size()), PagesFor(layout_.Entries()));
    EXPECT_EQ(pages.size(), 3U);
    ExpectReads(container, pages);
}

TEST_P(TileDirectory, IsReadBySeveralThreadsAtOnce) {
    const auto container = NewContainer("a", NewEnvelope());
    const std::vector<PageRef> pages = Write(*container);
    TileReader reader(container, layout_, pages, "North");
    std::atomic<int> wrong{0};
    {
        std::vector<std::jthread> threads;
        for (int i = 0; i < 4; ++i)
            threads.emplace_back([&] {
                ForEveryTile([&](int level, std::int32_t row, std::int32_t column) {
                    wrong += reader.ReadTile(level, row, column) != TileOf(level, row, column);
                });
            });
    }
    EXPECT_EQ(wrong, 0);
}

TEST_P(TileDirectory, KeepsIdenticalTilesOnce) {
    const auto container = NewContainer("a", NewEnvelope());
    const std::vector<PageRef> pages = Write(*container);
    TileReader reader(container, layout_, pages, "North");
    EXPECT_EQ(reader.Entry(0), reader.Entry(44));
    EXPECT_EQ(reader.Entry(0), reader.Entry(layout_.Entries() - 1));
    EXPECT_NE(reader.Entry(45), reader.Entry(46));
    std::set<std::int64_t> numbers;
    for (std::int64_t entry = 0; entry < layout_.Entries(); ++entry)
        numbers.insert(reader.Entry(entry).number);
    EXPECT_EQ(container->GetDatabase().Number("SELECT count(*) FROM blob"),
              static_cast<std::int64_t>(numbers.size()));
}

TEST_P(TileDirectory, NamesADamagedOrMissingTile) {
    const auto container = NewContainer("a", NewEnvelope());
    const std::vector<PageRef> pages = Write(*container);
    TileReader reader(container, layout_, pages, "North");
    const std::int64_t damaged = reader.Entry(layout_.Entry(0, 3, 4)).number;
    const std::int64_t missing = reader.Entry(layout_.Entry(1, 2, 1)).number;
    container->GetDatabase().Execute(
        ("UPDATE blob SET data = CAST(x'00' || data AS BLOB) WHERE id = " + std::to_string(damaged)).c_str());
    container->Remove(BlobKind::Tile, missing);
    EXPECT_NE(ErrorOf([&] { reader.ReadTile(0, 3, 4); }).find("Map 'North', level 0, row 3, column 4"),
              std::string::npos);
    EXPECT_NE(ErrorOf([&] { reader.ReadTile(1, 2, 1); }).find("Map 'North', level 1, row 2, column 1"),
              std::string::npos);
    EXPECT_EQ(reader.ReadTile(0, 3, 5), TileOf(0, 3, 5));
}

TEST_P(TileDirectory, RefusesTilesThatWereSwapped) {
    const auto container = NewContainer("a", NewEnvelope());
    const std::vector<PageRef> pages = Write(*container);
    TileReader reader(container, layout_, pages, "North");
    const std::string one = std::to_string(reader.Entry(layout_.Entry(0, 1, 1)).number);
    const std::string two = std::to_string(reader.Entry(layout_.Entry(0, 1, 2)).number);
    container->GetDatabase().Execute(("UPDATE blob SET id = -1 WHERE id = " + one +
                                      "; UPDATE blob SET id = " + one + " WHERE id = " + two +
                                      "; UPDATE blob SET id = " + two + " WHERE id = -1")
                                         .c_str());
    EXPECT_NE(ErrorOf([&] { reader.ReadTile(0, 1, 1); }), "no error");
    EXPECT_NE(ErrorOf([&] { reader.ReadTile(0, 1, 2); }), "no error");
}

TEST_P(TileDirectory, NamesADamagedPage) {
    const auto container = NewContainer("a", NewEnvelope());
    const std::vector<PageRef> pages = Write(*container);
    container->Remove(BlobKind::DirectoryPage, pages[1].number);
    TileReader reader(container, layout_, pages, "North");
    reader.Entry(999);
    reader.Entry(2000);
    const std::string error = ErrorOf([&] { reader.Entry(1000); });
    EXPECT_NE(error.find("map 'North', page 2"), std::string::npos) << error;
}

TEST_P(TileDirectory, RefusesAPageOfTheWrongLength) {
    const auto container = NewContainer("a", NewEnvelope());
    std::vector<PageRef> pages = Write(*container);
    std::swap(pages[0], pages[2]);
    TileReader reader(container, layout_, pages, "North");
    const std::string error = ErrorOf([&] { reader.Entry(0); });
    EXPECT_NE(error.find("contradicts itself"), std::string::npos) << error;
}

TEST_P(TileDirectory, CopiesAsStoredIntoTheSameFormAndAnewIntoAnother) {
    const auto envelope = NewEnvelope();
    const auto container = NewContainer("a", envelope);
    const std::vector<PageRef> pages = Write(*container);
    const auto copyTo = [&](Container& to, NumberSource* fresh) {
        TileReader reader(container, layout_, pages, "North");
        Progress progress;
        auto copied = CopyTiles(reader, *container, layout_, pages, to, fresh, progress);
        EXPECT_EQ(progress.Done(), layout_.Entries());
        return copied;
    };
    const auto same = NewContainer("same", envelope);
    EXPECT_EQ(copyTo(*same, nullptr), pages);
    ExpectReads(same, pages);
    EXPECT_EQ(same->GetStored(BlobKind::Tile, 1), container->GetStored(BlobKind::Tile, 1));
    const auto renumbered = NewContainer("renumbered", envelope);
    ExpectReads(renumbered, copyTo(*renumbered, &numbers_));
    for (const auto& other : {Envelope::Plain(), Envelope::Sealed("other", Cheap)}) {
        const auto target = NewContainer(other->IsSealed() ? "sealed" : "plain", other);
        const std::vector<PageRef> copied = copyTo(*target, nullptr);
        EXPECT_EQ(copied[0].number, pages[0].number);
        ExpectReads(target, copied);
    }
}

TEST_P(TileDirectory, CopyingChecksEveryTile) {
    const auto container = NewContainer("a", NewEnvelope());
    const std::vector<PageRef> pages = Write(*container);
    TileReader reader(container, layout_, pages, "North");
    container->GetDatabase().Execute(("UPDATE blob SET data = CAST(data || x'00' AS BLOB) WHERE id = " +
                                      std::to_string(reader.Entry(2000).number))
                                         .c_str());
    const auto target = NewContainer("b", container->SharedEnvelope());
    Progress progress;
    EXPECT_NE(ErrorOf([&] { CopyTiles(reader, *container, layout_, pages, *target, nullptr, progress); }),
              "no error");
}

TEST_P(TileDirectory, LeavesNoLookOpenThatFailed) {
    const auto container = NewContainer("a", NewEnvelope());
    Write(*container);
    container->GetDatabase().Execute("UPDATE blob SET data = 'a text' WHERE id = 1");
    EXPECT_NE(ErrorOf([&] { container->GetStored(BlobKind::Tile, 1); }), "no error");
    sqlite3* handle = container->GetDatabase().Handle();
    for (sqlite3_stmt* one = sqlite3_next_stmt(handle, nullptr); one != nullptr;
         one = sqlite3_next_stmt(handle, one))
        EXPECT_EQ(sqlite3_stmt_busy(one), 0) << sqlite3_sql(one);
}

TEST(NumberSource, GivesEveryNumberOnceAndNeverGoesBack) {
    NumberSource numbers;
    EXPECT_EQ(numbers.Allocate(), 1);
    EXPECT_EQ(numbers.Next(), 2);
    numbers.Raise(10);
    numbers.Raise(5);
    EXPECT_EQ(numbers.Allocate(), 10);
    std::vector<std::vector<std::int64_t>> taken(4);
    {
        std::vector<std::jthread> threads;
        for (auto& list : taken)
            threads.emplace_back([&] {
                for (int i = 0; i < 1000; ++i)
                    list.push_back(numbers.Allocate());
            });
    }
    std::set<std::int64_t> all;
    for (const auto& list : taken)
        all.insert(list.begin(), list.end());
    EXPECT_EQ(all.size(), 4000U);
    EXPECT_EQ(numbers.Next(), 4011);
}
