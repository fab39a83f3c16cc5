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
    {0x00, 0x08, NotXml},        {0x09, 0x0A, InText},        {0x0B, 0x0C, NotXml},        {0x0D, 0x0D, InText},
    {0x0E, 0x1F, NotXml},        {0x20, 0x2C, InText},        {'-', '.', NamePart},        {'/', '/', InText},
    {'0', '9', NamePart},        {':', ':', NameStart},       {';', '@', InText},          {'A', 'Z', NameStart},
    {'[', '^', InText},          {'_', '_', NameStart},       {'`', '`', InText},          {'a', 'z', NameStart},
    {'{', 0xB6, InText},         {0xB7, 0xB7, NamePart},      {0xB8, 0xBF, InText},        {0xC0, 0xD6, NameStart},
    {0xD7, 0xD7, InText},        {0xD8, 0xF6, NameStart},     {0xF7, 0xF7, InText},        {0xF8, 0x131, NameStart},
    {0x132, 0x133, InText},      {0x300, 0x345, NamePart},    {0x346, 0x35F, InText},      {0x3D0, 0x3D6, NameStart},
    {0x3D7, 0x3D9, InText},      {0x660, 0x669, NamePart},    {0x4E00, 0x9FA5, NameStart}, {0x9FA6, 0xABFF, InText},
    {0xAC00, 0xD7A3, NameStart}, {0xD7A4, 0xD7FF, InText},    {0xD800, 0xDFFF, NotXml},    {0xE000, 0xFFFD, InText},
    {0xFFFE, 0x10003, NotXml},   {0x10FFFF, 0x10FFFF, NotXml}};

}  // namespace

TEST(CharClass, FollowsTheRanges) {
    for (const auto& [first, last, value] : Classes)
        for (std::uint32_t code = first; code <= last; ++code)
            EXPECT_EQ(charClass(code), value) << std::hex << code;
}
