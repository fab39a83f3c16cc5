#include <tessit/dtd/xml_resolver.h>

QeXmlResolver::~QeXmlResolver() = default;
