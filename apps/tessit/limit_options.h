#pragma once

#include <tessit/errors/xml_limits.h>

namespace CLI {
class App;
}

/// Gives a command the option `--limits`: a list of `strangers` and `NAME=NUMBER`, later ones of which go before
/// earlier ones. The limits live as long as the command.
void addLimits(CLI::App& arguments, QeXmlLimits& limits);
