#pragma once

#include <string>
#include <string_view>
#include <vector>

/// A file that cannot be read.
struct InputError {
    int error;  ///< as `errno` has it
};

/// The name that stands for standard input.
constexpr std::string_view StandardInput = "-";

/// What messages and output call the file.
std::string_view displayName(std::string_view file);

/// All bytes of the file. Throws `InputError`, also for a folder.
std::vector<unsigned char> readInput(const std::string& file);
