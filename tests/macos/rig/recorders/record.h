#pragma once

#include <string>
#include <string_view>

namespace keyvora::rig {

/// Adds one line to the record: seconds since the start, "main" or "other" for the thread, and the text,
/// printf's way. Any thread.
void record(const char* format, ...) __attribute__((format(printf, 1, 2)));

/// A rule of Apple's documentation was broken: a line of its own, and the program ends with a status that
/// nothing else has. Any thread.
void violation(const char* format, ...) __attribute__((format(printf, 1, 2)));

/// A violation unless this is the main thread; `call` names what may be called there only.
void requireMainThread(const char* call);

bool isMainThread();

/// Text on one line, in quotes: line feeds and quotes are escaped.
std::string inQuotes(std::string_view text);

/// Notes that one object of a kind was made (+1) or has ended (-1). Any thread. `kind` is a literal.
void count(const char* kind, int change);

/// Opens the record that the environment names, and closes it with the counts when the program ends.
void beginRecord();

}  // namespace keyvora::rig
