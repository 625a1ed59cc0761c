// The lines and words of a text, as the examples that read graphs see them.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

using Words = std::vector<std::string_view>;

// Calls use(words, number) with the words of each line that has some, until it gives false. Lines count
// from 1.
void forEachLine(std::string_view text, const std::function<bool(const Words&, int)>& use);

// Gives the reason when the word is no integer of 32 bits.
std::string readInteger(std::string_view word, int& number);
