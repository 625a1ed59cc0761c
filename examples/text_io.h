// Whole texts in and out, and messages on standard error, the same in all examples.
#pragma once

#include <optional>
#include <string>
#include <string_view>

// The name of the program, with which its messages begin. Every example defines its own.
extern const char* const kProgram;

// What all examples exit with; single ones know more.
enum ExitStatus { kSuccess = 0, kFailure = 1, kWrongUsage = 2 };

// All of a file, or of standard input for "-"; none when it cannot be read, with the reason in errno.
std::optional<std::string> readText(const std::string& file);

// Writes a message to standard error.
void report(const std::string& message);

// These give the exit status.
int fail(int status, const std::string& message);
int failToRead(const std::string& name);                          // with the reason in errno
int failWithCode(const std::string& what, int code);              // of the run of an algorithm
int print(const std::string& text);                               // to standard output
int writeFile(const std::string& text, const std::string& file);  // "-" is standard output

// A name as Graphviz reads it back.
std::string quotedForDot(std::string_view name);
