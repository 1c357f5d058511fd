#include "cli/commands/Completion.h"

#include "cli/commands/CompletionTexts.h"
#include "cli/output/Output.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <map>

namespace {

/// The command line in front of the word that is being typed, as its command understands it.
struct TypedLine {
    const CLI::App* command = nullptr;
    std::vector<std::string> positionals;
    std::map<std::string, std::string> values; ///< of options, by name
    const CLI::Option* awaiting = nullptr;     ///< the option whose value comes next
    bool optionsEnded = false;                 ///< by "--"

    std::string Positional(std::size_t place) const {
        return place < positionals.size() ? positionals[place] : "";
    }
    std::string Value(const std::string& option) const {
        const auto found = values.find(option);
        return found == values.end() ? "" : found->second;
    }
};

const CLI::Option* OptionOf(const CLI::App& command, const std::string& name) {
    return name.starts_with('-') ? command.get_option_no_throw(name) : nullptr;
}

bool TakesValue(const CLI::Option& option) {
    return option.get_items_expected_max() > 0;
}

void Read(TypedLine& line, const std::string& word) {
    if (line.awaiting != nullptr) {
        line.values[line.awaiting->get_name()] = word;
        line.awaiting = nullptr;
        return;
    }
    if (!line.optionsEnded && word == "--") {
        line.optionsEnded = true;
        return;
    }
    const std::size_t equals = word.find('=');
    const CLI::Option* option = line.optionsEnded ? nullptr : OptionOf(*line.command, word.substr(0, equals));
    if (option == nullptr)
        line.positionals.push_back(word);
    else if (equals != std::string::npos)
        line.values[option->get_name()] = word.substr(equals + 1);
    else if (TakesValue(*option))
        line.awaiting = option;
    else
        line.values[option->get_name()] = "";
}

/// What a shell is asked to offer, with the words where it is words.
struct Offer {
    std::string kind;
    OfferedWords words = {};
};

using Offering = Offer (*)(const TypedLine&);

Offer OfferFiles(const TypedLine&) {
    return {"files"};
}

/// Arguments by name, with what they can be. Of those that are not named here the form decides.
const std::map<std::string, Offering>& OfferingsByName() {
    static const std::map<std::string, Offering> table{
        {"FILE", [](const TypedLine&) { return Offer{"libraries"}; }},
        {"OTHER", [](const TypedLine&) { return Offer{"libraries"}; }},
        {"IMAGE", OfferFiles},
        {"--out", OfferFiles},
        {"--worldfile", OfferFiles},
        {"--to", [](const TypedLine&) { return Offer{"folders"}; }},
        {"--grid",
         [](const TypedLine&) {
             return Offer{"words", GridsToOffer()};
         }},
        {"--unit",
         [](const TypedLine&) {
             return Offer{"words", UnitsToOffer()};
         }},
        {"--zone",
         [](const TypedLine& line) {
             return Offer{"words", ZonesToOffer(line.Value("--grid"))};
         }},
        {"--datum",
         [](const TypedLine&) {
             return Offer{"words", DatumsToOffer()};
         }},
        {"MAP",
         [](const TypedLine& line) {
             return Offer{"words", MapsToOffer(line.Positional(0))};
         }},
        {"ICON",
         [](const TypedLine& line) {
             return Offer{"words", IconsToOffer(line.Positional(0))};
         }},
        {"KIND",
         [](const TypedLine&) {
             return Offer{"words", {{"map", ""}, {"icon", ""}}};
         }},
        {"WHICH",
         [](const TypedLine& line) {
             return Offer{"words", line.Positional(1) == "icon" ? IconsToOffer(line.Positional(0))
                                                                : MapsToOffer(line.Positional(0))};
         }},
        {"KEYS",
         [](const TypedLine& line) {
             return Offer{"words", KeysToOffer(line.Positional(0), line.Positional(1), line.Positional(2))};
         }},
        {"PAIRS",
         [](const TypedLine& line) {
             OfferedWords keys = KeysToOffer(line.Positional(0), line.Positional(1), line.Positional(2));
             for (OfferedWord& key : keys)
                 key.word += '=';
             return Offer{"words", keys};
         }},
    };
    return table;
}

Offer ValuesOf(const CLI::Option& option, const TypedLine& line) {
    const std::string name = option.get_name();
    const auto known = OfferingsByName().find(name);
    if (known != OfferingsByName().end())
        return known->second(line);
    if (name.ends_with("-env"))
        return {"words", VariablesToOffer()};
    if (name.ends_with("-file") || option.get_type_name() == "FILE")
        return {"files"};
    if (option.get_type_name() == "DIR")
        return {"folders"};
    return {"nothing"};
}

/// As much of an explanation as fits behind a word: its first clause.
std::string FirstClause(const std::string& text) {
    return text.substr(0, std::min(text.find(". "), text.find_first_of(";:\n")));
}

/// The options that may still be given.
Offer OptionsOf(const TypedLine& line) {
    Offer offer{"words"};
    for (const CLI::Option* option : line.command->get_options()) {
        const bool again = option->get_multi_option_policy() == CLI::MultiOptionPolicy::TakeAll;
        if (!option->get_positional() && (again || line.values.count(option->get_name()) == 0))
            offer.words.push_back({option->get_name(), FirstClause(option->get_description())});
    }
    return offer;
}

/// The positional argument that the next word is; nothing when there are enough.
const CLI::Option* NextPositional(const TypedLine& line) {
    const auto positionals =
        line.command->get_options([](const CLI::Option* option) { return option->get_positional(); });
    if (line.positionals.size() < positionals.size())
        return positionals[line.positionals.size()];
    const bool last = !positionals.empty() &&
                      positionals.back()->get_multi_option_policy() == CLI::MultiOptionPolicy::TakeAll;
    return last ? positionals.back() : nullptr;
}

/// The value of an option that stands in one word with it: "--grid=UTM".
Offer ValueInWord(const TypedLine& line, const CLI::Option& option, const std::string& front) {
    Offer offer = ValuesOf(option, line);
    for (OfferedWord& word : offer.words)
        word.word = front + word.word;
    return offer;
}

Offer OfferFor(const TypedLine& line, const std::string& typed) {
    if (line.awaiting != nullptr)
        return ValuesOf(*line.awaiting, line);
    const std::size_t equals = typed.find('=');
    if (!line.optionsEnded && typed.starts_with('-')) {
        const CLI::Option* option =
            equals == std::string::npos ? nullptr : OptionOf(*line.command, typed.substr(0, equals));
        return option == nullptr ? OptionsOf(line) : ValueInWord(line, *option, typed.substr(0, equals + 1));
    }
    if (const CLI::Option* next = NextPositional(line))
        return ValuesOf(*next, line);
    return line.optionsEnded ? Offer{"nothing"} : OptionsOf(line);
}

Offer CommandsOf(const CLI::App& program, const std::string& typed) {
    if (typed.starts_with('-'))
        return {"words", {{"--help", "Print the list of commands"}, {"--version", "Print the version"}}};
    Offer offer{"words", {{"help", "Explain a command"}}};
    for (const CLI::App* command : program.get_subcommands([](const CLI::App*) { return true; }))
        offer.words.push_back({command->get_name(), FirstClause(command->get_description())});
    return offer;
}

Offer OfferFor(const CLI::App& program, const std::vector<std::string>& words) {
    const std::string typed = words.empty() ? "" : words.back();
    if (words.size() < 2 || (words.size() == 2 && words.front() == "help"))
        return CommandsOf(program, typed);
    const auto named = program.get_subcommands(
        [&words](const CLI::App* command) { return command->get_name() == words.front(); });
    if (named.empty())
        return {"nothing"};
    TypedLine line;
    line.command = named.front();
    for (std::size_t place = 1; place + 1 < words.size(); ++place)
        Read(line, words[place]);
    return OfferFor(line, typed);
}

} // namespace

std::string CompletionOf(const CLI::App& program, const std::vector<std::string>& words) {
    const Offer offer = OfferFor(program, words);
    std::string answer = offer.kind + "\n";
    for (const OfferedWord& word : offer.words)
        if (Printable(word.word) == word.word)
            answer += word.word + (word.explanation.empty() ? "" : "\t" + Printable(word.explanation)) + "\n";
    return answer;
}
