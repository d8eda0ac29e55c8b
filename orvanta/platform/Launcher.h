#pragma once
// Opening a document, a folder or an address with the desktop's default application, or starting a
// program, through GIO.
//
// Contract: target is a path, relative paths taken from workingDirectory, or, when it names no file,
// an address with a scheme ("https://...", "mailto:..."). A program file (executable, not a folder) is
// started with the parameters split as a shell would split them, in workingDirectory; a bare name that names
// no file there is looked up in PATH. Anything else that exists opens with the default application for its
// type; parameters are then not used. The answer is whether the application or program was started; what it
// then does is not awaited.

#include <string>

namespace Orvanta::Platform {

bool launch(const std::string& target, const std::string& parameters, const std::string& workingDirectory);

}  // namespace Orvanta::Platform
