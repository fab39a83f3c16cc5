#include "report.h"

#include <tessit/errors/xml_limits.h>

#include "escape.h"
#include "excerpt.h"
#include "json.h"

namespace {

std::string firstLine(std::string_view severity, std::string_view file, const std::optional<QeXmlPosition>& position,
                      std::string_view message) {
    std::string line = escaped(file);
    if (position) line += ':' + std::to_string(position->line) + ':' + std::to_string(position->column);
    return line + ": " + std::string(severity) + ": " + escaped(message) + '\n';
}

std::string linesOf(const QeXmlExcerpt& excerpt, const QeXmlPosition& position) {
    if (excerpt.text.empty()) return {};
    const std::string number = std::to_string(position.line);
    const auto [text, caret] = mark(excerpt);
    return "  " + number + " | " + text + "\n  " + std::string(number.size(), ' ') + " | " + caret + '\n';
}

std::string lineOf(std::string_view label, std::string_view text) {
    return text.empty() ? std::string() : std::string(label) + ": " + escaped(text) + '\n';
}

std::string linesOf(const QeXmlNote& note) {
    return firstLine("note", note.place.sourceFile, note.place.position, note.text) +
           linesOf(note.excerpt, note.place.position);
}

class JsonObject {
public:
    void add(std::string_view name, std::string_view text) {
        beginField(name);
        appendJson(json, text);
    }
    void addUnlessEmpty(std::string_view name, std::string_view text) {
        text.empty() ? addNull(name) : add(name, text);
    }
    void add(std::string_view name, std::uint64_t number) {
        beginField(name);
        json += number == QeXmlPosition::Unknown ? "null" : std::to_string(number);
    }
    void add(std::string_view name, const JsonObject& object) {
        beginField(name);
        json += object.whole();
    }
    void addNull(std::string_view name) {
        beginField(name);
        json += "null";
    }
    std::string whole() const { return json + '}'; }

private:
    void beginField(std::string_view name) {
        if (json.size() > 1) json += ',';
        appendJson(json, name);
        json += ':';
    }

    std::string json = "{";
};

void addNote(JsonObject& object, const Report& report) {
    const QeXmlNote* const note = report.error == nullptr ? nullptr : report.error->getNote();
    if (note == nullptr) return object.addNull("note");
    JsonObject inner;
    inner.add("message", std::string_view(note->text));
    inner.add("file", std::string_view(note->place.sourceFile));
    inner.add("line", note->place.position.line);
    inner.add("column", note->place.position.column);
    object.add("note", inner);
}

}  // namespace

std::string asText(const Report& report) {
    std::string text = firstLine(report.severity, report.file, report.position, report.message);
    if (report.error == nullptr) return text;
    text += linesOf(report.error->getExcerpt(), *report.position);
    text += lineOf("path", report.error->getPath());
    if (const QeXmlNote* const note = report.error->getNote()) text += linesOf(*note);
    return text + lineOf("hint", report.error->getHint());
}

std::string asJson(const Report& report) {
    constexpr std::uint64_t Unknown = QeXmlPosition::Unknown;
    const QeXmlPosition position = report.position.value_or(QeXmlPosition{Unknown, Unknown, Unknown, Unknown, Unknown});
    const QeXmlParseError* const error = report.error;
    JsonObject object;
    object.add("severity", report.severity);
    object.add("file", report.file);
    object.add("line", position.line);
    object.add("column", position.column);
    object.add("characterColumn", position.characterColumn);
    object.add("offset", position.offset);
    object.add("inputOffset", position.inputOffset);
    object.addUnlessEmpty("rule", error == nullptr ? std::string_view() : error->getRule());
    const auto* const limit = dynamic_cast<const QeXmlLimitError*>(error);
    object.addUnlessEmpty("limit", limit == nullptr ? QeCString() : limit->getLimit());
    object.add("message", report.message);
    object.addUnlessEmpty("path", error == nullptr ? std::string_view() : error->getPath());
    addNote(object, report);
    object.addUnlessEmpty("hint", error == nullptr ? std::string_view() : error->getHint());
    return object.whole() + '\n';
}
