#pragma once

#include <corvel/exmsg.h>

/// The library's message catalog: entries for applications to build a
/// `QeMessage`, and from it an error, of. Each function returns the same address
/// on every call, in O(1); the record is constant data.

TESSIT_API const QeCatMsg* qetessit_BOUNDED_ARRAY() noexcept;
TESSIT_API const QeCatMsg* qetessit_PARSING_ERROR() noexcept;
TESSIT_API const QeCatMsg* qetessit_INVALID_DATETIME_FORMAT() noexcept;
