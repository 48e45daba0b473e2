#pragma once

#include <string>
#include <string_view>

namespace keyvora::rig {

/// Adds a line to the record: seconds since the start, "main" or "other" for the thread, and the text,
/// formatted like printf. Any thread.
void record(const char* format, ...) __attribute__((format(printf, 1, 2)));

/// Reports that a rule of Apple's documentation was broken: adds a line, and the program ends with a
/// special exit status. Any thread.
void violation(const char* format, ...) __attribute__((format(printf, 1, 2)));

/// A violation unless called on the main thread; `call` names the function that requires it.
void requireMainThread(const char* call);

bool isMainThread();

/// Text in quotes on one line: line feeds and quotes are escaped.
std::string inQuotes(std::string_view text);

/// Counts an object of a kind that was created (+1) or destroyed (-1). Any thread. `kind` is a string
/// literal.
void count(const char* kind, int change);

/// Opens the record that the environment names; at the end of the program, writes the counts and closes it.
void beginRecord();

}  // namespace keyvora::rig
