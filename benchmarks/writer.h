#pragma once

#include <corpus/composition.h>
#include <functional>
#include <memory>
#include <reader.h>
#include <string>
#include <string_view>

namespace tessit::benchmarks {

/// A document that is ready to be written, all strings being of the library's own
/// kind already, as they would be in a program that uses it.
class Writable {
public:
    using Take = std::function<void(std::string_view)>;

    virtual ~Writable() = default;

    /// Writes the document into memory, hands it over in one piece, and frees all that this took.
    virtual void write(const Take& take) = 0;
};

/// One way of writing documents.
struct Writer {
    std::string name;
    std::string version = {};
    Role role = Role::Peer;
    std::unique_ptr<Writable> (*prepare)(const Composition<std::string>& source) = nullptr;
};

/// For the `prepare` of a writer.
template <typename Type>
std::unique_ptr<Writable> prepared(const Composition<std::string>& source) {
    return std::make_unique<Type>(source);
}

}  // namespace tessit::benchmarks
