#pragma once

#include <corvel/c_string.h>

/// A time zone: a fixed distance from UTC.
///
/// There are no rules of summer time here, and the zone of the machine is never
/// asked for. A plain value; every operation is O(1).
class TESSIT_API QeZone {
public:
    /// The greatest distance from UTC, in minutes: 14 hours.
    static constexpr int MaxOffset = 14 * 60;

    /// The zone whose clocks are so many minutes ahead of UTC, negative to the west
    /// of it. Throws `QeValueError` for more than `MaxOffset` either way.
    explicit QeZone(int minutesAhead);

    static QeZone utc() noexcept { return {}; }

    /// Minutes ahead of UTC, negative to the west of it.
    int offsetInMinutes() const noexcept { return offset; }

    /// How ISO 8601 writes the zone: "Z" for UTC, otherwise as "+02:00".
    QeCString designator() const;

private:
    QeZone() noexcept = default;

    int offset = 0;
};
