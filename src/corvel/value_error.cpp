#include <corvel/value_error.h>

QeValueError::~QeValueError() = default;
