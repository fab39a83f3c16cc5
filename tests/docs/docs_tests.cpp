// Holds the pages against the project: the code that they show is that of the
// examples, what they say is printed is printed, and their links lead somewhere.
//
// A comment right in front of a block says where it comes from:
// <!-- all of FILE -->, <!-- FILE --> for a passage, or <!-- output of COMMAND -->.

#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <sstream>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;

const fs::path Root = TESSIT_SOURCE_DIR;

std::string contentOf(const fs::path& file) {
    std::ifstream in(file, std::ios::binary);
    return (std::ostringstream() << in.rdbuf()).str();
}

std::vector<fs::path> pages() {
    std::vector<fs::path> found;
    for (const fs::path& folder : {Root, Root / "docs"})
        for (const fs::directory_entry& entry : fs::directory_iterator(folder))
            if (entry.path().extension() == ".md") found.push_back(entry.path());
    return found;
}

struct Block {
    std::string origin;
    std::string text;
};

std::vector<Block> blocksOf(const fs::path& page) {
    const std::string open = "<!-- ", close = " -->";
    std::vector<Block> blocks;
    std::ifstream in(page);
    for (std::string line; std::getline(in, line);) {
        if (!line.starts_with(open) || !line.ends_with(close)) continue;
        Block block{line.substr(open.size(), line.size() - open.size() - close.size()), {}};
        std::getline(in, line);
        EXPECT_EQ(line.substr(0, 3), "```") << page << " has no block behind " << block.origin;
        while (std::getline(in, line) && line != "```")
            block.text += line + '\n';
        blocks.push_back(block);
    }
    return blocks;
}

// The text with each line one level to the left, if it is indented.
std::string outdented(const std::string& text) {
    std::string result = "\n";
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);)
        result += (line.starts_with("    ") ? line.substr(4) : line) + '\n';
    return result;
}

std::string outputOf(const std::string& command) {
    const std::string line = "cd '" TESSIT_SOURCE_DIR "' && PATH='" TESSIT_PROGRAM_DIRS "':$PATH && " + command;
    std::FILE* pipe = popen(line.c_str(), "r");
    std::string output;
    for (int byte; (byte = std::fgetc(pipe)) != EOF;)
        output += static_cast<char>(byte);
    EXPECT_EQ(pclose(pipe), 0) << command;
    return output;
}

void check(const Block& block) {
    const auto after = [&](const std::string& start) { return block.origin.substr(start.length()); };
    if (block.origin.starts_with("output of ")) {
        EXPECT_EQ(block.text, outputOf(after("output of ")));
    } else if (block.origin.starts_with("all of ")) {
        EXPECT_EQ(block.text, contentOf(Root / after("all of ")));
    } else {
        const std::string file = contentOf(Root / block.origin);
        const bool shown =
            file.find(block.text) != std::string::npos || outdented(file).find('\n' + block.text) != std::string::npos;
        EXPECT_TRUE(shown) << block.origin << " does not hold\n" << block.text;
    }
}

TEST(Docs, ShowWhatIsThere) {
    std::size_t count = 0;
    for (const fs::path& page : pages())
        for (const Block& block : blocksOf(page)) {
            SCOPED_TRACE(page.string() + ": " + block.origin);
            check(block);
            ++count;
        }
    EXPECT_GE(count, 10u);
}

// But for the container that stands behind members of others.
TEST(Docs, HaveAnExampleOfEachClass) {
    std::istringstream classes(
        outputOf("grep -rhE '^class .*[^;]$' include | sed -E 's/^class (TESSIT_API )?([A-Za-z0-9]+).*/\\2/' | grep -v "
                 "QeSlotArray"));
    std::size_t count = 0;
    for (std::string name; classes >> name; ++count)
        EXPECT_NE(outputOf("grep -lw " + name + " examples/*.cpp || true"), "") << "no example of " << name;
    EXPECT_GE(count, 30u);
}

TEST(Docs, OpenWithTheProgramThatDemandsAnElement) {
    const std::vector<Block> blocks = blocksOf(Root / "README.md");
    ASSERT_FALSE(blocks.empty());
    EXPECT_EQ(blocks.front().origin, "all of examples/read_order.cpp");
}

// The anchor that a heading gets.
std::string anchorOf(const std::string& heading) {
    std::string anchor;
    for (const char byte : heading) {
        if (byte == ' ') anchor += '-';
        if (std::isalnum(static_cast<unsigned char>(byte)) || byte == '-')
            anchor += static_cast<char>(std::tolower(static_cast<unsigned char>(byte)));
    }
    return anchor;
}

bool hasAnchor(const fs::path& page, const std::string& anchor) {
    std::ifstream in(page);
    for (std::string line; std::getline(in, line);)
        if (line.starts_with('#') && anchorOf(line.substr(line.find(' ') + 1)) == anchor) return true;
    return false;
}

// Whether a link from the page, a path with or without an anchor, leads somewhere.
bool leadsSomewhere(const fs::path& page, const std::string& link) {
    const std::size_t hash = link.find('#');
    const std::string file = link.substr(0, hash);
    const fs::path target = file.empty() ? page : page.parent_path() / file;
    return fs::exists(target) && (hash == std::string::npos || hasAnchor(target, link.substr(hash + 1)));
}

TEST(Docs, LinkToWhatIsThere) {
    for (const fs::path& page : pages()) {
        const std::string text = contentOf(page);
        for (std::size_t at = 0; (at = text.find("](", at)) != std::string::npos;) {
            at += 2;
            const std::string link = text.substr(at, text.find(')', at) - at);
            const bool isOurs = link.find("://") == std::string::npos;
            EXPECT_TRUE(!isOurs || leadsSomewhere(page, link)) << page << " links to " << link;
        }
    }
}

}  // namespace
