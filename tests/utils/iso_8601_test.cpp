#include <algorithm>
#include <gtest/gtest.h>
#include <support/messages.h>

#include <corvel/value_error.h>
#include <tessit/utils/xml_utils.h>

namespace {

QeDateTime read(const QeCString& text) {
    return QeXmlUtils::convertISODateStringToDateTime(text);
}

QeCString write(const QeDateTime& when, const QeCString& format = QeXmlUtils::ISO8601Format) {
    return QeXmlUtils::convertDateTimeToISOString(when, format);
}

TEST(Iso8601, ReadsTheExtendedForm) {
    const struct {
        const char *text, *instant;
    } cases[] = {
        {"2003-05-20T09:01:08", "2003-05-20T09:01:08Z"},  // without a zone: UTC
        {"2003-05-20T09:01:08,250", "2003-05-20T09:01:08.25Z"},
        {"2003-05-20T09:01:08.9999999999999999999999Z", "2003-05-20T09:01:08.999Z"},  // cut off, not rounded
        {"2003-05-20T01:00:00+02:00", "2003-05-19T23:00:00Z"},
        {"2003-12-31T23:00:00-01", "2004-01-01T00:00:00Z"},
        {"2004-02-29T23:59:59.001-14:00", "2004-03-01T13:59:59.001Z"},
        {"2003-05-20Z", "2003-05-20T00:00:00Z"},
        {"2003-05-20-05:30", "2003-05-20T05:30:00Z"},
        {"01:30:00.5+02:00", "1969-12-31T23:30:00.5Z"},
        {"2003-12-31T24:00:00Z", "2004-01-01T00:00:00Z"},
        {"2003-12-31T24:00:00.000+01:00", "2003-12-31T23:00:00Z"},
        {"0001-01-01T00:00:00+00:01", "0000-12-31T23:59:00Z"},
        {"9999-12-31T24:00:00", "10000-01-01T00:00:00Z"},
        {"-0001-12-31T24:00:00", "0000-01-01T00:00:00Z"},
        {"999999999-12-31T23:59:59Z", "999999999-12-31T23:59:59Z"},
    };
    for (const auto& [text, instant] : cases)
        EXPECT_EQ(write(read(text)), instant) << text;
}

TEST(Iso8601, RefusesOtherTextsAndNamesThem) {
    const struct {
        const char *text, *expected, *found;
    } cases[] = {
        {"", "a year of four to nine digits", "the end"},
        {"203-05-20", "a year of four to nine digits", "\"203-05-20\""},
        {"02003-05-20", "a year of four to nine digits", "\"02003-05-20\""},
        {"-0000-05-20", "a year of four to nine digits", "\"-0000-05-20\""},
        {"20030520", "\"-\"", "the end"},
        {"2003-13-20", "a month from 01 to 12", "\"13-20\""},
        {"2003-5-20", "a month from 01 to 12", "\"5-20\""},
        {"2003-05-", "a day of that month from 01 to 31", "the end"},
        {"2004-02-30", "a day of that month from 01 to 29", "\"30\""},
        {"2003-05-00", "a day of that month from 01 to 31", "\"00\""},
        {"2003-05-20T", "an hour from 00 to 24", "the end"},
        {"2003-05-20t09:01:08", "\"T\" and a time, or a zone (\"Z\", \"+hh:mm\" or \"-hh:mm\")", "\"t09:01:08\""},
        {"2003-05-20\x7F", "\"T\" and a time, or a zone (\"Z\", \"+hh:mm\" or \"-hh:mm\")", "\"?\""},
        {"25:00:00", "an hour from 00 to 24", "\"25:00:00\""},
        {"24:00:01", "nothing but zeros behind the hour 24", "\"24:00:01\""},
        {"24:00:00.0001", "nothing but zeros behind the hour 24", "\"24:00:00.0001\""},
        {"24:30:00", "nothing but zeros behind the hour 24", "\"24:30:00\""},
        {"09:60:00", "a minute from 00 to 59", "\"60:00\""},
        {"23:59:60", "a second from 00 to 59", "\"60\""},
        {"09:01:08.", "a digit", "the end"},
        {"09:01:08+14:01", "a zone at most 14:00 from UTC", "\"+14:01\""},
        {"09:01:08 Z", "a zone (\"Z\", \"+hh:mm\" or \"-hh:mm\")", "\" Z\""},
        {"09:01:08-15:00", "the hours of a zone from 00 to 14", "\"15:00\""},
        {"09:01:08+02:60", "the minutes of a zone from 00 to 59", "\"60\""},
        {"09:01:08+0200", "the end of the text", "\"00\""},
    };
    for (const auto& [text, expected, found] : cases) {
        std::string message =
            std::string("Expected ") + expected + ", found " + found + " in the ISO 8601 text \"" + text + '"';
        std::ranges::replace(message, '\x7F', '?');
        EXPECT_EQ(messageOf<QeValueError>([&, refused = text] { read(refused); }), message);
        EXPECT_THROW(QeXmlUtils::convertISODateStringToDate(text), QeValueError) << text;
    }
}

TEST(Iso8601, KeepsMessagesShortAndWhole) {
    const auto messageFor = [](const QeCString& text) { return messageOf<QeValueError>([&] { read(text); }); };
    EXPECT_EQ(messageFor(QeCString("20\0Z", 4)),
              "Expected a year of four to nine digits, found \"20?Z\" in the ISO 8601 text \"20?Z\"");
    EXPECT_LT(messageFor(QeCString(std::string(1'000'000, '9'))).size(), 250U);
    const std::string cut = "x" + std::string(62, ' ') + "\xE2\x82\xAC";  // the euro sign would be cut in two
    EXPECT_NE(messageFor(QeCString(cut)).find("x" + std::string(62, ' ') + "...\""), std::string::npos);
}

TEST(Iso8601, InstantsRoundTripInEveryZone) {
    for (int offset = -QeZone::MaxOffset; offset <= QeZone::MaxOffset; ++offset) {
        const QeDateTime when(QeDate(29, 2, 2004), 12, 34, 56, (offset + 1000) % 1000, QeZone::utc());
        const QeCString text = when.asString(QeDateTime::Iso8601, QeLocale::defaultLocale(), QeZone(offset));
        ASSERT_EQ(read(text), when) << text;
        ASSERT_EQ(read(write(when)), when);
    }
}

TEST(Iso8601, WritesInUtcByFormat) {
    const QeDateTime when(QeDate(20, 5, 2003), 1, 30, 0, 250, QeZone(120));
    EXPECT_EQ(write(when, QeCString("%Y-%m-%dT%X")), "2003-05-19T23:30:00.25Z");  // by its bytes
    EXPECT_EQ(write(when, QeXmlUtils::ISO8601Date), "2003-05-19");
    EXPECT_EQ(write(when, QeXmlUtils::ISO8601Time), "23:30:00");
    EXPECT_EQ(write(when, "%H,%M,"), "23,30,");  // commas of a format stay
    EXPECT_EQ(QeXmlUtils::convertISODateStringToDate("2003-05-20T01:00:00+02:00"), QeDate(19, 5, 2003));
    EXPECT_EQ(QeXmlUtils::convertDateToISOString(QeDate(1, 1, -44)), "-0044-01-01");
}

}  // namespace
