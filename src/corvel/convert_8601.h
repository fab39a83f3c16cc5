#pragma once

#include <corvel/date_time.h>

/// Reads the extended form of ISO 8601.
///
/// A date (2003-05-20), a time (09:01:08) or both with "T" between them; then,
/// optionally, a zone: "Z", "+02:00" or "+02", up to 14 hours. A second may have a
/// fraction behind a full stop or a comma; digits past the milliseconds are
/// dropped. A year has four to nine digits, none of them a needless zero in front,
/// and may have a minus sign. 24:00:00 is the next midnight. There are no leap
/// seconds: a second of 60 is refused.
class Qe8601Convert {
public:
    /// The instant that `text` stands for; `zone` is that of a text without one. A
    /// date alone is its midnight, a time alone lies on 1 January 1970. Throws
    /// `QeValueError` for any other text, a date that the calendar does not have
    /// included. O(length).
    QeDateTime toQeDateTime(const QeCString& text, const QeZone& zone) const;
};
