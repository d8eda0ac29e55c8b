#pragma once
// The message of the Orvanta::Exception (or Error) an action throws, for tests that pin exact texts.

#include <functional>
#include <string>

namespace OrvantaTest {

// The thrown Throwable's message, or "(nothing thrown)".
std::u16string messageOf(const std::function<void()>& action);

}  // namespace OrvantaTest
