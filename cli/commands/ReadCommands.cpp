#include "cli/commands/CommandSet.h"
#include "cli/output/CatalogueReport.h"
#include "cli/output/Interrupt.h"
#include "cli/output/LibraryReport.h"
#include "cli/output/Output.h"

#include <nlohmann/json.hpp>

namespace {

// info
// ---------------------------------------------------------------------------------------------------------

struct ReadOptions {
    LibraryChoice library;
    bool json = false;
};

ExitStatus RunInfo(const ReadOptions& options) {
    const OpenedLibrary library(options.library, Access::Read);
    if (options.json)
        PrintJson(LibraryAsJson(*library));
    else
        Print(LibraryAsText(*library));
    return ExitStatus::Done;
}

void AddInfo(CommandSet& commands) {
    auto options = std::make_shared<ReadOptions>();
    CLI::App& command =
        commands.Add({"info", "FILE [--json] [--key-file K | --key-env NAME]", "Show what a library holds.",
                      "Lists the maps with size, tiles, coordinate system and reference points, and the "
                      "icons with size and offset, "
                      "each with the texts that belong to it.",
                      "atlavex info alps.Atlavex\natlavex info alps.Atlavex --json"});
    AddLibrary(command, options->library);
    AddJson(command, options->json);
    commands.OnRun(command, options, RunInfo);
}

// verify
// -------------------------------------------------------------------------------------------------------

/// Everything that is damaged. What keeps the library from being opened at all is damage as well.
/// A file that another program saves meanwhile is read anew.
std::vector<Damage> FindDamage(const LibraryChoice& choice) {
    constexpr int MostAttempts = 20;
    for (int attempt = 1;; ++attempt) {
        try {
            return OpenedLibrary(choice, Access::Read)->Verify();
        } catch (const ComponentError& error) {
            if (error.Number() == ErrorNumber::FileDamaged)
                return {{"Library", error.Description()}};
            if (error.Number() != ErrorNumber::FileChanged || attempt == MostAttempts)
                throw;
        }
        ThrowIfInterrupted();
    }
}

void PrintDamageAsJson(const std::string& file, const std::vector<Damage>& damages) {
    nlohmann::ordered_json list = nlohmann::ordered_json::array();
    for (const Damage& damage : damages)
        list.push_back({{"object", damage.object}, {"reason", damage.reason}});
    PrintJson({{"file", file}, {"undamaged", damages.empty()}, {"damage", list}});
}

ExitStatus RunVerify(const ReadOptions& options) {
    const std::vector<Damage> damages = FindDamage(options.library);
    if (options.json)
        PrintDamageAsJson(options.library.file, damages);
    else
        for (const Damage& damage : damages)
            Print(Printable(damage.object + ": " + damage.reason) + "\n");
    if (damages.empty())
        return ExitStatus::Done;
    throw CommandFailure(ExitStatus::FileDamaged, "'" + options.library.file + "' is damaged.");
}

void AddVerify(CommandSet& commands) {
    auto options = std::make_shared<ReadOptions>();
    CLI::App& command = commands.Add({"verify", "FILE [--json] [--key-file K | --key-env NAME]",
                                      "Check every byte of a library.",
                                      "Reads the whole library and compares each tile, icon and record with "
                                      "its digest. Prints one line for each "
                                      "thing that is damaged, and nothing when all is well.",
                                      "atlavex verify alps.Atlavex && echo sound"});
    AddLibrary(command, options->library);
    AddJson(command, options->json);
    commands.OnRun(command, options, RunVerify);
}

// catalogue
// ----------------------------------------------------------------------------------------------------

struct CatalogueOptions {
    bool json = false;
};

ExitStatus RunCatalogue(const CatalogueOptions& options) {
    if (options.json)
        PrintJson(CatalogueAsJson());
    else
        Print(CatalogueAsText());
    return ExitStatus::Done;
}

void AddCatalogue(CommandSet& commands) {
    auto options = std::make_shared<CatalogueOptions>();
    CLI::App& command = commands.Add({"catalogue", "[--json]", "List countries, grids, zones and datums.",
                                      "Lists the texts that --grid, --zone and --datum take, with their "
                                      "identifiers, and which of them each country "
                                      "offers: one line an entry, its parts parted by tabs.",
                                      "atlavex catalogue | grep \"State Plane (nad83)\""});
    AddJson(command, options->json);
    commands.OnRun(command, options, RunCatalogue);
}

} // namespace

void AddReadCommands(CommandSet& commands) {
    AddInfo(commands);
    AddVerify(commands);
    AddCatalogue(commands);
}
