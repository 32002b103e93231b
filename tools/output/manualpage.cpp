#include "pathfinder/version.h"
#include "tools/output/toolwords.h"

#include <algorithm>
#include <map>

namespace ZUNO::Tools {

namespace {

/// Text as it stands, whatever it holds.
std::string plain(const std::string& text) {
    std::string result;
    for (const char c : text) {
        const bool isAtStart = result.empty() || result.back() == '\n';
        if (isAtStart && (c == '.' || c == '\''))
            result += "\\&";
        if (c == '\\')
            result += "\\e";
        else
            result += c == '-' ? "\\-" : std::string(1, c);
    }
    return result;
}

std::string capitals(std::string text) {
    std::ranges::transform(text, text.begin(), [](char c) {
        return c >= 'a' && c <= 'z' ? static_cast<char>(c - 32) : c;
    });
    return text;
}

/// "-o, --output", or "mesh"; behind it what the value may be, where that is said.
std::string headOf(const CLI::Option& option) {
    std::string head = option.get_positional() ? plain(option.get_name(true)) : "";
    for (const std::string& name : option.get_snames())
        head += plain((head.empty() ? "-" : ", -") + name);
    for (const std::string& name : option.get_lnames())
        head += plain((head.empty() ? "--" : ", --") + name);
    const std::string type = option.get_items_expected_max() > 0 ? option.get_type_name() : "";
    const std::size_t colon = type.find(':');
    const std::string value = colon != std::string::npos ? type.substr(colon + 1) : "";
    return ".TP\n\\fB" + head + "\\fR" + (value.empty() ? "" : " \\fI" + plain(value) + "\\fR") +
           '\n';
}

std::string entryOf(const CLI::Option& option) {
    const std::string value = option.get_default_str();
    return headOf(option) + plain(option.get_description()) +
           (value.empty() ? "" : " (default: " + plain(value) + ")") + '\n';
}

/// The options by their groups, in the order of the help.
std::string optionsOf(const CLI::App& app) {
    std::string text;
    for (const CLI::Option* const option : app.get_options())
        if (option->get_positional())
            text += entryOf(*option);
    for (const std::string& group : app.get_groups()) {
        const auto options = app.get_options([&](const CLI::Option* option) {
            return option->get_group() == group && !option->get_positional() &&
                   (option != app.get_help_ptr() || app.get_parent() == nullptr);
        });
        if (!options.empty() && group != "Options")
            text += ".PP\n" + plain(group) + ":\n";
        for (const CLI::Option* const option : options)
            text += entryOf(*option);
    }
    return text;
}

std::string footerOf(const CLI::App& app) {
    return app.get_footer().empty() ? "" : ".PP\n" + plain(app.get_footer()) + '\n';
}

} // namespace

std::string manualPageOf(const CLI::App& app, const std::string& name) {
    const auto commands =
        app.get_subcommands([](const CLI::App* command) { return !command->get_group().empty(); });
    std::string summary = app.get_description();
    summary.erase(summary.find_last_not_of('.') + 1);
    std::string page = ".TH " + capitals(name) +
                       " 1 \"\" \"zunopathfinder " ZUNO_VERSION_TEXT "\"\n" + ".SH NAME\n" + name +
                       " \\- " + plain(summary) + "\n.SH SYNOPSIS\n.B " + name + '\n' +
                       (commands.empty() ? "" : "COMMAND ") + "[OPTIONS]";
    for (const CLI::Option* const option : app.get_options())
        if (option->get_positional())
            page += option->get_required() ? " " + option->get_name(true)
                                           : " [" + option->get_name(true) + "]";
    page += "\n.SH OPTIONS\n" + optionsOf(app);
    if (!commands.empty())
        page += ".SH COMMANDS\n";
    for (const CLI::App* const command : commands)
        page += ".SS " + command->get_name() + '\n' + plain(command->get_description()) + ".\n" +
                optionsOf(*command) +
                (command->get_footer() != app.get_footer() ? footerOf(*command) : "");
    if (!app.get_footer().empty())
        page += ".SH NOTES\n" + plain(app.get_footer()) + '\n';
    return page;
}

} // namespace ZUNO::Tools
