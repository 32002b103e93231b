#include "tools/output/toolwords.h"

#include <algorithm>

namespace ZUNO::Tools {

namespace {

/// A word that may be typed, and what it means.
struct Candidate {
    std::string mWord;
    std::string mMeaning;
};

/// The words of a choice, as `oneOf` describes it: "TEXT:maze|town".
std::vector<Candidate> choiceOf(const CLI::Option& option) {
    const std::string type = option.get_type_name();
    std::vector<Candidate> words;
    if (type.find('|') == std::string::npos)
        return words;
    for (const std::string& word : CLI::detail::split(type.substr(type.find(':') + 1), '|'))
        words.push_back({word, ""});
    return words;
}

/// The command line up to the word that is being typed.
class Place {
public:
    Place(const CLI::App& app, const std::vector<std::string>& words) : mApp(&app) {
        for (std::size_t i = 0; i + 1 < words.size(); ++i)
            pass(words[i]);
    }

    std::vector<Candidate> candidates(const std::string& begun) const {
        if (mOption != nullptr)
            return choiceOf(*mOption);
        if (begun.starts_with('-'))
            return options();
        const std::vector<const CLI::App*> commands = mApp->get_subcommands(
            [](const CLI::App* command) { return !command->get_group().empty(); });
        std::vector<Candidate> words;
        words.reserve(commands.size());
        for (const CLI::App* const command : commands)
            words.push_back({command->get_name(), command->get_description()});
        return words.empty() ? positional() : words;
    }

private:
    void pass(const std::string& word) {
        if (mOption != nullptr) {
            mOption = nullptr; // this was its value
        } else if (word.starts_with('-')) {
            const CLI::Option* const option = mApp->get_option_no_throw(word);
            if (option != nullptr && option->get_items_expected_min() > 0)
                mOption = option;
        } else if (const CLI::App* const command = commandOf(word); command != nullptr) {
            mApp = command;
        } else {
            ++mPositionals;
        }
    }

    const CLI::App* commandOf(const std::string& name) const {
        const auto commands = mApp->get_subcommands(
            [&](const CLI::App* command) { return command->get_name() == name; });
        return commands.empty() ? nullptr : commands.front();
    }

    std::vector<Candidate> options() const {
        std::vector<Candidate> words;
        for (const CLI::Option* const option : mApp->get_options())
            for (const std::string& name : option->get_lnames())
                words.push_back({"--" + name, option->get_description()});
        return words;
    }

    std::vector<Candidate> positional() const {
        const auto positionals =
            mApp->get_options([](const CLI::Option* option) { return option->get_positional(); });
        return mPositionals < positionals.size() ? choiceOf(*positionals[mPositionals])
                                                 : std::vector<Candidate>();
    }

    const CLI::App* mApp;
    const CLI::Option* mOption = nullptr; ///< whose value comes next
    std::size_t mPositionals = 0;         ///< before this place
};

} // namespace

std::string completionsOf(const CLI::App& app, const std::vector<std::string>& words) {
    const std::string begun = words.empty() ? "" : words.back();
    std::string lines;
    for (const Candidate& each : Place(app, words).candidates(begun))
        if (each.mWord.starts_with(begun))
            lines += each.mWord + '\t' + each.mMeaning + '\n';
    return lines;
}

} // namespace ZUNO::Tools
