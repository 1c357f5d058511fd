// Power that fails in the middle of a save in place. What was synced is on the disk; of what was written
// since, any part may be missing, torn at a sector, or garbage.

#include "tests/faults/FaultLab.h"
#include "tests/faults/RecordingVfs.h"

#include <gtest/gtest.h>

#include <map>
#include <random>

namespace {

namespace fs = std::filesystem;

constexpr std::size_t Sector = 512;
constexpr int Cuts = 300;

/// The files of a library as the disk would have them after a power cut.
class Disk {
public:
    Disk(std::map<std::string, std::string> files, unsigned seed)
        : synced_(std::move(files)), random_(seed) {}

    void Take(const DiskEvent& event) {
        if (event.kind == DiskEvent::Kind::Sync) {
            Flush(event.file);
            return;
        }
        unsynced_.push_back(event);
        // The folder is synced right after a deletion only when it matters; the cut decides.
    }

    /// What is found when the power comes back.
    std::map<std::string, std::string> AfterCut() {
        for (const DiskEvent& event : unsynced_)
            Survive(event);
        return synced_;
    }

private:
    void Flush(const std::string& file) {
        std::erase_if(unsynced_, [&](const DiskEvent& event) {
            if (event.file != file || event.kind == DiskEvent::Kind::Delete)
                return false;
            Apply(event);
            return true;
        });
    }

    void Apply(const DiskEvent& event) {
        if (event.kind == DiskEvent::Kind::Delete) {
            synced_.erase(event.file);
            return;
        }
        std::string& bytes = synced_[event.file];
        const auto offset = static_cast<std::size_t>(event.offset);
        if (event.kind == DiskEvent::Kind::Truncate) {
            bytes.resize(offset);
            return;
        }
        bytes.resize(std::max(bytes.size(), offset + event.bytes.size()));
        bytes.replace(offset, event.bytes.size(), event.bytes);
    }

    void Survive(DiskEvent event) {
        switch (random_() % 4) {
        case 0: // never reached the disk
            return;
        case 1: // torn: some sectors only
            if (event.kind == DiskEvent::Kind::Write) {
                TearUp(event);
                return;
            }
            break;
        case 2: // a sector that was being written reads as garbage
            if (event.kind == DiskEvent::Kind::Write)
                for (std::size_t i = 0; i < std::min(Sector, event.bytes.size()); ++i)
                    event.bytes[i] = static_cast<char>(random_());
            break;
        default:
            break;
        }
        Apply(event);
    }

    void TearUp(const DiskEvent& event) {
        for (std::size_t at = 0; at < event.bytes.size(); at += Sector)
            if (random_() % 2 == 0)
                Apply({DiskEvent::Kind::Write, event.file, event.offset + static_cast<std::int64_t>(at),
                       event.bytes.substr(at, Sector)});
    }

    std::map<std::string, std::string> synced_;
    std::vector<DiskEvent> unsynced_;
    std::mt19937 random_;
};

class PowerLoss : public testing::TestWithParam<std::string> {
protected:
    void SetUp() override {
        RecordingVfs::Install();
        MakeLibrary(file_, 2, 200, GetParam());
        fs::create_directory(folder_ / "after");
        MakeNoiseImage(folder_ / "extra.bmp", 300, 300, 5);
    }

    /// A save that adds a map, removes another, changes a text and takes the file to another format version;
    /// gives what SQLite did to the files.
    std::vector<DiskEvent> Save() {
        const auto library = CreateAtlavexLibrary(CheapOptions(folder_.Path().string()));
        library->LoadFromFile(file_.string(), GetParam());
        library->AddMapFromImageFile((folder_ / "extra.bmp").string(), "Added", 256, 256);
        library->GetMap(library->MapIdAt(1))->SetMetadata("author", "Someone else");
        library->GetMap(library->MapIdAt(1))->SetCheckSets({{"towers", {{10.5, 49.5, 20, 15.25, "mill"}}}});
        library->GetMap(library->MapIdAt(1))
            ->SetScalingThreePoints({10, 50, 0, 0}, {11, 50, 40, 0}, {10, 49, 0, 30});
        library->RemoveMap(library->MapIdAt(2));
        RecordingVfs::Start();
        library->SaveToFile(file_.string(), GetParam());
        std::vector<DiskEvent> events = RecordingVfs::Stop();
        std::erase_if(
            events, [](const DiskEvent& event) { return event.file.find("unsaved-") != std::string::npos; });
        return events;
    }

    std::string ContentAfter(const std::map<std::string, std::string>& disk) {
        for (const fs::directory_entry& entry : fs::directory_iterator(folder_ / "after"))
            fs::remove(entry.path());
        for (const auto& [name, bytes] : disk)
            WriteWholeFile(folder_ / "after" / fs::path(name).filename(), bytes);
        return ContentOfFile(folder_ / "after" / file_.filename(), GetParam());
    }

    TempFolder folder_;
    fs::path file_ = folder_ / "sheet.Atlavex";
};

} // namespace

TEST_P(PowerLoss, InASaveInPlaceLeavesTheOldOrTheNewContent) {
    const std::map<std::string, std::string> before = {{file_.string(), ReadWholeFile(file_)}};
    const std::string old = ContentOfFile(file_, GetParam());
    const std::vector<DiskEvent> events = Save();
    const std::string fresh = ContentOfFile(file_, GetParam());
    ASSERT_NE(old, fresh);
    ASSERT_GT(events.size(), 30U);
    ASSERT_EQ(events.back().kind, DiskEvent::Kind::Delete) << "the commit: the journal goes";

    std::map<std::string, int> seen;
    std::mt19937 random(1);
    for (unsigned cut = 0; cut < Cuts; ++cut) {
        const std::size_t back = random() % (cut % 2 == 0 ? events.size() : 6);
        const std::size_t kept = events.size() - back;
        Disk disk(before, cut);
        for (std::size_t i = 0; i < kept; ++i)
            disk.Take(events[i]);
        const std::string content = ContentAfter(disk.AfterCut());
        ASSERT_TRUE(content == old || content == fresh)
            << "cut " << cut << " after " << kept << " of " << events.size() << " steps: " << content;
        ++seen[content];
    }
    EXPECT_GT(seen[old], Cuts / 10);
    EXPECT_GT(seen[fresh], Cuts / 30);
}

INSTANTIATE_TEST_SUITE_P(PlainAndSealed, PowerLoss, testing::Values("", TestKey),
                         [](const testing::TestParamInfo<std::string>& kind) {
                             return kind.param.empty() ? "Plain" : "Sealed";
                         });
