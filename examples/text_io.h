// Whole texts, as the examples read and write them.
#pragma once

#include <optional>
#include <string>

// All of a file, or of standard input for "-"; none when it cannot be read, with the reason in errno.
std::optional<std::string> readText(const std::string& file);

// Writes to standard output; false when that fails, with the reason in errno.
bool writeText(const std::string& text);
