#pragma once

#include <iosfwd>
#include <map>
#include <string>
#include <vector>

#include "run.h"

/// What is to be said of a document that is not treated as the suite has it, by the test's identifier.
using Reasons = std::map<std::string, std::string>;

/// Writes the page of the results.
void writePage(std::ostream& page, const std::vector<Result>& results, const Reasons& reasons);

/// What is wrong with the reasons: deviations that have none, and those that are none any more.
std::vector<std::string> findFaults(const std::vector<Result>& results, const Reasons& reasons);
