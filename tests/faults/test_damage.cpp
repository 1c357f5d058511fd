// Flipped bits and files that break off: what opens shows exactly what was saved, all else is an error.

#include "base/ComponentError.h"
#include "tests/faults/FaultLab.h"

#include <gtest/gtest.h>

#include <map>
#include <set>

namespace {

namespace fs = std::filesystem;

/// Bits are flipped at this distance in the middle of a file, at every byte of its first pages.
constexpr std::size_t Stride = 37;
constexpr std::size_t EveryByteBelow = 1024;
constexpr std::size_t CutStride = 509;

/// Whether a damaged file may answer so.
bool IsOrderly(const std::string& answer, const std::string& intact, bool isSealed) {
    static const std::set<ErrorNumber> refusals = {ErrorNumber::FileDamaged, ErrorNumber::NotALibrary,
                                                   ErrorNumber::NewerVersion};
    if (answer == intact || (isSealed && answer == "wrong key"))
        return true;
    if (!answer.starts_with("error "))
        return false;
    return refusals.contains(static_cast<ErrorNumber>(std::stoi(answer.substr(6))));
}

/// "sealed", "plain", or "error": what the flag says.
std::string Flag(const fs::path& file) {
    try {
        return CreateAtlavexLibrary()->IsEncrypted(file.string()) ? "sealed" : "plain";
    } catch (const ComponentError&) {
        return "error";
    }
}

class DamagedFiles : public testing::TestWithParam<std::string> {
protected:
    void SetUp() override {
        MakeLibrary(file_, 1, 60, GetParam());
        bytes_ = ReadWholeFile(file_);
        intact_ = ContentOfFile(file_, GetParam());
        ASSERT_EQ(intact_.find("error"), std::string::npos) << intact_;
    }

    void Try(const std::string& bytes, const std::string& what) {
        fs::remove(damaged_);
        WriteWholeFile(damaged_, bytes);
        const bool isSealed = !GetParam().empty();
        const std::string answer = ContentOfFile(damaged_, GetParam());
        ASSERT_TRUE(IsOrderly(answer, intact_, isSealed)) << what << ": " << answer;
        ++answers_[answer.substr(0, 8)];
        const bool showsWithoutKey =
            isSealed && Flag(damaged_) == "plain" && ContentOfFile(damaged_, "") == intact_;
        ASSERT_FALSE(showsWithoutKey) << what;
    }

    TempFolder folder_;
    fs::path file_ = folder_ / "intact.Atlavex";
    fs::path damaged_ = folder_ / "damaged.Atlavex";
    std::string bytes_;
    std::string intact_;
    std::map<std::string, int> answers_;
};

} // namespace

TEST_P(DamagedFiles, WithAFlippedBitShowWhatWasSavedOrAnError) {
    for (std::size_t at = 0; at < bytes_.size(); at += at < EveryByteBelow ? 1 : Stride) {
        std::string flipped = bytes_;
        flipped[at] = static_cast<char>(static_cast<unsigned char>(flipped[at]) ^ (1U << at % 8));
        ASSERT_NO_FATAL_FAILURE(Try(flipped, "bit flipped in byte " + std::to_string(at)));
    }
    EXPECT_GT(answers_["error 26"], 100);
}

TEST_P(DamagedFiles, WithZerosOrNoiseInPlaceOfASectorShowWhatWasSavedOrAnError) {
    for (std::size_t at = 0; at < bytes_.size(); at += 512)
        for (const char fill : {'\0', '\xff'}) {
            std::string torn = bytes_;
            torn.replace(at, 512, std::string(512, fill));
            ASSERT_NO_FATAL_FAILURE(Try(torn, "sector at " + std::to_string(at)));
        }
}

TEST_P(DamagedFiles, ThatBreakOffShowAnError) {
    for (std::size_t length = 0; length < bytes_.size(); length += length < 200 ? 1 : CutStride) {
        ASSERT_NO_FATAL_FAILURE(Try(bytes_.substr(0, length), "cut at " + std::to_string(length)));
        ASSERT_NE(ContentOfFile(damaged_, GetParam()), intact_) << length;
    }
    for (std::size_t length = 0; length < bytes_.size(); length += 8192)
        ASSERT_NO_FATAL_FAILURE(Try(bytes_.substr(0, length), "cut at page " + std::to_string(length)));
}

TEST_P(DamagedFiles, WithSomethingAppendedShowWhatWasSavedOrAnError) {
    for (const std::size_t length : {1U, 512U, 8191U, 8192U, 16384U})
        ASSERT_NO_FATAL_FAILURE(
            Try(bytes_ + std::string(length, 'x'), "longer by " + std::to_string(length)));
}

/// SQLite's own check says "ok" to a file that was copied in mid-save without its journal; ours must not.
TEST_P(DamagedFiles, WithPagesOfTwoSavesShowAnError) {
    const auto library = CreateAtlavexLibrary(CheapOptions(folder_.Path().string()));
    library->LoadFromFile(file_.string(), GetParam());
    const auto map = library->GetMap(library->MapIdAt(1));
    map->SetMetadata("author", "Someone else"); // of the same length or not: pages stay where they are
    map->SetZoom(2);
    library->SaveToFile(file_.string(), GetParam());
    const std::string later = ReadWholeFile(file_);
    const std::string fresh = ContentOfFile(file_, GetParam());
    ASSERT_EQ(later.size(), bytes_.size());
    int mixtures = 0;
    for (std::size_t page = 0; page < bytes_.size(); page += 8192) {
        std::string mixed = bytes_;
        mixed.replace(page, 8192, later, page, 8192);
        if (mixed == bytes_ || mixed == later)
            continue;
        ++mixtures;
        fs::remove(damaged_);
        WriteWholeFile(damaged_, mixed);
        const std::string answer = ContentOfFile(damaged_, GetParam());
        // The first page holds counters of SQLite's only, which may come from either.
        EXPECT_TRUE(IsOrderly(answer, page == 0 ? intact_ : "none", !GetParam().empty())) << page << answer;
    }
    EXPECT_GT(mixtures, 1);
}

INSTANTIATE_TEST_SUITE_P(PlainAndSealed, DamagedFiles, testing::Values("", TestKey),
                         [](const testing::TestParamInfo<std::string>& kind) {
                             return kind.param.empty() ? "Plain" : "Sealed";
                         });
