#pragma once

#include <string>
#include <string_view>
#include <vector>

#include <tessit/reader/xml_input.h>

#include "progress.h"

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

/// The same with its progress, which must live as long as it is read. Throws `InputError`, too, and does so from the
/// reader that it was handed to.
QeXmlInput openInput(const std::string& file, Progress& progress);

/// All bytes of the file, with their progress where that is to be told. Throws `InputError`, also for a folder.
std::vector<unsigned char> readInput(const std::string& file, Progress* progress = nullptr);
