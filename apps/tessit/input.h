#pragma once

#include <string>
#include <string_view>
#include <vector>

#include <tessit/reader/xml_input.h>

/// A file that cannot be read.
struct InputError {
    int error;  ///< as `errno` has it
};

/// The name that stands for standard input.
constexpr std::string_view StandardInput = "-";

/// What messages and output call the file.
std::string_view displayName(std::string_view file);

/// The file or standard input, to be read piece by piece. Throws `QeXmlInputError`, also for a folder.
QeXmlInput openInput(const std::string& file);

/// All bytes of the file. Throws `InputError`, also for a folder.
std::vector<unsigned char> readInput(const std::string& file);
