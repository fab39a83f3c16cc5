// Reads every #include of the library and its tool: arrows between the rooms
// point one way, and public headers need nothing but the standard library and
// each other.

#include <algorithm>
#include <filesystem>
#include <fnmatch.h>
#include <fstream>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;

using Names = std::vector<std::string>;

// A room, or a file of one that stands higher than its room.
struct Floor {
    std::string name;
    Names files;      // patterns of paths, as a shell has them
    Names standsOn;   // floors; its own files it may always include
    Names outside{};  // patterns of headers from elsewhere, the standard library's apart
};

// The files of a room, private and public.
Names room(const std::string& folder) {
    return {"src/" + folder + "/*", "include/" + folder + "/*"};
}

// The lowest first; a file belongs to the last floor that names it.
const std::vector<Floor> Floors = {
    {"corvel", room("corvel"), {}, {"emmintrin.h", "arm_neon.h"}},
    {"voxal", room("voxal"), {"corvel"}, {"unicode/*"}},
    {"errors", room("tessit/errors"), {"corvel"}},
    {"model", room("tessit/model"), {"corvel", "errors"}},
    {"utils", room("tessit/utils"), {"corvel", "errors", "model"}},
    {"prolog", {"src/tessit/model/xml_prolog.cpp"}, {"corvel", "errors", "model", "utils"}},
    {"writer", room("tessit/writer"), {"corvel", "errors", "model"}},
    {"reader", room("tessit/reader"), {"corvel", "voxal", "errors", "model"}},
    {"schema", room("tessit/schema"), {"corvel", "voxal", "errors", "model", "utils"}},
    {"sax", room("tessit/sax"), {"corvel", "errors", "model", "reader"}},
    {"comparison", {"src/tessit/utils/*compar*"}, {"corvel", "errors", "model", "utils", "reader"}},
    {"umbrella",
     {"include/tessit/tessit.h", "src/tessit/version.cpp"},
     {"corvel", "errors", "model", "utils", "writer", "reader", "schema", "sax"}},
    {"apps",
     {"apps/*"},
     {"corvel", "errors", "model", "utils", "writer", "reader", "schema", "sax", "umbrella"},
     {"CLI/*", "fcntl.h", "unistd.h", "sys/*"}},
};

bool matchesAny(const Names& patterns, const std::string& text) {
    return std::any_of(patterns.begin(), patterns.end(),
                       [&](const std::string& pattern) { return fnmatch(pattern.c_str(), text.c_str(), 0) == 0; });
}

const Floor* floorOf(const std::string& file) {
    const auto found =
        std::find_if(Floors.rbegin(), Floors.rend(), [&](const Floor& floor) { return matchesAny(floor.files, file); });
    return found == Floors.rend() ? nullptr : &*found;
}

bool mayInclude(const Floor& from, const Floor& to) {
    return &from == &to || std::find(from.standsOn.begin(), from.standsOn.end(), to.name) != from.standsOn.end();
}

// Where a header of ours lies; empty when it is not ours.
std::string fileOf(const std::string& header) {
    for (const char* folder : {"include/", "src/"})
        if (fs::exists(fs::path(TESSIT_SOURCE_DIR) / (folder + header))) return folder + header;
    return {};
}

// Made by the build, of no room's making.
bool isGenerated(const std::string& header) {
    return header == "tessit/export.h" || header == "tessit/version.h";
}

bool isStandard(const std::string& header) {
    return header.find_first_not_of("abcdefghijklmnopqrstuvwxyz_") == std::string::npos;
}

// What is wrong with a file's including <header>; empty when nothing is.
std::string complaintAbout(const std::string& file, const std::string& header) {
    const Floor* floor = floorOf(file);
    if (floor == nullptr) return "is on no floor";
    if (isGenerated(header) || isStandard(header)) return {};
    const bool isPublic = file.starts_with("include/");
    const std::string target = fileOf(header);
    if (target.empty())
        return !isPublic && matchesAny(floor->outside, header) ? "" : "may not include a foreign header";
    const bool needsPublic = isPublic || file.starts_with("apps/");
    if (needsPublic && !target.starts_with("include/")) return "may not include a private header";
    const Floor* targetFloor = floorOf(target);
    if (targetFloor == nullptr || !mayInclude(*floor, *targetFloor)) return "stands below it";
    return {};
}

