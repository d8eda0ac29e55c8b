#pragma once
// Throwable: the root of the library's exceptions.
//
// Contract: thrown by value, caught by reference. The message points at a static literal; it is
// never formatted, copied or freed.

namespace Orvanta {

class Throwable {
public:
    explicit Throwable(const char16_t* message) : mMessage(message) {}
    virtual ~Throwable() = default;
    const char16_t* getMessage() const { return mMessage; }

private:
    const char16_t* mMessage;
};

}  // namespace Orvanta
