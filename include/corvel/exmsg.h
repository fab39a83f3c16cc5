#pragma once

#include <cstdint>
#include <stdexcept>

#include <corvel/c_string.h>
#include <tessit/export.h>

/// One entry of a message catalog: constant data, never freed.
struct QeCatMsg {
    const char* domain;   ///< name of the catalog, NUL-terminated
    std::int32_t number;  ///< number of the message within it
    const char* text;     ///< default text, NUL-terminated
};

/// A message to build an exception from.
///
/// This build carries no translated catalogs, so a message has its entry's
/// default text. Every operation is O(1).
class TESSIT_API QeMessage {
public:
    /// The message of a catalog entry, which must outlive it; null gives an empty text.
    explicit QeMessage(const QeCatMsg* catalogEntry) noexcept : entry(catalogEntry) {}

    /// The text, NUL-terminated; as long-lived as the entry.
    const char* getText() const noexcept { return entry == nullptr || entry->text == nullptr ? "" : entry->text; }

    /// The catalog entry that the message was made of; may be null.
    const QeCatMsg* getEntry() const noexcept { return entry; }

private:
    const QeCatMsg* entry;
};

/// The base of every exception of the library: it carries a text.
///
/// It is no `std::exception` by itself, so that each class that derives from it
/// can choose the standard class as which it can be caught too.
///
/// Making, copying and raising one is O(length of its text) and can throw
/// `std::bad_alloc`; an assignment that does has changed nothing. The rest is O(1).
class TESSIT_API Qexmsg {
public:
    explicit Qexmsg(const char* msg) : text(msg) {}
    explicit Qexmsg(const QeMessage& msg) : text(msg.getText()) {}
    Qexmsg(const Qexmsg&) = default;
    Qexmsg& operator=(const Qexmsg&) = default;
    virtual ~Qexmsg();

    /// The text, NUL-terminated. Valid until the exception is assigned to or destroyed.
    virtual const char* why() const noexcept;

    /// Throws a copy of this object as a `Qexmsg`: what a derived class adds is
    /// not in it. To throw an exact copy, use `QeThrow`.
    [[noreturn]] virtual void raise() const;

private:
    QeCString text;
};

/// An index outside a string.
class TESSIT_API QeBoundsError : public Qexmsg, public std::out_of_range {
public:
    explicit QeBoundsError(const QeCString& msg) : Qexmsg(msg.data()), std::out_of_range(msg.data()) {}
    QeBoundsError(const QeBoundsError&) = default;
    QeBoundsError& operator=(const QeBoundsError&) = default;
    ~QeBoundsError() override;
};
