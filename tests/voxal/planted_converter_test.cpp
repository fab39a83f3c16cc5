// A document's encoding is no file, wherever ICU looks for its data.

#include <cstdlib>
#include <filesystem>
#include <gtest/gtest.h>
#include <memory>
#include <support/messages.h>
#include <unicode/ucnv.h>
#include <voxal/converter.h>

namespace {

namespace fs = std::filesystem;

// Before main: ICU looks at the variable once.
const fs::path Folder = [] {
    const fs::path file = PLANTED_CONVERTER, folder = file.parent_path() / U_ICUDATA_NAME;
    fs::create_directories(folder);
    fs::copy_file(file, folder / file.filename(), fs::copy_options::overwrite_existing);
    setenv("ICU_DATA", file.parent_path().c_str(), 1);
    return folder;
}();

}  // namespace

TEST(Converter, OpensNoFileOfAnEncodingsName) {
    UErrorCode status = U_ZERO_ERROR;
    const std::unique_ptr<UConverter, void (*)(UConverter*)> planted(ucnv_open("planted", &status), ucnv_close);
    ASSERT_TRUE(U_SUCCESS(status)) << "ICU itself finds it in " << Folder;
    for (const char* name : {"planted", "planted,version=1"})
        EXPECT_EQ(messageOf<QeUConversionError>([&] { QeUToUnicodeConverter converter(name); }),
                  "no converter is known for it");
    EXPECT_EQ(QeUToUnicodeConverter("ISO_2022,locale=ja,version=1").toUtf8("x"), "x") << "options are no names";
    EXPECT_EQ(QeUToUnicodeConverter("ibm-37,swaplfnl").toUtf8("\x25"), "\xC2\x85");
}
