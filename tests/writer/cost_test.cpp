// What writing costs as elements grow wide and deep: eight times the input takes
// about eight times the time. Were each attribute searched, or moved past all
// others, it would take sixty-four times as long.

#include <algorithm>
#include <ctime>
#include <functional>
#include <gtest/gtest.h>
#include <string>

#include <tessit/reader/xml_reader.h>
#include <tessit/writer/xml_string_writer.h>

namespace {

QeCString numbered(const char* front, int number) {
    return QeCString(front) + std::to_string(1000000 + number);
}

using Job = std::function<void()>;

std::clock_t fastest(const Job& write) {
    std::clock_t best = 0;
    for (int i = 0; i < 3; ++i) {
        const std::clock_t begin = std::clock();
        write();
        const std::clock_t taken = std::clock() - begin;
        best = i == 0 ? taken : std::min(best, taken);
    }
    return std::max<std::clock_t>(best, 1);
}

void expectLinear(const std::function<Job(int)>& prepare) {
    constexpr int Small = 2500, Factor = 8;
    const std::clock_t small = fastest(prepare(Small));
    const std::clock_t large = fastest(prepare(Factor * Small));
    EXPECT_LT(static_cast<double>(large) / static_cast<double>(small), 3.5 * Factor);
}

Job writeWide(const QeXmlAttributeSet& set) {
    return [set] {
        QeXmlStringWriter writer;
        writer.writeElementStart(QeXmlName("e", QeXmlNamespace("p", "u")), set, true);
    };
}

TEST(Cost, OfAttributesThatAreEachToBeDeclared) {
    expectLinear([](int count) {
        QeXmlAttributeSet set;
        for (int i = 0; i < count; ++i)
            set.add(QeXmlName(numbered("a", i), QeXmlNamespace(numbered("p", i), numbered("u", i))), "");
        return writeWide(set);
    });
}

// Attributes that the reader orders by their prefixes, whose URIs are in the reverse order.
TEST(Cost, OfSetsOutOfOrder) {
    expectLinear([](int count) {
        QeCString document("<e xmlns:q='v' xmlns:r='u'");
        for (int i = 0; i < count; ++i)
            document += numbered(" q:x", i) + "='' " + numbered("r:x", i) + "='' " + numbered("y", i) + "='z" +
                        std::to_string(i) + "'";
        document += "/>";
        QeXmlReader reader(document);
        return writeWide(reader.readElementStart("e"));
    });
}

TEST(Cost, OfDeepNesting) {
    expectLinear([](int count) -> Job {
        return [count] {
            QeXmlStringWriter writer;
            for (int i = 0; i < count; ++i) {
                QeXmlAttributeSet set;
                set.add(QeXmlName("a"), numbered("v", i));
                writer.writeElementStart(QeXmlName("e", QeXmlNamespace(numbered("p", i), numbered("u", i))), set,
                                         false);
            }
            for (int i = 0; i < count; ++i)
                writer.writeElementEnd(QeXmlName("e"));
        };
    });
}

}  // namespace
