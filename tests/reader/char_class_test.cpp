#include <gtest/gtest.h>

#include <tessit/reader/char_class.h>

using namespace tessit;

namespace {

struct ClassCase {
    std::uint32_t first, last;
    CharClass value;
};

// Rows at the edges of ranges, where an off-by-one shows.
constexpr ClassCase Classes[] = {
    {0x00, 0x08, NotXml},        {0x09, 0x0A, Plain},         {0x0B, 0x0C, NotXml},        {0x0D, 0x0D, Plain},
    {0x0E, 0x1F, NotXml},        {0x20, 0x2C, Plain},         {'-', '.', NamePart},        {'/', '/', Plain},
    {'0', '9', NamePart},        {':', ':', NameStart},       {';', '@', Plain},           {'A', 'Z', NameStart},
    {'[', '^', Plain},           {'_', '_', NameStart},       {'`', '`', Plain},           {'a', 'z', NameStart},
    {'{', 0xB6, Plain},          {0xB7, 0xB7, NamePart},      {0xB8, 0xBF, Plain},         {0xC0, 0xD6, NameStart},
    {0xD7, 0xD7, Plain},         {0xD8, 0xF6, NameStart},     {0xF7, 0xF7, Plain},         {0xF8, 0x131, NameStart},
    {0x132, 0x133, Plain},       {0x300, 0x345, NamePart},    {0x346, 0x35F, Plain},       {0x3D0, 0x3D6, NameStart},
    {0x3D7, 0x3D9, Plain},       {0x660, 0x669, NamePart},    {0x4E00, 0x9FA5, NameStart}, {0x9FA6, 0xABFF, Plain},
    {0xAC00, 0xD7A3, NameStart}, {0xD7A4, 0xD7FF, Plain},     {0xD800, 0xDFFF, NotXml},    {0xE000, 0xFFFD, Plain},
    {0xFFFE, 0x10003, NotXml},   {0x10FFFF, 0x10FFFF, NotXml}};

}  // namespace

TEST(CharClass, FollowsTheRanges) {
    for (const auto& [first, last, value] : Classes)
        for (std::uint32_t code = first; code <= last; ++code)
            EXPECT_EQ(charClass(code), value) << std::hex << code;
}
