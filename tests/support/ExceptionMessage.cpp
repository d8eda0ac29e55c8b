#include "tests/support/ExceptionMessage.h"

#include "orvanta/foundation/Throwable.h"

namespace OrvantaTest {

std::u16string messageOf(const std::function<void()>& action) {
    try {
        action();
    } catch (const Orvanta::Throwable& e) {
        return e.getMessage();
    }
    return u"(nothing thrown)";
}

}  // namespace OrvantaTest
