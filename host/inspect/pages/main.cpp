// Prints a page about orvex-inspect: man, bash, or markdown with the file of the schema.
#include <fstream>
#include <iostream>
#include <nlohmann/json.hpp>
#include <span>

#include "host/inspect/pages/Pages.h"
#include "host/terminal/Terminal.h"

int main(int argc, char** argv) {
    const std::span arguments(argv, static_cast<std::size_t>(argc));
    orvex::ChooseLanguage(L"en");
    try {
        const std::string page = argc > 1 ? arguments[1] : "";
        if (page == "man") {
            std::cout << orvex::ManualPage();
        } else if (page == "bash") {
            std::cout << orvex::BashCompletion();
        } else if (page == "markdown" && argc > 2) {
            std::ifstream schema(arguments[2]);
            std::cout << orvex::MarkdownPage(nlohmann::ordered_json::parse(schema));
        } else {
            std::cerr << "usage: orvex-inspect-pages man|bash|markdown [SCHEMA]\n";
            return 2;
        }
    } catch (const std::exception& error) {
        std::cerr << error.what() << '\n';
        return 1;
    }
    return std::cout.flush() ? 0 : 1;
}
