// What a library shows of records whose digests are right: a plain library can be made by anyone. The input
// is one map record, one icon record, their metadata and a blob, each behind its length; they are put into a
// real file.

#include "base/ComponentError.h"
#include "component/AtlavexLibrary.h"
#include "component/storage/ByteCodec.h"
#include "component/storage/FileHeader.h"
#include "component/storage/LibraryState.h"
#include "component/storage/Schema.h"
#include "fuzz/FuzzInput.h"

namespace {

constexpr std::int64_t MostPixels = 1 << 22;
constexpr std::int64_t MapNumber = 1, IconNumber = 2, BlobNumber = 3, PageNumber = 4;

/// Fills a file with the given records under right digests.
class ForgedLibrary {
public:
    explicit ForgedLibrary(const std::filesystem::path& file)
        : database_(file, Database::Mode::Fill, file.string()), envelope_(Envelope::Plain()) {
        CreateLibrarySchema(database_);
    }
    void Record(BlobKind kind, std::int64_t number, const char* sql, ByteSpan bytes) {
        Statement(database_, sql).Bind(1, number).Bind(2, bytes).Run();
        records_[{kind, number}].stored = envelope_->DigestOf(bytes);
    }
    void Row(std::int64_t number, const char* sql, ByteSpan bytes) {
        Statement(database_, sql).Bind(1, number).Bind(2, bytes).Run();
    }
    Digest DigestOf(ByteSpan bytes) const { return envelope_->DigestOf(bytes); }
    void Finish(std::uint32_t version) {
        FileHeader header;
        header.version = version;
        database_.Execute(("PRAGMA user_version=" + std::to_string(version)).c_str());
        envelope_->Describe(header);
        header.generation = 1;
        header.nextNumber = 100;
        header.mapCount = 1;
        header.iconCount = 1;
        header.root = envelope_->RootOf(RecordListOf(records_));
        const Bytes encoded = header.Encode();
        Statement(database_, "INSERT INTO library(id, header, mac) VALUES(1, ?1, ?2)")
            .Bind(1, encoded)
            .Bind(2, envelope_->MacOf(encoded))
            .Run();
    }

private:
    Database database_;
    std::shared_ptr<const Envelope> envelope_;
    RecordTable records_;
};

/// Every tile of the page is the one blob; the record's first page is that page.
Bytes PageOf(const MapRecord& record, const BlobRef& blob) {
    const auto entries = std::min(record.Layout().Entries(), EntriesPerPage);
    return EncodePage(std::vector<BlobRef>(static_cast<std::size_t>(entries), blob));
}

void Forge(const std::filesystem::path& file, ByteReader& input) {
    const auto part = [&input] {
        return input.Raw(std::min<std::size_t>(input.Integer<std::uint16_t>(), input.Left()));
    };
    MapRecord map = MapRecord::Decode(part());
    IconRecord icon = IconRecord::Decode(part());
    const ByteSpan metadata = part();
    const ByteSpan blob = input.Raw(input.Left());
    ForgedLibrary library(file);
    const BlobRef ref{BlobNumber, static_cast<std::uint32_t>(blob.size()), PngCodec, library.DigestOf(blob)};
    const Bytes page = PageOf(map, ref);
    for (PageRef& of : map.pages)
        of = {PageNumber, library.DigestOf(page)};
    icon.picture = ref;
    library.Record(BlobKind::MapRecord, MapNumber, "INSERT INTO map VALUES(?1, ?2)", map.Encode());
    library.Record(BlobKind::MetadataRecord, MapNumber, "INSERT INTO metadata VALUES(?1, ?2)", metadata);
    library.Record(BlobKind::IconRecord, IconNumber, "INSERT INTO icon VALUES(?1, ?2)", icon.Encode());
    library.Record(BlobKind::MetadataRecord, IconNumber, "INSERT INTO metadata VALUES(?1, ?2)", metadata);
    library.Row(PageNumber, "INSERT INTO tile_index VALUES(?1, ?2)", page);
    library.Row(BlobNumber, "INSERT INTO blob VALUES(?1, ?2)", blob);
    library.Finish(map.Version());
}

void Show(AtlavexMap& map) {
    std::shared_ptr<const AtlavexImage> view;
    map.RenderView(0, 0, 100, 100, view);
    if (map.IsScaled())
        map.WorldToWgs84(map.PixelToWorld({10, 20}));
    if (std::int64_t{map.Width()} * map.Height() <= MostPixels)
        map.ReadPixels([](std::span<const std::uint8_t>, std::int32_t) {});
}

template <typename Work>
void Orderly(const Work& work) {
    try {
        work();
    } catch (const ComponentError&) {
        // The orderly answer.
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static FuzzFile file;
    const std::filesystem::path& path = file.Write({});
    try {
        ByteReader input({data, size});
        Forge(path, input);
    } catch (const MalformedRecord&) {
        return 0;
    }
    LibraryOptions options;
    options.threads = 1;
    const auto library = CreateAtlavexLibrary(options);
    Orderly([&] {
        library->LoadFromFile(path.string(), "");
        Orderly([&] { Show(*library->GetMap(library->MapIdAt(1))); });
        Orderly([&] { library->GetIcon(library->IconIdAt(1))->Image(); });
        library->GetMap(library->MapIdAt(1))->SetMetadata("name", "x");
        library->SaveToFile(path.string(), "");
    });
    return 0;
}
