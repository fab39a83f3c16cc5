#include "limit_options.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <charconv>
#include <string>
#include <string_view>
#include <system_error>

namespace {

constexpr struct {
    std::string_view name;
    std::uint64_t QeXmlLimits::*field;
} Fields[] = {{"depth", &QeXmlLimits::depth},
              {"attributes", &QeXmlLimits::attributes},
              {"bindings", &QeXmlLimits::bindings},
              {"name", &QeXmlLimits::name},
              {"value", &QeXmlLimits::value},
              {"text", &QeXmlLimits::text},
              {"node", &QeXmlLimits::node},
              {"document", &QeXmlLimits::document},
              {"entityDepth", &QeXmlLimits::entityDepth},
              {"replacementText", &QeXmlLimits::replacementText},
              {"declarations", &QeXmlLimits::declarations}};

[[noreturn]] void refuse(std::string_view limit, const std::string& reason) {
    throw CLI::ValidationError("--limits", std::string(limit) + ": " + reason);
}

// `strangers`, or a limit with its number.
void apply(QeXmlLimits& limits, std::string_view limit) {
    if (limit == "strangers") {
        limits = QeXmlLimits::forStrangers();
        return;
    }
    const std::string_view name = limit.substr(0, limit.find('='));
    const auto* const field = std::ranges::find(Fields, name, [](const auto& known) { return known.name; });
    if (field == std::end(Fields)) refuse(limit, "there is no such limit");
    const std::string_view number = limit.substr(std::min(name.size() + 1, limit.size()));
    const char* const end = number.data() + number.size();
    const auto [behind, error] = std::from_chars(number.data(), end, limits.*field->field);
    if (behind != end || error != std::errc()) refuse(limit, "a number below 2^64 was expected behind '='");
}

void applyAll(QeXmlLimits& limits, std::string_view list) {
    for (;;) {
        const std::string_view limit = list.substr(0, list.find(','));
        apply(limits, limit);
        if (limit.size() == list.size()) return;
        list.remove_prefix(limit.size() + 1);
    }
}

}  // namespace

void addLimits(CLI::App& arguments, QeXmlLimits& limits) {
    arguments
        .add_option_function<std::string>(
            "--limits", [&limits](const std::string& list) { applyAll(limits, list); },
            "Refuse what has more: \"strangers\", NAME=NUMBER, or both with a comma")
        ->type_name("LIST");
}