// An #include in quotes is of a file beside, which only the tool's sources do.
std::string complaintAboutQuoted(const std::string& file, const std::string& header) {
    const fs::path target = fs::path(TESSIT_SOURCE_DIR) / fs::path(file).replace_filename(header);
    const bool isBeside = header.find('/') == std::string::npos && fs::exists(target);
    return file.starts_with("apps/") && isBeside ? "" : "may not include in quotes";
}

// What is behind "#include" in a line; empty when it is none.
std::string includedBy(std::string line) {
    for (const std::string expected : {"#", "include"}) {
        line.erase(0, line.find_first_not_of(" \t"));
        if (!line.starts_with(expected)) return {};
        line.erase(0, expected.size());
    }
    return line.substr(std::min(line.find_first_not_of(" \t"), line.size()));
}

std::string complaintAboutLine(const std::string& file, const std::string& line) {
    const std::string included = includedBy(line);
    if (included.empty()) return {};
    const std::size_t nameEnd = included.find_first_of(">\"", 1);
    if ((included[0] != '<' && included[0] != '"') || nameEnd == std::string::npos)
        return "includes what cannot be read";
    const std::string header = included.substr(1, nameEnd - 1);
    return included[0] == '<' ? complaintAbout(file, header) : complaintAboutQuoted(file, header);
}

Names sourceFiles() {
    Names files;
    for (const char* folder : {"include", "src", "apps"})
        for (const fs::directory_entry& entry : fs::recursive_directory_iterator(fs::path(TESSIT_SOURCE_DIR) / folder))
            if (entry.path().extension() == ".h" || entry.path().extension() == ".cpp")
                files.push_back(fs::relative(entry.path(), TESSIT_SOURCE_DIR).generic_string());
    return files;
}

TEST(Includes, PointDownOnly) {
    const Names files = sourceFiles();
    ASSERT_GT(files.size(), 40u);
    for (const std::string& file : files) {
        std::ifstream in(fs::path(TESSIT_SOURCE_DIR) / file);
        for (std::string line; std::getline(in, line);)
            EXPECT_EQ(complaintAboutLine(file, line), "") << file << ": " << line;
    }
}

TEST(Includes, HaveFloorsInOneOrder) {
    for (auto floor = Floors.begin(); floor != Floors.end(); ++floor)
        for (const std::string& lower : floor->standsOn)
            EXPECT_TRUE(std::any_of(Floors.begin(), floor, [&](const Floor& other) { return other.name == lower; }))
                << floor->name << " stands on " << lower;
}

const struct {
    const char *file, *line, *complaint;
} Planted[] = {
    {"src/tessit/model/xml_name.cpp", "#include <tessit/utils/xml_utils.h>", "stands below it"},
    {"src/tessit/sax/xml_sax_parser.cpp", "  #  include <voxal/converter.h>", "stands below it"},
    {"src/tessit/utils/xml_utils.cpp", "#include <tessit/reader/xml_reader.h>", "stands below it"},
    {"include/tessit/reader/xml_reader.h", "#include <emmintrin.h>", "may not include a foreign header"},
    {"include/tessit/reader/xml_reader.h", "#include <tessit/reader/transcode.h>", "may not include a private header"},
    {"include/tessit/reader/xml_reader.h", "#include \"xml_name.h\"", "may not include in quotes"},
    {"src/tessit/reader/input.cpp", "#include <unicode/ucnv.h>", "may not include a foreign header"},
    {"src/tessit/reader/input.cpp", "#include HEADER", "includes what cannot be read"},
    {"src/elsewhere/file.cpp", "#include <vector>", "is on no floor"},
    {"apps/tessit/events.cpp", "#include <tessit/reader/open_elements.h>", "may not include a private header"},
    {"apps/tessit/events.cpp", "#include \"../../src/tessit/reader/open_elements.h\"", "may not include in quotes"},
};

TEST(Includes, AreRefusedWherePlanted) {
    for (const auto& [file, line, complaint] : Planted)
        EXPECT_EQ(complaintAboutLine(file, line), complaint) << file << ": " << line;
}

}  // namespace
