#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "catalogue.h"

/// In which ways each document is read.
enum Way { Lenient, Conforming, WithResolver, WithoutNamespaces };  // the last two with a resolver
constexpr Way Ways[] = {Lenient, Conforming, WithResolver, WithoutNamespaces};

struct Outcome {
    bool isAccepted = false;
    bool hasRightOutput = true;  ///< also when there is none to compare with
    std::string fault;           ///< where and why it was refused, or nothing
};

struct Result {
    Test test;
    Outcome outcomes[std::size(Ways)];  ///< by way
};

/// Reads all documents of the suite in that folder.
std::vector<Result> run(const std::filesystem::path& suite, std::vector<Test> tests);
