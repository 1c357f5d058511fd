// One operation on a map library, as a program of its own, so that it can be killed, traced, or starved of
// disk and memory from outside.
//
//   fault_driver OPERATION SCRATCH FILE [ARGUMENT]
//
// Keys come as FAULT_KEY (of FILE) and FAULT_NEW_KEY. Standard output: "error NUMBER SENTENCE", or the
// content that was read. Exit status: 0 done, 1 a component error, 2 no memory, 3 any other exception.

#include "base/ComponentError.h"
#include "tests/faults/LibraryContent.h"

#include <cstdlib>
#include <fstream>
#include <functional>
#include <iostream>
#include <map>
#include <new>

namespace {

struct Job {
    std::string scratch;
    std::string file;
    std::string argument;
    std::string key;
    std::string newKey;
};

std::string Environment(const char* name) {
    const char* value = std::getenv(name);
    return value != nullptr ? value : "";
}

std::unique_ptr<AtlavexLibrary> NewLibrary(const Job& job, NewTiles newTiles = NewTiles::Scratch) {
    LibraryOptions options = CheapOptions(job.scratch);
    options.newTiles = newTiles;
    return CreateAtlavexLibrary(options);
}

std::unique_ptr<AtlavexLibrary> Load(const Job& job, NewTiles newTiles = NewTiles::Scratch) {
    auto library = NewLibrary(job, newTiles);
    library->LoadFromFile(job.file, job.key);
    if (!library->KeyFitted())
        throw ComponentError(ErrorNumber::Failed, "wrong key");
    return library;
}

void Tell(const ComponentError& error) {
    std::cout << "error " << error.Code() << ' ' << error.Description() << std::endl;
}

void FirstSave(const Job& job) {
    const auto library = NewLibrary(job);
    library->MergeFromFile(job.argument, job.key);
    library->SaveToFile(job.file, job.key);
}

void New(const Job& job) {
    const auto library = NewLibrary(job);
    library->AddMapFromImageFile(job.argument, "First", 256, 256);
    library->SaveToFile(job.file, job.key);
}

void AddMap(const Job& job) {
    const auto library = Load(job);
    library->AddMapFromImageFile(job.argument, "Added", 256, 256);
    library->SaveToFile(job.file, job.key);
}

void DirectAddMap(const Job& job) {
    const auto library = Load(job, NewTiles::LibraryFile);
    library->AddMapFromImageFile(job.argument, "Added", 256, 256);
    library->SaveToFile(job.file, job.key);
}

void SetMetadata(const Job& job) {
    const auto library = Load(job);
    library->GetMap(library->MapIdAt(1))->SetMetadata("remark", job.argument);
    library->SaveToFile(job.file, job.key);
}

void RemoveMap(const Job& job) {
    const auto library = Load(job);
    library->RemoveMap(library->MapIdAt(1));
    library->SaveToFile(job.file, job.key);
}

void Rekey(const Job& job) {
    const auto library = Load(job);
    library->SaveToFile(job.file, job.newKey);
}

void SaveAs(const Job& job) {
    const auto library = Load(job);
    library->SaveToFile(job.argument, job.newKey);
}

void Merge(const Job& job) {
    const auto library = Load(job);
    library->MergeFromFile(job.argument, job.key);
    library->SaveToFile(job.file, job.key);
}

void Compact(const Job& job) {
    const auto library = Load(job);
    library->Compact();
}

void Export(const Job& job) {
    const auto library = Load(job);
    library->GetMap(library->MapIdAt(1))->ExportTiles(job.argument, ".png");
}

/// Does one step after the other and keeps the work; says after each, in the file of the argument, what there
/// is.
void DoSteps(const Job& job, AtlavexLibrary& library) {
    std::ofstream said(job.argument, std::ios::app);
    const std::string image = Environment("FAULT_IMAGE");
    const auto map = [&](std::int32_t position) { return library.GetMap(library.MapIdAt(position)); };
    const std::vector<std::function<void()>> steps{
        [] {},
        [&] { library.AddMapFromImageFile(image, "Added first", 128, 64); },
        [&] { map(library.MapCount())->SetIdentifier("first"); },
        [&] { map(library.MapCount())->SetMetadata("remark", "remarkable"); },
        [&] {
            map(library.MapCount())->SetMapDatum(QuorvantDatum().AsNumbers());
            map(library.MapCount())->SetScalingThreePoints({9, 48, 0, 0}, {10, 48, 99, 0}, {9, 47, 0, 99});
        },
        [&] { library.AddIconFromImageFile(image, "Added icon"); },
        [&] { library.GetIcon(library.IconIdAt(library.IconCount()))->SetOffsetX(-7); },
        [&] { map(1)->SetMetadata("name", "Renamed"); },
        [&] { library.AddMapFromImageFile(image, "Added second", 64, 64); },
        [&] { library.AddMapFromImageFile(image, "Added third", 256, 256); },
        [&] { library.RemoveMap(library.MapIdAt(1)); },
        [&] { library.RemoveMap(library.MapIdAt(library.MapCount() - 1)); },
        [&] { library.GetIcon(library.IconIdAt(1))->SetMetadata("remark", "remarkable too"); },
        [&] { map(1)->SetMetadata("remark", "last"); }};
    for (const auto& step : steps) {
        step();
        library.KeepUnsavedWork();
        said << OneLine(ContentOf(library)) << std::endl;
    }
}

std::unique_ptr<AtlavexLibrary> NewKeepingLibrary(const Job& job) {
    LibraryOptions options = CheapOptions(job.scratch);
    options.keepUnsavedWork = true;
    return CreateAtlavexLibrary(options);
}

void Edit(const Job& job) {
    const auto library = NewKeepingLibrary(job);
    library->LoadFromFile(job.file, job.key);
    DoSteps(job, *library);
}

void EditNew(const Job& job) {
    DoSteps(job, *NewKeepingLibrary(job));
}

void Read(const Job& job) {
    const auto library = Load(job);
    for (const Damage& damage : library->Verify())
        std::cout << "damage " << damage.object << ": " << damage.reason << std::endl;
    std::cout << ContentOf(*library) << std::endl;
}

void Do(const std::string& operation, const Job& job) {
    static const std::map<std::string, void (*)(const Job&)> operations = {{"new", New},
                                                                           {"first-save", FirstSave},
                                                                           {"add-map", AddMap},
                                                                           {"direct-add-map", DirectAddMap},
                                                                           {"set-metadata", SetMetadata},
                                                                           {"remove-map", RemoveMap},
                                                                           {"rekey", Rekey},
                                                                           {"save-as", SaveAs},
                                                                           {"merge", Merge},
                                                                           {"compact", Compact},
                                                                           {"export", Export},
                                                                           {"edit", Edit},
                                                                           {"edit-new", EditNew},
                                                                           {"read", Read}};
    operations.at(operation)(job);
}

} // namespace

int main(int count, char** texts) {
    try {
        std::vector<std::string> arguments(texts + 1, texts + count);
        Job job;
        arguments.resize(4);
        job.scratch = arguments[1];
        job.file = arguments[2];
        job.argument = arguments[3];
        job.key = Environment("FAULT_KEY");
        job.newKey = Environment("FAULT_NEW_KEY");
        Do(arguments[0], job);
        return 0;
    } catch (const ComponentError& error) {
        Tell(error);
        return 1;
    } catch (const std::bad_alloc&) {
        return 2;
    } catch (const std::exception& error) {
        std::cerr << error.what() << std::endl;
        return 3;
    }
}
