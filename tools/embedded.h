#pragma once

#include <string_view>

/// Files of the project that the build puts into the program.
namespace keyvora::tools::embedded {

/// resources/mappings.json: the document for Excel, which a new user gets.
extern const std::string_view defaultDocument;

/// resources/calc.json and resources/gnumeric.json.
extern const std::string_view calcDocument;
extern const std::string_view gnumericDocument;

/// resources/shipped.txt: all entries that these documents ever had.
extern const std::string_view shippedEntries;

/// resources/mappings.schema.json.
extern const std::string_view schema;

/// tools/cheatsheet.css: the style of the HTML sheet.
extern const std::string_view cheatsheetStyle;

/// tools/data/menu_titles.txt and tools/data/script_words.txt.
extern const std::string_view menuTitles;
extern const std::string_view scriptWords;

/// The program's version.
extern const std::string_view version;

}  // namespace keyvora::tools::embedded
