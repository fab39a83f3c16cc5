#pragma once

/// Everything that the library offers.

#include <corvel/c_string.h>
#include <corvel/date.h>
#include <corvel/date_time.h>
#include <corvel/decimal_portable.h>
#include <corvel/exmsg.h>
#include <corvel/locale.h>
#include <corvel/value_error.h>
#include <corvel/zone.h>
#include <tessit/dtd/xml_document_type.h>
#include <tessit/dtd/xml_resolver.h>
#include <tessit/errors/catalog.h>
#include <tessit/errors/xml_error.h>
#include <tessit/errors/xml_limits.h>
#include <tessit/errors/xml_position.h>
#include <tessit/model/xml_attribute.h>
#include <tessit/model/xml_attribute_set.h>
#include <tessit/model/xml_element_imp.h>
#include <tessit/model/xml_name.h>
#include <tessit/model/xml_namespace.h>
#include <tessit/model/xml_namespace_stack.h>
#include <tessit/model/xml_prolog.h>
#include <tessit/reader/xml_input.h>
#include <tessit/reader/xml_reader.h>
#include <tessit/reader/xml_reader_options.h>
#include <tessit/sax/xml_content_handler.h>
#include <tessit/sax/xml_lexical_handler.h>
#include <tessit/sax/xml_sax_parser.h>
#include <tessit/schema/xml_duration.h>
#include <tessit/schema/xml_schema_utils.h>
#include <tessit/schema/xml_validator.h>
#include <tessit/utils/xml_utils.h>
#include <tessit/version.h>
#include <tessit/writer/xml_string_writer.h>
#include <tessit/writer/xml_writer.h>
