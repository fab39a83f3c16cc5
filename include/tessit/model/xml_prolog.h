#pragma once

#include <corvel/c_string.h>

/// The XML declaration: version, and optionally encoding and standalone.
///
/// Nothing is validated or escaped. Accessors return copies. Storing a text can
/// throw `std::bad_alloc`: a setter then has changed nothing, an assignment perhaps
/// the version. What copies, makes or compares texts is O(length), the rest O(1).
class TESSIT_API QeXmlProlog {
public:
    /// Version "1.0", no encoding, no standalone.
    QeXmlProlog() = default;
    QeXmlProlog(const QeXmlProlog&) = default;
    QeXmlProlog& operator=(const QeXmlProlog&) = default;
    virtual ~QeXmlProlog();

    QeCString getVersion() const { return version; }
    void setVersion(const QeCString& text) { version = text; }

    /// The encoding name; empty when there is none.
    QeCString getCharacterEncoding() const { return characterEncoding; }

    /// Stores the encoding, which is then there even when the text is empty.
    void setCharacterEncoding(const QeCString& name) {
        characterEncoding = name;
        characterEncodingSet = true;
    }
    bool hasCharacterEncoding() const noexcept { return characterEncodingSet; }
    void removeCharacterEncoding() noexcept {
        characterEncoding.clear();
        characterEncodingSet = false;
    }

    /// The standalone value; false when there is none.
    bool getStandalone() const noexcept { return standalone; }
    void setStandalone(bool value) noexcept {
        standalone = value;
        standaloneSet = true;
    }
    bool hasStandalone() const noexcept { return standaloneSet; }
    void removeStandalone() noexcept { standalone = standaloneSet = false; }

    /// The declaration's text, from `<?xml` to `?>`, without a line end.
    QeCString asString() const;

    friend bool operator==(const QeXmlProlog& left, const QeXmlProlog& right) noexcept;

private:
    QeCString version{"1.0"};
    QeCString characterEncoding;
    bool characterEncodingSet = false;
    bool standalone = false;
    bool standaloneSet = false;
};

inline bool operator==(const QeXmlProlog& left, const QeXmlProlog& right) noexcept {
    return left.version == right.version && left.characterEncoding == right.characterEncoding &&
           left.characterEncodingSet == right.characterEncodingSet && left.standalone == right.standalone &&
           left.standaloneSet == right.standaloneSet;
}

inline bool operator!=(const QeXmlProlog& left, const QeXmlProlog& right) noexcept {
    return !(left == right);
}
