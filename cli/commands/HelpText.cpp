#include "cli/commands/HelpText.h"

#include <sstream>

namespace {

constexpr std::size_t NameColumn = 2;  ///< where the names of arguments begin
constexpr std::size_t TextColumn = 26; ///< where their explanations begin

constexpr const char* ExitStatusText = "0 done, 1 failed, 2 usage, 3 wrong key, 4 map not scaled, 5 image "
                                       "not readable, 6 file changed by another "
                                       "program, 7 file damaged, 129 hung up, 130 interrupted, 131 quit.";

constexpr const char* ProgramText =
    "Makes and reads map libraries (.Atlavex): files that bundle scanned or drawn maps, tie their pixels to "
    "coordinates and hold icons. Everything that the editor does can be done here without a display: make a "
    "library, add images as maps, scale them, ask for coordinates, get pictures, pixels and tiles out "
    "again.\n"
    "Data goes to the standard output, messages to the standard error stream. The reading commands print "
    "JSON with "
    "--json. A key that seals a library comes from --key-file FILE, from --key-env NAME or is asked for on "
    "the "
    "terminal; never from an argument, which others could see.";

constexpr const char* ProgramExample =
    "atlavex new alps.Atlavex\n"
    "atlavex add-map alps.Atlavex sheet.tif --grid \"UTM (etrs89)\" --zone 32 --worldfile sheet.tfw\n"
    "atlavex locate alps.Atlavex 1 250 400 --wgs84\n"
    "atlavex export-tiles alps.Atlavex 1 --to tiles";

constexpr const char* SelectionText =
    "MAP, ICON and WHICH choose by position from 1 (digits), by name or by identifier; name:TEXT and id:TEXT "
    "force "
    "one of the two. A number that begins with \"-.\" stands behind \"--\", or is written \"-0.\".";

void AddLine(std::string& page, std::size_t indent, const std::string& line) {
    page += std::string(line.empty() ? 0 : indent, ' ') + line + "\n";
}

std::string Verbatim(const std::string& text) {
    std::istringstream lines(text);
    std::string page, line;
    while (std::getline(lines, line))
        AddLine(page, NameColumn, line);
    return page;
}

std::string Row(const std::string& name, const std::string& explanation) {
    std::string row = std::string(NameColumn, ' ') + name;
    const std::string wrapped = WrapText(explanation, TextColumn);
    if (row.size() + 2 > TextColumn)
        return row + "\n" + wrapped;
    return row + wrapped.substr(std::min(row.size(), wrapped.size()));
}

std::string NameOf(const CLI::Option& option) {
    const std::string form = option.get_type_size() == 0 ? "" : option.get_type_name();
    if (option.get_positional())
        return form.empty() ? option.get_name(true, false) : form;
    return option.get_name(false, true) + (form.empty() ? "" : " " + form);
}

std::string Rows(const CLI::App& app, bool positional) {
    std::string rows;
    for (const CLI::Option* option : app.get_options([positional](const CLI::Option* candidate) {
             return candidate->get_positional() == positional;
         }))
        rows += Row(NameOf(*option), option->get_description());
    return rows;
}

std::string Section(const std::string& title, const std::string& body) {
    return body.empty() ? "" : "\n" + title + ":\n" + body;
}

std::string CommonEnd() {
    return Section("Exit status", WrapText(ExitStatusText, NameColumn));
}

} // namespace

std::string WrapText(const std::string& text, std::size_t indent, std::size_t width) {
    std::istringstream paragraphs(text);
    std::string page, paragraph;
    while (std::getline(paragraphs, paragraph)) {
        std::istringstream words(paragraph);
        std::string line, word;
        while (words >> word) {
            if (!line.empty() && indent + line.size() + 1 + word.size() > width) {
                AddLine(page, indent, line);
                line.clear();
            }
            line += (line.empty() ? "" : " ") + word;
        }
        AddLine(page, indent, line);
    }
    return page;
}

std::string CommandHelp::make_help(const CLI::App* app, std::string, CLI::AppFormatMode) const {
    return "Usage: atlavex " + text_.name + " " + text_.usage + "\n\n" + WrapText(text_.purpose, 0) +
           Section("Arguments", Rows(*app, true)) + Section("Options", Rows(*app, false)) +
           Section("Example", Verbatim(text_.example)) + CommonEnd();
}

std::string ProgramHelp::make_help(const CLI::App* app, std::string, CLI::AppFormatMode) const {
    std::string commands;
    for (const CLI::App* command : app->get_subcommands({}))
        commands += Row(command->get_name(), command->get_description());
    return "Usage: atlavex COMMAND ARGUMENTS...\n\n" + WrapText(ProgramText, 0) +
           Section("Commands (atlavex help COMMAND tells more)", commands) +
           Section("Options", Rows(*app, false)) + Section("Choosing", WrapText(SelectionText, NameColumn)) +
           Section("Example", Verbatim(ProgramExample)) + CommonEnd();
}
