#pragma once

#include <string_view>

#include <corvel/date_time.h>

namespace corvel {

/// Appends the instant, as it reads in `zone`, in a format as `strftime` has them.
void appendTime(QeCString& text, std::string_view format, const QeDateTime& when, const QeLocale& locale,
                const QeZone& zone);

}  // namespace corvel
