#include <gtest/gtest.h>
#include <string>
#include <support/failing_allocator.h>
#include <utility>

#include <corvel/c_string.h>

namespace {

const std::string Long(100, 'x');

// Short and long, each with and without a block that is too small.
const char* const Targets[] = {"", "in place", "a text of 24 bytes......",
                               "a text that has had a block from its beginning"};

template <typename Change>
void expectStrongGuarantee(const Change& change) {
    for (const char* target : Targets) {
        SCOPED_TRACE(target);
        std::string expected(target);
        change(expected);
        forEachFailingAllocation([&](Attempt& attempt) {
            QeCString text(target);
            const bool done = attempt([&] { change(text); });
            EXPECT_EQ(text, done ? std::string_view(expected) : target);
        });
    }
}

TEST(CStringAllocation, FailureLeavesTheTextAsItWas) {
    expectStrongGuarantee([](auto& text) { text.assign(Long.data(), Long.size()); });
    expectStrongGuarantee([](auto& text) { text.append(Long.data(), Long.size()); });
    expectStrongGuarantee([](auto& text) { text = text + Long.c_str(); });
    expectStrongGuarantee([](auto& text) { text.reserve(200); });
}

TEST(CStringAllocation, NothingIsAllocatedWhereThereIsRoom) {
    const std::string full(QeCString::InlineCapacity, 'f');
    const QeCString source(full.c_str());
    QeCString block(Long.c_str());
    EXPECT_EQ(countAllocations([&] {
                  QeCString copy(source);
                  copy = full.c_str();
                  QeCString moved(std::move(block));
                  moved.clear();
                  moved.append(Long);
                  moved = source;
                  moved.assign(Long);
                  block = std::move(moved);
              }),
              0u);
    EXPECT_EQ(block, Long);
}

TEST(CStringAllocation, AppendingByteByByteGrowsGeometrically) {
    EXPECT_LT(countAllocations([] {
                  QeCString text;
                  for (int i = 0; i < 100'000; ++i)
                      text += 'x';
              }),
              32u);
}

}  // namespace
